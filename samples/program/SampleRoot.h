#pragma once

#include <string>

namespace snaplift::samples {

// Writes a backup root that a person can explore: several devices with backups of every generation,
// an encrypted backup, one without photos, one of a version that is too old, one whose manifest and
// photos are damaged, and one that was interrupted. The photos are painted in camera size, or in a
// quarter of it where `small` is wanted. Two runs write the same bytes. Throws std::runtime_error
// when something cannot be written.
void writeSampleRoot(const std::string& root, bool small);

}  // namespace snaplift::samples
