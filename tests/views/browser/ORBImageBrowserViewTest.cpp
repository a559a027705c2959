#include <QApplication>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPointingDevice>
#include <QTest>

#include <gtest/gtest.h>

#include "support/photos/TestPhotos.h"
#include "views/browser/ORBImageBrowserView.h"

namespace snaplift {
namespace {

using Names = std::vector<std::string>;

// Records the drags that it begins and lets a test drop them.
class DraggedView final : public ORBImageBrowserView {
public:
  struct Drag {
    QStringList types;
    QRect rect;
    PromisedFilesSource* source;
    bool slideBack;
    QPoint pointer;
  };

  std::vector<Drag> drags;
  std::function<void()> duringDrag = [] {};

protected:
  void dragPromisedFilesOfTypesFromRectSourceSlideBackEvent(const QStringList& types,
                                                            const QRect& rect,
                                                            PromisedFilesSource& source,
                                                            bool slideBack,
                                                            QMouseEvent* event) override {
    drags.push_back({types, rect, &source, slideBack, event->position().toPoint()});
    duringDrag();
  }
};

class ORBImageBrowserViewTest : public testing::Test, protected ORBImageBrowserViewDelegate {
protected:
  ORBImageBrowserViewTest() {
    m_view.resize(700, 500);
    m_view.setDelegate(this);
    m_view.setDataSource(&m_photos);
    m_view.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&m_view));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !m_view.isLoadingThumbnails(); }, 30'000));
  }
  ~ORBImageBrowserViewTest() override { m_view.setDataSource(nullptr); }

  std::optional<Names> imageBrowserExportItemsToDestination(
      ORBImageBrowserView&, const std::vector<ImageBrowserItemPointer>& items,
      const std::string& destination) override {
    m_exports.push_back({destination, titles(items)});
    return titles(items);
  }
  std::shared_ptr<PromisedFileList> imageBrowserFilesOfItems(
      ORBImageBrowserView&, const std::vector<ImageBrowserItemPointer>& items) override {
    m_listed = titles(items);
    return nullptr;
  }
  double maxZoom() const override { return m_maxZoom; }

  static Names titles(const std::vector<ImageBrowserItemPointer>& items) {
    Names names;
    for (const auto& item : items) {
      names.push_back(item->imageTitle());
    }
    return names;
  }
  QPoint centre(int index) const { return m_view.itemFrameAtIndex(index).center(); }
  void press(QPoint at, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::mousePress(m_view.viewport(), Qt::LeftButton, modifiers, at);
  }
  void release(QPoint at) { QTest::mouseRelease(m_view.viewport(), Qt::LeftButton, {}, at); }
  void move(QPoint to) {
    QMouseEvent event(QEvent::MouseMove, to, m_view.viewport()->mapToGlobal(to), Qt::NoButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(m_view.viewport(), &event);
  }
  float zoomAfterPinch(float zoom, double magnification) {
    m_view.setZoomValue(zoom);
    const QPoint at = centre(0);
    QNativeGestureEvent event(Qt::ZoomNativeGesture, QPointingDevice::primaryPointingDevice(), 2,
                              at, at, m_view.viewport()->mapToGlobal(at), magnification, {});
    QApplication::sendEvent(m_view.viewport(), &event);
    return m_view.zoomValue();
  }

  using Export = std::pair<std::string, Names>;  // the folder, the photos
  test::TestPhotos m_photos{50};
  DraggedView m_view;
  std::vector<Export> m_exports;
  Names m_listed;
  double m_maxZoom = 1.0;
};

TEST_F(ORBImageBrowserViewTest, aDragFromAPhotoPromisesTheSelectionInGridOrder) {
  for (const int index : {7, 2, 5}) {
    QTest::mouseClick(m_view.viewport(), Qt::LeftButton, Qt::ControlModifier, centre(index));
  }
  const int reads = m_photos.reads().count();
  press(centre(5));
  EXPECT_FALSE(m_view.dragSelectInProgress());
  move(centre(5) + QPoint(1, 1));
  EXPECT_TRUE(m_view.drags.empty()) << "a trembling hand drags nothing";
  const QPoint pointer = centre(5) + QPoint(30, 10);
  move(pointer);
  ASSERT_EQ(m_view.drags.size(), 1U);
  const DraggedView::Drag& drag = m_view.drags.front();
  EXPECT_EQ(drag.types, QStringList("jpg"));
  EXPECT_EQ(drag.rect, QRect(pointer - QPoint(16, 16), QSize(64, 64)));
  EXPECT_TRUE(drag.slideBack);
  EXPECT_TRUE(m_exports.empty());
  EXPECT_EQ(m_photos.reads().count(), reads);

  const Names names{"IMG_0003.JPG", "IMG_0006.JPG", "IMG_0008.JPG"};
  EXPECT_EQ(drag.source->namesOfPromisedFilesDroppedAtDestination("/out"), names);
  EXPECT_EQ(m_exports, std::vector<Export>({{"/out", names}}));

  EXPECT_EQ(drag.source->firstPromisedName(), names[0]);
  EXPECT_EQ(drag.source->promisedFiles(), nullptr);
  EXPECT_EQ(m_listed, names);

  move(pointer + QPoint(50, 50));
  EXPECT_EQ(m_view.drags.size(), 1U) << "one gesture, one drag";
  release(pointer);
  EXPECT_EQ(m_view.selectionIndexes().count(), 3);
}

TEST_F(ORBImageBrowserViewTest, aDragFromAnUnselectedPhotoSelectsItAndReplacesTheLastOnes) {
  for (const int index : {4, 6}) {
    press(centre(index));
    move(centre(index) + QPoint(40, 0));
    ASSERT_EQ(m_view.itemsInCurrentPromiseDragOperation().size(), 1U);
    EXPECT_EQ(m_view.itemsInCurrentPromiseDragOperation()[0]->imageUID(),
              m_view.itemAtIndex(index)->imageUID());
    release(centre(index));
  }
}

TEST_F(ORBImageBrowserViewTest, nothingIsReadOrDecodedDuringADrag) {
  const int reads = m_photos.reads().count();
  m_view.duringDrag = [&] {
    m_view.setZoomValue(0.1F);
    QCoreApplication::processEvents();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !m_view.isLoadingThumbnails(); }));
    EXPECT_EQ(m_photos.reads().count(), reads);
  };
  press(centre(0));
  move(centre(0) + QPoint(40, 0));
  ASSERT_EQ(m_view.drags.size(), 1U);
  EXPECT_TRUE(QTest::qWaitFor([&] { return m_photos.reads().count() > reads; }));
}

TEST_F(ORBImageBrowserViewTest, withoutAnExporterADropGivesNoNames) {
  press(centre(0));
  move(centre(0) + QPoint(40, 0));
  m_view.setDelegate(nullptr);
  EXPECT_EQ(m_view.namesOfPromisedFilesDroppedAtDestination("/out"), Names());
  EXPECT_EQ(m_view.promisedFiles(), nullptr);
}

TEST_F(ORBImageBrowserViewTest, pinchStepsToTheFloat) {
  struct Step {
    float zoom;
    double magnification;
    double maxZoom;
    float after;
  };
  const auto sum = [](float zoom, double magnification) {
    return static_cast<float>(double{zoom} + magnification);
  };
  for (const Step& step : {Step{0.9F, 0.25, 1.0, sum(0.9F, 0.25)},  // the step is not limited
                           Step{1.15F, 0.25, 1.0, 1.15F}, Step{1.0F, 0.01, 1.0, 1.0F},
                           Step{1.15F, 0.25, 2.0, sum(1.15F, 0.25)},
                           Step{0.3F, -0.1, 1.0, sum(0.3F, -0.1)}, Step{0.15F, -0.1, 1.0, 0.1F},
                           Step{0.1F, -0.5, 1.0, 0.1F}, Step{1.15F, -0.05, 1.0, sum(1.15F, -0.05)},
                           Step{0.05F, 0.01, 1.0, sum(0.05F, 0.01)}, Step{0.5F, 0.0, 1.0, 0.5F},
                           Step{0.5F, std::numeric_limits<double>::quiet_NaN(), 1.0, 0.5F}}) {
    m_maxZoom = step.maxZoom;
    EXPECT_EQ(zoomAfterPinch(step.zoom, step.magnification), step.after)
        << step.zoom << " " << step.magnification;
  }
}

}  // namespace
}  // namespace snaplift
