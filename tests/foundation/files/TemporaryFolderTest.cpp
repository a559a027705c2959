#include <algorithm>
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

#include "foundation/files/Path.h"
#include "foundation/files/TemporaryFolder.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

void write(const std::string& path) {
  std::ofstream(path) << "x";
}

pid_t startProcess(const std::function<void()>& work) {
  const pid_t child = ::fork();
  if (child == 0) {
    work();
    ::_exit(0);
  }
  return child;
}

void expectGoodEnd(pid_t child) {
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

void inAnotherProcess(const std::function<void()>& work) {
  expectGoodEnd(startProcess(work));
}

class TemporaryFolderTest : public testing::Test {
protected:
  TemporaryTree m_tree;
  const std::vector<std::string> m_parents{m_tree.root()};
};

TEST_F(TemporaryFolderTest, isPrivateWhereAParentTakesItAndGoesWithItsOwnerOnly) {
  EXPECT_EQ(TemporaryFolder({m_tree.path("gone")}).path(), "");
  {
    TemporaryFolder folder(m_parents);
    const TemporaryFolder other({m_tree.path("gone"), m_tree.root()});
    EXPECT_NE(folder.path(), other.path());
    EXPECT_EQ(parentPath(other.path()), m_tree.root());
    inAnotherProcess([&] { folder.remove(); });
    struct stat status;
    ASSERT_EQ(::lstat(folder.path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFDIR | S_IRWXU);
    write(folder.path() + "/photo.jpg");
  }
  EXPECT_THAT(m_tree.list(), IsEmpty());
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
  const auto startOwner = [this](std::size_t entries) {
    const pid_t owner = startProcess([this] {
      const TemporaryFolder made(m_parents);
      write(made.path() + "/photo.jpg");
      for (;;) {
        ::pause();
      }
    });
    while (m_tree.list().size() < entries) {
      std::this_thread::yield();
    }
    return owner;
  };
  const auto kill = [](pid_t owner) {
    ::kill(owner, SIGKILL);
    EXPECT_EQ(::waitpid(owner, nullptr, 0), owner);
  };
  const pid_t living = startOwner(2);
  const std::string path = m_tree.list().front();
  kill(startOwner(4));
  inAnotherProcess([&] { const TemporaryFolder folder(m_parents); });
  EXPECT_THAT(m_tree.list(), ElementsAre(path, path + "/photo.jpg"));
  kill(living);
  inAnotherProcess([&] {
    ::setenv("TMPDIR", m_tree.root().c_str(), 1);
    removeAbandonedTemporaryFolders();
  });
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

TEST_F(TemporaryFolderTest, isNotTakenAwayByProcessesThatStartAtOnce) {
  std::vector<pid_t> children;
  for (int i = 0; i < 4; ++i) {
    children.push_back(startProcess([this] {
      for (int round = 0; round < 100; ++round) {
        const TemporaryFolder folder(m_parents);
        write(folder.path() + "/photo.jpg");
        if (::access((folder.path() + "/photo.jpg").c_str(), F_OK) != 0) {
          ::_exit(1);
        }
      }
    }));
  }
  std::ranges::for_each(children, expectGoodEnd);
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

TEST_F(TemporaryFolderTest, ofTheProcessIsNotWhereThereIsAVeto) {
  m_tree.makeFolder("forbidden");
  std::filesystem::create_symlink(m_tree.path("forbidden"), m_tree.path("link"));
  for (const char* chosen : {"forbidden", "link"}) {
    inAnotherProcess([&] {
      setTemporaryFolderVeto(
          [](const std::filesystem::path& folder) { return folder.filename() == "forbidden"; });
      ::setenv("TMPDIR", m_tree.path(chosen).c_str(), 1);
      const std::string folder = temporaryFolder();
      removeTemporaryFolder();
      ::_exit(parentPath(folder) == "/var/tmp" ? 0 : 1);
    });
  }
  EXPECT_THAT(m_tree.list("forbidden"), IsEmpty());
}

}  // namespace
}  // namespace snaplift
