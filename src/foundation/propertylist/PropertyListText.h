#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace snaplift {

// The values that an XML property list writes as text. White space round a value counts as nothing;
// everything else that is no value of the type answers nothing.

struct IntegerText {
  std::uint64_t bits;  // two's complement
  bool isNegative;
};

// Decimal, or hexadecimal after "0x", with or without a sign; from -2^63 to 2^64 - 1.
std::optional<IntegerText> integerFromText(std::string_view text);

std::optional<double> realFromText(std::string_view text);

// "2011-10-12T08:30:00Z", as seconds since 2001-01-01 00:00 UTC.
std::optional<double> dateFromText(std::string_view text);

// Replaces `out` by the bytes of base64 text, in which white space may stand anywhere and the
// padding at the end may be missing. False, with `out` undefined, where the text is something else.
bool dataFromText(std::string_view text, std::string& out);

}  // namespace snaplift
