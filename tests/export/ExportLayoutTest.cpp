#include <optional>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "export/ExportLayout.h"

namespace snaplift {
namespace {

// Photos whose path on the device is their own, without dates.
class Paths : public ImageDataSource {
public:
  std::optional<Bytes> imageDataForPath(const std::string&, Bytes) const override { return {}; }
};

class ExportLayoutTest : public testing::Test {
protected:
  std::string dcim(const std::string& path) {
    return m_dcim.folderFor(ImageItem(path, m_paths), "Phone");
  }

  Paths m_paths;
  LayoutFolders m_dcim{ExportLayout::Dcim};
};

TEST_F(ExportLayoutTest, tellsDevicesApartThatWouldBeOneFolder) {
  LayoutFolders folders(ExportLayout::Device);
  const ImageItem photo("Media/DCIM/100APPLE/IMG_0001.JPG", m_paths);
  const std::pair<const char*, const char*> cases[] = {
      {"a/b", "a_b"},   {"a:b", "a_b 2"}, {"A_B 2", "A_B 2 2"}, {"Zoë", "Zoë"},
      {"ZOË", "ZOË 2"}, {"..", "_"},      {"/", "_ 2"},         {"a/b", "a_b"},
      {"c 2", "c 2"},   {"c", "c"},       {"C", "C 3"}};
  for (const auto& [handset, folder] : cases) {
    EXPECT_EQ(folders.folderFor(photo, handset), folder);
  }
  EXPECT_EQ(LayoutFolders(ExportLayout::Flat).folderFor(photo, "Phone"), "");
  EXPECT_EQ(LayoutFolders(ExportLayout::Month).folderFor(photo, "Phone"), "undated");
}

TEST_F(ExportLayoutTest, keepsTheFoldersOfTheDeviceBelowTheDestination) {
  EXPECT_EQ(dcim("Media/DCIM/100APPLE/a.jpg"), "DCIM/100APPLE");
  EXPECT_EQ(dcim("Media/DCIM/100apple/b.jpg"), "DCIM/100apple 2");
  EXPECT_EQ(dcim("Media/DCIM/100APPLE/c.jpg"), "DCIM/100APPLE");
  EXPECT_EQ(dcim("Media/a.jpg"), "");
  EXPECT_EQ(dcim("../../etc/a.jpg"), "_/_/etc");
  EXPECT_EQ(dcim("//b///x"), "b");
  std::string deep;
  for (int i = 0; i < 1000; ++i) {
    deep += "folder/";
  }
  EXPECT_LT(dcim(deep + "x").size(), 100U);
}

}  // namespace
}  // namespace snaplift
