"""A display of our own with a window manager, and waiting for what programs do on it.

Everything waits for a condition: a window, a text, a file. A condition that does not come ends the
test with its name, and leaves a picture of the screen in the folder that the test runs in. A key or
a click can get lost on its way, to a window that is not in front yet or to one that is just opening:
it is sent until something has come of it.
"""

import contextlib
import os
import shutil
import signal
import subprocess
import sys
import time

PATIENCE = float(os.environ.get("SNAPLIFT_PATIENCE", 120))  # seconds for any one condition


def screen_file():
    """What the display shows, as its server keeps it: a picture in X's own format."""
    return os.environ.get("XDG_RUNTIME_DIR", "") + "/Xvfb_screen0"


def wait_for(what, condition):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        value = condition()
        if value:
            return value
        time.sleep(0.02)  # between two looks
    with contextlib.suppress(FileNotFoundError):
        shutil.copy(screen_file(), "-".join(["screen", *sys.argv[1:2]]) + ".xwd")
    sys.exit(f"{os.path.basename(sys.argv[0])}: waited in vain for {what}")


def again(what, act, condition, seconds=4):
    """Acts, and once more whenever nothing has come of it for so long. What is done twice must come
    to the same as what is done once."""
    due = 0
    def came():
        nonlocal due
        value = condition()
        if not value and time.monotonic() >= due:
            act()
            due = time.monotonic() + seconds
        return value
    return wait_for(what, came)


def xdotool(*arguments):
    done = subprocess.run(["xdotool", *map(str, arguments)], capture_output=True, text=True)
    return done.stdout.strip() if done.returncode == 0 else ""


def visible_window(name):
    """The number of the window whose title matches, or nothing."""
    return xdotool("search", "--onlyvisible", "--name", name).split("\n")[0]


def bring_to_front(window):
    again("the window in front", lambda: xdotool("windowactivate", window),
          lambda: xdotool("getactivewindow") == window)


def place_window(window, left, top, width, height):
    """Size and place: a window's frame stands between what is asked for and what comes of it."""
    wanted = {f"WIDTH={width}", f"HEIGHT={height}"}
    def act():
        xdotool("windowsize", window, width, height)
        xdotool("windowmove", window, left, top)
    again("the window's size", act, lambda: wanted <= set(
        xdotool("getwindowgeometry", "--shell", window).split("\n")))


def drag_pointer(start, target, trembles=40):
    """From `start` to `target` and to and fro there; the button stays down."""
    xdotool("mousemove", *start)
    xdotool("mousedown", 1)
    for step in range(1, 6):
        xdotool("mousemove", start[0] + 6 * step, start[1] + 4 * step)
    for tremble in range(trembles):
        xdotool("mousemove", target[0] + tremble % 7, target[1] + tremble % 5)


def started(stack, arguments, **options):
    """A process that does not outlive the test, however it ends."""
    process = subprocess.Popen(arguments, start_new_session=True,
                               **{"stderr": subprocess.DEVNULL, **options})
    def end():
        with contextlib.suppress(ProcessLookupError):
            os.killpg(process.pid, signal.SIGKILL)
        process.wait()
    stack.callback(end)
    return process


def start_display(stack):
    """An X server and a window manager of our own."""
    read, write = os.pipe()
    started(stack, ["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x800x24",
                    "-nolisten", "tcp", "-noreset", "-fbdir", os.path.dirname(screen_file())],
            pass_fds=[write])
    os.close(write)
    with os.fdopen(read) as pipe:
        os.environ["DISPLAY"] = ":" + pipe.readline().strip()
    wait_for("the display", lambda: subprocess.run(
        ["xdpyinfo"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0)
    started(stack, ["openbox"])
    wait_for("the window manager", lambda: "window id" in subprocess.run(
        ["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], capture_output=True, text=True).stdout)


def start_file_manager(stack, manager, folder, left, top, width, height):
    """The file manager's window on `folder`, in that place. Its number, and a point inside that is
    no file's."""
    started(stack, [manager, folder], stdout=subprocess.DEVNULL)
    window = wait_for("the file manager's window",
                      lambda: visible_window(os.path.basename(folder)))
    place_window(window, left, top, width, height)
    return window, (left + width - 160, top + height - 170)
