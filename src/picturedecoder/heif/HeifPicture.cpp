#include "picturedecoder/heif/HeifPicture.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <string_view>
#include <vector>

#include <libheif/heif.h>

#include "picturedecoder/DecodePicture.h"
#include "picturedecoder/Exif.h"

namespace snaplift {
namespace {

struct Release {
  void operator()(heif_context* context) const { heif_context_free(context); }
  void operator()(const heif_image* image) const { heif_image_release(image); }
  void operator()(const heif_image_handle* handle) const { heif_image_handle_release(handle); }
};
using Context = std::unique_ptr<heif_context, Release>;
using Image = std::unique_ptr<heif_image, Release>;
using Handle = std::unique_ptr<heif_image_handle, Release>;

constexpr std::uint64_t maxPixels = 100'000'000;

struct OpenFile {
  Context context;
  Handle picture;
};

bool isGood(const heif_error& error) {
  if (error.code == heif_error_Memory_allocation_error) {
    throw std::bad_alloc();
  }
  return error.code == heif_error_Ok;
}

OpenFile openHeif(ByteView bytes) {
  OpenFile file{Context(heif_context_alloc()), nullptr};
  heif_context_set_max_decoding_threads(file.context.get(), 0);  // there is a process for each core
  heif_image_handle* handle = nullptr;
  if (isGood(heif_context_read_from_memory_without_copy(file.context.get(), bytes.data(),
                                                        bytes.size(), nullptr)) &&
      isGood(heif_context_get_primary_image_handle(file.context.get(), &handle))) {
    file.picture.reset(handle);
  }
  return file;
}

// As it is to be seen: libheif counts turns in.
PictureSize sizeOf(const heif_image_handle& handle) {
  const int width = heif_image_handle_get_width(&handle);
  const int height = heif_image_handle_get_height(&handle);
  return width < 1 || height < 1
             ? PictureSize{}
             : PictureSize{static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)};
}

// The planes of the picture, of a copy that is turned, and of one in eight bits and red, green and
// blue are there at once. libheif asks for them one after another and on threads of its own, where
// no refusal can be answered, so all is asked for here first.
void requireMemoryFor(const heif_image_handle& handle) {
  const bool isDeep = heif_image_handle_get_luma_bits_per_pixel(&handle) > 8;
  const std::uint64_t bytes = sizeOf(handle).pixelCount() * (isDeep ? 14 : 8);
  const std::unique_ptr<void, void (*)(void*)> memory(
      std::malloc(std::max<std::uint64_t>(bytes, 1)), &std::free);
  if (!memory) {
    throw std::bad_alloc();
  }
}

std::vector<std::uint8_t> profileOf(const heif_image_handle& handle) {
  std::vector<std::uint8_t> profile(heif_image_handle_get_raw_color_profile_size(&handle));
  if (!profile.empty() &&
      !isGood(heif_image_handle_get_raw_color_profile(&handle, profile.data()))) {
    profile.clear();
  }
  return profile;
}

// The block of the file that holds what a camera wrote: where that begins, in four bytes, and
// behind it what in a JPEG file stands behind "Exif".
Exif exifOf(const heif_image_handle& handle, std::size_t fileSize) {
  constexpr std::string_view name("Exif\0\0", 6);
  constexpr std::size_t offsetSize = 4;
  heif_item_id id = 0;
  if (heif_image_handle_get_list_of_metadata_block_IDs(&handle, "Exif", &id, 1) != 1) {
    return {};
  }
  const std::size_t size = heif_image_handle_get_metadata_size(&handle, id);
  if (size < offsetSize || size > fileSize) {
    return {};
  }
  std::vector<std::uint8_t> block(size);
  if (!isGood(heif_image_handle_get_metadata(&handle, id, block.data()))) {
    return {};
  }
  const std::size_t begin =
      offsetSize + (std::size_t{block[0]} << 24 | std::size_t{block[1]} << 16 |
                    std::size_t{block[2]} << 8 | block[3]);
  if (begin >= size) {
    return {};
  }
  std::vector<std::uint8_t> segment(name.begin(), name.end());
  segment.insert(segment.end(), block.begin() + static_cast<std::ptrdiff_t>(begin), block.end());
  return Exif::read(segment);
}

PictureAnswer decode(const heif_image_handle& handle, PictureSize whole,
                     const PictureTarget& target) {
  if (sizeOf(handle).pixelCount() == 0 || sizeOf(handle).pixelCount() > maxPixels) {
    return {};
  }
  requireMemoryFor(handle);
  heif_image* decoded = nullptr;
  if (!isGood(heif_decode_image(&handle, &decoded, heif_colorspace_RGB,
                                heif_chroma_interleaved_RGBA, nullptr))) {
    return {};
  }
  const Image image(decoded);
  int stride = 0;
  const std::uint8_t* plane =
      heif_image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride);
  const int width = heif_image_get_width(image.get(), heif_channel_interleaved);
  const int height = heif_image_get_height(image.get(), heif_channel_interleaved);
  if (plane == nullptr || width < 1 || height < 1) {
    return {};
  }
  const PictureSize size{static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)};
  const bool isOpaque = heif_image_handle_has_alpha_channel(&handle) == 0;
  PictureWriter writer(target, size, size, 1,
                       ColorConverter(PixelLayout::Rgba, isOpaque, false, profileOf(handle)));
  for (std::uint32_t y = 0; y < size.height; ++y) {
    writer.addRow(plane + std::size_t{y} * static_cast<std::size_t>(stride));
  }
  PictureAnswer answer = writer.finish(false);
  answer.wholeWidth = whole.width;
  answer.wholeHeight = whole.height;
  return answer;
}

bool isHeif(ByteView bytes) {
  constexpr int brandEnd = 12;
  return bytes.size() >= brandEnd &&
         heif_check_filetype(bytes.data(), brandEnd) == heif_filetype_yes_supported;
}

PictureAnswer decodeWhole(ByteView bytes, const PictureTarget& target) {
  const OpenFile file = openHeif(bytes);
  return file.picture ? decode(*file.picture, sizeOf(*file.picture), target) : PictureAnswer{};
}

PictureAnswer decodePreview(ByteView bytes, std::uint32_t pixels, const PictureTarget& target) {
  const PictureAnswer none{.outcome = PictureAnswer::Outcome::NoPreview};
  const OpenFile file = openHeif(bytes);
  heif_item_id id = 0;
  heif_image_handle* handle = nullptr;
  if (!file.picture ||
      heif_image_handle_get_list_of_thumbnail_IDs(file.picture.get(), &id, 1) != 1 ||
      !isGood(heif_image_handle_get_thumbnail(file.picture.get(), id, &handle))) {
    return none;
  }
  const Handle preview(handle);
  const PictureSize whole = sizeOf(*file.picture);
  if (!isFitPreview(sizeOf(*preview), whole, pixels)) {
    return none;
  }
  const PictureAnswer answer = decode(*preview, whole, target);
  return answer.outcome == PictureAnswer::Outcome::Decoded ? answer : none;
}

PictureAnswer readFacts(ByteView bytes, std::span<std::uint8_t> space) {
  const OpenFile file = openHeif(bytes);
  return file.picture ? answerOfFacts(exifOf(*file.picture, bytes.size()).facts(),
                                      sizeOf(*file.picture), space)
                      : PictureAnswer{};
}

}  // namespace

PictureAnswer decodePictureOrHeif(const PictureRequest& request, ByteView picture,
                                  std::span<std::uint8_t> pixels) {
  if (!isHeif(picture)) {
    return decodePicture(request, picture, pixels);
  }
  switch (request.kind) {
    case PictureRequest::Kind::EmbeddedPreview:
      return decodePreview(picture, request.pixels, targetOf(request, pixels));
    case PictureRequest::Kind::Facts:
      return readFacts(picture, pixels);
    case PictureRequest::Kind::Picture:
      break;
  }
  return decodeWhole(picture, targetOf(request, pixels));
}

}  // namespace snaplift
