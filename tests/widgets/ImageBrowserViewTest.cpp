#include <QAccessible>
#include <QHelpEvent>
#include <QScrollBar>
#include <QSignalSpy>
#include <QToolButton>
#include <QToolTip>

#include <gtest/gtest.h>

#include "ImageBrowserViewFixture.h"
#include "support/photos/TestPictures.h"
#include "widgets/photogrid/PhotoPreview.h"

namespace snaplift {
namespace {

TEST_F(ImageBrowserViewTest, clicksSelectAsTheModifiersSay) {
  showPhotos(40);
  ASSERT_EQ(m_view.itemFrameAtIndex(0).top(), m_view.itemFrameAtIndex(3).top());
  ASSERT_LT(m_view.itemFrameAtIndex(0).top(), m_view.itemFrameAtIndex(4).top());
  constexpr int empty = -1;  // the space left of the second photo
  const auto shift = Qt::ShiftModifier;
  const auto control = Qt::ControlModifier;
  const struct {
    int photo;
    Qt::KeyboardModifiers modifiers;
    Indexes selected;
    Qt::MouseButton button = Qt::LeftButton;
  } steps[] = {
      {5, {}, {5}},
      {2, control, {2, 5}},
      {5, control, {2}},
      {2, {}, {2}},  // no change
      {6, shift, {2, 3, 4, 5, 6}},
      {1, shift, {1, 2}},
      {7, control, {1, 2, 7}},
      {8, shift | control, {1, 2, 7, 8}},
      {7, {}, {7}},
      {empty, control, {7}},
      {empty, {}, {}},
      {3, {}, {3}},
      {4, control, {3, 4}},
      {4, {}, {3, 4}, Qt::RightButton},
      {6, {}, {6}, Qt::RightButton},
  };
  QSignalSpy changes(&m_view, &ImageBrowserView::selectionIndexesChanged);
  for (const auto& step : steps) {
    const QPoint point = step.photo == empty ? before(1) : centre(step.photo);
    QTest::mouseClick(m_view.viewport(), step.button, step.modifiers, point);
    EXPECT_EQ(selected(), step.selected) << step.photo;
  }
  EXPECT_EQ(changes.count(), 12) << "told only where something has changed";
}

TEST_F(ImageBrowserViewTest, rubberBandReplacesOrAdds) {
  showPhotos(40);
  const QPoint to = centre(6);
  drag(before(1), to);
  EXPECT_EQ(selected(), Indexes({1, 2, 5, 6}));
  for (const auto modifier : {Qt::ControlModifier, Qt::ShiftModifier}) {
    click(0);
    drag(before(1), to, modifier);
    EXPECT_EQ(selected(), Indexes({0, 1, 2, 5, 6}));
  }
  drag(before(2), centre(2));
  EXPECT_EQ(selected(), Indexes({2}));

  click(9);
  press(before(1), Qt::ShiftModifier);
  move(to, Qt::ShiftModifier);
  key(Qt::Key_Escape);
  EXPECT_EQ(selected(), Indexes({9}));
  QTest::mouseRelease(m_view.viewport(), Qt::LeftButton, {}, to);
  EXPECT_EQ(selected(), Indexes({9}));
}

TEST_F(ImageBrowserViewTest, rubberBandScrollsWhenThePointerIsOutside) {
  showPhotos(400);
  press(before(1));
  move(QPoint(centre(2).x(), m_view.viewport()->height() + 60));
  EXPECT_TRUE(QTest::qWaitFor([this] { return m_view.verticalScrollBar()->value() > 1'000; }));
  const Indexes all = selected();
  EXPECT_TRUE(std::all_of(all.begin(), all.end(), [](int i) { return i % 4 == 1 || i % 4 == 2; }));
  EXPECT_GT(all.back(), 20);
  EXPECT_EQ(all.front(), 1);
  // The content goes while the band is drawn.
  showPhotos(3);
  move({10, 10});
  QTest::mouseRelease(m_view.viewport(), Qt::LeftButton, {}, {10, 10});
  EXPECT_EQ(selected(), Indexes());
}

TEST_F(ImageBrowserViewTest, keysMoveExtendAndToggle) {
  for (const int code : {Qt::Key_Down, Qt::Key_End, Qt::Key_Space, Qt::Key_Escape, Qt::Key_X}) {
    for (const auto modifier : {Qt::NoModifier, Qt::ControlModifier, Qt::ShiftModifier}) {
      key(code, modifier);
      EXPECT_EQ(m_view.focusedIndex(), -1) << "no photos";
    }
  }
  showPhotos(42);  // the last row has two
  const auto none = Qt::NoModifier;
  const auto shift = Qt::ShiftModifier;
  const auto control = Qt::ControlModifier;
  const struct {
    int key;
    Qt::KeyboardModifiers modifiers;
    int focus;
    Indexes selected;
  } steps[] = {
      {Qt::Key_Right, none, 0, {0}},
      {Qt::Key_Left, none, 0, {0}},
      {Qt::Key_Right, none, 1, {1}},
      {Qt::Key_Down, none, 5, {5}},
      {Qt::Key_Up, none, 1, {1}},
      {Qt::Key_Down, shift, 5, {1, 2, 3, 4, 5}},
      {Qt::Key_Left, shift, 4, {1, 2, 3, 4}},
      {Qt::Key_Right, control, 5, {1, 2, 3, 4}},
      {Qt::Key_Right, control, 6, {1, 2, 3, 4}},
      {Qt::Key_Space, control, 6, {1, 2, 3, 4, 6}},
      {Qt::Key_Space, control, 6, {1, 2, 3, 4}},
      {Qt::Key_Right, shift | control, 7, {1, 2, 3, 4, 6, 7}},
      {Qt::Key_Escape, none, 7, {}},
      {Qt::Key_End, none, 41, {41}},
      {Qt::Key_Right, none, 41, {41}},
      {Qt::Key_Down, none, 41, {41}},
      {Qt::Key_Up, none, 37, {37}},
      {Qt::Key_Right, none, 38, {38}},
      {Qt::Key_Down, none, 41, {41}},  // nothing right below: the last
      {Qt::Key_Home, none, 0, {0}},
      {Qt::Key_PageDown, none, 12, {12}},
      {Qt::Key_PageUp, none, 0, {0}},
  };
  for (std::size_t i = 0; i < std::size(steps); ++i) {
    key(steps[i].key, steps[i].modifiers);
    EXPECT_EQ(m_view.focusedIndex(), steps[i].focus) << "step " << i;
    EXPECT_EQ(selected(), steps[i].selected) << "step " << i;
  }
  QTest::keyClicks(&m_view, "42");
  EXPECT_EQ(m_view.focusedIndex(), 41);
  EXPECT_TRUE(m_view.viewport()->rect().contains(m_view.itemFrameAtIndex(41)));
  key(Qt::Key_Home);  // another key begins a new text
  QTest::keyClicks(&m_view, "img_0009");
  EXPECT_EQ(selected(), Indexes({8}));
  key(Qt::Key_A, control);
  EXPECT_EQ(selected().size(), 42U);
  m_view.invertSelection();
  EXPECT_EQ(selected(), Indexes());
}

TEST_F(ImageBrowserViewTest, zoomKeepsThePhotoUnderThePointer) {
  showPhotos(1'000);
  m_view.verticalScrollBar()->setValue(9'000);
  int index = 0;
  while (centre(index).y() < 200) {
    ++index;
  }
  const QPoint point = centre(index);
  const auto rowHolds = [&] {
    const QRect frame = m_view.itemFrameAtIndex(index);
    return frame.top() - 20 <= point.y() && point.y() <= frame.bottom() + 20;
  };
  QSignalSpy zooms(&m_view, &ImageBrowserView::zoomValueChanged);
  turnWheel(120, point);
  EXPECT_EQ(m_view.zoomValue(), static_cast<float>(double{0.3F} * 1.25));
  EXPECT_TRUE(rowHolds());
  for (const auto& [angle, end] : {std::pair{240, 1.0F}, {-120, 0.1F}}) {
    for (int i = 0; i < 40; ++i) {
      turnWheel(angle, point);
    }
    EXPECT_EQ(m_view.zoomValue(), end);
    EXPECT_TRUE(end < 1 || rowHolds());
  }
  EXPECT_EQ(zooms.last().front().toFloat(), 0.1F);
}

TEST_F(ImageBrowserViewTest, startsAtItsTopAndStaysThere) {
  showPhotos(300);
  m_view.verticalScrollBar()->setValue(2'000);
  showPhotos(400);
  for (const float zoom : {0.8F, 0.3F}) {
    m_view.setZoomValue(zoom);
    m_view.resize(500, 300);
    EXPECT_EQ(m_view.verticalScrollBar()->value(), 0);
  }
  m_view.verticalScrollBar()->setValue(m_view.verticalScrollBar()->maximum());
  EXPECT_LT(m_view.itemFrameAtIndex(399).bottom(), m_view.viewport()->height());
}

TEST_F(ImageBrowserViewTest, zoomByValueKeepsTheFirstPhotoThereAndBack) {
  showPhotos(1'000);
  m_view.verticalScrollBar()->setValue(9'000);
  int first = 0;
  while (m_view.itemFrameAtIndex(first).top() < 0) {
    ++first;
  }
  const int y = m_view.itemFrameAtIndex(first).top();
  for (const float zoom : {0.35F, 0.5F, 0.77F, 1.0F, 0.6F, 0.1F, 0.3F}) {
    m_view.setZoomValue(zoom);
  }
  EXPECT_NEAR(m_view.itemFrameAtIndex(first).top(), y, 3);
  for (const float nonsense :
       {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
    m_view.setZoomValue(nonsense);
    EXPECT_EQ(m_view.zoomValue(), 0.3F);
  }
  for (const float extreme : {1e30F, -5.0F}) {
    m_view.setZoomValue(extreme);
    EXPECT_EQ(m_view.zoomValue(), extreme);
    EXPECT_GT(m_view.itemFrameAtIndex(0).width(), 10);
    EXPECT_LT(m_view.itemFrameAtIndex(0).width(), 2'000);
  }
}

TEST_F(ImageBrowserViewTest, photosAppearAndBrokenOnesAreMarked) {
  const QByteArray picture = test::encoded(test::quadrants({640, 480}));
  test::TestPhotos mixed(3, [picture](int index) -> std::optional<QByteArray> {
    return index == 0   ? std::optional(picture)
           : index == 1 ? std::optional<QByteArray>("no picture")
                        : std::nullopt;
  });
  m_view.setDataSource(&mixed);
  EXPECT_EQ(m_view.thumbnailAtIndex(0), nullptr);
  ASSERT_TRUE(loadsAll());
  const QRect frame = m_view.itemFrameAtIndex(0);
  const QImage shot = m_view.viewport()->grab().toImage();
  const QColor color = shot.pixelColor(frame.left() + 20, frame.top() + 40);
  EXPECT_TRUE(color.red() > 200 && color.green() < 60);
  EXPECT_EQ(m_view.thumbnailAtIndex(1)->state, Thumbnail::State::Undecodable);
  EXPECT_EQ(m_view.thumbnailAtIndex(2)->state, Thumbnail::State::Unreadable);

  QHelpEvent help(QEvent::ToolTip, centre(0), m_view.viewport()->mapToGlobal(centre(0)));
  QApplication::sendEvent(m_view.viewport(), &help);
  for (const char* part : {"IMG_0001.JPG", "640 × 480 pixels", "/100APPLE"}) {
    EXPECT_TRUE(QToolTip::text().contains(part)) << part;
  }
  QToolTip::hideText();
  m_view.setDataSource(nullptr);
}

TEST_F(ImageBrowserViewTest, onlyWhatIsSeenAndNearIsRead) {
  showPhotos(10'000);
  ASSERT_TRUE(loadsAll());
  EXPECT_GT(m_photos.reads().count(), 10);
  EXPECT_LT(m_photos.reads().count(), 100);
  const int before = m_photos.reads().count();
  m_view.hide();
  m_view.verticalScrollBar()->setValue(0);
  ASSERT_TRUE(loadsAll());
  EXPECT_EQ(m_photos.reads().count(), before);
}

TEST_F(ImageBrowserViewTest, theFocusIsAlwaysSeen) {
  showPhotos(10);
  ASSERT_TRUE(loadsAll());
  const auto shown = [this] { return m_view.viewport()->grab().toImage(); };
  for (const bool isSelected : {false, true}) {
    if (isSelected) {
      click(4);
    }
    const QImage focused = shown();
    m_view.clearFocus();
    EXPECT_NE(shown(), focused) << isSelected;
  }
}

// As large as each other, in the middle of their cells, and rows apart by little.
TEST_F(ImageBrowserViewTest, photosOfBothFormatsSitWellInTheirCells) {
  test::TestPhotos mixed(8, [](int index) {
    return test::encoded(test::quadrants(index % 2 ? QSize(480, 640) : QSize(640, 480)));
  });
  m_view.setDataSource(&mixed);
  ASSERT_TRUE(loadsAll());
  const QImage shot = m_view.viewport()->grab().toImage();
  const QColor paper = shot.pixelColor(2, 2);
  const auto heightOf = [&](int index) {
    const QRect cell = m_view.itemFrameAtIndex(index);
    int first = cell.top();
    int last = cell.top() + cell.width() * 4 / 5 - 1;
    while (shot.pixelColor(centre(index).x(), first) == paper)
      ++first;
    while (shot.pixelColor(centre(index).x(), last) == paper)
      --last;
    EXPECT_NEAR(first - cell.top(), cell.top() + cell.width() * 4 / 5 - 1 - last, 2) << index;
    return last - first + 1;
  };
  EXPECT_LT(heightOf(3), 1.1 * heightOf(2));
  const int gap = m_view.itemFrameAtIndex(4).top() - m_view.itemFrameAtIndex(0).top() - heightOf(2);
  EXPECT_LT(gap, 60);
  m_view.setDataSource(nullptr);
}

TEST_F(ImageBrowserViewTest, previewStepsZoomsAndCloses) {
  showPhotos(10);
  click(4);
  key(Qt::Key_Space);
  PhotoPreview* preview = m_view.preview();
  EXPECT_EQ(preview->geometry(), m_view.rect());
  QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&m_view);
  QAccessibleInterface* picture = QAccessible::queryAccessibleInterface(preview);
  EXPECT_EQ(list->child(10), picture);
  EXPECT_EQ(picture->text(QAccessible::Name), "IMG_0005.JPG");
  EXPECT_EQ(picture->text(QAccessible::Description), "5 of 10");
  EXPECT_TRUE(picture->state().focused);

  const QList<QToolButton*> buttons = preview->findChildren<QToolButton*>();
  ASSERT_EQ(buttons.size(), 3);
  QTest::keyClick(preview, Qt::Key_Right);
  EXPECT_EQ(selected(), Indexes({5}));
  EXPECT_EQ(picture->text(QAccessible::Name), "IMG_0006.JPG");
  buttons[0]->click();
  QTest::keyClick(preview, Qt::Key_Left);
  EXPECT_EQ(selected(), Indexes({3}));
  buttons[1]->click();
  EXPECT_EQ(selected(), Indexes({4}));
  QTest::keyClick(preview, Qt::Key_End);
  EXPECT_FALSE(buttons[1]->isEnabled());

  EXPECT_TRUE(QTest::qWaitFor([&] { return preview->photo().state == Thumbnail::State::Ready; }));
  m_view.zoomIn();
  EXPECT_DOUBLE_EQ(preview->zoom(), 1.25);
  EXPECT_EQ(m_view.zoomValue(), 0.3F) << "the grid's own";

  QTest::keyClick(preview, Qt::Key_F11);
  EXPECT_TRUE(preview->isFullScreen());
  QTest::keyClick(preview, Qt::Key_F11);
  EXPECT_FALSE(preview->isWindow());
  EXPECT_EQ(preview->geometry(), m_view.rect());
  QTest::keyClick(preview, Qt::Key_Escape);
  EXPECT_FALSE(m_view.isPreviewOpen());
  EXPECT_EQ(selected(), Indexes({9}));
  EXPECT_TRUE(m_view.hasFocus());
  key(Qt::Key_Return);
  ASSERT_TRUE(m_view.isPreviewOpen());
  showPhotos(5);
  EXPECT_FALSE(m_view.isPreviewOpen());
}

TEST_F(ImageBrowserViewTest, screenReadersSeeAListOfNamedPhotos) {
  showPhotos(100'000);
  click(1);
  QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&m_view);
  EXPECT_EQ(list->childCount(), 100'000);
  QAccessibleInterface* photo = list->child(1);
  EXPECT_EQ(photo->text(QAccessible::Name), "IMG_0002.JPG");
  EXPECT_TRUE(photo->state().selected && photo->state().focused);
  EXPECT_FALSE(list->child(2)->state().selected);
  EXPECT_EQ(list->focusChild(), photo);
  EXPECT_EQ(list->indexOfChild(photo), 1);
  const QPoint at = m_view.viewport()->mapToGlobal(centre(2));
  EXPECT_EQ(list->childAt(at.x(), at.y()), list->child(2));
  EXPECT_EQ(list->child(100'000), nullptr);
  showPhotos(1);
  EXPECT_FALSE(photo->isValid());
}

// What the sanitizers are to see: everything that may happen while photos are being read.
TEST(ImageBrowserViewLife, endsAndChangesWithLoadsInFlight) {
  const QByteArray picture = test::encoded(test::quadrants({1'200, 900}));
  test::TestPhotos one(
      500, [picture](int) { return picture; }, "/one");
  test::TestPhotos two(
      300, [picture](int) { return picture; }, "/two");
  for (int round = 0; round < 4; ++round) {
    ImageBrowserView view;
    view.resize(600, 500);
    view.setDataSource(&one);
    view.show();
    one.reads().hold(true);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    QCoreApplication::processEvents();
    one.reads().waitForHeld(1);
    one.reads().hold(false);
    view.setZoomValue(0.9F);
    view.verticalScrollBar()->setValue(4'000);
    QCoreApplication::processEvents();
    view.setDataSource(&two);
    QCoreApplication::processEvents();
    view.setZoomValue(0.2F);
    view.setPreviewOpen(true);
    QCoreApplication::processEvents();
    if (round % 2 == 0) {
      view.setPreviewOpen(false);
      EXPECT_TRUE(QTest::qWaitFor([&] { return view.thumbnailAtIndex(0) != nullptr; }, 30'000));
    }
  }
  QCoreApplication::processEvents();
}

}  // namespace
}  // namespace snaplift
