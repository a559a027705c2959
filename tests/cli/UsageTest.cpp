// The command line itself: what it accepts, and how it answers what it does not.

#include <string>
#include <vector>

#include "CommandLineTest.h"

namespace snaplift {
namespace {

using testing::HasSubstr;

using UsageTest = CommandLineTest;

TEST_F(UsageTest, saysWhatIsWrongWithACommandLine) {
  const std::string out = m_tree.makeFolder("out");
  struct Case {
    std::vector<std::string> arguments;
    const char* error;
  };
  const Case cases[] = {
      {{}, "name a command: list, find, photos, files, check, export or verify"},
      {{"copy"}, "unknown command: copy; name a command"},
      {{"--json", "copy"}, "not expected before a command: --json; name a command"},
      {{"photos", "a", "b"}, "At Most 1 required but received 2; see snaplift-cli photos --help"},
      {{"photos"}, "BACKUP is required; see snaplift-cli photos --help"},
      {{"files"}, "BACKUP is required"},
      {{"export", "-o", out}, "BACKUP or --device is required"},
      {{"export", "b"}, "--output is required"},
      {{"export", "b", "-o"}, "--output"},
      {{"export", "b", "-o", out, "-j", "0"}, "--jobs"},
      {{"export", "b", "-o", out, "-j", "many"}, "--jobs"},
      {{"export", "-o", out, "-d"}, "--device"},
      {{"export", "b", "-o", out, "--layout", "year"}, "--layout: year not in"},
      {{"export", "b", "-o", out, "--since", "soon"}, "--since: no date is soon"},
      {{"export", "b", "-o", out, "-n", "--report", "r"}, "--dry-run excludes --report"},
      {{"export", "b", "-o", out, "--colour"}, "--colour"},
  };
  for (const Case& c : cases) {
    const ProgramResult result = run(c.arguments);
    EXPECT_EQ(result.status, 2) << testing::PrintToString(c.arguments);
    EXPECT_EQ(result.output, "") << testing::PrintToString(c.arguments);
    EXPECT_THAT(result.errors, HasSubstr(c.error)) << testing::PrintToString(c.arguments);
  }
}

TEST_F(UsageTest, beginsItsHelpWithExamples) {
  const ProgramResult help = run({"-h"});
  EXPECT_EQ(help.output.find("Examples:\n  snaplift-cli list "), 0u) << help.output;
  for (const char* command : {"list", "find", "photos", "files", "check", "export", "verify"}) {
    EXPECT_THAT(help.output, HasSubstr(std::string("\n  ") + command + " "));
    const ProgramResult own = run({command, "--help"});
    EXPECT_EQ(own.status, 0);
    EXPECT_THAT(own.output, HasSubstr("Exit status: 0 done")) << command;
  }
  EXPECT_THAT(run({"--version"}).output, testing::MatchesRegex("snaplift-cli [0-9.]+\n"));
}

TEST_F(UsageTest, failsWhereItsOutputIsLost) {
  const std::string backup = writeBackup("b", layouts[4], "Phone");
  const std::vector<std::string> commands[] = {{"list", backup},  {"photos", backup, "--json"},
                                               {"files", backup}, {"check", backup},
                                               {"--version"},     {"--help"}};
  for (const std::vector<std::string>& arguments : commands) {
    for (const Stream lost : {Stream::FullDevice, Stream::Closed}) {
      ProgramCall call = this->call(arguments);
      call.output = lost;
      const ProgramResult result = Program::run(call);
      EXPECT_EQ(result.status, 1) << testing::PrintToString(arguments);
      EXPECT_THAT(result.errors, HasSubstr("the output is not complete: "));
    }
  }
}

}  // namespace
}  // namespace snaplift
