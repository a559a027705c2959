// The disks that backups lie on: those that are connected when there is no backup, and those that
// go while their backups are open.

#include <QMessageBox>
#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <chrono>

#include "app/SLAppDelegate.h"
#include "app/StatusText.h"
#include "foundation/Log.h"
#include "foundation/files/FolderTree.h"
#include "foundation/files/Path.h"
#include "ui_MainWindow.h"
#include "widgets/desktop/Alert.h"

namespace snaplift {
namespace {

constexpr auto longLoad = std::chrono::seconds(3);

struct DiskWithBackups {
  std::string disk;
  std::vector<std::string> roots;
  std::size_t backups = 0;
};

std::vector<DiskWithBackups> connectedDisksWithBackups(const std::stop_token& stop) {
  std::vector<DiskWithBackups> found;
  for (const std::string& disk : connectedDisks()) {
    const FolderTree tree(disk);
    DiskWithBackups with{disk, {}, 0};
    for (const std::string& root :
         tree.error() ? std::vector<std::string>() : knownBackupRoots(tree)) {
      const std::size_t before = with.backups;
      tree.visitEntries(root, [&](std::string_view name, bool isFolder) {
        with.backups += isFolder && looksLikeBackup(joinPath(joinPath(disk, root), name));
        return !stop.stop_requested();
      });
      if (with.backups > before) {
        with.roots.push_back(joinPath(disk, root));
      }
    }
    if (with.backups > 0) {
      found.push_back(std::move(with));
    }
  }
  return found;
}

}  // namespace

void SLAppDelegate::connectDisks() {
  m_disks = std::make_unique<DiskWatch>(this);
  connect(m_disks.get(), &DiskWatch::looked, this, &SLAppDelegate::backupWasLookedAt);
  connect(m_disks.get(), &DiskWatch::disksChanged, this, [this] {
    std::set<std::string> suspects = m_lostBackups;
    if (const BackupModel* shown = m_arrayController.content()) {
      suspects.insert(shown->path());
    }
    std::ranges::for_each(suspects, [this](auto& backup) { m_disks->suspect(backup); });
  });
  connect(m_disks.get(), &DiskWatch::isSilent, this, &SLAppDelegate::tellOfSilentDisk);
  m_arrayController.setDisks(*m_disks);
}

// A large backup takes its time, and so does one whose disk does not answer.
void SLAppDelegate::suspectIfItLoadsLong(const std::string& path) {
  QTimer::singleShot(longLoad, this, [this, path] {
    const std::vector<BackupModel*> all = m_bc->backups();
    const auto backup = std::ranges::find(all, path, &BackupModel::path);
    if (backup != all.end() && (*backup)->processing()) {
      m_disks->suspect(path);
    }
  });
}

void SLAppDelegate::backupWasLookedAt(const std::string& path, bool canBeRead) {
  const std::vector<BackupModel*> all = m_bc->backups();
  const auto backup = std::ranges::find(all, path, &BackupModel::path);
  if (backup == all.end()) {
    return;  // closed meanwhile
  }
  if (!canBeRead) {
    m_damagedBackups.erase(path);
    if (!m_lostBackups.contains(path)) {
      tellOfLostFolder(m_bc->foldersOf(**backup).front());
    }
    return;
  }
  if (m_lostBackups.erase(path) > 0) {
    m_damagedBackups.erase(path);
    isBackAgain(**backup);
  }
  if (m_damagedBackups.erase(path) > 0) {
    tellOfDamage();
  }
}

void SLAppDelegate::isBackAgain(const BackupModel& backup) {
  m_toldOfDamage.erase(backup.path());
  if (!backup.isComplete()) {
    // It was read while its disk failed.
    const std::vector<std::string> folders = m_bc->foldersOf(backup);
    closeFolders(folders);
    std::ranges::for_each(folders, [this](auto& folder) { searchFolder(folder, false); });
  } else if (&backup == m_arrayController.content()) {
    m_ui->browser->reloadData();
  }
}

void SLAppDelegate::tellOfLostFolder(const std::string& folder) {
  std::vector<AlertChoice> choices;
  for (const BackupModel* backup : m_bc->backups()) {
    const std::vector<std::string> folders = m_bc->foldersOf(*backup);
    if (std::ranges::find(folders, folder) != folders.end()) {
      m_lostBackups.insert(backup->path());  // one word for all of them
      choices = {{tr("Close Folder"), [this, folder] { closeFolders({folder}); }}};
    }
  }
  const AlertText text = {
      tr("“%1” Can No Longer Be Read").arg(folderTitle(folder)),
      tr("Its disk has gone or fails: photos cannot be read, and backups may be missing from the "
         "list. Connect the disk again to see them:") +
          "\n\n" + QString::fromStdString(escapedForLog(folder))};
  showAlertWithChoices(m_window.get(), text, choices, {});
}

void SLAppDelegate::tellOfSilentDisk(const std::string& path) {
  const std::vector<BackupModel*> all = m_bc->backups();
  const auto backup = std::ranges::find(all, path, &BackupModel::path);
  if (backup == all.end()) {
    m_ui->diskNotice->hide();
    return;
  }
  m_ui->diskNotice->tell(
      tr("“%1” does not answer. Its disk may be busy, asleep or gone; photos come as soon as it "
         "answers.")
          .arg(folderTitle(m_bc->foldersOf(**backup).front())));
}

void SLAppDelegate::sayThatThereAreNoBackups() {
  const AlertText text = {
      tr("No backup folders found"),
      tr("Snaplift could not locate any valid iOS backups in your ~/Library/Application "
         "Support/MobileSync/Backups/ folder.")};
  QMessageBox* alert = showAlertWithChoices(
      m_window.get(), text, {{tr("Choose Folder..."), [this] { chooseFolderToOpen(); }}},
      [] { QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection); });
  offerConnectedDisks(*alert);
}

// The alert does not wait for disks, which may have to start turning.
void SLAppDelegate::offerConnectedDisks(QMessageBox& alert) {
  m_diskProbe = std::jthread([this, shown = QPointer(&alert)](const std::stop_token& stop) {
    const std::vector<DiskWithBackups> disks = connectedDisksWithBackups(stop);
    QMetaObject::invokeMethod(
        this,
        [this, shown, disks] {
          for (const DiskWithBackups& with : disks) {
            const QString count = with.backups == 1
                                      ? tr("1 Backup")
                                      : tr("%n Backups", nullptr, static_cast<int>(with.backups));
            if (shown) {
              addChoice(*shown,
                        {tr("Open %1 on “%2”").arg(count, folderTitle(with.disk)), [this, with] {
                           std::ranges::for_each(
                               with.roots, [this](const std::string& root) { openFolder(root); });
                         }});
            }
          }
        },
        Qt::QueuedConnection);
  });
}

}  // namespace snaplift
