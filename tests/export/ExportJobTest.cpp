#include <atomic>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <list>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "export/ExportJob.h"
#include "faults/FaultyFileSystem.h"
#include "faults/Volume.h"
#include "foundation/files/Path.h"
#include "support/PhotoSource.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::SizeIs;

class ExportJobTest : public testing::Test, public ExportObserver {
protected:
  void photoDidEnd(const ExportedPhoto& photo) override { m_ended.push_back(photo); }
  void exportDidEnd(const ExportSummary& summary) override { m_summary = summary; }

  std::vector<PhotoToExport> photos(const std::vector<std::string>& paths) {
    std::vector<PhotoToExport> list;
    for (const std::string& path : paths) {
      list.push_back({&m_items.emplace_back(path, m_photos)});
    }
    return list;
  }

  void run(const std::vector<PhotoToExport>& list, ExportOptions options = {.workers = 1}) {
    m_ended.clear();
    ExportJob job(list, m_out, options, *this);
    job.run();
    EXPECT_EQ(job.remaining(), 0U);
  }

  // What stands in the destination, by name.
  std::map<std::string, std::string> exported() const {
    std::map<std::string, std::string> contents;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(m_out)) {
      if (entry.is_regular_file()) {
        const std::string name = entry.path().lexically_relative(m_out).string();
        contents[name] = m_tree.read("out/" + name);
      }
    }
    return contents;
  }

  TemporaryTree m_tree;
  std::string m_out = m_tree.makeFolder("out");
  test::PhotoSource m_photos{m_tree.root()};
  std::list<ImageItem> m_items;
  std::vector<ExportedPhoto> m_ended;
  ExportSummary m_summary;
};

// Namesakes, a name that is another's numbered one, and failures between them: the names are those
// of the list's order, however many workers there are and whoever of them is slow.
TEST_F(ExportJobTest, namesDoNotDependOnTheNumberOfWorkers) {
  std::vector<std::string> paths;
  for (int i = 0; i < 60; ++i) {
    const std::string folder = std::to_string(i) + "/";
    paths.insert(paths.end(), {folder + "a.jpg", folder + (i % 7 == 0 ? "lost/a.jpg" : "b.jpg"),
                               folder + "A 1.JPG", folder + (i % 2 ? "a 2.jpg" : "a 1.jpg")});
  }
  paths.insert(paths.begin(), "lost/first/a.jpg");
  m_photos.onRead = [](const std::string& path) {
    std::this_thread::sleep_for(std::chrono::microseconds(std::hash<std::string>()(path) % 400));
  };
  run(photos(paths));
  const auto alone = exported();
  EXPECT_EQ(alone.at("a.jpg"), "0/a.jpg");
  EXPECT_GT(m_summary.failed, 5U);  // among them those that found 51 names taken
  const ExportSummary first = m_summary;
  for (const unsigned workers : {2U, 8U}) {
    fs::remove_all(m_out);
    fs::create_directory(m_out);
    run(photos(paths), {.workers = workers});
    EXPECT_EQ(exported(), alone);
    EXPECT_EQ(m_summary.failed, first.failed);
    EXPECT_EQ(m_summary.renamed, first.renamed);
    ASSERT_THAT(m_ended, SizeIs(paths.size()));
    for (std::size_t i = 0; i < paths.size(); ++i) {
      ASSERT_EQ(m_ended[i].photo->path(), paths[i]);  // told in the order of the list
    }
  }
}

TEST_F(ExportJobTest, tellsWhatCameOfEachPhoto) {
  m_tree.write("files/whole.jpg", std::string(3'000'000, 'x'));
  m_tree.write("out/taken.jpg", "old");
  m_tree.write("out/file", "old");
  std::vector<PhotoToExport> list = photos({"files/whole.jpg", "files/gone.jpg", "taken.jpg", "..",
                                            "..jpg", "below.jpg", "below.jpg", "none.jpg"});
  list[5].folder = list[6].folder = "2011/10";
  list[7].folder = "file/below";
  run(list);
  EXPECT_EQ(m_ended[0].bytes, 3'000'000U);
  EXPECT_EQ(m_ended[1].error, FileError::missing("files/gone.jpg"));
  EXPECT_EQ(m_ended[2].written, m_out + "/taken 1.jpg");
  EXPECT_TRUE(m_ended[2].isRenamed);
  EXPECT_EQ(m_ended[3].error, FileError::invalidFileName(".."));
  EXPECT_EQ(m_ended[4].written, m_out + "/_..jpg");  // never hidden
  EXPECT_TRUE(m_ended[4].isRenamed);
  EXPECT_EQ(m_ended[6].written, m_out + "/2011/10/below 1.jpg");
  EXPECT_TRUE(m_ended[7].error);
  EXPECT_EQ(m_summary.exported, 5U);
  EXPECT_EQ(m_summary.renamed, 3U);
  EXPECT_EQ(m_summary.failed, 3U);
  EXPECT_EQ(m_summary.notBegun, 0U);
  EXPECT_EQ(exported().at("whole.jpg"), std::string(3'000'000, 'x'));
  EXPECT_EQ(exported().at("taken.jpg"), "old");
}

TEST_F(ExportJobTest, leavesOutWhatIsThere) {
  m_tree.write("files/file.jpg", "file");
  m_tree.write("out/file 7.jpg", "file");
  m_tree.write("out/a.jpg", "1/a.jpX");  // as long, and another
  const std::vector<PhotoToExport> list =
      photos({"1/a.jpg", "files/file.jpg", "2/a.jpg", "1/a.jpg"});
  for (const unsigned workers : {1U, 4U}) {
    run(list, {.workers = workers, .skipsExisting = true});
    EXPECT_THAT(exported(),
                ElementsAre(std::pair("a 1.jpg", "1/a.jpg"), std::pair("a 2.jpg", "2/a.jpg"),
                            std::pair("a.jpg", "1/a.jpX"), std::pair("file 7.jpg", "file")));
    EXPECT_EQ(m_ended[1].written, m_out + "/file 7.jpg");
    EXPECT_EQ(m_ended[3].written, m_out + "/a 1.jpg");  // twice in one export
    EXPECT_EQ(m_summary.skipped, workers == 1 ? 2U : 4U);
    EXPECT_EQ(m_summary.exported, workers == 1 ? 2U : 0U);
  }
  // Of an export that leaves out nothing, what an attempt before it may have brought there.
  std::vector<PhotoToExport> again = photos({"1/a.jpg", "3/a.jpg", "2/a.jpg"});
  again[0].mayBeThere = again[1].mayBeThere = true;
  run(again);
  EXPECT_EQ(m_ended[0].written, m_out + "/a 1.jpg");
  EXPECT_TRUE(m_ended[0].isSkipped);
  EXPECT_EQ(m_ended[1].written, m_out + "/a 3.jpg");
  EXPECT_EQ(m_ended[2].written, m_out + "/a 4.jpg");
}

TEST_F(ExportJobTest, foretellsInADryRunWhatItLeavesOut) {
  m_tree.write("files/a.jpg", "2/a.jpg");
  const auto list = photos({"1/a.jpg", "2/a.jpg", "files/a.jpg", "1/a.jpg"});
  const auto written = [this] {
    std::vector<std::string> paths;
    for (const ExportedPhoto& photo : m_ended) {
      paths.push_back(photo.written);
    }
    return paths;
  };
  run(list, {.workers = 1, .skipsExisting = true, .isDryRun = true});
  EXPECT_EQ(m_summary.skipped, 2U);
  const auto foretold = written();
  run(list, {.workers = 1, .skipsExisting = true});
  EXPECT_EQ(written(), foretold);
}

// More of them than a process may hold open; one is a file, some lead into a backup.
TEST_F(ExportJobTest, makesAnyNumberOfFoldersAndNoneInABackup) {
  m_tree.write("backup/Info.plist", "");
  m_tree.write("backup/Manifest.mbdb", "");
  m_tree.makeFolder("elsewhere");
  m_tree.write("out/own/info.plist", "");
  m_tree.write("out/own/manifest.plist", "");
  m_tree.write("out/file", "old");
  fs::create_directory_symlink(m_tree.path("backup"), m_out + "/link");
  fs::create_directory_symlink(m_tree.path("elsewhere"), m_out + "/good");
  constexpr int folders = 1500;
  std::vector<PhotoToExport> list = photos(std::vector<std::string>(folders + 5, "a.jpg"));
  for (int i = 0; i < folders; ++i) {
    list[static_cast<std::size_t>(i)].folder = "all/" + std::to_string(i);
  }
  const char* special[] = {"own", "link", "link/new/deep", "file/below", "good"};
  for (std::size_t i = 0; i < std::size(special); ++i) {
    list[folders + i].folder = special[i];
  }
  run(list, {.workers = 4});
  EXPECT_EQ(m_summary.exported, folders + 1U);
  for (const char* name : {"own", "link"}) {
    EXPECT_THAT(m_ended, testing::Contains(testing::Field(
                             &ExportedPhoto::error, FileError::insideBackup(m_out + "/" + name))));
  }
  EXPECT_THAT(m_tree.list("backup"), SizeIs(2));
  EXPECT_THAT(m_tree.list("out/own"), SizeIs(2));
  EXPECT_THAT(m_tree.list("elsewhere"), ElementsAre("a.jpg"));
  EXPECT_EQ(m_tree.read("out/file"), "old");
}

// One call that fails concerns one photo; a destination that is full, or gone, concerns them all.
TEST_F(ExportJobTest, givesUpWhenTheDestinationIsLost) {
  const std::vector<PhotoToExport> list = photos(std::vector<std::string>(20, "a.jpg"));
  {
    const FaultyFileSystem fileSystem({.faultyCall = 9, .errorNumber = ENOSPC});
    run(list);
    EXPECT_EQ(m_summary.failed, 1U);
    EXPECT_EQ(m_summary.lost->code, ENOSPC);
    EXPECT_GT(m_summary.notBegun, 10U);
  }
  int read = 0;
  m_photos.onRead = [&](const std::string&) {
    if (++read == 5) {
      fs::remove_all(m_out);
    }
  };
  run(list);
  EXPECT_EQ(m_summary.failed, 1U);
  EXPECT_TRUE(m_summary.lost);
  EXPECT_EQ(m_summary.notBegun, 15U);
  EXPECT_FALSE(fs::exists(m_out));
}

// What stands in the place of a disk that was unmounted is another folder: nobody meant it.
TEST_F(ExportJobTest, givesUpWhenAnotherDiskIsInThePlaceOfTheDestination) {
  for (const unsigned workers : {1U, 4U}) {
    auto volume = Volume::inMemory(m_out, 1 << 20);
    if (!volume) {
      GTEST_SKIP() << "needs root to mount";
    }
    std::vector<PhotoToExport> list = photos(std::vector<std::string>(100, "a.jpg"));
    for (std::size_t i = 50; i < list.size(); ++i) {
      list[i].folder = std::to_string(i);
    }
    std::atomic<int> read = 0;
    m_photos.onRead = [&](const std::string&) {
      if (++read == 40) {
        volume.reset();
      }
    };
    run(list, {.workers = workers});
    EXPECT_EQ(m_summary.lost->code, ENODEV);
    EXPECT_LE(m_summary.failed, workers);
    EXPECT_GE(m_summary.exported, 35U);
    EXPECT_EQ(m_summary.exported + m_summary.failed + m_summary.notBegun, 100U);
    EXPECT_TRUE(m_summary.onFlush);
    EXPECT_TRUE(fs::is_empty(m_out));
  }
}

TEST_F(ExportJobTest, flushesOnceAfterTheLastPhoto) {
  const FaultyFileSystem fileSystem({});
  run(photos({"lost.jpg"}));
  EXPECT_EQ(fileSystem.flushes(), 0);
  run(photos({"a.jpg"}), {.workers = 1, .flushes = false});
  EXPECT_EQ(fileSystem.flushes(), 0);
  run(photos({"a.jpg", "b.jpg", "lost.jpg"}));
  EXPECT_EQ(fileSystem.flushes(), 2);  // the file system, and the folder
}

}  // namespace
}  // namespace snaplift
