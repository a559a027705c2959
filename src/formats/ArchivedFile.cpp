#include "formats/ArchivedFile.h"

#include "foundation/propertylist/PropertyList.h"

namespace snaplift {

ArchivedFile ArchivedFile::fromArchive(ByteView archive) {
  const auto list = PropertyList::parse(Bytes::copyOf(archive));
  if (!list) {
    return {};
  }
  const PropertyListValue objects = list->root().valueForKey("$objects");
  const auto referred = [&](PropertyListValue value) {
    const std::optional<std::uint64_t> number = value.uid();
    return number ? objects.at(*number) : value;
  };
  const PropertyListValue file = referred(list->root().valueForKey("$top").valueForKey("root"));
  const auto under = [&](std::string_view key) { return referred(file.valueForKey(key)); };
  return {under("Size").unsignedInteger(), under("Birth").integer(),
          under("LastModified").integer(), under("Mode").unsignedInteger()};
}

}  // namespace snaplift
