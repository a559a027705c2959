#include <memory>
#include <string>
#include <vector>

#include "cli/Commands.h"
#include "cli/Output.h"
#include "cli/Selection.h"

namespace snaplift::cli {
namespace {

Json rootJson(const Selection& selection) {
  Json devices = Json::array();
  for (const auto& device : selection.devices()) {
    Json backups = Json::array();
    for (const auto& backup : device->backups()) {
      backups.push_back(backupJson(*backup));
    }
    devices.push_back({{"name", jsonText(device->name())}, {"backups", std::move(backups)}});
  }
  return {{"root", selection.path()}, {"devices", std::move(devices)}};
}

const char* wordFor(PhotoKind kind) {
  switch (kind) {
    case PhotoKind::Original:
      return "original";
    case PhotoKind::Edited:
      return "edited";
    case PhotoKind::Cloud:
      return "cloud";
    case PhotoKind::Derived:
      break;
  }
  return "derived";
}

Json photosJson(const BackupModel& backup, const std::vector<std::unique_ptr<ImageItem>>& items) {
  Json photos = Json::array();
  for (const auto& item : items) {
    const PhotoInfo info = item->info();
    const std::optional<Instant> date = info.date();
    photos.push_back({{"uniquePath", item->path()},
                      {"fileName", item->fileName()},
                      {"fileType", item->imageFileType()},
                      {"date", date ? Json(rfc3339Text(*date)) : Json(nullptr)},
                      {"size", info.size ? Json(*info.size) : Json(nullptr)},
                      {"kind", wordFor(info.kind)},
                      {"media", info.media == PhotoMedia::Film ? "film" : "photo"}});
  }
  return {
      {"path", backup.path()}, {"encrypted", backup.encrypted()}, {"photos", std::move(photos)}};
}

Json fileJson(const BackedUpFile& file) {
  Json json = {{"path", std::string(file.path)},
               {"filename", std::string(file.filename)},
               {"filelength", file.filelength},
               {"modificationDate",
                file.modificationDate ? Json(rfc3339Text(*file.modificationDate)) : Json(nullptr)}};
  if (file.type) {
    json["type"] = *file.type;
  }
  return json;
}

// One value, printed piece by piece: as a whole, the files of a large backup would take gigabytes.
void printFilesJson(BackupModel& backup) {
  std::optional<std::string> domain;
  printJsonPart("{\"path\":" + jsonLineText(backup.path()) + ",\"domains\":[");
  backup.visitFiles([&](const BackedUpFile& file) {
    if (domain != file.domain) {
      printJsonPart(domain ? "]},{\"domain\":" : "{\"domain\":");
      domain = file.domain;
      printJsonPart(jsonLineText(*domain) + ",\"files\":[");
    } else {
      printJsonPart(",");
    }
    printJsonPart(jsonLineText(fileJson(file)));
  });
  printJsonPart(domain ? "]}]}\n" : "]}\n");
}

std::string fileLine(const BackedUpFile& file) {
  const std::string date =
      file.modificationDate ? rfc3339Text(*file.modificationDate) : std::string(20, ' ');
  std::string size = std::to_string(file.filelength);
  size.insert(0, size.size() < 12 ? 12 - size.size() : 0, ' ');
  return "  " + date + " " + size + "  " + std::string(file.filename) + "  " +
         std::string(file.path);
}

ExitStatus statusOf(const BackupModel& backup) {
  return backup.isComplete() ? Done : SomePhotosFailed;
}

}  // namespace

Json backupJson(const BackupModel& backup) {
  return {{"path", backup.path()},
          {"deviceName", jsonText(backup.deviceName())},
          {"productVersion", jsonText(backup.productVersion())},
          {"date", rfc3339Text(backup.date())},
          {"decoder", std::string(backup.decoderName())}};
}

std::string backupText(DeviceModel& device, const BackupModel& backup) {
  return device.titleOfBackup(backup) + "  (" + backup.productVersion().value_or("") + ")  " +
         backup.path();
}

ExitStatus listBackups(const BackupNames& names, bool json) {
  const std::optional<Selection> selection = Selection::initWithNames(names);
  if (!selection) {
    return NoSuchBackup;
  }
  if (json) {
    printJson(rootJson(*selection));
    return Done;
  }
  for (const auto& device : selection->devices()) {
    printHeading(device->title());
    for (const auto& backup : device->backups()) {
      printLine("  " + backupText(*device, *backup));
    }
  }
  return Done;
}

ExitStatus listPhotos(const BackupNames& names, bool json) {
  const std::optional<Selection> selection = selectOneBackup(names);
  if (!selection) {
    return NoSuchBackup;
  }
  BackupModel* backup = selection->backups().front();
  const auto& photos = selection->photosOf(*backup);
  if (json) {
    printJson(photosJson(*backup, photos));
    return statusOf(*backup);
  }
  for (const auto& photo : photos) {
    printLine(pathOnDevice(*backup, photo->path()));
  }
  printNote(countText(photos.size(), "photo") +
            (backup->encrypted() ? ", encrypted: they cannot be exported" : ""));
  return statusOf(*backup);
}

ExitStatus listFiles(const BackupNames& names, bool json) {
  const std::optional<Selection> selection = selectOneBackup(names);
  if (!selection) {
    return NoSuchBackup;
  }
  BackupModel* backup = selection->backups().front();
  if (json) {
    printFilesJson(*backup);
    return statusOf(*backup);
  }
  std::uint64_t files = 0, bytes = 0;
  std::optional<std::string> domain;
  backup->visitFiles([&](const BackedUpFile& file) {
    if (domain != file.domain) {
      domain = file.domain;
      printHeading(*domain);
    }
    printLine(fileLine(file));
    ++files;
    bytes += file.filelength;
  });
  printNote(countText(files, "file") + ", " + sizeText(bytes));
  return statusOf(*backup);
}

}  // namespace snaplift::cli
