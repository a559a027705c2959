#pragma once

#include <QPalette>
#include <QString>

class QWidget;

namespace snaplift::gallery {

// Pictures of the views in their states, for the eye of whoever changes how they look. Each view
// has a function in a file of its own that shows it and saves picture after picture; main() calls
// it by its name on the command line. The scale factor is that of the process (QT_SCALE_FACTOR).

// Saves what `window` shows now as `folder`/`name`@<scale>x.png.
void save(QWidget& window, const QString& folder, const QString& name);

// The views.
void paintBrowser(const QString& folder);
void paintSidebar(const QString& folder);
// The whole window, over the user's backups.
void paintWindow(const QString& folder);

// A light and a dark colour scheme as desktops have them.
QPalette lightPalette();
QPalette darkPalette();

}  // namespace snaplift::gallery
