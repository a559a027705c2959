#include "decoders/BackupPropertyList.h"

#include <utility>

#include "foundation/files/File.h"

namespace snaplift {

std::optional<PropertyList> readDictionary(const std::string& folder, const std::string& name) {
  std::optional<DatedContent> content = OpenFolder(folder).readFoundFile(name);
  return content ? parseDictionary(std::move(content->bytes)) : std::nullopt;
}

std::optional<PropertyList> parseDictionary(Bytes bytes) {
  std::optional<PropertyList> list = PropertyList::parse(std::move(bytes));
  const bool isDictionary = list && list->root().kind() == PropertyListValue::Kind::Dictionary;
  return isDictionary ? std::move(list) : std::nullopt;
}

std::optional<std::string> textUnderKey(const PropertyList& list, std::string_view key) {
  const std::optional<std::string_view> text = list.root().valueForKey(key).string();
  return text ? std::optional<std::string>(*text) : std::nullopt;
}

bool isEncrypted(const std::optional<PropertyList>& manifest) {
  return manifest && manifest->root().valueForKey("IsEncrypted").boolValue();
}

}  // namespace snaplift
