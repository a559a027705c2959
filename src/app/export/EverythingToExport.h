#pragma once

#include <QObject>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "app/export/WindowExports.h"
#include "backups/DeviceModel.h"
#include "export/ExportLayout.h"
#include "foundation/NotificationCenter.h"

namespace snaplift {

// Collects the photos of many backups for one export. Backups that are not loaded yet are loaded
// one after the other, each as a click on it loads it; then a thread asks the backups for the
// photos, with their folders. Of encrypted backups only the names are taken.
//
// The user interface's thread. The backups outlive the object, whose end stops the work; a load
// that is under way goes on, as one that was clicked.
class EverythingToExport : public QObject {
  Q_OBJECT

public:
  explicit EverythingToExport(ExportLayout layout) : m_layout(layout) {}

  // All backups of a device. Before start().
  void add(DeviceModel& device);
  void start();

  std::size_t backups() const { return m_backups.size(); }
  std::size_t loaded() const { return m_loaded; }  // of them

signals:
  void progressed();

  // Once.
  void collected(const ExportReport& photos);

private:
  struct Backup {
    BackupModel* model;
    std::string name;     // device and backup, as they are called in the window
    std::string handset;  // see DeviceModel::titleOfHandset()
  };

  void loadNext();
  void collect(const std::stop_token& stop);

  const ExportLayout m_layout;
  std::vector<Backup> m_backups;
  std::size_t m_loaded = 0;
  std::optional<std::size_t> m_asked;  // the backup that was told to load
  NotificationCenter::Token m_finishedLoading;
  ExportReport m_photos;  // of the thread, until it says that it is done
  std::jthread m_collecting;
};

}  // namespace snaplift
