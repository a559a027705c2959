#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "foundation/files/FileError.h"

namespace snaplift {

class ImageItem;

struct ExportOptions {
  unsigned workers = 0;        // photos in hand at once; 0: one a core
  bool keepsDates = true;      // a file gets the modification date that it had on the device
  bool skipsExisting = false;  // a photo that is there already, also under a number, is left out
  bool flushes = true;         // the photos are on the disk at the end
  bool isDryRun = false;       // photos are read and names are found; nothing is written
};

// A photo and where it goes: `folder` is a path below the destination, made when it is needed.
struct PhotoToExport {
  const ImageItem* photo;
  std::string folder = {};
  bool mayBeThere = false;  // by an attempt that was cut off: it is looked for, as if to be skipped
};

// What came of one photo.
struct ExportedPhoto {
  const ImageItem* photo = nullptr;
  std::string written;             // the path of the file; empty after a failure
  bool isRenamed = false;          // the file bears another name than the photo
  bool isSkipped = false;          // the file was there already, with the same bytes
  bool isShort = false;            // the backup states another length than it holds
  std::uint64_t bytes = 0;         // that were written
  std::optional<FileError> error;  // absent after success
};

struct ExportSummary {
  std::uint64_t photos = 0;     // of the whole job
  std::uint64_t exported = 0;   // of a dry run, those that can be
  std::uint64_t films = 0;      // of the exported
  std::uint64_t renamed = 0;    // likewise
  std::uint64_t shortened = 0;  // of the exported, those that are short
  std::uint64_t skipped = 0;
  std::uint64_t failed = 0;
  std::uint64_t notBegun = 0;
  std::uint64_t bytes = 0;
  std::optional<FileError> lost;     // why the job gave up: the destination is full or gone
  std::optional<FileError> onFlush;  // photos arrived, and may be lost with the power
};

// Who hears of an export. Both functions are called on threads of the job, one call at a time: the
// photos in the order of the list, then the end. They hold up the naming of files, so they are to
// be short.
class ExportObserver {
public:
  virtual ~ExportObserver() = default;
  virtual void photoDidEnd(const ExportedPhoto& /*photo*/) {}
  virtual void exportDidEnd(const ExportSummary& /*summary*/) {}
};

}  // namespace snaplift
