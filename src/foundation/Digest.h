#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <string>

#include "foundation/Bytes.h"

namespace snaplift {

// A SHA-1 digest (FIPS 180-4), byte 0 first.
using Sha1Digest = std::array<std::uint8_t, 20>;

// The digest of the parts' bytes, one after the other: no joined copy is made. It names files of
// old backups and proves nothing about who wrote them.
Sha1Digest sha1(std::initializer_list<ByteView> parts);

enum class HexCase { Lower, Upper };

// Two hexadecimal digits a byte, high nibble first, in the order of the bytes.
std::string hexText(ByteView bytes, HexCase hexCase);

}  // namespace snaplift
