#pragma once

#include <QIcon>
#include <QPixmap>
#include <string_view>

namespace snaplift {

// The application's resource image of that name, a PNG file, in the resolution of the finest
// screen: from the files "@2x" and "@3x" beside its own. Kept once it is loaded, for every row of
// the sidebar asks at every painting; a reader that is not told the format loads the decoders of
// all others at the start.
QPixmap imageNamed(std::string_view name);

// In the sizes that a desktop shows.
QIcon applicationIcon();

}  // namespace snaplift
