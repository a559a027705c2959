#include <QCoreApplication>
#include <QPixmap>
#include <QScrollBar>

#include "bench/Ratio.h"
#include "bench/ViewMain.h"
#include "support/TestEntries.h"
#include "views/sourcelist/ORBSourceList.h"

// What a sidebar of 1,000 devices with ten backups each costs, against one of 10 devices.
namespace snaplift::bench {
namespace {

constexpr int few = 10;
constexpr int many = 1'000;
constexpr int backupsOfDevice = 10;
constexpr double growthBar = 2;

class Backups : public test::FullSource, public PXSourceListDelegate {
public:
  explicit Backups(int devices) {
    QPixmap icon(16, 16);
    icon.fill(Qt::gray);
    for (int i = 0; i < devices; ++i) {
      test::Entry& device = root.children.emplace_back();
      device.title = QString("Device %1").arg(i);
      for (int k = 0; k < backupsOfDevice; ++k) {
        test::Entry& backup = device.children.emplace_back();
        backup.title = QString("October %1, 2011").arg(k + 1);
        backup.icon = icon;
      }
    }
  }
  OutlineItem backup(std::size_t device, std::size_t index) {
    return &root.children.at(device).children.at(index);
  }

  std::optional<bool> sourceListIsGroupAlwaysExpanded(PXSourceList&, OutlineItem) override {
    return true;
  }
};

void fill(ORBSourceList& list, Backups& backups) {
  list.resize(250, 700);
  list.setDelegate(&backups);
  list.setDataSource(&backups);
  list.reloadData();
}

class Sidebar {
public:
  explicit Sidebar(int devices) : m_devices(devices), m_backups(devices) {
    fill(m_list, m_backups);
    m_list.show();
    QCoreApplication::processEvents();
  }

  // A list of its own, from the making to what the user first sees.
  bool firstPaint() {
    ORBSourceList list;
    fill(list, m_backups);
    return !list.grab().isNull() && list.numberOfRows() == m_devices * (1 + backupsOfDevice);
  }
  bool scrollSteps() {
    QScrollBar* bar = m_list.verticalScrollBar();
    const int start = bar->maximum() / 3;
    for (int step = 0; step < 20; ++step) {
      bar->setValue(start + 10 * step);
      QCoreApplication::processEvents();
    }
    return bar->value() == start + 190;
  }
  bool reloadItems() {
    const auto device = static_cast<std::size_t>(m_devices - 1);
    m_list.scrollRowToVisible(m_list.numberOfRows() - 1);
    for (int i = 0; i < 50; ++i) {
      m_list.reloadItem(m_backups.backup(device, static_cast<std::size_t>(i % backupsOfDevice)));
      QCoreApplication::processEvents();
    }
    return m_list.rowForItem(m_backups.backup(device, 9)) == m_list.numberOfRows() - 1;
  }

private:
  int m_devices;
  Backups m_backups;
  ORBSourceList m_list;
};

}  // namespace

int runViewBench(int argc, char** argv) {
  Sidebar small(few);
  Sidebar large(many);
  Ratios ratios;
  const auto compare = [&](const char* name, double bar, bool (Sidebar::*job)()) {
    ratios.group(name, PageCache::Hot)
        .floor("10 devices", [&small, job] { return (small.*job)(); })
        .subject("1,000 devices", bar, [&large, job] { return (large.*job)(); });
  };
  compare("sidebar: first paint", many / few, &Sidebar::firstPaint);
  compare("sidebar: scroll steps", growthBar, &Sidebar::scrollSteps);
  compare("sidebar: reloadItem", growthBar, &Sidebar::reloadItems);
  return ratios.run(argc, argv);
}

}  // namespace snaplift::bench
