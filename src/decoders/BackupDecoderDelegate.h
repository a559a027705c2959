#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "decoders/PhotoInfo.h"
#include "foundation/Bytes.h"
#include "foundation/Time.h"

namespace snaplift {

// One file of a backup, as an inventory shows it.
struct BackedUpFile {
  std::string_view domain;
  std::string_view path;      // within the domain
  std::string_view filename;  // of the content file, inside the backup folder
  std::uint64_t filelength;   // in bytes
  std::optional<Instant> modificationDate;
  std::optional<std::int32_t> type;  // the MBDBXRow type, where the generation has one
};

// What the rest of the system knows of a backup's layout. A decoder is made for every backup when
// the program starts, so making one keeps the path and reads nothing; loadContents() does the
// reading. A photo is named by its unique path: the backup folder joined with the photo's path as
// the manifest records it. Its last component is the photo's file name, and within one backup it
// names one photo.
//
// loadContents() runs on one thread. After it has returned, nothing changes any more, and every
// const operation may be called from several threads at once. What cannot be read is
// absent; where that is a file that the list of photos is made from, it is a line in the system log
// and makes the load incomplete.
class BackupDecoderDelegate {
public:
  using FileVisitor = std::function<void(const BackedUpFile&)>;

  virtual ~BackupDecoderDelegate() = default;

  // Reads the manifest and lists the photos. May take long; a request of `stop` ends it early, and
  // then it counts as not loaded.
  virtual void loadContents(std::stop_token stop = {}) = 0;

  // The unique paths of the photos, in the order in which they are shown. Loads first, on this
  // thread, where that has not been done.
  virtual const std::vector<std::string>& imageFilePaths() = 0;

  // What else the camera roll holds: the unique paths of the films and pictures that the rule of
  // imageFilePaths() leaves out, in the same order. None where all media are listed there.
  virtual const std::vector<std::string>& otherMediaPaths() = 0;

  // Whether encryption keeps the very list of photos from being read: the list is then empty, and
  // nobody knows whether there are photos. False before loading.
  virtual bool encryptsList() const { return false; }

  // What the backup knows of the photo at a place of imageFilePaths() or, behind them, of
  // otherMediaPaths(), and what is there of its content file, found out afresh and without reading
  // it. Before loading, and for a place that the lists do not have: no path, and Missing.
  virtual PhotoInfo photoInfo(std::size_t index) const = 0;
  virtual ContentState contentState(std::size_t index) const = 0;

  // The small picture that the device itself made of the photo or film at that place: an encoded
  // one, read afresh. Nothing where the backup has none that can be read.
  virtual std::optional<Bytes> thumbnailData(std::size_t index) const = 0;

  // The whole content of a photo's file as it stands in the backup, read afresh; nothing for a path
  // that neither list has or a file that cannot be read. `reuse` is an old buffer
  // whose storage may serve again.
  virtual std::optional<Bytes> dataForFileAtPath(const std::string& uniquePath,
                                                 Bytes reuse = {}) const = 0;

  // The path of the file that dataForFileAtPath() hands out as it is; empty where the bytes come
  // out of a file that holds more, or from nowhere.
  virtual std::string contentFileAtPath(const std::string& uniquePath) const = 0;

  // False where a file that loading or visiting needed for its list is missing or cannot be read to
  // its end (a disk that fails, a right that the user lacks, damage): photos may be missing.
  virtual bool isComplete() const = 0;

  // Whether the manifest says that the content is encrypted. False before loading.
  virtual bool encrypted() const = 0;

  // Calls `visit` for each file that the decoder's manifest lists with content: for generations 5
  // and 4 of every domain, for 3 and 2 of the photos' domain. In a stable order, a domain's files
  // one behind the other. The texts are valid during the call. Loads first where needed.
  virtual void visitFiles(const FileVisitor& visit) = 0;

  // The class's name, for reports: "iOS5Decoder".
  virtual std::string_view name() const = 0;
};

}  // namespace snaplift
