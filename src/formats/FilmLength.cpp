#include "formats/FilmLength.h"

#include <array>
#include <cstdint>
#include <string_view>

#include <unistd.h>

#include "foundation/Bytes.h"
#include "foundation/files/InputFile.h"

namespace snaplift {
namespace {

// A film has a dozen boxes on the way to the header.
constexpr int maximumBoxes = 64;

// What a box holds: where that begins and ends in the file. A box is its length, which counts the
// whole of it, four letters, and what it holds.
struct Box {
  std::uint64_t begin, end;
};

template <std::size_t size>
bool readAt(const InputFile& file, std::uint64_t offset, std::array<std::uint8_t, size>& bytes) {
  return ::pread(file.descriptor(), bytes.data(), size, static_cast<off_t>(offset)) ==
         static_cast<ssize_t>(size);
}

std::uint64_t bigEndian(ByteView bytes) {
  std::uint64_t value = 0;
  for (const std::uint8_t byte : bytes) {
    value = value << 8 | byte;
  }
  return value;
}

// The first box of that name in another. `boxesLeft` counts down.
std::optional<Box> findBox(const InputFile& file, std::string_view name, Box in, int& boxesLeft) {
  std::uint64_t offset = in.begin;
  while (boxesLeft-- > 0 && offset < in.end && in.end - offset >= 8) {
    std::array<std::uint8_t, 8> head;
    if (!readAt(file, offset, head)) {
      return std::nullopt;
    }
    std::uint64_t size = bigEndian(ByteView(head).first(4));
    std::uint64_t headSize = head.size();
    if (size == 0) {  // to the end
      size = in.end - offset;
    } else if (size == 1) {  // a long one, whose length follows
      std::array<std::uint8_t, 8> length;
      if (!readAt(file, offset + headSize, length)) {
        return std::nullopt;
      }
      size = bigEndian(length);
      headSize += length.size();
    }
    if (size < headSize || size > in.end - offset) {
      return std::nullopt;
    }
    if (textOf(ByteView(head).subspan(4)) == name) {
      return Box{offset + headSize, offset + size};
    }
    offset += size;
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::chrono::milliseconds> lengthOfFilm(const std::string& path) {
  const InputFile file(path);
  int boxesLeft = maximumBoxes;
  const auto movie =
      file ? findBox(file, "moov", {0, file.size()}, boxesLeft) : std::optional<Box>();
  const auto header = movie ? findBox(file, "mvhd", *movie, boxesLeft) : std::optional<Box>();
  // A version, then two times, the units of a second and the length in them; wide in version 1.
  std::array<std::uint8_t, 32> fields;
  if (!header || header->end - header->begin < fields.size() ||
      !readAt(file, header->begin, fields)) {
    return std::nullopt;
  }
  const ByteView bytes(fields);
  const bool isWide = fields[0] == 1;
  const std::uint64_t units = bigEndian(bytes.subspan(isWide ? 20 : 12, 4));
  const std::uint64_t length = bigEndian(isWide ? bytes.subspan(24, 8) : bytes.subspan(16, 4));
  constexpr std::uint64_t secondsOfDay = 86'400;
  if (units == 0 || length == 0 || length / units >= secondsOfDay) {
    return std::nullopt;
  }
  return std::chrono::milliseconds(length * 1000 / units);
}

}  // namespace snaplift
