#pragma once

#include <string>
#include <string_view>

namespace snaplift {

inline constexpr std::string_view posixErrorDomain = "NSPOSIXErrorDomain";
inline constexpr std::string_view cocoaErrorDomain = "NSCocoaErrorDomain";
inline constexpr std::string_view backupErrorDomain = "SnapliftBackupError";

// Codes of cocoaErrorDomain, as the desktop platform numbers them.
inline constexpr int fileReadUnknownError = 256;
inline constexpr int fileReadNoPermissionError = 257;
inline constexpr int fileReadNoSuchFileError = 260;
inline constexpr int fileWriteInvalidFileNameError = 514;
inline constexpr int fileWriteFileExistsError = 516;

// The codes of backupErrorDomain.
inline constexpr int encryptedError = 1;
inline constexpr int insideBackupError = 2;

// Why a file was not read or written: a value that is returned, kept and compared, never thrown.
// The domain says whose numbers the code is one of. Functions that may fail return an optional
// error, absent after success.
struct FileError {
  std::string_view domain;  // one of the constants above
  int code = 0;
  std::string path;  // of the file that the caller asked for

  // An error number of the operating system. EEXIST becomes the platform's own error for a name
  // that is taken, so that there is one value to ask for.
  static FileError ofSystem(int errorNumber, std::string path);
  static FileError fileExists(std::string path);
  static FileError unreadable(std::string path);
  static FileError missing(std::string path);       // there is no such file to read
  static FileError forbidden(std::string path);     // it may not be read
  static FileError encrypted(std::string path);     // nobody can read it
  static FileError insideBackup(std::string path);  // nothing is written there
  static FileError invalidFileName(std::string path);

  bool isFileExists() const;

  // "No space left on device": why, in words for the user. Our own are translatable, as they stand.
  std::string reason() const;

  // "/out/IMG_0001.JPG: No space left on device (NSPOSIXErrorDomain 28)". The path stands as it is,
  // control characters included: systemLog and every other medium escape what they print.
  std::string description() const;

  bool operator==(const FileError&) const = default;
};

}  // namespace snaplift
