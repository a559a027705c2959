#include <condition_variable>
#include <map>
#include <mutex>

#include <gtest/gtest.h>

#include "samples/browser/TestPhotos.h"
#include "samples/browser/TestPictures.h"
#include "toolkit/ThumbnailLoader.h"

namespace snaplift {
namespace {

using Kind = ThumbnailRequest::Kind;
using State = Thumbnail::State;
using test::encoded;
using test::quadrants;

class ThumbnailLoaderTest : public testing::Test {
protected:
  void start(unsigned workers, test::PhotoReads::Source source, const DecodeLimits& limits = {}) {
    m_photos.emplace(1'000, std::move(source));
    m_loader.emplace([this] { tell(); }, workers, limits);
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
      }
    }
    return m_titles;
  }

  std::optional<test::TestPhotos> m_photos;
  std::optional<ThumbnailLoader> m_loader;
  std::map<std::string, State> m_states;

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
    switch (index % 3) {
      case 0:
        return std::nullopt;
      case 1:
        return "no picture";
      default:
        return good;
    }
  });
  std::vector<ThumbnailRequest> work;
  for (int i = 0; i < 30; ++i) {
    work.push_back(request(i, i < 15 ? Kind::Preview : Kind::Decode));
  }
  m_loader->setWork(std::move(work));
  waitFor(30);
  EXPECT_EQ(m_states["IMG_0001.JPG"], State::Unreadable);
  EXPECT_EQ(m_states["IMG_0002.JPG"], State::Undecodable);
  EXPECT_EQ(m_states["IMG_0003.JPG"], State::Unknown);
  EXPECT_EQ(m_states["IMG_0028.JPG"], State::Unreadable);
  EXPECT_EQ(m_states["IMG_0029.JPG"], State::Undecodable);
  EXPECT_EQ(m_states["IMG_0030.JPG"], State::Ready);
  EXPECT_TRUE(m_loader->isIdle());
}

// A picture that says that it is progressive and large: 10,000 by 7,000 with three full components.
QByteArray heavyPicture() {
  QByteArray jpeg = encoded(quadrants({64, 48}));
  const qsizetype frame = jpeg.indexOf(QByteArray("\xFF\xC0", 2));
  jpeg[frame + 1] = '\xC2';
  jpeg.replace(frame + 5, 4, QByteArray::fromHex("1b582710"));
  return jpeg;
}

TEST_F(ThumbnailLoaderTest, heavyPicturesComeBehindAllOthers) {
  DecodeLimits limits;
  limits.time = std::chrono::milliseconds(0);  // what is begun ends at once
  start(
      1,
      [heavy = heavyPicture(), light = encoded(quadrants({64, 48}))](int index) {
        return index < 2 ? heavy : light;
      },
      limits);
  m_photos->reads().hold(true);
  m_loader->setWork({request(0), request(1), request(2), request(3)});
  m_photos->reads().hold(false);
  EXPECT_EQ(waitFor(4), (std::vector<std::string>{"IMG_0003.JPG", "IMG_0004.JPG", "IMG_0001.JPG",
                                                  "IMG_0002.JPG"}));
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
