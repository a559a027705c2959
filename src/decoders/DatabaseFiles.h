#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <future>
#include <memory_resource>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/ManifestDatabase.h"

namespace snaplift {

// One file of a backup of system version 10 or later. A backup may have a million, so the texts
// are somebody else's, and the name of the content file is kept as the digest that it is.
struct DatabaseFile {
  const std::string* backupFolder;
  std::string_view domain;  // empty in a photo, whose domain is known
  std::string_view path;
  std::array<std::uint8_t, 20> digest;
  bool hasContentName;  // false: the row's name is no name of a content file
  std::optional<std::uint64_t> size;
  std::int64_t birth;  // seconds since 1970; 0: not known
  std::int64_t lastModified;

  std::string uniquePath() const;
  // "ab/abcdef…", inside the backup folder; empty where there is none.
  std::string contentFileName() const;
};

// Makes files of the rows that a walk over the database hands out. The walk waits for the disk, and
// what the rows say takes half as long again to read: so that is done behind it, on a thread of its
// own, some thousands of rows at a time. One thread calls.
class DatabaseFiles {
public:
  using Texts = std::pmr::monotonic_buffer_resource;

  // Both outlive the files, whose texts go into `texts`; nobody else puts any there meanwhile.
  // Files of a known domain are given none.
  DatabaseFiles(const std::string& backupFolder, Texts& texts, bool isDomainKnown)
      : m_backupFolder(backupFolder), m_texts(texts), m_isDomainKnown(isDomainKnown) {}

  void add(const DatabaseRow& row);

  // The files by domain and path; of several of one path the last that was added. To be called
  // once, at the end.
  std::vector<DatabaseFile> take();

private:
  // The texts and records of rows, one behind the other.
  struct Batch {
    std::vector<char> bytes;
    std::vector<std::size_t> ends;  // of each piece, `piecesOfRow` for a row
  };
  enum Piece { FileID, Domain, Path, Record, piecesOfRow };

  void readBatch();
  void awaitBatch();
  DatabaseFile fileOf(const std::array<std::string_view, piecesOfRow>& row);
  std::string_view kept(std::string_view text);

  const std::string& m_backupFolder;
  Texts& m_texts;
  const bool m_isDomainKnown;
  Batch m_batch;
  // While a batch is read, its thread's own.
  Batch m_inHand;
  std::vector<DatabaseFile> m_files;
  std::string_view m_domain;    // rows of one domain often follow one another
  std::future<void> m_reading;  // the last member: it is awaited before all else goes
};

}  // namespace snaplift
