#pragma once

#include <QString>
#include <functional>
#include <string>

class QWidget;

namespace snaplift {

// Lets the user choose a folder, in the desktop's own dialog where it has one, as a sheet on
// `window`; new folders can be made from it. Returns at once. `chosen` is called with the folder's
// path when the user confirms with the button `prompt`; a cancelled dialog calls nothing. The
// choice begins at `start`, or the user's pictures, or the home folder: at the first that is there.
void chooseFolder(QWidget* window, const QString& prompt,
                  std::function<void(const std::string& folder)> chosen,
                  const std::string& start = {});

}  // namespace snaplift
