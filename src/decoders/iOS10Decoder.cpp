#include "decoders/iOS10Decoder.h"

#include <algorithm>
#include <cstring>
#include <tuple>
#include <utility>

#include "foundation/Digest.h"

namespace snaplift {
namespace {

constexpr std::string_view photoDomain = "CameraRollDomain";
constexpr std::int64_t regularFileFlag = 1;

bool isFile(const DatabaseRow& row) {
  return row.flags.value_or(regularFileFlag) == regularFileFlag && !row.relativePath.empty();
}

bool isPhoto(const DatabaseRow& row) {
  return isFile(row) && mediaOfPath(row.relativePath) &&
         kindOfPath(row.relativePath) != PhotoKind::Derived;
}

std::string_view kept(std::string_view text, std::pmr::memory_resource& texts) {
  if (text.empty()) {
    return {};
  }
  auto* copy = static_cast<char*>(texts.allocate(text.size(), 1));
  std::memcpy(copy, text.data(), text.size());
  return {copy, text.size()};
}

int digitOf(char c) {
  return c >= '0' && c <= '9'   ? c - '0'
         : c >= 'a' && c <= 'f' ? c - 'a' + 10
         : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                : -1;
}

// False for a text that is not 40 hexadecimal digits.
bool readDigest(std::string_view text, std::array<std::uint8_t, 20>& digest) {
  if (text.size() != 2 * digest.size()) {
    return false;
  }
  for (std::size_t i = 0; i < digest.size(); ++i) {
    const int high = digitOf(text[2 * i]);
    const int low = digitOf(text[2 * i + 1]);
    if (high < 0 || low < 0) {
      return false;
    }
    digest[i] = static_cast<std::uint8_t>(high << 4 | low);
  }
  return true;
}

// By domain and path; of several of one path the last that was listed.
void sortAndDropRepeated(std::vector<DatabaseFile>& files) {
  const auto place = [](const DatabaseFile& file) { return std::tie(file.domain, file.path); };
  std::reverse(files.begin(), files.end());
  std::stable_sort(files.begin(), files.end(), [&](const DatabaseFile& a, const DatabaseFile& b) {
    return place(a) < place(b);
  });
  const auto isRepeated = [&](const DatabaseFile& a, const DatabaseFile& b) {
    return place(a) == place(b);
  };
  files.erase(std::unique(files.begin(), files.end(), isRepeated), files.end());
}

}  // namespace

std::string DatabaseFile::uniquePath() const {
  return joinPath(*backupFolder, path);
}

std::string DatabaseFile::contentFileName() const {
  if (!hasContentName) {
    return {};
  }
  const std::string name = hexText(digest, HexCase::Lower);
  return name.substr(0, 2) + "/" + name;
}

DatabaseFile iOS10Decoder::fileOf(const DatabaseRow& row, Texts& texts) const {
  DatabaseFile file{};
  file.backupFolder = &backupPath();
  file.path = kept(row.relativePath, texts);
  file.hasContentName = readDigest(row.fileID, file.digest);
  const ArchivedFile archived = ArchivedFile::fromArchive(row.file);
  file.size = archived.size;
  file.birth = archived.birth.value_or(0);
  file.lastModified = archived.lastModified.value_or(0);
  return file;
}

void iOS10Decoder::loadContents(std::stop_token stop) {
  if (readFlagOfEncryption()) {
    setContents(true, {});
    return;
  }
  m_texts.release();
  std::vector<DatabaseFile> photos;
  ManifestDatabase database(backupPath(), stop);
  const bool isWhole = database.visitRows(photoDomain, [&](const DatabaseRow& row) {
    if (isPhoto(row)) {
      photos.push_back(fileOf(row, m_texts));
    }
  });
  if (stop.stop_requested()) {
    return;
  }
  if (!isWhole) {
    noteDamageOf(joinPath(backupPath(), "Manifest.db"));
  }
  sortAndDropRepeated(photos);
  setContents(false, std::move(photos));
}

void iOS10Decoder::visitFiles(const FileVisitor& visit) {
  if (readFlagOfEncryption()) {
    return;
  }
  Texts texts;
  std::vector<DatabaseFile> files;
  std::string_view domain;  // rows of one domain often follow one another
  const bool isWhole =
      ManifestDatabase(backupPath()).visitRows(std::nullopt, [&](const DatabaseRow& row) {
        if (isFile(row)) {
          domain = row.domain == domain ? domain : kept(row.domain, texts);
          files.push_back(fileOf(row, texts));
          files.back().domain = domain;
        }
      });
  if (!isWhole) {
    noteDamageOf(joinPath(backupPath(), "Manifest.db"));
  }
  sortAndDropRepeated(files);
  for (const DatabaseFile& file : files) {
    if (file.size != 0) {
      visit({file.domain,
             file.path,
             file.contentFileName(),
             file.size.value_or(0),
             infoOf(file).modificationDate,
             {}});
    }
  }
}

std::string iOS10Decoder::contentFileName(const DatabaseFile& photo) const {
  return photo.contentFileName();
}

PhotoInfo iOS10Decoder::infoOf(const DatabaseFile& photo) const {
  PhotoInfo info = PhotoInfo::ofPath(photo.path);
  info.size = photo.size;
  info.modificationDate = knownTime(instantFromUnixTime(photo.lastModified));
  info.birthDate = knownTime(instantFromUnixTime(photo.birth));
  return info;
}

}  // namespace snaplift
