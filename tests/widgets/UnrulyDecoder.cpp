#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <new>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include "picturedecoder/PictureServer.h"

// A picture decoder that a picture has taken over: it does what the picture's bytes say. Whatever
// comes back from that, it answers as if nothing were wrong.
namespace snaplift {
namespace {

void obey(std::string_view order) {
  volatile int result = 0;
  if (order == "open") {
    result = ::open("/etc/passwd", O_RDONLY);
  } else if (order == "connect") {
    result = ::socket(AF_INET, SOCK_STREAM, 0);
  } else if (order == "fork") {
    result = ::fork();
  } else if (order == "exec") {
    ::execl("/bin/true", "true", nullptr);
  } else if (order == "more memory allowed") {
    const rlimit limit{RLIM_INFINITY, RLIM_INFINITY};
    result = ::setrlimit(RLIMIT_AS, &limit);
  } else if (order == "code in memory") {
    result = ::mmap(nullptr, 4096, PROT_READ | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) ==
             MAP_FAILED;
  } else if (order == "kill") {
    result = ::kill(::getppid(), SIGTERM);
  } else if (order == "crash") {
    std::abort();
  } else if (order == "hang") {
    while (result == 0) {
    }
  } else if (order == "hog") {
    const std::vector<char> much(std::size_t{1} << 30, 'x');
    result = much.back();
  }
}

PictureAnswer answer(const PictureRequest& request, ByteView picture,
                     std::span<std::uint8_t> pixels) {
  obey(textOf(picture));
  PictureAnswer done{.outcome = PictureAnswer::Outcome::Decoded,
                     .width = 1,
                     .height = 1,
                     .wholeWidth = 1,
                     .wholeHeight = 1,
                     .isOpaque = true};
  if (request.kind == PictureRequest::Kind::Facts) {
    std::fill(pixels.begin(), pixels.end(), std::uint8_t{UINT8_MAX});
    return done;
  }
  pixels[0] = pixels[1] = pixels[2] = pixels[3] = UINT8_MAX;
  if (textOf(picture) == "lie") {
    done.width = done.height = 0x10001;  // of which the file has none
  } else if (textOf(picture) == "lie of the whole") {
    done.wholeWidth = UINT32_MAX;
  }
  return done;
}

}  // namespace
}  // namespace snaplift

int main(int argc, char** argv) {
  return snaplift::runPictureDecoder(argc, argv, &snaplift::answer);
}
