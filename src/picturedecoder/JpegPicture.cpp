#include "picturedecoder/JpegPicture.h"

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

#include <jerror.h>
#include <jpeglib.h>

namespace snaplift {
namespace {

// A scan costs the decoder a walk over the whole picture, and the file a dozen bytes. Cameras and
// editors write ten; what comes behind this many is not looked at.
constexpr int maxScans = 100;
constexpr int exifMarker = JPEG_APP0 + 1;
constexpr int profileMarker = JPEG_APP0 + 2;
constexpr unsigned wholeSegment = 0xFFFF;

// The decoder of libjpeg with what its callbacks need. Errors leave it by longjmp: between a
// setjmp() and its end stands no object that has a destructor.
struct JpegDecoder {
  jpeg_decompress_struct jpeg{};
  jpeg_error_mgr errors{};
  jpeg_progress_mgr progress{};
  std::jmp_buf escape{};
  bool isDamaged = false;
  bool hasNoMemory = false;

  explicit JpegDecoder(ByteView bytes);
  JpegDecoder(const JpegDecoder&) = delete;
  JpegDecoder& operator=(const JpegDecoder&) = delete;
  ~JpegDecoder() { jpeg_destroy_decompress(&jpeg); }
};

JpegDecoder& ownerOf(j_common_ptr jpeg) {
  return *static_cast<JpegDecoder*>(jpeg->client_data);
}

void leave(j_common_ptr jpeg) {
  JpegDecoder& decoder = ownerOf(jpeg);
  const int reason = jpeg->err->msg_code;
  decoder.hasNoMemory = reason == JERR_OUT_OF_MEMORY || reason == JERR_NO_BACKING_STORE;
  std::longjmp(decoder.escape, 1);
}

void note(j_common_ptr jpeg, int level) {
  const int warning = jpeg->err->msg_code;
  const bool isHarmless = warning == JWRN_EXTRANEOUS_DATA || warning == JWRN_ADOBE_XFORM ||
                          warning == JWRN_JFIF_MAJOR || warning == JWRN_BOGUS_ICC;
  ownerOf(jpeg).isDamaged |= level < 0 && !isHarmless;
}

void countScans(j_common_ptr jpeg) {
  if (ownerOf(jpeg).jpeg.input_scan_number > maxScans) {
    leave(jpeg);
  }
}

JpegDecoder::JpegDecoder(ByteView bytes) {
  jpeg.err = jpeg_std_error(&errors);
  jpeg.client_data = this;
  errors.error_exit = leave;
  errors.emit_message = note;
  errors.output_message = [](j_common_ptr) {};
  if (setjmp(escape) != 0) {
    throw std::bad_alloc();  // nothing but memory is asked for here
  }
  jpeg_create_decompress(&jpeg);
  jpeg_mem_src(&jpeg, bytes.data(), static_cast<unsigned long>(bytes.size()));
  progress.progress_monitor = countScans;
  jpeg.progress = &progress;
  jpeg_save_markers(&jpeg, exifMarker, wholeSegment);
  jpeg_save_markers(&jpeg, profileMarker, wholeSegment);
}

// False where libjpeg gives up.
bool readHeader(JpegDecoder& decoder) {
  if (setjmp(decoder.escape) != 0) {
    return false;
  }
  return jpeg_read_header(&decoder.jpeg, TRUE) == JPEG_HEADER_OK;
}

bool start(JpegDecoder& decoder) {
  if (setjmp(decoder.escape) != 0) {
    return false;
  }
  return jpeg_start_decompress(&decoder.jpeg) != 0;
}

bool readRow(JpegDecoder& decoder, std::uint8_t* row) {
  if (setjmp(decoder.escape) != 0) {
    return false;
  }
  return jpeg_read_scanlines(&decoder.jpeg, &row, 1) == 1;
}

std::vector<std::uint8_t> profileOf(JpegDecoder& decoder) {
  JOCTET* data = nullptr;
  unsigned length = 0;
  if (setjmp(decoder.escape) != 0 || !jpeg_read_icc_profile(&decoder.jpeg, &data, &length)) {
    return {};
  }
  const std::unique_ptr<JOCTET, void (*)(void*)> owner(data, &std::free);
  return {data, data + length};
}

Exif exifOf(const JpegDecoder& decoder) {
  for (const auto* marker = decoder.jpeg.marker_list; marker != nullptr; marker = marker->next) {
    const ByteView segment(marker->data, marker->data_length);
    if (marker->marker == exifMarker && textOf(segment).starts_with("Exif")) {
      return Exif::read(segment);
    }
  }
  return {};
}

PictureSize sizeOf(const JpegDecoder& decoder) {
  return {decoder.jpeg.image_width, decoder.jpeg.image_height};
}

// The most that the decoder can scale down by while both sides stay as long as they will be.
unsigned scaleFor(PictureSize size, PictureSize wanted) {
  unsigned scale = 8;
  const auto isEnough = [&] {
    return size.width / scale >= wanted.width && size.height / scale >= wanted.height;
  };
  while (scale > 1 && !isEnough()) {
    scale /= 2;
  }
  return scale;
}

ColorConverter prepareColors(JpegDecoder& decoder, ByteView profile) {
  jpeg_decompress_struct& jpeg = decoder.jpeg;
  if (jpeg.num_components == 4) {
    jpeg.out_color_space = JCS_CMYK;
    const bool isInverted = jpeg.saw_Adobe_marker != 0;  // Adobe's programs write ink upside down
    return {isInverted ? PixelLayout::InvertedCmyk : PixelLayout::Cmyk, true, false, profile};
  }
  jpeg.out_color_space = JCS_EXT_BGRA;
  return {PixelLayout::Bgra, true, jpeg.jpeg_color_space == JCS_GRAYSCALE, profile};
}

struct Attempt {
  PictureAnswer answer;
  std::size_t end = 0;  // how far the bytes could be read, where no row came out
};

Attempt attempt(ByteView bytes, const PictureTarget& target, int orientation) {
  JpegDecoder decoder(bytes);
  const auto failed = [&] {
    if (decoder.hasNoMemory) {
      throw std::bad_alloc();
    }
    return Attempt{{}, bytes.size() - std::min(decoder.jpeg.src->bytes_in_buffer, bytes.size())};
  };
  if (!readHeader(decoder)) {
    return failed();
  }
  const PictureSize whole = sizeOf(decoder);
  ColorConverter colors = prepareColors(decoder, profileOf(decoder));
  decoder.jpeg.scale_denom = scaleFor(whole, target.fitted(whole));
  if (!start(decoder)) {
    return failed();
  }
  const PictureSize stored{decoder.jpeg.output_width, decoder.jpeg.output_height};
  PictureWriter writer(target, stored, whole,
                       orientation != 0 ? orientation : exifOf(decoder).orientation(),
                       std::move(colors));
  std::vector<std::uint8_t> row(std::size_t{4} * stored.width);
  while (writer.rowsAdded() < stored.height && readRow(decoder, row.data())) {
    writer.addRow(row.data());
  }
  if (decoder.hasNoMemory) {
    throw std::bad_alloc();
  }
  return {writer.finish(decoder.isDamaged), 0};
}

}  // namespace

std::optional<JpegFacts> jpegFacts(ByteView bytes) {
  JpegDecoder decoder(bytes);
  if (!readHeader(decoder)) {
    return std::nullopt;
  }
  return JpegFacts{sizeOf(decoder), exifOf(decoder)};
}

PictureAnswer decodeJpeg(ByteView bytes, const PictureTarget& target, int orientation) {
  Attempt first = attempt(bytes, target, orientation);
  // A picture of many scans gives rows only when all are read: one that libjpeg gives up in the
  // middle of is read again up to there, without the marker that it stumbled over.
  constexpr std::size_t markerSize = 2;
  if (first.answer.outcome != PictureAnswer::Outcome::Decoded && first.end >= markerSize &&
      first.end < bytes.size()) {
    first = attempt(bytes.first(first.end - markerSize), target, orientation);
    first.answer.isDamaged = true;
  }
  return first.answer;
}

}  // namespace snaplift
