#include "decoders/DatabaseFiles.h"

#include <algorithm>
#include <cstring>
#include <tuple>
#include <utility>

#include "formats/ArchivedFile.h"
#include "foundation/Digest.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

// Enough that a thread for each batch costs nothing, few enough that the last is soon read.
constexpr std::size_t rowsOfBatch = 4096;
constexpr std::size_t maximumBatchInBytes = std::size_t{4} << 20;

// False for a text that is not 40 hexadecimal digits.
bool readDigest(std::string_view text, std::array<std::uint8_t, 20>& digest) {
  if (text.size() != 2 * digest.size()) {
    return false;
  }
  for (std::size_t i = 0; i < digest.size(); ++i) {
    const int high = hexDigit(text[2 * i]);
    const int low = hexDigit(text[2 * i + 1]);
    if (high < 0 || low < 0) {
      return false;
    }
    digest[i] = static_cast<std::uint8_t>(high << 4 | low);
  }
  return true;
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

void DatabaseFiles::add(const DatabaseRow& row) {
  for (const std::string_view piece :
       {row.fileID, m_isDomainKnown ? std::string_view() : row.domain, row.relativePath,
        textOf(row.file)}) {
    m_batch.bytes.insert(m_batch.bytes.end(), piece.begin(), piece.end());
    m_batch.ends.push_back(m_batch.bytes.size());
  }
  if (m_batch.ends.size() == rowsOfBatch * piecesOfRow ||
      m_batch.bytes.size() >= maximumBatchInBytes) {
    readBatch();
  }
}

// Where the system has no more threads, the batch is read when it is awaited.
void DatabaseFiles::readBatch() {
  awaitBatch();
  std::swap(m_batch, m_inHand);
  m_batch.bytes.clear();
  m_batch.ends.clear();
  m_reading = std::async([this] {
    std::array<std::string_view, piecesOfRow> row;
    std::size_t begin = 0, piece = 0;
    for (const std::size_t end : m_inHand.ends) {
      row[piece++] = {m_inHand.bytes.data() + begin, end - begin};
      begin = end;
      if (piece == row.size()) {
        m_files.push_back(fileOf(row));
        piece = 0;
      }
    }
  });
}

void DatabaseFiles::awaitBatch() {
  if (m_reading.valid()) {
    m_reading.get();
  }
}

DatabaseFile DatabaseFiles::fileOf(const std::array<std::string_view, piecesOfRow>& row) {
  DatabaseFile file{};
  file.backupFolder = &m_backupFolder;
  file.domain = m_domain = row[Domain] == m_domain ? m_domain : kept(row[Domain]);
  file.path = kept(row[Path]);
  file.hasContentName = readDigest(row[FileID], file.digest);
  const ArchivedFile archived = ArchivedFile::fromArchive(bytesOf(row[Record]));
  file.size = archived.size;
  file.birth = archived.birth.value_or(0);
  file.lastModified = archived.lastModified.value_or(0);
  return file;
}

std::string_view DatabaseFiles::kept(std::string_view text) {
  if (text.empty()) {
    return {};
  }
  auto* copy = static_cast<char*>(m_texts.allocate(text.size(), 1));
  std::memcpy(copy, text.data(), text.size());
  return {copy, text.size()};
}

std::vector<DatabaseFile> DatabaseFiles::take() {
  readBatch();
  awaitBatch();
  // Pointers, since a file is large. They tell, too, which of two files came first.
  std::vector<const DatabaseFile*> order;
  order.reserve(m_files.size());
  for (const DatabaseFile& file : m_files) {
    order.push_back(&file);
  }
  std::ranges::sort(order, [](const DatabaseFile* a, const DatabaseFile* b) {
    return std::tie(a->domain, a->path, a) < std::tie(b->domain, b->path, b);
  });
  const auto isSame = [](const DatabaseFile* a, const DatabaseFile* b) {
    return a->path == b->path && a->domain == b->domain;
  };
  std::vector<DatabaseFile> files;
  files.reserve(order.size());
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (i + 1 == order.size() || !isSame(order[i], order[i + 1])) {
      files.push_back(*order[i]);
    }
  }
  return files;
}

}  // namespace snaplift
