#pragma once

#include <cstddef>

namespace snaplift {

// What a process that decodes strangers' pictures gives up before it sees the first byte of one.
// There is no way back, so it is called once, while the process has one thread and after every
// library has opened what it needs.

// What the kernel could take away. The limits of cage() hold in any case.
struct CageStrength {
  bool hasCallFilter = false;   // system calls that are not needed end the process (seccomp)
  bool hasFileSandbox = false;  // no path can be opened, whatever the call (Landlock)
};

// Ends the process together with the thread that started it, leaves it the socket alone of all open
// files, and takes it away from debuggers. Call first. False where the starter is already gone.
bool detachFromEverythingBut(int socket, int starter);

// From now on no path can be opened, whatever the call: the part of cage() that Landlock does.
// False where the kernel has none. PR_SET_NO_NEW_PRIVS is set, or the process may administer the
// system.
bool closeAllFiles();

// From now on the process can read and write the files that it is handed, take `memory` bytes more
// than it has, start threads of its own, and end. A core dump is never written. `memory` is not
// held to in a build with a sanitizer, whose shadow memory takes terabytes of address space.
CageStrength cage(std::size_t memory);

}  // namespace snaplift
