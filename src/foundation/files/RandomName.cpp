#include "foundation/files/RandomName.h"

#include <array>
#include <random>

#include "foundation/Digest.h"

namespace snaplift {
namespace {

constexpr std::size_t randomBytes = 8;

}  // namespace

std::string randomName(std::string_view prefix, std::string_view suffix) {
  // Kept, because making one asks the processor what it can do: an expensive question to a virtual
  // one.
  thread_local std::random_device random;
  std::array<std::uint8_t, randomBytes> bytes;
  for (std::uint8_t& byte : bytes) {
    byte = static_cast<std::uint8_t>(random());
  }
  return std::string(prefix).append(hexText(bytes, HexCase::Lower)).append(suffix);
}

bool isRandomName(std::string_view name, std::string_view prefix) {
  return name.size() == prefix.size() + 2 * randomBytes && name.starts_with(prefix) &&
         name.find_first_not_of("0123456789abcdef", prefix.size()) == std::string_view::npos;
}

}  // namespace snaplift
