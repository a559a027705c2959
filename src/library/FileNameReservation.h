#pragma once

#include <string>
#include <string_view>

namespace snaplift {

// The sole use of one file name in the process's temporary folder, as long as this object lives.
// Photos of different folders of a handset bear the same name; two of them in flight at once would
// otherwise write the same temporary file, and one photo would arrive with the other's bytes. Names
// that differ by letter case only count as one, because the temporary folder may fold it.
//
// The constructor waits until the name is free. A thread holds one name at a time.
class FileNameReservation {
public:
  explicit FileNameReservation(std::string_view name);
  FileNameReservation(const FileNameReservation&) = delete;
  FileNameReservation& operator=(const FileNameReservation&) = delete;
  ~FileNameReservation();

private:
  std::string m_name;
};

}  // namespace snaplift
