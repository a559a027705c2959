#include "widgets/promises/PromisedFiles.h"

#include "foundation/Digest.h"
#include "foundation/files/OutputFolder.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

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

}  // namespace snaplift
