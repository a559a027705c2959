#pragma once

#include <algorithm>
#include <functional>
#include <string>

#include "backups/ImageDataSource.h"
#include "foundation/files/Path.h"

namespace snaplift::test {

// A backup whose photos contain their own path: "lost" ones cannot be read, and those below
// "files/" are files of `folder`.
class PhotoSource : public ImageDataSource {
public:
  explicit PhotoSource(std::string folder = {}) : m_folder(std::move(folder)) {}

  std::optional<Bytes> imageDataForPath(const std::string& path, Bytes reuse) const override {
    onRead(path);
    if (path.find("lost") != std::string::npos) {
      return std::nullopt;
    }
    reuse.resize(path.size());
    std::ranges::copy(bytesOf(path), reuse.data());
    return reuse;
  }
  std::string contentFileForPath(const std::string& path) const override {
    return path.starts_with("files/") ? joinPath(m_folder, path) : std::string();
  }
  bool encrypted() const override { return isEncrypted; }

  std::function<void(const std::string& path)> onRead = [](const std::string&) {};
  bool isEncrypted = false;

private:
  const std::string m_folder;
};

}  // namespace snaplift::test
