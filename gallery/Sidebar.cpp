#include <QApplication>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPainter>
#include <QTest>
#include <functional>

#include "Gallery.h"
#include "support/TestEntries.h"
#include "views/sourcelist/ORBSourceList.h"

namespace snaplift::gallery {
namespace {

QPixmap drawnPicture(const std::function<void(QPainter&)>& draw) {
  const double scale = qApp->devicePixelRatio();
  QPixmap picture(QSize(16, 16) * scale);
  picture.setDevicePixelRatio(scale);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  draw(painter);
  return picture;
}

// A handset, and a cross in a circle.
QPixmap handset() {
  return drawnPicture([](QPainter& painter) {
    painter.setPen(QPen(QColor(90, 100, 115), 1));
    painter.setBrush(QColor(225, 230, 238));
    painter.drawRoundedRect(QRectF(3.5, 0.5, 9, 15), 2, 2);
    painter.fillRect(QRectF(5, 3, 6, 9), QColor(110, 150, 205));
  });
}

QPixmap cross(const QColor& color) {
  return drawnPicture([&](QPainter& painter) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(QRectF(2, 2, 12, 12));
    painter.setPen(QPen(Qt::white, 1.5));
    painter.drawLine(QPointF(6, 6), QPointF(10, 10));
    painter.drawLine(QPointF(10, 6), QPointF(6, 10));
  });
}

// Devices and backups as a person with two handsets has them.
class Content : public test::FullSource, public PXSourceListDelegate {
public:
  bool alwaysExpanded = true;

  Content() {
    root.children = {
        {"ANNA'S HANDSET",
         {{"October 12, 2011"}, {"August 3, 2011"}, {"June 21, 2011"}, {"May 2, 2011"}}},
        {"TABLET", {{"October 9, 2011"}, {"September 14, 2011"}}},
        {"OLD MUSIC PLAYER WITH A RATHER LONG NAME",
         {{"A backup with a title that is far too long for a sidebar"}, {"March 30, 2010"}}}};
    const QPixmap icon = handset();
    for (test::Entry& device : root.children) {
      for (test::Entry& backup : device.children) {
        backup.icon = icon;
      }
    }
    backup(0, 1).badge = 7;
    backup(0, 2).badge = 1284;
    backup(1, 0).processing = true;
    backup(1, 1).badge = 42;
    backup(1, 1).badgeFill = QColor(200, 60, 60);
    backup(2, 1).rightSideIcon = cross(QColor(150, 150, 150));
    backup(2, 1).hoveringIcon = cross(QColor(200, 60, 60));
  }

  std::optional<bool> sourceListIsGroupAlwaysExpanded(PXSourceList&, OutlineItem) override {
    return alwaysExpanded;
  }

private:
  test::Entry& backup(std::size_t device, std::size_t index) {
    return root.children[device].children[index];
  }
};

// A window with a sidebar and something else that may have the keyboard.
class Window : public QWidget {
public:
  Content content;
  ORBSourceList sidebar;
  QLineEdit other;

  explicit Window(bool alwaysExpanded = true) {
    content.alwaysExpanded = alwaysExpanded;
    other.setFixedWidth(60);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(&sidebar);
    layout->addWidget(&other, 0, Qt::AlignTop);
    sidebar.setDelegate(&content);
    sidebar.setDataSource(&content);
    resize(300, 320);
  }
  void showActive() {
    show();
    activateWindow();
    (void)QTest::qWaitForWindowActive(this);
    sidebar.setFocus();
  }
};

void savePalette(const QString& folder, const QString& name, const QPalette& palette) {
  QApplication::setPalette(palette);
  Window window;
  window.showActive();
  const auto shot = [&](const char* state) {
    QCoreApplication::processEvents();
    save(window, folder, QStringLiteral("sidebar-%1-%2").arg(name, state));
  };
  shot("none-selected");
  window.sidebar.selectRowIndexesByExtendingSelection({2}, false);
  shot("focused");
  window.other.setFocus();
  shot("unfocused");
  window.sidebar.setFocus();
  window.sidebar.selectRowIndexesByExtendingSelection({6}, false);
  shot("loading");
  QTest::keyClick(&window.sidebar, Qt::Key_Left);
  shot("group-focused");
  {
    QWidget another;
    another.show();
    another.activateWindow();
    (void)QTest::qWaitForWindowActive(&another);
  }
  (void)QTest::qWaitFor([] { return !QApplication::activeWindow(); });
  shot("inactive-loading");
  window.sidebar.selectRowIndexesByExtendingSelection({2}, false);
  shot("inactive");
}

}  // namespace

void paintSidebar(const QString& folder) {
  savePalette(folder, "light", lightPalette());
  savePalette(folder, "dark", darkPalette());

  QApplication::setPalette(lightPalette());
  Window collapsible(false);
  collapsible.sidebar.expandItemExpandChildren(&collapsible.content.root.children[0], false);
  collapsible.sidebar.selectRowIndexesByExtendingSelection({1}, false);
  collapsible.showActive();
  save(collapsible, folder, "sidebar-collapsible");

  Window mirrored;
  mirrored.setLayoutDirection(Qt::RightToLeft);
  mirrored.sidebar.selectRowIndexesByExtendingSelection({2}, false);
  mirrored.showActive();
  save(mirrored, folder, "sidebar-right-to-left");

  Window mirroredCollapsible(false);
  mirroredCollapsible.setLayoutDirection(Qt::RightToLeft);
  mirroredCollapsible.showActive();
  save(mirroredCollapsible, folder, "sidebar-right-to-left-collapsible");

  Window hovered;
  hovered.showActive();
  QCoreApplication::processEvents();  // an icon can be pointed at once it has been drawn
  const QRectF row = hovered.sidebar.rectOfRow(10);
  QTest::mouseMove(hovered.sidebar.viewport(),
                   QPoint(int(row.right()) - 17, int(row.center().y())));
  QCoreApplication::processEvents();
  save(hovered, folder, "sidebar-hovered");
}

}  // namespace snaplift::gallery
