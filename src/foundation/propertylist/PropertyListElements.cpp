#include "foundation/propertylist/PropertyListElements.h"

#include <iterator>

#include "foundation/propertylist/PropertyListText.h"

namespace snaplift {
namespace {

// In the order of the enumeration.
constexpr std::string_view names[] = {"plist", "dict", "array", "key",  "string", "integer",
                                      "real",  "date", "data",  "true", "false"};

}  // namespace

Element elementNamed(std::string_view name) {
  for (std::size_t i = 0; i < std::size(names); ++i) {
    if (names[i] == name) {
      return static_cast<Element>(i);
    }
  }
  return Element::Unknown;
}

std::string_view nameOf(Element element) {
  return element == Element::Unknown ? std::string_view() : names[static_cast<int>(element)];
}

void PropertyListElements::start(Element element) {
  if (m_skipped > 0 || m_isValueOpen) {
    m_isValueDamaged = true;
    ++m_skipped;
    return;
  }
  switch (element) {
    case Element::PropertyList:
      break;
    case Element::Dictionary:
      m_assembler.beginDictionary();
      break;
    case Element::Array:
      m_assembler.beginArray();
      break;
    case Element::Unknown:
      m_assembler.addAbsent();
      ++m_skipped;
      break;
    default:
      m_text.clear();
      m_isValueOpen = true;
      m_isValueDamaged = false;
  }
}

void PropertyListElements::end(Element element) {
  if (m_skipped > 0) {
    --m_skipped;
  } else if (m_isValueOpen) {
    m_isValueOpen = false;
    value(m_isValueDamaged ? Element::Unknown : element, m_text);
  } else if (element != Element::PropertyList) {
    m_assembler.endContainer();
  }
}

void PropertyListElements::value(Element element, std::string_view text) {
  switch (element) {
    case Element::Key:
      return m_assembler.addKey(text);
    case Element::String:
      return m_assembler.addString(text);
    case Element::True:
    case Element::False:
      return m_assembler.addBoolean(element == Element::True);
    case Element::Integer:
      if (const auto integer = integerFromText(text)) {
        return m_assembler.addInteger(integer->bits, integer->isNegative);
      }
      break;
    case Element::Real:
      if (const auto real = realFromText(text)) {
        return m_assembler.addReal(*real);
      }
      break;
    case Element::Date:
      if (const auto seconds = dateFromText(text)) {
        return m_assembler.addDate(*seconds);
      }
      break;
    case Element::Data:
      if (dataFromText(text, m_data)) {
        return m_assembler.addData(bytesOf(m_data));
      }
      break;
    default:
      break;
  }
  m_assembler.addAbsent();
}

}  // namespace snaplift
