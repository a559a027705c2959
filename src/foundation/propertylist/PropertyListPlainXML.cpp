#include "foundation/propertylist/PropertyListPlainXML.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "foundation/propertylist/PropertyListElements.h"

namespace snaplift {
namespace {

// Whether there is nothing in the document that means more than itself: only ASCII that XML allows,
// without references and carriage returns; and no end of a marked section, which must not stand
// elsewhere either. Written as sums over the bytes so that the compiler takes many at once.
bool isPlain(std::string_view xml) {
  unsigned strange = 0;
  for (const char c : xml) {
    const bool isControl = static_cast<signed char>(c) < 0x20 && c != '\t' && c != '\n';
    strange |= static_cast<unsigned>(isControl) | static_cast<unsigned>(c == '\x7F') |
               static_cast<unsigned>(c == '&');
  }
  return strange == 0 && xml.find("]]>") == std::string_view::npos;
}

// Takes a document apart from front to back. Every function answers whether it found what it looks
// for and moves past it; otherwise the document is not plain.
class Scanner {
public:
  explicit Scanner(std::string_view xml) : m_rest(xml), m_elements(xml.size()) {}

  bool scan() { return scanProlog() && scanElements() && skip(whiteSpace) && m_rest.empty(); }
  std::optional<Bytes> finish() { return m_elements.finish(); }

private:
  static constexpr std::string_view whiteSpace = " \t\n";

  bool take(std::string_view text) {
    if (!m_rest.starts_with(text)) {
      return false;
    }
    m_rest.remove_prefix(text.size());
    return true;
  }
  bool skip(std::string_view characters) {
    m_rest.remove_prefix(std::min(m_rest.find_first_not_of(characters), m_rest.size()));
    return true;
  }
  bool takeSpace() { return take(" ") && skip(whiteSpace); }
  bool takeQuoted();
  bool scanProlog();
  bool scanDocumentType();
  bool scanElements();
  bool scanStart();
  bool scanEnd();

  std::string_view m_rest;
  PropertyListElements m_elements;
  std::vector<Element> m_open;
};

// Every character that may stand in a public identifier as well as in a system identifier.
bool Scanner::takeQuoted() {
  if (!take("\"")) {
    return false;
  }
  skip("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789 -./:");
  return take("\"");
}

bool Scanner::scanProlog() {
  if (take("<?xml version=\"1.0\"")) {
    if (!(take(" encoding=\"UTF-8\"?>") || take(" encoding=\"utf-8\"?>") || take("?>"))) {
      return false;
    }
  }
  skip(whiteSpace);
  if (take("<!DOCTYPE plist") && !scanDocumentType()) {
    return false;
  }
  if (!take("<plist version=\"1.0\">") && !take("<plist>")) {
    return false;
  }
  m_open.push_back(Element::PropertyList);
  m_elements.start(Element::PropertyList);
  return true;
}

bool Scanner::scanDocumentType() {
  if (take(" PUBLIC ")) {
    if (!takeQuoted() || !takeSpace()) {
      return false;
    }
  } else if (!take(" SYSTEM ")) {
    return false;
  }
  return takeQuoted() && take(">") && skip(whiteSpace);
}

bool Scanner::scanElements() {
  while (!m_open.empty()) {
    // Text between elements is nothing.
    m_rest.remove_prefix(std::min(m_rest.find('<'), m_rest.size()));
    if (!(m_rest.starts_with("</") ? scanEnd() : scanStart())) {
      return false;
    }
  }
  return true;
}

bool Scanner::scanEnd() {
  const Element element = m_open.back();
  m_open.pop_back();
  m_elements.end(element);
  return take("</") && take(nameOf(element)) && take(">");
}

bool Scanner::scanStart() {
  constexpr std::size_t longestTag = 10;  // "<integer/>"
  const std::size_t end = m_rest.substr(0, longestTag).find('>');
  if (end == std::string_view::npos) {
    return false;
  }
  const bool isEmpty = m_rest[end - 1] == '/';
  const Element element = elementNamed(m_rest.substr(1, end - 1 - (isEmpty ? 1 : 0)));
  m_rest.remove_prefix(end + 1);
  if (element == Element::Unknown || element == Element::PropertyList) {
    return false;
  }
  if (PropertyListElements::isContainer(element)) {
    m_elements.start(element);
    if (isEmpty) {
      m_elements.end(element);
    } else {
      m_open.push_back(element);
    }
    return true;
  }
  const std::size_t size = isEmpty ? 0 : m_rest.find('<');
  if (size == std::string_view::npos) {
    return false;
  }
  m_elements.value(element, m_rest.substr(0, size));
  m_rest.remove_prefix(size);
  return isEmpty || (take("</") && take(nameOf(element)) && take(">"));
}

}  // namespace

std::optional<Bytes> binaryFromPlainXML(ByteView xml) {
  if (!isPlain(textOf(xml))) {
    return std::nullopt;
  }
  Scanner scanner(textOf(xml));
  return scanner.scan() ? scanner.finish() : std::nullopt;
}

}  // namespace snaplift
