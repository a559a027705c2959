// What export copies, reports and refuses.

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "CommandLineTest.h"
#include "foundation/files/File.h"
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
            {"skipped", 0},
            {"short", 0},
            {"failed", failed},
            {"bytes", bytes},
            {"not_begun", 0},
            {"interrupted", false},
            {"dry_run", false},
            {"encrypted", Json::array()}};
  }

  // A backup of many photos, all with the content "x".
  std::string writeMany() const {
    samples::SampleBackup backup{.generation = Generation::Five, .productVersion = "5.0"};
    for (int i = 0; i < manyPhotos; ++i) {
      backup.files.push_back(photo(layoutFive, "IMG_" + std::to_string(i) + ".JPG", "x"));
    }
    return write("many", backup);
  }

  void emptyDestination() const {
    fs::remove_all(out());
    m_tree.makeFolder("out");
  }

  void awaitFirstPhoto() const {
    EXPECT_TRUE(waitFor([this] { return fs::exists(out() + "/IMG_0.JPG"); }));
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
  for (const Json& line : lines) {
    const std::string unique = line["uniquePath"], written = line["written"];
    EXPECT_EQ(line, (Json{{"message_type", "photo"},
                          {"uniquePath", unique},
                          {"written", written},
                          {"error", nullptr}}));
    const std::string below = unique.substr(m_tree.path("root/").size());
    EXPECT_THAT(m_tree.read(written.substr(m_tree.root().size())),
                HasSubstr(below.substr(0, below.find('/'))));
  }

  const ProgramResult text = exportInto({m_tree.path("root")});
  EXPECT_EQ(text.status, 0);
  EXPECT_EQ(std::ranges::count(text.output, '\n'), 10);
  EXPECT_THAT(text.output, HasSubstr(out() + "/IMG_0001 9.JPG\n"));
  EXPECT_THAT(text.errors, HasSubstr("10 photos exported (200 bytes), 10 under another name, "
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
    emptyDestination();
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
  const std::string lost = "Media/DCIM/100APPLE/IMG_0001.JPG";
  const std::string content = backup + "/" + samples::contentName("CameraRollDomain", lost);
  fs::remove(content);
  const std::string error = backup + "/" + lost + ": the file is missing (NSCocoaErrorDomain 260)";
  const ProgramResult json = exportInto({"--json", backup});
  EXPECT_EQ(json.status, 3);
  EXPECT_THAT(jsonLines(json), UnorderedElementsAre(Json{{"message_type", "photo"},
                                                         {"uniquePath", backup + "/" + lost},
                                                         {"written", nullptr},
                                                         {"error", error}},
                                                    testing::_, summary(1, 0, 1, 9)));
  EXPECT_THAT(exported(), ElementsAre("Phone two"));
  const ProgramResult text = exportInto({backup});
  EXPECT_EQ(text.status, 3);
  EXPECT_EQ(text.output, out() + "/IMG_0002 1.PNG\n");
  EXPECT_EQ(std::ranges::count(text.errors, '\n'), 3) << text.errors;  // one, log, summary
  EXPECT_THAT(text.errors, HasSubstr("snaplift-cli: failed: " + error + "\n"));
  fs::create_directory(content);
  EXPECT_THAT(exportInto({backup}).errors, HasSubstr("IMG_0001.JPG: the file cannot be read"));
}

TEST_F(ExportCommandTest, saysInADryRunWhatItWouldDo) {
  const std::string backup = writeBackup("b", layoutFive, "Phone");
  write("n", {.generation = Generation::Five,
              .productVersion = "5.0",
              .files = {photo(layoutFive, std::string("a\0.jpg", 6), "x"),
                        photo(layoutFive, "lost.jpg", "x"), photo(layoutFive, "1/a.jpg", "x"),
                        photo(layoutFive, "2/a.jpg", "x")}});
  fs::remove(m_tree.path("n/" + samples::contentName("CameraRollDomain", "lost.jpg")));
  m_tree.write("out/a.jpg", "old");
  // Of the temporary folder only the content: a sanitizer has a file of its own in it for a moment.
  const auto state = [&] {
    auto entries = treeState(m_tree.root());
    entries.erase("tmp");
    return entries;
  };
  m_tree.makeFolder("tmp");
  const auto before = state();
  const ProgramResult result = exportInto({backup, m_tree.path("n"), "--dry-run"});
  EXPECT_EQ(result.status, 3);
  for (const char* name : {"/IMG_0001.JPG\n", "/a 1.jpg\n", "/a 2.jpg\n"}) {
    EXPECT_THAT(result.output, HasSubstr(out() + name));
  }
  EXPECT_THAT(result.errors, HasSubstr("dry run, nothing was written: 4 photos can be exported, "
                                       "2 cannot\n"));
  Json nothing = summary(0, 0, 0, 0);
  nothing["dry_run"] = true;
  EXPECT_EQ(jsonLines(exportInto({"-n", "--json", backup})).back(), nothing);
  EXPECT_EQ(state(), before);
}

TEST_F(ExportCommandTest, exportsNothingOfAnEncryptedBackup) {
  const std::string encrypted = write("e", {.generation = Generation::Five,
                                            .productVersion = "5.0",
                                            .encrypted = true,
                                            .files = {photo(layoutFive, "a.jpg", "secret")}});
  const ProgramResult json = exportInto({encrypted, "--json"});
  EXPECT_EQ(json.status, 12);
  EXPECT_THAT(json.errors, HasSubstr("encrypted, nothing is exported from it: " + encrypted));
  Json nothing = summary(0, 0, 0, 0);
  nothing["encrypted"] = {encrypted};
  EXPECT_THAT(jsonLines(json), ElementsAre(nothing));
  EXPECT_EQ(exportInto({encrypted, writeBackup("b", layoutFive, "Phone")}).status, 3);
  EXPECT_THAT(exported(), ElementsAre("Phone one", "Phone two"));
}

TEST_F(ExportCommandTest, refusesADestinationBeforeTheFirstPhoto) {
  const std::string backup = writeBackup("root/b", layoutFive, "Phone");
  m_tree.makeFolder("root/b/inside/deep");
  const auto before = treeState(m_tree.path("root"));
  for (const auto& [name, reason] :
       {std::pair("gone", "does not exist"),
        std::pair("root/b/inside/deep", "nothing is ever written into a backup")}) {
    const ProgramResult result = run({"export", backup, "-o", m_tree.path(name)});
    EXPECT_EQ(result.status, 1) << name;
    EXPECT_THAT(result.errors, HasSubstr(reason)) << name;
    EXPECT_EQ(result.output, "") << name;
  }
  EXPECT_EQ(treeState(m_tree.path("root")), before);
}

TEST_F(ExportCommandTest, keepsDatesAndTellsShortPhotos) {
  const std::string backup = writeBackup("b", layoutFive, "Phone");
  m_tree.write("b/" + samples::contentName("CameraRollDomain", "Media/DCIM/100APPLE/IMG_0002.PNG"),
               "cut");
  const ProgramResult result = exportInto({backup, "--json"});
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(jsonLines(result).back()["short"], 1);
  EXPECT_EQ(m_tree.read("out/IMG_0002.PNG"), "cut");
  const auto date = [&](const char* name) {
    return fileAttributes(out() + "/" + name)->modificationDate;
  };
  EXPECT_EQ(date("IMG_0001.JPG"), instantFromUnixTime(1318420800));
  EXPECT_EQ(date("IMG_0002.PNG"), instantFromUnixTime(1318420801));
  exportInto({backup, "--no-dates"});
  EXPECT_GT(date("IMG_0001 1.JPG"), instantFromUnixTime(1700000000));
  const Json again = jsonLines(exportInto({backup, "--json", "--skip-existing"})).back();
  EXPECT_EQ(again["skipped"], 2);
  EXPECT_EQ(again["bytes"], 0);
}

// Two backups of one phone, devices whose names are one folder to some file systems, and phones of
// one name.
TEST_F(ExportCommandTest, spreadsAWholeRootOverFoldersWithEachPhotoOnce) {
  writeBackup("root/a", layoutFive, "Anna");
  writeBackup("root/b", layoutFive, "Anna", 1);
  writeBackup("root/c", layoutFive, "ANNA");
  writeBackup("root/d", layoutFive, "..");
  write("root/e", {.generation = Generation::Five, .productVersion = "5.0", .encrypted = true});
  for (const auto& [device, identifier] :
       {std::pair("Anna", "1-123456"), std::pair("Anna", "1/-abcdef"), std::pair("Ben", "2")}) {
    write("root/" + fs::path(identifier).filename().string(),
          {.generation = Generation::Five,
           .deviceName = device,
           .productVersion = "5.0",
           .files = {photo(layoutFive, "Media/DCIM/100APPLE/IMG_0001.JPG", identifier)},
           .deviceIdentifier = identifier});
  }
  const std::string root = m_tree.path("root");
  struct Case {
    const char* layout;
    std::vector<std::string> folders;
    int skipped;
  };
  for (const Case& c :
       {Case{"device", {"Anna", "ANNA 2", "_", "Anna (123456)", "Anna (abcdef)", "Ben"}, 2},
        Case{"month", {"2011-10"}, 2}, Case{"dcim", {"DCIM", "DCIM/100APPLE"}, 2}}) {
    std::vector<std::map<std::string, std::string>> trees;
    for (const char* jobs : {"-j1", "-j8"}) {
      emptyDestination();
      const ProgramResult result =
          exportInto({root, "--layout", c.layout, "--skip-existing", "--json", jobs});
      EXPECT_EQ(result.status, 3);  // one is encrypted
      EXPECT_EQ(jsonLines(result).back()["skipped"], c.skipped);
      for (const std::string& folder : c.folders) {
        EXPECT_TRUE(fs::is_directory(out() + "/" + folder)) << folder;
      }
      std::map<std::string, std::string>& tree = trees.emplace_back();
      for (const std::string& name : m_tree.list("out")) {
        tree[name] = fs::is_directory(out() + "/" + name) ? "" : m_tree.read("out/" + name);
      }
      EXPECT_THAT(tree, SizeIs(9 + c.folders.size()));
      const auto before = treeState(out());
      EXPECT_EQ(exportInto({root, "--layout", c.layout, "--skip-existing"}).status, 3);
      EXPECT_EQ(treeState(out()), before);
    }
    EXPECT_EQ(trees[0], trees[1]);
  }
}

TEST_F(ExportCommandTest, choosesPhotosByWhatIsKnownOfThem) {
  const std::string edit = "Media/PhotoData/Mutations/DCIM/100APPLE/IMG_0001/FullSizeRender.jpg";
  const std::string backup =
      write("b", {.generation = Generation::Five,
                  .productVersion = "5.0",
                  .files = {photo(layoutFive, "Media/DCIM/100APPLE/IMG_0001.JPG", "1", 1318420800),
                            photo(layoutFive, "Media/DCIM/101APPLE/IMG_0002.PNG", "2", 1318420801),
                            photo(layoutFive, edit, "3", 1318420802),
                            photo(layoutFive, "Media/DCIM/101APPLE/IMG_0004.JPG", "4", 0)}});
  m_tree.write("list", backup + "/" + edit + "\r\n\n" + backup + "/gone\n");
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{"--since", "2011-10-12T12:00:01Z"}, "23"},
      {{"--until", "2011-10-12T12:00:01Z"}, "12"},
      {{"--since", "2011-10-12", "--until", "2011-10-12"}, "123"},
      {{"--since", "2011-10-14"}, ""},
      {{"--originals"}, "124"},
      {{"--match", "img_000[14].*"}, "14"},
      {{"--match", "*/101APPLE/*", "--match", "FullSize*"}, "234"},
      {{"--match", "*.jpg", "--originals", "--since", "2000-01-01"}, "1"},
  };
  const auto chosen = [&](std::vector<std::string> arguments, int status) {
    emptyDestination();
    arguments.insert(arguments.begin(), backup);
    const ProgramResult result = exportInto(arguments);
    EXPECT_EQ(result.status, status) << result.errors;
    std::string contents;
    for (const std::string& content : exported()) {
      contents += content;
    }
    return contents;
  };
  for (const auto& [arguments, contents] : cases) {
    EXPECT_EQ(chosen(arguments, 0), contents) << testing::PrintToString(arguments);
  }
  EXPECT_EQ(chosen({"--from-file", m_tree.path("list")}, 3), "3");
  EXPECT_EQ(chosen({"--from-file", m_tree.path("none")}, 1), "");
  const std::string known = m_tree.write("known", backup + "/" + edit + "\n");
  EXPECT_EQ(chosen({"--from-file", known}, 0), "3");
  emptyDestination();
  ProgramCall piped = exportCall({backup, "--from-file", "-"});
  piped.arguments.insert(piped.arguments.begin(),
                         {"/bin/sh", "-c", "exec \"$0\" \"$@\" < '" + known + "'"});
  EXPECT_EQ(Program::run(piped).status, 0);
  EXPECT_THAT(exported(), testing::ElementsAre("3"));
}

TEST_F(ExportCommandTest, reportsAndVerifiesWhatItWrote) {
  const std::string backup = writeBackup("b", layoutFive, "Phone");
  const std::string report = m_tree.path("report.csv");
  EXPECT_EQ(exportInto({backup, "--report", report}).status, 0);
  const ProgramResult same = run({"verify", report});
  EXPECT_EQ(same.status, 0);
  EXPECT_EQ(same.output, "");
  EXPECT_THAT(same.errors, HasSubstr("2 files as reported, 0 different, 0 gone\n"));
  const std::string lines = m_tree.read("report.csv");
  m_tree.write("more.csv", lines + "u,,0,,,not begun\r\n");
  const ProgramResult more = run({"verify", m_tree.path("more.csv")});
  EXPECT_EQ(more.status, 0);
  EXPECT_EQ(more.output, "");
  EXPECT_THAT(more.errors, HasSubstr("1 of the report had not arrived"));
  EXPECT_EQ(run({"verify", m_tree.write("damaged.csv", lines + "u,")}).status, 1);
  fs::remove(out() + "/IMG_0001.JPG");
  fs::create_directory(out() + "/IMG_0001.JPG");
  EXPECT_EQ(run({"verify", report}).status, 3);
  fs::remove(out() + "/IMG_0001.JPG");
  m_tree.write("out/IMG_0001.JPG", "Phone onE");
  fs::remove(out() + "/IMG_0002.PNG");
  const ProgramResult other = run({"verify", report});
  EXPECT_EQ(other.status, 3);
  EXPECT_EQ(other.output,
            "different: " + out() + "/IMG_0001.JPG\ngone: " + out() + "/IMG_0002.PNG\n");
  EXPECT_EQ(jsonLines(run({"verify", "--json", report})).back(), (Json{{"message_type", "summary"},
                                                                       {"same", 0},
                                                                       {"different", 1},
                                                                       {"gone", 1},
                                                                       {"unreadable", 0},
                                                                       {"not_exported", 0},
                                                                       {"interrupted", false}}));
  const auto before = treeState(m_tree.path("b"));
  for (const auto& [path, reason] : {std::pair(report, "exists already"),
                                     std::pair(backup + "/r.csv", "ever written into a backup"),
                                     std::pair(m_tree.path("no/r.csv"), "does not exist")}) {
    const ProgramResult refused = exportInto({backup, "--report", path});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.errors, HasSubstr(reason));
    EXPECT_EQ(refused.output, "");
  }
  EXPECT_EQ(treeState(m_tree.path("b")), before);
}

// One page of a report that nobody reads holds the program in the middle of its work.
TEST_F(ExportCommandTest, endsBetweenTwoPhotosWhenInterrupted) {
  ProgramCall call = exportCall({writeMany(), "-j2"});
  call.output = Stream::Pipe;
  Program program(call);
  awaitFirstPhoto();
  program.signal(SIGINT);
  const ProgramResult result = program.finish();
  EXPECT_EQ(result.status, 130);
  const std::size_t photos = exported().size();
  EXPECT_THAT(exported(), testing::Each("x"));
  EXPECT_THAT(photos, testing::AllOf(testing::Ge(1u), testing::Lt(manyPhotos)));
  EXPECT_EQ(static_cast<std::size_t>(std::ranges::count(result.output, '\n')), photos);
  EXPECT_THAT(result.errors, HasSubstr("interrupted: " + std::to_string(photos) + " photo"));
  EXPECT_THAT(result.errors, HasSubstr(std::to_string(manyPhotos - photos) + " not begun"));
  EXPECT_THAT(m_tree.list("tmp"), IsEmpty());
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
    emptyDestination();
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
