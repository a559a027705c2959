#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "backups/ImageItem.h"
#include "export/ExportReportFile.h"
#include "foundation/files/OutputFolder.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;
using testing::SizeIs;

// FIPS 180-4's own example.
constexpr const char* digestOfAbc =
    "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

// Of October 12, 2011, noon.
class NoPhotos : public ImageDataSource {
public:
  std::optional<Bytes> imageDataForPath(const std::string&, Bytes) const override { return {}; }
  std::optional<PhotoInfo> photoInfo(std::size_t) const override {
    PhotoInfo info;
    info.modificationDate = instantFromUnixTime(1318420800);
    return info;
  }
};

class ExportReportFileTest : public testing::Test {
protected:
  // Of a photo that is written, one that was changed since, one that failed, one that was there,
  // one that is short, and one not begun.
  std::vector<ReportedPhoto> report() const {
    const std::vector<PhotoToExport> photos = std::vector<PhotoToExport>(6, {&m_odd});
    std::vector<ExportedPhoto> ended(5);
    ended[0].written = m_tree.write("a,\"b\r\n.jpg", "abc");
    ended[0].bytes = 3;
    ended[1].written = m_tree.write("changed.jpg", "abcd");
    ended[1].bytes = 3;
    ended[2].error = FileError::missing("x");
    m_tree.write("there\r.jpg", "abc");
    ended[3].written = fs::relative(m_tree.path("there\r.jpg")).string();
    ended[3].isSkipped = true;
    ended[4].written = m_tree.write("short.jpg", "ab");
    ended[4].bytes = 2;
    ended[4].isShort = true;
    return reportOf(photos, ended);
  }

  TemporaryTree m_tree;
  NoPhotos m_source;
  ImageItem m_odd{"b/\"odd\",\n\xff.jpg", m_source};
};

TEST_F(ExportReportFileTest, isReadAsItWasWritten) {
  const std::vector<ReportedPhoto> written = report();
  EXPECT_EQ(written[0].sha256, digestOfAbc);
  EXPECT_EQ(written[0].outcome, "exported");
  EXPECT_TRUE(written[1].outcome.starts_with("failed: ") && written[1].sha256.empty());
  EXPECT_EQ(written[2].outcome, "failed: the file is missing");
  EXPECT_EQ(written[3].outcome, "skipped");
  EXPECT_EQ(written[3].sha256, digestOfAbc);
  EXPECT_TRUE(written[3].written.starts_with('/'));
  EXPECT_EQ(written[4].outcome, "short");
  EXPECT_EQ(written[5].outcome, "not begun");
  EXPECT_TRUE(hasUnprovenFile(written));
  const std::string path = m_tree.path("report.csv");
  EXPECT_FALSE(writeReport(path, written, ReportPlace::MustBeFree));
  EXPECT_TRUE(m_tree.read("report.csv")
                  .starts_with("uniquePath,written,bytes,sha256,date,outcome\r\n"
                               "\"b/\"\"odd\"\",\n\xff.jpg\","));
  const ReportRead read = readReport(path);
  EXPECT_EQ(read.problem, std::nullopt);
  ASSERT_THAT(read.photos, SizeIs(6));
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(read.photos[i].uniquePath, m_odd.path());
    EXPECT_EQ(read.photos[i].written, written[i].written);
    EXPECT_EQ(read.photos[i].bytes, written[i].bytes);
    EXPECT_EQ(read.photos[i].sha256, written[i].sha256);
    EXPECT_EQ(read.photos[i].date, "2011-10-12T12:00:00Z");
    EXPECT_EQ(read.photos[i].outcome, written[i].outcome);
  }
  EXPECT_TRUE(writeReport(path, {}, ReportPlace::MustBeFree)->isFileExists());
  EXPECT_FALSE(writeReport(path, {}, ReportPlace::MayBeReplaced));
  EXPECT_THAT(readReport(path).photos, IsEmpty());
  EXPECT_THAT(m_tree.list(), SizeIs(5));  // no part is left
}

TEST_F(ExportReportFileTest, seesEveryChangeOfAFile) {
  const std::vector<ReportedPhoto> reported = report();
  const ReportedPhoto& photo = reported[0];
  EXPECT_EQ(compareWithReport(photo), ReportedFile::Same);
  for (const char* content : {"abd", "ab", "abcd"}) {
    m_tree.write("a,\"b\r\n.jpg", content);
    EXPECT_EQ(compareWithReport(photo), ReportedFile::Different) << content;
  }
  fs::remove(photo.written);
  EXPECT_EQ(compareWithReport(photo), ReportedFile::Gone);
  fs::create_directory(photo.written);
  EXPECT_EQ(compareWithReport(photo), ReportedFile::Unreadable);
  EXPECT_EQ(compareWithReport(reported[5]), ReportedFile::None);
}

TEST_F(ExportReportFileTest, saysWhereItIsDamaged) {
  const std::string heading = "uniquePath,written,bytes,sha256,date,outcome\n";
  const std::string good = "u,,0,,,not begun\n";
  for (const char* bad : {"u,,0,,\n", "u,,x,,,o\n", "u,,-1,,,o\n", "u,w,3,abc,,o\n", "\"u,,0,,,o\n",
                          "\"u\"x,,0,,,o\n", "\n", "u,,99999999999999999999,,,o\n"}) {
    const ReportRead read = readReport(m_tree.write("r", heading + good + bad + good));
    EXPECT_THAT(read.photos, SizeIs(1)) << bad;
    EXPECT_TRUE(read.problem) << bad;
  }
  for (const char* other : {"", "a,b\n", "\""}) {
    EXPECT_TRUE(readReport(m_tree.write("r", other)).problem) << other;
  }
  EXPECT_TRUE(readReport(m_tree.path("gone")).problem);
}

}  // namespace
}  // namespace snaplift
