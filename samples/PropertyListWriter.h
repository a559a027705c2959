#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "foundation/Time.h"

namespace snaplift::samples {

// A property-list value to be written. Texts, numbers, booleans and dates convert by themselves;
// containers and byte blocks are named:
//
//   PlistValue::dictionary({{"IsEncrypted", false},
//                           {"Data", PlistValue::data(bytes)},
//                           {"Sizes", PlistValue::array({1, 2.5, "three"})}})
//
// A dictionary keeps the order in which its keys were given and does not look for equal ones, so
// that a file with a key twice can be written. Values are copied.
class PlistValue {
public:
  using Array = std::vector<PlistValue>;
  using Dictionary = std::vector<std::pair<std::string, PlistValue>>;
  struct Data {
    std::string bytes;
  };
  // A reference of a keyed archive: the number of another object. For the binary encoding only.
  struct Uid {
    std::uint64_t number;
  };

  PlistValue(bool value) : m_value(value) {}
  PlistValue(std::signed_integral auto value) : m_value(static_cast<std::int64_t>(value)) {}
  PlistValue(std::unsigned_integral auto value) : m_value(static_cast<std::uint64_t>(value)) {}
  PlistValue(double value) : m_value(value) {}
  PlistValue(const char* value) : m_value(std::string(value)) {}
  PlistValue(std::string_view value) : m_value(std::string(value)) {}
  PlistValue(std::string value) : m_value(std::move(value)) {}
  PlistValue(Instant value) : m_value(value) {}
  PlistValue(Data value) : m_value(std::move(value)) {}
  PlistValue(Uid value) : m_value(value) {}
  PlistValue(Array value) : m_value(std::move(value)) {}
  PlistValue(Dictionary value) : m_value(std::move(value)) {}

  static PlistValue dictionary(
      std::initializer_list<std::pair<std::string, PlistValue>> members = {});
  static PlistValue array(std::initializer_list<PlistValue> elements = {});
  static PlistValue data(std::string bytes);

  using Variant = std::variant<bool, std::int64_t, std::uint64_t, double, std::string, Instant,
                               Data, Uid, Array, Dictionary>;
  const Variant& value() const { return m_value; }

private:
  Variant m_value;
};

enum class PropertyListEncoding { Xml, Binary };

// The XML encoding, UTF-8, indented with tabs. Dates are cut to whole seconds, which is all that
// this encoding holds. Throws std::runtime_error for control characters, which XML cannot hold.
std::string xmlPropertyList(const PlistValue& root);

// The binary encoding, version 00. Equal texts become one object; everything else is written as
// often as it stands in the tree. Offsets and references have the smallest width that fits. Texts
// are ASCII or else UTF-16: throws std::runtime_error for a text that is not UTF-8.
std::string binaryPropertyList(const PlistValue& root);

std::string propertyList(const PlistValue& root, PropertyListEncoding encoding);

}  // namespace snaplift::samples
