#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "foundation/Bytes.h"

namespace snaplift {

// The object table of a binary property list: the bytes, and what has to be known of them before
// any value can be handed out. It is the one form in which a list is kept; the XML reader writes
// it. PropertyListValue makes the values.
//
// The file is "bplist0?", then the objects, then a table with the offset of every object, then a
// trailer of 32 bytes. An object is a marker byte, whose upper half is the type and whose lower
// half is the size (15: an integer object with the size follows), and its payload. Containers hold
// object numbers, called references; a dictionary all its keys and then all its values. Numbers are
// big-endian.
//
// A file may let containers overlap, refer to themselves, or share one another a thousandfold. So
// the containers are visited once when the list is opened, depth first, each object once and no
// more bytes of them than the file has. That gives each its rank: the place at which the visit left
// it. A container is left after all that it holds, unless it is held by what it holds; so an honest
// reference points to a lower rank, and following only those ends.
class BinaryPropertyList {
public:
  // The types that the upper half of a marker names.
  enum Type : std::uint8_t {
    Singleton = 0x0,
    Integer = 0x1,
    Real = 0x2,
    Date = 0x3,
    Data = 0x4,
    AsciiString = 0x5,
    Utf16String = 0x6,
    Utf8String = 0x7,
    Uid = 0x8,
    Array = 0xA,
    OrderedSet = 0xB,
    Set = 0xC,
    Dictionary = 0xD,
  };
  static constexpr std::uint8_t nullMarker = 0x00;
  static constexpr std::uint8_t falseMarker = 0x08;
  static constexpr std::uint8_t trueMarker = 0x09;
  static constexpr std::string_view magic = "bplist0";

  struct Run {
    const std::uint8_t* bytes;
    std::size_t count;  // in units
  };
  struct Container {
    const std::uint8_t* references;
    std::size_t count;
    bool isDictionary;
  };

  // Nothing for bytes without the magic word or with a trailer that does not fit them.
  static std::unique_ptr<const BinaryPropertyList> open(Bytes bytes);

  std::uint32_t root() const { return m_root; }
  std::uint8_t markerAt(std::size_t offset) const { return m_bytes.data()[offset]; }
  Type typeAt(std::size_t offset) const { return static_cast<Type>(markerAt(offset) >> 4); }
  static bool isContainer(Type type) { return type >= Array && type <= Dictionary; }

  // Where the object starts; nothing for a number outside the table and an offset outside the
  // objects.
  std::optional<std::uint32_t> offsetOf(std::uint64_t object) const {
    if (object >= m_objects) {
      return std::nullopt;
    }
    const std::uint64_t offset =
        bigEndian(m_bytes.data() + m_table + object * m_offsetSize, m_offsetSize);
    const bool isAnObject = offset >= headerSize && offset < m_table;
    return isAnObject ? std::optional(static_cast<std::uint32_t>(offset)) : std::nullopt;
  }
  // The payload of `unitSize` bytes a unit whose number of units the marker gives; nothing where it
  // would not fit into the objects.
  std::optional<Run> runAt(std::size_t offset, std::size_t unitSize) const;
  // The payload of an integer, real or date object: 1, 2, 4, 8 or 16 bytes.
  std::optional<ByteView> numberAt(std::size_t offset) const;
  // The payload of a UID object: 1 to 16 bytes.
  std::optional<ByteView> uidAt(std::size_t offset) const;
  std::optional<Container> containerAt(std::size_t offset) const;
  std::uint64_t reference(const std::uint8_t* references, std::size_t index) const {
    return bigEndian(references + index * m_referenceSize, m_referenceSize);
  }

  // 0 for what is no container that the root leads to, `refused` for a damaged one.
  static constexpr std::uint32_t refused = 0xFFFFFFFF;
  std::uint32_t rankOf(std::uint32_t object) const { return m_ranks[object]; }

  static bool isString(Type type) { return type >= AsciiString && type <= Utf8String; }
  // Whether the object is the string `text`. Takes time in the length of `text` alone.
  bool isString(std::size_t offset, std::string_view text) const;
  // The string as UTF-8, which lives as long as the list: text of 16-bit units is converted once.
  std::optional<std::string_view> stringAt(std::size_t offset) const;
  // The place of the first entry with that key.
  std::optional<std::size_t> entryWithKey(std::size_t offset, const Container& dictionary,
                                          std::string_view key) const;

private:
  static constexpr std::size_t headerSize = 8;

  // The first eight bytes of a key's SHA-1 digest, and its place; sorted. A digest, since nobody
  // can write a file whose keys all agree in it.
  using KeyIndex = std::vector<std::pair<std::uint64_t, std::uint32_t>>;

  BinaryPropertyList(Bytes bytes, std::size_t table, unsigned offsetSize, unsigned referenceSize,
                     std::uint32_t objects, std::uint32_t root);
  // A number of 1 to 8 bytes. Reads eight, whatever the width: the trailer follows everything that
  // is read this way.
  static std::uint64_t bigEndian(const std::uint8_t* bytes, unsigned width) {
    const auto shifted = [bytes](unsigned i) { return std::uint64_t{bytes[i]} << (56 - 8 * i); };
    const std::uint64_t value = shifted(0) | shifted(1) | shifted(2) | shifted(3) | shifted(4) |
                                shifted(5) | shifted(6) | shifted(7);
    return value >> (64 - 8 * width);
  }
  static std::uint64_t digestOf(std::string_view key);

  void rankContainers();
  std::optional<std::size_t> scanForKey(const Container& dictionary, std::string_view key) const;
  KeyIndex indexOf(const Container& dictionary) const;

  Bytes m_bytes;
  std::size_t m_table;  // offset of the offset table: the objects end before it
  unsigned m_offsetSize;
  unsigned m_referenceSize;
  std::uint32_t m_objects;
  std::uint32_t m_root;
  // Of a small list (backups have tens of thousands) the ranks lie here, without an allocation.
  std::array<std::byte, 128> m_spaceForRanks;
  std::pmr::monotonic_buffer_resource m_memoryOfRanks;
  std::pmr::vector<std::uint32_t> m_ranks;

  // What is made on demand and kept, by offset, so that objects in the same place share it.
  mutable std::mutex m_mutex;
  mutable std::unordered_map<std::size_t, KeyIndex> m_keyIndexes;
  mutable std::unordered_map<std::size_t, std::string> m_texts;
  mutable std::size_t m_textUnitsLeft;
};

}  // namespace snaplift
