#include "pictures/HeicPhoto.h"

#ifdef SNAPLIFT_HEIF

#include <memory>
#include <stdexcept>

#include <libheif/heif.h>

namespace snaplift::samples {
namespace {

struct Release {
  void operator()(heif_context* context) const { heif_context_free(context); }
  void operator()(heif_encoder* encoder) const { heif_encoder_release(encoder); }
  void operator()(heif_encoding_options* options) const { heif_encoding_options_free(options); }
  void operator()(const heif_image* image) const { heif_image_release(image); }
  void operator()(const heif_image_handle* handle) const { heif_image_handle_release(handle); }
};
template <typename Type>
using Owner = std::unique_ptr<Type, Release>;

// Calls what makes an object through a pointer to it.
template <typename Type, typename Make>
Owner<Type> made(Make make) {
  Type* object = nullptr;
  if (const heif_error error = make(&object); error.code != heif_error_Ok) {
    throw std::runtime_error(error.message);
  }
  return Owner<Type>(object);
}

Owner<heif_image> imageOf(const Image& picture, int bits) {
  const bool isDeep = bits > 8;
  auto image = made<heif_image>([&](heif_image** out) {
    return heif_image_create(
        picture.width, picture.height, heif_colorspace_RGB,
        isDeep ? heif_chroma_interleaved_RRGGBB_LE : heif_chroma_interleaved_RGB, out);
  });
  heif_image_add_plane(image.get(), heif_channel_interleaved, picture.width, picture.height, bits);
  int stride = 0;
  std::uint8_t* plane = heif_image_get_plane(image.get(), heif_channel_interleaved, &stride);
  for (int y = 0; y < picture.height; ++y) {
    const std::uint8_t* from = picture.pixel(0, y);
    std::uint8_t* to = plane + std::ptrdiff_t{y} * stride;
    for (int i = 0; i < 3 * picture.width; ++i) {
      const int level = from[i];
      const int deep = level << (bits - 8) | level >> (16 - bits);
      *to++ = static_cast<std::uint8_t>(deep);
      if (isDeep) {
        *to++ = static_cast<std::uint8_t>(deep >> 8);
      }
    }
  }
  return image;
}

heif_error append(heif_context*, const void* data, size_t size, void* file) {
  static_cast<std::string*>(file)->append(static_cast<const char*>(data), size);
  return {heif_error_Ok, heif_suberror_Unspecified, ""};
}

}  // namespace

std::string heicPhoto(const Image& stored, const HeicOptions& options) {
  const Owner<heif_context> context(heif_context_alloc());
  const auto encoder = made<heif_encoder>([&](heif_encoder** out) {
    return heif_context_get_encoder_for_format(context.get(), heif_compression_HEVC, out);
  });
  heif_encoder_set_lossy_quality(encoder.get(), 80);
  const Owner<heif_encoding_options> encoding(heif_encoding_options_alloc());
  encoding->image_orientation = static_cast<heif_orientation>(options.orientation);
  const auto image = imageOf(stored, options.bits);
  const auto handle = made<heif_image_handle>([&](heif_image_handle** out) {
    return heif_context_encode_image(context.get(), image.get(), encoder.get(), encoding.get(),
                                     out);
  });
  const auto small = made<heif_image_handle>([&](heif_image_handle** out) {
    return heif_context_encode_thumbnail(context.get(), image.get(), handle.get(), encoder.get(),
                                         encoding.get(), options.preview, out);
  });
  std::string file;
  heif_writer writer{1, append};
  heif_context_write(context.get(), &writer, &file);
  return file;
}

}  // namespace snaplift::samples

#else

std::string snaplift::samples::heicPhoto(const Image&, const HeicOptions&) {
  return {};
}

#endif
