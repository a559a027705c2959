#include "foundation/propertylist/PropertyListXML.h"

#include <limits>
#include <memory>

#include <expat.h>

#include "foundation/propertylist/PropertyListElements.h"
#include "foundation/propertylist/PropertyListPlainXML.h"

namespace snaplift {
namespace {

// What Expat's callbacks need.
struct Parse {
  XML_Parser parser;
  PropertyListElements elements;
};

Parse& parseOf(void* userData) {
  return *static_cast<Parse*>(userData);
}

void XMLCALL onStart(void* userData, const XML_Char* name, const XML_Char**) {
  parseOf(userData).elements.start(elementNamed(name));
}

void XMLCALL onEnd(void* userData, const XML_Char* name) {
  parseOf(userData).elements.end(elementNamed(name));
}

void XMLCALL onText(void* userData, const XML_Char* text, int length) {
  parseOf(userData).elements.text({text, static_cast<std::size_t>(length)});
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
  const auto first = static_cast<unsigned>(xml[0] << 8 | xml[1]);
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
  if (std::optional<Bytes> binary = binaryFromPlainXML(xml)) {
    return binary;
  }
  const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser(
      XML_ParserCreate(encodingOf(xml)), XML_ParserFree);
  if (!parser || xml.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
    return std::nullopt;
  }
  Parse parse{parser.get(), PropertyListElements(xml.size())};
  XML_SetUserData(parser.get(), &parse);
  XML_SetElementHandler(parser.get(), onStart, onEnd);
  XML_SetCharacterDataHandler(parser.get(), onText);
  XML_SetStartDoctypeDeclHandler(parser.get(), onDocumentType);
  XML_SetSkippedEntityHandler(parser.get(), onUnknownEntity);
  // In one piece: a token that is cut by the end of a piece would be read again with every other.
  const XML_Status status = XML_Parse(parser.get(), reinterpret_cast<const char*>(xml.data()),
                                      static_cast<int>(xml.size()), XML_TRUE);
  return status == XML_STATUS_OK ? parse.elements.finish() : std::nullopt;
}

}  // namespace snaplift
