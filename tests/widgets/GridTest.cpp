#include <QStringList>
#include <numeric>
#include <set>

#include <gtest/gtest.h>

#include "widgets/desktop/TypeSelect.h"
#include "widgets/photogrid/GridLayout.h"
#include "widgets/photogrid/IndexSet.h"
#include "widgets/thumbnails/ThumbnailOrder.h"

namespace snaplift {
namespace {

using Indexes = std::vector<int>;

TEST(IndexSet, agreesWithASetOfNumbers) {
  IndexSet set(200);
  std::set<int> model;
  const auto check = [&] {
    EXPECT_EQ(set.indexes(), Indexes(model.begin(), model.end()));
    EXPECT_EQ(set.count(), static_cast<int>(model.size()));
  };
  for (const auto& [first, last] : {std::pair{63, 64}, {0, 0}, {130, 199}, {-5, 3}, {190, 500}}) {
    set.insertRange(first, last);
    for (int i = std::max(first, 0); i <= std::min(last, 199); ++i) {
      model.insert(i);
    }
    check();
  }
  set.insertRange(70, 69);
  for (const auto& [first, last] : {std::pair{60, 140}, {100, 101}, {-3, 1}, {199, 900}}) {
    set.removeRange(first, last);
    model.erase(model.lower_bound(first), model.upper_bound(last));
    check();
  }
  set.invert();
  EXPECT_EQ(set.count(), 200 - static_cast<int>(model.size()));
  set.invert();
  check();
  EXPECT_FALSE(set.contains(-1));
  EXPECT_FALSE(set.contains(200));
  set.insert(200);
  check();
}

// The photos of each group; a single number: so many without groups.
GridLayout layoutOf(const Indexes& counts, const GridMeasures& measures) {
  return counts.size() == 1 ? GridLayout(counts[0], measures) : GridLayout(counts, measures);
}

TEST(GridLayout, everyPointAndRowAgreesWithTheCells) {
  for (const int width : {1, 80, 97, 640, 1001}) {
    for (const Indexes& counts : {Indexes{0}, {1}, {7}, {50}, {1, 9, 2, 12}}) {
      for (const bool isMirrored : {false, true}) {
        const GridLayout layout = layoutOf(counts, {width, {60, 75}, 20, isMirrored});
        const int count = std::accumulate(counts.begin(), counts.end(), 0);
        ASSERT_EQ(layout.itemCount(), count);
        for (int i = 1; i < count; ++i) {
          const QRect before = layout.cellRect(i - 1);
          const QRect cell = layout.cellRect(i);
          EXPECT_TRUE(cell.top() > before.bottom() || (cell.left() > before.right()) != isMirrored);
          EXPECT_EQ(layout.rowOf(i), layout.rowOf(i - 1) + (cell.top() > before.bottom() ? 1 : 0));
          EXPECT_TRUE(layout.itemsOfRow(layout.rowOf(i)).contains(i));
        }
        for (int y = -20; y < layout.contentHeight() + 40; y += 7) {
          for (int x = -20; x < width + 20; x += 5) {
            int expected = -1;
            for (int i = 0; i < count; ++i) {
              expected = layout.cellRect(i).contains(x, y) ? i : expected;
            }
            ASSERT_EQ(layout.indexAt({x, y}), expected) << width << ": " << x << ", " << y;
          }
          IndexRange seen;
          for (int i = 0; i < count; ++i) {
            const QRect cell = layout.cellRect(i);
            if (cell.top() <= y + 30 && cell.bottom() >= y) {
              seen = {seen.empty() ? i : seen.first, i};
            }
          }
          const IndexRange rows = layout.rowsBetween(y, y + 30);
          EXPECT_EQ(rows.empty(), seen.empty()) << y;
          EXPECT_TRUE(seen.empty() || rows == seen) << y;
        }
      }
    }
  }
}

TEST(GridLayout, aHeaderStandsAboveItsGroupOrAtTheTop) {
  const GridLayout layout(Indexes{5, 1, 40}, {200, {60, 75}, 20});
  for (int group = 0; group < 3; ++group) {
    const IndexRange items = layout.itemsOfGroup(group);
    const QRect header = layout.headerRect(group, 0);
    EXPECT_GE(header.top(), group == 0 ? 0 : layout.cellRect(items.first - 1).bottom() + 1);
    EXPECT_LT(header.bottom(), layout.cellRect(items.first).top());
    EXPECT_EQ(layout.groupOf(items.first), group);
    EXPECT_EQ(layout.groupOf(items.last), group);
    EXPECT_EQ(layout.groupAt(header.top()), group);
    EXPECT_EQ(layout.groupAt(layout.cellRect(items.last).bottom()), group);
    // It waits above its group, goes along with the view, and leaves with its last row.
    const int end = layout.cellRect(items.last).bottom();
    EXPECT_EQ(layout.headerRect(group, header.top() + 9).top(), header.top() + 9);
    EXPECT_LE(layout.headerRect(group, end).bottom(), end + 14);
  }
}

TEST(GridLayout, staysWithinTheNumbersOfAScrollBar) {
  constexpr int many = GridLayout::maxItems * 2;
  for (const Indexes& counts : {Indexes{many}, Indexes(many, 1)}) {
    const GridLayout layout = layoutOf(counts, {10, {5000, 5000}, 5000});
    EXPECT_EQ(layout.itemCount(), GridLayout::maxItems);
    EXPECT_GT(layout.contentHeight(), 0);
    EXPECT_GT(layout.cellRect(layout.itemCount() - 1).bottom(), 0);
  }
}

TEST(ThumbnailOrder, isVisibleThenAheadThenBehindThenNothing) {
  struct Case {
    const char* name;
    ThumbnailSight sight;
    Indexes order;
  };
  for (const Case& c : {
           Case{"forwards", {{4, 7}, 100, false, 99}, {4, 5, 6, 7, 8, 9, 10, 11, 3, 2}},
           Case{"backwards", {{4, 7}, 100, true, 99}, {4, 5, 6, 7, 3, 2, 1, 0, 8, 9}},
           Case{"at the start", {{0, 3}, 100, true, 99}, {0, 1, 2, 3, 4, 5}},
           Case{"at the end", {{96, 99}, 100, false, 99}, {96, 97, 98, 99, 95, 94}},
           Case{"little room", {{4, 7}, 100, false, 5}, {4, 5, 6, 7, 8}},
           Case{"less room than is visible", {{4, 7}, 100, false, 2}, {4, 5}},
           Case{"fewer photos than seen", {{0, 9}, 3, false, 99}, {0, 1, 2}},
           Case{"nothing visible", {{}, 100, false, 99}, {}},
       }) {
    EXPECT_EQ(thumbnailOrder(c.sight), c.order) << c.name;
  }
}

TEST(TypeSelect, findsNamesAndNumbers) {
  const QStringList titles{"IMG_0001.JPG", "IMG_0012.JPG", "img_0123.PNG", "Beach.jpg",
                           "berg 2.jpg",   "IMG_1230.JPG", "..",           ""};
  const struct {
    const char* typed;
    int focus, found;
  } cases[] =
      {
          {"123", -1, 2},  // an equal number before one that begins so
          {"0123", -1, 2},  {"1", 3, 0},    {"001", 3, 0}, {"00", -1, 0},
          {"1230", -1, 5},  {"99", -1, -1}, {"b", -1, 3},  {"b", 3, 4},
          {"b", 4, 3},      {"be", 3, 3},  // what goes on with a text may stay
          {"IMG_01", 0, 2}, {"x", 0, -1},
      };
  for (const auto& each : cases) {
    EXPECT_EQ(indexOfTyped(each.typed, static_cast<int>(titles.size()), each.focus,
                           [&](int index) { return titles[index]; }),
              each.found)
        << each.typed << " from " << each.focus;
  }
  EXPECT_EQ(indexOfTyped("x", 0, -1, {}), -1);
}

}  // namespace
}  // namespace snaplift
