#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>

#include <gtest/gtest.h>

#include "support/photos/TestPhotos.h"
#include "support/photos/TestPictures.h"
#include "widgets/thumbnails/ThumbnailLoader.h"

namespace snaplift {
namespace {

using Kind = ThumbnailRequest::Kind;
using State = Thumbnail::State;
using test::encoded;
using test::quadrants;

class ThumbnailLoaderTest : public testing::Test {
protected:
  void start(unsigned workers, test::PhotoReads::Source source, LoaderLimits limits = {}) {
    m_photos.emplace(1'000, std::move(source));
    m_loader.emplace([this] { tell(); }, workers, std::move(limits));
  }
  void TearDown() override {
    if (m_photos) {
      m_photos->reads().hold(false);
    }
    m_loader.reset();
  }

  ThumbnailRequest request(int index, Kind kind = Kind::Decode) {
    const ImageBrowserItemPointer item = m_photos->item(index);
    return {item, item->imageUID(), kind, 96, {}};
  }

  // The titles of what has come, in that order, once `count` results are there.
  std::vector<std::string> waitFor(std::size_t count) {
    while (m_titles.size() < count) {
      {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_told > 0; });
        --m_told;
      }
      for (ThumbnailResult& result : m_loader->takeResults()) {
        m_titles.push_back(result.uid.substr(result.uid.find("IMG")));
        m_states[m_titles.back()] = result.thumbnail.state;
        m_thumbnails[m_titles.back()] = std::move(result.thumbnail);
      }
    }
    return m_titles;
  }

  std::optional<test::TestPhotos> m_photos;
  std::optional<ThumbnailLoader> m_loader;
  std::map<std::string, State> m_states;
  std::map<std::string, Thumbnail> m_thumbnails;

private:
  void tell() {
    const std::lock_guard lock(m_mutex);
    ++m_told;
    m_changed.notify_all();
  }

  std::mutex m_mutex;
  std::condition_variable m_changed;
  int m_told = 0;
  std::vector<std::string> m_titles;
};

TEST_F(ThumbnailLoaderTest, worksInTheOrderGivenAndDropsWhatIsNoLongerAskedFor) {
  start(1, [picture = encoded(quadrants({64, 48}))](int) { return picture; });
  m_photos->reads().hold(true);
  m_loader->setWork({request(0), request(1), request(2)});
  m_photos->reads().waitForHeld(1);
  m_loader->setWork({request(7), request(0), request(5)});
  m_photos->reads().hold(false);
  EXPECT_EQ(waitFor(3), (std::vector<std::string>{"IMG_0001.JPG", "IMG_0008.JPG", "IMG_0006.JPG"}));
  EXPECT_EQ(m_photos->reads().count(), 3);
}

TEST_F(ThumbnailLoaderTest, whatRunsAndIsNoLongerAskedForGivesNoResult) {
  start(1, [picture = encoded(quadrants({64, 48}))](int) { return picture; });
  m_photos->reads().hold(true);
  m_loader->setWork({request(0)});
  m_photos->reads().waitForHeld(1);
  m_loader->setWork({request(1)});
  m_loader->setWork({request(0), request(1)});  // asked for again: begun anew
  m_photos->reads().hold(false);
  EXPECT_EQ(waitFor(2), (std::vector<std::string>{"IMG_0001.JPG", "IMG_0002.JPG"}));
  EXPECT_EQ(m_photos->reads().count(), 3);
}

TEST_F(ThumbnailLoaderTest, aBadPictureStopsNoOther) {
  const QByteArray good = encoded(quadrants({64, 48}));
  start(2, [good](int index) -> std::optional<QByteArray> {
    return index % 3 == 0   ? std::nullopt
           : index % 3 == 1 ? std::optional<QByteArray>("no picture")
                            : std::optional(good);
  });
  std::vector<ThumbnailRequest> work;
  for (int i = 0; i < 30; ++i) {
    work.push_back(request(i, i < 15 ? Kind::Preview : Kind::Decode));
  }
  m_loader->setWork(std::move(work));
  waitFor(30);
  const std::pair<const char*, State> expected[] = {
      {"01", State::Unreadable}, {"02", State::Undecodable}, {"03", State::Unknown},
      {"28", State::Unreadable}, {"29", State::Undecodable}, {"30", State::Ready}};
  for (const auto& [number, state] : expected) {
    EXPECT_EQ(m_states["IMG_00" + std::string(number) + ".JPG"], state) << number;
  }
  EXPECT_TRUE(m_loader->isIdle());
}

#ifndef SNAPLIFT_SANITIZED
// A picture that says that it is progressive and large: 10,000 by 7,000 with three full components,
// for which the decoder wants 420 MB before it looks any further.
QByteArray largePicture() {
  QByteArray jpeg = encoded(quadrants({64, 48}));
  const qsizetype frame = jpeg.indexOf(QByteArray("\xFF\xC0", 2));
  jpeg[frame + 1] = '\xC2';
  jpeg.replace(frame + 5, 4, QByteArray::fromHex("1b582710"));
  return jpeg;
}

TEST_F(ThumbnailLoaderTest, largePicturesComeBehindAllOthersAndStayWithinTheirBound) {
  start(1, [large = largePicture(), small = encoded(quadrants({64, 48}))](int index) {
    return index < 2 ? large : small;
  });
  m_photos->reads().hold(true);
  m_loader->setWork({request(0), request(1), request(2), request(3)});
  m_photos->reads().hold(false);
  EXPECT_EQ(waitFor(4), (std::vector<std::string>{"IMG_0003.JPG", "IMG_0004.JPG", "IMG_0001.JPG",
                                                  "IMG_0002.JPG"}));
  EXPECT_EQ(m_states["IMG_0001.JPG"], State::Undecodable);
}

TEST_F(ThumbnailLoaderTest, aLargePictureIsShownWhereTheBoundAllowsIt) {
  LoaderLimits limits;
  limits.memory = 1'000'000;
  start(
      1, [picture = encoded(quadrants({1200, 900}), "png")](int) { return picture; }, limits);
  m_loader->setWork({request(0)});
  waitFor(1);
  EXPECT_EQ(m_states["IMG_0001.JPG"], State::Ready);
  EXPECT_EQ(m_photos->reads().count(), 2);
}
#endif

TEST_F(ThumbnailLoaderTest, endsAtOnceWhileADecoderHangs) {
  LoaderLimits limits;
  limits.decoder = UNRULY_DECODER;
  start(
      2, [](int index) { return index == 0 ? "hang" : "good"; }, limits);
  m_loader->setWork({request(0), request(1)});
  waitFor(1);
  const auto begin = std::chrono::steady_clock::now();
  m_loader.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

// A photo or film beside which its source has a small picture.
struct WithThumbnail final : ImageBrowserItem {
  std::string uid;
  QByteArray bytes, thumbnail;
  bool film = false, first = false;
  mutable bool wasRead = false;

  std::string imageUID() const override { return "IMG" + uid; }
  std::string imageTitle() const override { return uid; }
  std::optional<Bytes> imageRepresentation() const override {
    wasRead = true;
    return test::bytesFrom(bytes);
  }
  std::optional<Bytes> imageBeginning(std::size_t) const override { return imageRepresentation(); }
  std::optional<Bytes> imageThumbnail() const override {
    return thumbnail.isEmpty() ? std::nullopt : std::optional(test::bytesFrom(thumbnail));
  }
  bool isThumbnailFirst() const override { return first; }
  bool isFilm() const override { return film; }
  std::optional<std::chrono::milliseconds> filmLength() const override {
    return std::chrono::milliseconds(11'001);
  }
};

TEST_F(ThumbnailLoaderTest, takesWhatTheSourceHasBesideForFilmsAndWhereItComesFirst) {
  const QByteArray small = encoded(quadrants({64, 48})), large = encoded(quadrants({640, 480}));
  struct Case {
    QByteArray thumbnail;
    bool film, first;
    Kind kind;
    State state;
    bool hasPicture, isRead;
  };
  const Case cases[] = {{small, true, false, Kind::Decode, State::Ready, true, false},
                        {"", true, false, Kind::Preview, State::Ready, false, false},
                        {small, false, true, Kind::Preview, State::Preview, true, false},
                        {small, false, true, Kind::Decode, State::Ready, true, true},
                        {small, false, false, Kind::Preview, State::Preview, true, true},
                        {"bad", false, true, Kind::Preview, State::Unknown, false, true}};
  start(1, [](int) { return std::nullopt; });
  for (const Case& c : cases) {
    const auto item = std::make_shared<WithThumbnail>();
    item->uid = std::to_string(&c - cases);
    item->bytes = large;
    item->thumbnail = c.thumbnail;
    item->film = c.film;
    item->first = c.first;
    m_loader->setWork({{item, item->imageUID(), c.kind, 96, {}}});
    const std::string title = waitFor(static_cast<std::size_t>(&c - cases) + 1).back();
    const Thumbnail& result = m_thumbnails[title];
    EXPECT_EQ(result.state, c.state) << title;
    EXPECT_EQ(!result.picture.isNull(), c.hasPicture) << title;
    EXPECT_EQ(result.photoSize.isValid(), c.isRead && c.state == State::Ready) << title;
    EXPECT_EQ(item->wasRead, c.isRead) << title;
    EXPECT_EQ(result.isFilm, c.film);
    EXPECT_EQ(result.filmLength ? filmLengthText(*result.filmLength) : "", c.film ? "0:12" : "");
  }
}

TEST_F(ThumbnailLoaderTest, shrinksWhatIsLarger) {
  start(1, [](int) { return std::nullopt; });
  ThumbnailRequest shrink = request(0, Kind::Shrink);
  shrink.source.state = State::Ready;
  shrink.source.picture = quadrants({400, 300});
  shrink.source.photoSize = {4000, 3000};
  m_loader->setWork({shrink});
  waitFor(1);
  EXPECT_EQ(m_states["IMG_0001.JPG"], State::Ready);
  EXPECT_EQ(m_photos->reads().count(), 0);
}

}  // namespace
}  // namespace snaplift
