#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation/TimeSpan.h"

namespace snaplift {

// What somebody types to find photos: a part of a name or of a path on the device, in letters that
// people take for the same (searchableText), or a date in words (timeSpanOfWords). A text that can
// be both means both: "2011" finds the photos of that year, and IMG_2011.JPG.
class PhotoQuery {
public:
  explicit PhotoQuery(std::string_view text);

  // Without a word in it: meets every photo.
  bool isEmpty() const { return m_part.empty(); }
  // `path` is the path on the device, which ends with the name, as searchableText() has it.
  bool finds(std::string_view path, std::optional<Instant> date) const;

private:
  std::string m_part;
  std::optional<TimeSpan> m_span;
};

}  // namespace snaplift
