#include "foundation/PortableName.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include "foundation/Log.h"

namespace snaplift {
namespace {

constexpr std::size_t longestName = 100;  // in bytes; file systems take 255 of whatever they count

// What FAT and exFAT forbid beside control characters.
constexpr std::string_view forbiddenCharacters = "\"*/:<>?\\|";

constexpr std::array<std::string_view, 6> devices = {"con", "prn",    "aux",
                                                     "nul", "conin$", "conout$"};
constexpr std::array<std::string_view, 2> numberedDevices = {"com", "lpt"};
// Of Latin-1 three digits more count as digits there.
constexpr std::array<std::string_view, 13> deviceNumbers = {
    "0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "\u00b9", "\u00b2", "\u00b3"};

// The first character of `text`, negative where its first bytes are none; and its length.
struct Character {
  UChar32 code;
  std::size_t length;
};

Character firstCharacter(std::string_view text) {
  UChar32 code = 0;
  std::int32_t next = 0;
  U8_NEXT(reinterpret_cast<const std::uint8_t*>(text.data()), next,
          static_cast<std::int32_t>(std::min<std::size_t>(text.size(), U8_MAX_LENGTH)), code);
  return {code, static_cast<std::size_t>(next)};
}

bool isForbidden(UChar32 code, std::string_view text) {
  return code < 0x20 ||
         (code < 0x80 &&
          forbiddenCharacters.find(static_cast<char>(code)) != std::string_view::npos) ||
         U_IS_UNICODE_NONCHAR(code) || unseenCharacterAt(text).length > 0;
}

// Whether older systems open a device instead, whatever stands behind a dot.
bool isDevice(std::string_view name) {
  std::string stem = foldedCase(name.substr(0, name.find('.')));
  stem.erase(stem.find_last_not_of(' ') + 1);
  const auto isNumbered = [&](std::string_view device) {
    return stem.starts_with(device) &&
           std::ranges::find(deviceNumbers, std::string_view(stem).substr(device.size())) !=
               deviceNumbers.end();
  };
  return std::ranges::find(devices, stem) != devices.end() ||
         std::ranges::any_of(numberedDevices, isNumbered);
}

}  // namespace

std::string portableName(std::string_view text) {
  std::string name;
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  while (!text.empty()) {
    const auto [code, length] = firstCharacter(text);
    const std::string_view character = isForbidden(code, text) ? "_" : text.substr(0, length);
    if (name.size() + character.size() > longestName) {
      break;
    }
    name += character;
    text.remove_prefix(length);
  }
  name.erase(name.find_last_not_of(" .") + 1);
  return name.empty() || name.front() == '.' || isDevice(name) ? "_" + name : name;
}

std::string foldedCase(std::string_view name) {
  std::string folded;
  folded.reserve(name.size());
  while (!name.empty()) {
    const auto [code, length] = firstCharacter(name);
    if (code < 0) {
      folded += name.substr(0, length);
    } else {
      std::array<std::uint8_t, U8_MAX_LENGTH> bytes;
      std::size_t count = 0;
      U8_APPEND_UNSAFE(bytes, count, u_foldCase(code, U_FOLD_CASE_DEFAULT));
      folded.append(bytes.begin(), bytes.begin() + count);
    }
    name.remove_prefix(length);
  }
  return folded;
}

}  // namespace snaplift
