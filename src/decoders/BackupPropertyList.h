#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation/propertylist/PropertyList.h"

namespace snaplift {

// The property list in the file `name` of `folder`, found without regard to letter case, whose root
// is a dictionary. Nothing where the file is missing, unreadable or anything else.
std::optional<PropertyList> readDictionary(const std::string& folder, const std::string& name);

// The property list in `bytes` whose root is a dictionary; nothing where they are anything else.
std::optional<PropertyList> parseDictionary(Bytes bytes);

// The text under `key` of the root dictionary; nothing where it is of another type.
std::optional<std::string> textUnderKey(const PropertyList& list, std::string_view key);

// Whether a backup's "manifest.plist" says that its content is encrypted. A missing manifest, or
// one without the key, says no.
bool isEncrypted(const std::optional<PropertyList>& manifest);

}  // namespace snaplift
