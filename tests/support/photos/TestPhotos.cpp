#include "support/photos/TestPhotos.h"

#include <numeric>

#include "support/photos/TestPictures.h"

namespace snaplift::test {
namespace {

std::string titleOf(int index) {
  std::string number = std::to_string(index + 1);
  number.insert(0, number.size() < 4 ? 4 - number.size() : 0, '0');
  return "IMG_" + number + ".JPG";
}

class TestPhoto final : public ImageBrowserItem {
public:
  TestPhoto(int index, std::string folder, std::shared_ptr<PhotoReads> reads)
      : m_index(index), m_folder(std::move(folder)), m_reads(std::move(reads)) {}

  std::string imageUID() const override { return m_folder + "/" + imageTitle(); }
  std::string imageTitle() const override { return titleOf(m_index); }
  std::optional<Bytes> imageRepresentation() const override { return m_reads->read(m_index); }
  std::optional<Bytes> imageBeginning(std::size_t size) const override {
    return m_reads->read(m_index, size);
  }
  // "June 1" and so on; every third is a live photo.
  std::string imageSubtitle() const override {
    ++m_reads->subtitles;
    return "June " + std::to_string(m_index % 30 + 1);
  }
  bool isLivePhoto() const override { return m_index % 3 == 2; }
  std::string imageDescription(std::int64_t) const override { return m_folder; }

private:
  int m_index;
  std::string m_folder;
  std::shared_ptr<PhotoReads> m_reads;
};

}  // namespace

std::optional<Bytes> PhotoReads::read(int index, std::size_t size) {
  {
    std::unique_lock lock(m_mutex);
    ++m_count;
    ++m_waiting;
    m_changed.notify_all();
    m_changed.wait(lock, [this] { return !m_held; });
    --m_waiting;
  }
  const std::optional<QByteArray> data = m_source(index);
  const ByteView bytes = data ? viewOf(*data) : ByteView();
  return data ? std::optional(Bytes::copyOf(bytes.first(std::min(size, bytes.size()))))
              : std::nullopt;
}

int PhotoReads::count() const {
  const std::lock_guard lock(m_mutex);
  return m_count;
}

void PhotoReads::hold(bool held) {
  const std::lock_guard lock(m_mutex);
  m_held = held;
  m_changed.notify_all();
}

void PhotoReads::waitForHeld(int readers) {
  std::unique_lock lock(m_mutex);
  m_changed.wait(lock, [&] { return m_waiting >= readers; });
}

TestPhotos::TestPhotos(int count, PhotoReads::Source source, std::string folder)
    : m_folder(std::move(folder)), m_reads(std::make_shared<PhotoReads>(std::move(source))) {
  setCount(count);
}

TestPhotos::TestPhotos(int count)
    : TestPhotos(count, [picture = encoded(quadrants({64, 48}))](int) { return picture; }) {}

void TestPhotos::setCount(int count) {
  m_order.resize(static_cast<std::size_t>(count));
  std::iota(m_order.begin(), m_order.end(), 0);
}

ImageBrowserItemPointer TestPhotos::item(int number) const {
  return std::make_shared<TestPhoto>(number, m_folder, m_reads);
}

ImageBrowserItemPointer TestPhotos::imageBrowserItemAtIndex(const ImageBrowserView&,
                                                            int index) const {
  return item(m_order.at(static_cast<std::size_t>(index)));
}

QString TestPhotos::imageBrowserTitleAtIndex(const ImageBrowserView&, int index) const {
  return QString::fromStdString(titleOf(m_order.at(static_cast<std::size_t>(index))));
}

}  // namespace snaplift::test
