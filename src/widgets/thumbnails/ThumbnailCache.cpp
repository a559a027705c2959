#include "widgets/thumbnails/ThumbnailCache.h"

#include <iterator>
#include <utility>

namespace snaplift {

std::int64_t ThumbnailCache::costOf(const Entry& entry) {
  constexpr std::int64_t nodes = 128;  // of the list and the map, and the picture's own head
  return static_cast<std::int64_t>(sizeof(Entry) + entry.uid.capacity()) + nodes +
         entry.thumbnail.picture.sizeInBytes();
}

const Thumbnail* ThumbnailCache::find(std::string_view uid) {
  const auto found = m_byUID.find(uid);
  if (found == m_byUID.end()) {
    return nullptr;
  }
  m_entries.splice(m_entries.begin(), m_entries, found->second);
  return &found->second->thumbnail;
}

void ThumbnailCache::insert(const std::string& uid, Thumbnail thumbnail) {
  if (const auto found = m_byUID.find(uid); found != m_byUID.end()) {
    remove(found->second);
  }
  m_entries.push_front({uid, std::move(thumbnail)});
  m_byUID.emplace(m_entries.front().uid, m_entries.begin());
  m_byteCount += costOf(m_entries.front());
  while (m_byteCount > m_capacity) {
    remove(std::prev(m_entries.end()));
  }
}

void ThumbnailCache::remove(Entries::iterator entry) {
  m_byteCount -= costOf(*entry);
  m_byUID.erase(entry->uid);
  m_entries.erase(entry);
}

void ThumbnailCache::forgetUnread() {
  for (auto next = m_entries.begin(); next != m_entries.end();) {
    const auto entry = next++;
    const Thumbnail::State state = entry->thumbnail.state;
    if (state == Thumbnail::State::Missing || state == Thumbnail::State::Unreadable) {
      remove(entry);
    }
  }
}

void ThumbnailCache::clear() {
  m_byUID.clear();
  m_entries.clear();
  m_byteCount = 0;
}

}  // namespace snaplift
