#pragma once

#include <QByteArray>
#include <QImage>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "widgets/photogrid/ImageBrowserViewDataSource.h"

namespace snaplift::test {

// What the photos of TestPhotos share with the workers that read them. All functions may be called
// from any thread.
class PhotoReads {
public:
  using Source = std::function<std::optional<QByteArray>(int index)>;

  explicit PhotoReads(Source source) : m_source(std::move(source)) {}

  std::optional<Bytes> read(int index, std::size_t size = SIZE_MAX);
  int count() const;
  // While held, every read waits; the destructor of whoever holds must release.
  void hold(bool held);
  // Waits until `readers` reads wait.
  void waitForHeld(int readers);

  std::atomic<int> subtitles = 0;  // how many were asked for

private:
  Source m_source;
  mutable std::mutex m_mutex;
  std::condition_variable m_changed;
  int m_count = 0;
  int m_waiting = 0;
  bool m_held = false;
};

// Photos called IMG_0001.JPG and so on, whose bytes come from a function.
class TestPhotos final : public ImageBrowserViewDataSource {
public:
  TestPhotos(int count, PhotoReads::Source source, std::string folder = "/100APPLE");
  // All of them one small picture.
  explicit TestPhotos(int count);

  PhotoReads& reads() { return *m_reads; }
  void setCount(int count);
  // Shows these photos, by their number from 0 on, in this order.
  void setOrder(std::vector<int> order) { m_order = std::move(order); }
  void setGroups(std::vector<ImageBrowserGroup> groups) { m_groups = std::move(groups); }

  int numberOfItemsInImageBrowser(const ImageBrowserView&) const override {
    return static_cast<int>(m_order.size());
  }
  std::vector<ImageBrowserGroup> groupsOfItemsInImageBrowser(
      const ImageBrowserView&) const override {
    return m_groups;
  }
  ImageBrowserItemPointer imageBrowserItemAtIndex(const ImageBrowserView&,
                                                  int index) const override;
  QString imageBrowserTitleAtIndex(const ImageBrowserView&, int index) const override;

  ImageBrowserItemPointer item(int number) const;

private:
  std::vector<int> m_order;
  std::vector<ImageBrowserGroup> m_groups;
  std::string m_folder;
  std::shared_ptr<PhotoReads> m_reads;
};

}  // namespace snaplift::test
