#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "photos/LinearOrder.h"
#include "photos/PhotoArrangement.h"
#include "support/KnownPhotos.h"

namespace snaplift {
namespace {

using testing::ElementsAre;

class PhotoArrangementTest : public testing::Test {
protected:
  PhotoArrangementTest() {
    ::setenv("TZ", "Europe/Berlin", 1);
    ::tzset();
    ::setenv("LC_ALL", "fr_FR.UTF-8", 1);
    m_arrangement.setPhotos(m_backup.items());
  }
  // The stems of what is shown.
  std::string shown() const {
    std::string names;
    for (int place = 0; place < m_arrangement.count(); ++place) {
      const std::string name = m_arrangement.photoAt(place).fileName();
      names += (names.empty() ? "" : " ") + name.substr(0, name.find('.'));
    }
    return names;
  }
  std::string shown(const PhotoWishes& wishes) {
    m_arrangement.setWishes(wishes);
    return shown();
  }

  // May 31, 2011, 22:00 UTC is June in Berlin.
  test::KnownPhotos m_backup{{{"Media/DCIM/100APPLE/b10.JPG", 1306879200, 5},
                              {"Media/PhotoData/CPLAssets/group1/a.HEIC", 0, std::nullopt},
                              {"Media/DCIM/100APPLE/b9.JPG", -86400, 7},
                              {"Media/PhotoData/Mutations/e\u0301/B9.jpg", 1306879199, 5},
                              {"Media/DCIM/101APPLE/\u00c4.mov", 1308000000, 5000000000}}};
  PhotoArrangement m_arrangement;
};

TEST_F(PhotoArrangementTest, ordersStablyWithTheUnknownAtTheEnd) {
  EXPECT_EQ(shown(), "b10 a b9 B9 \u00c4");
  EXPECT_TRUE(m_arrangement.showsAll());
  const struct {
    PhotoOrder order;
    const char *ascending, *descending;
  } cases[] = {{PhotoOrder::Backup, "b10 a b9 B9 \u00c4", "\u00c4 B9 b9 a b10"},
               {PhotoOrder::Date, "b9 B9 b10 \u00c4 a", "\u00c4 b10 B9 b9 a"},
               {PhotoOrder::Name, "a \u00c4 b9 B9 b10", "b10 B9 b9 \u00c4 a"},
               {PhotoOrder::Size, "b10 B9 b9 \u00c4 a", "\u00c4 b9 b10 B9 a"}};
  for (const auto& c : cases) {
    EXPECT_EQ(shown({.order = c.order}), c.ascending);
    EXPECT_EQ(shown({.order = c.order, .isDescending = true}), c.descending);
  }
}

TEST_F(PhotoArrangementTest, putsMonthsTogetherAndSaysWherePhotosWent) {
  const auto counts = [this] {
    std::vector<int> numbers;
    for (const PhotoArrangement::Month& month : m_arrangement.months()) {
      numbers.push_back(month.date ? month.count : -month.count);
    }
    return numbers;
  };
  EXPECT_THAT(m_arrangement.setWishes({.order = PhotoOrder::Date, .isByMonth = true}),
              ElementsAre(2, 4, 0, 1, 3));
  EXPECT_THAT(counts(), ElementsAre(1, 1, 2, -1));
  EXPECT_EQ(monthTitle(*m_arrangement.months()[2].date), "Juin 2011");
  EXPECT_THAT(
      m_arrangement.setWishes({.isDescending = true, .isByMonth = true, .onlyOriginals = true}),
      ElementsAre(2, -1, 1, 0, -1));
  EXPECT_EQ(shown(), "\u00c4 b10 b9");
  EXPECT_THAT(counts(), ElementsAre(2, 1));
  EXPECT_EQ(m_arrangement.countOfHiddenKinds(), 2);
  EXPECT_EQ(m_arrangement.countOfAll(), 5);
  EXPECT_FALSE(m_arrangement.showsAll());
  EXPECT_THAT(m_arrangement.setWishes({}), ElementsAre(4, 0, 2));
  EXPECT_TRUE(m_arrangement.months().empty());
  EXPECT_EQ(shown({.isByMonth = true}), "b9 B9 b10 \u00c4 a");
}

TEST_F(PhotoArrangementTest, findsNamesPathsAndDates) {
  const std::pair<const char*, const char*> cases[] = {{"", "b10 a b9 B9 \u00c4"},
                                                       {"  ", "b10 a b9 B9 \u00c4"},
                                                       {"B9", "b9 B9"},
                                                       {" 100apple/ ", "b10 b9"},
                                                       {"\u00e4", "\u00c4"},
                                                       {"a\u0308.MOV", "\u00c4"},
                                                       {"\u00e9", "B9"},
                                                       {"2011", "b10 B9 \u00c4"},
                                                       {"juin 2011", "b10 \u00c4"},
                                                       {"jui 2011", ""},
                                                       {"31.5.2011", "B9"},
                                                       {"101", "\u00c4"},
                                                       {"1969", "b9"},
                                                       {"nowhere", ""},
                                                       {"Media", "b10 a b9 B9 \u00c4"}};
  for (const auto& [text, found] : cases) {
    EXPECT_EQ(shown({.text = text}), found) << text;
  }
  EXPECT_EQ(shown({.order = PhotoOrder::Name, .onlyOriginals = true, .text = "jpg"}), "b9 b10");
  test::KnownPhotos other({{"Media/DCIM/100APPLE/d.PNG"}, {"Media/DCIM/100APPLE/c.JPG"}});
  m_arrangement.setPhotos(other.items());
  EXPECT_EQ(shown(), "c") << "wishes stay";
  m_arrangement.setPhotos({});
  EXPECT_EQ(shown({.order = PhotoOrder::Name, .isByMonth = true}), "");
}

TEST(LinearOrder, isThatOfTheStandardLibrary) {
  std::mt19937_64 random(1);
  std::vector<std::string> texts;
  for (int i = 0; i < 3000; ++i) {
    std::string text = "IMG_" + std::string(random() % 20, '\xff') + std::to_string(random() % 999);
    text += i % 3 == 0 ? std::string(1, '\0') : "";
    texts.push_back(text);
  }
  const std::vector<std::uint64_t> ranks = ranksOf(texts);
  std::vector<std::string> sorted = texts;
  std::ranges::sort(sorted);
  for (std::size_t i = 0; i < texts.size(); ++i) {
    EXPECT_EQ(sorted[ranks[i]], texts[i]);
    EXPECT_TRUE(ranks[i] == 0 || sorted[ranks[i] - 1] != texts[i]);
  }
}

}  // namespace
}  // namespace snaplift
