#include "samples/PropertyListWriter.h"

namespace snaplift::samples {

PlistValue PlistValue::dictionary(
    std::initializer_list<std::pair<std::string, PlistValue>> members) {
  return Dictionary(members);
}

PlistValue PlistValue::array(std::initializer_list<PlistValue> elements) {
  return Array(elements);
}

PlistValue PlistValue::data(std::string bytes) {
  return Data{std::move(bytes)};
}

std::string propertyList(const PlistValue& root, PropertyListEncoding encoding) {
  return encoding == PropertyListEncoding::Xml ? xmlPropertyList(root) : binaryPropertyList(root);
}

}  // namespace snaplift::samples
