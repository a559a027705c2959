"""Runs a program in a home folder of its own, on a session bus of its own.

usage: session.py PROGRAM ARGUMENT...

The home folder comes before the bus: what the session bus starts has its sockets there. The bus of
assistive technologies is at one path of the user's, where each session that begins takes the place
of the last: beside another one, a test would lose the windows that it opens from then on.
"""

import os
import subprocess
import sys
import tempfile

with tempfile.TemporaryDirectory(prefix="snaplift-home-", ignore_cleanup_errors=True) as home:
    os.environ.update(HOME=home, XDG_RUNTIME_DIR=home, XDG_CONFIG_HOME=home + "/config",
                      XDG_CACHE_HOME=home + "/cache", XDG_DATA_HOME=home + "/data")
    sys.exit(subprocess.run(["dbus-run-session", "--", *sys.argv[1:]]).returncode)
