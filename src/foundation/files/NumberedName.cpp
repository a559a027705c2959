#include "foundation/files/NumberedName.h"

#include "foundation/files/Path.h"

namespace snaplift {

std::string numberedName(std::string_view name, std::uint64_t number) {
  return number == 0 ? std::string(name)
                     : std::string(pathStem(name)) + " " + std::to_string(number) + "." +
                           std::string(pathExtension(name));
}

std::optional<FileError> publishNumbered(NewFile& file, std::uint64_t& counter) {
  const std::string name = file.name();
  std::optional<FileError> taken = file.publish(name);
  std::optional<FileError> error = taken;
  while (error && error->isFileExists()) {
    if (++counter > maximumNumberedNames) {
      counter = 0;
      return taken;
    }
    error = file.publish(numberedName(name, counter));
  }
  if (!error) {
    counter = 0;
  }
  return error;
}

}  // namespace snaplift
