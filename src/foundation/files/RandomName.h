#pragma once

#include <string>
#include <string_view>

namespace snaplift {

// Names for what the program puts beside other people's files: `prefix`, 16 lower-case hexadecimal
// digits and `suffix`. The digits are 64 random bits of the system, so that nobody can guess the
// name, and processes and machines that share a folder do not meet.
std::string randomName(std::string_view prefix, std::string_view suffix = {});

// Whether `name` is one that randomName could make from `prefix` without a suffix.
bool isRandomName(std::string_view name, std::string_view prefix);

}  // namespace snaplift
