#include "bench/PageCache.h"

#include <fcntl.h>
#include <unistd.h>

namespace snaplift::bench {

bool evictFromPageCache(const std::vector<std::string>& paths) {
  ::sync();  // pages that are still to be written stay, whatever the advice
  bool areEvicted = true;
  for (const std::string& path : paths) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    areEvicted = areEvicted && ::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED) == 0;
    ::close(file);
  }
  return areEvicted;
}

}  // namespace snaplift::bench
