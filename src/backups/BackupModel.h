#pragma once

#include <atomic>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "backups/ImageDataSource.h"
#include "backups/ImageItem.h"
#include "backups/LivePhotos.h"
#include "decoders/BackupDecoderDelegate.h"
#include "foundation/Time.h"
#include "foundation/files/File.h"

namespace snaplift {

// Posted to the default notification centre with the BackupModel as the object, on the thread that
// loads: the first before anything else is done, the second when the content is ready.
inline constexpr std::string_view startedLoadingNotification = "ORBStartedLoadingImageFileSystem";
inline constexpr std::string_view finishedLoadingNotification = "ORBFinishedLoadingImageFileSystem";

// What a backup's camera roll holds beside the photos of the list.
struct OtherMedia {
  std::size_t films = 0, pictures = 0;

  bool isEmpty() const { return films + pictures == 0; }
  // "5 films and 2 other pictures are", "1 film is": what they are is the caller's to say.
  std::string subject() const;
};

// One backup folder. Making it reads the small "info.plist" and no more, so that a whole root can
// be listed at start-up; it picks the decoder of the backup's system version. The manifest is read
// when the content is asked for, by prepareContent() on a thread of its own or by the first
// imageItems() on the caller's.
//
// Lives as long as its device and owns its decoder and its items. prepareContent() belongs to one
// thread (that of the user interface); the flags, imageItems() and imageDataForPath() to any. The
// destructor asks a running load to stop and waits for its thread; the finished notification of
// such a load is not posted.
class BackupModel : public ImageDataSource {
public:
  // The model of the backup in the folder `path`; nothing where the folder has no readable
  // "info.plist" or no decoder knows its version. The system log then says which.
  static std::unique_ptr<BackupModel> initWithBackupAtPath(const std::string& path);

  const std::string& path() const { return m_path; }
  // Absent where the folder went away in the meantime.
  const std::optional<FolderIdentity>& folder() const { return m_folder; }
  const std::optional<std::string>& deviceName() const { return m_deviceName; }
  const std::optional<std::string>& productVersion() const { return m_productVersion; }
  // What kind of device it was, as its maker names it.
  const std::optional<std::string>& productType() const { return m_productType; }
  // What tells the device from others of its name, as far as the backup states it.
  const std::optional<std::string>& deviceIdentifier() const { return m_deviceIdentifier; }
  // When the backup was made: the modification time of its "info.plist".
  Instant date() const { return m_date; }
  // The date in words, the title of the backup's row: see longDateText().
  std::string name() const { return longDateText(m_date); }
  // "Anna's Phone - 2011-10-12 08:30:00 +0000".
  std::string description() const;
  // The name of the resource image that marks every backup's row.
  std::string_view icon() const { return "Source-List-Icon.png"; }
  // The name of the decoder's class.
  std::string_view decoderName() const { return m_delegate->name(); }

  // Loads the content on a new background thread and returns at once; where the system has no more
  // threads, on the caller's. Does nothing while such a load is under way. Of a backup that is
  // loaded already, only the notifications are posted again.
  void prepareContent();
  bool processing() const { return m_processing; }
  bool contentReady() const { return m_contentReady; }

  // One item for each photo, in the decoder's order; then, where they are wanted, one for each film
  // and picture besides. The items are built once, by the first caller, and kept.
  const std::vector<std::unique_ptr<ImageItem>>& imageItems();
  // Which of the items that are listed now are live photos.
  const LivePhotos& livePhotos() {
    imageItems();
    return m_livePhotos;
  }
  // What there is besides, wanted or not. Loads first, as imageItems() does.
  OtherMedia otherMedia();
  // Changes the list of imageItems(), while nobody else looks at it. Items that leave the list live
  // on, and come back when they are wanted again.
  void setWantsOtherMedia(bool wants);
  // The photos' unique paths. Loads first, on this thread, where that has not been done.
  const std::vector<std::string>& imagePaths();
  std::optional<Bytes> imageDataForPath(const std::string& uniquePath,
                                        Bytes reuse = {}) const override;
  // By the photo's place in the decoder's lists, once they have been loaded.
  std::optional<PhotoInfo> photoInfo(std::size_t index) const override {
    return m_delegate->photoInfo(index);
  }
  ContentState contentState(std::size_t index) const override {
    return m_delegate->contentState(index);
  }
  std::optional<Bytes> thumbnailData(std::size_t index) const override {
    return m_delegate->thumbnailData(index);
  }
  std::string contentFileForPath(const std::string& uniquePath) const override;
  bool encrypted() const override { return m_delegate->encrypted(); }
  // Whether not even the list of photos can be read, because of the encryption.
  bool encryptsList() const { return m_delegate->encryptsList(); }
  // False where photos may be missing, because a file that lists them cannot be read; the system
  // log names it.
  bool isComplete() const { return m_delegate->isComplete(); }
  // Whether the backup says of itself, in "Status.plist", that the device did not make it to its
  // end.
  bool wasLeftUnfinished() const { return m_wasLeftUnfinished; }
  // Whether there is a photo to show: never in an encrypted backup.
  bool hasImages() { return !imageItems().empty() && !encrypted(); }
  // Calls `visit` for each file of the backup's manifest; see BackupDecoderDelegate.
  void visitFiles(const BackupDecoderDelegate::FileVisitor& visit);

private:
  struct Load {
    std::atomic<bool> ended = false;
    std::jthread thread;
  };

  BackupModel(std::string path, std::optional<std::string> deviceName,
              std::optional<std::string> productVersion, Instant date,
              std::unique_ptr<BackupDecoderDelegate> delegate);
  void prepareDelegate(std::stop_token stop);
  void loadOnce(std::stop_token stop);

  const std::string m_path;
  const std::optional<std::string> m_deviceName;
  const std::optional<std::string> m_productVersion;
  // Written before anybody else knows of the model.
  std::optional<FolderIdentity> m_folder;
  std::optional<std::string> m_productType;
  std::optional<std::string> m_deviceIdentifier;
  bool m_wasLeftUnfinished = false;
  const Instant m_date;
  const std::unique_ptr<BackupDecoderDelegate> m_delegate;

  std::mutex m_decoderMutex;  // held while the decoder loads, by whoever makes it load
  bool m_isLoaded = false;    // guarded by it: what others read of the decoder never changes again
  std::once_flag m_itemsBuilt;
  std::vector<std::unique_ptr<ImageItem>> m_imageItems;
  std::vector<std::unique_ptr<ImageItem>> m_unwantedItems;  // those of the other media, or none
  LivePhotos m_livePhotos;                                  // of m_imageItems

  std::atomic<bool> m_loadUnderWay = false;  // from prepareContent() until processing is cleared
  std::atomic<bool> m_processing = false;
  std::atomic<bool> m_contentReady = false;
  std::list<Load> m_loads;  // the last member: its threads are joined before all else goes
};

}  // namespace snaplift
