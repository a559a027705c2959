#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>

#include <gtest/gtest.h>

#include "SLAppDelegateFixture.h"
#include "app/details/DetailsText.h"
#include "app/details/PhotoDetails.h"
#include "app/photos/BackupPhotos.h"
#include "pictures/PhotoFile.h"
#include "support/photos/TestPictures.h"

namespace snaplift {
namespace {

constexpr std::int64_t taken = 1'318'408'200;  // October 12, 2011, 8:30

struct Photo {
  std::string path;
  std::string content = {};
  std::optional<std::uint64_t> size = 2'345'678;
  std::int64_t date = taken;
  ContentState state = ContentState::Whole;
};

class PhotoDetailsTest : public testing::Test, public ImageDataSource {
protected:
  PhotoDetailsTest() {
    qputenv("TZ", "UTC");
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    m_panel.resize(300, 600);
    m_panel.show();
  }
  ~PhotoDetailsTest() override { hold(""); }

  const ImageItem& add(Photo photo) {
    m_photos.push_back(std::move(photo));
    return *m_items.emplace_back(
        std::make_unique<ImageItem>("/b/" + m_photos.back().path, *this, m_photos.size() - 1));
  }
  void show(const ImageItem& photo) {
    m_panel.showPhoto(
        photo, std::make_shared<BackupPhoto>(const_cast<ImageItem&>(photo), m_folder, nullptr),
        nullptr);
  }
  bool isLoaded() {
    return QTest::qWaitFor([this] { return !m_panel.isLoading(); });
  }
  // Empty where the panel does not say it.
  std::string value(const char* caption) {
    const QLabel* label = m_panel.findChild<FactTable*>()->valueOf(caption);
    return label == nullptr ? "" : label->text().toStdString();
  }
  // While held, a photo of that path is not read.
  void hold(const std::string& path) {
    const std::lock_guard lock(m_mutex);
    m_held = path;
    m_released.notify_all();
  }

  std::optional<Bytes> imageDataForPath(const std::string& path, Bytes) const override {
    std::unique_lock lock(m_mutex);
    m_released.wait(lock, [&] { return m_held.empty() || !path.ends_with(m_held); });
    for (const Photo& photo : m_photos) {
      if (path == "/b/" + photo.path && photo.state != ContentState::Missing) {
        return Bytes::copyOf(bytesOf(photo.content));
      }
    }
    return std::nullopt;
  }
  std::optional<PhotoInfo> photoInfo(std::size_t index) const override {
    const Photo& photo = m_photos.at(index);
    PhotoInfo info = PhotoInfo::ofPath(photo.path);
    info.size = photo.size;
    info.birthDate = knownTime(instantFromUnixTime(photo.date));
    return info;
  }
  ContentState contentState(std::size_t index) const override { return m_photos.at(index).state; }

  static std::string photoTaken(std::int64_t date) {
    return samples::withExif(test::encoded(test::quadrants({64, 48})).toStdString(),
                             {.orientation = 6,
                              .taken = instantFromUnixTime(date),
                              .maker = "Maker",
                              .model = "Maker <b>4</b>",
                              .exposure = {{.perSecond = 125, .apertureTenths = 28, .iso = 100}},
                              .position = {{.latitude = -33.8568, .longitude = 151.2153}}},
                             {});
  }

  std::deque<Photo> m_photos;  // whose paths are referred to
  std::vector<std::unique_ptr<ImageItem>> m_items;
  const std::string m_folder = "/b";
  mutable std::mutex m_mutex;
  mutable std::condition_variable m_released;
  std::string m_held;
  PhotoDetails m_panel;
};

TEST_F(PhotoDetailsTest, sayWhatRecordAndFileSay) {
  show(add({"Media/DCIM/100APPLE/IMG_0001.JPG", photoTaken(taken + 59)}));
  ASSERT_TRUE(isLoaded());
  for (const auto& [caption, text] :
       std::map<const char*, std::string>{{"Date", "October 12, 2011, 8:30 AM"},
                                          {"Date (photo)", ""},
                                          {"Size", "2.3 MB (2,345,678 bytes)"},
                                          {"Pixels", "48 × 64"},
                                          {"Camera", "Maker <b>4</b>"},
                                          {"Exposure", "1/125 s, f/2.8, ISO 100"},
                                          {"Position", "33.85680° S, 151.21530° E"},
                                          {"Kind", "Original"},
                                          {"In the backup", "Whole"},
                                          {"On the device", "Media/DCIM/100APPLE/IMG_0001.JPG"}}) {
    EXPECT_EQ(value(caption), text) << caption;
  }
  EXPECT_EQ(m_panel.findChild<FactTable*>()->valueOf("Camera")->textFormat(), Qt::PlainText);
  m_panel.findChild<QPushButton*>()->click();
  EXPECT_EQ(QApplication::clipboard()->text(), "-33.856800, 151.215300");
}

TEST_F(PhotoDetailsTest, tellTwoDatesApart) {
  show(add({"1/a.JPG", photoTaken(taken - 3'600)}));
  ASSERT_TRUE(isLoaded());
  EXPECT_EQ(value("Date"), "");
  EXPECT_EQ(value("Date (record)"), "October 12, 2011, 8:30 AM");
  EXPECT_EQ(value("Date (photo)"), "October 12, 2011, 7:30 AM");
}

TEST_F(PhotoDetailsTest, sayNothingOfAnotherPhoto) {
  const ImageItem& first = add({"1/first.JPG", photoTaken(taken)});
  const ImageItem& second =
      add({"1/second.PNG", test::encoded(test::quadrants({8, 8}), "png").toStdString()});
  show(first);
  ASSERT_TRUE(isLoaded());
  ASSERT_NE(value("Camera"), "");
  hold("first.JPG");
  show(second);
  EXPECT_EQ(value("Camera") + value("Pixels") + value("Position"), "") << "at once";
  EXPECT_FALSE(m_panel.findChild<QPushButton*>()->isVisible());
  ASSERT_TRUE(isLoaded());
  show(first);
  show(second);
  hold("");
  ASSERT_TRUE(isLoaded());
  EXPECT_EQ(value("Pixels"), "8 × 8");
  EXPECT_EQ(value("Camera"), "");
}

TEST_F(PhotoDetailsTest, sayWhatIsThereOfAPhoto) {
  for (const auto& [state, text] : std::map<ContentState, std::string>{
           {ContentState::Whole, "Whole"},
           {ContentState::Short, "Of another length than the backup states"},
           {ContentState::Missing, "Missing"}}) {
    show(add({"1/" + text + ".JPG", photoTaken(taken), {}, 0, state}));
    ASSERT_TRUE(isLoaded());
    EXPECT_EQ(value("In the backup"), text);
  }
}

TEST_F(PhotoDetailsTest, addUpWhatIsSelected) {
  std::vector<const ImageItem*> photos{
      &add({"Media/DCIM/100APPLE/a.JPG", "", 1'000'000}),
      &add({"Media/DCIM/100APPLE/a.MOV", "", 9'000'000, taken + 86'400}),
      &add({"Media/PhotoData/CPLAssets/b.JPG", "", {}, 0})};
  PhotoSummer summer;
  std::vector<PhotoSums> told;
  QObject::connect(&summer, &PhotoSummer::summed,
                   [&](const PhotoSums& sums) { told.push_back(sums); });
  summer.sum({photos.front()});
  summer.sum(photos);
  ASSERT_TRUE(QTest::qWaitFor([&] { return !told.empty(); }));
  ASSERT_EQ(told.size(), 1U) << "the first is not wanted any more";
  m_panel.showSums("3 Selected", {}, told.front());
  EXPECT_EQ(value("Photos"), "2 photos and 1 film");
  EXPECT_EQ(value("Size"), "10.0 MB (10,000,000 bytes)");
  EXPECT_EQ(value("Dates"), "October 12, 2011 – October 13, 2011");
  EXPECT_EQ(value("Kinds"), "2 × Original\n1 × Cloud library");
}

class WindowDetailsTest : public SLAppDelegateTest {
protected:
  bool waitForBytes(std::size_t bytes) {
    return QTest::qWaitFor(
        [&] { return child<QLabel>("bytesText").text() == detailsText::bytes(bytes); });
  }
  void selectPhotos(const std::vector<int>& indexes) {
    IndexSet set(browser().itemCount());
    for (const int index : indexes) {
      set.insert(index);
    }
    browser().setSelectionIndexes(set);
  }
  PhotoDetails& panel() { return child<PhotoDetails>("details"); }
};

TEST_F(WindowDetailsTest, tellTheBytesOfTheSelectionElseOfAll) {
  launchWith(3);
  EXPECT_TRUE(waitForBytes(3 * m_picture.size()));
  selectPhotos({1, 2});
  EXPECT_TRUE(waitForBytes(2 * m_picture.size()));
  browser().deselectAll();
  EXPECT_TRUE(waitForBytes(3 * m_picture.size()));
}

TEST_F(WindowDetailsTest, followTheSelectionWhileTheyAreOpen) {
  launchWith(3);
  EXPECT_FALSE(panel().isVisible());
  action("actionGetInfo").trigger();
  const auto says = [&](const char* caption, const QString& text) {
    return QTest::qWaitFor([&] {
      const QLabel* label = panel().findChild<FactTable*>()->valueOf(caption);
      return label != nullptr && label->text() == text;
    });
  };
  EXPECT_TRUE(says("Photos", "3 photos"));
  selectPhotos({2});
  EXPECT_TRUE(says("On the device", "Media/DCIM/100APPLE/IMG_0003.PNG"));
  EXPECT_TRUE(says("Pixels", "32 × 24"));
  panel().findChild<QLabel*>()->setFocus();
  QTest::keyClick(panel().findChild<QLabel*>(), Qt::Key_Escape);
  EXPECT_EQ(m_delegate->window()->focusWidget(), &browser());
  EXPECT_TRUE(panel().isVisible());
  panel().findChild<QToolButton*>()->click();
  EXPECT_FALSE(panel().isVisible());
  EXPECT_FALSE(action("actionGetInfo").isChecked());
}

TEST_F(WindowDetailsTest, showALivePhotoOnceAndExportItsFilmWithIt) {
  samples::SampleBackup backup{.generation = samples::Generation::Ten,
                               .deviceName = "Anna's Phone",
                               .productVersion = "14.3",
                               .date = instantFromUnixTime(100)};
  for (const char* name : {"1.PNG", "1.MOV", "2.PNG", "3.MOV"}) {
    backup.files.push_back({.domain = "CameraRollDomain",
                            .path = std::string("Media/DCIM/100APPLE/") + name,
                            .content = m_picture});
  }
  samples::writeBackup(m_tree.path("root/a"), backup);
  launch();
  ASSERT_TRUE(QTest::qWaitFor([&] { return browser().itemCount() == 3; }));
  EXPECT_TRUE(waitForText("3 Photos"));
  EXPECT_TRUE(waitForBytes(4 * m_picture.size()));
  EXPECT_TRUE(browser().itemAtIndex(0)->isLivePhoto());
  EXPECT_FALSE(browser().itemAtIndex(1)->isLivePhoto());
  EXPECT_FALSE(browser().itemAtIndex(2)->isLivePhoto());
  dropAllPhotosInto("out");
  const auto arrived = [&] { return m_tree.list("out").size() == 4; };
  EXPECT_TRUE(QTest::qWaitFor(arrived)) << m_tree.list("out").size();
}

}  // namespace
}  // namespace snaplift
