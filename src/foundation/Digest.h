#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <span>
#include <string>

#include "foundation/Bytes.h"

namespace snaplift {

// A SHA-1 digest (FIPS 180-4), byte 0 first.
using Sha1Digest = std::array<std::uint8_t, 20>;

// The digest of the parts' bytes, one after the other: no joined copy is made. It names files of
// old backups and proves nothing about who wrote them.
Sha1Digest sha1(std::initializer_list<ByteView> parts);

// A SHA-256 digest (FIPS 180-4), byte 0 first.
using Sha256Digest = std::array<std::uint8_t, 32>;

// The digest of all bytes that `read` gives: it fills the buffer from its beginning and answers how
// many bytes there are, 0 at the end.
Sha256Digest sha256(const std::function<std::size_t(std::span<std::uint8_t> buffer)>& read);

enum class HexCase { Lower, Upper };

// Two hexadecimal digits a byte, high nibble first, in the order of the bytes.
std::string hexText(ByteView bytes, HexCase hexCase);

// The value of a hexadecimal digit of either case; -1 for any other character.
constexpr int hexDigit(char c) {
  return c >= '0' && c <= '9'   ? c - '0'
         : c >= 'a' && c <= 'f' ? c - 'a' + 10
         : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                : -1;
}

}  // namespace snaplift
