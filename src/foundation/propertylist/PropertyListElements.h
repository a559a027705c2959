#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/Bytes.h"
#include "foundation/propertylist/PropertyListAssembler.h"

namespace snaplift {

// The elements of an XML property list.
enum class Element : std::uint8_t {
  PropertyList,
  Dictionary,
  Array,
  Key,
  String,
  Integer,
  Real,
  Date,
  Data,
  True,
  False,
  Unknown,
};

Element elementNamed(std::string_view name);

// Empty for Unknown.
std::string_view nameOf(Element element);

// Makes a binary property list from the elements of an XML document, in whatever way the document
// was taken apart. What does not belong into a property list costs only itself: an element of an
// unknown name, or one whose text is no value of its type, is an absent value, and text between
// elements is nothing.
class PropertyListElements {
public:
  explicit PropertyListElements(std::size_t documentSize) : m_assembler(documentSize) {}

  // The document in its order; each start has its end.
  void start(Element element);
  void text(std::string_view text) {
    if (m_isValueOpen) {
      m_text.append(text);
    }
  }
  void end(Element element);

  // An element with this text and nothing else in it: start, text and end in one.
  void value(Element element, std::string_view text);

  static bool isContainer(Element element) {
    return element == Element::Dictionary || element == Element::Array ||
           element == Element::PropertyList;
  }

  // The list, after the last end; nothing where no value came.
  std::optional<Bytes> finish() { return m_assembler.finish(); }

private:
  PropertyListAssembler m_assembler;
  std::string m_text;         // of the value element that is open
  std::string m_data;         // kept for its storage
  std::size_t m_skipped = 0;  // elements that are open under something that is no value
  bool m_isValueOpen = false;
  bool m_isValueDamaged = false;
};

}  // namespace snaplift
