#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace snaplift {

// How people look for names and put them in order: letters that they take for one letter are one,
// whatever their case, their width and the way in which they are encoded. Handsets write accents
// behind their letters, keyboards do not.

// `text` for comparison: one that contains another in people's eyes contains it then byte by byte.
// Bytes that are no UTF-8 may be replaced.
std::string searchableText(std::string_view text);

// The order of names in the user's language (LC_ALL, else LC_COLLATE, else LANG), numbers in them
// by their value: "IMG_9" comes before "IMG_10". For one thread.
class NameOrder {
public:
  NameOrder();
  ~NameOrder();
  NameOrder(const NameOrder&) = delete;
  NameOrder& operator=(const NameOrder&) = delete;

  // Keys that, compared byte by byte, stand in the order of their names.
  std::string keyOf(std::string_view name) const;

private:
  struct Collator;
  std::unique_ptr<Collator> m_collator;
};

}  // namespace snaplift
