#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "foundation/files/Path.h"
#include "samples/BackupWriter.h"

namespace snaplift::fuzzing {

// A fuzzer's own folder in memory, empty at first. One for the process.
class FuzzFolder {
public:
  FuzzFolder() {
    std::string name = std::filesystem::exists("/dev/shm") ? "/dev/shm/snaplift-fuzz-XXXXXX"
                                                           : "/tmp/snaplift-fuzz-XXXXXX";
    if (!::mkdtemp(name.data())) {
      std::abort();
    }
    m_root = name;
  }
  ~FuzzFolder() { clear(); }

  std::string path(std::string_view name) const { return joinPath(m_root, name); }
  void write(std::string_view name, std::string_view content) const {
    samples::writeFile(path(name), content);
  }
  void clear() const {
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(m_root, ignored)) {
      std::filesystem::remove_all(entry, ignored);
    }
  }

private:
  std::string m_root;
};

}  // namespace snaplift::fuzzing
