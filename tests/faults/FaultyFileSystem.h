#pragma once

#include <cstddef>
#include <limits>

namespace snaplift {

// What shall go wrong with the calls that change a file system. Calls are counted from 1.
struct Faults {
  int faultyCall = 0;   // this call goes wrong; 0: none does
  int errorNumber = 0;  // how: it fails with this error; 0: the process is killed right before it
  bool withoutLinks = false;  // as on FAT and exFAT through FUSE: no links, no rename that refuses
  std::size_t maximumWrite = std::numeric_limits<std::size_t>::max();  // bytes that one call takes
};

// Stands between the program and the system: a test that links this library calls its versions of
// openat, write, close, link, linkat, renameat, renameat2, unlink and unlinkat, which pass
// everything on until such an object is made. They then go wrong as told, for the calls of the same
// thread, as long as the object lives. One at a time on each thread.
class FaultyFileSystem {
public:
  explicit FaultyFileSystem(Faults faults);
  FaultyFileSystem(const FaultyFileSystem&) = delete;
  FaultyFileSystem& operator=(const FaultyFileSystem&) = delete;
  ~FaultyFileSystem();

  // Calls so far; at least Faults::faultyCall when it came to pass.
  int calls() const { return m_calls; }

  // What the calls of this thread meet, used by the versions themselves: 0, or the error number of
  // the fault that is due.
  static int nextCall();
  static const Faults* current();

private:
  Faults m_faults;
  int m_calls = 0;
};

}  // namespace snaplift
