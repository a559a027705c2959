#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "backups/LivePhotos.h"
#include "support/PhotoSource.h"

namespace snaplift {
namespace {

class LivePhotosTest : public testing::Test {
protected:
  LivePhotos of(const std::vector<std::string>& paths) {
    m_items.clear();
    for (const std::string& path : paths) {
      m_items.push_back(std::make_unique<ImageItem>("/b/" + path, m_source));
    }
    return LivePhotos(m_items);
  }

  test::PhotoSource m_source{"/b"};
  std::vector<std::unique_ptr<ImageItem>> m_items;
};

TEST_F(LivePhotosTest, arePhotosWithAFilmOfTheirName) {
  // The film of each path, by its place; -1: none.
  using Films = std::vector<int>;
  const std::map<std::vector<std::string>, Films> cases{
      {{"1/a.HEIC", "1/a.MOV"}, {1, -1}},
      {{"1/a.mov", "1/a.jpg"}, {-1, 0}},
      {{"1/a.HEIC", "2/a.MOV"}, {-1, -1}},
      {{"1/a.HEIC", "1/A.MOV"}, {-1, -1}},
      {{"1/a.HEIC", "1/a 1.MOV"}, {-1, -1}},
      {{"1/a.MOV", "1/b.HEIC"}, {-1, -1}},
      {{"1/a.MOV", "1/a.AAE"}, {-1, -1}},
      {{"1/a.MOV", "1/a.MP4"}, {-1, -1}},
      {{"1/a.JPG", "1/a.HEIC", "1/a.MOV"}, {2, -1, -1}},
      {{"1/a.HEIC", "1/a.MP4", "1/a.MOV"}, {1, -1, -1}}};
  for (const auto& [paths, films] : cases) {
    const LivePhotos live = of(paths);
    for (std::size_t i = 0; i < paths.size(); ++i) {
      const ImageItem* film = films[i] < 0 ? nullptr : m_items[std::size_t(films[i])].get();
      EXPECT_EQ(live.filmOf(*m_items[i]), film) << paths[i];
      EXPECT_EQ(live.isPart(*m_items[i]), std::ranges::count(films, int(i)) == 1) << paths[i];
    }
  }
}

TEST_F(LivePhotosTest, bringTheirFilmsAlongOnce) {
  const LivePhotos live = of({"1/a.HEIC", "1/b.HEIC", "1/b.MOV", "1/c.HEIC", "1/c.MOV"});
  const auto at = [&](std::size_t index) { return m_items[index].get(); };
  EXPECT_EQ(live.withFilms({at(3), at(0)}), (std::vector{at(3), at(4), at(0)}));
  EXPECT_EQ(live.withFilms({at(1), at(3), at(2)}), (std::vector{at(1), at(3), at(4), at(2)}));
}

}  // namespace
}  // namespace snaplift
