#pragma once

#include <string>
#include <vector>

namespace snaplift {

// Shows the folder in the desktop's file manager: through the file manager service of the session
// bus (org.freedesktop.FileManager1) where one answers, else through the program that the desktop
// opens folders with. Returns at once; what the desktop makes of it is not reported.
void openFolderInFileManager(const std::string& folder);

// The same, with these files in it selected where the service knows how.
void showFilesInFileManager(const std::string& folder, const std::vector<std::string>& files);

// Opens the file with the program that the desktop has for its kind. False where it has none.
bool openFileInItsProgram(const std::string& path);

}  // namespace snaplift
