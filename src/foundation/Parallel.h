#pragma once

#include <cstddef>
#include <functional>
#include <stop_token>

namespace snaplift {

// Calls `work(i)` once for each i below `count`, on up to `threads` threads, the caller's among
// them, in no order; returns when all calls have returned. `work` must be safe to call from several
// threads at once. Indexes that are not begun when `stop` is requested are left out.
void parallelFor(std::size_t count, unsigned threads, const std::function<void(std::size_t)>& work,
                 std::stop_token stop = {});

// parallelFor() for work that is mostly the reading of small files, which chooses the number of
// threads itself. Files that come from a disk are bound by its latency and want more threads than
// there are cores; files in the page cache are bound by the processor and gain from two. Which it
// is shows in the first few calls, made on the caller's thread.
void parallelForFiles(std::size_t count, const std::function<void(std::size_t)>& work,
                      std::stop_token stop = {});

}  // namespace snaplift
