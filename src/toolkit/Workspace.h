#pragma once

#include <string>

namespace snaplift {

// Shows the folder in the desktop's file manager: through the file manager service of the session
// bus (org.freedesktop.FileManager1) where one answers, else through the program that the desktop
// opens folders with. Returns at once; what the desktop makes of it is not reported.
void openFolderInFileManager(const std::string& folder);

}  // namespace snaplift
