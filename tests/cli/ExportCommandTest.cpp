// What export copies, reports and refuses.

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "CommandLineTest.h"
#include "support/TreeState.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;
using samples::Generation;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

constexpr const Layout& layoutFive = layouts[4];

// Their report is longer than a pipe that nobody reads has room for.
constexpr int manyPhotos = 150;

class ExportCommandTest : public CommandLineTest {
protected:
  ExportCommandTest() { m_tree.makeFolder("out"); }

  // "export", those arguments, and the folder to export into.
  ProgramCall exportCall(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), "export");
    arguments.insert(arguments.end(), {"-o", out()});
    return call(std::move(arguments));
  }

  ProgramResult exportInto(std::vector<std::string> arguments) const {
    return Program::run(exportCall(std::move(arguments)));
  }

  std::string out() const { return m_tree.path("out"); }

  // The content of each file of the destination, sorted.
  std::vector<std::string> exported() const {
    std::vector<std::string> contents;
    for (const std::string& name : m_tree.list("out")) {
      contents.push_back(m_tree.read("out/" + name));
    }
    std::ranges::sort(contents);
    return contents;
  }

  static Json summary(int exported, int renamed, int failed, int bytes) {
    return {{"message_type", "summary"},
            {"exported", exported},
            {"renamed", renamed},
            {"failed", failed},
            {"bytes", bytes}};
  }

  // A backup of many photos, all with the content "x".
  std::string writeMany() const {
    samples::SampleBackup backup{.generation = Generation::Five, .productVersion = "5.0"};
    for (int i = 0; i < manyPhotos; ++i) {
      backup.files.push_back(photo(layoutFive, "IMG_" + std::to_string(i) + ".JPG", "x"));
    }
    return write("many", backup);
  }

  void awaitFirstPhoto() const {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!fs::exists(out() + "/IMG_0.JPG") && std::chrono::steady_clock::now() < deadline) {
      std::this_thread::yield();
    }
  }
};

TEST_F(ExportCommandTest, exportsAWholeRootOfEveryGenerationIntoOneFolder) {
  std::vector<std::string> contents;
  for (const Layout& layout : layouts) {
    const std::string device = std::string(layout.decoder) + layout.version;
    writeBackup("root/" + device, layout, device);
    contents.insert(contents.end(), {device + " one", device + " two"});
  }
  const auto before = treeState(m_tree.path("root"));
  const ProgramResult json = exportInto({m_tree.path("root"), "--json"});
  EXPECT_EQ(json.status, 0);
  EXPECT_THAT(exported(), testing::UnorderedElementsAreArray(contents));
  EXPECT_THAT(m_tree.list("out"), testing::Contains("IMG_0001 4.JPG"));

  std::vector<Json> lines = jsonLines(json);
  ASSERT_THAT(lines, SizeIs(contents.size() + 1));
  EXPECT_EQ(lines.back(), summary(10, 8, 0, 10 * 20));
  lines.pop_back();
  std::set<std::string> written;
  for (const Json& line : lines) {
    ASSERT_THAT(line, SizeIs(4)) << line;
    EXPECT_EQ(line.dump().find(R"({"message_type":"photo","uniquePath":)"), 0u) << line;
    EXPECT_TRUE(line["error"].is_null());
    const std::string unique = line["uniquePath"];
    const std::string device = unique.substr(m_tree.path("root/").size()).substr(0, 16);
    written.insert(line["written"]);
    EXPECT_THAT(m_tree.read(std::string(line["written"]).substr(m_tree.root().size())),
                HasSubstr(device.substr(0, device.find('/'))));
  }
  EXPECT_THAT(written, SizeIs(contents.size()));

  const ProgramResult text = exportInto({m_tree.path("root")});
  EXPECT_EQ(text.status, 0);
  EXPECT_EQ(std::ranges::count(text.output, '\n'), 10);
  EXPECT_THAT(text.output, HasSubstr(out() + "/IMG_0001 9.JPG\n"));
  EXPECT_THAT(text.errors, HasSubstr("10 photos exported (200 bytes), 10 under a numbered name, "
                                     "0 failed\n"));
  EXPECT_EQ(treeState(m_tree.path("root")), before);
  EXPECT_THAT(m_tree.list("tmp"), IsEmpty());
}

TEST_F(ExportCommandTest, choosesByDeviceAndByFolder) {
  writeBackup("home/Library/Application Support/MobileSync/Backup/a1", layoutFive, "Anna's Phone");
  writeBackup("home/Library/Application Support/MobileSync/Backup/a2", layouts[1], "Anna's Phone");
  writeBackup("home/Library/Application Support/MobileSync/Backup/b", layouts[0], "Ben");
  const std::string other = writeBackup("other/[x,y]", layouts[2], "Other");

  struct Case {
    std::vector<std::string> arguments;
    std::size_t photos;
  };
  const Case cases[] = {
      {{"-d", "Anna's Phone"}, 4},
      {{"--device=Ben", "-d", "Anna's Phone"}, 6},
      {{"-d", "Ben", other}, 4},  // one name, then a backup
      {{other, "-d", "Ben", "-j", "3"}, 4},
      {{other, other + "/", m_tree.path("other")}, 2},  // each backup once
      {{"-d", "Other", "-r", m_tree.path("other")}, 2},
      {{rootInHome(), "-d", "Ben"}, 6},
  };
  for (const Case& c : cases) {
    fs::remove_all(out());
    m_tree.makeFolder("out");
    const ProgramResult result = exportInto(c.arguments);
    EXPECT_EQ(result.status, 0) << testing::PrintToString(c.arguments) << result.errors;
    EXPECT_THAT(exported(), SizeIs(c.photos)) << testing::PrintToString(c.arguments);
  }
  const ProgramResult unknown = exportInto({other, "-d", "Carla"});
  EXPECT_EQ(unknown.status, 10);
  EXPECT_THAT(unknown.errors, HasSubstr("no device called Carla in"));
  EXPECT_THAT(unknown.errors, HasSubstr("there are: Anna's Phone, Ben"));
  EXPECT_EQ(exportInto({m_tree.path("gone")}).status, 10);
}

TEST_F(ExportCommandTest, namesEachPhotoThatFailsOnce) {
  const std::string backup = writeBackup("b", layoutFive, "Phone");
  const auto content = [&](const char* path) {
    return backup + "/" + samples::contentName("CameraRollDomain", path);
  };
  fs::remove(content("Media/DCIM/100APPLE/IMG_0001.JPG"));
  const std::string lost = backup + "/Media/DCIM/100APPLE/IMG_0001.JPG";
  const ProgramResult json = exportInto({"--json", backup});
  EXPECT_EQ(json.status, 3);
  const std::string error = lost + ": the file cannot be read (NSCocoaErrorDomain 256)";
  EXPECT_THAT(jsonLines(json), UnorderedElementsAre(Json{{"message_type", "photo"},
                                                         {"uniquePath", lost},
                                                         {"written", nullptr},
                                                         {"error", error}},
                                                    testing::_, summary(1, 0, 1, 9)));

  fs::remove(content("Media/DCIM/100APPLE/IMG_0002.PNG"));
  fs::create_directory(content("Media/DCIM/100APPLE/IMG_0002.PNG"));
  const ProgramResult text = exportInto({backup});
  EXPECT_EQ(text.status, 3);
  EXPECT_EQ(text.output, "");
  EXPECT_EQ(std::ranges::count(text.errors, '\n'), 4) << text.errors;  // two, log, summary
  EXPECT_THAT(text.errors, HasSubstr("snaplift-cli: failed: " + error + "\n"));
  EXPECT_THAT(text.errors, HasSubstr("IMG_0002.PNG: the file cannot be read"));
  EXPECT_THAT(exported(), ElementsAre("Phone two"));
}

TEST_F(ExportCommandTest, writesNothingInADryRun) {
  const std::string backup = writeBackup("b", layoutFive, "Phone");
  write("n", {.generation = Generation::Five,
              .productVersion = "5.0",
              .files = {photo(layoutFive, std::string("a\0.jpg", 6), "x"),
                        photo(layoutFive, "lost.jpg", "x"), photo(layoutFive, "good.jpg", "x")}});
  fs::remove(m_tree.path("n/" + samples::contentName("CameraRollDomain", "lost.jpg")));
  const ProgramCall text = exportCall({backup, m_tree.path("n"), "--dry-run"});
  // Of the temporary folder only the content: a sanitizer has a file of its own in it for a moment.
  const auto state = [&] {
    auto entries = treeState(m_tree.root());
    entries.erase("tmp");
    return entries;
  };
  const auto before = state();
  const ProgramResult result = Program::run(text);
  EXPECT_EQ(result.status, 3);
  EXPECT_THAT(result.output, HasSubstr(backup + "/Media/DCIM/100APPLE/IMG_0001.JPG\n"));
  EXPECT_THAT(result.errors, HasSubstr("dry run, nothing was written: 3 photos can be exported, "
                                       "2 cannot\n"));
  EXPECT_EQ(jsonLines(exportInto({"-n", "--json", backup})).back(), summary(0, 0, 0, 0));
  EXPECT_EQ(state(), before);
}

TEST_F(ExportCommandTest, exportsNothingOfAnEncryptedBackup) {
  const std::string encrypted = write("e", {.generation = Generation::Five,
                                            .productVersion = "5.0",
                                            .encrypted = true,
                                            .files = {photo(layoutFive, "a.jpg", "secret")}});
  const ProgramResult alone = exportInto({encrypted});
  EXPECT_EQ(alone.status, 12);
  EXPECT_THAT(alone.errors, HasSubstr("encrypted, nothing is exported from it: " + encrypted));
  const ProgramResult json = exportInto({encrypted, "--json"});
  EXPECT_EQ(json.status, 12);
  EXPECT_THAT(jsonLines(json), ElementsAre(summary(0, 0, 0, 0)));
  EXPECT_THAT(exported(), IsEmpty());

  const ProgramResult among = exportInto({encrypted, writeBackup("b", layoutFive, "Phone")});
  EXPECT_EQ(among.status, 3);
  EXPECT_THAT(exported(), ElementsAre("Phone one", "Phone two"));
}

TEST_F(ExportCommandTest, refusesADestinationBeforeTheFirstPhoto) {
  const std::string backup = writeBackup("root/b", layoutFive, "Phone");
  writeBackup("root/other", layouts[0], "Other");
  m_tree.makeFolder("root/b/inside/deep");
  fs::create_directory_symlink(m_tree.path("root/other"), m_tree.path("way"));
  const auto before = treeState(m_tree.path("root"));
  const std::pair<std::string, const char*> cases[] = {
      {m_tree.path("gone"), "does not exist"},
      {m_tree.write("file", ""), "is not a folder"},
      {backup + "/inside/deep", "nothing is ever written into a backup"},
      {m_tree.path("root/x/../b"), "does not exist"},
      {m_tree.path("way"), "nothing is ever written into a backup"},
  };
  for (const auto& [destination, reason] : cases) {
    const ProgramResult result = run({"export", backup, "-o", destination});
    EXPECT_EQ(result.status, 1) << destination;
    EXPECT_THAT(result.errors, HasSubstr(reason)) << destination;
    EXPECT_EQ(result.output, "") << destination;
  }
  EXPECT_EQ(treeState(m_tree.path("root")), before);
}

// One page of a report that nobody reads holds the program in the middle of its work.
TEST_F(ExportCommandTest, endsBetweenTwoPhotosWhenInterrupted) {
  const std::string backup = writeMany();
  for (const char* format : {"--json", "-j2"}) {
    fs::remove_all(out());
    m_tree.makeFolder("out");
    ProgramCall call = exportCall({backup, format});
    call.output = Stream::Pipe;
    Program program(call);
    awaitFirstPhoto();
    program.signal(SIGINT);
    const ProgramResult result = program.finish();
    EXPECT_EQ(result.status, 130);
    const std::vector<std::string> photos = exported();
    EXPECT_THAT(photos, testing::Each("x"));
    EXPECT_THAT(photos.size(), testing::AllOf(testing::Ge(1u), testing::Lt(manyPhotos)));
    const auto lines = static_cast<std::size_t>(std::ranges::count(result.output, '\n'));
    if (std::string_view(format) == "--json") {
      EXPECT_EQ(jsonLines(result).back()["exported"], photos.size());
      EXPECT_EQ(lines, photos.size() + 1);
    } else {
      EXPECT_EQ(lines, photos.size());
      EXPECT_THAT(result.errors,
                  HasSubstr("interrupted: " + std::to_string(photos.size()) + " photo"));
      EXPECT_THAT(result.errors,
                  HasSubstr(std::to_string(manyPhotos - photos.size()) + " not begun"));
    }
    EXPECT_THAT(m_tree.list("tmp"), IsEmpty());
  }
}

TEST_F(ExportCommandTest, goesOnThroughSignalsThatItWasStartedToIgnore) {
  ProgramCall call = exportCall({writeMany()});
  call.output = Stream::Pipe;
  call.ignoredSignals = {SIGHUP};
  Program program(call);
  awaitFirstPhoto();
  program.signal(SIGHUP);
  EXPECT_EQ(program.finish().status, 0);
  EXPECT_THAT(exported(), SizeIs(manyPhotos));
}

TEST_F(ExportCommandTest, exportsEveryPhotoWhenItsReportIsLost) {
  const std::string backup = writeMany();
  const auto withOutput = [&](Stream output) {
    fs::remove_all(out());
    m_tree.makeFolder("out");
    ProgramCall call = exportCall({backup});
    call.output = output;
    return call;
  };
  for (const Stream lost : {Stream::FullDevice, Stream::Closed}) {
    const ProgramResult result = Program::run(withOutput(lost));
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("the output is not complete: "));
    EXPECT_THAT(exported(), testing::AllOf(SizeIs(manyPhotos), testing::Each("x")));
  }
  Program program(withOutput(Stream::Pipe));
  awaitFirstPhoto();
  program.closeOutput();
  EXPECT_EQ(program.finish().status, 1);
  EXPECT_THAT(exported(), testing::AllOf(SizeIs(manyPhotos), testing::Each("x")));

  ProgramCall silent = withOutput(Stream::File);
  silent.errors = Stream::Closed;
  EXPECT_EQ(Program::run(silent).status, 0);
  EXPECT_THAT(exported(), testing::AllOf(SizeIs(manyPhotos), testing::Each("x")));
}

}  // namespace
}  // namespace snaplift
