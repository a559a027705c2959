#pragma once

#include <stop_token>
#include <vector>

#include "export/ExportTypes.h"

namespace snaplift {

// Whether more than half of an export that is over was there already: came under a numbered name
// while a file with the same bytes bears the name itself, or an earlier number. Reads the files,
// those of another length apart; false where `stop` cut that short. From any thread.
bool areMostlyTwins(const std::vector<ExportedPhoto>& arrived, const std::stop_token& stop);

}  // namespace snaplift
