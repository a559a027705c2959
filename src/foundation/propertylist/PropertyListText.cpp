#include "foundation/propertylist/PropertyListText.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <system_error>

namespace snaplift {
namespace {

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view whiteSpace = " \t\r\n";
  const std::size_t first = text.find_first_not_of(whiteSpace);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

// The whole of `text` as a number; std::from_chars knows no plus sign.
template <typename Number, typename... Format>
std::optional<Number> numberFrom(std::string_view text, Format... format) {
  Number number{};
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, format...);
  return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

// `digits` decimal digits at the front of `text`, which loses them and the character `after`.
std::optional<unsigned> takeField(std::string_view& text, std::size_t digits, char after) {
  if (text.size() <= digits || text[digits] != after) {
    return std::nullopt;
  }
  const std::optional<unsigned> field = numberFrom<unsigned>(text.substr(0, digits));
  text.remove_prefix(digits + 1);
  return field;
}

// What a character means in base64: its six bits, or one of these.
constexpr std::uint8_t notBase64 = 0xFF;
constexpr std::uint8_t skipped = 0xFE;
constexpr std::uint8_t padding = 0xFD;

constexpr std::array<std::uint8_t, 256> base64Values = [] {
  std::array<std::uint8_t, 256> values{};
  values.fill(notBase64);
  std::uint8_t next = 0;
  for (const char c : "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/") {
    if (c != '\0') {
      values[static_cast<unsigned char>(c)] = next++;
    }
  }
  for (const char c : {' ', '\t', '\r', '\n'}) {
    values[static_cast<unsigned char>(c)] = skipped;
  }
  values['='] = padding;
  return values;
}();

std::uint8_t base64Value(char c) {
  return base64Values[static_cast<unsigned char>(c)];
}

}  // namespace

std::optional<IntegerText> integerFromText(std::string_view text) {
  text = trimmed(text);
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) {
    text.remove_prefix(1);
  }
  const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (isHexadecimal) {
    text.remove_prefix(2);
  }
  const auto magnitude = numberFrom<std::uint64_t>(text, isHexadecimal ? 16 : 10);
  constexpr std::uint64_t lowest = std::uint64_t{1} << 63;
  if (!magnitude || (isNegative && *magnitude > lowest)) {
    return std::nullopt;
  }
  return IntegerText{isNegative ? 0 - *magnitude : *magnitude, isNegative && *magnitude != 0};
}

std::optional<double> realFromText(std::string_view text) {
  text = trimmed(text);
  if (text.starts_with('+') && !text.starts_with("+-")) {
    text.remove_prefix(1);
  }
  return numberFrom<double>(text);
}

std::optional<double> dateFromText(std::string_view text) {
  text = trimmed(text);
  const bool isBeforeChrist = text.starts_with('-');
  if (isBeforeChrist) {
    text.remove_prefix(1);
  }
  const auto year = takeField(text, 4, '-');
  const auto month = year ? takeField(text, 2, '-') : std::nullopt;
  const auto day = month ? takeField(text, 2, 'T') : std::nullopt;
  const auto hour = day ? takeField(text, 2, ':') : std::nullopt;
  const auto minute = hour ? takeField(text, 2, ':') : std::nullopt;
  const auto second = minute ? takeField(text, 2, 'Z') : std::nullopt;
  if (!second || !text.empty() || *hour > 23 || *minute > 59 || *second > 60) {
    return std::nullopt;
  }
  const int signedYear = isBeforeChrist ? -static_cast<int>(*year) : static_cast<int>(*year);
  const std::chrono::year_month_day date{std::chrono::year{signedYear}, std::chrono::month{*month},
                                         std::chrono::day{*day}};
  if (!date.ok()) {
    return std::nullopt;
  }
  constexpr std::chrono::sys_days reference{std::chrono::year{2001} / 1 / 1};
  const std::chrono::seconds seconds = std::chrono::sys_days{date} - reference +
                                       std::chrono::hours{*hour} + std::chrono::minutes{*minute} +
                                       std::chrono::seconds{*second};
  return static_cast<double>(seconds.count());
}

bool dataFromText(std::string_view text, std::string& out) {
  out.clear();
  out.reserve(text.size() / 4 * 3 + 3);
  std::uint32_t bits = 0;
  unsigned digits = 0;  // of the group of four that is being read
  std::size_t position = 0;
  for (; position < text.size(); ++position) {
    const std::uint8_t value = base64Value(text[position]);
    if (value == skipped) {
      continue;
    }
    if (value >= padding) {
      break;
    }
    bits = bits << 6 | value;
    if (++digits == 4) {
      const char bytes[] = {static_cast<char>(bits >> 16), static_cast<char>(bits >> 8),
                            static_cast<char>(bits)};
      out.append(bytes, sizeof bytes);
      digits = 0;
    }
  }
  for (; position < text.size(); ++position) {
    const std::uint8_t value = base64Value(text[position]);
    if (value != padding && value != skipped) {
      return false;
    }
  }
  // Two digits hold one byte and three hold two; a digit alone holds none.
  if (digits >= 2) {
    out.push_back(static_cast<char>(bits >> (6 * digits - 8)));
  }
  if (digits == 3) {
    out.push_back(static_cast<char>(bits >> 2));
  }
  return digits != 1;
}

}  // namespace snaplift
