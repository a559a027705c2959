#include "decoders/BackupPropertyList.h"

#include <utility>

#include "foundation/File.h"

namespace snaplift {

std::optional<PropertyList> readDictionaryAtPath(const std::string& path) {
  std::optional<Bytes> bytes = readFile(path);
  if (!bytes) {
    return std::nullopt;
  }
  std::optional<PropertyList> list = PropertyList::parse(std::move(*bytes));
  if (!list || list->root().kind() != PropertyListKind::Dictionary) {
    return std::nullopt;
  }
  return list;
}

std::optional<PropertyList> readDictionary(const std::string& folder, std::string_view name) {
  return readDictionaryAtPath(findFile(folder, name));
}

bool isEncrypted(const std::optional<PropertyList>& manifest) {
  return manifest && manifest->root().valueForKey("IsEncrypted").boolValue();
}

}  // namespace snaplift
