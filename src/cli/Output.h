#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace snaplift::cli {

// The program's two streams: data on the standard output, everything else on the standard error.
// No name of a backup can forge a line there or command a terminal: control characters are escaped
// in text and in JSON, and so is what turns the direction of a text or ends a line unseen.

using Json = nlohmann::ordered_json;

// To be called before anything else. A standard stream that the program was started without gets
// the null device: its number would otherwise go to the next file that is opened, a photo, and a
// report would be written into that.
void occupyStandardStreams();

// From here on every line of the standard output leaves the program at once, for whoever watches
// a long command through a pipe. To be called before the first line.
void printLinesAtOnce();

// A text of a backup as JSON, bytes kept; null where it is absent. Bytes that are no UTF-8 become
// U+FFFD when the value is printed.
Json jsonText(const std::optional<std::string>& text);

// A value as printJson() prints it, for a value that is too large to be made as a whole.
std::string jsonLineText(const Json& value);
void printJsonPart(std::string_view part);

// Prints a value on one line of the standard output.
void printJson(const Json& value);

// Prints a text that is written in the program itself, as it is.
void printText(std::string_view text);

// Prints one line of data.
void printLine(std::string_view line);

// Prints a heading among lines of data, bold where colour is wanted.
void printHeading(std::string_view heading);

// Tells the user something that is no data: one line on the standard error.
void printMessage(std::string_view message);

// Tells the user what is good to know, unless the program is to be quiet.
void printNote(std::string_view note);

// From here on only data and messages leave the program: no notes, no progress, and no lines of the
// log.
void beQuiet();
bool isQuiet();

// "12,345".
std::string countText(std::uint64_t count);

// "1 photo", "12,345 photos".
std::string countText(std::uint64_t count, std::string_view thing);

// ", 12 short": what is rare stands in a line only where there is some of it.
std::string rareCountText(std::uint64_t count, std::string_view what);

// "58.3 MB", in powers of 1000 as file managers count.
std::string sizeText(std::uint64_t bytes);

// Flushes the standard output. False, and a message to the user, where data was lost on the way: a
// full disk, a closed pipe.
bool flushOutput();

}  // namespace snaplift::cli
