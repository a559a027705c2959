#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace snaplift {

// Puts `order`, which holds indexes into `keys`, into the order of their keys. Equal ones stay in
// the order in which they are. It takes time in proportion to their number (a radix sort): twice as
// many photos take twice as long.
void orderByKey(std::vector<std::uint32_t>& order, const std::vector<std::uint64_t>& keys);

// For each of `texts` how many smaller ones there are, compared byte by byte: equal texts have
// equal ranks. Linear too, unless many texts begin alike with as many bytes again as all of them.
std::vector<std::uint64_t> ranksOf(const std::vector<std::string>& texts);

}  // namespace snaplift
