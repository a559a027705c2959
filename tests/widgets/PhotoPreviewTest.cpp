#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <algorithm>

#include <gtest/gtest.h>

#include "support/photos/TestPhotos.h"
#include "support/photos/TestPictures.h"
#include "widgets/photogrid/ImageBrowserView.h"
#include "widgets/photogrid/PhotoPreview.h"

namespace snaplift {
namespace {

using State = Thumbnail::State;

constexpr QSize photoSize(3000, 2000);

class PhotoPreviewTest : public testing::Test {
protected:
  PhotoPreviewTest() {
    m_view.resize(600, 500);
    m_view.setDataSource(&m_photos);
    m_view.show();
    m_view.stepTo(3);
    m_view.setPreviewOpen(true);
    m_preview = m_view.findChild<PhotoPreview*>();
  }

  bool loadsAll() {
    return QTest::qWaitFor([this] { return !m_preview->isLoading(); }, 30'000);
  }

  test::TestPhotos m_photos{
      10, [picture = test::encoded(test::quadrants(photoSize))](int) { return picture; }};
  ImageBrowserView m_view;
  PhotoPreview* m_preview = nullptr;
};

TEST_F(PhotoPreviewTest, hasTheNeighboursBeforeTheyAreAskedFor) {
  ASSERT_TRUE(loadsAll());
  EXPECT_EQ(m_preview->photo().state, State::Ready);
  for (const Qt::Key key :
       {Qt::Key_Right, Qt::Key_Right, Qt::Key_Left, Qt::Key_Left, Qt::Key_Left}) {
    QTest::keyClick(m_preview, key);
    EXPECT_EQ(m_preview->photo().state, State::Ready);
    ASSERT_TRUE(loadsAll());
  }
}

TEST_F(PhotoPreviewTest, buttonsGoToTheNeighboursUntilThereIsNone) {
  const auto button = [this](const char* name) {
    const auto all = m_preview->findChildren<QToolButton*>();
    return *std::ranges::find(all, QString(name), &QToolButton::accessibleName);
  };
  const auto place = [this] { return m_preview->accessibleDescription(); };
  ASSERT_EQ(place(), "4 of 10");
  button("Next Photo")->click();
  EXPECT_EQ(place(), "5 of 10");
  QTest::keyClick(m_preview, Qt::Key_End);
  EXPECT_FALSE(button("Next Photo")->isEnabled());
  button("Previous Photo")->click();
  EXPECT_EQ(place(), "9 of 10");
  QTest::keyClick(m_preview, Qt::Key_Home);
  EXPECT_FALSE(button("Previous Photo")->isEnabled());
}

TEST_F(PhotoPreviewTest, offersTheFilmOfALivePhoto) {
  const auto* player = m_preview->findChild<QPushButton*>();
  for (const bool isLive : {false, false, true, false}) {  // of every third photo
    EXPECT_EQ(player->isVisible(), isLive);
    QTest::keyClick(m_preview, Qt::Key_Right);
  }
}

TEST_F(PhotoPreviewTest, zoomsIntoTheFullPicture) {
  ASSERT_TRUE(loadsAll());
  EXPECT_LT(m_preview->photo().picture.width(), 1024);
  const QRectF fitted = m_preview->photoRect();
  const QPointF corner = fitted.bottomRight();
  m_preview->setZoom(3, corner);
  ASSERT_TRUE(loadsAll());
  EXPECT_EQ(m_preview->photo().picture.size(), photoSize);
  EXPECT_NEAR(m_preview->photoRect().width(), 3 * fitted.width(), 1);
  EXPECT_NEAR(m_preview->photoRect().right(), corner.x(), 1);

  m_preview->setZoom(1e9, corner);
  EXPECT_NEAR(m_preview->photoRect().width(), 2 * photoSize.width(), 1);
  QTest::keyClick(m_preview, Qt::Key_0);
  EXPECT_EQ(m_preview->photoRect(), fitted);
  QTest::keyClick(m_preview, Qt::Key_Minus);
  EXPECT_EQ(m_preview->photoRect(), fitted);
  QTest::keyClick(m_preview, Qt::Key_Plus);
  EXPECT_GT(m_preview->zoom(), 1);
  QTest::keyClick(m_preview, Qt::Key_Right);
  EXPECT_EQ(m_preview->zoom(), 1);
}

}  // namespace
}  // namespace snaplift
