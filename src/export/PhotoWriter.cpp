#include "export/PhotoWriter.h"

#include <cerrno>
#include <utility>

#include "foundation/files/InputFile.h"
#include "foundation/files/NumberedName.h"
#include "foundation/files/OutputFolder.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

// The name that a photo's file gets where it is free. A leading dot would hide it.
std::string visibleName(const ImageItem& photo) {
  std::string name = photo.fileName();
  return name.starts_with('.') ? "_" + name : name;
}

// The first of the names that are tried for `name` for which `isWanted` answers yes.
template <class Wanted>
std::optional<std::string> firstName(const std::string& name, const Wanted& isWanted) {
  for (std::uint64_t number = 0; number <= maximumNumberedNames; ++number) {
    std::string candidate = numberedName(name, number);
    if (isWanted(candidate)) {
      return candidate;
    }
  }
  return std::nullopt;
}

InputFile fileIn(const ExportFolder& folder, const std::string& name) {
  return InputFile(joinPath(folder.path(), name));
}

}  // namespace

WrittenPhoto PhotoWriter::write(const PhotoToExport& photo) const {
  WrittenPhoto written;
  written.outcome.photo = photo.photo;
  if (!isFileName(photo.photo->fileName())) {
    written.outcome.error = FileError::invalidFileName(photo.photo->path());
    return written;
  }
  // Before a folder is made where another disk may be by now.
  written.outcome.error = m_folders.loss();
  if (written.outcome.error) {
    return written;
  }
  written.folder = &m_folders.folderAt(photo.folder);
  if (written.folder->error()) {
    written.outcome.error = written.folder->error();
    return written;
  }
  if (m_options.skipsExisting || photo.mayBeThere) {
    const auto isThere = [&](const std::string& name) {
      const bool mayBe = photo.mayBeThere || written.folder->had(name);
      InputFile file = mayBe ? fileIn(*written.folder, name) : InputFile({});
      return file && photo.photo->isHeldBy(file);
    };
    if (const auto name = firstName(visibleName(*photo.photo), isThere)) {
      skip(written, *name);
      return written;
    }
  }
  written.outcome.error = m_options.isDryRun ? photo.photo->readingError() : writeFile(written);
  if (written.outcome.error) {
    written.file.reset();
  }
  return written;
}

std::optional<FileError> PhotoWriter::writeFile(WrittenPhoto& written) const {
  const ImageItem& photo = *written.outcome.photo;
  written.output = m_folders.open(*written.folder);
  written.file = std::make_unique<NewFile>(*written.output, visibleName(photo));
  NewFile& file = *written.file;
  if (file.error()) {
    return file.error();
  }
  if (auto error = photo.writeInto(file)) {
    return error;
  }
  const PhotoInfo info = photo.info();
  written.outcome.isShort = info.size && *info.size != file.size();
  return file.seal(m_options.keepsDates ? info.modificationDate : std::nullopt);
}

void PhotoWriter::giveName(WrittenPhoto& written) const {
  ExportedPhoto& outcome = written.outcome;
  if (outcome.error || outcome.isSkipped) {
    return;
  }
  if (m_options.isDryRun) {
    nameInDryRun(written);
    return;
  }
  NewFile& file = *written.file;
  if (m_options.skipsExisting) {
    InputFile content = file.content();
    const auto isThere = [&](const std::string& name) {
      InputFile other =
          written.folder->photoGiven(name) ? fileIn(*written.folder, name) : InputFile({});
      return other && other.hasBytesOf(content);
    };
    if (const auto name = firstName(file.name(), isThere)) {
      skip(written, *name);
      written.file.reset();
      return;
    }
  }
  std::uint64_t counter = 0;
  outcome.error = publishNumbered(file, counter);
  if (!outcome.error) {
    outcome.written = joinPath(written.folder->path(), file.name());
    outcome.isRenamed = file.name() != outcome.photo->fileName();
    outcome.bytes = file.size();
    if (m_options.skipsExisting) {
      written.folder->give(file.name(), *outcome.photo);
    }
  }
  written.file.reset();
}

void PhotoWriter::skip(WrittenPhoto& written, const std::string& name) const {
  written.outcome.isSkipped = true;
  written.outcome.written = joinPath(written.folder->path(), name);
}

void PhotoWriter::nameInDryRun(WrittenPhoto& written) const {
  ExportedPhoto& outcome = written.outcome;
  ExportFolder& folder = *written.folder;
  const std::string wanted = visibleName(*outcome.photo);
  if (m_options.skipsExisting) {
    const auto isThere = [&](const std::string& name) {
      const ImageItem* other = folder.photoGiven(name);
      return other && outcome.photo->hasBytesOf(*other);
    };
    if (const auto name = firstName(wanted, isThere)) {
      skip(written, *name);
      return;
    }
  }
  const auto isFree = [&](const std::string& name) {
    return !folder.had(name) && !folder.photoGiven(name);
  };
  const std::optional<std::string> name = firstName(wanted, isFree);
  const std::string path = joinPath(folder.path(), name.value_or(wanted));
  if (!name) {
    outcome.error = FileError::fileExists(path);
    return;
  }
  folder.give(*name, *outcome.photo);
  outcome.written = path;
  outcome.isRenamed = *name != outcome.photo->fileName();
}

// A full and a read-only file system say so themselves; of one that is gone there are many words,
// some of which may be meant for a single name or folder.
bool PhotoWriter::isDestinationLost(const WrittenPhoto& photo) const {
  const std::optional<FileError>& error = photo.outcome.error;
  if (!error || error->domain != posixErrorDomain) {
    return false;
  }
  return error->code == ENOSPC || error->code == EDQUOT || error->code == EROFS ||
         !m_folders.destination().isUsable();
}

}  // namespace snaplift
