#include "program/SampleRoot.h"

#include <filesystem>
#include <vector>

#include "foundation/files/Path.h"
#include "program/Rolls.h"
#include "samples/BackupWriter.h"

namespace snaplift::samples {
namespace {

constexpr Camera twoMegapixels = {1600, 1200};
constexpr Camera threeMegapixels = {2048, 1536};
constexpr Camera fiveMegapixels = {2592, 1936};

constexpr Camera newerCamera = {2016, 1512};

// One backup of the root: a device's roll as far as it had come.
struct PlannedBackup {
  const char* folder;
  Generation generation;
  const char *deviceName, *version;
  std::int64_t day;  // since 1970
  Roll roll;
  bool encrypted = false;
  bool interrupted = false;  // the backup was: it is not finished, and its manifest has a log
};

constexpr Roll annasRoll(int photos, int screens, int films = 0) {
  return {0, photos, fiveMegapixels, 14800, screens, films};
}
constexpr Roll bensRoll(int photos) {
  return {40, photos, twoMegapixels, 13900};
}

const std::vector<PlannedBackup> plan = {
    {"f1d2d2f924e986ac86fdf7b36c94bcdf32beec15",
     Generation::Ten,
     "Anna's New Phone",
     "14.3",
     18644,
     {0, 14, newerCamera, 18330, 2}},
    {"e242ed3bffccdf271b7fbaf34ed72d089537b42f",
     Generation::Ten,
     "Ben's New Phone",
     "10.3.1",
     17310,
     {44, 5, newerCamera, 17200},
     false,
     true},
    {"2b6f0cc904d137be2e1730235f5664094b831186", Generation::Five, "Anna's Phone", "5.1.1", 15501,
     annasRoll(14, 2, 3)},
    {"3f2a9c51d0e84b7796ac13f5b2087de46190ab35", Generation::Four, "Anna's Phone", "4.3.3", 15203,
     annasRoll(9, 1)},
    {"77de68daecd823babbb58edb1c8e14d7106e83bb", Generation::Three, "Anna's Phone", "3.1.3", 14862,
     annasRoll(5, 0)},
    {"902ba3cda1883801594b6e1b452790cc53948fda",
     Generation::Five,
     "Kitchen Tablet",
     "5.0.1",
     15420,
     {20, 7, threeMegapixels, 15210, 4}},
    {"1b6453892473a467d07372d45eb05abc2031647a", Generation::TwoPairForm, "Ben's Old Phone",
     "2.2.1", 14390, bensRoll(6)},
    {"c1dfd96eea8cc2b62785275bca38ac261256e278", Generation::TwoSingleForm, "Ben's Old Phone",
     "1.1.4", 14010, bensRoll(3)},
    {"fe5dbbcea5ce7e2988b8c69bcfdfde8904aabc1f",
     Generation::Five,
     "Grandma's Phone",
     "5.1",
     15480,
     {60, 2, threeMegapixels, 15300},
     true},
    {"da4b9237bacccdf19c0760cab7aec4a8359010b0",
     Generation::Four,
     "Music Player",
     "4.1",
     14950,
     {0, 0, threeMegapixels, 14900}},
    {"0ade7c2cf97f75d009975f4d720d1fa6c19f4897",
     Generation::Four,
     "Prototype",
     "0.9",
     13500,
     {0, 0, twoMegapixels, 13500}},
    {"ac3478d69a3c81fa62e60f5c3696165a4e5e6ac4",
     Generation::Five,
     "Clara's Phone (dropped)",
     "5.0",
     15390,
     {50, 5, fiveMegapixels, 15100}},
};
constexpr const char* damagedFolder = "ac3478d69a3c81fa62e60f5c3696165a4e5e6ac4";

std::vector<PlacedShot> shotsOf(const PlannedBackup& backup, bool small) {
  if (backup.roll.photos == 0) {
    return {};
  }
  const int divisor = small ? 4 : 1;
  return backup.generation == Generation::Ten ? newRoll(backup.roll, divisor)
                                              : oldRoll(backup.roll, divisor);
}

std::uint32_t secondsOf(Instant instant) {
  return static_cast<std::uint32_t>(
      std::chrono::floor<std::chrono::seconds>(instant).time_since_epoch().count());
}

void addPhotos(SampleBackup& backup, const std::vector<PlacedShot>& shots, const Album& album) {
  const std::string domain(photoDomain(backup.generation));
  backup.files.push_back({.domain = domain, .path = "Media/DCIM/100APPLE", .mode = folderMode});
  for (const PlacedShot& shot : shots) {
    if (!album.fileOf(shot.shot).empty()) {
      backup.files.push_back({.domain = domain,
                              .path = shot.path,
                              .content = album.fileOf(shot.shot),
                              .modificationDate = secondsOf(shot.shot.taken)});
    }
  }
  backup.files.push_back({.domain = domain,
                          .path = "Media/Recordings/Memo.m4a",
                          .content = "not a photo",
                          .modificationDate = secondsOf(backup.date)});
}

// What else stands in a backup: settings and databases of applications, folders, links, empty
// files.
void addOtherFiles(SampleBackup& backup) {
  for (int i = 0; i < 120; ++i) {
    const std::string application = "AppDomain-app.example.tool" + std::to_string(i / 6);
    const int number = i < 60 ? i : i % 6;
    const std::string name = "Library/Preferences/settings" + std::to_string(number) + ".plist";
    backup.files.push_back({.domain = i < 60 ? "HomeDomain" : application,
                            .path = name,
                            .content = i % 6 == 5 ? std::string() : "settings " + std::to_string(i),
                            .modificationDate = secondsOf(backup.date)});
  }
  backup.files.push_back({.domain = "HomeDomain", .path = "Library", .mode = folderMode});
  backup.files.push_back({.domain = "HomeDomain",
                          .path = "Library/Current",
                          .mode = linkMode,
                          .linkTarget = "Preferences"});
}

// The manifest ends in the middle of an entry behind the photos, and one photo has lost its file.
void damage(const std::string& folder, const SampleBackup& backup) {
  std::uintmax_t kept = 6;
  std::string lost;
  for (const ManifestEntry& entry : manifestEntries(backup.files)) {
    std::string bytes;
    appendManifestEntry(bytes, entry);
    kept += bytes.size();
    if (entry.domain == photoDomain(backup.generation) && entry.path.ends_with("3.JPG")) {
      lost = contentName(entry.domain, entry.path);
    }
    if (entry.path.ends_with("Memo.m4a")) {
      break;
    }
  }
  std::filesystem::resize_file(joinPath(folder, "Manifest.mbdb"), kept + 40);
  std::filesystem::remove(joinPath(folder, lost));
}

}  // namespace

void writeSampleRoot(const std::string& root, bool small) {
  std::vector<Shot> allShots;
  for (const PlannedBackup& planned : plan) {
    for (const PlacedShot& shot : shotsOf(planned, small)) {
      allShots.push_back(shot.shot);
    }
  }
  const Album album(allShots);
  for (const PlannedBackup& planned : plan) {
    SampleBackup backup{.generation = planned.generation,
                        .deviceName = planned.deviceName,
                        .productVersion = planned.version,
                        .encrypted = planned.encrypted,
                        .date = noonOf(planned.day)};
    if (planned.roll.photos > 0) {
      addPhotos(backup, shotsOf(planned, small), album);
    }
    addOtherFiles(backup);
    if (planned.interrupted) {
      backup.unfinished = true;
      backup.filesInLog = backup.files.size() / 2;
    }
    const std::string folder = joinPath(root, planned.folder);
    writeBackup(folder, backup);
    if (planned.folder == std::string_view(damagedFolder)) {
      damage(folder, backup);
    }
  }
}

}  // namespace snaplift::samples
