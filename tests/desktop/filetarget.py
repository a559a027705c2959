"""A window of GTK 4 that takes lists of files and nothing else, and copies what is dropped.

usage: filetarget.py FOLDER
"""

import shutil
import sys

import gi

gi.require_version("Gdk", "4.0")
gi.require_version("Gtk", "4.0")
from gi.repository import Gdk, Gtk  # noqa: E402  (of the version that was asked for)


def dropped(target, files, x, y):
    for file in files.get_files():
        shutil.copy(file.get_path(), sys.argv[1])
    return True


def show(application):
    target = Gtk.DropTarget.new(Gdk.FileList, Gdk.DragAction.COPY)
    target.set_preload(True)  # asks while the pointer hovers, as GNOME's file manager does
    target.connect("drop", dropped)
    window = Gtk.ApplicationWindow(application=application, title="Target of files")
    window.add_controller(target)
    window.present()


app = Gtk.Application()
app.connect("activate", show)
app.run()
