#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace snaplift::cli {

// The program's two streams: data on the standard output, everything else on the standard error.

using Json = nlohmann::ordered_json;

// A text of a backup as JSON, bytes kept; null where it is absent. Bytes that are no UTF-8 become
// U+FFFD when the value is printed.
Json jsonText(const std::optional<std::string>& text);

// Prints a value on one line of the standard output.
void printJson(const Json& value);

// Prints one line of data. Control characters of `line` are escaped: no name can forge a line or
// command the terminal.
void printLine(std::string_view line);

// Prints a heading among lines of data, bold where colour is wanted.
void printHeading(std::string_view heading);

// Tells the user something that is no data: one line on the standard error, escaped likewise.
void printMessage(std::string_view message);

// "12,345".
std::string countText(std::uint64_t count);

// "1 photo", "12,345 photos".
std::string countText(std::uint64_t count, std::string_view thing);

// "58.3 MB", in powers of 1000 as file managers count.
std::string sizeText(std::uint64_t bytes);

// Flushes the standard output. False where data was lost on the way: a full disk, a closed pipe.
bool flushOutput();

}  // namespace snaplift::cli
