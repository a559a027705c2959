// What a photo's path and its content file say of it.

#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "decoders/PhotoInfo.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

TEST(PhotoInfo, knowsKindAndMediaByThePath) {
  constexpr auto photo = PhotoMedia::Photo, film = PhotoMedia::Film;
  struct Case {
    std::string path;
    PhotoKind kind;
    std::optional<PhotoMedia> media;
  };
  const std::string edits = "Media/PhotoData/Mutations/DCIM/100APPLE/IMG_0001/Adjustments/";
  for (const Case& c : {Case{"Media/DCIM/100APPLE/IMG_0001.JPG", PhotoKind::Original, photo},
                        Case{"Media/DCIM/999ABCDE/a.Mov", PhotoKind::Original, film},
                        Case{"Media/DCIM/100APPLE/sub/a.heic", PhotoKind::Derived, photo},
                        Case{"Media/DCIM/100APPL/a.3gp", PhotoKind::Derived, film},
                        Case{"Media/DCIM/A00APPLE/a.webp", PhotoKind::Derived, photo},
                        Case{"Media/DCIM/.MISC/a.thm", PhotoKind::Derived, {}},
                        Case{"Media/DCIM/100APPLE", PhotoKind::Derived, {}},
                        Case{edits + "FullSizeRender.jpg", PhotoKind::Edited, photo},
                        Case{edits + "FullSizeRender.mov", PhotoKind::Edited, film},
                        Case{edits + "Adjustments.plist", PhotoKind::Derived, {}},
                        Case{"Media/PhotoData/CPLAssets/group1/A.DNG", PhotoKind::Cloud, photo},
                        Case{"Media/PhotoData/Thumbnails/V2/DCIM/100APPLE/IMG_0001.HEIC/5005.JPG",
                             PhotoKind::Derived, photo},
                        Case{"media/dcim/100APPLE/IMG_0001.AAE", PhotoKind::Derived, {}},
                        Case{"jpg", PhotoKind::Derived, {}}}) {
    EXPECT_EQ(kindOfPath(c.path), c.kind) << c.path;
    EXPECT_EQ(mediaOfPath(c.path), c.media) << c.path;
    EXPECT_EQ(PhotoInfo::ofPath(c.path).media, c.media.value_or(photo)) << c.path;
  }
}

TEST(PhotoInfo, tellsWhyAContentFileCannotBeRead) {
  const TemporaryTree tree;
  const std::string file = tree.write("folder/file", "content");
  EXPECT_EQ(contentStateOfFile(file, {}), ContentState::Whole);
  EXPECT_EQ(contentStateOfFile(file, 8), ContentState::Short);
  EXPECT_EQ(contentStateOfFile(tree.path("folder"), {}), ContentState::Missing);
  EXPECT_EQ(contentStateOfFile(tree.path("none"), {}), ContentState::Missing);
  ASSERT_EQ(::symlink(file.c_str(), tree.path("link").c_str()), 0);
  EXPECT_EQ(contentStateOfFile(tree.path("link"), {}), ContentState::Missing);
  // Rights mean nothing to the administrator, whom tests in containers run as.
  ASSERT_EQ(::chmod(tree.root().c_str(), 0755), 0);
  const uid_t user = ::geteuid();
  const auto stateForOrdinaryUser = [&] {
    EXPECT_TRUE(user != 0 || ::seteuid(65534) == 0);
    const ContentState state = contentStateOfFile(file, 8);
    EXPECT_EQ(::seteuid(user), 0);
    return state;
  };
  EXPECT_EQ(stateForOrdinaryUser(), ContentState::Short);
  ASSERT_EQ(::chmod(file.c_str(), 0), 0);
  EXPECT_EQ(stateForOrdinaryUser(), ContentState::Unreadable);
  ASSERT_EQ(::chmod(tree.path("folder").c_str(), 0), 0);
  EXPECT_EQ(stateForOrdinaryUser(), ContentState::Unreadable);
}

}  // namespace
}  // namespace snaplift
