#include "foundation/Digest.h"

#include <nettle/sha1.h>
#include <nettle/sha2.h>

namespace snaplift {

static_assert(std::tuple_size_v<Sha1Digest> == SHA1_DIGEST_SIZE);

Sha1Digest sha1(std::initializer_list<ByteView> parts) {
  sha1_ctx context;
  sha1_init(&context);
  for (ByteView part : parts) {
    sha1_update(&context, part.size(), part.data());
  }
  Sha1Digest digest;
  sha1_digest(&context, digest.size(), digest.data());
  return digest;
}

Sha256Digest sha256(const std::function<std::size_t(std::span<std::uint8_t> buffer)>& read) {
  static_assert(std::tuple_size_v<Sha256Digest> == SHA256_DIGEST_SIZE);
  constexpr std::size_t bufferInBytes = std::size_t{128} << 10;
  thread_local Bytes buffer(bufferInBytes);
  sha256_ctx context;
  sha256_init(&context);
  while (const std::size_t count = read({buffer.data(), buffer.size()})) {
    sha256_update(&context, count, buffer.data());
  }
  Sha256Digest digest;
  sha256_digest(&context, digest.size(), digest.data());
  return digest;
}

std::string hexText(ByteView bytes, HexCase hexCase) {
  const char* digits = hexCase == HexCase::Lower ? "0123456789abcdef" : "0123456789ABCDEF";
  std::string text(2 * bytes.size(), '\0');
  char* out = text.data();
  for (std::uint8_t byte : bytes) {
    *out++ = digits[byte >> 4];
    *out++ = digits[byte & 15];
  }
  return text;
}

}  // namespace snaplift
