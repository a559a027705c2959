#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/ExitStatus.h"
#include "cli/Output.h"
#include "cli/PhotoFilter.h"
#include "cli/Selection.h"

namespace snaplift::cli {

// The program's commands. Each prints its data on the standard output, as text for people or as
// JSON (one value a line), tells everything else on the standard error, and answers the exit
// status.

// The devices with their backups, newest first.
ExitStatus listBackups(const BackupNames& names, bool json);

// The photos of one backup, in the decoder's order.
ExitStatus listPhotos(const BackupNames& names, bool json);

// Every file with content that one backup's manifest lists, by domain.
ExitStatus listFiles(const BackupNames& names, bool json);

// One backup of a device on a line for people: "October 12, 2011  (5.0.1)  /folder".
std::string backupText(DeviceModel& device, const BackupModel& backup);

// The backups in or below the folders, one JSON value each as soon as it is found.
ExitStatus findBackups(const std::vector<std::string>& folders);

// One backup as list and find print it.
Json backupJson(const BackupModel& backup);

// How many photos each backup lists and how many of them have their file.
ExitStatus checkBackups(const BackupNames& names, bool json);

struct ExportOptions {
  BackupNames from;
  PhotoChoice choice;
  std::string destination;
  std::string layout = "flat";        // one of layoutNames
  std::optional<std::string> report;  // the file that it goes into
  unsigned workers = 0;               // 0: one a core
  bool noDates = false;
  bool skipExisting = false;
  bool dryRun = false;
  bool json = false;
};

// By the place of its layout in ExportLayout.
inline const std::vector<std::string> layoutNames = {"flat", "device", "month", "dcim"};

// Copies the chosen photos of the chosen backups into one folder, or folders below it.
ExitStatus exportPhotos(const ExportOptions& options);

// Compares the files that the report of an export names with it.
ExitStatus verifyReport(const std::string& path, bool json);

}  // namespace snaplift::cli
