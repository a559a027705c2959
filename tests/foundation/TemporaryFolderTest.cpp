#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "foundation/Path.h"
#include "foundation/TemporaryFolder.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

void write(const std::string& path) {
  std::ofstream(path) << "x";
}

// A child process that calls `work` and then waits to be ended.
class Child {
public:
  explicit Child(const std::function<void()>& work) {
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    m_process = ::fork();
    if (m_process == 0) {
      work();
      ::close(ends[1]);
      for (;;) {
        ::pause();
      }
    }
    ::close(ends[1]);
    char end;
    EXPECT_EQ(::read(ends[0], &end, 1), 0);  // returns when the work is done
    ::close(ends[0]);
  }

  void kill() const {
    ::kill(m_process, SIGKILL);
    EXPECT_EQ(::waitpid(m_process, nullptr, 0), m_process);
  }

private:
  pid_t m_process;
};

// Calls `work` in a child process, which has to end with status 0.
void inAnotherProcess(const std::function<void()>& work) {
  const pid_t child = ::fork();
  if (child == 0) {
    work();
    ::_exit(0);
  }
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

class TemporaryFolderTest : public testing::Test {
protected:
  TemporaryTree m_tree;
  const std::vector<std::string> m_parents{m_tree.root()};
};

TEST_F(TemporaryFolderTest, isPrivateAndGoesWithItsOwner) {
  {
    const TemporaryFolder folder(m_parents);
    const TemporaryFolder other(m_parents);
    EXPECT_NE(folder.path(), other.path());
    EXPECT_EQ(parentPath(folder.path()), m_tree.root());
    struct stat status;
    ASSERT_EQ(::lstat(folder.path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFDIR | S_IRWXU);
    write(folder.path() + "/photo.jpg");
  }
  EXPECT_THAT(m_tree.list(), IsEmpty());
}

TEST_F(TemporaryFolderTest, standsWhereAParentTakesIt) {
  const TemporaryFolder none({m_tree.path("gone")});
  EXPECT_EQ(none.path(), "");
  const TemporaryFolder second({m_tree.path("gone"), m_tree.root()});
  EXPECT_EQ(parentPath(second.path()), m_tree.root());
}

TEST_F(TemporaryFolderTest, isRemovedWithoutLeavingIt) {
  m_tree.write("outside/photo.jpg", "kept");
  {
    const TemporaryFolder folder(m_parents);
    std::filesystem::create_directories(folder.path() + "/a/b");
    write(folder.path() + "/a/b/photo.jpg");
    std::filesystem::create_symlink(m_tree.path("outside"), folder.path() + "/a/link");
    std::filesystem::create_symlink(m_tree.path("outside/photo.jpg"), folder.path() + "/link.jpg");
  }
  EXPECT_THAT(m_tree.list(), ElementsAre("outside", "outside/photo.jpg"));
}

TEST_F(TemporaryFolderTest, isRemovedWhileOthersWriteIntoIt) {
  TemporaryFolder folder(m_parents);
  std::jthread writer([&](const std::stop_token& stop) {
    for (int i = 0; !stop.stop_requested(); ++i) {
      write(folder.path() + "/" + std::to_string(i % 100));
    }
  });
  while (m_tree.list().size() < 10) {
    std::this_thread::yield();
  }
  folder.remove();
  EXPECT_THAT(m_tree.list(), IsEmpty());
}

TEST_F(TemporaryFolderTest, ofAKilledProcessIsRemovedAtTheNextStart) {
  const auto makeAndFill = [&] {
    static const TemporaryFolder& made = *new TemporaryFolder(m_parents);
    write(made.path() + "/photo.jpg");
  };
  const Child living(makeAndFill);
  EXPECT_THAT(m_tree.list(), SizeIs(2));
  const std::string path = m_tree.list().front();
  const Child dying(makeAndFill);
  EXPECT_THAT(m_tree.list(), SizeIs(4));
  dying.kill();
  inAnotherProcess([&] { const TemporaryFolder folder(m_parents); });
  EXPECT_THAT(m_tree.list(), ElementsAre(path, path + "/photo.jpg"));
  living.kill();
  inAnotherProcess([&] { const TemporaryFolder folder(m_parents); });
  EXPECT_THAT(m_tree.list(), IsEmpty());
}

TEST_F(TemporaryFolderTest, leavesAloneWhatIsNotItsOwn) {
  const std::string digits = "0123456789abcdef";
  m_tree.write("snaplift-photos/photo.jpg", "kept");
  m_tree.write("snaplift-" + digits + "0/photo.jpg", "kept");
  m_tree.write("snaplift-0123456789ABCDEF/photo.jpg", "kept");
  m_tree.write("snaplift-" + digits, "a file");
  std::filesystem::create_directory_symlink(m_tree.path("snaplift-photos"),
                                            m_tree.path("snaplift-a" + digits.substr(1)));
  if (::geteuid() == 0) {
    m_tree.write("snaplift-b" + digits.substr(1) + "/photo.jpg", "kept");
    ASSERT_EQ(::chown(m_tree.path("snaplift-b" + digits.substr(1)).c_str(), 54321, 54321), 0);
  }
  const std::vector<std::string> before = m_tree.list();
  { const TemporaryFolder folder(m_parents); }
  EXPECT_EQ(m_tree.list(), before);
}

TEST_F(TemporaryFolderTest, outlivesAChildOfItsProcess) {
  TemporaryFolder folder(m_parents);
  inAnotherProcess([&] { folder.remove(); });
  EXPECT_THAT(m_tree.list(), SizeIs(1));
}

TEST_F(TemporaryFolderTest, isNotTakenAwayByProcessesThatStartAtOnce) {
  std::vector<pid_t> children;
  for (int i = 0; i < 4; ++i) {
    children.push_back(::fork());
    if (children.back() == 0) {
      bool standing = true;
      for (int round = 0; round < 100; ++round) {
        const TemporaryFolder folder(m_parents);
        write(folder.path() + "/photo.jpg");
        standing = standing && ::access((folder.path() + "/photo.jpg").c_str(), F_OK) == 0;
      }
      ::_exit(standing ? 0 : 1);
    }
  }
  for (const pid_t child : children) {
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
  }
  EXPECT_THAT(m_tree.list(), IsEmpty());
}

// Of a process: in a child, since this one may have its folder already.
TEST_F(TemporaryFolderTest, ofTheProcessGoesAtEveryEndButAKill) {
  const auto makeAndFill = [&] {
    ::setenv("TMPDIR", m_tree.root().c_str(), 1);
    write(temporaryFolder() + "/photo.jpg");
    if (parentPath(temporaryFolder()) != m_tree.root() || m_tree.list().size() != 2) {
      ::_exit(1);
    }
  };
  EXPECT_EXIT(
      {
        makeAndFill();
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
  EXPECT_THAT(m_tree.list(), IsEmpty());
  inAnotherProcess([&] {
    removeTemporaryFolder();  // before there is one
    makeAndFill();
    removeTemporaryFolder();
    removeTemporaryFolder();
  });
  EXPECT_THAT(m_tree.list(), IsEmpty());
}

TEST_F(TemporaryFolderTest, ofTheProcessIsNeverInABackup) {
  m_tree.write("backup/Info.plist", "");
  m_tree.write("backup/Manifest.mbdb", "");
  m_tree.makeFolder("backup/inside");
  std::filesystem::create_symlink(m_tree.path("backup/inside"), m_tree.path("link"));
  const auto before = m_tree.list();
  for (const char* chosen : {"backup", "backup/inside", "link"}) {
    inAnotherProcess([&] {
      ::setenv("TMPDIR", m_tree.path(chosen).c_str(), 1);
      const std::string folder = temporaryFolder();
      const bool isElsewhere = parentPath(folder) == "/var/tmp" && m_tree.list() == before;
      removeTemporaryFolder();
      ::_exit(isElsewhere ? 0 : 1);
    });
  }
}

}  // namespace
}  // namespace snaplift
