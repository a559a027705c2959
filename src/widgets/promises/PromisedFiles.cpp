#include "widgets/promises/PromisedFiles.h"

#include <QEventLoop>
#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>
#include <thread>

#include "foundation/Parallel.h"
#include "foundation/files/FileURL.h"
#include "foundation/files/NewFile.h"
#include "foundation/files/OutputFolder.h"
#include "foundation/files/Path.h"
#include "foundation/files/TemporaryFolder.h"
#include "widgets/desktop/MainThread.h"

namespace snaplift {
namespace {

int hexDigit(char c) {
  if (c >= '0' && c <= '9') {
    return c - '0';
  }
  const char lower = static_cast<char>(c | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::string percentDecoded(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isEscape = text[i] == '%' && i + 2 < text.size() && hexDigit(text[i + 1]) >= 0 &&
                          hexDigit(text[i + 2]) >= 0;
    result +=
        isEscape ? static_cast<char>(hexDigit(text[i + 1]) * 16 + hexDigit(text[i + 2])) : text[i];
    i += isEscape ? 2 : 0;
  }
  return result;
}

std::string foldedCase(std::string name) {
  std::transform(name.begin(), name.end(), name.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; });
  return name;
}

// A folder for one drag: drags may follow each other while the receivers of the first still copy.
std::string newFolder() {
  static int drags = 0;
  const std::string& parent = temporaryFolder();
  if (parent.empty()) {
    return {};
  }
  const std::string folder = joinPath(parent, "drag-" + std::to_string(++drags));
  std::error_code error;
  return std::filesystem::create_directory(folder, error) ? folder : std::string();
}

}  // namespace

std::optional<std::string> folderOfDirectSave(std::string_view url, std::string_view hostName) {
  constexpr std::string_view scheme = "file://";
  url = url.substr(0, url.find('\0'));
  if (!url.starts_with(scheme)) {
    return std::nullopt;
  }
  url.remove_prefix(scheme.size());
  const std::size_t pathStart = url.find('/');
  if (pathStart == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view host = url.substr(0, pathStart);
  const std::string path = percentDecoded(url.substr(pathStart));
  const std::string folder(parentPath(path));
  const bool isLocal = host.empty() || host == "localhost" || host == hostName;
  const bool isWhole = path.find('\0') == std::string::npos;
  return isLocal && isWhole && isWritableFolder(folder) ? std::optional(folder) : std::nullopt;
}

std::vector<std::string> distinctNames(const std::vector<PromisedFile>& files) {
  std::vector<std::string> names;
  std::set<std::string> taken;
  for (const PromisedFile& file : files) {
    const std::string wanted = isFileName(file.name) ? file.name : "photo";
    const std::string extension(pathExtension(wanted));
    std::string name = wanted;
    for (int number = 1; !taken.insert(foldedCase(name)).second; ++number) {
      name = std::string(pathStem(wanted)) + " " + std::to_string(number) +
             (extension.empty() ? "" : "." + extension);
    }
    names.push_back(std::move(name));
  }
  return names;
}

void PromisedFileList::choosePaths() {
  if (std::exchange(m_hasPaths, true)) {
    return;
  }
  const std::string folder = newFolder();
  if (!folder.empty()) {
    for (const std::string& name : distinctNames(m_files)) {
      m_paths.push_back(joinPath(folder, name));
    }
  }
}

std::string PromisedFileList::uriList() {
  choosePaths();
  std::string list;
  for (const std::string& path : m_paths) {
    if (!path.empty()) {
      list += fileURL(path) + "\r\n";
    }
  }
  return list;
}

void PromisedFileList::write() {
  choosePaths();
  if (m_paths.empty() || std::exchange(m_isWritten, true)) {
    return;
  }
  QEventLoop loop;
  std::thread writer([this, &loop] {
    parallelFor(m_paths.size(), std::max(std::thread::hardware_concurrency(), 1U),
                [this](std::size_t i) {
                  const std::optional<Bytes> bytes = m_files[i].bytes();
                  if (!bytes || createFile(m_paths[i], *bytes)) {
                    m_paths[i].clear();
                  }
                });
    mainThread::run([&loop] { loop.quit(); });
  });
  loop.exec(QEventLoop::ExcludeUserInputEvents);
  writer.join();
}

}  // namespace snaplift
