#pragma once

#include <QApplication>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include "support/photos/TestPhotos.h"
#include "widgets/photogrid/ImageBrowserView.h"

namespace snaplift {

using Indexes = std::vector<int>;

// A shown browser with the keyboard.
class ImageBrowserViewTest : public testing::Test {
protected:
  // At this size and the initial zoom the grid has four columns.
  ImageBrowserViewTest() {
    m_view.resize(700, 500);
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
  void turnWheel(int angle, QPoint at) {
    QWheelEvent event(at, m_view.viewport()->mapToGlobal(at), {}, {0, angle}, Qt::NoButton,
                      Qt::ControlModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(m_view.viewport(), &event);
  }
  bool loadsAll() {
    return QTest::qWaitFor([this] { return !m_view.isLoadingThumbnails(); }, 30'000);
  }

  test::TestPhotos m_photos{0};
  ImageBrowserView m_view;
};

}  // namespace snaplift
