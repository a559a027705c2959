#include <QApplication>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPainter>
#include <QTest>
#include <functional>
#include <vector>

#include "Gallery.h"
#include "ui/sourcelist/ORBSourceList.h"

namespace snaplift::gallery {
namespace {

struct Backup {
  QString title;
  std::int64_t badge = PXSourceListDataSource::notFound;
  bool processing = false;
  QColor badgeFill = {};
  bool rightSideIcon = false;
};

struct Device {
  QString name;
  std::vector<Backup> backups;
};

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
class Content : public ORBSourceListDataSource, public PXSourceListDelegate {
public:
  std::vector<Device> devices = {
      {"ANNA'S HANDSET",
       {{"October 12, 2011"}, {"August 3, 2011", 7}, {"June 21, 2011", 1284}, {"May 2, 2011"}}},
      {"TABLET",
       {{"October 9, 2011", PXSourceListDataSource::notFound, true},
        {"September 14, 2011", 42, false, QColor(200, 60, 60)}}},
      {"OLD MUSIC PLAYER WITH A RATHER LONG NAME",
       {{"A backup with a title that is far too long for a sidebar"},
        {"March 30, 2010", PXSourceListDataSource::notFound, false, {}, true}}}};
  bool alwaysExpanded = true;

  std::size_t sourceListNumberOfChildrenOfItem(PXSourceList&, OutlineItem item) override {
    const auto* device = item.as<Device>();
    return !item ? devices.size() : device ? device->backups.size() : 0;
  }
  OutlineItem sourceListChildOfItem(PXSourceList&, std::size_t index, OutlineItem item) override {
    return item ? OutlineItem(&item.as<Device>()->backups[index]) : OutlineItem(&devices[index]);
  }
  QVariant sourceListObjectValueForItem(PXSourceList&, OutlineItem item) override {
    const auto* device = item.as<Device>();
    return device ? device->name : item.as<Backup>()->title;
  }
  bool sourceListIsItemExpandable(PXSourceList&, OutlineItem item) override {
    return item.as<Device>() != nullptr;
  }
  std::optional<bool> sourceListItemHasBadge(PXSourceList&, OutlineItem item) override {
    const auto* backup = item.as<Backup>();
    return backup && backup->badge != notFound;
  }
  std::optional<std::int64_t> sourceListBadgeValueForItem(PXSourceList&,
                                                          OutlineItem item) override {
    return item.as<Backup>()->badge;
  }
  std::optional<QColor> sourceListBadgeBackgroundColorForItem(PXSourceList&,
                                                              OutlineItem item) override {
    return item.as<Backup>()->badgeFill;
  }
  std::optional<bool> sourceListItemHasIcon(PXSourceList&, OutlineItem item) override {
    return item.as<Backup>() != nullptr;
  }
  std::optional<QPixmap> sourceListIconForItem(PXSourceList&, OutlineItem) override {
    return handset();
  }
  std::optional<bool> sourceListItemHasRightSideIcon(PXSourceList&, OutlineItem item) override {
    const auto* backup = item.as<Backup>();
    return backup && (backup->processing || backup->rightSideIcon);
  }
  std::optional<bool> sourceListItemIsProcessing(PXSourceList&, OutlineItem item) override {
    const auto* backup = item.as<Backup>();
    return backup && backup->processing;
  }
  std::optional<QPixmap> sourceListRightSideIconForItem(PXSourceList&, OutlineItem) override {
    return cross(QColor(150, 150, 150));
  }
  std::optional<QPixmap> sourceListRightSideHoveringIconForItem(PXSourceList&,
                                                                OutlineItem) override {
    return cross(QColor(200, 60, 60));
  }
  std::optional<bool> sourceListIsGroupAlwaysExpanded(PXSourceList&, OutlineItem) override {
    return alwaysExpanded;
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
  collapsible.sidebar.expandItemExpandChildren(&collapsible.content.devices[0], false);
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
