#pragma once

namespace snaplift::outlineAccessible {

// Shows every OutlineView to screen readers, as long as the program runs; more than once is
// harmless. A reader meets a tree whose items hold their children, so that it knows each row's
// level by where it stands. (The interface that Qt gives an item view is one flat table.) An item
// has its title for a name, the view's description of the row, and can be selected, opened, closed
// and asked for its menu. What changes in the view is told to the readers that are there.
//
// Interfaces of rows are made when asked for and end with the rows. The user interface's thread.
void install();

}  // namespace snaplift::outlineAccessible
