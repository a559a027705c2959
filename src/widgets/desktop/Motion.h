#pragma once

namespace snaplift::motion {

// Whether things are to be where they go at once, without moving there: the wish of the desktop's
// accessibility settings, as the style passes it on. Asked at the start of every animation. User
// interface's thread.
bool isReduced();

// Tests let nothing move.
void setReduced(bool reduced);

}  // namespace snaplift::motion
