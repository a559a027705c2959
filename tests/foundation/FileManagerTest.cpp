#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/FileManager.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

using testing::ElementsAre;

const std::string content = "the bytes of a photo";

// Keeps the questions and answers each with the same.
class Questioned : public FileManagerDelegate {
public:
  explicit Questioned(bool answer) : m_answer(answer) {}

  std::optional<bool> fileManagerShouldProceedAfterErrorCopyingItemAtURLToURL(
      FileManager&, FileError& error, const CopySource& source,
      const std::string& destination) override {
    m_questions.push_back(error.description() + " | " + source.url + " | " + destination);
    error.code = 12345;
    return m_answer;
  }

  std::vector<std::string> m_questions;

private:
  bool m_answer;
};

class FileManagerTest : public testing::Test {
protected:
  TemporaryTree m_tree;
  std::string m_file = m_tree.write("source", content);
  CopySource m_source{m_file, bytesOf(content)};
  FileManager m_manager;
};

TEST_F(FileManagerTest, copiesByALinkWhereItCan) {
  EXPECT_FALSE(m_manager.copyItemAtURLToURL(m_source, m_tree.path("copy")));
  EXPECT_TRUE(std::filesystem::equivalent(m_file, m_tree.path("copy")));
}

TEST_F(FileManagerTest, copiesTheBytesWhereThereIsNoFile) {
  for (const std::string& url : {std::string(), m_tree.path("gone")}) {
    const std::string copy = m_tree.path("copy of " + std::to_string(url.size()));
    EXPECT_FALSE(m_manager.copyItemAtURLToURL({url, bytesOf(content)}, copy));
    EXPECT_EQ(m_tree.read(copy.substr(m_tree.root().size())), content);
  }
}

TEST_F(FileManagerTest, reportsErrorsWithoutADelegate) {
  EXPECT_EQ(m_manager.copyItemAtURLToURL(m_source, m_file), FileError::fileExists(m_file));
  FileManagerDelegate silent;
  m_manager.setDelegate(&silent);
  const std::string path = m_tree.path("no folder/photo.jpg");
  EXPECT_EQ(m_manager.copyItemAtURLToURL(m_source, path), FileError::ofSystem(ENOENT, path));
}

TEST_F(FileManagerTest, asksItsDelegateAboutErrorsAlone) {
  m_tree.write("taken", "old");
  for (const bool answer : {false, true}) {
    Questioned delegate(answer);
    m_manager.setDelegate(&delegate);
    const auto error = m_manager.copyItemAtURLToURL(m_source, m_tree.path("taken"));
    EXPECT_EQ(error.has_value(), !answer);
    EXPECT_TRUE(!error || error->code == 12345);
    EXPECT_FALSE(m_manager.copyItemAtURLToURL(m_source, m_tree.path(answer ? "free 1" : "free 2")));
    EXPECT_THAT(delegate.m_questions,
                ElementsAre(FileError::fileExists(m_tree.path("taken")).description() + " | " +
                            m_file + " | " + m_tree.path("taken")));
  }
  EXPECT_EQ(m_tree.read("taken"), "old");
}

}  // namespace
}  // namespace snaplift
