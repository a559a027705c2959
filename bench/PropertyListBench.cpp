#include <cstdint>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>

#include "bench/Ratio.h"
#include "foundation/Digest.h"
#include "foundation/files/File.h"
#include "foundation/files/TemporaryFolder.h"
#include "foundation/propertylist/PropertyList.h"
#include "samples/PropertyListWriter.h"

namespace snaplift {
namespace {

constexpr std::size_t entryCount = 100'000;

// The list of files as a manifest of generation 3 holds it: by name, a description of each.
samples::PlistValue listOfFiles() {
  constexpr const char* domains[] = {"MediaDomain", "HomeDomain", "CameraRollDomain",
                                     "AppDomain-com.example.reader", "KeychainDomain"};
  std::mt19937 random(1);
  samples::PlistValue::Dictionary files;
  for (std::size_t i = 0; i < entryCount; ++i) {
    const Sha1Digest digest = sha1({bytesOf(std::to_string(i))});
    const auto date = instantFromUnixTime(1'250'000'000 + static_cast<std::int64_t>(i) * 60);
    files.emplace_back(hexText(digest, HexCase::Lower),
                       samples::PlistValue::dictionary(
                           {{"DataHash", samples::PlistValue::data(std::string(textOf(digest)))},
                            {"Domain", domains[random() % std::size(domains)]},
                            {"FileLength", random() % 3'000'000},
                            {"Greylist", false},
                            {"ModificationTime", date}}));
  }
  return samples::PlistValue::dictionary({{"Files", std::move(files)}, {"Version", "2.0"}});
}

std::string written(const std::string& name, const std::string& content) {
  const std::string path = temporaryFolder() + "/" + name;
  if (!std::ofstream(path, std::ios::binary).write(content.data(), std::ssize(content)).flush()) {
    throw std::runtime_error("cannot write " + path);
  }
  return path;
}

bool readsFile(const std::string& path) {
  const auto bytes = readFile(path);
  return bytes && !bytes->empty();
}

// What a decoder does with the list: every domain is compared and every date taken.
bool visitsEveryEntry(const std::string& path) {
  auto bytes = readFile(path);
  const auto list = bytes ? PropertyList::parse(std::move(*bytes)) : std::nullopt;
  std::size_t photos = 0;
  std::size_t dates = 0;
  const auto root = list ? list->root() : PropertyListValue();
  for (const auto& [name, description] : root.valueForKey("Files").entries()) {
    photos += description.valueForKey("Domain").equals("MediaDomain") ? 1 : 0;
    dates += description.valueForKey("ModificationTime").date() ? 1 : 0;
  }
  return dates == entryCount && photos > entryCount / 6 && photos < entryCount / 4;
}

}  // namespace
}  // namespace snaplift

int main(int argc, char** argv) {
  using namespace snaplift;
  const samples::PlistValue files = listOfFiles();
  const std::string binary = written("binary", samples::binaryPropertyList(files));
  const std::string xml = written("xml", samples::xmlPropertyList(files));

  bench::Ratios ratios;
  ratios.group("binary property list of 100,000 entries", bench::PageCache::Hot)
      .floor("read the file", [&] { return readsFile(binary); })
      .subject("read and visit", 4, [&] { return visitsEveryEntry(binary); });
  ratios.group("XML property list of 100,000 entries", bench::PageCache::Hot)
      .floor("read the file", [&] { return readsFile(xml); })
      .subject("read and visit", 8, [&] { return visitsEveryEntry(xml); });
  return ratios.run(argc, argv);
}
