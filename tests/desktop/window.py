"""Drives the real window from start to end: with pointer and keys, and read as a screen reader does.

usage: window.py SCENARIO SNAPLIFT WRITEBACKUPS [FILE MANAGER]   (on a session bus of its own)
"""

import contextlib
import hashlib
import os
import re
import subprocess
import sys
import tempfile

from accessible import (FocusedMenu, application, extents, find, has_state, matching, middle,
                        names, objects, press, safe)
from desktop import (PATIENCE, make_home, start_display, start_file_manager, started, wait_for,
                     xdotool)

ROW = "table cell"  # what Qt tells of a tree's row
ROOT = "Library/Application Support/MobileSync/Backup"


def digests(folder):
    """Of every file below a folder, by its path: content, size and time of change."""
    found = {}
    for place, _, files in os.walk(folder):
        for name in files:
            path = os.path.join(place, name)
            status = os.stat(path)
            with open(path, "rb") as file:
                found[path] = (hashlib.sha256(file.read()).hexdigest(), status.st_mtime_ns)
    return found


def contents(folder):
    """The digests of a folder's files, sorted."""
    return sorted(digest for digest, _ in digests(folder).values())


def again(what, act, condition, looks=100):
    """Acts, and once more whenever nothing has come of it for a while: no file manager tells when it
    is ready to take something."""
    looked = 0
    def came():
        nonlocal looked
        if looked % looks == 0:
            act()
        looked += 1
        return condition()
    wait_for(what, came)


def answer_questions(manager, window):
    """With no: a photo that was pasted twice makes the file manager ask, and take nothing meanwhile."""
    def is_in_front():
        xdotool("windowactivate", manager)
        active = xdotool("getactivewindow")
        if active not in (manager, window):
            xdotool("key", "Escape")
        return active == manager
    wait_for("the file manager to ask nothing", is_in_front)


class Window:
    def __init__(self, stack, program, errors):
        self.process = started(stack, [program], stderr=errors,
                               env=dict(os.environ, QT_QPA_PLATFORM="xcb", QT_SCALE_FACTOR="1"))
        self.application = application("Snaplift")

    def activate(self):
        """Brings the window to the front, and waits until keys go to it."""
        window = wait_for("the window", lambda: xdotool(
            "search", "--onlyvisible", "--name", "^Snaplift$").split("\n")[0])
        xdotool("windowactivate", "--sync", window)
        return window

    def text(self, text):
        """Waits until a label says so."""
        find(self.application, "label", text)

    def rows(self):
        """The names of the sidebar's rows, from top to bottom."""
        return [row.name for row in sorted(matching(self.application, ROW),
                                           key=lambda row: middle(row)[1])]

    def row(self, name):
        return find(self.application, ROW, name)

    def click(self, one, button=1):
        xdotool("mousemove", *middle(one))
        xdotool("click", button)

    def select(self, row, text):
        self.click(self.row(row))
        self.text(text)

    def photos(self):
        return find(self.application, "list", "Photos")

    def photo(self, index):
        """The middle of a photo, once the grid has laid it out."""
        return middle(wait_for(f"photo {index}", lambda: safe(
            lambda: self.photos().getChildAtIndex(index))))

    def click_photo(self, index, *modifiers):
        xdotool("mousemove", *self.photo(index))
        for key in modifiers:
            xdotool("keydown", key)
        xdotool("click", 1)
        for key in modifiers:
            xdotool("keyup", key)

    def alert(self, text):
        """The alert that says so."""
        return wait_for(f"the alert {text}", lambda: next(
            (one for one in matching(self.application, "alert")
             + matching(self.application, "dialog") if names(one, "label")[:1] == [text]), None))

    def dismiss(self, alert, button="Ok"):
        press(find(alert, "push button", button))

    def choose_folder(self, folder):
        dialog = find(self.application, "dialog", "Export")
        name = wait_for("the field of the folder's name",
                        lambda: next(iter(matching(dialog, "text")), None))
        wait_for("keys to go to the chooser", lambda: has_state(name, "focused"))
        xdotool("key", "ctrl+a")
        xdotool("type", "--delay", "1", folder)
        wait_for("the folder's name", lambda: safe(
            lambda: name.queryText().getText(0, -1)) == folder)
        xdotool("key", "Return")
        wait_for("the chooser to close",
                 lambda: not matching(self.application, "dialog", "Export"))

    def exit_status(self):
        return self.process.wait(PATIENCE)


def states(test):
    """Each generation and each state of a backup: rows, message pane, status text, alerts."""
    window = test.window()
    window.text("5 Photos")
    assert window.rows() == ["ANNA", "May 11, 2012", "April 11, 2012", "March 12, 2012", "BIG",
                             "February 11, 2012", "GRANDMA", "January 12, 2012", "MUSIC",
                             "December 13, 2011", "BEN", "November 13, 2011",
                             "October 14, 2011"], window.rows()
    assert has_state(window.row("May 11, 2012"), "selected")
    window.select("April 11, 2012", "3 Photos")
    window.select("March 12, 2012", "2 Photos")
    window.select("February 11, 2012", "1000 Photos")
    window.select("November 13, 2011", "1 Photo")
    window.select("October 14, 2011", "1 Photo")
    window.select("December 13, 2011", "No Photos Found in This Backup")
    window.text("No Photos")
    window.click(window.row("January 12, 2012"))
    alert = window.alert("This Backup is Encrypted")
    assert names(alert, "label")[1] == (
        "Snaplift cannot recover photos from this backup because it is encrypted.  You must use "
        "iTunes to restore them to an iOS device."), names(alert, "label")
    window.dismiss(alert)
    window.text("Backup is Encrypted")
    window.text("1 Photo")
    window.select("May 11, 2012", "5 Photos")
    window.photos()
    # Whatever takes the keyboard has a name.
    for one in objects(window.application):
        if has_state(one, "focusable") and has_state(one, "showing"):
            assert safe(lambda: one.name), f"a nameless {safe(lambda: one.getRoleName())}"


def nothing(test):
    """No backups: the alert, and then the end."""
    with tempfile.TemporaryDirectory() as home:
        os.environ["HOME"] = home
        window = test.window()
        alert = window.alert("No backup folders found")
        assert names(alert, "label")[1] == (
            "Snaplift could not locate any valid iOS backups in your "
            "~/Library/Application Support/MobileSync/Backups/ folder."), names(alert, "label")
        window.dismiss(alert)
        assert window.exit_status() == 0


def menu(test):
    """The context menu before and after a load, by pointer and by keyboard."""
    window = test.window()
    window.text("5 Photos")
    menu = FocusedMenu()
    def shows(first):
        """Waits for the menu that begins so, and closes it."""
        def found():
            if menu.items() != [first, "", "Reveal In Finder"]:
                xdotool("key", "Down")  # to the next item that can be chosen
                return False
            return True
        wait_for(f"the menu {first}", found)
        xdotool("key", "Escape")
        menu.item = None

    window.click(window.row("February 11, 2012"), 3)
    shows("Export All...")  # "Loading..." until the load has ended
    window.text("1000 Photos")
    assert has_state(window.row("February 11, 2012"), "selected")
    window.click(window.row("December 13, 2011"), 3)
    shows("No Photos")
    window.select("April 11, 2012", "3 Photos")
    xdotool("key", "shift+F10")
    shows("Export All...")
    window.click(window.row("ANNA"), 3)  # no menu: the next click selects
    window.select("May 11, 2012", "5 Photos")


def export(test):
    """A selection, then a thousand photos; what arrives is what the backup holds."""
    window = test.window()
    window.text("5 Photos")
    window.click_photo(0)
    window.click_photo(4, "ctrl")
    window.text("2 of 5 Photos Selected")
    xdotool("key", "ctrl+e")
    window.choose_folder(test.folder)
    wait_for("two photos of one name", lambda: sorted(os.listdir(test.folder)) == [
        "IMG_0001 1.JPG", "IMG_0001.JPG"])
    window.text("2 of 5 Photos Selected")

    window.select("February 11, 2012", "1000 Photos")
    many = os.path.join(test.folder, "many")
    os.mkdir(many)
    said = set()
    xdotool("key", "ctrl+shift+e")
    window.choose_folder(many)
    def ended():
        said.update(names(window.application, "label"))
        return len(os.listdir(many)) == 1000 and "1000 Photos" in names(window.application, "label")
    wait_for("a thousand photos", ended)
    wait_for("the spinner to stop", lambda: not [
        one for one in objects(window.application)
        if safe(lambda: one.name) == "Exporting" and has_state(one, "busy")])
    source = contents(os.path.join(test.root, "Big-9.3"))
    assert all(digest in source for digest in contents(many)), "not what the backup holds"
    assert len(set(contents(many))) == 1000, "photos are missing"
    progress = [text for text in said if text.startswith("Exporting: ")]
    assert all(re.fullmatch(r"Exporting: \d+ Photos Remaining", text) for text in progress)


def copy(test):
    """Copied photos are pasted in a file manager, and dragged ones dropped into it."""
    window = test.window()
    window.text("5 Photos")
    xdotool("windowsize", "--sync", window.activate(), 640, 500)
    xdotool("windowmove", "--sync", window.activate(), 0, 30)
    manager, place = start_file_manager(test.stack, test.manager, test.folder, 660, 120, 560, 500)
    window.activate()
    window.click_photo(1)
    window.text("1 of 5 Photos Selected")
    xdotool("key", "ctrl+c")
    xdotool("windowactivate", "--sync", manager)
    xdotool("mousemove", *place)
    xdotool("click", 1)
    again("the pasted photo", lambda: xdotool("key", "ctrl+v"),
          lambda: "IMG_0002.JPG" in os.listdir(test.folder))

    window.activate()
    window.click_photo(2)
    window.text("1 of 5 Photos Selected")
    start = window.photo(2)
    def drag():
        answer_questions(manager, window.activate())
        xdotool("mousemove", *start)
        xdotool("mousedown", 1)
        for step in range(1, 6):
            xdotool("mousemove", start[0] + 6 * step, start[1] + 4 * step)
        for tremble in range(40):
            xdotool("mousemove", place[0] + tremble % 7, place[1] + tremble % 5)
        xdotool("mouseup", 1)
    again("the dropped photo", drag, lambda: "IMG_0003.JPG" in os.listdir(test.folder))
    source = contents(os.path.join(test.root, "Anna-5.1"))
    wait_for("whole photos", lambda: all(digest in source for digest in contents(test.folder)))


def reveal(test):
    """The backup's folder in the file manager that answers on the session bus."""
    window = test.window()
    window.text("5 Photos")
    start_file_manager(test.stack, test.manager, test.folder, 660, 120, 560, 500)
    window.activate()
    window.select("April 11, 2012", "3 Photos")
    xdotool("key", "ctrl+r")
    wait_for("the backup's folder", lambda: xdotool(
        "search", "--onlyvisible", "--name", "Anna-4.3"))


def zoom(test):
    """A double-click zooms in and back; the divider keeps its limits."""
    window = test.window()
    window.text("5 Photos")
    slider = find(window.application, "slider", "Zoom")
    value = lambda: safe(lambda: slider.queryValue().currentValue, -1)
    largest = wait_for("the slider's range", lambda: safe(lambda: slider.queryValue().maximumValue))
    start = value()
    def double_click():
        xdotool("mousemove", *window.photo(0))
        xdotool("click", "--repeat", 2, "--delay", 40, 1)
    double_click()
    wait_for("the largest size", lambda: value() == largest)
    double_click()
    wait_for("the size at the start", lambda: value() == start)
    window.activate()
    xdotool("key", "ctrl+plus")
    wait_for("larger pictures", lambda: value() > start)
    xdotool("key", "ctrl+0")
    wait_for("the size at the start", lambda: value() == start)

    tree = find(window.application, "tree", "Backups")
    box = lambda: extents(tree)
    for aim, wanted in ((900, 300), (20, 200)):
        edge = (box().x + box().width, box().y + box().height // 2)
        xdotool("mousemove", *edge)
        xdotool("mousedown", 1)
        for step in range(1, 4):
            xdotool("mousemove", edge[0] + (aim - edge[0]) * step // 3, edge[1])
        xdotool("mouseup", 1)
        wait_for(f"a sidebar of {wanted}", lambda: box().width == wanted)


def keyboard(test):
    """All of it without a pointer: walk the tree, go to the grid, look, select, export."""
    window = test.window()
    window.text("5 Photos")
    window.activate()
    wait_for("keys to go to the tree", lambda: has_state(
        find(window.application, "tree", "Backups"), "focused") or has_state(
        window.row("May 11, 2012"), "focused") or xdotool("key", "Tab"))
    xdotool("key", "Down")
    window.text("3 Photos")
    assert has_state(window.row("April 11, 2012"), "selected")
    xdotool("key", "Tab")
    wait_for("keys to go to the grid", lambda: has_state(window.photos(), "focused"))
    xdotool("key", "Home")
    window.text("1 of 3 Photos Selected")
    xdotool("key", "space")
    xdotool("key", "Escape")
    xdotool("key", "shift+Right")
    window.text("2 of 3 Photos Selected")
    xdotool("key", "ctrl+i")
    window.text("1 of 3 Photos Selected")
    xdotool("key", "ctrl+a")
    window.text("3 of 3 Photos Selected")
    xdotool("key", "ctrl+e")
    window.choose_folder(test.folder)
    wait_for("three photos", lambda: len(os.listdir(test.folder)) == 3)
    window.text("3 of 3 Photos Selected")
    xdotool("key", "ctrl+q")
    assert window.exit_status() == 0


def quit(test):
    """While a backup loads, while an alert is up, and while photos are exported."""
    window = test.window()
    window.text("5 Photos")
    window.click(window.row("February 11, 2012"))
    xdotool("key", "ctrl+q")
    assert window.exit_status() == 0, "while a backup loads"

    window = test.window()
    window.text("5 Photos")
    window.click(window.row("January 12, 2012"))
    alert = window.alert("This Backup is Encrypted")
    xdotool("windowquit", xdotool("search", "--onlyvisible", "--name", "^Snaplift$").split("\n")[0])
    window.dismiss(alert)  # it comes first: the window waits behind it
    window.text("Backup is Encrypted")
    window.activate()
    xdotool("key", "ctrl+q")
    assert window.exit_status() == 0, "after an alert"

    window = test.window()
    window.text("5 Photos")
    window.select("February 11, 2012", "1000 Photos")
    xdotool("key", "ctrl+shift+e")
    window.choose_folder(test.folder)
    xdotool("key", "ctrl+q")
    def ended():
        question = [one for one in matching(window.application, "alert")
                    + matching(window.application, "dialog")
                    if names(one, "label")[:1] == ["Photos Are Still Being Exported"]]
        if question:
            window.dismiss(question[0], "Stop and Quit")
        return window.process.poll() is not None
    wait_for("the end", ended)
    assert window.process.returncode == 0, "while photos are exported"
    source = contents(os.path.join(test.root, "Big-9.3"))
    assert all(re.fullmatch(r"BIG_\d+\.JPG", name) for name in os.listdir(test.folder))
    assert all(digest in source for digest in contents(test.folder)), "a part of a photo"


class Test:
    def __init__(self, stack, program, writer, manager):
        self.stack = stack
        self.program = program
        self.manager = manager
        self.folder = stack.enter_context(tempfile.TemporaryDirectory(prefix="snaplift-folder-"))
        self.root = os.path.join(make_home(stack), ROOT)
        self.errors = stack.enter_context(tempfile.TemporaryFile("w+"))
        subprocess.run([writer, self.root], check=True)

    def window(self):
        return Window(self.stack, self.program, self.errors)

    def sanitizer_reports(self):
        """What a sanitizer had to say, in a build with one."""
        self.errors.seek(0)
        said = self.errors.read()
        return said[said.find("Sanitizer"):] if "Sanitizer" in said else ""


def main(scenario, program, writer, manager=None):
    with contextlib.ExitStack() as stack:
        os.environ["LC_ALL"] = "C.UTF-8"
        os.environ["LANG"] = "en_US.UTF-8"
        test = Test(stack, program, writer, manager)
        start_display(stack)
        before = digests(test.root)
        globals()[scenario](test)
        assert digests(test.root) == before, "the backups were touched"
        assert not test.sanitizer_reports(), test.sanitizer_reports()
    print(f"window: {scenario} is as it should be")


main(*sys.argv[1:])
