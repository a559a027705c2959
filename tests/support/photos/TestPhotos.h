#pragma once

#include <QByteArray>
#include <QImage>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

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
  void setCount(int count) { m_count = count; }

  int numberOfItemsInImageBrowser(const ImageBrowserView&) const override { return m_count; }
  ImageBrowserItemPointer imageBrowserItemAtIndex(const ImageBrowserView&,
                                                  int index) const override;
  QString imageBrowserTitleAtIndex(const ImageBrowserView&, int index) const override;

  ImageBrowserItemPointer item(int index) const;

private:
  int m_count;
  std::string m_folder;
  std::shared_ptr<PhotoReads> m_reads;
};

}  // namespace snaplift::test
