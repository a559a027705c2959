#include "bench/PeakMemory.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include <sys/wait.h>
#include <unistd.h>

namespace snaplift::bench {
namespace {

// A line of /proc/self/status, such as "VmHWM:  1234 kB".
std::uint64_t statusInBytes(std::string_view name) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    std::uint64_t kilobytes = 0;
    if (word == name && status >> kilobytes) {
      return kilobytes * 1024;
    }
  }
  return 0;
}

}  // namespace

std::uint64_t peakResidentMemoryInBytes() {
  return statusInBytes("VmHWM:");
}

void resetPeakResidentMemory() {
  std::ofstream("/proc/self/clear_refs") << "5";
}

std::uint64_t childrenResidentMemoryInBytes() {
  std::uint64_t bytes = 0;
  std::error_code error;
  for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task", error)) {
    std::ifstream children(thread.path() / "children");
    for (std::string child; children >> child;) {
      std::uint64_t pages = 0;
      std::uint64_t residentPages = 0;
      std::ifstream("/proc/" + child + "/statm") >> pages >> residentPages;
      bytes += residentPages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
    }
  }
  return bytes;
}

std::optional<std::uint64_t> peakMemoryInBytes(const std::function<bool()>& job) {
  int ends[2];
  if (::pipe(ends) != 0) {
    return std::nullopt;
  }
  const pid_t child = ::fork();
  if (child == 0) {
    const std::uint64_t before = statusInBytes("VmRSS:");
    const bool isRight = job();
    const std::uint64_t peak = statusInBytes("VmHWM:");
    const std::uint64_t used = peak > before ? peak - before : 0;
    const bool isSaid = isRight && before > 0 && ::write(ends[1], &used, sizeof used) > 0;
    ::_exit(isSaid ? 0 : 1);
  }
  ::close(ends[1]);
  std::uint64_t used = 0;
  const bool isSaid = child > 0 && ::read(ends[0], &used, sizeof used) == sizeof used;
  ::close(ends[0]);
  if (child > 0) {
    ::waitpid(child, nullptr, 0);
  }
  return isSaid ? std::optional(used) : std::nullopt;
}

}  // namespace snaplift::bench
