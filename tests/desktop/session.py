"""Runs a program in a home folder of its own, on a session bus of its own.

usage: session.py PROGRAM ARGUMENT...

The home folder comes before the bus: what the session bus starts has its sockets there. The bus of
assistive technologies is at one path of the user's, where each session that begins takes the place
of the last: beside another one, a test would lose the windows that it opens from then on.
"""

import ctypes
import os
import signal
import subprocess
import sys
import tempfile

PR_SET_CHILD_SUBREAPER = 36  # linux/prctl.h: whose parents end become ours


def end_children():
    """What the bus has started may outlive it, and write into a folder that goes."""
    while True:
        with open(f"/proc/self/task/{os.getpid()}/children") as children:
            left = children.read().split()
        if not left:
            return
        for child in left:
            os.kill(int(child), signal.SIGKILL)
        os.wait()


ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1)
with tempfile.TemporaryDirectory(prefix="snaplift-home-") as home:
    os.environ.update(HOME=home, XDG_RUNTIME_DIR=home, XDG_CONFIG_HOME=home + "/config",
                      XDG_CACHE_HOME=home + "/cache", XDG_DATA_HOME=home + "/data")
    done = subprocess.run(["dbus-run-session", "--", *sys.argv[1:]])
    end_children()
sys.exit(done.returncode)
