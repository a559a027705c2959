#pragma once

#include <cstdint>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>

#include "widgets/thumbnails/Thumbnail.h"

namespace snaplift {

// Thumbnails by the identity of their photo, within a bound in bytes: the ones that were not asked
// for longest go first. It holds decoded pictures, never a photo's bytes. One thread.
class ThumbnailCache {
public:
  static constexpr std::int64_t defaultCapacity = 256 * 1024 * 1024;

  explicit ThumbnailCache(std::int64_t capacity = defaultCapacity) : m_capacity(capacity) {}

  // Null if there is none. Valid until the next insert() or clear().
  const Thumbnail* find(std::string_view uid);
  // Replaces what was there. A thumbnail that is larger than the whole capacity is not kept.
  void insert(const std::string& uid, Thumbnail thumbnail);
  // Photos that could not be read are asked for again: their disk may be back.
  void forgetUnread();
  void clear();

  std::int64_t byteCount() const { return m_byteCount; }
  std::int64_t capacity() const { return m_capacity; }

private:
  struct Entry {
    std::string uid;
    Thumbnail thumbnail;
  };
  using Entries = std::list<Entry>;  // the most recently used first

  static std::int64_t costOf(const Entry& entry);
  void remove(Entries::iterator entry);

  std::int64_t m_capacity;
  std::int64_t m_byteCount = 0;
  Entries m_entries;
  std::unordered_map<std::string_view, Entries::iterator> m_byUID;  // keys live in the entries
};

}  // namespace snaplift
