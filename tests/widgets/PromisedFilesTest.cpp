#include <gtest/gtest.h>

#include "support/TemporaryTree.h"
#include "widgets/promises/PromisedFiles.h"
#include "widgets/promises/PromisedFilesMimeData.h"

namespace snaplift {
namespace {

using Names = std::vector<std::string>;

TEST(PromisedFiles, directSaveNamesALocalFolderThatCanBeWrittenTo) {
  const TemporaryTree tree;
  const std::string odd = tree.makeFolder("a b\xff%");
  const std::string& root = tree.root();
  struct Case {
    std::string url;
    std::optional<std::string> folder;
  };
  for (const Case& c : {
           Case{"file://" + root + "/IMG_0001.JPG", root},
           Case{"file://" + root + "/IMG_0001.JPG" + std::string("\0rest", 5), root},
           Case{"file://localhost" + root + "/x", root},
           Case{"file://thishost" + root + "/x", root},
           Case{"file://otherhost" + root + "/x", std::nullopt},
           Case{"file://" + root + "/a%20b%fF%25/x", odd},
           Case{"file://" + root + "/missing/x", std::nullopt},
           Case{"file:///%00/x", std::nullopt},
           Case{"file://host", std::nullopt},
           Case{"sftp://thishost" + root + "/x", std::nullopt},
           Case{"IMG_0001.JPG", std::nullopt},
           Case{"", std::nullopt},
       }) {
    EXPECT_EQ(folderOfDirectSave(c.url, "thishost"), c.folder) << c.url;
  }
}

// Its list says how often it was written.
class Source final : public PromisedFilesSource, public PromisedFileList {
public:
  Names namesOfPromisedFilesDroppedAtDestination(const std::string& folder) override {
    drops.push_back(folder);
    return {};
  }
  std::string firstPromisedName() const override { return name; }
  std::shared_ptr<PromisedFileList> promisedFiles() override {
    return {std::shared_ptr<void>(), this};
  }
  const Names& paths() override { return m_paths; }
  void write() override { m_paths = {"/t/written " + std::to_string(++writes)}; }

  Names drops;
  std::string name = "a.jpg";
  int writes = 0;

private:
  Names m_paths = {"/t/a b.jpg", "/t/gone.jpg"};
};

class FakeChannel final : public DirectSaveChannel {
public:
  explicit FakeChannel(std::string& property, bool savesDirectly = true)
      : m_property(property), m_savesDirectly(savesDirectly) {}
  bool lookAtTarget() override { return m_savesDirectly; }
  void offer(const std::string& name) override { m_property = name; }
  std::string answer() override { return m_property; }
  void withdraw() override { m_property = "withdrawn"; }

private:
  std::string& m_property;
  bool m_savesDirectly;
};

TEST(PromisedFilesMimeData, directSaveExportsOnceIntoTheFolderOfTheDrop) {
  const TemporaryTree tree;
  Source source;
  QObject owner;
  std::string property;
  PromisedFilesMimeData data(source, owner, std::make_unique<FakeChannel>(property));
  data.dragDidBegin();
  data.pointerDidMove();
  EXPECT_EQ(property, "a.jpg");
  EXPECT_EQ(data.data("XdndDirectSave0"), "E") << "asked before the target has said where";
  property = "sftp://elsewhere/folder/a.jpg";
  EXPECT_EQ(data.data("XdndDirectSave0"), "E");
  EXPECT_TRUE(source.drops.empty());

  property = "file://" + tree.root() + "/a.jpg";
  data.willDrop();
  EXPECT_EQ(data.data("XdndDirectSave0"), "S");
  EXPECT_EQ(property, "withdrawn");
  EXPECT_EQ(data.data("XdndDirectSave0"), "S");
  EXPECT_EQ(source.drops, Names({tree.root()}));
  EXPECT_EQ(source.writes, 0);
}

// Where there is no direct save, and over a target that does not know it.
TEST(PromisedFilesMimeData, theListIsWrittenAtTheRelease) {
  std::string property;
  for (const bool hasChannel : {false, true}) {
    Source source;
    source.name = "../evil";
    QObject owner;
    PromisedFilesMimeData data(
        source, owner, hasChannel ? std::make_unique<FakeChannel>(property, false) : nullptr);
    data.dragDidBegin();
    data.pointerDidMove();
    EXPECT_EQ(property, hasChannel ? "photo" : "");
    EXPECT_TRUE(data.hasUrls());
    EXPECT_EQ(data.data("text/uri-list"), "file:///t/a%20b.jpg\r\nfile:///t/gone.jpg\r\n");
    EXPECT_EQ(source.writes, 0);
    data.willDrop();
    EXPECT_EQ(source.writes, 1);
    EXPECT_EQ(data.data("text/uri-list"), "file:///t/written%202\r\n");
  }
}

TEST(PromisedFilesMimeData, outlivesWhoPromised) {
  const TemporaryTree tree;
  std::string property;
  auto owner = std::make_unique<QObject>();
  auto source = std::make_unique<Source>();
  PromisedFilesMimeData data(*source, *owner, std::make_unique<FakeChannel>(property));
  owner.reset();
  source.reset();
  property = "file://" + tree.root() + "/a.jpg";
  EXPECT_EQ(data.data("XdndDirectSave0"), "E");
}

}  // namespace
}  // namespace snaplift
