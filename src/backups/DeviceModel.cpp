#include "backups/DeviceModel.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <utility>

#include "foundation/Time.h"
#include "foundation/files/Path.h"

namespace snaplift {

namespace {

using Titles = std::map<const BackupModel*, std::string>;

// Each title that several backups share becomes what `retitled` makes of a backup and all of them.
template <class Retitled>
void tellApart(Titles& titles, Retitled retitled) {
  std::map<std::string, std::vector<const BackupModel*>> sharing;
  for (const auto& [backup, title] : titles) {
    sharing[title].push_back(backup);
  }
  for (const auto& [title, backups] : sharing) {
    for (const BackupModel* backup : backups) {
      titles[backup] = backups.size() > 1 ? retitled(*backup, backups) : title;
    }
  }
}

// The lowest folder of a path that tells it from the others: a copy of a backup bears the name of
// the backup, and only a folder above says where it lies.
std::string ownFolder(std::string_view path, const std::vector<const BackupModel*>& all) {
  std::vector<std::string_view> others(all.size());
  std::ranges::transform(all, others.begin(), &BackupModel::path);
  std::erase(others, path);
  while (true) {
    const std::string_view folder = lastPathComponent(path);
    std::erase_if(others,
                  [&](std::string_view other) { return lastPathComponent(other) != folder; });
    if (others.empty() || folder.empty()) {
      return std::string(folder);
    }
    path = parentPath(path);
    std::ranges::transform(others, others.begin(), parentPath);
  }
}

constexpr std::size_t shownLettersOfIdentifier = 6;

// Of letters and digits alone, for the identifier is a stranger's.
std::string endOfIdentifier(std::string_view identifier) {
  std::string end;
  std::ranges::copy_if(identifier, std::back_inserter(end),
                       [](unsigned char c) { return c < 0x80 && std::isalnum(c) != 0; });
  end.erase(0, end.size() - std::min(end.size(), shownLettersOfIdentifier));
  return end;
}

}  // namespace

std::optional<std::string> DeviceModel::ownTitle() {
  const auto isText = [](const std::string& text) {
    return text.find_first_not_of(" \t\n") != std::string::npos;
  };
  if (m_name && isText(*m_name)) {
    return m_name;
  }
  for (const auto& backup : backups()) {
    if (backup->productType() && isText(*backup->productType())) {
      return backup->productType();
    }
  }
  return std::nullopt;
}

std::string DeviceModel::titleOfHandset(const BackupModel& backup) {
  const std::optional<std::string>& identifier = backup.deviceIdentifier();
  const bool isOneOfSeveral = std::ranges::any_of(m_backups, [&](const auto& other) {
    return identifier && other->deviceIdentifier() && other->deviceIdentifier() != identifier;
  });
  return isOneOfSeveral ? title() + " (" + endOfIdentifier(*identifier) + ")" : title();
}

std::string DeviceModel::titleOfBackup(const BackupModel& backup) {
  if (m_titles.empty()) {
    for (const auto& each : m_backups) {
      m_titles.emplace(each.get(), each->name());
    }
    tellApart(m_titles, [](const BackupModel& each, const auto&) {
      return each.name() + ", " + timeOfDayText(each.date());
    });
    tellApart(m_titles, [](const BackupModel& each, const auto& all) {
      return each.name() + " (" + ownFolder(each.path(), all) + ")";
    });
  }
  return m_titles[&backup];
}

void DeviceModel::addBackup(std::unique_ptr<BackupModel> backup) {
  m_titles.clear();
  m_backups.push_back(std::move(backup));
  m_sorted = false;
}

std::unique_ptr<BackupModel> DeviceModel::removeBackup(const BackupModel& backup) {
  const auto entry = std::ranges::find(m_backups, &backup, &std::unique_ptr<BackupModel>::get);
  m_titles.clear();
  std::unique_ptr<BackupModel> removed = std::move(*entry);
  m_backups.erase(entry);
  return removed;
}

const std::vector<std::unique_ptr<BackupModel>>& DeviceModel::backups() {
  if (!m_sorted) {
    std::ranges::sort(m_backups, [](const auto& a, const auto& b) {
      return a->date() != b->date() ? a->date() > b->date() : a->path() < b->path();
    });
    m_sorted = true;
  }
  return m_backups;
}

Instant DeviceModel::mostRecentBackupDate() {
  return backups().empty() ? Instant() : backups().front()->date();
}

}  // namespace snaplift
