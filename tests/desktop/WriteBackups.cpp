#include <iostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "pictures/PhotoFile.h"
#include "samples/BackupWriter.h"
#include "support/photos/TestPictures.h"

// usage: writebackups ROOT [dated | live]
// Writes backups in every state that the window knows, newest first:
//   Anna      generation 5 with five photos, two of them of one name; 4 with three; 3 with two
//   Big       generation 5 with a thousand photos
//   Grandma   encrypted
//   Music     generation 4 without photos
//   Ben       generation 2, a photo in either form
// Or one backup, of Dora, with pictures of every kind from five months.
// Or one backup with a live photo, of which a camera says much, and another photo.
namespace snaplift::samples {
namespace {

std::string photoContent(int number) {
  const QByteArray picture = test::encoded(test::quadrants({160, 120 + number % 40}));
  // What follows the end of the picture tells one photo from another.
  return picture.toStdString() + "photo " + std::to_string(number);
}

class Root {
public:
  explicit Root(std::string path) : m_path(std::move(path)) {}

  void add(const std::string& device, Generation generation, const std::string& version,
           const std::vector<std::string>& photos, bool encrypted = false) {
    SampleBackup backup{.generation = generation,
                        .deviceName = device,
                        .productVersion = version,
                        .encrypted = encrypted,
                        .date = instantFromUnixTime(m_date -= 30L * 86'400)};
    for (const std::string& photo : photos) {
      backup.files.push_back({.domain = std::string(photoDomain(generation)),
                              .path = "Media/DCIM/" + photo,
                              .content = photoContent(++m_photos),
                              .modificationDate = static_cast<std::uint32_t>(m_date) -
                                                  static_cast<std::uint32_t>(m_photos)});
    }
    writeBackup(m_path + "/" + device + "-" + version, backup);
  }

private:
  std::string m_path;
  std::int64_t m_date = 1'339'329'600;  // June 10, 2012, noon
  int m_photos = 0;
};

void writeBackups(const std::string& path) {
  Root root(path);
  root.add("Anna", Generation::Five, "5.1",
           {"100APPLE/IMG_0001.JPG", "100APPLE/IMG_0002.JPG", "100APPLE/IMG_0003.JPG",
            "100APPLE/IMG_0004.JPG", "101APPLE/IMG_0001.JPG"});
  root.add("Anna", Generation::Four, "4.3",
           {"100APPLE/IMG_0011.JPG", "100APPLE/IMG_0012.JPG", "100APPLE/IMG_0013.JPG"});
  root.add("Anna", Generation::Three, "3.1", {"100APPLE/IMG_0021.JPG", "100APPLE/IMG_0022.JPG"});
  std::vector<std::string> many;
  for (int i = 1; i <= 1'000; ++i) {
    many.push_back("100APPLE/BIG_" + std::to_string(1'000 + i) + ".JPG");
  }
  root.add("Big", Generation::Five, "9.3", many);
  root.add("Grandma", Generation::Five, "6.0", {"100APPLE/IMG_0031.JPG"}, true);
  root.add("Music", Generation::Four, "4.1", {});
  root.add("Ben", Generation::TwoPairForm, "2.2", {"100APPLE/IMG_0041.JPG"});
  root.add("Ben", Generation::TwoSingleForm, "1.1", {"100APPLE/IMG_0051.JPG"});
}

void writeDatedBackup(const std::string& path) {
  SampleBackup backup{.generation = Generation::Ten,
                      .deviceName = "Dora",
                      .productVersion = "12.1",
                      .date = instantFromUnixTime(1'400'000'000)};  // May 13, 2014
  const std::pair<const char*, std::uint32_t> photos[] = {
      {"DCIM/100APPLE/IMG_0001.JPG", 1'307'880'000},               // June 12, 2011
      {"DCIM/100APPLE/IMG_0002.JPG", 1'309'435'200},               // June 30, 2011
      {"DCIM/100APPLE/IMG_0003.JPG", 1'325'419'200},               // January 1, 2012
      {"DCIM/100APPLE/IMG_0010.JPG", 1'293'192'000},               // December 24, 2010
      {"PhotoData/CPLAssets/group1/IMG_2011.JPG", 1'328'184'000},  // February 2, 2012
      {"PhotoData/Mutations/DCIM/100APPLE/IMG_0001/Adjustments/FullSizeRender.jpg",
       1'307'966'400}};  // June 13, 2011
  for (const auto& [photo, date] : photos) {
    backup.files.push_back({.domain = "CameraRollDomain",
                            .path = std::string("Media/") + photo,
                            .content = photoContent(static_cast<int>(backup.files.size())),
                            .modificationDate = date});
  }
  writeBackup(path + "/Dora", backup);
}

void writeLivePhoto(const std::string& path) {
  constexpr std::int64_t date = 1'318'408'200;  // October 12, 2011, 8:30
  const CameraData camera{.taken = instantFromUnixTime(date),
                          .maker = "Maker",
                          .model = "Handset 4",
                          .exposure = {{.perSecond = 125, .apertureTenths = 28, .iso = 100}}};
  SampleBackup backup{.generation = Generation::Ten,
                      .deviceName = "Cleo",
                      .productVersion = "14.3",
                      .date = instantFromUnixTime(date)};
  for (const auto& [name, content] :
       {std::pair{"IMG_0001.JPG", withExif(photoContent(1), camera, {})},
        std::pair{"IMG_0001.MOV", std::string("a film")},
        std::pair{"IMG_0002.JPG", photoContent(2)}}) {
    backup.files.push_back({.domain = "CameraRollDomain",
                            .path = std::string("Media/DCIM/100APPLE/") + name,
                            .content = content,
                            .modificationDate = std::uint32_t{date}});
  }
  writeBackup(path + "/Cleo", backup);
}

}  // namespace
}  // namespace snaplift::samples

int main(int argc, char** argv) {
  if (argc != 2 && argc != 3) {
    std::cerr << "usage: writebackups ROOT [dated | live]\n";
    return 2;
  }
  const std::string_view one = argc == 3 ? argv[2] : "";
  const auto write = one.empty()     ? snaplift::samples::writeBackups
                     : one == "live" ? snaplift::samples::writeLivePhoto
                                     : snaplift::samples::writeDatedBackup;
  write(argv[1]);
  return 0;
}
