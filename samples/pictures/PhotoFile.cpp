#include "pictures/PhotoFile.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string_view>

#include <jpeglib.h>
#include <libexif/exif-data.h>
#include <png.h>

namespace snaplift::samples {
namespace {

constexpr int photoQuality = 88;
constexpr int previewQuality = 75;
constexpr int previewWidth = 160;
constexpr int previewHeight = 120;

// An APP1 segment states its length in 16 bits, and counts those two bytes.
constexpr std::size_t maximumSegmentLength = 65533;

[[noreturn]] void failed(j_common_ptr) {
  throw std::runtime_error("cannot encode a JPEG");
}

// libjpeg's own buffer, which it frees with the C library.
struct JpegOutput {
  ~JpegOutput() { std::free(bytes); }
  unsigned char* bytes = nullptr;
  unsigned long size = 0;
};

std::string jpegOf(const Image& image, int quality, std::string_view exif) {
  jpeg_compress_struct encoder{};
  jpeg_error_mgr errors{};
  encoder.err = jpeg_std_error(&errors);
  errors.error_exit = failed;
  jpeg_create_compress(&encoder);
  const std::unique_ptr<jpeg_compress_struct, void (*)(j_compress_ptr)> guard(
      &encoder, jpeg_destroy_compress);
  JpegOutput output;
  jpeg_mem_dest(&encoder, &output.bytes, &output.size);
  encoder.image_width = static_cast<JDIMENSION>(image.width);
  encoder.image_height = static_cast<JDIMENSION>(image.height);
  encoder.input_components = 3;
  encoder.in_color_space = JCS_RGB;
  jpeg_set_defaults(&encoder);
  jpeg_set_quality(&encoder, quality, TRUE);
  encoder.write_JFIF_header = exif.empty() ? TRUE : FALSE;  // EXIF wants to be the first segment
  jpeg_start_compress(&encoder, TRUE);
  if (!exif.empty()) {
    jpeg_write_marker(&encoder, JPEG_APP0 + 1, reinterpret_cast<const JOCTET*>(exif.data()),
                      static_cast<unsigned>(exif.size()));
  }
  for (int y = 0; y < image.height; ++y) {
    auto* row = const_cast<JSAMPLE*>(image.pixel(0, y));  // the encoder only reads it
    jpeg_write_scanlines(&encoder, &row, 1);
  }
  jpeg_finish_compress(&encoder);
  return {reinterpret_cast<const char*>(output.bytes), output.size};
}

// "2011:10:12 08:30:00".
std::string exifTime(Instant instant) {
  std::string text = rfc3339Text(instant).substr(0, 19);
  std::replace(text.begin(), text.begin() + 10, '-', ':');
  text[10] = ' ';
  return text;
}

class ExifWriter {
public:
  ExifWriter() : m_data(exif_data_new(), exif_data_unref) {
    exif_data_set_byte_order(m_data.get(), m_order);
  }

  void addShort(ExifIfd directory, ExifTag tag, int value) {
    const ExifEntry* entry = add(directory, tag, EXIF_FORMAT_SHORT, 1, 2);
    exif_set_short(entry->data, m_order, static_cast<ExifShort>(value));
  }

  void addText(ExifIfd directory, ExifTag tag, const std::string& text) {
    const std::size_t size = text.size() + 1;
    const ExifEntry* entry = add(directory, tag, EXIF_FORMAT_ASCII, size, size);
    std::memcpy(entry->data, text.c_str(), size);
  }

  // The whole block, with `preview` as its thumbnail.
  std::string bytes(const std::string& preview) {
    m_data->data = static_cast<unsigned char*>(std::malloc(preview.size()));  // freed by libexif
    std::memcpy(m_data->data, preview.data(), preview.size());
    m_data->size = static_cast<unsigned>(preview.size());
    unsigned char* bytes = nullptr;
    unsigned size = 0;
    exif_data_save_data(m_data.get(), &bytes, &size);
    const std::unique_ptr<unsigned char, decltype(&std::free)> guard(bytes, std::free);
    return {reinterpret_cast<const char*>(bytes), size};
  }

private:
  const ExifEntry* add(ExifIfd directory, ExifTag tag, ExifFormat format, std::size_t components,
                       std::size_t size) {
    ExifEntry* entry = exif_entry_new();
    entry->tag = tag;
    entry->format = format;
    entry->components = components;
    entry->size = static_cast<unsigned>(size);
    entry->data = static_cast<unsigned char*>(std::calloc(size, 1));  // freed by libexif
    exif_content_add_entry(m_data->ifd[directory], entry);
    exif_entry_unref(entry);  // the directory holds it
    return entry;
  }

  std::unique_ptr<ExifData, void (*)(ExifData*)> m_data;
  const ExifByteOrder m_order = EXIF_BYTE_ORDER_MOTOROLA;
};

std::string previewOf(const Image& stored) {
  const int longSide = std::max(stored.width, stored.height);
  const int side = stored.width >= stored.height ? previewWidth : previewHeight;
  const int longest = stored.width >= stored.height ? side : side * stored.height / stored.width;
  return jpegOf(
      scaledDown(stored, stored.width * longest / longSide, stored.height * longest / longSide),
      previewQuality, {});
}

}  // namespace

std::string jpegPhoto(const Image& upright, const CameraData& camera) {
  const Image stored = storedWithOrientation(upright, camera.orientation);
  ExifWriter exif;
  exif.addShort(EXIF_IFD_0, EXIF_TAG_ORIENTATION, camera.orientation);
  exif.addText(EXIF_IFD_0, EXIF_TAG_DATE_TIME, exifTime(camera.taken));
  exif.addText(EXIF_IFD_EXIF, EXIF_TAG_DATE_TIME_ORIGINAL, exifTime(camera.taken));
  const std::string block = exif.bytes(previewOf(stored));
  if (block.size() > maximumSegmentLength) {
    throw std::runtime_error("a preview is too large for its segment");
  }
  return jpegOf(stored, photoQuality, block);
}

std::string pngPicture(const Image& image) {
  png_image encoder{};
  encoder.version = PNG_IMAGE_VERSION;
  encoder.width = static_cast<png_uint_32>(image.width);
  encoder.height = static_cast<png_uint_32>(image.height);
  encoder.format = PNG_FORMAT_RGB;
  png_alloc_size_t size = 0;
  std::string bytes;
  if (png_image_write_to_memory(&encoder, nullptr, &size, 0, image.bytes.data(), 0, nullptr)) {
    bytes.resize(size);
    png_image_write_to_memory(&encoder, bytes.data(), &size, 0, image.bytes.data(), 0, nullptr);
  }
  if (PNG_IMAGE_FAILED(encoder)) {
    throw std::runtime_error("cannot encode a PNG");
  }
  return bytes;
}

}  // namespace snaplift::samples
