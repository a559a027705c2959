#include "bench/PageCache.h"

#include <fcntl.h>
#include <unistd.h>

namespace snaplift::bench {

bool evictFromPageCache(const std::string& path) {
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) {
    return false;
  }
  // Pages that are still to be written stay, whatever the advice.
  const bool isEvicted =
      ::fdatasync(file) == 0 && ::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED) == 0;
  ::close(file);
  return isEvicted;
}

}  // namespace snaplift::bench
