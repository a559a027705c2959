#include <filesystem>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/File.h"
#include "samples/BackupWriter.h"
#include "support/TemporaryTree.h"

namespace snaplift::samples {
namespace {

using testing::UnorderedElementsAre;

const Instant backupDate = instantFromUnixTime(1318408200);

SampleBackup backupOf(Generation generation) {
  SampleBackup backup;
  backup.generation = generation;
  backup.deviceName = "Anna's Phone";
  backup.productVersion = "5.0.1";
  backup.date = backupDate;
  const std::string domain(photoDomain(generation));
  backup.files = {{domain, "Media/DCIM", {}, 1300000000, folderMode},
                  {domain, "Media/DCIM/IMG_0001.JPG", "photo", 1300000001},
                  {domain, "Media/DCIM/IMG_0002.JPG", "", 1300000002},
                  {domain, "Media/link", {}, 1300000003, linkMode, "DCIM"}};
  return backup;
}

TEST(BackupWriter, laysOutEachGeneration) {
  struct Case {
    Generation generation;
    std::vector<std::string> manifests, extensionsOfPhoto, extensionsOfEmpty;
  };
  for (const Case& c :
       {Case{Generation::TwoSingleForm, {}, {".mdbackup"}, {".mdbackup"}},
        Case{Generation::TwoPairForm, {}, {".mdinfo", ".mddata"}, {".mdinfo", ".mddata"}},
        Case{Generation::Three, {}, {".mdinfo", ".mddata"}, {".mdinfo", ".mddata"}},
        Case{Generation::Four, {"Manifest.mbdb", "Manifest.mbdx"}, {""}, {}},
        Case{Generation::Five, {"Manifest.mbdb"}, {""}, {}}}) {
    const TemporaryTree tree;
    writeBackup(tree.path("b"), backupOf(c.generation));
    std::vector<std::string> expected = c.manifests;
    expected.insert(expected.end(), {"Info.plist", "Manifest.plist"});
    const std::string_view domain = photoDomain(c.generation);
    for (const std::string& extension : c.extensionsOfPhoto) {
      expected.push_back(contentName(domain, "Media/DCIM/IMG_0001.JPG") + extension);
    }
    for (const std::string& extension : c.extensionsOfEmpty) {
      expected.push_back(contentName(domain, "Media/DCIM/IMG_0002.JPG") + extension);
    }
    EXPECT_THAT(tree.list("b"), testing::UnorderedElementsAreArray(expected));
    EXPECT_EQ(fileAttributes(tree.path("b/Info.plist"))->modificationDate, backupDate);
  }
}

TEST(BackupWriter, keepsTheDatesOfGenerationTwoInTheFileSystem) {
  const std::string photo = contentName("HomeDomain", "Media/DCIM/IMG_0001.JPG");
  const TemporaryTree tree;
  writeBackup(tree.path("single"), backupOf(Generation::TwoSingleForm));
  writeBackup(tree.path("pair"), backupOf(Generation::TwoPairForm));
  for (const std::string& name : {"single/" + photo + ".mdbackup", "pair/" + photo + ".mddata"}) {
    EXPECT_EQ(fileAttributes(tree.path(name))->modificationDate, instantFromUnixTime(1300000001));
  }
  EXPECT_EQ(tree.read("pair/" + photo + ".mddata"), "photo");
}

TEST(BackupWriter, nestsPropertyListsWhereTheGenerationDoes) {
  const TemporaryTree tree;
  for (const PropertyListEncoding encoding :
       {PropertyListEncoding::Xml, PropertyListEncoding::Binary}) {
    SampleBackup backup = backupOf(Generation::Three);
    backup.encoding = encoding;
    writeBackup(tree.path("b"), backup);
    const PlistValue path =
        PlistValue::dictionary({{"Domain", "MediaDomain"}, {"Path", "Media/DCIM/IMG_0001.JPG"}});
    EXPECT_EQ(tree.read("b/" + contentName("MediaDomain", "Media/DCIM/IMG_0001.JPG") + ".mdinfo"),
              propertyList(PlistValue::dictionary(
                               {{"Metadata", PlistValue::data(propertyList(path, encoding))}}),
                           encoding));
  }
}

TEST(BackupWriter, leavesOutWhatIsAskedFor) {
  const TemporaryTree tree;
  SampleBackup backup = backupOf(Generation::Five);
  backup.deviceName.reset();
  backup.productVersion.reset();
  backup.lowerCaseNames = true;
  backup.files[1].contentMissing = true;
  writeBackup(tree.path("b"), backup);
  EXPECT_THAT(tree.list("b"),
              UnorderedElementsAre("info.plist", "manifest.plist", "Manifest.mbdb"));
  const std::string info = tree.read("b/info.plist");
  EXPECT_EQ(info.find("Device Name"), std::string::npos);
  EXPECT_EQ(info.find("Product Version"), std::string::npos);
  EXPECT_EQ(manifestEntries(backup.files)[1].filelength, 5U);
}

TEST(BackupWriter, complainsWhereItCannotWrite) {
  const TemporaryTree tree;
  tree.write("file", "");
  EXPECT_THROW(writeFile(tree.path("file/below"), "x"), std::runtime_error);
  EXPECT_THROW(writeFile("/dev/full", std::string(1 << 20, 'x')), std::runtime_error);
  EXPECT_THROW(setModificationDate(tree.path("absent"), backupDate), std::runtime_error);
}

}  // namespace
}  // namespace snaplift::samples
