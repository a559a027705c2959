#include <string>

#include <gtest/gtest.h>

#include "foundation/Path.h"

namespace snaplift {
namespace {

TEST(Path, joinsWithExactlyOneSlash) {
  for (const char* folder : {"/b/x", "/b/x/", "/b/x//"}) {
    for (const char* name : {"Media/IMG_0001.JPG", "/Media/IMG_0001.JPG"}) {
      EXPECT_EQ(joinPath(folder, name), "/b/x/Media/IMG_0001.JPG") << folder << " + " << name;
    }
  }
  EXPECT_EQ(joinPath("/", "a"), "/a");
  EXPECT_EQ(joinPath("", "a"), "a");
  EXPECT_EQ(joinPath("/b", ""), "/b");
}

TEST(Path, takesComponentsApart) {
  struct Case {
    const char *path, *last, *parent, *extension, *stem;
  };
  for (const Case& c : {Case{"/b/IMG_0001.JPG", "IMG_0001.JPG", "/b", "JPG", "IMG_0001"},
                        Case{"/b/IMG_0001.JPG/", "IMG_0001.JPG", "/b", "JPG", "IMG_0001"},
                        Case{"/a.b/photo", "photo", "/a.b", "", "photo"},
                        Case{"a.tar.gz", "a.tar.gz", "", "gz", "a.tar"},
                        Case{"/.profile", ".profile", "/", "", ".profile"},
                        Case{"/photo.", "photo.", "/", "", "photo."}, Case{"/", "/", "/", "", "/"},
                        Case{"", "", "", "", ""}}) {
    EXPECT_EQ(lastPathComponent(c.path), c.last) << c.path;
    EXPECT_EQ(parentPath(c.path), c.parent) << c.path;
    EXPECT_EQ(pathExtension(c.path), c.extension) << c.path;
    EXPECT_EQ(pathStem(c.path), c.stem) << c.path;
  }
}

TEST(Path, fileNamesCannotLeaveTheirFolder) {
  for (const std::string& name : {std::string("a/b"), std::string("/"), std::string("."),
                                  std::string(".."), std::string(), std::string("a\0b", 3)}) {
    EXPECT_FALSE(isFileName(name)) << name;
  }
  EXPECT_TRUE(isFileName("..."));
  EXPECT_TRUE(isFileName("\xff\n"));
}

TEST(Path, letterCaseIsThatOfAscii) {
  EXPECT_TRUE(endsWithIgnoringCase("a.JpG", "jpg"));
  EXPECT_TRUE(endsWithIgnoringCase("jpg", "jpg"));
  EXPECT_FALSE(endsWithIgnoringCase("pg", "jpg"));
  EXPECT_FALSE(equalsIgnoringCase("\xc3\x84", "\xc3\xa4"));
  EXPECT_FALSE(equalsIgnoringCase("@", "`"));  // they differ by the bit that tells letter case
}

}  // namespace
}  // namespace snaplift
