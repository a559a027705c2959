#include <QCoreApplication>
#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <utility>
#include <vector>

#include <jpeglib.h>

#include "bench/CameraPhoto.h"
#include "bench/Ratio.h"
#include "support/photos/TestPhotos.h"
#include "support/photos/TestPictures.h"
#include "widgets/thumbnails/ThumbnailLoader.h"

// Thumbnails of camera photos against libjpeg-turbo's own decode of the same photos, scaled to an
// eighth while reading, on one thread.
namespace snaplift::bench {
namespace {

constexpr int photoCount = 8;
constexpr int screenfulCount = 24;  // tiles of a window at its first size
constexpr int cell = 147;           // pixels: a cell at the initial zoom

bool decodeWithLibjpeg(const QByteArray& photo) {
  jpeg_decompress_struct decoder;
  jpeg_error_mgr errors;
  decoder.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&decoder);
  jpeg_mem_src(&decoder, reinterpret_cast<const unsigned char*>(photo.constData()),
               static_cast<unsigned long>(photo.size()));
  jpeg_read_header(&decoder, TRUE);
  decoder.scale_num = 1;
  decoder.scale_denom = 8;
  jpeg_start_decompress(&decoder);
  std::vector<unsigned char> row(decoder.output_width * 3);
  unsigned char* rows[] = {row.data()};
  while (decoder.output_scanline < decoder.output_height) {
    jpeg_read_scanlines(&decoder, rows, 1);
  }
  const bool isRight = decoder.output_width == 504 && decoder.output_height == 378;
  jpeg_finish_decompress(&decoder);
  jpeg_destroy_decompress(&decoder);
  return isRight;
}

using Kind = ThumbnailRequest::Kind;

// A loader, and the wait for all that it is given.
class Loading {
public:
  explicit Loading(unsigned workers) : m_loader([this] { tell(); }, workers) {}

  // Whether the first `count` photos come with what was asked for.
  bool load(int count, const test::TestPhotos& photos, Kind kind, int pixels) {
    std::vector<ThumbnailRequest> work;
    for (int i = 0; i < count; ++i) {
      const ImageBrowserItemPointer item = photos.item(i);
      work.push_back({item, item->imageUID(), kind, pixels, {}});
    }
    m_loader.setWork(std::move(work));
    int shown = 0;
    for (int come = 0; come < count;) {
      std::unique_lock lock(m_mutex);
      m_changed.wait(lock, [&] { return std::exchange(m_waits, false); });
      lock.unlock();
      for (const ThumbnailResult& result : m_loader.takeResults()) {
        ++come;
        shown += result.thumbnail.picture.isNull() ? 0 : 1;
      }
    }
    return shown == count;
  }

private:
  void tell() {
    const std::lock_guard lock(m_mutex);
    m_waits = true;
    m_changed.notify_all();
  }

  std::mutex m_mutex;
  std::condition_variable m_changed;
  bool m_waits = false;
  ThumbnailLoader m_loader;  // last: its workers end before the rest does
};

int runThumbnailBench(int argc, char** argv) {
  std::vector<QByteArray> files;
  for (int i = 0; i < photoCount; ++i) {
    files.push_back(cameraPhoto(i));
  }
  const test::TestPhotos photos(screenfulCount, [&](int index) {
    return files[static_cast<std::size_t>(index % photoCount)];
  });
  const auto all = [&](const std::function<bool(const QByteArray&)>& job) {
    return std::all_of(files.begin(), files.end(), job);
  };
  const auto thumbnails = [&](unsigned workers) {
    return Loading(workers).load(photoCount, photos, Kind::Decode, thumbnailStep(cell));
  };
  Loading running(2);
  Ratios ratios;
  ratios.group("8 photos of 12 megapixels", PageCache::Hot)
      .floor("libjpeg-turbo at an eighth", [&] { return all(decodeWithLibjpeg); })
      .subject("thumbnails, one worker, started for it", 1.2, [&] { return thumbnails(1); })
      .subject("thumbnails, two workers, started for it", 0.68, [&] { return thumbnails(2); })
      .subject("embedded previews", 0.02,
               [&] { return running.load(photoCount, photos, Kind::Preview, cell); })
      .subject("a first screen of 24 previews, two workers", 0.06,
               [&] { return running.load(screenfulCount, photos, Kind::Preview, cell); })
      .subject("a first screen of 24 previews, two workers, started for it", 0.2,
               [&] { return Loading(2).load(screenfulCount, photos, Kind::Preview, cell); });
  return ratios.run(argc, argv);
}

}  // namespace
}  // namespace snaplift::bench

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  return snaplift::bench::runThumbnailBench(argc, argv);
}
