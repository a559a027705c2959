#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace snaplift {

// The entries of a manifest by domain, each domain's in the order of their adding. Letter case
// counts; an absent domain is the empty text. Domains come out in byte order, so that what is made
// of them is the same at every run. Safe to read from several threads once it is filled.
template <class Entry>
class ManifestDomains {
public:
  using Map = std::map<std::string, std::vector<Entry>, std::less<>>;

  ManifestDomains() = default;
  ManifestDomains(const ManifestDomains&) = delete;
  ManifestDomains& operator=(const ManifestDomains&) = delete;

  void append(std::string_view domain, Entry entry) {
    // Manifests list the entries of a domain in long runs: the last list is kept at hand.
    if (!m_last || m_last->first != domain) {
      auto found = m_map.find(domain);
      if (found == m_map.end()) {
        found = m_map.emplace(domain, std::vector<Entry>()).first;
      }
      m_last = &*found;
    }
    m_last->second.push_back(std::move(entry));
  }

  void clear() {
    m_map.clear();
    m_last = nullptr;
  }

  // The entries of `domain`; nullptr where it has none.
  const std::vector<Entry>* entriesOf(std::string_view domain) const {
    const auto found = m_map.find(domain);
    return found == m_map.end() ? nullptr : &found->second;
  }

  // All domains with their entries.
  const Map& map() const { return m_map; }
  Map& map() { return m_map; }

private:
  Map m_map;
  typename Map::value_type* m_last = nullptr;
};

// How many entries a walk over a manifest handles between two looks at its stop token.
inline constexpr std::size_t entriesBetweenStopTests = 1024;

}  // namespace snaplift
