#pragma once

#include <stop_token>
#include <string>

namespace snaplift {

// A place from which SQLite can read the database of a backup without writing into the backup. A
// database that was closed well is opened where it lies, as one that nobody can change: SQLite then
// makes no files beside it. One with a log ("-wal" or "-journal": the program that wrote it was
// stopped) lacks what the log holds, and would take it in when it is opened; so a private copy of
// both is made in the temporary folder, and removed with this object.
//
// Only regular files of up to two gigabytes are copied, and links are not followed.
class DatabaseSource {
public:
  // A request of `stop` ends the copying; there is then nothing to read.
  explicit DatabaseSource(const std::string& path, std::stop_token stop = {});
  DatabaseSource(const DatabaseSource&) = delete;
  DatabaseSource& operator=(const DatabaseSource&) = delete;
  ~DatabaseSource();

  // What SQLite opens; empty where there is nothing that it could read.
  const std::string& uri() const { return m_uri; }
  bool isCopy() const { return !m_folder.empty(); }

private:
  bool makeCopy(const std::string& path, std::stop_token stop);

  std::string m_folder;  // of the copy, where there is one
  std::string m_uri;
};

}  // namespace snaplift
