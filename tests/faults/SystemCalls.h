#pragma once

#include <array>
#include <cstddef>
#include <limits>
#include <string_view>

namespace snaplift {

// The calls of the system that a test can make go wrong, by what they are for: Open stands for
// open, openat and opendir, List for readdir, Unlink for rmdir too, Flush for fsync and syncfs, and
// so on.
enum class SystemCall {
  Open,
  Read,
  List,
  Status,
  Write,
  Copy,
  Close,
  Link,
  Rename,
  Unlink,
  MakeFolder,
  Flush
};

inline constexpr std::array<std::string_view, 12> systemCallNames{
    "open",  "read", "list",   "status", "write", "copy",
    "close", "link", "rename", "unlink", "mkdir", "flush"};

// What a file system offers to who makes a file that replaces nothing. Each kind lacks what the one
// before it has: files without a name (as network file systems, FAT and exFAT), a rename that
// refuses a taken name (network file systems), links (FAT and exFAT through FUSE).
enum class FileSystemKind { Whole, WithoutNameless, WithoutRename, WithoutLinks };

// What one call meets.
struct CallFault {
  int errorNumber = 0;  // it fails with this error; 0: it does not
  FileSystemKind kind = FileSystemKind::Whole;
  std::size_t maximumWrite = std::numeric_limits<std::size_t>::max();  // bytes that one call takes
};

using FaultPolicy = CallFault (*)(SystemCall call);

// A program that links this file, or is started with a library that does, calls our versions of the
// system's functions. They pass everything on until a policy is set, and then ask it before every
// call, on the calling thread. A policy makes no such calls itself.
void setFaultPolicy(FaultPolicy policy);

}  // namespace snaplift
