#include "backups/BackupSearch.h"

#include <algorithm>
#include <array>
#include <deque>
#include <filesystem>
#include <set>
#include <string_view>
#include <utility>

#include "backups/BackupPlaces.h"
#include "foundation/files/FolderTree.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

constexpr std::size_t maximumFoldersInLine = 1 << 15;
constexpr unsigned maximumDepth = 256;  // below the named folder; each may keep a descriptor
constexpr int maximumErrorsInARow = 16;
constexpr std::size_t foldersBetweenLooks = 256;

bool isManifest(std::string_view name) {
  constexpr std::array<std::string_view, 4> manifests = {"manifest.plist", "manifest.mbdb",
                                                         "manifest.mbdx", "manifest.db"};
  return std::ranges::any_of(manifests, [&](auto one) { return equalsIgnoringCase(name, one); });
}

// The files of one folder, as far as they tell a backup.
struct Signs {
  bool info = false, manifest = false;

  void see(std::string_view name) {
    info = info || equalsIgnoringCase(name, "info.plist");
    manifest = manifest || isManifest(name);
  }
};

// What the search of one call keeps for all of its folders.
struct Search {
  const BackupSearchEvents& events;
  const std::stop_token stop;
  BackupSearchResult result = {};
  std::set<FolderIdentity> found = {};

  // Whether it is a permission that is missing.
  bool tellUnreadable(const std::string& folder, const std::error_code& error) {
    const bool isForbidden =
        error == std::errc::permission_denied || error == std::errc::operation_not_permitted;
    ++(isForbidden ? result.forbidden : result.unreadable);
    if (events.unreadable) {
      events.unreadable(folder, error);
    }
    return isForbidden;
  }
};

// The search below one named folder.
class Walk {
public:
  Walk(Search& search, std::string top, const FolderTree& tree,
       std::set<std::string, std::less<>> skipped)
      : m_search(search), m_top(std::move(top)), m_tree(tree), m_skipped(std::move(skipped)) {}

  void run() {
    if (takeBackup("", 0)) {
      return;
    }
    for (const std::string& place : knownBackupRoots(m_tree)) {
      searchFrom(place);
      m_skipped.insert(place);
    }
    searchFrom("");
    if (!isOver()) {
      lookWhetherItIsStillThere();
    }
  }

private:
  struct Folder {
    std::string path;  // relative to the top
    unsigned depth;    // below the known place, or the top
  };

  void searchFrom(const std::string& place) {
    if (m_skipped.contains(place)) {
      return;
    }
    m_line.push_back({place, 0});
    while (!m_line.empty() && !isOver()) {
      const Folder folder = std::move(m_line.front());
      m_line.pop_front();
      lookInto(folder);
    }
    m_line.clear();
  }

  bool isOver() const { return m_search.stop.stop_requested() || m_search.result.diskIsGone; }

  void lookInto(const Folder& folder) {
    const std::string path = joinPath(m_top, folder.path);
    if (m_search.events.looking) {
      m_search.events.looking(path);
    }
    if (++m_search.result.folders % foldersBetweenLooks == 0) {
      lookWhetherItIsStillThere();
    }
    const std::size_t inLine = m_line.size();
    Signs signs;
    const std::error_code error =
        m_tree.visitEntries(folder.path, [&](std::string_view name, bool isFolder) {
          if (isFolder) {
            putInLine({joinPath(folder.path, name), folder.depth + 1});
          } else {
            signs.see(name);
          }
          return !isOver();
        });
    take(error, path);
    if ((signs.manifest || (signs.info && folder.depth <= 1)) &&
        takeBackup(folder.path, folder.depth)) {
      m_line.resize(std::min(inLine, m_line.size()));  // nobody looks for backups in a backup
    }
  }

  void putInLine(Folder folder) {
    if (!m_skipped.empty() && m_skipped.contains(folder.path)) {
      return;
    }
    if (folder.depth > maximumDepth) {
      m_search.result.tooDeep = true;
    } else if (m_line.size() < maximumFoldersInLine) {
      m_line.push_back(std::move(folder));
    } else {
      lookInto(folder);
    }
  }

  // Whether there is a backup at `folder`, which is told of unless it is known already.
  bool takeBackup(const std::string& folder, unsigned depth) {
    const std::string path = joinPath(m_top, folder);
    if (depth == 0 && !looksLikeBackup(path)) {
      return false;
    }
    const auto identity = folderIdentity(path);
    if (!identity) {
      lookWhetherItIsStillThere();
      return false;
    }
    if (m_search.found.contains(*identity)) {
      return true;
    }
    std::unique_ptr<BackupModel> backup = BackupModel::initWithBackupAtPath(path);
    if (!backup) {
      return false;
    }
    m_search.found.insert(*identity);
    ++m_search.result.backups;
    m_search.events.found(std::move(backup));
    return true;
  }

  // A tree that is open stays readable when its disk is unmounted, but nothing else on it does.
  void lookWhetherItIsStillThere() { m_search.result.diskIsGone |= !m_tree.isStillAt(m_top); }

  void take(const std::error_code& error, const std::string& path) {
    if (!error) {
      m_errorsInARow = 0;
      return;
    }
    const bool hasGoneOrIsNone =
        error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory ||
        error == std::errc::too_many_symbolic_link_levels || error == std::errc::cross_device_link;
    if (error == std::errc::filename_too_long) {
      m_search.result.tooDeep = true;
    } else if (!hasGoneOrIsNone) {
      m_errorsInARow = m_search.tellUnreadable(path, error) ? 0 : m_errorsInARow + 1;
      m_search.result.diskIsGone |= m_errorsInARow >= maximumErrorsInARow;
    }
  }

  Search& m_search;
  const std::string m_top;
  const FolderTree& m_tree;
  std::set<std::string, std::less<>> m_skipped;  // have been searched
  std::deque<Folder> m_line;
  int m_errorsInARow = 0;
};

// A folder that was named, by the path that all its names lead to.
struct NamedFolder {
  std::string canonicalPath;
  FolderTree tree;
};

// `path` relative to `top`; nothing where it does not lie below. Both are canonical.
std::optional<std::string> pathBelow(const std::string& top, const std::string& path) {
  const std::string start = top.ends_with('/') ? top : top + "/";
  return path == top               ? std::optional<std::string>("")
         : path.starts_with(start) ? std::optional(path.substr(start.size()))
                                   : std::nullopt;
}

}  // namespace

BackupSearchResult searchForBackups(const std::vector<std::string>& folders,
                                    const BackupSearchEvents& events, std::stop_token stop) {
  Search search{events, std::move(stop)};
  std::vector<NamedFolder> searched;
  for (const std::string& folder : folders) {
    std::error_code error;
    NamedFolder named{std::filesystem::canonical(folder, error).string(), FolderTree(folder)};
    if (error || named.tree.error()) {
      search.tellUnreadable(folder, error ? error : named.tree.error());
      continue;
    }
    const bool wasSearched = std::ranges::any_of(searched, [&](const NamedFolder& earlier) {
      const auto path = pathBelow(earlier.canonicalPath, named.canonicalPath);
      return path && earlier.tree.holdsFolder(*path);
    });
    if (wasSearched) {
      continue;
    }
    std::set<std::string, std::less<>> skipped;
    for (const NamedFolder& earlier : searched) {
      if (const auto path = pathBelow(named.canonicalPath, earlier.canonicalPath)) {
        skipped.insert(*path);
      }
    }
    Walk(search, folder, named.tree, std::move(skipped)).run();
    searched.push_back(std::move(named));
  }
  return search.result;
}

}  // namespace snaplift
