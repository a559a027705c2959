#include <atomic>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "faults/FaultyFileSystem.h"
#include "foundation/files/InputFile.h"
#include "foundation/files/NewFile.h"
#include "foundation/files/OutputFolder.h"
#include "foundation/files/Path.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string content = "the bytes of a photo";
constexpr std::size_t maximumWrite = 7;  // so that a photo takes several calls

mode_t permissions(const std::string& path) {
  struct stat status;
  return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

// On every kind of file system, from bytes and from a file.
class NewFileTest : public testing::TestWithParam<std::tuple<FileSystemKind, bool>> {
protected:
  static FileSystemKind kind() { return std::get<0>(GetParam()); }
  static Faults faults(int faultyCall = 0, int errorNumber = 0) {
    return {faultyCall, errorNumber, kind(), maximumWrite};
  }
  // Makes `path` from bytes, or as a copy of a file.
  std::optional<FileError> make(const std::string& path) const {
    if (!std::get<1>(GetParam())) {
      return createFile(path, bytesOf(content));
    }
    const OutputFolder folder{std::string(parentPath(path))};
    NewFile file(folder, std::string(lastPathComponent(path)));
    InputFile input(m_source);
    auto error = file.error() ? file.error() : file.copy(input);
    error = error ? error : file.seal();
    return error ? error : file.publish(file.name());
  }

  TemporaryTree m_sources;
  std::string m_source = m_sources.write("source", content);
  TemporaryTree m_tree;
};

INSTANTIATE_TEST_SUITE_P(
    , NewFileTest,
    testing::Combine(testing::Values(FileSystemKind::Whole, FileSystemKind::WithoutNameless,
                                     FileSystemKind::WithoutRename, FileSystemKind::WithoutLinks),
                     testing::Bool()));

TEST_P(NewFileTest, replacesNothing) {
  m_tree.write("file.jpg", "old");
  m_tree.makeFolder("folder.jpg");
  ASSERT_EQ(::symlink("nowhere", m_tree.path("link.jpg").c_str()), 0);
  const FaultyFileSystem fileSystem(faults());
  for (const char* name : {"file.jpg", "folder.jpg", "link.jpg"}) {
    EXPECT_EQ(make(m_tree.path(name)), FileError::fileExists(m_tree.path(name)));
  }
  EXPECT_EQ(m_tree.read("file.jpg"), "old");
  EXPECT_THAT(m_tree.list(), ElementsAre("file.jpg", "folder.jpg", "link.jpg"));
}

TEST_P(NewFileTest, triesNamesAndWritesOnceWithOrdinaryPermissions) {
  m_tree.write("a", "old");
  const FaultyFileSystem fileSystem(faults());
  const mode_t before = ::umask(0027);
  const OutputFolder folder(m_tree.root());
  NewFile file(folder, "a");
  ASSERT_FALSE(file.write(bytesOf(content)));
  EXPECT_FALSE(file.seal(instantFromUnixTime(1000000000)));
  EXPECT_TRUE(file.publish("a")->isFileExists());
  EXPECT_FALSE(file.publish("b"));
  EXPECT_FALSE(make(m_tree.path("c")));
  ::umask(before);
  EXPECT_EQ(permissions(m_tree.path("b")), 0640U);
  EXPECT_EQ(permissions(m_tree.path("c")), 0640U);
  EXPECT_EQ(m_tree.read("b"), content);
  EXPECT_EQ(InputFile(m_tree.path("b")).modificationDate(), instantFromUnixTime(1000000000));
}

TEST_P(NewFileTest, hasTheGroupOfAFolderThatPassesItsOwnOn) {
  constexpr gid_t group = 54321;
  const std::string shared = m_tree.makeFolder("shared");
  if (::chown(shared.c_str(), ::geteuid(), group) != 0 || ::chmod(shared.c_str(), 02775) != 0) {
    GTEST_SKIP() << "needs a group that is not the process's own";
  }
  const FaultyFileSystem fileSystem(faults());
  EXPECT_FALSE(make(shared + "/photo.jpg"));
  struct stat status;
  ASSERT_EQ(::stat((shared + "/photo.jpg").c_str(), &status), 0);
  EXPECT_EQ(status.st_gid, group);
}

// A file without a name that cannot be linked becomes a part.
TEST_P(NewFileTest, failsWholeWhicheverCallFailsAndArrivesWhereThereIsAnotherWay) {
  const std::string path = m_tree.path("photo.jpg");
  int arrived = 0;
  for (int call = 1;; ++call) {
    for (const int errorNumber : {EIO, ENOSPC}) {
      FaultyFileSystem fileSystem(faults(call, errorNumber));
      const auto error = make(path);
      if (fileSystem.calls() < call) {
        EXPECT_GT(call, 6);
        EXPECT_GT(arrived, kind() == FileSystemKind::Whole ? 4 : 0);
        return;
      }
      if (error) {
        EXPECT_THAT(m_tree.list(), IsEmpty()) << call;
      } else {
        EXPECT_EQ(m_tree.read("photo.jpg"), content) << call;
        ++arrived;
      }
      for (const std::string& name : m_tree.list()) {
        ::unlink(m_tree.path(name).c_str());
      }
    }
  }
}

// A process that is killed before its first, second, ... call leaves the whole file or none, and
// nothing else where the file system knows files without a name. Only where it offers nothing
// better can the claim be left, which is empty.
TEST_P(NewFileTest, leavesNoPartOfAFileUnderItsName) {
  int emptyClaims = 0;
  for (int call = 1;; ++call) {
    const TemporaryTree tree;
    const pid_t child = ::fork();
    if (child == 0) {
      const FaultyFileSystem fileSystem(faults(call));
      ::_exit(make(tree.path("photo.jpg")) ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    if (WIFEXITED(status)) {
      EXPECT_EQ(WEXITSTATUS(status), 0);
      EXPECT_THAT(tree.list(), ElementsAre("photo.jpg"));
      EXPECT_EQ(tree.read("photo.jpg"), content);
      break;
    }
    ASSERT_EQ(WTERMSIG(status), SIGKILL);
    for (const std::string& name : tree.list()) {
      if (isPartName(name)) {
        EXPECT_NE(kind(), FileSystemKind::Whole);
        continue;
      }
      EXPECT_EQ(name, "photo.jpg");
      const std::string found = tree.read(name);
      emptyClaims += found.empty() ? 1 : 0;
      EXPECT_TRUE(found.empty() || found == content) << call << ": " << found;
    }
    OutputFolder(tree.root()).removeAbandonedParts();
    EXPECT_THAT(tree.list(), testing::Each("photo.jpg"));
  }
  EXPECT_EQ(emptyClaims, kind() == FileSystemKind::WithoutLinks ? 2 : 0);
}

TEST_P(NewFileTest, givesANameToOneOfManyThreads) {
  constexpr int rounds = 50;
  for (int round = 0; round < rounds; ++round) {
    const std::string name = std::to_string(round) + ".jpg";
    std::atomic<int> written = 0;
    std::vector<std::jthread> workers;
    for (int i = 0; i < 4; ++i) {
      workers.emplace_back([&, i] {
        const FaultyFileSystem fileSystem(faults());
        const std::string bytes(1000, static_cast<char>('a' + i));
        const auto error = createFile(m_tree.path(name), bytesOf(bytes));
        EXPECT_TRUE(!error || error->isFileExists());
        written += error ? 0 : 1;
      });
    }
    workers.clear();
    EXPECT_EQ(written, 1);
    const std::string found = m_tree.read(name);
    EXPECT_EQ(found, std::string(1000, found.front()));
  }
  EXPECT_EQ(m_tree.list().size(), rounds);
}

// A source that is no longer the one that was opened.
TEST(NewFileCopy, failsWhereTheSourceIsNotWhole) {
  const TemporaryTree tree;
  tree.makeFolder("out");
  for (const int size : {10, 3000}) {
    const std::string path = tree.write("source", std::string(1000, 'x'));
    InputFile source(path);
    std::filesystem::resize_file(path, static_cast<std::uintmax_t>(size));
    const OutputFolder folder(tree.path("out"));
    NewFile file(folder, "a");
    EXPECT_EQ(file.copy(source), FileError::unreadable(path)) << size;
  }
  EXPECT_THAT(tree.list("out"), IsEmpty());
}

TEST(OutputFolder, removesPartsThatNobodyHolds) {
  const TemporaryTree tree;
  const std::string held = tree.write(newPartName(), "in work");
  const FileDescriptor lock(::open(held.c_str(), O_RDONLY));
  ASSERT_EQ(::flock(lock.get(), LOCK_EX), 0);
  tree.write(newPartName(), "left");
  tree.makeFolder(newPartName());
  tree.write(".snaplift-mine.part", "somebody's");
  OutputFolder(tree.root()).removeAbandonedParts();
  EXPECT_EQ(tree.list().size(), 3U);
  EXPECT_EQ(tree.read(held.substr(tree.root().size())), "in work");
}

TEST(FlushFileSystem, saysWhatTheDiskSays) {
  const TemporaryTree tree;
  const std::string folder = tree.makeFolder("out");
  struct Case {
    int faultyCall, errorNumber, reported;
  };
  // The open call, the flush of the file system, that of the folder.
  for (const Case& c : {Case{0, 0, 0}, Case{1, EMFILE, EMFILE}, Case{2, EIO, EIO},
                        Case{2, EINTR, 0}, Case{3, ENOSPC, ENOSPC}, Case{3, EINVAL, 0}}) {
    const FaultyFileSystem fileSystem({.faultyCall = c.faultyCall, .errorNumber = c.errorNumber});
    const auto error = flushFileSystem(folder);
    EXPECT_EQ(error ? error->code : 0, c.reported) << c.faultyCall << " " << c.errorNumber;
  }
  const std::string gone = tree.path("gone");
  EXPECT_EQ(flushFileSystem(gone), FileError::ofSystem(ENOENT, gone));
}

}  // namespace
}  // namespace snaplift
