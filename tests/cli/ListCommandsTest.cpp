// What list, photos, files and check print, as text and as JSON.

#include <algorithm>
#include <array>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

#include "CommandLineTest.h"

namespace snaplift {
namespace {

using samples::Generation;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const Layout& layoutFour = layouts[3];
constexpr const Layout& layoutFive = layouts[4];

class ListCommandsTest : public CommandLineTest {
protected:
  // Three devices: Anna's has two backups, one has no name.
  void writeRoot(const std::string& root) {
    writeBackup(root + "/a1", layouts[0], "Anna's Phone", 0);
    writeBackup(root + "/a2", layoutFive, "Anna's Phone", 3);
    writeBackup(root + "/b", layoutFour, "B\xc3\xb6rn", 2);
    write(root + "/n",
          {.generation = Generation::Three, .productVersion = "3.1.3", .date = date(1)});
    m_tree.write(root + "/no backup/file", "");
  }
};

TEST_F(ListCommandsTest, listsARootNewestFirst) {
  writeRoot("root");
  const std::string root = m_tree.path("root");
  const ProgramResult text = run({"list", root + "//"});
  EXPECT_EQ(text.status, 0);
  const std::string rows[] = {"Anna's Phone\n  October 15, 2011  (5.0.1)  ",
                              "/a2\n",
                              "  October 12, 2011  (1.1.4)  ",
                              "/a1\n",
                              "B\xc3\xb6rn\n  October 14, 2011  (4.2.1)  ",
                              "/b\n",
                              "Unnamed Device\n  October 13, 2011  (3.1.3)  ",
                              "/n\n"};
  std::string expected;
  for (std::size_t i = 0; i < std::size(rows); i += 2) {
    expected += rows[i] + root + rows[i + 1];
  }
  EXPECT_EQ(text.output, expected);

  const ProgramResult json = run({"list", "--json", root});
  EXPECT_EQ(json.status, 0);
  const auto backup = [&](const char* name, const Json& device, const char* version,
                          const char* day, const char* decoder) {
    return Json{{"path", root + "/" + name},
                {"deviceName", device},
                {"productVersion", version},
                {"date", std::string("2011-10-") + day + "T12:00:00Z"},
                {"decoder", decoder}};
  };
  EXPECT_THAT(
      jsonLines(json),
      ElementsAre(Json{
          {"root", root},
          {"devices",
           {{{"name", "Anna's Phone"},
             {"backups",
              {backup("a2", "Anna's Phone", "5.0.1", "15", "iOS5Decoder"),
               backup("a1", "Anna's Phone", "1.1.4", "12", "iOS2Decoder")}}},
            {{"name", "B\xc3\xb6rn"},
             {"backups", Json::array({backup("b", "B\xc3\xb6rn", "4.2.1", "14", "iOS4Decoder")})}},
            {{"name", nullptr},
             {"backups", Json::array({backup("n", nullptr, "3.1.3", "13", "iOS3Decoder")})}}}}}));
}

TEST_F(ListCommandsTest, findsTheUsersRootThroughTheHomeFolder) {
  EXPECT_EQ(run({"list"}).status, 10);
  writeBackup("home/Library/Application Support/MobileSync/Backup/x", layoutFive, "Mine");
  const ProgramResult listed = run({"list"});
  EXPECT_EQ(listed.status, 0);
  EXPECT_THAT(listed.output, HasSubstr(rootInHome() + "/x\n"));
  EXPECT_THAT(run({"check"}).output, HasSubstr("2 photos listed, 2 present, 0 missing"));

  ProgramCall homeless = call({"list"});
  homeless.environment.emplace_back("HOME", std::nullopt);
  const ProgramResult nothing = Program::run(homeless);
  EXPECT_EQ(nothing.status, 10);
  EXPECT_THAT(nothing.errors, HasSubstr("without a home folder"));
}

TEST_F(ListCommandsTest, wordsDatesInTheLocaleOfTimes) {
  const std::string backup = writeBackup("b", layoutFive, "Phone");
  struct Case {
    const char *all, *time, *lang, *date;
  };
  for (const Case& c : {Case{"", "de_DE.UTF-8", "en_US.UTF-8", "12. Oktober 2011"},
                        Case{"en_GB.UTF-8", "de_DE.UTF-8", "", "12 October 2011"},
                        Case{"", "", "fr_FR.UTF-8", "12 octobre 2011"},
                        Case{"C.UTF-8", "de_DE.UTF-8", "", "October 12, 2011"},
                        Case{"", "", "", "October 12, 2011"}}) {
    ProgramCall call = this->call({"list", backup});
    call.environment.insert(
        call.environment.end(),
        {{"LC_ALL", c.all}, {"LC_TIME", c.time}, {"LANG", c.lang}, {"LC_MESSAGES", "es_ES.UTF-8"}});
    EXPECT_THAT(Program::run(call).output, HasSubstr(c.date));
  }
}

TEST_F(ListCommandsTest, saysWhatIsNoBackup) {
  const std::string good = writeBackup("root/good", layoutFive, "Good");
  writeBackup("root/old", {Generation::Five, "0.9", ""}, "Old");
  writeBackup("several/one", layoutFive, "One");
  writeBackup("several/two", layoutFive, "Two");
  writeBackup("same/b1", layoutFive, "Same");
  writeBackup("same/b12", layoutFive, "Same");
  const std::string damaged = writeBackup("damaged", layoutFive, "Bad");
  m_tree.write("damaged/Info.plist", "no property list");
  const std::string file = m_tree.write("file", "");
  m_tree.makeFolder("empty");

  struct Case {
    std::vector<std::string> arguments;
    int status;
    const char* error;
  };
  const Case cases[] = {
      {{"list", m_tree.path("gone")}, 10, "no such folder"},
      {{"list", file}, 10, "not a folder: "},
      {{"list", damaged}, 10, "not a backup that can be read"},
      {{"list", m_tree.path("empty")}, 0, "no backups in"},
      {{"list", m_tree.path("root")}, 0, "no decoder available for version 0.9 backup"},
      {{"check", m_tree.path("gone")}, 10, "no such folder"},
      {{"check", m_tree.path("empty")}, 10, "no backups in"},
      {{"photos", m_tree.path("gone")}, 10, "no such folder"},
      {{"photos", m_tree.path("several")}, 10, "several backups in"},
      {{"files", damaged}, 10, "not a backup that can be read"},
      {{"files", ""}, 10, "no"},
      {{"photos", good}, 0, "2 photos"},
      {{"photos", m_tree.path("root")}, 0, "2 photos"},  // there is one
      {{"photos", good + "/Info.plist"}, 0, "2 photos"},
      {{"photos", good + "/Manifest.plist"}, 0, "2 photos"},
      {{"photos", good + "/Manifest.nothing"}, 10, "no such folder"},
      {{"photos", "tw", "--root", m_tree.path("several")}, 0, "2 photos"},
      {{"photos", "o", "-r", m_tree.path("several")}, 0, "2 photos"},
      {{"photos", "latest", "-r", m_tree.path("several")}, 0, "2 photos"},
      {{"photos", "lat", "-r", m_tree.path("several")}, 10, "no backup of that name in"},
      {{"photos", "b", "-r", m_tree.path("same")}, 10, "several backups begin with b in"},
      {{"photos", "b1", "-r", m_tree.path("same")}, 0, "2 photos"},  // and no other
      {{"find", m_tree.path("gone")}, 10, "no such folder"},
      {{"find", m_tree.path("empty")}, 10, "0 backups in 1 folder"},
  };
  for (const Case& c : cases) {
    const ProgramResult result = run(c.arguments);
    EXPECT_EQ(result.status, c.status) << testing::PrintToString(c.arguments);
    EXPECT_THAT(result.errors, HasSubstr(c.error)) << testing::PrintToString(c.arguments);
    EXPECT_EQ(result.output.empty(), c.status != 0 || c.arguments[1] == m_tree.path("empty"));
  }
  // A stray file does not hide the backups of a root.
  m_tree.write("root/Info.plist", "no property list");
  EXPECT_THAT(run({"list", m_tree.path("root")}).output, HasSubstr("good\n"));
}

TEST_F(ListCommandsTest, findsBackupsBelowAFolderAndNamesThemAsOthersDo) {
  writeRoot("disk/Library/Application Support/MobileSync/Backup");
  const std::string copy = writeBackup("disk/old/copy", layoutFive, "Copy");
  ASSERT_EQ(::symlink(copy.c_str(), m_tree.path("link").c_str()), 0);
  const ProgramResult found = run({"find", m_tree.path("disk"), m_tree.path("link")});
  EXPECT_EQ(found.status, 0);
  std::vector<Json> listed;
  const Json list = jsonLines(run({"list", "--json", m_tree.path("disk")})).at(0);
  for (const Json& device : list["devices"]) {
    listed.insert(listed.end(), device["backups"].begin(), device["backups"].end());
  }
  EXPECT_THAT(jsonLines(found), testing::UnorderedElementsAreArray(listed));
  EXPECT_THAT(listed, testing::SizeIs(5));
  EXPECT_THAT(jsonLines(run({"check", "--json", m_tree.path("disk")})), testing::SizeIs(5));
  EXPECT_THAT(jsonLines(run({"check", "--json", copy, m_tree.path("link")})), testing::SizeIs(1));

  const ProgramResult quiet = run({"find", "--quiet", m_tree.path("disk"), m_tree.path("gone")});
  EXPECT_EQ(quiet.status, 10);
  EXPECT_EQ(quiet.errors, "snaplift-cli: no such folder: " + m_tree.path("gone") + "\n");
}

TEST_F(ListCommandsTest, listsThePhotosOfEveryGeneration) {
  for (const Layout& layout : layouts) {
    SCOPED_TRACE(layout.version);
    const std::string name = std::string("of ") + layout.version + layout.decoder;
    const std::string backup = writeBackup(name, layout, "Phone");
    std::vector<std::array<std::string, 3>> photos = {
        {"IMG_0001.JPG", "JPG", "2011-10-12T12:00:00Z"},
        {"IMG_0002.PNG", "PNG", "2011-10-12T12:00:01Z"}};
    if (layout.generation <= Generation::Three) {
      std::ranges::reverse(photos);  // the newest first
    }
    std::string lines;
    Json list = Json::array();
    for (const auto& [file, type, date] : photos) {
      const std::string path = "Media/DCIM/100APPLE/" + file;
      lines += path + "\n";
      list.push_back({{"uniquePath", backup + "/" + path},
                      {"fileName", file},
                      {"fileType", type},
                      {"date", date},
                      {"size", layout.generation <= Generation::Three ? Json() : Json(9)},
                      {"kind", "original"},
                      {"media", "photo"}});
    }
    const ProgramResult text = run({"photos", backup});
    EXPECT_EQ(text.status, 0);
    EXPECT_EQ(text.output, lines);
    EXPECT_THAT(jsonLines(run({"photos", backup, "--json"})),
                ElementsAre(Json{{"path", backup}, {"encrypted", false}, {"photos", list}}));
  }
}

TEST_F(ListCommandsTest, saysThatABackupIsEncrypted) {
  const std::string backup = write("b", {.generation = Generation::Five,
                                         .productVersion = "5.0",
                                         .encrypted = true,
                                         .files = {photo(layoutFive, "a.jpg", "x")}});
  for (const char* command : {"photos", "check"}) {
    const ProgramResult text = run({command, backup});
    EXPECT_THAT(text.output + text.errors, HasSubstr("encrypted")) << command;
    EXPECT_EQ(jsonLines(run({command, backup, "--json"})).at(0)["encrypted"], true) << command;
  }
}

TEST_F(ListCommandsTest, listsEveryFileWithContentByDomain) {
  const std::string backup =
      write("b", {.generation = Generation::Four,
                  .productVersion = "4.2.1",
                  .files = {{"ADomain", "Library/a.db", "12345", 1318420800},
                            {"ADomain", "empty", "", 1318420800},
                            {"MediaDomain", "Media/DCIM/IMG_0001.JPG", "1234", 0xFFFFFFFF},
                            {"MediaDomain", "Media/clip.mov", "123", 0}}});
  const auto file = [](const char* domain, const char* path, int size, const char* date) {
    return Json{{"path", path},
                {"filename", samples::contentName(domain, path)},
                {"filelength", size},
                {"modificationDate", date},
                {"type", 1}};
  };
  const Json json = jsonLines(run({"files", "--json", backup})).at(0);
  EXPECT_EQ(json["path"], backup);
  const Json photo = file("MediaDomain", "Media/DCIM/IMG_0001.JPG", 4, "1969-12-31T23:59:59Z");
  const Json film = file("MediaDomain", "Media/clip.mov", 3, "1970-01-01T00:00:00Z");
  EXPECT_THAT(std::vector<Json>(json["domains"]),
              testing::UnorderedElementsAre(
                  Json{{"domain", "ADomain"},
                       {"files", {file("ADomain", "Library/a.db", 5, "2011-10-12T12:00:00Z")}}},
                  Json{{"domain", "MediaDomain"}, {"files", {photo, film}}}));
  const ProgramResult text = run({"files", backup});
  EXPECT_EQ(text.status, 0);
  EXPECT_THAT(text.output, HasSubstr("MediaDomain\n  "));
  EXPECT_THAT(text.output, HasSubstr("Media/clip.mov\n"));
  EXPECT_THAT(text.errors, HasSubstr("3 files, 12 bytes"));
  const std::string five = writeBackup("five", layoutFive, "Phone");
  EXPECT_THAT(run({"files", "--json", five}).output, testing::Not(HasSubstr("\"type\"")));
}

TEST_F(ListCommandsTest, checksForMissingAndShortPhotos) {
  const std::string backup = writeBackup("root/b", layoutFive, "Phone");
  const std::string lost = "Media/DCIM/100APPLE/IMG_0002.PNG";
  const std::string content = "root/b/" + samples::contentName("CameraRollDomain", lost);
  const Json none = Json::array(), one = Json::array({backup + "/" + lost});
  struct Case {
    int status, present;
    Json missing, cut;
    std::string text;
  };
  const Case cases[] = {{0, 2, none, none, "2 present, 0 missing\n"},
                        {3, 1, none, one, "1 present, 0 missing, 1 short\n  short: " + lost + "\n"},
                        {3, 1, one, none, "1 present, 1 missing\n  missing: " + lost + "\n"}};
  for (const Case& c : cases) {
    if (c.cut == one) {
      m_tree.write(content, "");
    } else if (c.missing == one) {
      std::filesystem::remove(m_tree.path(content));
    }
    const ProgramResult text = run({"check", backup});
    EXPECT_EQ(text.status, c.status);
    EXPECT_EQ(text.output,
              "Phone, October 12, 2011  (5.0.1)  " + backup + "\n  2 photos listed, " + c.text);
    const ProgramResult json = run({"check", m_tree.path("root"), "--json"});
    EXPECT_EQ(json.status, c.status);
    EXPECT_THAT(jsonLines(json), ElementsAre(Json{{"path", backup},
                                                  {"encrypted", false},
                                                  {"incomplete", false},
                                                  {"unfinished", false},
                                                  {"listed", 2},
                                                  {"present", c.present},
                                                  {"missing", c.missing},
                                                  {"short", c.cut},
                                                  {"unreadable", none}}));
  }
}

TEST_F(ListCommandsTest, takesFilmsAndOtherPicturesWhereTheyAreWanted) {
  const std::string roll = "Media/DCIM/100APPLE/";
  const std::string backup =
      write("five", {.generation = Generation::Five,
                     .productVersion = "5.0",
                     .files = {photo(layoutFive, roll + "a.MOV", "film"),
                               photo(layoutFive, roll + "b.JPG", "photo"),
                               photo(layoutFive, roll + "c.TIFF", "other")}});
  const std::string hint = "1 film and 1 other picture are left out of " + backup + "; see --media";
  const ProgramResult photos = run({"photos", backup, "--media", "photos"});
  EXPECT_EQ(photos.output, roll + "b.JPG\n");
  EXPECT_THAT(photos.errors, HasSubstr(hint));
  const ProgramResult all = run({"photos", backup, "--media", "all"});
  EXPECT_EQ(all.output, roll + "b.JPG\n" + roll + "a.MOV\n" + roll + "c.TIFF\n");
  EXPECT_THAT(all.errors, testing::Not(HasSubstr("left out")));
  EXPECT_THAT(run({"check", backup}).errors, HasSubstr(hint));
  EXPECT_THAT(run({"check", backup, "--media", "all"}).output, HasSubstr("3 photos listed, 3 p"));
  const std::string out = m_tree.makeFolder("out");
  EXPECT_EQ(run({"export", backup, "--media", "all", "-o", out}).status, 0);
  EXPECT_TRUE(std::filesystem::exists(out + "/a.MOV"));
  EXPECT_EQ(run({"photos", backup, "--media", "some"}).status, 2);
}

TEST_F(ListCommandsTest, replacesBytesThatAreNoUtf8) {
  const std::string backup = write("root/\xff", {.generation = Generation::Five,
                                                 .productVersion = "5.0",
                                                 .files = {photo(layoutFive, "a\xfe.jpg", "x")}});
  const std::string replaced = m_tree.path("root/\xef\xbf\xbd");
  const Json list = jsonLines(run({"list", m_tree.path("root"), "--json"})).at(0);
  EXPECT_EQ(list["devices"][0]["backups"][0]["path"], replaced);
  const Json photos = jsonLines(run({"photos", backup, "--json"})).at(0);
  EXPECT_EQ(photos["photos"][0]["uniquePath"], replaced + "/a\xef\xbf\xbd.jpg");
  EXPECT_EQ(run({"photos", backup}).output, "a\xfe.jpg\n");
}

}  // namespace
}  // namespace snaplift
