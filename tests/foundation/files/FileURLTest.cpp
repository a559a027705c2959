#include <gtest/gtest.h>

#include "foundation/files/FileURL.h"

namespace snaplift {
namespace {

TEST(FileURL, encodesEveryByteThatCouldBeMisread) {
  EXPECT_EQ(fileURL("/out/IMG_0001-a~b.JPG"), "file:///out/IMG_0001-a~b.JPG");
  EXPECT_EQ(fileURL("/a b/50%#?;\\\"&+.jpg"), "file:///a%20b/50%25%23%3F%3B%5C%22%26%2B.jpg");
  EXPECT_EQ(fileURL("/\xc3\xa4\xff\n\x7f"), "file:///%C3%A4%FF%0A%7F");
}

}  // namespace
}  // namespace snaplift
