#pragma once

#include <string>
#include <string_view>

namespace snaplift {

// `text`, which may be anything, as the name of one folder that every file system takes, those of
// sticks (FAT, exFAT) among them, and that leads nowhere else: characters that are forbidden or not
// seen become "_", as do bytes that are no UTF-8; blanks and dots at its end go, and so do blanks
// at its beginning. Before a leading dot, which would hide the folder, and before the name of a
// device of other systems ("CON", "com1.x") stands a "_". At most 100 bytes, never empty.
std::string portableName(std::string_view text);

// `name` with the letter case folded, character by character as exFAT does: names that are equal
// then may be one name in a folder. Bytes that are no UTF-8 stay as they are.
std::string foldedCase(std::string_view name);

}  // namespace snaplift
