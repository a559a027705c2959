#pragma once

#include <cstdlib>

namespace snaplift::fuzzing {

// Ends the program, which the fuzzer reports with the input, where `holds` is false.
inline void require(bool holds) {
  if (!holds) {
    std::abort();
  }
}

}  // namespace snaplift::fuzzing
