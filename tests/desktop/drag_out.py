"""Drags three photos with the pointer into a file manager's window, and onto the bare desktop.

usage: drag_out.py DRAGWINDOW FILE-MANAGER   (on a session bus of its own)
"""

import contextlib
import os
import queue
import subprocess
import sys
import tempfile
import threading

from desktop import (PATIENCE, make_home, start_display, start_file_manager, started, wait_for,
                     xdotool)


class PhotoWindow:
    """The window that is dragged from, and what it has told so far."""

    def __init__(self, stack, program):
        environment = dict(os.environ, QT_QPA_PLATFORM="xcb", QT_SCALE_FACTOR="1")
        self.process = started(stack, [program], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                               text=True, bufsize=1, env=environment)
        self.lines = queue.Queue()
        threading.Thread(target=lambda: [self.lines.put(line.strip())
                                         for line in self.process.stdout], daemon=True).start()
        self.heard = []

    def hear(self):
        while not self.lines.empty():
            self.heard.append(self.lines.get())
        return self.heard

    def wait(self, line, start=0):
        wait_for(f'"{line}"', lambda: line in self.hear()[start:])

    def last(self, word):
        return [line for line in self.hear() if line.startswith(word + " ")][-1].split()[1:]

    def ask(self):
        """Where the photos are and how often they were read, once nothing is loading any more."""
        def answered():
            start = len(self.hear())
            self.process.stdin.write("\n")
            self.process.stdin.flush()
            wait_for("an answer", lambda: len(self.hear()) > start)
            return any(line.startswith("photo 4") for line in wait_for(
                "a whole answer", lambda: [line for line in self.hear()[start:]
                                           if line == "busy" or line.startswith("reads")]
                and self.hear()[start:]))
        wait_for("the photos", answered)

    def places(self):
        self.ask()
        lines = [line.split() for line in self.heard if line.startswith("photo ")][-5:]
        return [(int(x), int(y)) for _, _, x, y in lines]

    def settled_places(self):
        """The window manager may still be placing the window."""
        previous = []
        def stay():
            nonlocal previous
            now = self.places()
            same = now == previous
            previous = now
            return same
        wait_for("the window to stay", stay)
        return previous

    def close(self):
        self.process.stdin.close()
        self.process.wait(PATIENCE)


def drag(window, start, target, wanted):
    """Presses at `start`, moves to `target` and goes on trembling there until the window tells the
    action that is wanted; the button stays down."""
    begin = len(window.hear())
    xdotool("mousemove", *start)
    xdotool("mousedown", 1)
    for step in range(1, 6):
        xdotool("mousemove", start[0] + 6 * step, start[1] + 4 * step)
    window.wait("drag begins", begin)
    trembles = 0
    def answered():
        nonlocal trembles
        trembles += 1
        xdotool("mousemove", target[0] + trembles % 7, target[1] + trembles % 5)
        actions = [line for line in window.hear()[begin:] if line.startswith("action ")]
        return actions and actions[-1] == wanted
    if wanted:
        wait_for(f"the target to answer {wanted}", answered)
    else:
        xdotool("mousemove", *target)
    return begin


def main(program, manager):
    with contextlib.ExitStack() as stack:
        folder = stack.enter_context(tempfile.TemporaryDirectory(prefix="snaplift-drag-"))
        make_home(stack)
        start_display(stack)
        window = PhotoWindow(stack, program)
        _, target = start_file_manager(stack, manager, folder, 660, 120, 560, 500)

        photos = window.settled_places()
        xdotool("mousemove", *photos[1])
        xdotool("click", 1)
        for index in (2, 4):
            xdotool("mousemove", *photos[index])
            xdotool("keydown", "ctrl")
            xdotool("click", 1)
            xdotool("keyup", "ctrl")
        window.ask()
        reads = window.last("reads")

        # Nobody takes files on the bare desktop.
        begin = drag(window, photos[2], (400, 700), None)
        xdotool("mouseup", 1)
        window.wait("drag ends", begin)
        window.ask()
        assert window.last("reads") == reads, "photos were read by a refused drag"
        assert not os.listdir(folder), "a refused drag exported"

        begin = drag(window, photos[2], target, "action copy")
        window.ask()
        assert window.last("reads") == reads, "photos were read before the drop"
        xdotool("mouseup", 1)
        window.wait("drag ends", begin)
        names = ["IMG_0002.JPG", "IMG_0003.JPG", "IMG_0005.JPG"]
        for name in names:
            window.wait(f"exported {folder}/{name}", begin)
        assert sorted(os.listdir(folder)) == names, os.listdir(folder)
        contents = [open(os.path.join(folder, name), "rb").read() for name in names]
        assert contents[0][:2] == b"\xff\xd8" and contents[0][-2:] == b"\xff\xd9", "not whole"
        assert contents.count(contents[0]) == 3, "the photos differ"

        window.close()
    print(f"drag_out: {manager} took three photos, the desktop none")


main(*sys.argv[1:])
