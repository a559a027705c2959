#include "picturedecoder/PngPicture.h"

#include <csetjmp>
#include <memory>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#include <png.h>

namespace snaplift {
namespace {

constexpr png_uint_32 maxSide = 1'000'000;
constexpr png_alloc_size_t maxChunkMemory = 8'000'000;  // an inflated colour profile

// The state of one decode. libpng leaves by longjmp from png_process_data() alone; what the
// callbacks throw is kept until that call is over.
struct PngDecoder {
  explicit PngDecoder(const PictureTarget& pictureTarget);
  PngDecoder(const PngDecoder&) = delete;
  PngDecoder& operator=(const PngDecoder&) = delete;
  ~PngDecoder() { png_destroy_read_struct(&png, &info, nullptr); }

  void begin();
  void addRow(const std::uint8_t* row, png_uint_32 y);
  void finishPasses();

  png_structp png = nullptr;
  png_infop info = nullptr;
  const PictureTarget& target;
  std::optional<PictureWriter> writer;
  std::vector<std::uint8_t> interlaced;  // the whole picture, which comes in several passes
  png_uint_32 rowsOfPasses = 0;
  std::size_t rowBytes = 0;
  PictureSize size;
  bool isEnded = false;
  bool hasNoMemory = false;
};

// A callback that runs out of memory must not throw through libpng.
template <typename Step>
void guarded(png_structp png, Step step) {
  auto* decoder = static_cast<PngDecoder*>(png_get_progressive_ptr(png));
  try {
    step(*decoder);
    return;
  } catch (const std::bad_alloc&) {
    decoder->hasNoMemory = true;
  }
  png_error(png, "no memory");
}

void onInfo(png_structp png, png_infop) {
  guarded(png, [](PngDecoder& decoder) { decoder.begin(); });
}

void onRow(png_structp png, png_bytep row, png_uint_32 y, int) {
  if (row != nullptr) {
    guarded(png, [&](PngDecoder& decoder) { decoder.addRow(row, y); });
  }
}

void onEnd(png_structp png, png_infop) {
  guarded(png, [](PngDecoder& decoder) { decoder.isEnded = true; });
}

void onError(png_structp png, png_const_charp) {
  png_longjmp(png, 1);
}

void onWarning(png_structp, png_const_charp) {}

PngDecoder::PngDecoder(const PictureTarget& pictureTarget) : target(pictureTarget) {
  png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, onError, onWarning);
  info = png == nullptr ? nullptr : png_create_info_struct(png);
  if (info == nullptr) {
    png_destroy_read_struct(&png, &info, nullptr);
    throw std::bad_alloc();
  }
  png_set_user_limits(png, maxSide, maxSide);
  png_set_chunk_malloc_max(png, maxChunkMemory);
  // Skip what is not asked for, also of the kinds that libpng knows.
  png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
  static constexpr png_byte wanted[] = "PLTE\0tRNS\0iCCP";
  png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_AS_DEFAULT, wanted, 3);
  png_set_progressive_read_fn(png, this, onInfo, onRow, onEnd);
}

ByteView profileOf(png_structp png, png_infop info) {
  png_charp name = nullptr;
  int compression = 0;
  png_bytep profile = nullptr;
  png_uint_32 length = 0;
  return png_get_iCCP(png, info, &name, &compression, &profile, &length) != 0
             ? ByteView(profile, length)
             : ByteView();
}

// All pixels become blue, green, red and alpha of eight bits.
void PngDecoder::begin() {
  const int type = png_get_color_type(png, info);
  const bool isGray = (type & PNG_COLOR_MASK_COLOR) == 0;
  const bool isOpaque =
      (type & PNG_COLOR_MASK_ALPHA) == 0 && png_get_valid(png, info, PNG_INFO_tRNS) == 0;
  size = {png_get_image_width(png, info), png_get_image_height(png, info)};
  ColorConverter colors(PixelLayout::Bgra, isOpaque, isGray, profileOf(png, info));
  png_set_expand(png);
  png_set_scale_16(png);
  png_set_gray_to_rgb(png);
  png_set_bgr(png);
  png_set_add_alpha(png, UINT8_MAX, PNG_FILLER_AFTER);
  const bool isInterlaced = png_set_interlace_handling(png) > 1;
  png_read_update_info(png, info);
  rowBytes = png_get_rowbytes(png, info);
  writer.emplace(target, size, size, 1, std::move(colors));
  if (isInterlaced) {
    interlaced.resize(rowBytes * size.height);
  }
}

void PngDecoder::addRow(const std::uint8_t* row, png_uint_32 y) {
  if (interlaced.empty()) {
    writer->addRow(row);
  } else if (y < size.height) {
    png_progressive_combine_row(png, interlaced.data() + rowBytes * y, row);
    rowsOfPasses = std::max(rowsOfPasses, y + 1);
  }
}

void PngDecoder::finishPasses() {
  for (png_uint_32 y = 0; y < rowsOfPasses; ++y) {
    writer->addRow(interlaced.data() + rowBytes * y);
  }
}

void processAll(PngDecoder& decoder, ByteView bytes) {
  if (setjmp(png_jmpbuf(decoder.png)) == 0) {
    png_process_data(decoder.png, decoder.info, const_cast<png_bytep>(bytes.data()), bytes.size());
  }
}

}  // namespace

PictureAnswer decodePng(ByteView bytes, const PictureTarget& target) {
  PngDecoder decoder(target);
  processAll(decoder, bytes);
  if (decoder.hasNoMemory) {
    throw std::bad_alloc();
  }
  if (!decoder.writer) {
    return {};
  }
  decoder.finishPasses();
  return decoder.writer->finish(!decoder.isEnded);
}

PictureSize pngSize(ByteView bytes) {
  constexpr std::size_t headerName = 12, width = 16, height = 20, end = 24;
  if (bytes.size() < end || textOf(bytes).substr(headerName, 4) != "IHDR") {
    return {};
  }
  const PictureSize size{png_get_uint_32(bytes.data() + width),
                         png_get_uint_32(bytes.data() + height)};
  return size.longerSide() <= maxSide ? size : PictureSize();
}

}  // namespace snaplift
