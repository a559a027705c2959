// snaplift-cli while the first, second, ... call of each kind fails: no partial photo, nothing
// replaced, nothing lost without a word, a normal end.

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <sys/stat.h>

#include "CommandLineTest.h"
#include "faults/SystemCalls.h"
#include "support/TreeState.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;
using testing::AnyOf;
using Environment = decltype(ProgramCall::environment);

struct FaultyCall {
  SystemCall kind;
  int number;  // from 1
  int errorNumber;
};

// The errors that each kind of call can give, the most telling first.
const std::map<SystemCall, std::vector<int>> errorsOf = {
    {SystemCall::Open, {EMFILE, EIO, EINTR, ENOSPC}},
    {SystemCall::Read, {EIO, EINTR}},
    {SystemCall::List, {EIO}},
    {SystemCall::Status, {EIO}},
    {SystemCall::Write, {ENOSPC, EIO, EINTR}},
    {SystemCall::Copy, {EIO, ENOSPC, EXDEV, EINTR}},
    {SystemCall::Close, {EIO, ENOSPC, EINTR}},
    {SystemCall::Link, {EIO, ENOSPC}},
    {SystemCall::Rename, {EIO, ENOSPC}},
    {SystemCall::Unlink, {EIO}},
    {SystemCall::MakeFolder, {EIO, ENOSPC}},
    {SystemCall::Flush, {EIO, ENOSPC, EINTR}},
};

// SNAPLIFT_FAULTS=all: every error, and every way in which a photo reaches its name; else the first
// of each.
bool isWhole() {
  const char* chosen = std::getenv("SNAPLIFT_FAULTS");
  return chosen != nullptr && std::string_view(chosen) == "all";
}

const std::string camera = "Media/DCIM/100APPLE/";
const std::map<std::string, std::string> photos = {
    {camera + "IMG_0001.JPG", "the first photo"},
    {camera + "IMG_0002.PNG", "the second photo"},
    {"Media/DCIM/101APPLE/IMG_0002.PNG", "one of the same name"},
};

std::string nameOf(const testing::TestParamInfo<Layout>& layout) {
  std::string name = std::string(layout.param.decoder) + "_" + layout.param.version;
  std::ranges::replace(name, '.', '_');
  return name;
}

class FaultSweepTest : public CommandLineTest, public testing::WithParamInterface<Layout> {
protected:
  FaultSweepTest() {
    samples::SampleBackup backup{.generation = GetParam().generation,
                                 .deviceName = "Phone",
                                 .productVersion = GetParam().version,
                                 .date = date(0)};
    for (const auto& [path, content] : photos) {
      backup.files.push_back(photo(GetParam(), path, content));
    }
    m_backup = write("root/backup", backup);
    m_before = treeState(m_tree.path("root"));
  }

  // Runs the program with one call after the other failing, until there is none left to fail, and
  // hands each result to `examine`.
  template <typename Examine>
  void sweep(const ProgramCall& faultless, SystemCall kind, Examine examine) {
    const std::vector<int>& errors = errorsOf.at(kind);
    for (std::size_t e = 0; e < (isWhole() ? errors.size() : 1); ++e) {
      FaultyCall fault{kind, 1, errors[e]};
      while (runWith(fault, faultless, examine)) {
        ++fault.number;
      }
      m_faults += fault.number - 1;
    }
  }

  // False when there was no such call.
  template <typename Examine>
  bool runWith(const FaultyCall& fault, ProgramCall call, Examine examine) {
    const std::string kind(systemCallNames[static_cast<std::size_t>(fault.kind)]);
    const std::string orders =
        kind + ":" + std::to_string(fault.number) + ":" + std::to_string(fault.errorNumber);
    SCOPED_TRACE(orders);
    const std::string mark = m_tree.path("mark");
    fs::remove(mark);
    call.environment.insert(call.environment.end(), {{"LD_PRELOAD", FAULT_PRELOAD},
                                                     {"ASAN_OPTIONS", "verify_asan_link_order=0"},
                                                     {"SNAPLIFT_FAULT", orders},
                                                     {"SNAPLIFT_FAULT_MARK", mark}});
    emptyDestination();
    const ProgramResult result = Program::run(call);
    EXPECT_THAT(result.status, AnyOf(0, 1, 3, 10)) << result.errors;
    EXPECT_EQ(treeState(m_tree.path("root")), m_before);
    examine(fault, result);
    return fs::exists(mark);
  }

  void emptyDestination() const {
    fs::remove_all(m_tree.path("out"));
    fs::remove(report());
    m_tree.write("out/IMG_0001.JPG", "old");
  }

  std::string report() const { return m_tree.path("report.csv"); }

  // The contents of the destination that are photos. Everything else there is a failure, but for
  // what could not be unlinked.
  std::multiset<std::string> arrived(const FaultyCall& fault) const {
    std::multiset<std::string> contents;
    for (const std::string& name : m_tree.list("out")) {
      if (fs::is_directory(m_tree.path("out/" + name))) {
        continue;
      }
      const std::string content = m_tree.read("out/" + name);
      if (name == "IMG_0001.JPG") {
        EXPECT_EQ(content, "old");
      } else if (name.ends_with(".part")) {
        EXPECT_EQ(fault.kind, SystemCall::Unlink) << name;
      } else {
        contents.insert(content);
      }
    }
    return contents;
  }

  // Photos there and photos reported: the same ones, each once; one failure line for each photo
  // that was found and did not arrive, and a message where photos were not even found.
  void examineExport(const FaultyCall& fault, const ProgramResult& result,
                     const ProgramResult& faultless) const {
    const std::multiset<std::string> there = arrived(fault);
    std::multiset<std::string> written;
    std::map<std::string, int> lines;
    for (const Json& line : jsonLines(result)) {
      ASSERT_TRUE(line.is_object()) << result.output;
      if (line["message_type"] == "photo") {
        const std::string path = line["uniquePath"];
        ASSERT_TRUE(path.starts_with(m_backup + "/")) << path;
        EXPECT_EQ(++lines[path], 1) << path;
        EXPECT_NE(line["written"].is_null(), line["error"].is_null()) << line;
        if (!line["written"].is_null()) {
          written.insert(photos.at(path.substr(m_backup.size() + 1)));
        }
      }
    }
    EXPECT_EQ(written, there);
    if (there.size() < photos.size()) {
      EXPECT_NE(result.status, 0) << result.errors;
    }
    if (fault.kind == SystemCall::Flush) {
      const bool isSaid = result.errors.find(" to the disk: ") != std::string::npos ||
                          result.errors.find("the report could not") != std::string::npos;
      EXPECT_EQ(result.status, isSaid ? 1 : 0) << result.errors;
    }
    if (lines.size() < photos.size()) {
      EXPECT_NE(result.errors, faultless.errors);
    }
  }

  // Whole, and true, or not there.
  void examineReport(const ProgramResult& result) const {
    if (fs::exists(report())) {
      const ProgramResult verified = run({"verify", report()});
      EXPECT_THAT(verified.status, AnyOf(0, 3)) << verified.errors;
      EXPECT_TRUE(result.status != 0 || verified.status == 0) << verified.output;
    } else {
      EXPECT_NE(result.status, 0);
    }
  }

  // All kinds of failing calls over an export in one environment.
  void sweepExport(const Environment& environment, const std::vector<std::string>& options = {}) {
    std::vector<std::string> arguments = {"export", "--json",          "-j", "1", m_backup,
                                          "-o",     m_tree.path("out")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    ProgramCall exporting = call(arguments);
    exporting.environment.insert(exporting.environment.end(), environment.begin(),
                                 environment.end());
    emptyDestination();
    const ProgramResult faultless = Program::run(exporting);
    ASSERT_EQ(faultless.status, 0) << faultless.errors;
    for (const auto& [kind, errors] : errorsOf) {
      if (kind != SystemCall::List) {  // of /var/tmp, which may be long
        sweep(exporting, kind, [&](const FaultyCall& fault, const ProgramResult& result) {
          examineExport(fault, result, faultless);
          if (!options.empty()) {
            examineReport(result);
          }
        });
      }
    }
    emptyDestination();
    EXPECT_EQ(Program::run(exporting).status, 0);
  }

  std::string m_backup;
  std::map<std::string, EntryState> m_before;
  int m_faults = 0;
};

INSTANTIATE_TEST_SUITE_P(, FaultSweepTest, testing::ValuesIn(layouts), nameOf);

TEST_P(FaultSweepTest, exportsWholePhotosAndNamesTheOthers) {
  sweepExport({});
  EXPECT_GT(m_faults, 50);
}

TEST_P(FaultSweepTest, exportsIntoFoldersWithAReport) {
  sweepExport({}, {"--layout", "dcim", "--report", report()});
  EXPECT_GT(m_faults, 70);
}

TEST_P(FaultSweepTest, exportsOntoFileSystemsThatKnowLess) {
  if (!isWhole()) {
    GTEST_SKIP() << "only where SNAPLIFT_FAULTS is \"all\"";
  }
  for (const char* kind : {"1", "2", "3"}) {  // see FileSystemKind
    sweepExport({{"SNAPLIFT_FAULT_KIND", kind}});
  }
}

// A result that is not the whole one comes with a message or an exit status.
TEST_P(FaultSweepTest, listsNothingLessWithoutAWord) {
  for (const char* command : {"list", "check"}) {
    const ProgramCall listing = call({command, "--json", m_tree.path("root")});
    const ProgramResult whole = Program::run(listing);
    ASSERT_EQ(whole.status, 0);
    for (const auto& [kind, errors] : errorsOf) {
      sweep(listing, kind, [&](const FaultyCall&, const ProgramResult& result) {
        if (result.output != whole.output && result.errors == whole.errors) {
          EXPECT_NE(result.status, 0) << command << ": " << result.output;
        }
      });
    }
  }
  EXPECT_GT(m_faults, 20);
}

}  // namespace
}  // namespace snaplift
