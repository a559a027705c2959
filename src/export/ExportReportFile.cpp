#include "export/ExportReportFile.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>

#include "backups/ImageItem.h"
#include "export/Csv.h"
#include "foundation/Digest.h"
#include "foundation/Parallel.h"
#include "foundation/files/File.h"
#include "foundation/files/InputFile.h"
#include "foundation/files/NewFile.h"
#include "foundation/files/OutputFolder.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

const std::vector<std::string_view> heading = {"uniquePath", "written", "bytes",
                                               "sha256",     "date",    "outcome"};

// Pages that are on the disk are forgotten, so that what is read comes from there.
void passCache([[maybe_unused]] const InputFile& file) {
#ifdef POSIX_FADV_DONTNEED
  ::posix_fadvise(file.descriptor(), 0, 0, POSIX_FADV_DONTNEED);
#endif
}

// The digest of an open file in digits; empty where it cannot be read whole.
std::string digestOf(const InputFile& file) {
  passCache(file);
  std::uint64_t done = 0;
  const Sha256Digest digest = sha256([&](std::span<std::uint8_t> buffer) {
    const std::size_t count = file.read(buffer.data(), buffer.size());
    done += count;
    return count;
  });
  return done == file.size() && file.isUnchanged() ? hexText(digest, HexCase::Lower)
                                                   : std::string();
}

std::string absolutePath(const std::string& path) {
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(path, error);
  return error ? path : absolute.string();
}

std::string outcomeOf(const ExportedPhoto& photo) {
  if (photo.error) {
    return "failed: " + photo.error->reason();
  }
  return photo.isSkipped ? "skipped" : photo.isShort ? "short" : "exported";
}

ReportedPhoto notBegun(const ImageItem& photo) {
  const std::optional<Instant> date = photo.info().date();
  return {.uniquePath = photo.path(),
          .written = {},
          .sha256 = {},
          .date = date ? rfc3339Text(*date) : std::string(),
          .outcome = "not begun"};
}

void addContent(ReportedPhoto& reported, const ExportedPhoto& photo) {
  const InputFile file(photo.written);
  if (file) {
    reported.bytes = file.size();
    reported.sha256 = digestOf(file);
  }
  if (reported.sha256.empty() || (!photo.isSkipped && reported.bytes != photo.bytes)) {
    reported.outcome = "failed: the file has changed since it was written, or cannot be read";
    reported.sha256.clear();
  }
}

std::optional<ReportedPhoto> photoOfLine(std::vector<std::string>&& fields) {
  if (fields.size() != heading.size()) {
    return std::nullopt;
  }
  ReportedPhoto photo{std::move(fields[0]), std::move(fields[1]), 0,
                      std::move(fields[3]), std::move(fields[4]), std::move(fields[5])};
  const char* end = fields[2].data() + fields[2].size();
  const auto [next, error] = std::from_chars(fields[2].data(), end, photo.bytes);
  const bool hasDigest = photo.sha256.size() == 2 * std::tuple_size_v<Sha256Digest>;
  return error == std::errc() && next == end && (hasDigest || photo.sha256.empty())
             ? std::optional(std::move(photo))
             : std::nullopt;
}

}  // namespace

std::vector<ReportedPhoto> reportOf(const std::vector<PhotoToExport>& photos,
                                    const std::vector<ExportedPhoto>& ended, std::stop_token stop) {
  std::vector<ReportedPhoto> report;
  report.reserve(photos.size());
  for (const PhotoToExport& photo : photos) {
    report.push_back(notBegun(*photo.photo));
  }
  for (std::size_t i = 0; i < ended.size(); ++i) {
    report[i].outcome = outcomeOf(ended[i]);
    report[i].written = ended[i].written.empty() ? "" : absolutePath(ended[i].written);
  }
  parallelFor(
      ended.size(), std::max(1U, std::thread::hardware_concurrency()),
      [&](std::size_t i) {
        if (!ended[i].written.empty()) {
          addContent(report[i], ended[i]);
        }
      },
      std::move(stop));
  return report;
}

bool hasUnprovenFile(const std::vector<ReportedPhoto>& report) {
  return std::ranges::any_of(report, [](const ReportedPhoto& photo) {
    return !photo.written.empty() && photo.sha256.empty();
  });
}

std::optional<FileError> writeReport(const std::string& path,
                                     const std::vector<ReportedPhoto>& report, ReportPlace place) {
  std::string text = csvLine(heading);
  for (const ReportedPhoto& photo : report) {
    const std::string bytes = std::to_string(photo.bytes);
    text +=
        csvLine({photo.uniquePath, photo.written, bytes, photo.sha256, photo.date, photo.outcome});
  }
  const std::string whole = absolutePath(path);
  const auto error = place == ReportPlace::MayBeReplaced ? replaceFile(whole, bytesOf(text))
                                                         : createFile(whole, bytesOf(text));
  return error ? error : flushFileSystem(std::string(parentPath(whole)));
}

ReportRead readReport(const std::string& path) {
  const std::optional<Bytes> bytes = readFile(path);
  if (!bytes) {
    return {{}, "The report \"" + path + "\" cannot be read."};
  }
  ReportRead read;
  std::string_view text = textOf(*bytes);
  const auto first = takeCsvLine(text);
  if (!first || !std::ranges::equal(*first, heading)) {
    return {{}, "\"" + path + "\" is not the report of an export."};
  }
  while (!text.empty()) {
    std::optional<std::vector<std::string>> fields = takeCsvLine(text);
    std::optional<ReportedPhoto> photo = fields ? photoOfLine(std::move(*fields)) : std::nullopt;
    if (!photo) {
      read.problem = "The report \"" + path + "\" is damaged behind its first " +
                     std::to_string(read.photos.size()) + " photos.";
      break;
    }
    read.photos.push_back(std::move(*photo));
  }
  return read;
}

ReportedFile compareWithReport(const ReportedPhoto& photo) {
  if (photo.written.empty()) {
    return ReportedFile::None;
  }
  const InputFile file(photo.written);
  if (!file) {
    return file.isMissing() ? ReportedFile::Gone : ReportedFile::Unreadable;
  }
  if (file.size() != photo.bytes) {
    return ReportedFile::Different;
  }
  const std::string digest = digestOf(file);
  if (digest.empty()) {
    return ReportedFile::Unreadable;
  }
  return digest == photo.sha256 ? ReportedFile::Same : ReportedFile::Different;
}

}  // namespace snaplift
