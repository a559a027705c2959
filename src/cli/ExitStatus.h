#pragma once

namespace snaplift::cli {

// What the program's exit status says. Scripts rely on the numbers.
enum ExitStatus : int {
  Done = 0,
  Failed = 1,            // the command could not do its work, or what it wrote may be lost
  UsageError = 2,        // the command line is wrong
  SomePhotosFailed = 3,  // photos are missing, or some could not be exported
  NoSuchBackup = 10,     // the path is neither a backup root nor a backup
  Encrypted = 12,        // the backup's photos are encrypted, and nothing was exported
  Interrupted = 130,     // by Ctrl-C
};

}  // namespace snaplift::cli
