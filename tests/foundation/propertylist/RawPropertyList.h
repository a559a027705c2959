#pragma once

#include <bit>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Bytes.h"
#include "foundation/propertylist/PropertyList.h"

namespace snaplift {

// Writes binary property lists object by object, the impossible ones too: every reference, offset
// and trailer field is the caller's to set.
struct RawPropertyList {
  std::vector<std::string> objects;
  unsigned offsetSize = 4;
  unsigned referenceSize = 2;
  std::uint64_t root = 0;
  // The offsets of the table, where they shall differ from the truth.
  std::optional<std::vector<std::uint64_t>> offsets = {};
  // Trailer fields that shall lie.
  std::optional<std::uint64_t> count = {}, table = {};

  static std::string bigEndian(std::uint64_t value, unsigned width) {
    std::string bytes;
    for (unsigned shift = 8 * width; shift > 0; shift -= 8) {
      bytes.push_back(shift > 64 ? '\0' : static_cast<char>(value >> (shift - 8)));
    }
    return bytes;
  }

  static std::string marker(unsigned type, std::size_t count) {
    std::string bytes(1, static_cast<char>(type << 4 | (count < 15 ? count : 15)));
    return count < 15 ? bytes : bytes + '\x12' + bigEndian(count, 4);
  }

  static std::string ascii(std::string_view text) { return marker(5, text.size()).append(text); }
  static std::string utf16(std::u16string_view text) {
    std::string bytes = marker(6, text.size());
    for (const char16_t unit : text) {
      bytes += bigEndian(unit, 2);
    }
    return bytes;
  }
  static std::string data(std::string_view bytes) { return marker(4, bytes.size()).append(bytes); }
  static std::string integer(std::uint64_t value, unsigned width) {
    return static_cast<char>(0x10 | std::countr_zero(width)) + bigEndian(value, width);
  }
  static std::string date(double seconds) {
    return '\x33' + bigEndian(std::bit_cast<std::uint64_t>(seconds), 8);
  }

  std::string array(const std::vector<std::uint64_t>& elements) const {
    std::string bytes = marker(0xA, elements.size());
    for (const std::uint64_t element : elements) {
      bytes += bigEndian(element, referenceSize);
    }
    return bytes;
  }
  std::string dictionary(const std::vector<std::uint64_t>& keys,
                         const std::vector<std::uint64_t>& values) const {
    std::string bytes = marker(0xD, keys.size());
    for (const auto* references : {&keys, &values}) {
      for (const std::uint64_t reference : *references) {
        bytes += bigEndian(reference, referenceSize);
      }
    }
    return bytes;
  }

  std::uint64_t add(std::string object) {
    objects.push_back(std::move(object));
    return objects.size() - 1;
  }

  std::string bytes() const {
    std::string file = "bplist00";
    std::vector<std::uint64_t> found;
    for (const std::string& object : objects) {
      found.push_back(file.size());
      file += object;
    }
    const std::uint64_t end = file.size();
    for (const std::uint64_t offset : offsets.value_or(found)) {
      file += bigEndian(offset, offsetSize);
    }
    file += std::string(6, '\0') + static_cast<char>(offsetSize) + static_cast<char>(referenceSize);
    return file + bigEndian(count.value_or(offsets.value_or(found).size()), 8) +
           bigEndian(root, 8) + bigEndian(table.value_or(end), 8);
  }
};

inline std::optional<PropertyList> parsed(std::string_view bytes) {
  return PropertyList::parse(Bytes::copyOf(bytesOf(bytes)));
}

inline std::optional<PropertyList> parsed(const RawPropertyList& list) {
  return parsed(list.bytes());
}

inline std::string xmlDocument(std::string_view value) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<!DOCTYPE plist PUBLIC \"-//Example//DTD PLIST 1.0//EN\" "
         "\"http://localhost:9/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">" +
         std::string(value) + "</plist>\n";
}

// Everything that can be asked of a value, as text: each answer behind a letter for its type.
inline std::string description(PropertyListValue value) {
  using Kind = PropertyListValue::Kind;
  static constexpr const char* names[] = {"absent", "dictionary", "array", "string", "integer",
                                          "real",   "boolean",    "date",  "data",   "uid"};
  std::ostringstream text;
  const auto add = [&text](const char* type, const auto& answer) {
    if (answer) {
      text << type << *answer;
    }
  };
  text << names[static_cast<std::size_t>(value.kind())];
  add(" ", value.string());
  add(" i", value.integer());
  add(" u", value.unsignedInteger());
  add(" #", value.uid());
  add(" r", value.real());
  add(" b", value.boolean());
  add(" ", value.date() ? std::optional(rfc3339Text(*value.date())) : std::nullopt);
  add(" ", value.data() ? std::optional(textOf(*value.data())) : std::nullopt);
  text << (value.boolValue() ? " yes" : "");
  if (value.kind() == Kind::Array || value.kind() == Kind::Dictionary) {
    const PropertyListEntries entries = value.entries();
    text << '(';
    for (const auto& [key, member] : entries) {
      text << description(key) << ": " << description(member) << ", ";
    }
    for (std::size_t i = entries.size(); i < value.count(); ++i) {
      text << description(value.at(i)) << ", ";
    }
    text << ')';
  }
  return text.str();
}

template <class File>
std::string descriptionOf(const File& file) {
  const auto list = parsed(file);
  return list ? description(list->root()) : "nothing";
}

}  // namespace snaplift
