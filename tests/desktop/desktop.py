"""A display of our own with a window manager, and waiting for what programs do on it.

Everything waits for a condition: a window, a text, a file. A condition that does not come ends the
test with its name.
"""

import contextlib
import os
import signal
import subprocess
import sys
import tempfile
import time

PATIENCE = float(os.environ.get("SNAPLIFT_PATIENCE", 60))  # seconds for any one condition


def wait_for(what, condition):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        value = condition()
        if value:
            return value
        time.sleep(0.02)  # between two looks
    sys.exit(f"{os.path.basename(sys.argv[0])}: waited in vain for {what}")


def xdotool(*arguments):
    done = subprocess.run(["xdotool", *map(str, arguments)], capture_output=True, text=True)
    return done.stdout.strip() if done.returncode == 0 else ""


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


def make_home(stack):
    """A home folder of the test's own, for every program that it starts."""
    home = stack.enter_context(tempfile.TemporaryDirectory(prefix="snaplift-home-",
                                                           ignore_cleanup_errors=True))
    os.environ.update(HOME=home, XDG_RUNTIME_DIR=home, XDG_CONFIG_HOME=home + "/config",
                      XDG_CACHE_HOME=home + "/cache", XDG_DATA_HOME=home + "/data")
    return home


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


def start_file_manager(stack, manager, folder, left, top, width, height):
    """The file manager's window on `folder`, in that place. Its number, and a point inside that is
    no file's."""
    started(stack, [manager, folder], stdout=subprocess.DEVNULL)
    window = wait_for("the file manager's window", lambda: xdotool(
        "search", "--onlyvisible", "--name", os.path.basename(folder)).split("\n")[0])
    xdotool("windowsize", "--sync", window, width, height)
    xdotool("windowmove", "--sync", window, left, top)
    return window, (left + width - 160, top + height - 170)
