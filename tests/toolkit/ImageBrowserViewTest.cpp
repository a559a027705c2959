#include <QAccessible>
#include <QApplication>
#include <QHelpEvent>
#include <QNativeGestureEvent>
#include <QPointingDevice>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include "samples/browser/TestPhotos.h"
#include "samples/browser/TestPictures.h"
#include "toolkit/ImageBrowserView.h"
#include "toolkit/PhotoPreview.h"

namespace snaplift {
namespace {

using Indexes = std::vector<int>;

class ImageBrowserViewTest : public testing::Test, protected ImageBrowserViewDelegate {
protected:
  // At this size and the initial zoom the grid has four columns.
  ImageBrowserViewTest() {
    m_view.resize(700, 500);
    m_view.setDelegate(this);
    m_view.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&m_view));
    QApplication::setActiveWindow(&m_view);
    m_view.setFocus();
  }
  ~ImageBrowserViewTest() override {
    m_photos.reads().hold(false);
    m_view.setDataSource(nullptr);
  }

  void showPhotos(int count) {
    m_photos.setCount(count);
    m_view.setDataSource(&m_photos);
  }
  Indexes selected() const { return m_view.selectionIndexes().indexes(); }
  QPoint centre(int index) const { return m_view.itemFrameAtIndex(index).center(); }
  int photoInTheMiddle() const {
    const QPoint middle = m_view.viewport()->rect().center();
    int best = 0;
    for (int index = 0; index < m_view.itemCount(); ++index) {
      const bool nearer =
          (centre(index) - middle).manhattanLength() < (centre(best) - middle).manhattanLength();
      best = nearer ? index : best;
    }
    return best;
  }
  // Empty space left of a photo's cell.
  QPoint before(int index) const {
    return m_view.itemFrameAtIndex(index).topLeft() + QPoint(-5, 10);
  }

  void click(int index, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::mouseClick(m_view.viewport(), Qt::LeftButton, modifiers, centre(index));
  }
  void drag(QPoint from, QPoint to, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    press(from, modifiers);
    move(to, modifiers);
    QTest::mouseRelease(m_view.viewport(), Qt::LeftButton, modifiers, to);
  }
  void press(QPoint at, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::mousePress(m_view.viewport(), Qt::LeftButton, modifiers, at);
  }
  void move(QPoint to, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QMouseEvent event(QEvent::MouseMove, to, m_view.viewport()->mapToGlobal(to), Qt::NoButton,
                      Qt::LeftButton, modifiers);
    QApplication::sendEvent(m_view.viewport(), &event);
  }
  void key(int code, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(&m_view, static_cast<Qt::Key>(code), modifiers);
  }
  void pinch(double magnification, QPoint at) {
    QNativeGestureEvent event(Qt::ZoomNativeGesture, QPointingDevice::primaryPointingDevice(), 2,
                              at, at, m_view.viewport()->mapToGlobal(at), magnification, {});
    QApplication::sendEvent(m_view.viewport(), &event);
  }
  void turnWheel(int angle, QPoint at) {
    QWheelEvent event(at, m_view.viewport()->mapToGlobal(at), {}, {0, angle}, Qt::NoButton,
                      Qt::ControlModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(m_view.viewport(), &event);
  }
  testing::AssertionResult loadsAll() {
    return QTest::qWaitFor([this] { return !m_view.isLoadingThumbnails(); }, 30'000)
               ? testing::AssertionSuccess()
               : testing::AssertionFailure() << "thumbnails never end";
  }

  void imageBrowserCellWasDoubleClickedAtIndex(ImageBrowserView&, int index) override {
    m_doubleClicked.push_back(index);
  }

  test::TestPhotos m_photos{0};
  ImageBrowserView m_view;
  Indexes m_doubleClicked;
};

TEST_F(ImageBrowserViewTest, clicksSelectAsTheModifiersSay) {
  showPhotos(40);
  ASSERT_EQ(m_view.itemFrameAtIndex(0).top(), m_view.itemFrameAtIndex(3).top());
  ASSERT_LT(m_view.itemFrameAtIndex(0).top(), m_view.itemFrameAtIndex(4).top());
  QSignalSpy changes(&m_view, &ImageBrowserView::selectionIndexesChanged);
  click(5);
  EXPECT_EQ(selected(), Indexes({5}));
  click(2, Qt::ControlModifier);
  EXPECT_EQ(selected(), Indexes({2, 5}));
  click(5, Qt::ControlModifier);
  EXPECT_EQ(selected(), Indexes({2}));
  click(2);
  EXPECT_EQ(changes.count(), 3);  // the last click changed nothing
  click(6, Qt::ShiftModifier);
  EXPECT_EQ(selected(), Indexes({2, 3, 4, 5, 6}));
  click(1, Qt::ShiftModifier);
  EXPECT_EQ(selected(), Indexes({1, 2}));
  click(7, Qt::ControlModifier);
  click(8, Qt::ShiftModifier | Qt::ControlModifier);
  EXPECT_EQ(selected(), Indexes({1, 2, 7, 8}));
  click(7);
  EXPECT_EQ(selected(), Indexes({7}));
  QTest::mouseClick(m_view.viewport(), Qt::LeftButton, Qt::ControlModifier, before(1));
  EXPECT_EQ(selected(), Indexes({7}));
  QTest::mouseClick(m_view.viewport(), Qt::LeftButton, {}, before(1));
  EXPECT_EQ(selected(), Indexes());
  click(3);
  click(4, Qt::ControlModifier);
  QTest::mouseClick(m_view.viewport(), Qt::RightButton, {}, centre(4));
  EXPECT_EQ(selected(), Indexes({3, 4}));
  QTest::mouseClick(m_view.viewport(), Qt::RightButton, {}, centre(6));
  EXPECT_EQ(selected(), Indexes({6}));
}

TEST_F(ImageBrowserViewTest, pressOnASelectedPhotoKeepsTheSelectionUntilTheRelease) {
  showPhotos(40);
  for (const auto modifiers :
       {Qt::KeyboardModifiers(Qt::ControlModifier), Qt::KeyboardModifiers()}) {
    m_view.deselectAll();
    click(1, Qt::ControlModifier);
    click(2, Qt::ControlModifier);
    press(centre(2), modifiers);
    EXPECT_EQ(selected(), Indexes({1, 2}));
    QTest::mouseRelease(m_view.viewport(), Qt::LeftButton, modifiers, centre(2));
    EXPECT_EQ(selected(), modifiers == Qt::NoModifier ? Indexes({2}) : Indexes({1}));
  }
  // A gesture that moved far is no click.
  m_view.selectAll();
  drag(centre(2), centre(7));
  EXPECT_EQ(selected().size(), 40U);
}

TEST_F(ImageBrowserViewTest, indexOfItemAtPointKnowsTheSpaceBetween) {
  showPhotos(6);
  EXPECT_EQ(m_view.indexOfItemAtPoint(centre(5)), 5);
  EXPECT_EQ(m_view.indexOfItemAtPoint(before(5)), std::nullopt);
  EXPECT_EQ(m_view.indexOfItemAtPoint({-3, -3}), std::nullopt);
  showPhotos(0);
  EXPECT_EQ(m_view.indexOfItemAtPoint({50, 50}), std::nullopt);
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
  showPhotos(42);  // the last row has two
  struct Step {
    int key;
    Qt::KeyboardModifiers modifiers;
    int focus;
    Indexes selected;
  };
  const auto none = Qt::NoModifier;
  const auto shift = Qt::ShiftModifier;
  const auto control = Qt::ControlModifier;
  const std::vector<Step> steps{
      {Qt::Key_Right, none, 0, {0}},
      {Qt::Key_Left, none, 0, {0}},
      {Qt::Key_Right, none, 1, {1}},
      {Qt::Key_Down, none, 5, {5}},
      {Qt::Key_Up, none, 1, {1}},
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
      {Qt::Key_PageDown, none, 8, {8}},
      {Qt::Key_PageUp, none, 0, {0}},
  };
  for (std::size_t i = 0; i < steps.size(); ++i) {
    key(steps[i].key, steps[i].modifiers);
    EXPECT_EQ(m_view.focusedIndex(), steps[i].focus) << "step " << i;
    EXPECT_EQ(selected(), steps[i].selected) << "step " << i;
    EXPECT_EQ(m_view.currentIndex().row(), steps[i].focus) << "step " << i;
  }
  key(Qt::Key_End);
  EXPECT_TRUE(m_view.viewport()->rect().contains(m_view.itemFrameAtIndex(41)));
  key(Qt::Key_A, control);
  EXPECT_EQ(selected().size(), 42U);
  m_view.invertSelection();
  EXPECT_EQ(selected(), Indexes());
}

TEST_F(ImageBrowserViewTest, keysOnNoPhotosDoNothing) {
  for (const int code : {Qt::Key_Down, Qt::Key_End, Qt::Key_Space, Qt::Key_Escape, Qt::Key_X}) {
    key(code);
    key(code, Qt::ControlModifier);
    key(code, Qt::ShiftModifier);
  }
  key(Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(selected(), Indexes());
  EXPECT_EQ(m_view.focusedIndex(), -1);
}

TEST_F(ImageBrowserViewTest, typingJumpsToANameOrNumber) {
  showPhotos(2'000);
  QTest::keyClicks(&m_view, "1234");
  EXPECT_EQ(m_view.focusedIndex(), 1'233);
  EXPECT_TRUE(m_view.viewport()->rect().contains(m_view.itemFrameAtIndex(1'233)));
  key(Qt::Key_Home);  // another key begins a new text
  QTest::keyClicks(&m_view, "img_0042");
  EXPECT_EQ(m_view.focusedIndex(), 41);
  EXPECT_EQ(selected(), Indexes({41}));
}

TEST_F(ImageBrowserViewTest, zoomKeepsThePhotoUnderThePointer) {
  showPhotos(1'000);
  m_view.verticalScrollBar()->setValue(9'000);
  const int index = photoInTheMiddle();
  const QPoint point = centre(index);
  const auto rowHolds = [&] {
    const QRect frame = m_view.itemFrameAtIndex(index);
    return frame.top() - 20 <= point.y() && point.y() <= frame.bottom() + 20;
  };
  QSignalSpy zooms(&m_view, &ImageBrowserView::zoomValueChanged);
  turnWheel(120, point);
  EXPECT_EQ(m_view.zoomValue(), static_cast<float>(double{0.3F} * 1.25));
  EXPECT_TRUE(rowHolds());
  for (int i = 0; i < 20; ++i) {
    turnWheel(240, point);
  }
  EXPECT_EQ(m_view.zoomValue(), 1.0F);
  EXPECT_TRUE(rowHolds());
  for (int i = 0; i < 40; ++i) {
    turnWheel(-120, point);
  }
  EXPECT_EQ(m_view.zoomValue(), 0.1F);
  EXPECT_EQ(zooms.last().front().toFloat(), 0.1F);

  pinch(0.5, point);
  EXPECT_EQ(m_view.zoomValue(), static_cast<float>(double{0.1F} * 1.5));
  key(Qt::Key_0, Qt::ControlModifier);
  EXPECT_EQ(m_view.zoomValue(), 0.3F);
  key(Qt::Key_Plus, Qt::ControlModifier);
  EXPECT_GT(m_view.zoomValue(), 0.3F);
  key(Qt::Key_Minus, Qt::ControlModifier);
  EXPECT_NEAR(m_view.zoomValue(), 0.3F, 1e-6);
}

TEST_F(ImageBrowserViewTest, startsAtItsTopAndStaysThere) {
  showPhotos(300);
  m_view.verticalScrollBar()->setValue(2'000);
  showPhotos(400);
  EXPECT_EQ(m_view.verticalScrollBar()->value(), 0);
  m_view.setZoomValue(0.8F);
  m_view.resize(500, 300);
  m_view.setZoomValue(0.3F);
  EXPECT_EQ(m_view.verticalScrollBar()->value(), 0);
  m_view.verticalScrollBar()->setValue(m_view.verticalScrollBar()->maximum());
  EXPECT_EQ(m_view.itemFrameAtIndex(399).bottom() < m_view.viewport()->height(), true);
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

TEST_F(ImageBrowserViewTest, doubleClickTellsTheDelegateAndZoomsAboutThatPhoto) {
  showPhotos(200);
  m_view.verticalScrollBar()->setValue(700);
  const int index = photoInTheMiddle();
  QTest::mouseDClick(m_view.viewport(), Qt::LeftButton, {}, centre(index));
  EXPECT_EQ(m_doubleClicked, Indexes({index}));
  m_view.setZoomValue(1.0F);
  EXPECT_TRUE(m_view.itemFrameAtIndex(index).intersects(m_view.viewport()->rect()));
  QTest::mouseDClick(m_view.viewport(), Qt::LeftButton, {}, {2, 2});
  EXPECT_EQ(m_doubleClicked.size(), 1U);
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
  EXPECT_EQ(shot.pixelColor(frame.left() + 20, frame.top() + 60).red() > 200, true);
  EXPECT_LT(shot.pixelColor(frame.left() + 20, frame.top() + 60).green(), 60);
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
  m_view.setThumbnailsSuspended(true);
  m_view.verticalScrollBar()->setValue(100'000);
  m_view.setZoomValue(0.2F);
  ASSERT_TRUE(loadsAll());
  EXPECT_EQ(m_photos.reads().count(), before);
  m_view.setThumbnailsSuspended(false);
  ASSERT_TRUE(loadsAll());
  EXPECT_GT(m_photos.reads().count(), before);
  const int after = m_photos.reads().count();
  m_view.hide();
  m_view.verticalScrollBar()->setValue(0);
  ASSERT_TRUE(loadsAll());
  EXPECT_EQ(m_photos.reads().count(), after);
}

TEST_F(ImageBrowserViewTest, previewStepsAndCloses) {
  showPhotos(10);
  click(4);
  key(Qt::Key_Space);
  ASSERT_TRUE(m_view.isPreviewOpen());
  auto* preview = m_view.findChild<PhotoPreview*>();
  EXPECT_EQ(preview->geometry(), m_view.rect());
  EXPECT_TRUE(QTest::qWaitFor([&] { return preview->photo().state == Thumbnail::State::Ready; }));
  QTest::keyClick(preview, Qt::Key_Right);
  EXPECT_EQ(selected(), Indexes({5}));
  EXPECT_EQ(preview->accessibleName(), "IMG_0006.JPG");
  QTest::keyClick(preview, Qt::Key_Left);
  QTest::keyClick(preview, Qt::Key_Left);
  EXPECT_EQ(selected(), Indexes({3}));
  QTest::keyClick(preview, Qt::Key_Escape);
  EXPECT_FALSE(m_view.isPreviewOpen());
  EXPECT_EQ(selected(), Indexes({3}));
  EXPECT_TRUE(m_view.hasFocus());
  key(Qt::Key_Space);
  showPhotos(5);
  EXPECT_FALSE(m_view.isPreviewOpen());
}

TEST_F(ImageBrowserViewTest, screenReadersSeeAListOfNamedPhotos) {
  showPhotos(100'000);
  click(1);
  QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&m_view);
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->role(), QAccessible::List);
  EXPECT_EQ(list->childCount(), 100'000);
  QAccessibleInterface* photo = list->child(1);
  ASSERT_NE(photo, nullptr);
  EXPECT_EQ(photo->text(QAccessible::Name), "IMG_0002.JPG");
  EXPECT_EQ(photo->role(), QAccessible::ListItem);
  EXPECT_TRUE(photo->state().selected);
  EXPECT_TRUE(photo->state().focused);
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
