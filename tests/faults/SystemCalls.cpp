#include "SystemCalls.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <type_traits>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace snaplift {
namespace {

std::atomic<FaultPolicy> faultPolicy = nullptr;

CallFault faultOf(SystemCall call) {
  const FaultPolicy policy = faultPolicy;
  return policy == nullptr ? CallFault() : policy(call);
}

// Gives the result of a call, or fails with `errorNumber` in its place.
template <typename Call>
auto unlessFaulty(int errorNumber, Call call) -> decltype(call()) {
  if (errorNumber != 0) {
    errno = errorNumber;
    if constexpr (std::is_pointer_v<decltype(call())>) {
      return nullptr;
    } else {
      return -1;
    }
  }
  return call();
}

template <typename Call>
auto faulty(SystemCall kind, Call call) -> decltype(call()) {
  return unlessFaulty(faultOf(kind).errorNumber, call);
}

// As faulty(), of a call that a file system of the kind `refusing` and of those after it refuses.
template <typename Call>
auto faultyOrRefused(SystemCall kind, FileSystemKind refusing, int refusal, Call call)
    -> decltype(call()) {
  const CallFault fault = faultOf(kind);
  const int error = fault.kind >= refusing ? refusal : 0;
  return unlessFaulty(fault.errorNumber != 0 ? fault.errorNumber : error, call);
}

mode_t modeOf(int flags, va_list arguments) {
  return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

void setFaultPolicy(FaultPolicy policy) {
  faultPolicy = policy;
}

}  // namespace snaplift

using snaplift::faulty;
using snaplift::FileSystemKind;
using snaplift::SystemCall;

// The version that ours stands before: the system's, or that of a sanitizer, which wants to know
// about files, too.
#define NEXT_VERSION(function) \
  reinterpret_cast<decltype(&::function)>(::dlsym(RTLD_NEXT, #function))

extern "C" {

int open(const char* path, int flags, ...) {
  static const auto next = NEXT_VERSION(open);
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = snaplift::modeOf(flags, arguments);
  va_end(arguments);
  return faulty(SystemCall::Open, [&] { return next(path, flags, mode); });
}

int openat(int folder, const char* path, int flags, ...) {
  static const auto next = NEXT_VERSION(openat);
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = snaplift::modeOf(flags, arguments);
  va_end(arguments);
  const auto call = [&] { return next(folder, path, flags, mode); };
  return (flags & O_TMPFILE) == O_TMPFILE
             ? snaplift::faultyOrRefused(SystemCall::Open, FileSystemKind::WithoutNameless,
                                         EOPNOTSUPP, call)
             : faulty(SystemCall::Open, call);
}

DIR* opendir(const char* path) {
  static const auto next = NEXT_VERSION(opendir);
  return faulty(SystemCall::Open, [&] { return next(path); });
}

dirent* readdir(DIR* listing) {
  static const auto next = NEXT_VERSION(readdir);
  return faulty(SystemCall::List, [&] { return next(listing); });
}

ssize_t read(int descriptor, void* bytes, size_t size) {
  static const auto next = NEXT_VERSION(read);
  return faulty(SystemCall::Read, [&] { return next(descriptor, bytes, size); });
}

int stat(const char* path, struct stat* status) noexcept {
  static const auto next =
      reinterpret_cast<int (*)(const char*, struct stat*)>(::dlsym(RTLD_NEXT, "stat"));
  return faulty(SystemCall::Status, [&] { return next(path, status); });
}

int fstat(int descriptor, struct stat* status) noexcept {
  static const auto next = NEXT_VERSION(fstat);
  return faulty(SystemCall::Status, [&] { return next(descriptor, status); });
}

int lstat(const char* path, struct stat* status) noexcept {
  static const auto next = NEXT_VERSION(lstat);
  return faulty(SystemCall::Status, [&] { return next(path, status); });
}

int fstatat(int folder, const char* path, struct stat* status, int flags) noexcept {
  static const auto next = NEXT_VERSION(fstatat);
  return faulty(SystemCall::Status, [&] { return next(folder, path, status, flags); });
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
  static const auto next = NEXT_VERSION(write);
  const snaplift::CallFault fault = snaplift::faultOf(SystemCall::Write);
  const size_t taken = std::min(size, fault.maximumWrite);
  return snaplift::unlessFaulty(fault.errorNumber, [&] { return next(descriptor, bytes, taken); });
}

ssize_t copy_file_range(int from, off64_t* fromOffset, int to, off64_t* toOffset, size_t size,
                        unsigned flags) {
  static const auto next = NEXT_VERSION(copy_file_range);
  const snaplift::CallFault fault = snaplift::faultOf(SystemCall::Copy);
  const size_t taken = std::min(size, fault.maximumWrite);
  return snaplift::unlessFaulty(fault.errorNumber,
                                [&] { return next(from, fromOffset, to, toOffset, taken, flags); });
}

// A close that fails has closed the file all the same.
int close(int descriptor) {
  static const auto next = NEXT_VERSION(close);
  const int error = snaplift::faultOf(SystemCall::Close).errorNumber;
  const int result = next(descriptor);
  return snaplift::unlessFaulty(error, [&] { return result; });
}

int linkat(int oldFolder, const char* oldPath, int newFolder, const char* newPath,
           int flags) noexcept {
  static const auto next = NEXT_VERSION(linkat);
  return snaplift::faultyOrRefused(SystemCall::Link, FileSystemKind::WithoutLinks, EPERM, [&] {
    return next(oldFolder, oldPath, newFolder, newPath, flags);
  });
}

int link(const char* oldPath, const char* newPath) noexcept {
  return linkat(AT_FDCWD, oldPath, AT_FDCWD, newPath, 0);
}

int renameat2(int oldFolder, const char* oldPath, int newFolder, const char* newPath,
              unsigned flags) noexcept {
  static const auto next = NEXT_VERSION(renameat2);
  const auto call = [&] { return next(oldFolder, oldPath, newFolder, newPath, flags); };
  return flags == 0 ? faulty(SystemCall::Rename, call)
                    : snaplift::faultyOrRefused(SystemCall::Rename, FileSystemKind::WithoutRename,
                                                EINVAL, call);
}

int renameat(int oldFolder, const char* oldPath, int newFolder, const char* newPath) noexcept {
  return renameat2(oldFolder, oldPath, newFolder, newPath, 0);
}

int rename(const char* oldPath, const char* newPath) noexcept {
  return renameat2(AT_FDCWD, oldPath, AT_FDCWD, newPath, 0);
}

int unlinkat(int folder, const char* path, int flags) noexcept {
  static const auto next = NEXT_VERSION(unlinkat);
  return faulty(SystemCall::Unlink, [&] { return next(folder, path, flags); });
}

int unlink(const char* path) noexcept {
  return unlinkat(AT_FDCWD, path, 0);
}

int rmdir(const char* path) noexcept {
  return unlinkat(AT_FDCWD, path, AT_REMOVEDIR);
}

int mkdir(const char* path, mode_t mode) noexcept {
  static const auto next = NEXT_VERSION(mkdir);
  return faulty(SystemCall::MakeFolder, [&] { return next(path, mode); });
}

int fsync(int descriptor) {
  static const auto next = NEXT_VERSION(fsync);
  return faulty(SystemCall::Flush, [&] { return next(descriptor); });
}

int syncfs(int descriptor) noexcept {
  static const auto next = NEXT_VERSION(syncfs);
  return faulty(SystemCall::Flush, [&] { return next(descriptor); });
}

}  // extern "C"
