#pragma once

#include <cstdint>
#include <string>

#include "foundation/Bytes.h"

namespace snaplift {

// The helpers that every manifest reader uses: integers of a manifest are big-endian, and digests
// and identifiers are written as hexadecimal text. The two text forms differ in letter case, and
// the formats depend on it: the names of content files are lower case, what is stored inside a
// record is upper case. No state, no failure; safe from any thread.

// The SHA-1 digest of all bytes as exactly 40 lower-case hexadecimal digits.
std::string SHA1(ByteView bytes);

// The unsigned big-endian integer in 1, 2, 4 or 8 bytes; 0 for a view of any other length.
std::uint64_t number(ByteView bytes);

// The low 16 bits of number(), as two's complement.
std::int16_t bigEndianShort(ByteView bytes);

// The low 32 bits of number(), as two's complement, widened with its sign: a field of one or two
// bytes is never negative.
std::int64_t bigEndianInt(ByteView bytes);

// The low 32 bits of number(), widened with zeros.
std::uint64_t bigEndianUnsignedInt(ByteView bytes);

// Two upper-case hexadecimal digits a byte.
std::string stringWithHexBytes(ByteView bytes);

}  // namespace snaplift
