#include <stop_token>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "formats/MBDBXReader.h"
#include "formats/iOS5BackupReader.h"
#include "samples/ManifestWriter.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

using samples::ManifestEntry;
using testing::ElementsAre;
using testing::IsEmpty;

template <class Entry>
std::vector<std::string> pathsOf(const ManifestDomains<Entry>& domains, std::string_view domain) {
  std::vector<std::string> paths;
  if (const std::vector<Entry>* entries = domains.entriesOf(domain)) {
    for (const Entry& entry : *entries) {
      paths.emplace_back(entry.path());
    }
  }
  return paths;
}

const std::string roll = "CameraRollDomain";
const std::string photoPath = "Media/DCIM/100APPLE/IMG_0001.JPG";

// The same manifest for both indexes: dates out of order, some equal, entries of length 0, an entry
// without a domain, domains in turns.
const std::vector<ManifestEntry> manifest = {
    {.domain = roll, .path = photoPath, .modificationDate = 30, .filelength = 5},
    {.domain = "HomeDomain", .path = "a", .modificationDate = 20, .filelength = 1},
    {.domain = roll, .path = "early", .modificationDate = 10, .filelength = 1},
    {.domain = roll, .path = "folder", .mode = 0x41ED, .modificationDate = 20},
    {.domain = roll, .path = "empty", .modificationDate = 20},
    {.domain = roll, .path = "b1901", .modificationDate = 0x80000000, .filelength = 1},
    {.domain = "", .path = "stray", .filelength = 1},
    {.domain = "cameraRollDomain", .path = "otherCase", .filelength = 1}};

class BackupIndex : public testing::Test {
protected:
  BackupIndex() { m_tree.write("Manifest.mbdb", samples::manifestDatabase(manifest)); }

  TemporaryTree m_tree;
};

TEST_F(BackupIndex, ofGeneration5KeepsTheManifestsOrderAndDropsWhatIsEmpty) {
  iOS5BackupReader index(m_tree.root());
  const auto& records = index.records();
  EXPECT_THAT(pathsOf(records, roll), ElementsAre(photoPath, "early", "b1901"));
  EXPECT_THAT(pathsOf(records, "HomeDomain"), ElementsAre("a"));
  EXPECT_THAT(pathsOf(records, ""), ElementsAre("stray"));
  EXPECT_EQ(records.map().size(), 4u);

  const ManifestRecord& photo = records.entriesOf(roll)->front();
  EXPECT_EQ(photo.filename(), "343e26971dfe9c395c425c0ccf799df63ae6261e");
  EXPECT_EQ(photo.uniquePath(), m_tree.path(photoPath));
  EXPECT_EQ(records.entriesOf("")->front().filename(), samples::contentName("", "stray"));

  m_tree.write("Manifest.mbdb", samples::manifestDatabase({}));  // read once
  EXPECT_EQ(&index.records(), &records);
  EXPECT_EQ(records.map().size(), 4u);
}

TEST_F(BackupIndex, ofGeneration4KeepsEveryEntryByDate) {
  m_tree.write("Manifest.mbdx", "rubbish");  // loaded and ignored
  const MBDBXReader index(m_tree.root());
  EXPECT_THAT(pathsOf(index.records(), roll),
              ElementsAre("b1901", "early", "folder", "empty", photoPath));
  EXPECT_EQ(textOf(index.mbdx().value()), "rubbish");
  const MBDBXRow& folder = (*index.records().entriesOf(roll))[2];
  EXPECT_EQ(folder.type(), MBDBXRow::Folder);
  EXPECT_EQ(folder.domain(), roll);
  EXPECT_EQ(folder.uniquePath(), m_tree.path("folder"));
  EXPECT_EQ(folder.modificationDate(), instantFromUnixTime(20));
  EXPECT_EQ(folder.hash(), samples::contentName(roll, "folder"));
}

TEST_F(BackupIndex, aStoppedWalkAnswersNothing) {
  std::vector<ManifestEntry> many(3 * entriesBetweenStopTests, {.domain = "D", .filelength = 1});
  m_tree.write("Manifest.mbdb", samples::manifestDatabase(many));
  std::stop_source stop;
  stop.request_stop();
  iOS5BackupReader index(m_tree.root());
  EXPECT_THAT(index.records(stop.get_token()).map(), IsEmpty());
  EXPECT_THAT(MBDBXReader(m_tree.root(), stop.get_token()).records().map(), IsEmpty());
  EXPECT_EQ(index.records().entriesOf("D")->size(), many.size());
}

}  // namespace
}  // namespace snaplift
