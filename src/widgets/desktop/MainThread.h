#pragma once

#include <functional>

namespace snaplift {

// The way from any thread to the user interface's thread, the one that the application object
// lives on. Background work calls it; views never need to.
//
// A waiting hand-over could deadlock with a user interface that waits for the background thread to
// end. So waiting is given up once the application is quitting: beginQuitting() wakes everybody
// who waits, and what has not begun to run then never runs.
namespace mainThread {

// Runs `work` on the user interface's thread, soon, and returns at once. On that thread itself it
// is also deferred. Work that is still queued when the application goes is dropped.
void run(std::function<void()> work);

// Runs `work` on the user interface's thread and returns when it has run: true. False: the
// application is quitting and `work` has not run and will not. Called on that thread itself, it
// runs `work` directly.
bool runAndWait(std::function<void()> work);

// From here on no hand-over waits. Call on the user interface's thread, before joining threads.
void beginQuitting();

// Takes beginQuitting() back, for a process that starts a second application object (tests do).
void resume();

}  // namespace mainThread
}  // namespace snaplift
