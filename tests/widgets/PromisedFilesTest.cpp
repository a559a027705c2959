#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QUrl>
#include <atomic>

#include <gtest/gtest.h>

#include "support/TemporaryTree.h"
#include "widgets/promises/PromisedFiles.h"
#include "widgets/promises/PromisedFilesMimeData.h"

namespace snaplift {
namespace {

using Names = std::vector<std::string>;

PromisedFile file(const std::string& name, const std::string& content = {}) {
  return {name, [content] { return std::optional(Bytes::copyOf(bytesOf(content))); }};
}

TEST(PromisedFiles, namesOfOneFolderAreDistinctAndStayInIt) {
  EXPECT_EQ(distinctNames({file("IMG_0001.JPG"), file("img_0001.jpg"), file("IMG_0001.JPG"),
                           file("IMG_0001 1.JPG"), file("../evil"), file(""), file("a/b"),
                           file("x"), file("x")}),
            (Names{"IMG_0001.JPG", "img_0001 1.jpg", "IMG_0001 2.JPG", "IMG_0001 1 1.JPG", "photo",
                   "photo 1", "photo 2", "x", "x 1"}));
}

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

class Source final : public PromisedFilesSource {
public:
  Names namesOfPromisedFilesDroppedAtDestination(const std::string& folder) override {
    drops.push_back(folder);
    return {};
  }
  std::vector<PromisedFile> promisedFiles() const override {
    const auto readable = [this](const std::string& content) {
      return [this, content] {
        ++reads;
        return content.empty() ? std::nullopt : std::optional(Bytes::copyOf(bytesOf(content)));
      };
    };
    return {
        {"a.jpg", readable("first")}, {"gone.jpg", readable({})}, {"a.jpg", readable("second")}};
  }

  Names drops;
  mutable std::atomic<int> reads = 0;
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

// What a target reads from a list of URLs.
Names contentsOf(const QByteArray& uriList) {
  Names contents;
  for (const QByteArray& line : uriList.split('\n')) {
    QFile file(QUrl::fromEncoded(line.trimmed()).toLocalFile());
    if (!line.isEmpty()) {
      contents.push_back(file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "none");
    }
  }
  return contents;
}

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
  EXPECT_EQ(source.reads, 0);
}

// Where there is no direct save, and over a target that does not know it.
TEST(PromisedFilesMimeData, theListIsWrittenAtTheRelease) {
  std::string property;
  for (const bool hasChannel : {false, true}) {
    Source source;
    QObject owner;
    PromisedFilesMimeData data(
        source, owner, hasChannel ? std::make_unique<FakeChannel>(property, false) : nullptr);
    data.dragDidBegin();
    data.pointerDidMove();
    EXPECT_TRUE(data.hasUrls());
    EXPECT_EQ(contentsOf(data.data("text/uri-list")), Names({"none", "none", "none"}));
    EXPECT_EQ(source.reads, 0);
    bool loopRan = false;
    QTimer::singleShot(0, [&] { loopRan = true; });
    data.willDrop();
    EXPECT_TRUE(loopRan);
    EXPECT_EQ(source.reads, 3);
    EXPECT_EQ(contentsOf(data.data("text/uri-list")), Names({"first", "second"}));
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
