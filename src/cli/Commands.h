#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/ExitStatus.h"

namespace snaplift::cli {

// The program's commands. Each prints its data on the standard output, as text for people or as
// JSON (one value a line), tells everything else on the standard error, and answers the exit
// status.

// The devices of a root with their backups, newest first.
ExitStatus listBackups(const std::optional<std::string>& path, bool json);

// The photos of one backup, in the decoder's order.
ExitStatus listPhotos(const std::string& path, bool json);

// Every file with content that one backup's manifest lists, by domain.
ExitStatus listFiles(const std::string& path, bool json);

// How many photos each backup lists and how many of them have their file.
ExitStatus checkBackups(const std::optional<std::string>& path, bool json);

struct ExportOptions {
  std::vector<std::string> paths;        // backups or roots
  std::vector<std::string> deviceNames;  // all backups of these devices, of `root`
  std::optional<std::string> root;       // absent: the user's backup root
  std::string destination;
  unsigned workers = 0;  // 0: one a core
  bool dryRun = false;
  bool json = false;
};

// Copies the photos of the chosen backups into one folder.
ExitStatus exportPhotos(const ExportOptions& options);

}  // namespace snaplift::cli
