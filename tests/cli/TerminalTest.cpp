// What reaches a terminal: colour and a progress bar only there, and no command that a name in a
// backup might hold.

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "CommandLineTest.h"

namespace snaplift {
namespace {

using samples::Generation;
using testing::HasSubstr;
using testing::Not;

constexpr const Layout& layoutFive = layouts[4];

class TerminalTest : public CommandLineTest {
protected:
  // Both streams on one terminal.
  ProgramCall onTerminal(std::vector<std::string> arguments) const {
    ProgramCall terminal = call(std::move(arguments));
    terminal.output = terminal.errors = Stream::Terminal;
    return terminal;
  }

  static ProgramCall withoutColour(ProgramCall call) {
    call.environment.back() = {"NO_COLOR", "1"};
    return call;
  }

  std::vector<std::string> exporting(const std::string& backup) const {
    return {"export", backup, "-o", m_tree.makeFolder("out")};
  }
};

TEST_F(TerminalTest, headingsAreBoldWhereColourIsWanted) {
  const std::string backup = writeBackup("root/b", layoutFive, "Phone");
  ProgramCall call = onTerminal({"list", backup});
  for (const char* setting : {"", "1"}) {
    call.environment.emplace_back("NO_COLOR", setting);
    const std::string heading = *setting ? "Phone\r\n" : "\x1b[1mPhone\x1b[0m\r\n";
    const std::string terminal = Program::run(call).terminal;
    EXPECT_THAT(terminal, HasSubstr(heading));
    EXPECT_EQ(terminal.find('\x1b') == std::string::npos, *setting != 0);
  }
  for (const char* command : {"list", "check", "files"}) {
    EXPECT_THAT(run({command, backup}).output, Not(HasSubstr("\x1b"))) << command;
  }
}

TEST_F(TerminalTest, theProgressOfAnExportIsDrawnOnATerminalOnly) {
  const std::string backup = writeBackup("b", layoutFive, "Phone");
  const std::string full = "[" + std::string(32, '#') + "] 2 of 2 photos, 18 bytes";
  ProgramCall piped = call(exporting(backup));
  piped.errors = Stream::Terminal;
  for (const ProgramCall& call : {piped, onTerminal(exporting(backup))}) {
    const std::string terminal = Program::run(call).terminal;
    EXPECT_THAT(terminal, HasSubstr("] 1 of 2 photos, 9 bytes"));
    EXPECT_THAT(terminal, HasSubstr(full));
    EXPECT_THAT(terminal, Not(HasSubstr("\x1b")));
    // The line is taken away before the summary, which begins a line of its own.
    EXPECT_THAT(terminal, HasSubstr("\r" + std::string(full.size(), ' ') + "\rsnaplift-cli: 2"));
    if (call.output == Stream::Terminal) {  // no photo's line begins in the midst of another
      EXPECT_THAT(terminal, testing::ContainsRegex("[\r\n]" + m_tree.path("out") + "/IMG_0001"));
      EXPECT_THAT(terminal, testing::ContainsRegex("[\r\n]" + m_tree.path("out") + "/IMG_0002"));
    }
  }
  const ProgramResult files = run(exporting(backup));
  EXPECT_THAT(files.errors + files.output, Not(HasSubstr(" of 2 photos")));
  ProgramCall outputOnly = call(exporting(backup));
  outputOnly.output = Stream::Terminal;
  EXPECT_THAT(Program::run(outputOnly).terminal, Not(HasSubstr(" of 2 photos")));
}

TEST_F(TerminalTest, noNameForgesALineOrCommandsTheTerminal) {
  const std::string evil =
      "a\n\x1b[31mb\x7f\r\xc2\x9b"
      "2J\x9b"
      "c\xe2\x80\xae\xe2\x81\xa6\xe2\x80\xa8\xd8\x9c";
  samples::SampleBackup sample{.generation = Generation::Five,
                               .deviceName =
                                   "d\n\xc2\x9b"
                                   "2J",
                               .productVersion = "5.0",
                               .files = {photo(layoutFive, "Media/" + evil + ".jpg", "x"),
                                         photo(layoutFive, "lost\x1b[5m.jpg", "x"),
                                         {.domain = "D\x1b]0;t\a", .path = evil, .content = "x"}}};
  sample.files[1].contentMissing = true;
  // Binary, because XML cannot hold the name.
  sample.encoding = samples::PropertyListEncoding::Binary;
  const std::string backup = write("root\x1b[7m/" + evil, sample);
  const std::string root = m_tree.path("root\x1b[7m");

  std::vector<std::vector<std::string>> commands = {
      {"list", root},
      {"photos", backup},
      {"files", backup},
      {"check", root},
      exporting(backup),
      {"photos", backup, "extra\x1b[31m"},
      {"find", root},
      {"photos", evil},
      {"export", root, "-d", evil, "-o", m_tree.path("out")},
      {"export", root, "-o", evil}};
  for (std::size_t i = commands.size(); i > 0; --i) {
    commands.push_back(commands[i - 1]);
    commands.back().emplace_back("--json");
  }
  for (const std::vector<std::string>& command : commands) {
    const std::string text = Program::run(withoutColour(onTerminal(command))).terminal;
    SCOPED_TRACE(testing::PrintToString(command) + text);
    EXPECT_THAT(text, Not(testing::IsEmpty()));
    EXPECT_TRUE(std::ranges::all_of(text, [](char c) {
      return !std::iscntrl(static_cast<unsigned char>(c)) || c == '\n' || c == '\r';
    }));
    EXPECT_THAT(text,
                Not(testing::AnyOf(HasSubstr("\xc2\x9b"), HasSubstr("\x9b"), HasSubstr("\xe2\x80"),
                                   HasSubstr("\xe2\x81"), HasSubstr("\xd8\x9c"))));
    EXPECT_THAT(text, Not(HasSubstr("\n[31m")));
  }
  // Nothing is lost from the data either.
  const Json list = jsonLines(run({"list", root, "--json"})).at(0);
  EXPECT_EQ(list["devices"][0]["name"], *sample.deviceName);
}

}  // namespace
}  // namespace snaplift
