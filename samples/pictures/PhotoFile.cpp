#include "pictures/PhotoFile.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include <jpeglib.h>
#include <png.h>

#include "pictures/BigEndian.h"

namespace snaplift::samples {
namespace {

constexpr int photoQuality = 88;
constexpr int previewQuality = 75;
constexpr int previewSide = 160;

// The pixels that a camera stores which holds `orientation`: a viewer that honours the number shows
// the picture upright again. From 5 on, width and height change places.
Image storedAs(const Image& upright, int orientation) {
  const bool isTransposed = orientation >= 5;
  Image stored(isTransposed ? upright.height : upright.width,
               isTransposed ? upright.width : upright.height);
  for (int row = 0; row < stored.height; ++row) {
    for (int column = 0; column < stored.width; ++column) {
      const int x = isTransposed ? row : column, y = isTransposed ? column : row;
      // Where the stored rows and columns run against the upright picture's.
      const bool isFromRight = orientation % 4 >= 2, isFromBottom = (orientation - 1) % 4 >= 2;
      std::copy_n(upright.pixel(isFromRight ? upright.width - 1 - x : x,
                                isFromBottom ? upright.height - 1 - y : y),
                  3, stored.pixel(column, row));
    }
  }
  return stored;
}

// The picture in a smaller size; each new pixel is the mean of a square of those that it covers.
Image previewOf(const Image& image) {
  const int longSide = std::max(image.width, image.height);
  const int side = std::max(1, longSide / previewSide), count = side * side;
  Image small(image.width * previewSide / longSide, image.height * previewSide / longSide);
  for (int place = 0; place < 3 * small.width * small.height; ++place) {
    const int left = place / 3 % small.width * image.width / small.width;
    const int top = place / 3 / small.width * image.height / small.height;
    int sum = 0;
    for (int i = 0; i < count; ++i) {
      sum += image.pixel(left + i % side, top + i / side)[place % 3];
    }
    small.bytes[static_cast<std::size_t>(place)] = static_cast<std::uint8_t>(sum / count);
  }
  return small;
}

std::string jpegOf(const Image& image, int quality) {
  return jpegOfPixels(image.bytes.data(), image.width, image.height, 3, quality);
}

enum class TiffType { Text = 2, Short = 3, Long = 4, Ratio = 5 };

struct TiffEntry {
  unsigned tag;
  TiffType type;
  std::string value;  // big-endian
  std::size_t count = 1;
};
using TiffDirectory = std::vector<TiffEntry>;  // by tag

constexpr std::size_t inlineSize = 4;  // what stands in the entry itself

// A directory is the number of its entries, 12 bytes for each, and where the next one stands; then
// come the values that are too long for their entries.
std::size_t sizeOf(const TiffDirectory& directory) {
  std::size_t size = 2 + 12 * directory.size() + 4;
  for (const TiffEntry& entry : directory) {
    size += entry.value.size() > inlineSize ? entry.value.size() : 0;
  }
  return size;
}

std::string bytesOf(const TiffDirectory& directory, std::size_t at, std::size_t next = 0) {
  std::string bytes = bigEndian(directory.size(), 2);
  std::string values;
  const std::size_t valuesAt = at + 2 + 12 * directory.size() + 4;
  for (const TiffEntry& entry : directory) {
    bytes += bigEndian(entry.tag, 2) + bigEndian(static_cast<std::size_t>(entry.type), 2) +
             bigEndian(entry.count, 4);
    if (entry.value.size() > inlineSize) {
      bytes += bigEndian(valuesAt + values.size(), 4);
      values += entry.value;
    } else {
      bytes += entry.value + std::string(inlineSize - entry.value.size(), '\0');
    }
  }
  return bytes + bigEndian(next, 4) + values;
}

TiffEntry text(unsigned tag, std::string value) {
  value += '\0';
  const std::size_t count = value.size();
  return {tag, TiffType::Text, std::move(value), count};
}

TiffEntry number(unsigned tag, TiffType type, std::size_t value) {
  return {tag, type, bigEndian(value, type == TiffType::Short ? 2 : 4)};
}

TiffEntry ratio(unsigned tag, std::size_t numerator, std::size_t denominator) {
  return {tag, TiffType::Ratio, bigEndian(numerator, 4) + bigEndian(denominator, 4)};
}

// In degrees, minutes and hundredths of seconds.
TiffEntry degrees(unsigned tag, double value) {
  const auto hundredths = static_cast<std::size_t>(std::lround(std::abs(value) * 360'000));
  return {tag, TiffType::Ratio,
          bigEndian(hundredths / 360'000, 4) + bigEndian(1, 4) +
              bigEndian(hundredths / 6'000 % 60, 4) + bigEndian(1, 4) +
              bigEndian(hundredths % 6'000, 4) + bigEndian(100, 4),
          3};
}

TiffDirectory exposureOf(const CameraData& camera) {
  return !camera.exposure ? TiffDirectory()
                          : TiffDirectory{ratio(0x829A, 1, camera.exposure->perSecond),
                                          ratio(0x829D, camera.exposure->apertureTenths, 10),
                                          number(0x8827, TiffType::Short, camera.exposure->iso)};
}

TiffDirectory positionOf(const CameraData& camera) {
  if (!camera.position) {
    return {};
  }
  const auto& [latitude, longitude] = *camera.position;
  return {text(1, latitude < 0 ? "S" : "N"), degrees(2, latitude),
          text(3, longitude < 0 ? "W" : "E"), degrees(4, longitude)};
}

// "2011:10:12 08:30:00".
std::string exifTime(Instant instant) {
  std::string text = rfc3339Text(instant).substr(0, 19);
  std::replace(text.begin(), text.begin() + 10, '-', ':');
  text[10] = ' ';
  return text;
}

}  // namespace

std::string jpegOfPixels(const std::uint8_t* pixels, int width, int height, int channels,
                         int quality) {
  jpeg_compress_struct encoder{};
  jpeg_error_mgr errors{};
  encoder.err = jpeg_std_error(&errors);
  jpeg_create_compress(&encoder);
  unsigned char* bytes = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&encoder, &bytes, &size);
  encoder.image_width = static_cast<JDIMENSION>(width);
  encoder.image_height = static_cast<JDIMENSION>(height);
  encoder.input_components = channels;
  encoder.in_color_space = channels == 3 ? JCS_RGB : JCS_CMYK;
  jpeg_set_defaults(&encoder);
  jpeg_set_quality(&encoder, quality, TRUE);
  encoder.write_JFIF_header = FALSE;  // EXIF wants to be the first segment
  encoder.write_Adobe_marker = channels == 4 ? TRUE : FALSE;
  jpeg_start_compress(&encoder, TRUE);
  const std::ptrdiff_t rowLength = std::ptrdiff_t{width} * channels;
  for (int y = 0; y < height; ++y, pixels += rowLength) {
    auto* row = const_cast<JSAMPLE*>(pixels);  // the encoder only reads it
    jpeg_write_scanlines(&encoder, &row, 1);
  }
  jpeg_finish_compress(&encoder);
  jpeg_destroy_compress(&encoder);
  const std::unique_ptr<unsigned char, void (*)(void*)> owned(bytes, std::free);
  return {reinterpret_cast<const char*>(bytes), size};
}

std::string plainJpeg(const Image& image) {
  return jpegOf(image, previewQuality);
}

std::string jpegPhoto(const Image& upright, const CameraData& camera) {
  const Image stored = storedAs(upright, camera.orientation);
  return withExif(jpegOf(stored, photoQuality), camera, jpegOf(previewOf(stored), previewQuality));
}

std::string withExif(std::string_view jpeg, const CameraData& camera, std::string_view preview) {
  constexpr std::size_t mainAt = 8;
  const TiffDirectory exposure = exposureOf(camera), position = positionOf(camera);
  TiffDirectory main;
  if (!camera.maker.empty()) {
    main.push_back(text(0x010F, camera.maker));
  }
  if (!camera.model.empty()) {
    main.push_back(text(0x0110, camera.model));
  }
  main.push_back(number(0x0112, TiffType::Short, static_cast<std::size_t>(camera.orientation)));
  main.push_back(text(0x0132, exifTime(camera.taken)));
  // What an entry points to does not change its size.
  const std::size_t pointers = (exposure.empty() ? 0 : 1) + (position.empty() ? 0 : 1);
  const std::size_t exposureAt = mainAt + sizeOf(main) + 12 * pointers;
  const std::size_t positionAt = exposureAt + (exposure.empty() ? 0 : sizeOf(exposure));
  const std::size_t previewEntryAt = positionAt + (position.empty() ? 0 : sizeOf(position));
  if (!exposure.empty()) {
    main.push_back(number(0x8769, TiffType::Long, exposureAt));
  }
  if (!position.empty()) {
    main.push_back(number(0x8825, TiffType::Long, positionAt));
  }
  std::string tiff = "MM" + bigEndian(42, 2) + bigEndian(mainAt, 4);
  tiff += bytesOf(main, mainAt, preview.empty() ? 0 : previewEntryAt);
  tiff += exposure.empty() ? "" : bytesOf(exposure, exposureAt);
  tiff += position.empty() ? "" : bytesOf(position, positionAt);
  if (!preview.empty()) {
    TiffDirectory small{number(0x0103, TiffType::Short, 6), number(0x0201, TiffType::Long, 0),
                        number(0x0202, TiffType::Long, preview.size())};
    small[1] = number(0x0201, TiffType::Long, previewEntryAt + sizeOf(small));
    tiff += bytesOf(small, previewEntryAt);
    tiff += preview;
  }
  constexpr std::string_view name("Exif\0\0", 6);
  const std::size_t length = 2 + name.size() + tiff.size();
  if (length > 0xFFFF) {
    throw std::runtime_error("a preview is too large for its segment");
  }
  std::string file(jpeg.substr(0, 2));
  file.append("\xFF\xE1").append(bigEndian(length, 2)).append(name).append(tiff);
  return file.append(jpeg.substr(2));
}

std::string pngPicture(const Image& image) {
  png_image encoder{};
  encoder.version = PNG_IMAGE_VERSION;
  encoder.width = static_cast<png_uint_32>(image.width);
  encoder.height = static_cast<png_uint_32>(image.height);
  encoder.format = PNG_FORMAT_RGB;
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(encoder);
  std::string bytes(size, '\0');
  if (png_image_write_to_memory(&encoder, bytes.data(), &size, 0, image.bytes.data(), 0, nullptr) ==
      0) {
    throw std::runtime_error("cannot encode a PNG");
  }
  bytes.resize(size);
  return bytes;
}

}  // namespace snaplift::samples
