#include "backups/BackupModel.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "backups/VersionCompare.h"
#include "decoders/BackupPropertyList.h"
#include "decoders/iOS10Decoder.h"
#include "decoders/iOS2Decoder.h"
#include "decoders/iOS3Decoder.h"
#include "decoders/iOS4Decoder.h"
#include "decoders/iOS5Decoder.h"
#include "foundation/Log.h"
#include "foundation/NotificationCenter.h"
#include "foundation/files/File.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

const std::string absentText = "(null)";

bool isForbiddenFolder(const std::string& path) {
  return ::faccessat(AT_FDCWD, path.c_str(), R_OK | X_OK, AT_EACCESS) != 0 && errno == EACCES;
}

std::unique_ptr<BackupDecoderDelegate> decoderForVersion(const std::optional<std::string>& version,
                                                         const std::string& path,
                                                         const OpenFolder& folder) {
  const auto isAtLeast = [&](const char* threshold) {
    return compareVersionStrings(version, threshold) >= 0;
  };
  // From 10 on the manifest is a database; early versions and upgrades are told by what is there.
  if (isAtLeast("5") && !folder.fileAttributes("Manifest.mbdb") &&
      (isAtLeast("10") || folder.fileAttributes("Manifest.db")))
    return std::make_unique<iOS10Decoder>(path);
  if (isAtLeast("5"))
    return std::make_unique<iOS5Decoder>(path);
  if (isAtLeast("4"))
    return std::make_unique<iOS4Decoder>(path);
  if (isAtLeast("3"))
    return std::make_unique<iOS3Decoder>(path);
  if (isAtLeast("1"))
    return std::make_unique<iOS2Decoder>(path);
  return nullptr;
}

// By the exact name: old backups have none, and a folder of 100,000 files is not to be listed for
// it while a root is.
bool saysThatItIsUnfinished(const OpenFolder& folder) {
  std::optional<Bytes> file = folder.readFile("Status.plist");
  const auto status = file ? parseDictionary(std::move(*file)) : std::nullopt;
  const PropertyListValue state =
      status ? status->root().valueForKey("SnapshotState") : PropertyListValue();
  return state.string() && !state.equals("finished");
}

}  // namespace

std::unique_ptr<BackupModel> BackupModel::initWithBackupAtPath(const std::string& path) {
  const OpenFolder folder(path);
  std::optional<DatedContent> file = folder.readFoundFile("info.plist");
  const auto info = file ? parseDictionary(std::move(file->bytes)) : std::nullopt;
  if (!info) {
    systemLog(isForbiddenFolder(path)
                  ? "no permission to read the folder: " + path
                  : "path: " + path + " has no info.plist and is therefore not a valid backup");
    return nullptr;
  }
  std::optional<std::string> deviceName = textUnderKey(*info, "Device Name");
  std::optional<std::string> version = textUnderKey(*info, "Product Version");
  std::unique_ptr<BackupDecoderDelegate> decoder = decoderForVersion(version, path, folder);
  if (!decoder) {
    systemLog("no decoder available for version " + version.value_or(absentText) + " backup " +
              path);
    return nullptr;
  }
  if (compareVersionStrings(version, "5") >= 0) {
    systemLog("processing " + path + " for " + deviceName.value_or(absentText) + " at version " +
              *version);
  }
  std::unique_ptr<BackupModel> model(new BackupModel(
      path, std::move(deviceName), std::move(version), file->modificationDate, std::move(decoder)));
  model->m_folder = folder.identity();
  model->m_productType = textUnderKey(*info, "Product Type");
  model->m_deviceIdentifier = textUnderKey(*info, "Unique Identifier");
  model->m_wasLeftUnfinished = saysThatItIsUnfinished(folder);
  return model;
}

BackupModel::BackupModel(std::string path, std::optional<std::string> deviceName,
                         std::optional<std::string> productVersion, Instant date,
                         std::unique_ptr<BackupDecoderDelegate> delegate)
    : m_path(std::move(path)),
      m_deviceName(std::move(deviceName)),
      m_productVersion(std::move(productVersion)),
      m_date(date),
      m_delegate(std::move(delegate)) {}

std::string OtherMedia::subject() const {
  const auto counted = [](std::size_t count, const char* thing) {
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
  };
  return (films > 0 ? counted(films, "film") : "") + (films > 0 && pictures > 0 ? " and " : "") +
         (pictures > 0 ? counted(pictures, "other picture") : "") +
         (films + pictures == 1 ? " is" : " are");
}

std::string BackupModel::description() const {
  return m_deviceName.value_or(absentText) + " - " + defaultDateText(m_date);
}

void BackupModel::prepareContent() {
  if (m_loadUnderWay.exchange(true)) {
    return;
  }
  // A load whose finished notification is still being handled is left to run on: its handlers may
  // be waiting for this very thread.
  m_loads.remove_if([](const Load& load) { return load.ended.load(); });
  Load& load = m_loads.emplace_back();
  const auto work = [this, &load](std::stop_token stop) {
    prepareDelegate(std::move(stop));
    load.ended = true;
  };
  try {
    load.thread = std::jthread(work);
  } catch (const std::system_error&) {
    work({});
  }
}

void BackupModel::loadOnce(std::stop_token stop) {
  const std::lock_guard lock(m_decoderMutex);
  if (!m_isLoaded) {
    m_delegate->loadContents(stop);
    m_isLoaded = !stop.stop_requested();
  }
}

void BackupModel::prepareDelegate(std::stop_token stop) {
  NotificationCenter& center = NotificationCenter::defaultCenter();
  center.post(startedLoadingNotification, this);
  m_processing = true;
  loadOnce(stop);
  m_contentReady = !stop.stop_requested();
  m_processing = false;
  m_loadUnderWay = false;
  if (!stop.stop_requested()) {
    center.post(finishedLoadingNotification, this);
  }
}

const std::vector<std::unique_ptr<ImageItem>>& BackupModel::imageItems() {
  std::call_once(m_itemsBuilt, [this] {
    std::size_t index = 0;
    const auto build = [&](const std::vector<std::string>& paths, auto& items) {
      items.reserve(paths.size());
      for (const std::string& path : paths) {
        items.push_back(std::make_unique<ImageItem>(path, *this, index++));
      }
    };
    build(imagePaths(), m_imageItems);
    build(m_delegate->otherMediaPaths(), m_unwantedItems);
    m_livePhotos = LivePhotos(m_imageItems);
  });
  return m_imageItems;
}

OtherMedia BackupModel::otherMedia() {
  OtherMedia media;
  const std::size_t photos = imagePaths().size();
  const std::size_t others = m_delegate->otherMediaPaths().size();
  for (std::size_t i = 0; i < others; ++i) {
    const bool isFilm = m_delegate->photoInfo(photos + i).media == PhotoMedia::Film;
    ++(isFilm ? media.films : media.pictures);
  }
  return media;
}

void BackupModel::setWantsOtherMedia(bool wants) {
  imageItems();
  const auto firstOther =
      m_imageItems.begin() + static_cast<std::ptrdiff_t>(m_delegate->imageFilePaths().size());
  if (wants) {
    std::ranges::move(m_unwantedItems, std::back_inserter(m_imageItems));
    m_unwantedItems.clear();
  } else {
    std::move(firstOther, m_imageItems.end(), std::back_inserter(m_unwantedItems));
    m_imageItems.erase(firstOther, m_imageItems.end());
  }
  m_livePhotos = LivePhotos(m_imageItems);
}

const std::vector<std::string>& BackupModel::imagePaths() {
  loadOnce({});
  return m_delegate->imageFilePaths();
}

std::optional<Bytes> BackupModel::imageDataForPath(const std::string& uniquePath,
                                                   Bytes reuse) const {
  return m_delegate->dataForFileAtPath(uniquePath, std::move(reuse));
}

std::string BackupModel::contentFileForPath(const std::string& uniquePath) const {
  return m_delegate->contentFileAtPath(uniquePath);
}

void BackupModel::visitFiles(const BackupDecoderDelegate::FileVisitor& visit) {
  const std::lock_guard lock(m_decoderMutex);
  m_delegate->visitFiles(visit);
}

}  // namespace snaplift
