// What list, photos, files and check print, as text and as JSON.

#include <filesystem>
#include <string>
#include <vector>

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
  EXPECT_EQ(text.output,
            "Anna's Phone\n"
            "  October 15, 2011  (5.0.1)  " +
                root +
                "/a2\n"
                "  October 12, 2011  (1.1.4)  " +
                root +
                "/a1\n"
                "B\xc3\xb6rn\n"
                "  October 14, 2011  (4.2.1)  " +
                root +
                "/b\n"
                "(device without a name)\n"
                "  October 13, 2011  (3.1.3)  " +
                root + "/n\n");
  EXPECT_THAT(text.errors, HasSubstr("no backup has no info.plist"));

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

TEST_F(ListCommandsTest, takesOneBackupForARoot) {
  const std::string backup = writeBackup("root/b", layouts[2], "One");
  const ProgramResult listed = run({"list", backup + "/", "--json"});
  EXPECT_EQ(listed.status, 0);
  const Json list = jsonLines(listed).at(0);
  EXPECT_EQ(list["root"], backup);
  EXPECT_EQ(list["devices"][0]["backups"][0]["path"], backup);
  EXPECT_EQ(jsonLines(run({"check", "--json", backup})).at(0)["listed"], 2);
}

TEST_F(ListCommandsTest, saysWhatIsNoBackup) {
  const std::string good = writeBackup("root/good", layoutFive, "Good");
  writeBackup("root/old", {Generation::Five, "0.9", ""}, "Old");
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
      {{"list", file}, 10, "not a folder that can be read"},
      {{"list", damaged}, 10, "not a backup that can be read"},
      {{"list", m_tree.path("empty")}, 0, "no backups in"},
      {{"list", m_tree.path("root")}, 0, "no decoder available for version 0.9 backup"},
      {{"check", m_tree.path("gone")}, 10, "no such folder"},
      {{"photos", m_tree.path("gone")}, 10, "no such folder"},
      {{"photos", m_tree.path("root")}, 10, "not a backup that can be read"},
      {{"files", damaged}, 10, "not a backup that can be read"},
      {{"files", ""}, 10, "no"},
      {{"photos", good}, 0, "2 photos"},
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

TEST_F(ListCommandsTest, listsThePhotosOfEveryGeneration) {
  for (const Layout& layout : layouts) {
    SCOPED_TRACE(layout.version);
    const std::string name = std::string("of ") + layout.version + layout.decoder;
    const std::string backup = writeBackup(name, layout, "Phone");
    const ProgramResult text = run({"photos", backup});
    EXPECT_EQ(text.status, 0);
    const ProgramResult json = run({"photos", backup, "--json"});
    EXPECT_EQ(json.status, 0);
    const Json one = {{"uniquePath", backup + "/Media/DCIM/100APPLE/IMG_0001.JPG"},
                      {"fileName", "IMG_0001.JPG"},
                      {"fileType", "JPG"}};
    const Json two = {{"uniquePath", backup + "/Media/DCIM/100APPLE/IMG_0002.PNG"},
                      {"fileName", "IMG_0002.PNG"},
                      {"fileType", "PNG"}};
    const bool newestFirst = layout.generation <= Generation::Three;
    EXPECT_THAT(jsonLines(json),
                ElementsAre(Json{{"path", backup},
                                 {"encrypted", false},
                                 {"photos", newestFirst ? Json{two, one} : Json{one, two}}}));
    EXPECT_EQ(text.output,
              newestFirst ? "Media/DCIM/100APPLE/IMG_0002.PNG\nMedia/DCIM/100APPLE/IMG_0001.JPG\n"
                          : "Media/DCIM/100APPLE/IMG_0001.JPG\nMedia/DCIM/100APPLE/IMG_0002.PNG\n");
  }
}

TEST_F(ListCommandsTest, saysThatABackupIsEncrypted) {
  const std::string backup = write("b", {.generation = Generation::Five,
                                         .productVersion = "5.0",
                                         .encrypted = true,
                                         .files = {photo(layoutFive, "a.jpg", "x")}});
  EXPECT_THAT(run({"photos", backup}).errors, HasSubstr("1 photo, encrypted"));
  EXPECT_EQ(jsonLines(run({"photos", backup, "--json"})).at(0)["encrypted"], true);
  EXPECT_THAT(run({"check", backup}).output, HasSubstr("encrypted"));
  EXPECT_EQ(jsonLines(run({"check", backup, "--json"})).at(0)["encrypted"], true);
}

TEST_F(ListCommandsTest, listsEveryFileWithContentByDomain) {
  samples::SampleBackup sample{.generation = Generation::Four, .productVersion = "4.2.1"};
  sample.files = {{"ADomain", "Library/a.db", "12345", 1318420800},
                  {"ADomain", "empty", "", 1318420800},
                  {"MediaDomain", "Media/DCIM/IMG_0001.JPG", "1234", 0xFFFFFFFF},
                  {"MediaDomain", "Media/clip.mov", "123", 0}};
  const std::string backup = write("b", sample);
  const auto file = [](const char* domain, const char* path, int size, const char* date) {
    return Json{{"path", path},
                {"filename", samples::contentName(domain, path)},
                {"filelength", size},
                {"modificationDate", date},
                {"type", 1}};
  };
  const ProgramResult result = run({"files", "--json", backup});
  EXPECT_EQ(result.status, 0);
  ASSERT_THAT(jsonLines(result), testing::SizeIs(1)) << result.output;
  const Json json = jsonLines(result)[0];
  EXPECT_EQ(json["path"], backup);
  const Json photo = file("MediaDomain", "Media/DCIM/IMG_0001.JPG", 4, "1969-12-31T23:59:59Z");
  const Json film = file("MediaDomain", "Media/clip.mov", 3, "1970-01-01T00:00:00Z");
  EXPECT_THAT(std::vector<Json>(json["domains"]),
              testing::UnorderedElementsAre(
                  Json{{"domain", "ADomain"},
                       {"files", {file("ADomain", "Library/a.db", 5, "2011-10-12T12:00:00Z")}}},
                  Json{{"domain", "MediaDomain"}, {"files", {photo, film}}}));
  const ProgramResult text = run({"files", backup});
  EXPECT_THAT(text.output, HasSubstr("MediaDomain\n  "));
  EXPECT_THAT(text.output, HasSubstr("Media/clip.mov\n"));
  EXPECT_THAT(text.errors, HasSubstr("3 files, 12 bytes"));
  const std::string five = writeBackup("five", layoutFive, "Phone");
  EXPECT_THAT(run({"files", "--json", five}).output, testing::Not(HasSubstr("\"type\"")));
}

TEST_F(ListCommandsTest, checksForMissingPhotos) {
  const std::string whole = writeBackup("root/a", layoutFive, "Phone");
  const std::string backup = writeBackup("root/b", layoutFive, "Phone");
  const std::string lost = "Media/DCIM/100APPLE/IMG_0002.PNG";
  std::filesystem::remove(backup + "/" + samples::contentName("CameraRollDomain", lost));
  const ProgramResult json = run({"check", m_tree.path("root"), "--json"});
  EXPECT_EQ(json.status, 3);
  const auto state = [](const std::string& path, int present, const Json& missing) {
    return Json{{"path", path},
                {"encrypted", false},
                {"listed", 2},
                {"present", present},
                {"missing", missing}};
  };
  EXPECT_THAT(jsonLines(json),
              testing::UnorderedElementsAre(state(whole, 2, Json::array()),
                                            state(backup, 1, Json::array({backup + "/" + lost}))));
  const ProgramResult text = run({"check", backup});
  EXPECT_EQ(text.status, 3);
  EXPECT_EQ(text.output,
            backup + "\n  2 photos listed, 1 present, 1 missing\n  missing: " + lost + "\n");
  EXPECT_EQ(run({"check", whole}).output, whole + "\n  2 photos listed, 2 present, 0 missing\n");
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
