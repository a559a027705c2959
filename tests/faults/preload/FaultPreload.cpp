// A library for LD_PRELOAD that lets one call of a whole program fail. SNAPLIFT_FAULT says which:
// "KIND:N:ERROR", the kind by its name in systemCallNames, N counted from 1 over all threads, and
// the number of the error. SNAPLIFT_FAULT_KIND is the number of a FileSystemKind. When
// the call comes to pass the empty file SNAPLIFT_FAULT_MARK is made. A program that does not end in
// time is ended by SIGALRM.

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <string_view>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "SystemCalls.h"

namespace snaplift {
namespace {

constexpr unsigned longestRunInSeconds = 30;

SystemCall faultyKind;
int faultyCall = 0;
int errorNumber = 0;
FileSystemKind fileSystemKind = FileSystemKind::Whole;
const char* mark = nullptr;
std::atomic<int> calls = 0;

CallFault orderedFault(SystemCall call) {
  if (call != faultyKind || ++calls != faultyCall) {
    return {.kind = fileSystemKind};
  }
  // Past our own versions, which would ask for this file as well.
  ::syscall(SYS_close, ::syscall(SYS_openat, AT_FDCWD, mark, O_WRONLY | O_CREAT, 0666));
  return {.errorNumber = errorNumber, .kind = fileSystemKind};
}

[[gnu::constructor]] void readOrders() {
  const char* orders = std::getenv("SNAPLIFT_FAULT");
  mark = std::getenv("SNAPLIFT_FAULT_MARK");
  if (orders == nullptr || mark == nullptr) {
    return;
  }
  const std::string_view text = orders;
  const auto* const kind = std::ranges::find(systemCallNames, text.substr(0, text.find(':')));
  char* rest = nullptr;
  if (kind == systemCallNames.end()) {
    return;
  }
  faultyKind = static_cast<SystemCall>(kind - systemCallNames.begin());
  faultyCall = static_cast<int>(std::strtol(orders + kind->size() + 1, &rest, 10));
  errorNumber = static_cast<int>(std::strtol(rest + 1, nullptr, 10));
  const char* kindNumber = std::getenv("SNAPLIFT_FAULT_KIND");
  fileSystemKind = static_cast<FileSystemKind>(kindNumber != nullptr ? std::atoi(kindNumber) : 0);
  ::alarm(longestRunInSeconds);
  setFaultPolicy(orderedFault);
}

}  // namespace
}  // namespace snaplift
