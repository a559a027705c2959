#include <array>
#include <string>

#include <unistd.h>

#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Output.h"
#include "cli/ProgressBar.h"
#include "export/ExportReportFile.h"

namespace snaplift::cli {
namespace {

const char* wordFor(ReportedFile file) {
  switch (file) {
    case ReportedFile::Same:
      return "same";
    case ReportedFile::Different:
      return "different";
    case ReportedFile::Gone:
      return "gone";
    case ReportedFile::Unreadable:
      return "unreadable";
    case ReportedFile::None:
      break;
  }
  return "not_exported";
}

// How many files are of each kind.
class Count {
public:
  void add(ReportedFile file) { ++m_count[static_cast<std::size_t>(file)]; }
  std::uint64_t of(ReportedFile file) const { return m_count[static_cast<std::size_t>(file)]; }
  bool isClean() const {
    return of(ReportedFile::Different) + of(ReportedFile::Gone) + of(ReportedFile::Unreadable) == 0;
  }

private:
  std::array<std::uint64_t, 5> m_count{};
};

void print(const ReportedPhoto& photo, ReportedFile file, bool json) {
  if (json) {
    printJson({{"message_type", "file"},
               {"uniquePath", photo.uniquePath},
               {"written", photo.written},
               {"state", wordFor(file)}});
  } else if (file != ReportedFile::Same) {
    printLine(std::string(wordFor(file)) + ": " + photo.written);
  }
}

void printSummary(const Count& count, bool json) {
  if (json) {
    Json summary = {{"message_type", "summary"}};
    for (const ReportedFile file : {ReportedFile::Same, ReportedFile::Different, ReportedFile::Gone,
                                    ReportedFile::Unreadable, ReportedFile::None}) {
      summary[wordFor(file)] = count.of(file);
    }
    summary["interrupted"] = interrupted();
    printJson(summary);
    return;
  }
  printNote((interrupted() ? "interrupted: " : "") +
            countText(count.of(ReportedFile::Same), "file") + " as reported, " +
            countText(count.of(ReportedFile::Different)) + " different, " +
            countText(count.of(ReportedFile::Gone)) + " gone" +
            rareCountText(count.of(ReportedFile::Unreadable), "unreadable") +
            rareCountText(count.of(ReportedFile::None), "of the report had not arrived"));
}

}  // namespace

ExitStatus verifyReport(const std::string& path, bool json) {
  const ReportRead report = readReport(path);
  if (report.problem) {
    printMessage(*report.problem);
    if (report.photos.empty()) {
      return Failed;
    }
  }
  catchInterrupts();
  printLinesAtOnce();
  const bool outputIsTerminal = ::isatty(STDOUT_FILENO);
  Count count;
  {
    ProgressBar progress(report.photos.size());
    for (const ReportedPhoto& photo : report.photos) {
      if (interrupted()) {
        break;
      }
      const ReportedFile file = compareWithReport(photo);
      count.add(file);
      if (file != ReportedFile::None) {
        if (outputIsTerminal) {
          progress.hide();
        }
        print(photo, file, json);
      }
      progress.advance(photo.bytes);
    }
  }
  printSummary(count, json);
  return interrupted()     ? Interrupted
         : report.problem  ? Failed
         : count.isClean() ? Done
                           : SomePhotosFailed;
}

}  // namespace snaplift::cli
