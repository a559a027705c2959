#pragma once

#include <string>
#include <string_view>

namespace snaplift {

// Paths are byte strings, exactly as the file system gives them; they need not be UTF-8. The
// functions below only look at "/" and ".".

// `folder` and `name` with exactly one "/" between the two, whether or not `folder` ends with one
// or `name` begins with one. An empty part adds no "/".
std::string joinPath(std::string_view folder, std::string_view name);

// What follows the last "/", trailing slashes ignored: "IMG_0001.JPG" of "/b/IMG_0001.JPG".
std::string_view lastPathComponent(std::string_view path);

// What stands before the last component, without trailing slashes: "/b" of "/b/IMG_0001.JPG", "/"
// of "/b", "" of "b".
std::string_view parentPath(std::string_view path);

// What follows the last "." of the last component, letter case as stored: "JPG". Empty where there
// is none, or where nothing stands before the dot or behind it (".profile", "photo.").
std::string_view pathExtension(std::string_view path);

// The last component without its extension and the dot: "IMG_0001".
std::string_view pathStem(std::string_view path);

// Whether `name` can be one file inside a folder: not empty, no "/" and no NUL in it, not "." or
// "..". Names that come from a backup are asked before they touch a file system.
bool isFileName(std::string_view name);

// Equal but for the letter case of A to Z. Other bytes compare as they are, so that the answer does
// not depend on a locale.
bool equalsIgnoringCase(std::string_view a, std::string_view b);

// Whether `text` ends with `suffix`, by the comparison of equalsIgnoringCase.
bool endsWithIgnoringCase(std::string_view text, std::string_view suffix);

}  // namespace snaplift
