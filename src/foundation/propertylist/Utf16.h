#pragma once

#include <string>
#include <string_view>

#include "foundation/Bytes.h"

namespace snaplift {

// Texts of 16-bit units, high byte first, as UTF-8. A surrogate without its other half counts as
// U+FFFD; an odd last byte is ignored.

std::string utf8FromUtf16BigEndian(ByteView units);

// Whether the units are `text`, without converting them.
bool equalsUtf16BigEndian(ByteView units, std::string_view text);

}  // namespace snaplift
