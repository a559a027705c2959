#include <cerrno>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/ExportBatch.h"
#include "faults/FaultyFileSystem.h"
#include "foundation/Log.h"
#include "foundation/TemporaryFolder.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Photos : public ImageDataSource {
public:
  std::optional<Bytes> imageDataForPath(const std::string& path, Bytes) const override {
    return path.starts_with("lost") ? std::nullopt : std::optional(Bytes::copyOf(bytesOf(path)));
  }
};

class ExportBatchTest : public testing::Test {
protected:
  // Nothing but the batch's own calls is to be counted.
  static void SetUpTestSuite() { temporaryFolder(); }

  TemporaryTree m_tree;
  Photos m_photos;
  ImageItem m_photo{"a.jpg", m_photos};
  ImageItem m_lost{"lost.jpg", m_photos};
  std::vector<std::string> m_log;
  std::vector<ExportFailures> m_reports;
  ExportBatch::Report m_report{[this](const auto& failures) { m_reports.push_back(failures); }};
  LogCapture m_capture{[this](std::string line) { m_log.push_back(std::move(line)); }};
};

TEST_F(ExportBatchTest, flushesOnceAfterTheLastPhoto) {
  const FaultyFileSystem fileSystem({});
  ExportBatch batch(m_tree.root(), 3, m_report);
  batch.extract(m_photo);
  batch.extract(m_photo);
  EXPECT_EQ(fileSystem.flushes(), 0);
  batch.extract(m_lost);
  const int once = fileSystem.flushes();
  EXPECT_GT(once, 0);
  {
    ExportBatch stopped(m_tree.root(), 3, m_report);
    stopped.extract(m_photo);
    EXPECT_EQ(fileSystem.flushes(), once);
  }
  EXPECT_EQ(fileSystem.flushes(), 2 * once);
  ASSERT_EQ(m_reports.size(), 1U);
  EXPECT_EQ(m_reports[0].photoCount, 3U);
  EXPECT_EQ(m_reports[0].failedCount, 1U);
  EXPECT_EQ(m_reports[0].first[0].name, "lost.jpg");
}

TEST_F(ExportBatchTest, flushesNothingWhereNothingArrived) {
  const FaultyFileSystem fileSystem({});
  ExportBatch batch(m_tree.root(), 1, m_report);
  batch.extract(m_lost);
  EXPECT_EQ(fileSystem.flushes(), 0);
  EXPECT_THAT(m_log, ElementsAre(HasSubstr("lost.jpg")));
}

TEST_F(ExportBatchTest, saysWhenPhotosMayNotBeOnTheDisk) {
  int calls = 0;
  {
    const FaultyFileSystem fileSystem({});
    ExportBatch(m_tree.makeFolder("counted"), 1, m_report).extract(m_photo);
    calls = fileSystem.calls();
  }
  ASSERT_THAT(m_log, IsEmpty());
  // The last of the calls: with the close before it, the flush of the folder.
  const FaultyFileSystem fileSystem({.faultyCall = calls - 1, .errorNumber = EIO});
  ExportBatch(m_tree.makeFolder("out"), 1, m_report).extract(m_photo);
  EXPECT_THAT(m_log,
              ElementsAre("failed to bring the exported photos to the disk: " + m_tree.path("out") +
                          ": Input/output error (NSPOSIXErrorDomain 5)"));
  EXPECT_EQ(m_tree.read("out/a.jpg"), "a.jpg");
  ASSERT_EQ(m_reports.size(), 1U);
  EXPECT_EQ(m_reports[0].failedCount, 0U);
  EXPECT_EQ(m_reports[0].onFlush, FileError::ofSystem(EIO, m_tree.path("out")));
}

}  // namespace
}  // namespace snaplift
