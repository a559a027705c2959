#include <QAccessible>
#include <QContextMenuEvent>
#include <QScrollBar>
#include <QSignalSpy>
#include <algorithm>
#include <numeric>

#include <gtest/gtest.h>

#include "ImageBrowserViewFixture.h"
#include "widgets/photogrid/PhotoPreview.h"

namespace snaplift {
namespace {

Indexes range(int first, int last) {
  Indexes numbers(static_cast<std::size_t>(last - first + 1));
  std::iota(numbers.begin(), numbers.end(), first);
  return numbers;
}

// Three groups in four columns; the last ends out of sight.
class GroupedBrowserTest : public ImageBrowserViewTest, protected ImageBrowserViewDelegate {
protected:
  GroupedBrowserTest() {
    m_view.resize(700, 900);
    m_view.setDelegate(this);
    m_photos.setGroups({{"May 2011", 6}, {"", 0}, {"June 2011", 1}, {"July 2011", 40}});
    showPhotos(47);
  }

  QPoint header(int group) const { return m_view.headerFrameOfGroup(group).center(); }

  void imageBrowserContextMenuAtPoint(ImageBrowserView&, QPoint point) override {
    m_menus.push_back(m_view.viewport()->mapFromGlobal(point));
  }
  bool imageBrowserTakesTyping(ImageBrowserView&, const QString& text) override {
    const bool takes = text.front().isDigit();
    m_taken += takes ? text : QString();
    return takes;
  }

  std::vector<QPoint> m_menus;
  QString m_taken;
};

TEST_F(GroupedBrowserTest, clicksOnHeadersSelectTheirGroups) {
  ASSERT_EQ(m_view.groupCount(), 3);
  const auto control = Qt::ControlModifier;
  const auto shift = Qt::ShiftModifier;
  const struct {
    QPoint at;
    Qt::KeyboardModifiers modifiers;
    Indexes selected;
    Qt::MouseButton button = Qt::LeftButton;
  } steps[] = {
      {header(0), {}, range(0, 5)},
      {header(1), control, range(0, 6)},
      {header(0), control, {6}},
      {header(0), shift, range(0, 5)},
      {header(1), {}, {6}},
      {header(0), shift, range(0, 6)},
      {centre(3), {}, {3}},
      {header(1), shift, range(3, 6)},
      {header(1), {}, range(3, 6), Qt::RightButton},
      {header(0), {}, range(0, 5), Qt::RightButton},
  };
  for (const auto& step : steps) {
    QTest::mouseClick(m_view.viewport(), step.button, step.modifiers, step.at);
    EXPECT_EQ(selected(), step.selected) << (&step - steps);
  }
  drag(header(1), centre(5));
  EXPECT_EQ(selected(), Indexes({5})) << "a rubber band may begin on a header";
  m_photos.setGroups({{"Not all of them", 46}});
  showPhotos(47);
  EXPECT_EQ(m_view.groupCount(), 0);
}

TEST_F(GroupedBrowserTest, aHeaderStaysInSightAndHidesNoPhotoThatIsSteppedTo) {
  const int height = m_view.headerFrameOfGroup(0).height();
  m_view.resize(700, 300);
  m_view.verticalScrollBar()->setValue(m_view.itemFrameAtIndex(5).center().y());
  EXPECT_EQ(m_view.headerFrameOfGroup(0).top(), 0);
  const QPoint point(centre(5).x(), 3);
  ASSERT_TRUE(m_view.itemFrameAtIndex(5).contains(point));
  EXPECT_FALSE(m_view.indexOfItemAtPoint(point).has_value());
  EXPECT_EQ(m_view.groupWithHeaderAtPoint(point), 0);
  const QImage shot = m_view.viewport()->grab().toImage();
  EXPECT_EQ(shot.pixelColor(point), m_view.palette().color(QPalette::Base));
  for (int index = 46; index >= 0; --index) {
    m_view.stepTo(index);
    ASSERT_GE(m_view.itemFrameAtIndex(index).top(), height) << index;
  }
  EXPECT_EQ(m_view.verticalScrollBar()->value(), 0);

  // What is mostly under the header is not what stays where it is while the photos are zoomed.
  const int hidden = m_view.itemFrameAtIndex(0).height() * 6 / 10;
  m_view.verticalScrollBar()->setValue(m_view.itemFrameAtIndex(0).top() - height + hidden);
  const int second = m_view.itemFrameAtIndex(4).top();
  m_view.setZoomValue(0.31F);
  EXPECT_EQ(m_view.itemFrameAtIndex(4).top(), second);
}

TEST_F(GroupedBrowserTest, keysGoThroughGroupsInTheirColumn) {
  m_view.resize(700, 830);
  const struct {
    int key, focus;
    Qt::LayoutDirection direction = Qt::LeftToRight;
  } steps[] = {
      {Qt::Key_Home, 0},
      {Qt::Key_Right, 1},
      {Qt::Key_Right, 2},
      {Qt::Key_Down, 5},
      {Qt::Key_Down, 6},
      {Qt::Key_Down, 9},
      {Qt::Key_Up, 6},
      {Qt::Key_Up, 5},
      {Qt::Key_Up, 2},
      {Qt::Key_Up, 2},
      {Qt::Key_Left, 1},
      {Qt::Key_PageDown, 12},
      {Qt::Key_PageUp, 1},
      {Qt::Key_End, 46},
      {Qt::Key_Down, 46},
      {Qt::Key_Up, 42},
      {Qt::Key_PageDown, 46},
      {Qt::Key_Left, 46, Qt::RightToLeft},
      {Qt::Key_Right, 45, Qt::RightToLeft},
  };
  for (const auto& step : steps) {
    m_view.setLayoutDirection(step.direction);
    key(step.key);
    EXPECT_EQ(m_view.focusedIndex(), step.focus) << (&step - steps);
  }
  EXPECT_GT(centre(0).x(), centre(1).x()) << "right to left";
}

// Sorted, filtered, grouped: what was selected and what was at the top are found by the photo.
TEST_F(GroupedBrowserTest, aNewOrderKeepsSelectionFocusTopAndPreview) {
  constexpr int count = 400;
  m_view.resize(700, 500);
  Indexes order = range(0, count - 1);
  const auto show = [&](Indexes next, std::vector<ImageBrowserGroup> groups) {
    std::vector<int> places(count, -1);
    for (std::size_t i = 0; i < next.size(); ++i) {
      places[static_cast<std::size_t>(next[i])] = static_cast<int>(i);
    }
    const Indexes before = std::exchange(order, next);
    m_photos.setOrder(std::move(next));
    m_photos.setGroups(std::move(groups));
    m_view.rearrangeData([&](int index) {
      return places[static_cast<std::size_t>(before[static_cast<std::size_t>(index)])];
    });
    EXPECT_TRUE(loadsAll());
  };
  const auto photoAt = [&](QPoint point) {
    const std::optional<int> index = m_view.indexOfItemAtPoint(point);
    return index ? order[static_cast<std::size_t>(*index)] : -1;
  };
  const auto selectedPhotos = [&] {
    Indexes photos;
    for (const int index : selected()) {
      photos.push_back(order[static_cast<std::size_t>(index)]);
    }
    std::ranges::sort(photos);
    return photos;
  };
  const Indexes all = order;
  Indexes reversed(all.rbegin(), all.rend());
  Indexes third;
  std::ranges::copy_if(all, std::back_inserter(third), [](int i) { return i % 3 == 0; });
  m_photos.setGroups({});
  showPhotos(count);
  click(5);
  click(9, Qt::ControlModifier);
  click(10, Qt::ControlModifier);
  m_view.verticalScrollBar()->setValue(m_view.itemFrameAtIndex(200).top() - 14);
  const QPoint top = m_view.itemFrameAtIndex(200).topLeft();
  ASSERT_EQ(photoAt(top), 200);
  ASSERT_TRUE(loadsAll());
  const int reads = m_photos.reads().count();
  QSignalSpy changes(&m_view, &ImageBrowserView::selectionIndexesChanged);
  show(all, {});
  EXPECT_EQ(changes.count(), 0);
  EXPECT_EQ(m_photos.reads().count(), reads);
  const struct {
    Indexes order;
    std::vector<ImageBrowserGroup> groups;
    int top;
    Indexes selected;
    int focus;
  } cases[] = {
      {reversed, {}, 200, {5, 9, 10}, 10},
      {reversed, {{"2011", 150}, {"2010", 250}}, 200, {5, 9, 10}, 10},
      {third, {}, 201, {9}, 9},
      {all, {}, 201, {9}, 9},
  };
  for (const auto& each : cases) {
    show(each.order, each.groups);
    const auto place = std::ranges::find(order, each.top) - order.begin();
    const int header = m_view.groupCount() > 0 ? m_view.headerFrameOfGroup(0).height() : 0;
    EXPECT_NEAR(m_view.itemFrameAtIndex(static_cast<int>(place)).top(), top.y() + header, 1);
    EXPECT_EQ(selectedPhotos(), each.selected);
    EXPECT_EQ(order[static_cast<std::size_t>(m_view.focusedIndex())], each.focus);
  }
  EXPECT_EQ(changes.count(), 3);

  m_view.setPreviewOpen(true);
  show(reversed, {});
  ASSERT_TRUE(m_view.isPreviewOpen());
  EXPECT_EQ(m_view.preview()->accessibleName(), "IMG_0010.JPG");
  EXPECT_EQ(m_view.preview()->accessibleDescription(), "391 of 400");
  show({1, 2, 3}, {});
  EXPECT_FALSE(m_view.isPreviewOpen());
  EXPECT_EQ(selected(), Indexes());
  show({}, {});
  EXPECT_EQ(m_view.focusedIndex(), -1);
}

TEST_F(GroupedBrowserTest, unreadPhotosAreNotReadAgainForANewOrder) {
  test::TestPhotos none(6, [](int) { return std::nullopt; });
  m_view.setDataSource(&none);
  ASSERT_TRUE(loadsAll());
  const int reads = none.reads().count();
  m_view.rearrangeData([](int index) { return index; });
  ASSERT_TRUE(loadsAll());
  EXPECT_EQ(none.reads().count(), reads);
  m_view.reloadData();
  ASSERT_TRUE(loadsAll());
  EXPECT_GT(none.reads().count(), reads);
  m_view.setDataSource(nullptr);
}

TEST_F(GroupedBrowserTest, screenReadersHearTheGroups) {
  QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&m_view);
  EXPECT_EQ(list->childCount(), 47 + 3);
  EXPECT_EQ(list->child(1)->text(QAccessible::Description), "/100APPLE, May 2011");
  EXPECT_EQ(list->child(2)->text(QAccessible::Description), "Live Photo, /100APPLE, May 2011");
  EXPECT_EQ(list->child(47)->text(QAccessible::Name), "May 2011, 6 Photos");
  QAccessibleInterface* june = list->child(48);
  EXPECT_EQ(june->text(QAccessible::Name), "June 2011, 1 Photo");
  EXPECT_EQ(june->role(), QAccessible::Heading);
  EXPECT_EQ(list->indexOfChild(june), 48);
  const QPoint at = m_view.viewport()->mapToGlobal(header(1));
  EXPECT_EQ(list->childAt(at.x(), at.y()), june);
  EXPECT_TRUE(june->rect().contains(at));
  june->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(selected(), Indexes({6}));
  m_view.setPreviewOpen(true);
  EXPECT_EQ(list->child(50)->object(), m_view.preview());
  m_photos.setGroups({});
  showPhotos(47);
  EXPECT_FALSE(june->isValid());
}

TEST_F(GroupedBrowserTest, subtitlesAreAskedForWhereTheyAreSeen) {
  m_photos.setGroups({});
  showPhotos(10'000);
  const auto heightAt = [this](float zoom, bool shows) {
    m_view.setZoomValue(zoom);
    m_view.setShowsSubtitles(shows);
    m_photos.reads().subtitles = 0;
    m_view.viewport()->grab();
    return m_view.itemFrameAtIndex(0).height();
  };
  for (const bool hasRoom : {true, false}) {
    const float zoom = hasRoom ? 0.3F : 0.05F;
    const int height = heightAt(zoom, false);
    EXPECT_EQ(m_photos.reads().subtitles.load(), 0);
    EXPECT_EQ(heightAt(zoom, true) > height, hasRoom);
    EXPECT_EQ(m_photos.reads().subtitles.load() > 10, hasRoom);
    EXPECT_LT(m_photos.reads().subtitles.load(), 50);
  }
}

TEST_F(GroupedBrowserTest, livePhotosBearAMark) {
  ASSERT_TRUE(loadsAll());
  const QImage shot = m_view.viewport()->grab().toImage();
  const QPoint corner(-32 + 5, 24 - 7);  // of a photo of 64 by 48 in the middle of its frame
  const auto cornerOf = [&](int index) {
    const QRect cell = m_view.itemFrameAtIndex(index);
    return shot.pixelColor(cell.left() + cell.width() / 2 + corner.x(),
                           cell.top() + cell.width() * 2 / 5 + corner.y());
  };
  EXPECT_EQ(cornerOf(0), cornerOf(1));
  EXPECT_LT(cornerOf(2).lightness(), cornerOf(1).lightness());
}

TEST_F(GroupedBrowserTest, aMenuIsAskedForWhatIsSelected) {
  const struct {
    QPoint at;
    Indexes selected;
    bool hasMenu;
  } steps[] = {
      {centre(2), {2}, true},         {centre(4), {4}, true}, {header(0), range(0, 5), true},
      {centre(3), range(0, 5), true}, {before(1), {}, false},
  };
  for (const auto& step : steps) {
    m_menus.clear();
    QTest::mousePress(m_view.viewport(), Qt::RightButton, {}, step.at);
    QContextMenuEvent event(QContextMenuEvent::Mouse, step.at,
                            m_view.viewport()->mapToGlobal(step.at));
    QApplication::sendEvent(m_view.viewport(), &event);
    EXPECT_EQ(selected(), step.selected);
    EXPECT_EQ(m_menus, step.hasMenu ? std::vector{step.at} : std::vector<QPoint>());
  }
  m_view.stepTo(40);
  m_view.verticalScrollBar()->setValue(0);
  key(Qt::Key_F10, Qt::ShiftModifier);
  ASSERT_EQ(m_menus.size(), 1U);
  EXPECT_EQ(m_view.indexOfItemAtPoint(m_menus[0]), 40);
  EXPECT_EQ(selected(), Indexes({40}));
}

TEST_F(GroupedBrowserTest, whatIsTypedIsTheDelegatesUnlessItGoesOnWithAName) {
  QTest::keyClicks(&m_view, "12");
  EXPECT_EQ(m_taken, "12");
  EXPECT_EQ(selected(), Indexes());
  QTest::keyClicks(&m_view, "img_0009");
  EXPECT_EQ(m_taken, "12");
  EXPECT_EQ(selected(), Indexes({8}));
}

}  // namespace
}  // namespace snaplift
