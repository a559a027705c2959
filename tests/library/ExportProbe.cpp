// ExportProbe SOURCE DESTINATION THREADS [without-links]: exports every file below SOURCE into
// DESTINATION, as a process that tests can run several times at once, and kill. For each photo it
// writes one line, when the photo is there: its path below SOURCE, a tab, and the path of the file
// that was written, or nothing after a failure. Without links, the file system is one that knows
// neither links nor a rename that refuses a taken name. Ends with 0 when every photo arrived, else
// with 3.

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "faults/FaultyFileSystem.h"
#include "foundation/File.h"
#include "foundation/Log.h"
#include "foundation/Parallel.h"
#include "foundation/Path.h"
#include "library/ImageItem.h"

namespace snaplift {
namespace {

class Folder : public ImageDataSource {
public:
  explicit Folder(std::string path) : m_path(std::move(path)) {}

  std::vector<std::string> photos() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(m_path)) {
      if (entry.is_regular_file()) {
        names.push_back(entry.path().lexically_relative(m_path).string());
      }
    }
    std::ranges::sort(names);
    return names;
  }

  std::optional<Bytes> imageDataForPath(const std::string& path, Bytes reuse) const override {
    return readFile(joinPath(m_path, path), std::move(reuse));
  }

private:
  std::string m_path;
};

int exportAll(const std::string& source, const std::string& destination, unsigned threads,
              bool withoutLinks) {
  const Folder folder(source);
  const std::vector<std::string> photos = folder.photos();
  std::atomic<bool> allArrived = true;
  parallelFor(photos.size(), threads, [&](std::size_t index) {
    thread_local Bytes buffer;
    ImageItem item(photos[index], folder);
    ExtractOutcome outcome;
    {
      Faults faults;
      faults.withoutLinks = withoutLinks;
      const FaultyFileSystem fileSystem(faults);
      outcome = item.extractPhoto(destination, buffer);
    }
    if (outcome.error) {
      systemLog("failed (0) to extract the file: " + outcome.error->description());
      allArrived = false;
    }
    const std::string line = photos[index] + '\t' + outcome.written + '\n';
    std::cout.write(line.data(), static_cast<std::streamsize>(line.size()));
  });
  return allArrived ? 0 : 3;
}

}  // namespace
}  // namespace snaplift

int main(int argc, char** argv) {
  if (argc < 4) {
    std::cerr << "usage: ExportProbe SOURCE DESTINATION THREADS [without-links]\n";
    return 2;
  }
  std::cout.setf(std::ios::unitbuf);
  return snaplift::exportAll(argv[1], argv[2], static_cast<unsigned>(std::atoi(argv[3])),
                             argc > 4 && std::string_view(argv[4]) == "without-links");
}
