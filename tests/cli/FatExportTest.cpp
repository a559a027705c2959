// Exports onto a stick: no links, letter case folded, names that are forbidden.

#include <memory>
#include <string>

#include "CommandLineTest.h"
#include "faults/Volume.h"
#include "foundation/files/File.h"

namespace snaplift {
namespace {

using testing::HasSubstr;
using testing::UnorderedElementsAre;

struct Stick {
  const char* name;
  Volume::Maker mount;
};

class FatExportTest : public CommandLineTest, public testing::WithParamInterface<Stick> {};

void PrintTo(const Stick& stick, std::ostream* out) {
  *out << stick.name;
}

INSTANTIATE_TEST_SUITE_P(, FatExportTest,
                         testing::Values(Stick{"exFat", Volume::exFat}, Stick{"fat", Volume::fat}),
                         [](const auto& stick) { return stick.param.name; });

TEST_P(FatExportTest, numbersNamesThatDifferInCaseAndFailsForbiddenOnesAlone) {
  const auto volume =
      GetParam().mount(m_tree.makeFolder("out"), m_tree.path("image"), Volume::leastSize);
  if (!volume) {
    GTEST_SKIP() << "needs root, mkfs and a way to mount " << GetParam().name;
  }
  const Layout& layout = layouts[4];
  const std::string backup = write(
      "backup",
      {.generation = layout.generation,
       .productVersion = layout.version,
       .files = {photo(layout, "1/IMG_0001.JPG", "upper"), photo(layout, "2/img_0001.jpg", "lower"),
                 photo(layout, "3/a:b.jpg", "colon"), photo(layout, "4/what?.jpg", "question"),
                 photo(layout, "5/last.PNG", "last")}});
  const ProgramResult result = run({"export", backup, "-o", m_tree.path("out"), "-j", "1"});
  EXPECT_EQ(result.status, 3) << result.errors;
  EXPECT_THAT(m_tree.list("out"),
              UnorderedElementsAre("IMG_0001.JPG", "img_0001 1.jpg", "last.PNG"));
  EXPECT_EQ(m_tree.read("out/IMG_0001.JPG"), "upper");
  EXPECT_EQ(m_tree.read("out/img_0001 1.jpg"), "lower");
  EXPECT_EQ(m_tree.read("out/last.PNG"), "last");
  if (std::string(GetParam().name) == "exFat") {  // the program that serves FAT keeps no dates
    EXPECT_EQ(fileAttributes(m_tree.path("out/last.PNG"))->modificationDate,
              instantFromUnixTime(1318420800));
  }
  EXPECT_THAT(result.errors, HasSubstr("failed: " + backup + "/3/a:b.jpg: "));
  EXPECT_THAT(result.errors, HasSubstr("failed: " + backup + "/4/what?.jpg: "));
  EXPECT_THAT(result.errors, HasSubstr("1 under another name, 2 failed"));
}

}  // namespace
}  // namespace snaplift
