#include <QCoreApplication>
#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <vector>

#include <jpeglib.h>

#include "bench/CameraPhoto.h"
#include "bench/Ratio.h"
#include "samples/browser/TestPhotos.h"
#include "samples/browser/TestPictures.h"
#include "toolkit/ThumbnailLoader.h"

// Thumbnails of camera photos against libjpeg-turbo's own decode of the same photos, scaled to an
// eighth while reading, on one thread.
namespace snaplift::bench {
namespace {

constexpr int photoCount = 8;
constexpr int cell = 147;  // pixels: a cell at the initial zoom

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

bool loadAll(const test::TestPhotos& photos, unsigned workers) {
  std::mutex mutex;
  std::condition_variable changed;
  bool waiting = false;
  ThumbnailLoader loader(
      [&] {
        const std::lock_guard lock(mutex);
        waiting = true;
        changed.notify_all();
      },
      workers);
  std::vector<ThumbnailRequest> work;
  for (int i = 0; i < photoCount; ++i) {
    const ImageBrowserItemPointer item = photos.item(i);
    work.push_back(
        {item, item->imageUID(), ThumbnailRequest::Kind::Decode, thumbnailStep(cell), {}});
  }
  loader.setWork(std::move(work));
  int ready = 0;
  for (int come = 0; come < photoCount;) {
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return waiting; });
    waiting = false;
    lock.unlock();
    for (const ThumbnailResult& result : loader.takeResults()) {
      ++come;
      ready += result.thumbnail.state == Thumbnail::State::Ready ? 1 : 0;
    }
  }
  return ready == photoCount;
}

int runThumbnailBench(int argc, char** argv) {
  std::vector<QByteArray> files;
  for (int i = 0; i < photoCount; ++i) {
    files.push_back(cameraPhoto(i));
  }
  const test::TestPhotos photos(photoCount,
                                [&](int index) { return files[static_cast<std::size_t>(index)]; });
  const auto all = [&](const std::function<bool(const QByteArray&)>& job) {
    return std::all_of(files.begin(), files.end(), job);
  };
  Ratios ratios;
  ratios.group("8 photos of 12 megapixels", PageCache::Hot)
      .floor("libjpeg-turbo at an eighth", [&] { return all(decodeWithLibjpeg); })
      .subject("thumbnails, one worker", 1.15, [&] { return loadAll(photos, 1); })
      .subject("thumbnails, two workers", 0.62, [&] { return loadAll(photos, 2); })
      .subject("embedded previews", 0.01, [&] {
        return all([](const QByteArray& file) {
          return embeddedPreview(test::viewOf(file), cell, {}).state == Thumbnail::State::Preview;
        });
      });
  return ratios.run(argc, argv);
}

}  // namespace
}  // namespace snaplift::bench

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  return snaplift::bench::runThumbnailBench(argc, argv);
}
