#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace snaplift {

// Tables as RFC 4180 writes them. Bytes are kept, whatever they are.

// One line with its end: fields with a comma, a quote or a line end in them stand in quotes.
std::string csvLine(const std::vector<std::string_view>& fields);

// Takes the first line off `text`, which may end as lines of Unix do. Nothing where a quote is not
// closed, or where something stands behind one.
std::optional<std::vector<std::string>> takeCsvLine(std::string_view& text);

}  // namespace snaplift
