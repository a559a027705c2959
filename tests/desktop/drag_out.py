"""Drags three photos with the pointer into a file manager's window, and onto the bare desktop.

usage: drag_out.py DRAGWINDOW FILE-MANAGER   (on a session bus of its own)

Everything waits for a condition: a line of the window's output, a window, a file. A condition that
does not come ends the test with its name.
"""

import contextlib
import os
import queue
import signal
import subprocess
import sys
import tempfile
import threading
import time

PATIENCE = 60  # seconds for any one condition


def wait_for(what, condition):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        value = condition()
        if value:
            return value
        time.sleep(0.02)  # between two looks
    sys.exit(f"drag_out: waited in vain for {what}")


def xdotool(*arguments):
    done = subprocess.run(["xdotool", *map(str, arguments)], capture_output=True, text=True)
    return done.stdout.strip() if done.returncode == 0 else ""


def started(stack, arguments, **options):
    """A process that does not outlive the test, however it ends."""
    process = subprocess.Popen(arguments, stderr=subprocess.DEVNULL, start_new_session=True,
                               **options)
    def end():
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()
    stack.callback(end)
    return process


def start_display(stack):
    """An X server and a window manager of our own."""
    read, write = os.pipe()
    started(stack, ["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x800x24",
                    "-nolisten", "tcp", "-noreset"], pass_fds=[write])
    os.close(write)
    with os.fdopen(read) as pipe:
        os.environ["DISPLAY"] = ":" + pipe.readline().strip()
    wait_for("the display", lambda: subprocess.run(
        ["xdpyinfo"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0)
    started(stack, ["openbox"])
    wait_for("the window manager", lambda: "window id" in subprocess.run(
        ["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], capture_output=True, text=True).stdout)


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
    xdotool("mousemove", "--sync", *start)
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
        xdotool("mousemove", "--sync", *target)
    return begin


def main(program, manager):
    with contextlib.ExitStack() as stack:
        folder = stack.enter_context(tempfile.TemporaryDirectory(prefix="snaplift-drag-"))
        home = stack.enter_context(tempfile.TemporaryDirectory(prefix="snaplift-home-",
                                                               ignore_cleanup_errors=True))
        os.environ.update(HOME=home, XDG_RUNTIME_DIR=home, XDG_CONFIG_HOME=home + "/config",
                          XDG_CACHE_HOME=home + "/cache", XDG_DATA_HOME=home + "/data")
        start_display(stack)
        window = PhotoWindow(stack, program)
        started(stack, [manager, folder], stdout=subprocess.DEVNULL)
        title = os.path.basename(folder)
        target_window = wait_for("the file manager's window", lambda: xdotool(
            "search", "--onlyvisible", "--name", title).split("\n")[0])
        xdotool("windowsize", "--sync", target_window, 560, 500)
        xdotool("windowmove", "--sync", target_window, 660, 120)
        target = (660 + 400, 120 + 330)

        photos = window.settled_places()
        xdotool("mousemove", "--sync", *photos[1])
        xdotool("click", 1)
        for index in (2, 4):
            xdotool("mousemove", "--sync", *photos[index])
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
