#include "library/BackupModel.h"

#include <utility>

#include "decoders/BackupPropertyList.h"
#include "decoders/iOS2Decoder.h"
#include "decoders/iOS3Decoder.h"
#include "decoders/iOS4Decoder.h"
#include "decoders/iOS5Decoder.h"
#include "foundation/File.h"
#include "foundation/Log.h"
#include "foundation/NotificationCenter.h"
#include "library/VersionCompare.h"

namespace snaplift {
namespace {

const std::string absentText = "(null)";

std::unique_ptr<BackupDecoderDelegate> decoderForVersion(const std::optional<std::string>& version,
                                                         const std::string& path) {
  const auto isAtLeast = [&](const char* threshold) {
    return compareVersionStrings(version, threshold) >= 0;
  };
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

}  // namespace

std::unique_ptr<BackupModel> BackupModel::initWithBackupAtPath(const std::string& path) {
  std::optional<DatedContent> file = readFoundFile(path, "info.plist");
  const auto info = file ? parseDictionary(std::move(file->bytes)) : std::nullopt;
  if (!info) {
    systemLog("path: " + path + " has no info.plist and is therefore not a valid backup");
    return nullptr;
  }
  std::optional<std::string> deviceName = textUnderKey(*info, "Device Name");
  std::optional<std::string> version = textUnderKey(*info, "Product Version");
  std::unique_ptr<BackupDecoderDelegate> decoder = decoderForVersion(version, path);
  if (!decoder) {
    systemLog("no decoder available for version " + version.value_or(absentText) + " backup " +
              path);
    return nullptr;
  }
  if (compareVersionStrings(version, "5") >= 0) {
    systemLog("processing " + path + " for " + deviceName.value_or(absentText) + " at version " +
              *version);
  }
  return std::unique_ptr<BackupModel>(new BackupModel(
      path, std::move(deviceName), std::move(version), file->modificationDate, std::move(decoder)));
}

BackupModel::BackupModel(std::string path, std::optional<std::string> deviceName,
                         std::optional<std::string> productVersion, Instant date,
                         std::unique_ptr<BackupDecoderDelegate> delegate)
    : m_path(std::move(path)),
      m_deviceName(std::move(deviceName)),
      m_productVersion(std::move(productVersion)),
      m_date(date),
      m_delegate(std::move(delegate)) {}

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
  load.thread = std::jthread([this, &load](std::stop_token stop) {
    prepareDelegate(std::move(stop));
    load.ended = true;
  });
}

void BackupModel::prepareDelegate(std::stop_token stop) {
  NotificationCenter& center = NotificationCenter::defaultCenter();
  center.post(startedLoadingNotification, this);
  m_processing = true;
  if (!m_contentReady) {
    const std::lock_guard lock(m_decoderMutex);
    m_delegate->loadContents(stop);
  }
  m_contentReady = !stop.stop_requested();
  m_processing = false;
  m_loadUnderWay = false;
  if (!stop.stop_requested()) {
    center.post(finishedLoadingNotification, this);
  }
}

const std::vector<std::unique_ptr<ImageItem>>& BackupModel::imageItems() {
  std::call_once(m_itemsBuilt, [this] {
    const std::vector<std::string>& paths = imagePaths();
    m_imageItems.reserve(paths.size());
    for (const std::string& path : paths) {
      m_imageItems.push_back(std::make_unique<ImageItem>(path, *this));
    }
  });
  return m_imageItems;
}

const std::vector<std::string>& BackupModel::imagePaths() {
  const std::lock_guard lock(m_decoderMutex);
  return m_delegate->imageFilePaths();
}

std::optional<Bytes> BackupModel::imageDataForPath(const std::string& uniquePath,
                                                   Bytes reuse) const {
  return m_delegate->dataForFileAtPath(uniquePath, std::move(reuse));
}

bool BackupModel::holdsImageAtPath(const std::string& uniquePath) const {
  return m_delegate->holdsFileAtPath(uniquePath);
}

void BackupModel::visitFiles(const BackupDecoderDelegate::FileVisitor& visit) {
  const std::lock_guard lock(m_decoderMutex);
  m_delegate->visitFiles(visit);
}

}  // namespace snaplift
