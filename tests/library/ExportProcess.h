#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include <sys/types.h>

namespace snaplift {

// What an ExportProbe is to do.
struct ExportJob {
  std::string source, destination;
  std::string temporaryParent;  // $TMPDIR of the process
  std::string log;              // the file that its standard error stream is added to
  bool withoutLinks = false;
};

// An ExportProbe at work in a process of its own, with two threads.
class ExportProcess {
public:
  struct Report {
    std::string photo;    // below the source
    std::string written;  // the path of the file; empty after a failure
  };

  explicit ExportProcess(const ExportJob& job);
  ExportProcess(const ExportProcess&) = delete;
  ExportProcess& operator=(const ExportProcess&) = delete;
  ~ExportProcess();

  // Waits for the next report. Absent when the process has ended and all of them were read.
  std::optional<Report> next();

  void kill();

  // Waits for the end: the exit status, or minus the signal that ended the process.
  int wait();

private:
  pid_t m_process = -1;
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> m_reports;
};

}  // namespace snaplift
