#include "pictures/PhotoFile.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <stdexcept>

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

enum class TiffType { Text = 2, Short = 3, Long = 4 };

// One entry of a TIFF directory; a short stands left in the four bytes of the value.
std::string tiffEntry(unsigned tag, TiffType type, std::size_t value, std::size_t count = 1) {
  return bigEndian(tag, 2) + bigEndian(static_cast<std::size_t>(type), 2) + bigEndian(count, 4) +
         bigEndian(type == TiffType::Short ? value << 16 : value, 4);
}

// "2011:10:12 08:30:00" and its terminator.
std::string exifTime(Instant instant) {
  std::string text = rfc3339Text(instant).substr(0, 19);
  std::replace(text.begin(), text.begin() + 10, '-', ':');
  text[10] = ' ';
  return text + '\0';
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
  const std::string time = exifTime(camera.taken);
  // A directory is the number of its entries, 12 bytes for each, and where the next one stands.
  constexpr std::size_t firstDirectory = 8;
  constexpr std::size_t timeAt = firstDirectory + 2 + std::size_t{2} * 12 + 4;
  const std::size_t secondDirectory = timeAt + time.size();
  const std::size_t previewAt = secondDirectory + 2 + std::size_t{3} * 12 + 4;
  std::string tiff = "MM" + bigEndian(42, 2) + bigEndian(firstDirectory, 4);
  tiff += bigEndian(2, 2) +
          tiffEntry(0x0112, TiffType::Short, static_cast<std::size_t>(camera.orientation)) +
          tiffEntry(0x0132, TiffType::Text, timeAt, time.size()) +
          bigEndian(preview.empty() ? 0 : secondDirectory, 4) + time;
  if (!preview.empty()) {
    tiff += bigEndian(3, 2) + tiffEntry(0x0103, TiffType::Short, 6) +
            tiffEntry(0x0201, TiffType::Long, previewAt) +
            tiffEntry(0x0202, TiffType::Long, preview.size()) + bigEndian(0, 4);
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
