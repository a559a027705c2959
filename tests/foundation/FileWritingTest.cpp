#include <atomic>
#include <cerrno>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "faults/FaultyFileSystem.h"
#include "foundation/FileWriting.h"
#include "foundation/Path.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string content = "the bytes of a photo";
constexpr std::size_t maximumWrite = 7;  // so that a photo takes several calls

bool isPart(const std::string& name) {
  return name.starts_with(".snaplift-") && name.ends_with(".part");
}

// The entries of the tree that are no parts.
std::vector<std::string> named(const TemporaryTree& tree) {
  std::vector<std::string> names = tree.list();
  std::erase_if(names, isPart);
  return names;
}

mode_t permissions(const std::string& path) {
  struct stat status;
  return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

// On a file system with links and on one without.
class FileWriting : public testing::TestWithParam<bool> {
protected:
  Faults faults(int faultyCall = 0, int errorNumber = 0) const {
    return {faultyCall, errorNumber, GetParam(), maximumWrite};
  }

  TemporaryTree m_tree;
};

INSTANTIATE_TEST_SUITE_P(, FileWriting, testing::Bool(),
                         [](const auto& with) { return with.param ? "fat" : "links"; });

TEST_P(FileWriting, replacesNothing) {
  m_tree.write("file.jpg", "old");
  m_tree.makeFolder("folder.jpg");
  ASSERT_EQ(::symlink("nowhere", m_tree.path("link.jpg").c_str()), 0);
  const std::string source = m_tree.write("source", content);
  const FaultyFileSystem fileSystem(faults());
  for (const char* name : {"file.jpg", "folder.jpg", "link.jpg"}) {
    const std::string path = m_tree.path(name);
    EXPECT_EQ(createFile(path, bytesOf(content)), FileError::fileExists(path));
    EXPECT_NE(linkFile(source, path), LinkResult::Linked);
  }
  EXPECT_EQ(m_tree.read("file.jpg"), "old");
  EXPECT_THAT(m_tree.list(), ElementsAre("file.jpg", "folder.jpg", "link.jpg", "source"));
}

TEST_P(FileWriting, givesOrdinaryPermissions) {
  const mode_t before = ::umask(0027);
  const FaultyFileSystem fileSystem(faults());
  EXPECT_FALSE(createFile(m_tree.path("created"), bytesOf(content)));
  EXPECT_FALSE(writeFile(m_tree.path("written"), bytesOf(content)));
  ::umask(before);
  EXPECT_EQ(permissions(m_tree.path("created")), 0640u);
  EXPECT_EQ(permissions(m_tree.path("written")), 0640u);
}

TEST_P(FileWriting, failsWholeWhicheverCallFails) {
  const std::string path = m_tree.path("photo.jpg");
  for (int call = 1;; ++call) {
    for (const int errorNumber : {EIO, ENOSPC}) {
      FaultyFileSystem fileSystem(faults(call, errorNumber));
      const auto error = createFile(path, bytesOf(content));
      if (fileSystem.calls() < call) {
        EXPECT_GT(call, 6);
        return;
      }
      if (error) {
        EXPECT_EQ(*error, FileError::ofSystem(errorNumber, path)) << call;
        EXPECT_THAT(m_tree.list(), IsEmpty()) << call;
      } else {
        EXPECT_EQ(m_tree.read("photo.jpg"), content) << call;
      }
      for (const std::string& name : m_tree.list()) {
        ::unlink(m_tree.path(name).c_str());
      }
    }
  }
}

// A process that is killed before its first, second, ... call leaves the whole file or none. Only
// where the file system offers nothing better can the claim be left, which is empty.
TEST_P(FileWriting, leavesNoPartOfAFileUnderItsName) {
  int emptyClaims = 0;
  for (int call = 1;; ++call) {
    const TemporaryTree tree;
    const pid_t child = ::fork();
    if (child == 0) {
      const FaultyFileSystem fileSystem(faults(call));
      ::_exit(createFile(tree.path("photo.jpg"), bytesOf(content)) ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    const std::vector<std::string> names = named(tree);
    if (WIFEXITED(status)) {
      EXPECT_EQ(WEXITSTATUS(status), 0);
      EXPECT_THAT(tree.list(), ElementsAre("photo.jpg"));
      EXPECT_EQ(tree.read("photo.jpg"), content);
      break;
    }
    ASSERT_EQ(WTERMSIG(status), SIGKILL);
    if (!names.empty()) {
      EXPECT_THAT(names, ElementsAre("photo.jpg"));
      const std::string found = tree.read("photo.jpg");
      emptyClaims += found.empty() ? 1 : 0;
      EXPECT_TRUE(found.empty() || found == content) << call << ": " << found;
    }
  }
  EXPECT_EQ(emptyClaims, GetParam() ? 2 : 0);
}

TEST_P(FileWriting, givesANameToOneOfManyThreads) {
  constexpr int rounds = 50;
  constexpr int threads = 4;
  for (int round = 0; round < rounds; ++round) {
    const std::string name = std::to_string(round) + ".jpg";
    std::atomic<int> written = 0;
    std::vector<std::jthread> workers;
    for (int i = 0; i < threads; ++i) {
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

TEST_P(FileWriting, writesNotThroughOtherNamesOfAFile) {
  const std::string path = m_tree.write("photo.jpg", "old");
  ASSERT_EQ(::link(path.c_str(), m_tree.path("exported.jpg").c_str()), 0);
  const FaultyFileSystem fileSystem(faults());
  EXPECT_FALSE(writeFile(path, bytesOf(content)));
  EXPECT_EQ(m_tree.read("photo.jpg"), content);
  EXPECT_EQ(m_tree.read("exported.jpg"), "old");
}

TEST_P(FileWriting, leavesNothingOfAFileThatCannotBeWritten) {
  const std::string path = m_tree.write("photo.jpg", "old");
  const FaultyFileSystem fileSystem(faults(4, ENOSPC));  // unlink, openat, write, write
  EXPECT_EQ(writeFile(path, bytesOf(content)), FileError::ofSystem(ENOSPC, path));
  EXPECT_THAT(m_tree.list(), IsEmpty());
}

TEST(LinkFile, leavesPermissionsToTheFolderThatSetsThem) {
  if (::geteuid() != 0) {
    GTEST_SKIP() << "needs a group that is not the process's own";
  }
  const TemporaryTree tree;
  const std::string source = tree.write("source", content);
  const std::string folder = tree.makeFolder("shared");
  constexpr gid_t otherGroup = 54321;
  ASSERT_EQ(::chown(folder.c_str(), 0, otherGroup), 0);
  ASSERT_EQ(::chmod(folder.c_str(), 02775), 0);
  const std::string path = joinPath(folder, "photo.jpg");
  EXPECT_EQ(linkFile(source, path), LinkResult::Impossible);
  EXPECT_FALSE(createFile(path, bytesOf(content)));
  struct stat status;
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_gid, otherGroup);
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
