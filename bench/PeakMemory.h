#pragma once

#include <cstdint>
#include <functional>
#include <optional>

namespace snaplift::bench {

// The most bytes of memory that `job` had in use at once, beyond what the process had before: it
// runs in a child process, whose peak the system counts. Call it before anything large was
// allocated and freed, or the job finds that memory again. Nothing where the child failed.
std::optional<std::uint64_t> peakMemoryInBytes(const std::function<bool()>& job);

// The most memory that this process had resident since its start or the last reset: for jobs that
// cannot move to a child, such as those of an application object. What was freed before a reset and
// kept by the allocator still counts.
std::uint64_t peakResidentMemoryInBytes();
void resetPeakResidentMemory();

// What the children of this process have resident now, together.
std::uint64_t childrenResidentMemoryInBytes();

}  // namespace snaplift::bench
