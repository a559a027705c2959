#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "backups/ImageItem.h"

namespace snaplift {

enum class PhotoOrder {
  Backup,  // that of the decoder
  Date,
  Name,
  Size,
};

// What photos are found and ordered by, taken from each photo's PhotoInfo once: no file is read.
// Photos are meant by their number in the list that they were made of. For one thread, which pays
// for each kind of key when it is first asked for: some tens of milliseconds for 100,000 photos.
class PhotoKeys {
public:
  explicit PhotoKeys(const std::vector<ImageItem*>& photos);

  std::size_t count() const { return m_photos.size(); }
  bool isOriginal(std::size_t photo) const { return m_photos[photo].isOriginal; }
  std::optional<Instant> date(std::size_t photo) const {
    const Instant date = m_photos[photo].date;
    return date == noDate ? std::nullopt : std::optional(date);
  }
  // The path on the device, as searchableText() has it. Valid as long as the keys.
  std::string_view path(std::size_t photo);

  // A number for each photo by which an ascending or descending order is one of ascending numbers.
  // What has no date or no size comes last in either.
  std::vector<std::uint64_t> numbersFor(PhotoOrder order, bool isDescending);
  // The same for the months of their dates, in local time.
  std::vector<std::uint64_t> numbersForMonths(bool isDescending);

  // Of a photo whose date has no month: none, as for a photo without a date.
  static constexpr int noMonth = -1;
  // The months since the year 0.
  int month(std::size_t photo);

private:
  // No instant that a backup can give, and no size.
  static constexpr Instant noDate = Instant::min();
  static constexpr std::uint64_t noSize = std::numeric_limits<std::uint64_t>::max();
  struct Photo {
    Instant date;
    std::uint64_t size;
    bool isOriginal;
  };
  template <class Value>
  std::vector<std::uint64_t> numbers(bool isDescending, Value valueOf) const;
  void foldPaths();
  void findMonths();
  void rankNames();

  std::vector<Photo> m_photos;
  std::vector<ImageItem*> m_items;
  std::string m_paths;                  // one after another
  std::vector<std::size_t> m_pathEnds;  // in them; empty until asked for
  std::vector<int> m_months;            // empty until asked for
  std::vector<std::uint64_t> m_ranks;   // of the names; likewise
};

}  // namespace snaplift
