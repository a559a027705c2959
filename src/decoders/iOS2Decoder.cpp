#include "decoders/iOS2Decoder.h"

#include <algorithm>
#include <utility>

#include "decoders/BackupPropertyList.h"
#include "decoders/PhotoSuffix.h"

namespace snaplift {
namespace {

constexpr std::string_view pairFormExtension = ".mddata";
constexpr std::string_view singleFormExtension = ".mdbackup";

}  // namespace

std::optional<BackupFileModel> iOS2Decoder::readFileModel(const OpenFolder& folder,
                                                          const ListedFile& file,
                                                          Wanted wanted) const {
  auto list = readDictionaryOf(folder, file, ".mdinfo");
  const bool isPair = list.has_value();
  if (!isPair) {
    list = readDictionaryOf(folder, file, singleFormExtension);
  }
  std::optional<std::string> path = list ? textUnderKey(*list, "Path") : std::nullopt;
  if (!path) {
    noteDamageOf(joinPath(backupPath(), fileName(file, ".mdinfo")));
  }
  if (!path || !isWanted(*path, wanted)) {
    return std::nullopt;
  }
  BackupFileModel model =
      fileModel(file, isPair ? pairFormExtension : singleFormExtension, std::move(*path));
  if (const auto attributes = folder.fileAttributes(model.backupFileName())) {
    model.modificationDate = attributes->modificationDate;
    model.filelength = attributes->size;
  }
  if (const auto bytes = isPair ? std::nullopt : list->root().valueForKey("Data").data()) {
    model.filelength = bytes->size();
    if (wanted == Wanted::Media && hasPhotoExtension(model.path()) && mayHold(bytes->size())) {
      model.data = Bytes::copyOf(*bytes);
    }
  }
  return model;
}

bool iOS2Decoder::mayHold(std::uint64_t bytes) const {
  const bool may = m_bytesHeld.fetch_add(bytes) + bytes <= m_mostBytesHeld;
  if (!may) {
    m_bytesHeld -= bytes;
  }
  return may;
}

void iOS2Decoder::loadContents(std::stop_token stop) {
  m_bytesHeld = 0;
  FileListDecoder::loadContents(std::move(stop));
}

std::optional<Bytes> iOS2Decoder::dataOf(const BackupFileModel& photo, Bytes reuse) const {
  if (photo.data) {
    reuse.resize(photo.data->size());
    std::ranges::copy(photo.data->view(), reuse.data());
    return reuse;
  }
  std::optional<Bytes> file = FileListDecoder::dataOf(photo, std::move(reuse));
  if (!file || !photo.backupFileName().ends_with(singleFormExtension)) {
    return file;
  }
  const auto list = parseDictionary(Bytes::copyOf(*file));
  const auto bytes = list ? list->root().valueForKey("Data").data() : std::nullopt;
  return bytes ? Bytes::copyOf(*bytes) : std::move(file);
}

std::string iOS2Decoder::contentFileOf(const BackupFileModel& photo) const {
  const bool isSingleForm = photo.data || photo.backupFileName().ends_with(singleFormExtension);
  return isSingleForm ? std::string() : FileListDecoder::contentFileOf(photo);
}

ContentState iOS2Decoder::stateOf(const BackupFileModel& photo) const {
  return photo.data ? ContentState::Whole : FileListDecoder::stateOf(photo);
}

}  // namespace snaplift
