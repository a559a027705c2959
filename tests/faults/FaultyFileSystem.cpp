#include "faults/FaultyFileSystem.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace snaplift {
namespace {

thread_local FaultyFileSystem* activeFaults = nullptr;

// Gives the result of a call, after the fault that is due.
template <typename Call>
auto faulty(Call call) -> decltype(call()) {
  if (const int error = FaultyFileSystem::nextCall()) {
    errno = error;
    return -1;
  }
  return call();
}

int refusingLinks(int error) {
  const Faults* faults = FaultyFileSystem::current();
  return faults != nullptr && faults->withoutLinks ? error : 0;
}

}  // namespace

FaultyFileSystem::FaultyFileSystem(Faults faults) : m_faults(faults) {
  activeFaults = this;
}

FaultyFileSystem::~FaultyFileSystem() {
  activeFaults = nullptr;
}

int FaultyFileSystem::nextCall() {
  if (activeFaults == nullptr || ++activeFaults->m_calls != activeFaults->m_faults.faultyCall) {
    return 0;
  }
  if (activeFaults->m_faults.errorNumber == 0) {
    ::kill(::getpid(), SIGKILL);
  }
  return activeFaults->m_faults.errorNumber;
}

const Faults* FaultyFileSystem::current() {
  return activeFaults == nullptr ? nullptr : &activeFaults->m_faults;
}

}  // namespace snaplift

using snaplift::FaultyFileSystem;

// The version that ours stands before: the system's, or that of a sanitizer, which wants to know
// about files, too.
#define NEXT_VERSION(function) \
  reinterpret_cast<decltype(&::function)>(::dlsym(RTLD_NEXT, #function))

extern "C" {

int openat(int folder, const char* path, int flags, ...) {
  static const auto next = NEXT_VERSION(openat);
  mode_t mode = 0;
  if ((flags & O_CREAT) != 0) {
    va_list arguments;
    va_start(arguments, flags);
    mode = va_arg(arguments, mode_t);
    va_end(arguments);
  }
  return snaplift::faulty([&] { return next(folder, path, flags, mode); });
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
  static const auto next = NEXT_VERSION(write);
  const snaplift::Faults* faults = FaultyFileSystem::current();
  const size_t taken = faults == nullptr ? size : std::min(size, faults->maximumWrite);
  return snaplift::faulty([&] { return next(descriptor, bytes, taken); });
}

// A close that fails has closed the file all the same.
int close(int descriptor) {
  static const auto next = NEXT_VERSION(close);
  const int error = FaultyFileSystem::nextCall();
  const int result = next(descriptor);
  if (error != 0) {
    errno = error;
    return -1;
  }
  return result;
}

int linkat(int oldFolder, const char* oldPath, int newFolder, const char* newPath,
           int flags) noexcept {
  static const auto next = NEXT_VERSION(linkat);
  return snaplift::faulty([&] {
    if (const int error = snaplift::refusingLinks(EPERM)) {
      errno = error;
      return -1;
    }
    return next(oldFolder, oldPath, newFolder, newPath, flags);
  });
}

int link(const char* oldPath, const char* newPath) noexcept {
  return linkat(AT_FDCWD, oldPath, AT_FDCWD, newPath, 0);
}

int renameat2(int oldFolder, const char* oldPath, int newFolder, const char* newPath,
              unsigned flags) noexcept {
  static const auto next = NEXT_VERSION(renameat2);
  return snaplift::faulty([&] {
    if (const int error = flags != 0 ? snaplift::refusingLinks(EINVAL) : 0) {
      errno = error;
      return -1;
    }
    return next(oldFolder, oldPath, newFolder, newPath, flags);
  });
}

int renameat(int oldFolder, const char* oldPath, int newFolder, const char* newPath) noexcept {
  return renameat2(oldFolder, oldPath, newFolder, newPath, 0);
}

int unlinkat(int folder, const char* path, int flags) noexcept {
  static const auto next = NEXT_VERSION(unlinkat);
  return snaplift::faulty([&] { return next(folder, path, flags); });
}

int unlink(const char* path) noexcept {
  return unlinkat(AT_FDCWD, path, 0);
}

}  // extern "C"
