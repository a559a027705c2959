#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <string_view>

#include "foundation/Bytes.h"
#include "foundation/Time.h"

namespace snaplift {

class BinaryPropertyList;
class PropertyListEntries;

// A value of a property list: a handle of 24 bytes that is copied freely and is valid as long as
// the PropertyList that it comes from; so are the texts and bytes that it answers. Every access is
// type-checked: a value of another type, a damaged one and one that is not there at all are the
// same absent value, and an absent value answers absent to everything, so that a chain reads
//
//   list.root().valueForKey("Metadata").data()
//
// and is tested once, at its end. Nothing is converted from one type to another.
class PropertyListValue {
public:
  enum class Kind { Absent, Dictionary, Array, String, Integer, Real, Boolean, Date, Data, Uid };

  PropertyListValue() = default;

  Kind kind() const;

  // UTF-8. Bytes of 0x80 and above in a text that calls itself ASCII are answered as they are, and
  // an unpaired surrogate of UTF-16 becomes U+FFFD.
  std::optional<std::string_view> string() const;
  // Whether this is exactly the string `text`. Takes time in the length of `text` alone.
  bool equals(std::string_view text) const;

  // An integer has one of the ranges or both; nothing where it lies outside the one asked for.
  std::optional<std::int64_t> integer() const;
  std::optional<std::uint64_t> unsignedInteger() const;
  // The number of another object of a keyed archive; the binary encoding alone has such values.
  std::optional<std::uint64_t> uid() const;
  std::optional<double> real() const;
  std::optional<bool> boolean() const;
  // Nothing also for a date that is not finite or that Instant cannot hold.
  std::optional<Instant> date() const;
  std::optional<ByteView> data() const;

  // What a flag means: true for the boolean true and for every number but 0.
  bool boolValue() const;

  // The entries of a dictionary or the elements of an array; 0 for everything else.
  std::size_t count() const;
  // The element of an array, or the value of a dictionary's entry, in the order of the file.
  PropertyListValue at(std::size_t index) const;
  // The value under `key`; that of the first entry where the key stands twice. Looking n keys up
  // in a dictionary of n entries takes time in n, not in its square.
  PropertyListValue valueForKey(std::string_view key) const;
  // The entries of a dictionary; none for everything else:
  //   for (const auto& [key, value] : files.entries())
  PropertyListEntries entries() const;

private:
  friend class PropertyList;
  friend class PropertyListEntries;

  PropertyListValue(const BinaryPropertyList* list, std::uint32_t object, std::uint32_t offset,
                    std::uint32_t depth)
      : m_list(list), m_object(object), m_offset(offset), m_depth(depth) {}

  PropertyListValue referredTo(std::uint64_t object) const;

  const BinaryPropertyList* m_list = nullptr;  // null: absent
  std::uint32_t m_object = 0;
  std::uint32_t m_offset = 0;  // of the object's first byte
  std::uint32_t m_depth = 0;   // of containers, down to this value's own or its parent
};

// One entry of a dictionary. The key is a string; absent where the file has no string there.
struct PropertyListEntry {
  PropertyListValue key;
  PropertyListValue value;
};

// The entries of one dictionary in the order of the file, for a range-based for. Its iterators are
// good without it.
class PropertyListEntries {
public:
  class Iterator {
  public:
    using value_type = PropertyListEntry;
    using difference_type = std::ptrdiff_t;

    Iterator() = default;
    PropertyListEntry operator*() const;
    Iterator& operator++() {
      ++m_index;
      return *this;
    }
    Iterator operator++(int) {
      Iterator before = *this;
      ++m_index;
      return before;
    }
    bool operator==(const Iterator& other) const { return m_index == other.m_index; }

  private:
    friend class PropertyListEntries;

    PropertyListValue m_dictionary;
    const std::uint8_t* m_references = nullptr;
    std::size_t m_count = 0;
    std::size_t m_index = 0;
  };

  Iterator begin() const { return m_begin; }
  Iterator end() const {
    Iterator end = m_begin;
    end.m_index = size();
    return end;
  }
  std::size_t size() const { return m_begin.m_count; }

private:
  friend class PropertyListValue;
  PropertyListEntries() = default;
  PropertyListEntries(PropertyListValue dictionary, const std::uint8_t* references,
                      std::size_t count) {
    m_begin.m_dictionary = dictionary;
    m_begin.m_references = references;
    m_begin.m_count = count;
  }

  Iterator m_begin;
};

// A property list, binary or XML, read from bytes that it owns. Values are made when they are asked
// for; what the file shares is shared. Neither trusts the file: work and memory stay proportional
// to its size whatever it says, a container inside itself is absent there, containers are nested
// 512 deep at most (deeper ones are absent), and a damaged object is an absent value among others
// that are read. No entity of XML is expanded and nothing that it refers to is opened; a file that
// declares anything of its own is refused.
//
// After parse() every value may be read from several threads at once.
class PropertyList {
public:
  static constexpr unsigned maximumDepth = 512;

  // Nothing for bytes that are no property list of either encoding, XML that is not well formed,
  // and a list without a value.
  static std::optional<PropertyList> parse(Bytes bytes);

  PropertyList(PropertyList&&) noexcept;
  PropertyList& operator=(PropertyList&&) noexcept;
  ~PropertyList();

  PropertyListValue root() const;

private:
  explicit PropertyList(std::unique_ptr<const BinaryPropertyList> list);

  std::unique_ptr<const BinaryPropertyList> m_list;
};

}  // namespace snaplift
