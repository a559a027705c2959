#include <string>

#include <gtest/gtest.h>

#include "formats/FilmLength.h"
#include "pictures/BigEndian.h"
#include "pictures/FilmFile.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

using samples::bigEndian;

std::string box(const std::string& name, const std::string& content) {
  return bigEndian(8 + content.size(), 4) + name + content;
}

// A wide header of so many units, of which a second has a thousand.
std::string wideHeader(std::size_t units) {
  return box("moov", box("mvhd", '\1' + std::string(19, '\0') + bigEndian(1000, 4) +
                                     bigEndian(units, 8) + std::string(80, '\0')));
}

TEST(FilmLength, readsTheHeaderAndBelievesNoLengthInIt) {
  const std::string film = samples::jpegFilm(std::vector<std::string>(30, "frame"), 8, 6, 12);
  const std::string endless = bigEndian(0, 4) + "free";
  const std::string longBox = bigEndian(1, 4) + "wide" + bigEndian(17, 8) + "x";
  struct Case {
    std::string bytes;
    std::optional<int> milliseconds;
  };
  const Case cases[] = {{film, 2500},
                        {longBox + wideHeader(61'000), 61'000},
                        {wideHeader(0), {}},
                        {wideHeader(90'000'000), {}},
                        {endless + wideHeader(1000), {}},
                        {bigEndian(4, 4) + "loop" + wideHeader(1000), {}},
                        {bigEndian(1, 4) + "long" + std::string(8, '\xff') + wideHeader(1000), {}},
                        {wideHeader(1000).substr(0, 40), {}},
                        {box("moov", wideHeader(1000)), {}},
                        {"", {}}};
  const TemporaryTree tree;
  for (const Case& c : cases) {
    const auto length = lengthOfFilm(tree.write("film", c.bytes));
    ASSERT_EQ(length.has_value(), c.milliseconds.has_value()) << &c - cases;
    EXPECT_TRUE(!length || length->count() == *c.milliseconds) << length->count();
  }
  std::string far;
  for (int i = 0; i < 100; ++i) {
    far += box("free", "");
  }
  EXPECT_FALSE(lengthOfFilm(tree.write("film", far + wideHeader(1000))));
  EXPECT_FALSE(lengthOfFilm(tree.path("none")));
}

}  // namespace
}  // namespace snaplift
