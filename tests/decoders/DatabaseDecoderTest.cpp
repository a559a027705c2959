// What generation 10 lists, and what a hostile database of it can do.

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "ListedPhotos.h"
#include "decoders/iOS10Decoder.h"
#include "foundation/Log.h"
#include "foundation/files/TemporaryFolder.h"
#include "samples/BackupWriter.h"
#include "samples/DatabaseWriter.h"
#include "samples/PropertyListWriter.h"
#include "support/TemporaryTree.h"
#include "support/TreeState.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;
using samples::DatabaseEntry;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string roll = "Media/DCIM/100APPLE/";
const std::string first = "Media/DCIM/100APPLE/IMG_0001.HEIC";
const std::string second = "Media/DCIM/100APPLE/IMG_0002.MOV";

DatabaseEntry entry(const std::string& path) {
  return {.domain = "CameraRollDomain",
          .path = path,
          .record = samples::archivedRecord(path, 7, 100, 200, samples::regularFileMode)};
}

class DatabaseDecoder : public testing::Test {
protected:
  std::string database() const { return m_tree.path("b/Manifest.db"); }
  void write(const std::vector<DatabaseEntry>& rows, std::size_t rowsInLog = 0) {
    samples::writeManifestDatabase(database(), rows, rowsInLog);
  }
  std::vector<std::string> photos() { return listedPhotos<iOS10Decoder>(m_tree.path("b")); }
  bool isComplete() {
    iOS10Decoder decoder(m_tree.path("b"));
    decoder.loadContents();
    return decoder.isComplete();
  }

  TemporaryTree m_tree;
  LogCapture m_quiet{[](const std::string&) {}};
};

TEST_F(DatabaseDecoder, listsWhatTheOwnerSeesByPath) {
  const std::string edited =
      "Media/PhotoData/Mutations/DCIM/100APPLE/IMG_0001/Adjustments/FullSizeRender.jpg";
  const std::string cloud = "Media/PhotoData/CPLAssets/group1/A.JPG";
  DatabaseEntry elsewhere = entry(roll + "IMG_0009.JPG");
  elsewhere.domain = "MediaDomain";
  DatabaseEntry folder = entry(roll + "folder.jpg");
  folder.flags = 2;
  DatabaseEntry link = entry(roll + "link.jpg");
  link.flags = 4;
  DatabaseEntry replaced = entry(first);  // the last row of a path counts
  replaced.fileID = std::string(40, '0');
  replaced.record = {};
  write({replaced, entry(edited), entry(cloud), entry(second), elsewhere, folder, link,
         entry(first), entry(roll + "IMG_0001.AAE"), entry("Media/DCIM/.MISC/x.jpg"),
         entry("Media/PhotoData/Thumbnails/V2/DCIM/100APPLE/IMG_0001.HEIC/5005.JPG")});
  EXPECT_THAT(photos(), ElementsAre(first, second, cloud, edited));
  iOS10Decoder decoder(m_tree.path("b"));
  decoder.loadContents();
  EXPECT_EQ(decoder.photoInfo(0).birthDate, instantFromUnixTime(100));
  EXPECT_EQ(decoder.photoInfo(0).modificationDate, instantFromUnixTime(200));
}

TEST_F(DatabaseDecoder, readsContentByNamesThatAreDigestsOnly) {
  std::vector<DatabaseEntry> rows;
  const std::string digits(38, '7');
  for (const std::string& fileID : {"ab" + digits, "CD" + digits, "../" + digits,
                                    "ab" + digits + "0", std::string(), "gg" + digits}) {
    rows.push_back(entry(roll + std::to_string(rows.size()) + ".jpg"));
    rows.back().fileID = fileID;
  }
  write(rows);
  m_tree.write("b/ab/ab" + digits, "content");
  m_tree.write("b/cd/cd" + digits, "another");
  iOS10Decoder decoder(m_tree.path("b"));
  const std::vector<std::string> paths = decoder.imageFilePaths();
  ASSERT_EQ(paths.size(), rows.size());
  EXPECT_EQ(textOf(*decoder.dataForFileAtPath(paths[0])), "content");
  EXPECT_EQ(textOf(*decoder.dataForFileAtPath(paths[1])), "another");
  for (std::size_t i = 2; i < paths.size(); ++i) {
    EXPECT_FALSE(decoder.dataForFileAtPath(paths[i]));
    EXPECT_EQ(decoder.contentState(i), ContentState::Missing);
  }
}

TEST_F(DatabaseDecoder, listsAPhotoWhoseRecordCannotBeReadWithoutDateAndSize) {
  const std::string whole = entry(first).record;
  std::vector<DatabaseEntry> rows;
  for (const std::string& record :
       {std::string(), std::string("rubbish"), whole.substr(0, whole.size() / 2),
        samples::binaryPropertyList(samples::PlistValue::dictionary({{"$top", 1}})),
        whole + std::string(ManifestDatabase::maximumRecordLengthInBytes, 'x'),
        std::string(100'000'000, 'x')}) {
    rows.push_back(entry(roll + std::to_string(rows.size()) + ".jpg"));
    rows.back().record = record;
  }
  write(rows);
  iOS10Decoder decoder(m_tree.path("b"));
  EXPECT_EQ(decoder.imageFilePaths().size(), rows.size());
  EXPECT_TRUE(decoder.isComplete());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_FALSE(decoder.photoInfo(i).size) << i;
    EXPECT_FALSE(decoder.photoInfo(i).date()) << i;
  }
}

TEST_F(DatabaseDecoder, readsALogWithoutTouchingIt) {
  write({entry(first), entry(second)}, 1);
  ASSERT_GT(fs::file_size(database() + "-wal"), 0u);
  const auto before = treeState(m_tree.path("b"));
  EXPECT_THAT(photos(), ElementsAre(first, second));
  EXPECT_TRUE(isComplete());
  EXPECT_EQ(treeState(m_tree.path("b")), before);
  EXPECT_TRUE(fs::is_empty(temporaryFolder()));
  // Without its log the database is one that nobody can change.
  fs::remove(database() + "-wal");
  m_tree.write("b/Manifest.db-wal", "");
  EXPECT_THAT(photos(), ElementsAre(first));
  EXPECT_TRUE(isComplete());
  EXPECT_EQ(m_tree.list("b").size(), 2u);
}

TEST_F(DatabaseDecoder, leavesTheDatabaseOfAnEncryptedBackupAlone) {
  m_tree.write("b/Manifest.plist",
               samples::xmlPropertyList(samples::PlistValue::dictionary({{"IsEncrypted", true}})));
  m_tree.write("b/Manifest.db", "not a database that anybody could read");
  iOS10Decoder decoder(m_tree.path("b"));
  EXPECT_THAT(decoder.imageFilePaths(), IsEmpty());
  EXPECT_TRUE(decoder.encrypted());
  EXPECT_TRUE(decoder.encryptsList());
  EXPECT_TRUE(decoder.isComplete());
}

TEST_F(DatabaseDecoder, takesWhatAHostileDatabaseHasAndSaysThatTheRestIsMissing) {
  const auto sql = [this](const char* statements) {
    return [this, statements] { samples::changeDatabase(database(), statements); };
  };
  const auto instead = [this](const std::function<void()>& make) {
    return [this, make] {
      fs::rename(database(), m_tree.path("good"));
      make();
    };
  };
  struct Case {
    const char* name;
    std::function<void()> change;
    std::size_t photos;
    bool isComplete;
  };
  const std::vector<Case> cases = {
      {"nothing", [] {}, 2, true},
      {"no table", sql("DROP TABLE Files"), 0, false},
      {"no path", sql("ALTER TABLE Files RENAME COLUMN relativePath TO path"), 0, false},
      {"no flags", sql("ALTER TABLE Files DROP COLUMN flags"), 2, true},
      {"no records", sql("ALTER TABLE Files DROP COLUMN file"), 2, true},
      {"an endless view",
       sql("DROP TABLE Files; CREATE VIEW Files(fileID, domain, relativePath, flags, file) AS WITH "
           "RECURSIVE r(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM r) SELECT i, "
           "'CameraRollDomain', 'Media/DCIM/100APPLE/' || i || '.jpg', 1, NULL FROM r"),
       0, false},
      {"a view with row numbers",
       sql("ALTER TABLE Files RENAME TO Hidden; CREATE VIEW Files AS SELECT *, _rowid_ AS _rowid_ "
           "FROM Hidden"),
       0, false},
      {"a trigger", sql("CREATE TRIGGER t DELETE ON Files BEGIN SELECT raise(FAIL, ''); END"), 2,
       true},
      {"a computed column", sql("ALTER TABLE Files ADD COLUMN big AS (hex(zeroblob(100000)))"), 0,
       false},
      {"a table without row numbers",
       sql("CREATE TABLE Other(fileID TEXT PRIMARY KEY, domain TEXT, relativePath TEXT, flags, "
           "file) WITHOUT ROWID; INSERT INTO Other SELECT * FROM Files; DROP TABLE Files; ALTER "
           "TABLE Other RENAME TO Files"),
       2, true},
      {"an index with the wrong rows",
       sql("PRAGMA writable_schema=1; UPDATE sqlite_schema SET rootpage=(SELECT rootpage FROM "
           "sqlite_schema WHERE name='Properties') WHERE name='FilesDomainIdx'"),
       2, true},
      {"values of other types",
       sql("INSERT INTO Files VALUES(1, 'CameraRollDomain', 2, 'x', 3), (x'00', "
           "'CameraRollDomain', NULL, NULL, NULL)"),
       2, true},
      {"a path of 30 MB in the midst",
       sql("UPDATE Files SET relativePath = printf('%.30000000c', 'x') WHERE _rowid_ = 1"), 1,
       false},
      {"rows of one name",
       sql("WITH RECURSIVE r(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM r LIMIT 20000) INSERT "
           "INTO Files SELECT i, 'CameraRollDomain', 'Media/DCIM/100APPLE/same.jpg', 1, NULL FROM "
           "r"),
       3, true},
      {"half of the file", [this] { fs::resize_file(database(), fs::file_size(database()) / 2); },
       0, false},
      {"an empty file", [this] { m_tree.write("b/Manifest.db", ""); }, 0, false},
      {"rubbish", [this] { m_tree.write("b/Manifest.db", std::string(9999, 'x')); }, 0, false},
      {"a FIFO", instead([this] { ::mkfifo(database().c_str(), 0600); }), 0, false},
      {"a folder", instead([this] { m_tree.makeFolder("b/Manifest.db"); }), 0, false},
      {"a link to a good one",
       instead([this] { fs::create_symlink(m_tree.path("good"), database()); }), 0, false},
      {"a log that is a FIFO", [this] { ::mkfifo((database() + "-wal").c_str(), 0600); }, 0, false},
      {"a log of rubbish", [this] { m_tree.write("b/Manifest.db-wal", std::string(9999, 'x')); }, 2,
       true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    fs::remove_all(m_tree.path("b"));
    write({entry(first), entry(second)});
    c.change();
    const auto before = m_tree.list("b");
    EXPECT_EQ(photos().size(), c.photos);
    EXPECT_EQ(isComplete(), c.isComplete);
    EXPECT_EQ(m_tree.list("b"), before);
  }
  EXPECT_TRUE(fs::is_empty(temporaryFolder()));
}

TEST_F(DatabaseDecoder, goesOnBehindPagesThatAreDamaged) {
  std::vector<DatabaseEntry> rows;
  for (int i = 0; i < 2000; ++i) {
    rows.push_back(entry(roll + "IMG_" + std::to_string(i) + ".JPG"));
  }
  write(rows);
  std::string bytes = m_tree.read("b/Manifest.db");
  // A page of the table in the midst of it.
  const std::size_t page = bytes.find("IMG_1000.JPG") / 4096 * 4096;
  m_tree.write("b/Manifest.db", bytes.replace(page, 4096, std::string(4096, '\x55')));
  const std::size_t listed = photos().size();
  EXPECT_GT(listed, 1900u);
  EXPECT_LT(listed, 2000u);
  EXPECT_FALSE(isComplete());
}

TEST_F(DatabaseDecoder, stopsInTheMidstOfALoad) {
  std::vector<DatabaseEntry> rows(5000, DatabaseEntry{.domain = "D", .path = "p"});
  for (std::size_t i = 0; i < rows.size(); ++i) {
    rows[i].fileID = std::to_string(i);
  }
  write(rows, 10);
  std::stop_source stop;
  ManifestDatabase database(m_tree.path("b"), stop.get_token());
  std::size_t visited = 0;
  EXPECT_FALSE(database.visitRows({}, [&](const DatabaseRow&) {
    ++visited;
    stop.request_stop();
  }));
  EXPECT_LT(visited, rows.size());
}

}  // namespace
}  // namespace snaplift
