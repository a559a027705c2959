#pragma once

#include <cstddef>
#include <limits>

#include "faults/SystemCalls.h"

namespace snaplift {

// What shall go wrong with the calls that change a file system, or open a file to do so: all kinds
// but Read, List and Status. Calls are counted from 1.
struct Faults {
  int faultyCall = 0;   // this call goes wrong; 0: none does
  int errorNumber = 0;  // how: it fails with this error; 0: the process is killed right before it
  FileSystemKind kind = FileSystemKind::Whole;
  std::size_t maximumWrite = std::numeric_limits<std::size_t>::max();
};

// As long as the object lives, the calls of its thread go wrong as told. One at a time on each
// thread.
class FaultyFileSystem {
public:
  explicit FaultyFileSystem(Faults faults);
  FaultyFileSystem(const FaultyFileSystem&) = delete;
  FaultyFileSystem& operator=(const FaultyFileSystem&) = delete;
  ~FaultyFileSystem();

  // Calls so far; at least Faults::faultyCall when it came to pass.
  int calls() const { return m_calls; }

  // Those among them that were flushes.
  int flushes() const { return m_flushes; }

private:
  static CallFault faultOf(SystemCall call);

  Faults m_faults;
  int m_calls = 0;
  int m_flushes = 0;
};

}  // namespace snaplift
