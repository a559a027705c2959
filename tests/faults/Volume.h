#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace snaplift {

// A file system of a test's own, mounted on an empty folder as long as the object lives. Mounting
// needs root, exFAT the programs that make and serve it (packages exfatprogs and exfat-fuse), and
// FAT mkfs.vfat (dosfstools) and a kernel that knows it or the program that serves it (fusefat):
// the makers answer nothing where it cannot be had, and the test is skipped. Those in an image have
// room for `size` bytes; the image takes only what is used of them.
class Volume {
public:
  static constexpr std::size_t leastSize = std::size_t{320} << 20;  // that mkfs.xfs takes
  using Maker = std::unique_ptr<Volume> (*)(const std::string& folder, const std::string& image,
                                            std::size_t size);

  // In memory, with room for `size` bytes.
  static std::unique_ptr<Volume> inMemory(const std::string& folder, std::size_t size);

  // exFAT served through FUSE: no links, no permissions, letter case folded, no rename that refuses
  // a taken name. Its bytes are in the new file `image`.
  static std::unique_ptr<Volume> exFat(const std::string& folder, const std::string& image,
                                       std::size_t size = leastSize);

  // FAT, as a stick has it: by the kernel, else through FUSE.
  static std::unique_ptr<Volume> fat(const std::string& folder, const std::string& image,
                                     std::size_t size = leastSize);

  // File systems of the kernel that share blocks (btrfs-progs, xfsprogs), and one that does not.
  static std::unique_ptr<Volume> btrfs(const std::string& folder, const std::string& image,
                                       std::size_t size = leastSize);
  static std::unique_ptr<Volume> xfs(const std::string& folder, const std::string& image,
                                     std::size_t size = leastSize);
  static std::unique_ptr<Volume> ext4(const std::string& folder, const std::string& image,
                                      std::size_t size = leastSize);

  Volume(const Volume&) = delete;
  Volume& operator=(const Volume&) = delete;
  ~Volume();

  bool makeReadOnly();

private:
  static std::unique_ptr<Volume> fromImage(const std::string& folder, const std::string& image,
                                           std::size_t size, const std::string& makeProgram,
                                           const std::vector<std::string>& mountPrograms);
  explicit Volume(std::string folder) : m_folder(std::move(folder)) {}

  std::string m_folder;
};

}  // namespace snaplift
