#include "faults/Volume.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <sys/mount.h>
#include <unistd.h>

namespace snaplift {
namespace {

bool run(const std::string& command) {
  return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

}  // namespace

std::unique_ptr<Volume> Volume::inMemory(const std::string& folder, std::size_t size) {
  const std::string options = "size=" + std::to_string(size);
  if (::mount("none", folder.c_str(), "tmpfs", 0, options.c_str()) != 0) {
    return nullptr;
  }
  return std::unique_ptr<Volume>(new Volume(folder));
}

// Mounts an empty file system by the first of the programs that can; each gets the image and the
// folder as its last arguments.
std::unique_ptr<Volume> Volume::fromImage(const std::string& folder, const std::string& image,
                                          std::size_t size, const std::string& makeProgram,
                                          const std::vector<std::string>& mountPrograms) {
  if (::geteuid() != 0) {
    return nullptr;
  }
  std::ofstream(image).close();
  std::filesystem::resize_file(image, size);
  const std::string arguments = " '" + image + "' '" + folder + "'";
  const bool isMounted = run(makeProgram + " '" + image + "'") &&
                         std::ranges::any_of(mountPrograms, [&](const std::string& program) {
                           return run(program + arguments);
                         });
  return isMounted ? std::unique_ptr<Volume>(new Volume(folder)) : nullptr;
}

std::unique_ptr<Volume> Volume::exFat(const std::string& folder, const std::string& image,
                                      std::size_t size) {
  return fromImage(folder, image, size, "mkfs.exfat", {"mount -t exfat-fuse -o loop"});
}

std::unique_ptr<Volume> Volume::fat(const std::string& folder, const std::string& image,
                                    std::size_t size) {
  return fromImage(folder, image, size, "mkfs.vfat -F 32",
                   {"mount -t vfat -o loop", "fusefat -o rw+"});
}

std::unique_ptr<Volume> Volume::btrfs(const std::string& folder, const std::string& image,
                                      std::size_t size) {
  return fromImage(folder, image, size, "mkfs.btrfs", {"mount -o loop"});
}

std::unique_ptr<Volume> Volume::xfs(const std::string& folder, const std::string& image,
                                    std::size_t size) {
  return fromImage(folder, image, size, "mkfs.xfs", {"mount -o loop"});
}

std::unique_ptr<Volume> Volume::ext4(const std::string& folder, const std::string& image,
                                     std::size_t size) {
  return fromImage(folder, image, size, "mkfs.ext4", {"mount -o loop"});
}

Volume::~Volume() {
  // Detached: whoever still has a file open on it does not keep the test from ending.
  ::umount2(m_folder.c_str(), MNT_DETACH);
}

bool Volume::makeReadOnly() {
  return ::mount("none", m_folder.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0;
}

}  // namespace snaplift
