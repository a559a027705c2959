#include "foundation/PropertyListXML.h"

#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include <expat.h>

#include "foundation/PropertyListAssembler.h"
#include "foundation/PropertyListText.h"

namespace snaplift {
namespace {

enum class Element {
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

Element elementNamed(std::string_view name) {
  struct Named {
    std::string_view name;
    Element element;
  };
  // The most frequent first.
  static constexpr Named elements[] = {
      {"key", Element::Key},   {"string", Element::String},      {"dict", Element::Dictionary},
      {"date", Element::Date}, {"data", Element::Data},          {"integer", Element::Integer},
      {"true", Element::True}, {"false", Element::False},        {"array", Element::Array},
      {"real", Element::Real}, {"plist", Element::PropertyList},
  };
  for (const Named& named : elements) {
    if (named.name == name) {
      return named.element;
    }
  }
  return Element::Unknown;
}

// Turns the elements of a document into calls of the assembler. It keeps one text, that of the
// value element that is open, and a count of the elements that are open under something that is no
// part of a property list.
class DocumentReader {
public:
  explicit DocumentReader(std::size_t size) : m_assembler(size) {}

  void start(Element element);
  void text(std::string_view text) {
    if (m_isValueOpen) {
      m_text.append(text);
    }
  }
  void end(Element element);
  std::optional<Bytes> finish() { return m_assembler.finish(); }

private:
  void addValue(Element element);

  PropertyListAssembler m_assembler;
  std::string m_text;
  std::string m_data;
  std::size_t m_skipped = 0;
  bool m_isValueOpen = false;
  bool m_isValueDamaged = false;
};

void DocumentReader::start(Element element) {
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

void DocumentReader::end(Element element) {
  if (m_skipped > 0) {
    --m_skipped;
  } else if (m_isValueOpen) {
    m_isValueOpen = false;
    addValue(m_isValueDamaged ? Element::Unknown : element);
  } else if (element != Element::PropertyList) {
    m_assembler.endContainer();
  }
}

void DocumentReader::addValue(Element element) {
  switch (element) {
    case Element::Key:
      return m_assembler.addKey(m_text);
    case Element::String:
      return m_assembler.addString(m_text);
    case Element::True:
    case Element::False:
      return m_assembler.addBoolean(element == Element::True);
    case Element::Integer:
      if (const auto integer = integerFromText(m_text)) {
        return m_assembler.addInteger(integer->bits, integer->isNegative);
      }
      break;
    case Element::Real:
      if (const auto real = realFromText(m_text)) {
        return m_assembler.addReal(*real);
      }
      break;
    case Element::Date:
      if (const auto seconds = dateFromText(m_text)) {
        return m_assembler.addDate(*seconds);
      }
      break;
    case Element::Data:
      if (dataFromText(m_text, m_data)) {
        return m_assembler.addData(bytesOf(m_data));
      }
      break;
    default:
      break;
  }
  m_assembler.addAbsent();
}

// What Expat's callbacks need.
struct Parse {
  XML_Parser parser;
  DocumentReader reader;
};

Parse& parseOf(void* userData) {
  return *static_cast<Parse*>(userData);
}

void XMLCALL onStart(void* userData, const XML_Char* name, const XML_Char**) {
  parseOf(userData).reader.start(elementNamed(name));
}

void XMLCALL onEnd(void* userData, const XML_Char* name) {
  parseOf(userData).reader.end(elementNamed(name));
}

void XMLCALL onText(void* userData, const XML_Char* text, int length) {
  parseOf(userData).reader.text({text, static_cast<std::size_t>(length)});
}

// Declarations of a document's own can make a small file mean a huge one, by entities or by
// default attributes.
void XMLCALL onDocumentType(void* userData, const XML_Char*, const XML_Char*, const XML_Char*,
                            int hasInternalSubset) {
  if (hasInternalSubset != 0) {
    XML_StopParser(parseOf(userData).parser, XML_FALSE);
  }
}

// An entity that the document type's external part might declare. It is never opened.
void XMLCALL onUnknownEntity(void* userData, const XML_Char*, int) {
  XML_StopParser(parseOf(userData).parser, XML_FALSE);
}

// "UTF-16" for a document that is seen to be that, whatever its declaration says: editors that
// save a file in another encoding leave the declaration alone. Else nothing: Expat finds out.
const char* encodingOf(ByteView xml) {
  if (xml.size() < 2) {
    return nullptr;
  }
  const unsigned first = static_cast<unsigned>(xml[0] << 8 | xml[1]);
  constexpr unsigned marks[] = {0xFEFF, 0xFFFE, '<', '<' << 8};
  for (const unsigned mark : marks) {
    if (first == mark) {
      return "UTF-16";
    }
  }
  return nullptr;
}

}  // namespace

std::optional<Bytes> binaryFromXML(ByteView xml) {
  const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser(
      XML_ParserCreate(encodingOf(xml)), XML_ParserFree);
  if (!parser || xml.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
    return std::nullopt;
  }
  Parse parse{parser.get(), DocumentReader(xml.size())};
  XML_SetUserData(parser.get(), &parse);
  XML_SetElementHandler(parser.get(), onStart, onEnd);
  XML_SetCharacterDataHandler(parser.get(), onText);
  XML_SetStartDoctypeDeclHandler(parser.get(), onDocumentType);
  XML_SetSkippedEntityHandler(parser.get(), onUnknownEntity);
  // In one piece: a token that is cut by the end of a piece would be read again with every other.
  const XML_Status status = XML_Parse(parser.get(), reinterpret_cast<const char*>(xml.data()),
                                      static_cast<int>(xml.size()), XML_TRUE);
  return status == XML_STATUS_OK ? parse.reader.finish() : std::nullopt;
}

}  // namespace snaplift
