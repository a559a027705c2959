#pragma once

#include <QString>

namespace snaplift {

// The texts under the photos. Counts are written without grouping.

// "5 Photos", "2 of 5 Photos Selected", "1 Photo", "1 of 1 Photos Selected", "No Photos".
QString photoCountText(int photos, int selected);

// "Exporting: 3 Photos Remaining".
QString exportProgressText(int remaining);

}  // namespace snaplift
