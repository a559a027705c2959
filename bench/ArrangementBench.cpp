#include <QElapsedTimer>
#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "app/photos/BackupPhotos.h"
#include "bench/Ratio.h"
#include "bench/ViewMain.h"
#include "photos/PhotoArrangement.h"
#include "support/KnownPhotos.h"
#include "widgets/photogrid/ImageBrowserView.h"

// What it costs to order, group and find 100,000 photos, against 1,000; and how long one key holds
// up the window while somebody types.
namespace snaplift::bench {
namespace {

constexpr int few = 1'000;
constexpr int many = 100'000;
constexpr double growthBar = 150;  // 100 times as many, and half as much again
constexpr int rounds = 10;

// Of ten years and a hundred folders, with names that begin anew after 10,000, in no order.
std::vector<test::KnownPhoto> photosOf(int count) {
  std::mt19937 random(1);
  std::vector<int> numbers(static_cast<std::size_t>(count));
  std::iota(numbers.begin(), numbers.end(), 0);
  std::shuffle(numbers.begin(), numbers.end(), random);
  std::vector<test::KnownPhoto> photos;
  for (const int i : numbers) {
    const std::string name = "IMG_" + std::to_string(10'000 + i % 10'000).substr(1) + ".JPG";
    photos.push_back({"Media/DCIM/" + std::to_string(100 + i / 1'000) + "APPLE/" + name,
                      1'200'000'000 + static_cast<std::int64_t>(random() % 315'000'000),
                      random() % 5'000'000});
  }
  return photos;
}

class Arranged {
public:
  explicit Arranged(int count) : m_known(photosOf(count)), m_items(m_known.items()) {
    m_ready.setPhotos(m_items);
  }

  // With all that has to be found out for it.
  bool arrange(const PhotoWishes& wishes) const {
    bool isRight = true;
    for (int round = 0; round < rounds; ++round) {
      PhotoArrangement arrangement;
      arrangement.setPhotos(m_items);
      arrangement.setWishes(wishes);
      isRight = isRight && arrangement.showsAll() &&
                (!arrangement.months().empty() || &arrangement.photoAt(0) != m_items[0]);
    }
    return isRight;
  }
  bool type() {
    bool isRight = true;
    for (const char* text : {"i", "im", "img", "img_", "img_0", "img_00", "img_001", "june 2011"}) {
      m_ready.setWishes({.text = text});
      isRight = isRight && m_ready.count() > 0;
    }
    return isRight && !m_ready.showsAll();
  }

private:
  test::KnownPhotos m_known;
  std::vector<ImageItem*> m_items;
  PhotoArrangement m_ready;
};

// The photos for a browser.
class Shown : public ImageBrowserViewDataSource {
public:
  Shown() : m_known(photosOf(many)) { arrangement.setPhotos(m_known.items()); }

  int numberOfItemsInImageBrowser(const ImageBrowserView&) const override {
    return arrangement.count();
  }
  ImageBrowserItemPointer imageBrowserItemAtIndex(const ImageBrowserView&,
                                                  int index) const override {
    return std::make_shared<BackupPhoto>(arrangement.photoAt(index), m_folder, nullptr);
  }

  PhotoArrangement arrangement;

private:
  test::KnownPhotos m_known;
  const std::string m_folder;
};

// In milliseconds, from the key to the painted photos, the first key included: it has to find out
// what photos are found by.
double longestKey() {
  Shown photos;
  ImageBrowserView view;
  view.resize(1'000, 800);
  view.setThumbnailsSuspended(true);
  view.setDataSource(&photos);
  view.show();
  view.viewport()->repaint();
  view.selectAll();
  double longest = 0;
  for (const std::string typed : {"june 2011", "IMG_0123.JPG"}) {
    for (std::size_t length = 0; length <= typed.size(); ++length) {
      QElapsedTimer time;
      time.start();
      const std::vector<int> moves =
          photos.arrangement.setWishes({.text = typed.substr(0, length)});
      view.rearrangeData([&](int index) { return moves[static_cast<std::size_t>(index)]; });
      view.viewport()->repaint();
      longest = std::max(longest, static_cast<double>(time.nsecsElapsed()) / 1e6);
    }
  }
  return longest;
}

}  // namespace

int runViewBench(int argc, char** argv) {
  Ratios ratios;
  Arranged small(few);
  Arranged large(many);
  const auto compare = [&](const char* name, auto job) {
    ratios.group(name, PageCache::Hot)
        .floor("1,000 photos", [&small, job] { return job(small); })
        .subject("100,000 photos", growthBar, [&large, job] { return job(large); });
  };
  const auto arrange = [&](const char* name, const PhotoWishes& wishes) {
    compare(name, [wishes](Arranged& photos) { return photos.arrange(wishes); });
  };
  arrange("sort by date", {.order = PhotoOrder::Date});
  arrange("sort by name", {.order = PhotoOrder::Name, .isDescending = true});
  arrange("sort by size", {.order = PhotoOrder::Size});
  arrange("group by month", {.isByMonth = true});
  compare("eight keys of a filter", [](Arranged& photos) { return photos.type(); });
  ratios.figure("typing over 100,000 photos: longest key", "ms", 50, longestKey);
  return ratios.run(argc, argv);
}

}  // namespace snaplift::bench
