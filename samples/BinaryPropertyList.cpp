#include <algorithm>
#include <bit>
#include <chrono>
#include <limits>
#include <optional>
#include <stdexcept>
#include <unordered_map>

#include "samples/BigEndian.h"
#include "samples/PropertyListWriter.h"

namespace snaplift::samples {
namespace {

// Dates count from here.
constexpr Instant epoch = std::chrono::sys_days{std::chrono::year{2001} / 1 / 1};

// 1, 2, 4 or 8: integers of the format have no other width.
unsigned widthFor(std::uint64_t value) {
  return value <= 0xFF ? 1 : value <= 0xFFFF ? 2 : value <= 0xFFFFFFFF ? 4 : 8;
}

void appendIntegerObject(std::string& out, std::uint64_t value) {
  const unsigned width = widthFor(value);
  out.push_back(static_cast<char>(0x10 | std::countr_zero(width)));
  appendInteger(out, value, width);
}

void appendMarker(std::string& out, unsigned kind, std::size_t count) {
  out.push_back(static_cast<char>(kind | std::min<std::size_t>(count, 15)));
  if (count >= 15) {
    appendIntegerObject(out, count);
  }
}

// The code point that starts at `position`, which moves past it; nothing where the bytes are not
// UTF-8.
std::optional<char32_t> nextCodePoint(std::string_view text, std::size_t& position) {
  const auto lead = static_cast<unsigned char>(text[position++]);
  if (lead < 0x80) {
    return lead;
  }
  const int length = std::countl_one(lead);
  if (length < 2 || length > 4) {
    return std::nullopt;
  }
  char32_t point = lead & (0x7FU >> length);
  for (int i = 1; i < length; ++i, ++position) {
    if (position == text.size() || (text[position] & 0xC0) != 0x80) {
      return std::nullopt;
    }
    point = point << 6 | (text[position] & 0x3F);
  }
  constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool valid =
      point >= smallest[length] && point <= 0x10FFFF && !(point >= 0xD800 && point <= 0xDFFF);
  return valid ? std::optional(point) : std::nullopt;
}

std::string utf16(std::string_view text) {
  std::string units;
  for (std::size_t position = 0; position < text.size();) {
    const std::optional<char32_t> point = nextCodePoint(text, position);
    if (!point) {
      throw std::runtime_error("a text of a property list is not UTF-8");
    }
    if (*point >= 0x10000) {
      appendInteger(units, 0xD800 + ((*point - 0x10000) >> 10), 2);
      appendInteger(units, 0xDC00 + (*point & 0x3FF), 2);
    } else {
      appendInteger(units, *point, 2);
    }
  }
  return units;
}

// An object of the file: a value of the tree, or the text of a key. `children` are the objects of
// the array's elements, or those of the dictionary's keys and then those of its values.
struct Object {
  const PlistValue* value = nullptr;
  const std::string* text = nullptr;
  std::vector<std::size_t> children;
};

class BinaryWriter {
public:
  std::string write(const PlistValue& root) {
    number(root);
    m_referenceWidth = widthFor(m_objects.size() - 1);
    m_out = "bplist00";
    std::vector<std::size_t> offsets;
    for (const Object& object : m_objects) {
      offsets.push_back(m_out.size());
      append(object);
    }
    appendTable(offsets);
    return std::move(m_out);
  }

private:
  std::size_t number(const PlistValue& value) {
    if (const auto* text = std::get_if<std::string>(&value.value())) {
      return number(*text);
    }
    const std::size_t index = m_objects.size();
    m_objects.push_back({&value, nullptr, {}});
    std::vector<std::size_t> children;
    if (const auto* array = std::get_if<PlistValue::Array>(&value.value())) {
      for (const PlistValue& element : *array) {
        children.push_back(number(element));
      }
    } else if (const auto* members = std::get_if<PlistValue::Dictionary>(&value.value())) {
      for (const auto& member : *members) {
        children.push_back(number(member.first));
      }
      for (const auto& member : *members) {
        children.push_back(number(member.second));
      }
    }
    m_objects[index].children = std::move(children);
    return index;
  }

  std::size_t number(const std::string& text) {
    const auto [known, isNew] = m_texts.try_emplace(text, m_objects.size());
    if (isNew) {
      m_objects.push_back({nullptr, &text, {}});
    }
    return known->second;
  }

  void append(const Object& object) {
    if (object.text != nullptr) {
      return appendText(*object.text);
    }
    std::visit([&](const auto& value) { appendValue(value, object); }, object.value->value());
  }

  void appendText(const std::string& text) {
    const bool ascii = std::ranges::all_of(text, [](char c) { return (c & 0x80) == 0; });
    const std::string units = ascii ? text : utf16(text);
    appendMarker(m_out, ascii ? 0x50 : 0x60, ascii ? units.size() : units.size() / 2);
    m_out += units;
  }

  void appendValue(bool value, const Object&) { m_out.push_back(value ? '\x09' : '\x08'); }

  void appendValue(std::int64_t value, const Object&) {
    if (value < 0) {
      m_out.push_back('\x13');  // only the widest integer has a sign
      appendInteger(m_out, static_cast<std::uint64_t>(value), 8);
    } else {
      appendIntegerObject(m_out, static_cast<std::uint64_t>(value));
    }
  }

  void appendValue(std::uint64_t value, const Object&) {
    if (value > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
      m_out.push_back('\x14');  // 128 bits, as 64 would be read with a sign
      appendInteger(m_out, 0, 8);
      appendInteger(m_out, value, 8);
    } else {
      appendIntegerObject(m_out, value);
    }
  }

  void appendValue(double value, const Object&) {
    m_out.push_back('\x23');
    appendInteger(m_out, std::bit_cast<std::uint64_t>(value), 8);
  }

  void appendValue(Instant value, const Object&) {
    const std::chrono::duration<double> seconds = value - epoch;
    m_out.push_back('\x33');
    appendInteger(m_out, std::bit_cast<std::uint64_t>(seconds.count()), 8);
  }

  void appendValue(const std::string& value, const Object&) { appendText(value); }

  void appendValue(const PlistValue::Data& value, const Object&) {
    appendMarker(m_out, 0x40, value.bytes.size());
    m_out += value.bytes;
  }

  void appendValue(PlistValue::Uid value, const Object&) {
    const unsigned width = widthFor(value.number);
    m_out.push_back(static_cast<char>(0x80 | (width - 1)));
    appendInteger(m_out, value.number, width);
  }

  void appendValue(const PlistValue::Array& value, const Object& object) {
    appendMarker(m_out, 0xA0, value.size());
    appendReferences(object);
  }

  void appendValue(const PlistValue::Dictionary& value, const Object& object) {
    appendMarker(m_out, 0xD0, value.size());
    appendReferences(object);
  }

  void appendReferences(const Object& object) {
    for (const std::size_t child : object.children) {
      appendInteger(m_out, child, m_referenceWidth);
    }
  }

  void appendTable(const std::vector<std::size_t>& offsets) {
    const std::size_t table = m_out.size();
    const unsigned offsetWidth = widthFor(offsets.back());
    for (const std::size_t offset : offsets) {
      appendInteger(m_out, offset, offsetWidth);
    }
    appendInteger(m_out, 0, 6);
    appendInteger(m_out, offsetWidth, 1);
    appendInteger(m_out, m_referenceWidth, 1);
    appendInteger(m_out, offsets.size(), 8);
    appendInteger(m_out, 0, 8);  // the root is the first object
    appendInteger(m_out, table, 8);
  }

  std::vector<Object> m_objects;
  std::unordered_map<std::string_view, std::size_t> m_texts;
  unsigned m_referenceWidth = 1;
  std::string m_out;
};

}  // namespace

std::string binaryPropertyList(const PlistValue& root) {
  return BinaryWriter().write(root);
}

}  // namespace snaplift::samples
