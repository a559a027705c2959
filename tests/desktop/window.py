"""Drives the real window from start to end: with pointer and keys, and read as a screen reader does.

usage: window.py SCENARIO SNAPLIFT WRITEBACKUPS [FILE MANAGER]   (in a session of its own)
"""

import contextlib
import csv
import datetime
import hashlib
import os
import re
import subprocess
import sys
import tempfile

from accessible import (FocusedMenu, application, extents, find, has_state, matching, middle,
                        names, objects, press, safe)
from desktop import (PATIENCE, again, bring_to_front, drag_pointer, place_window,
                     start_display, start_file_manager, started, visible_window, wait_for, xdotool)

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
    def __init__(self, stack, program, errors, *arguments):
        self.process = None
        def start():
            if self.process:
                self.process.kill()  # it asks for the bus once, and nobody answered in time
            self.process = started(stack, [program, *arguments], stderr=errors, env=dict(
                os.environ, QT_QPA_PLATFORM="xcb", QT_SCALE_FACTOR="1"))
        self.application = again("Snaplift on the accessibility bus", start,
                                 lambda: self.process and application(self.process.pid), 40)

    def window(self):
        return wait_for("the window", lambda: visible_window("^Snaplift$"))

    def activate(self):
        """Brings the window to the front, and waits until keys go to it."""
        bring_to_front(self.window())

    def keys(self, keys, what, condition):
        """Types them, in the window that is in front, until what they are for has come."""
        return again(what, lambda: xdotool("key", *keys.split()), condition)

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

    def says(self, text):
        return text in names(self.application, "label")

    def select(self, row, text):
        again(text, lambda: self.click(self.row(row)), lambda: self.says(text))

    def photos(self):
        return find(self.application, "list", "Photos")

    def photo(self, index):
        """The middle of a photo, once the grid has laid it out."""
        return middle(wait_for(f"photo {index}", lambda: safe(
            lambda: self.photos().getChildAtIndex(index))))

    def select_photos(self, *indexes):
        """Clicks them, all but the first with Ctrl held."""
        def click():
            for index in indexes:
                xdotool("mousemove", *self.photo(index))
                xdotool(*(["keydown", "ctrl"] if index != indexes[0] else []), "click", 1,
                        "keyup", "ctrl")
        text = f"{len(indexes)} of {self.photos().childCount} Photos Selected"
        again(text, click, lambda: self.says(text) and all(
            has_state(self.photos().getChildAtIndex(index), "selected") for index in indexes))

    def alerts(self, text):
        return [one for one in matching(self.application, "alert")
                + matching(self.application, "dialog") if names(one, "label")[:1] == [text]]

    def provoke(self, row, text):
        """The alert that comes of clicking a row."""
        return again(f"the alert {text}", lambda: self.click(self.row(row)),
                     lambda: self.alerts(text))[0]

    def dismiss(self, text, button="Ok"):
        """Answers the alert that says so."""
        def answer():
            for alert in self.alerts(text):
                press(find(alert, "push button", button))
        again(f"the end of the alert {text}", answer, lambda: not self.alerts(text))

    def export(self, keys, folder, **options):
        """What those keys export, into a folder."""
        self.choose("Export", lambda: xdotool("key", keys), folder, **options)

    def choose(self, title, ask, folder, confirm=lambda: xdotool("key", "Return")):
        """A folder, in the chooser of that title that comes of asking."""
        def dialogs():
            return matching(self.application, "dialog", title)
        again("the chooser", ask, dialogs)
        def field():
            return next((one for dialog in dialogs() for one in matching(dialog, "text")), None)
        name = wait_for("the field of the folder's name", field)
        def type_name():
            if has_state(name, "focused"):
                xdotool("key", "ctrl+a")
                xdotool("type", "--delay", "1", folder)
        again("the folder's name", type_name, lambda: safe(
            lambda: name.queryText().getText(0, -1)) == folder)
        again("the chooser to close", confirm, lambda: not dialogs())

    def has_ended(self):
        return self.process.poll() is not None

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
    window.provoke("January 12, 2012", "This Backup is Encrypted")
    window.dismiss("This Backup is Encrypted")
    window.text("Backup is Encrypted")
    window.text("1 Photo")
    window.select("May 11, 2012", "5 Photos")
    window.photos()
    # Whatever takes the keyboard has a name.
    for one in objects(window.application):
        if has_state(one, "focusable") and has_state(one, "showing"):
            assert safe(lambda: one.name), f"a nameless {safe(lambda: one.getRoleName())}"


def folders(test):
    """Folders without the root's help: chosen, remembered, closed, named on the command line."""
    rows = ["ANNA", "May 11, 2012"]
    first = os.path.join(os.path.dirname(test.root), "Backup")
    with tempfile.TemporaryDirectory() as home:
        os.environ["HOME"] = home
        window = test.window()
        def ask():
            for alert in window.alerts("No backup folders found"):
                press(find(alert, "push button", "Choose Folder..."))
        window.choose("Open", ask, os.path.dirname(first))
        window.text("5 Photos")
        assert window.rows()[:2] == rows, window.rows()
        window.process.terminate()  # as at the end of a session
        assert window.exit_status() == 130

        window = test.window()
        window.text("5 Photos")  # without a question
        assert window.rows()[:2] == rows, window.rows()
        window.activate()
        def close_folder():
            xdotool("key", "alt+f")
            xdotool("key", "c")
        again("the empty window", close_folder, lambda: not window.rows() and window.says(
            "Choose a folder that holds backups, or drop one on this window."))
        window.choose("Open", lambda: xdotool("key", "ctrl+o"), os.path.join(first, "Anna-5.1"))
        wait_for("one backup", lambda: len(window.rows()) == 2)
        window.activate()
        window.keys("ctrl+w", "the end", window.has_ended)

        window = test.window("--no-state", home)
        alert = wait_for("the answer", lambda: window.alerts(
            f"No Backups Found in “{os.path.basename(home)}”"))[0]
        assert "Info.plist" in names(alert, "label")[1], names(alert, "label")


def menu(test):
    """The context menu before and after a load, by pointer and by keyboard."""
    window = test.window()
    window.text("5 Photos")
    menu = FocusedMenu()
    def is_open():
        """Beside the window another one of the program shows."""
        return "\n" in xdotool("search", "--onlyvisible", "--pid", window.process.pid)

    def shows(first, ask):
        """Asks for a menu, waits until it begins so, and closes it."""
        again("a menu", ask, is_open)
        def found():
            if menu.items() != [first, "", "Reveal In Finder"]:
                xdotool("key", "Down")  # to the next item that can be chosen
                return False
            return True
        wait_for(f"the menu {first}", found)
        window.keys("Escape", "the menu to close", lambda: not is_open())
        menu.item = None

    def pointed(row):
        return lambda: window.click(window.row(row), 3)

    shows("Export All...", pointed("February 11, 2012"))  # "Loading..." until the load has ended
    window.text("1000 Photos")
    assert has_state(window.row("February 11, 2012"), "selected")
    shows("No Photos", pointed("December 13, 2011"))
    window.select("April 11, 2012", "3 Photos")
    shows("Export All...", lambda: xdotool("key", "shift+F10"))
    menu.item = None
    again("the menu of a device", pointed("ANNA"), is_open)
    def found():
        xdotool("key", "Down")
        return menu.items() == ["Export All of This Device...", "", "Reveal"]
    wait_for("its items", found)
    window.keys("Escape", "the menu to close", lambda: not is_open())
    window.select("May 11, 2012", "5 Photos")


def export(test):
    """A selection, a thousand photos, then everything; what arrives is what the backups hold."""
    said = os.path.join(test.folder, ".said")
    with open(said, "w") as heard:
        started(test.stack, ["dbus-monitor", "interface='org.freedesktop.Notifications'"],
                stdout=heard)
    window = test.window()
    window.text("5 Photos")
    window.select_photos(0, 4)
    some = os.path.join(test.folder, "some")
    os.mkdir(some)
    number = window.window()
    def look_away():
        button = find(window.application, "push button", "Export")
        xdotool("windowminimize", number)
        wait_for("no window in front", lambda: xdotool("getactivewindow") in ("", "0"))
        press(button)
    window.export("ctrl+e", some, confirm=look_away)
    def is_told():
        with open(said) as heard:
            return 'string "2 photos exported to some"' in heard.read()
    wait_for("word from the desktop", is_told)
    assert sorted(os.listdir(some)) == ["IMG_0001 1.JPG", "IMG_0001.JPG"], "not of one name"
    taken = datetime.datetime(2012, 5, 11, 12, tzinfo=datetime.timezone.utc).timestamp()
    assert {name: taken - os.stat(os.path.join(some, name)).st_mtime for name in os.listdir(
        some)} == {"IMG_0001.JPG": 1, "IMG_0001 1.JPG": 5}, "not the dates of the device"
    bring_to_front(number)
    window.text("2 of 5 Photos Selected")

    window.select("February 11, 2012", "1000 Photos")
    many = os.path.join(test.folder, "many")
    os.mkdir(many)
    said = set()
    window.export("ctrl+shift+e", many)
    def ended():
        said.update(names(window.application, "label"))
        return len(os.listdir(many)) == 1000 and window.says("1000 Photos")
    wait_for("a thousand photos", ended)
    wait_for("the spinner to stop", lambda: not [
        one for one in objects(window.application)
        if safe(lambda: one.name) == "Exporting" and has_state(one, "busy")])
    source = contents(os.path.join(test.root, "Big-9.3"))
    assert all(digest in source for digest in contents(many)), "not what the backup holds"
    assert len(set(contents(many))) == 1000, "photos are missing"
    progress = [text for text in said if text.startswith("Exporting: ")]
    assert all(re.fullmatch(r"Exporting: \d+ Photos Remaining", text) for text in progress)
    export_everything(test, window)


def export_everything(test, window):
    """With options that the next start still knows; the report tells what came."""
    def choose(setting, *keys):
        def act():
            for key in ("Escape", "Escape", "Escape", "alt+f", "p", *keys):
                xdotool("key", key)
        def is_kept():
            with contextlib.suppress(FileNotFoundError), open(os.path.join(
                    os.environ["XDG_CONFIG_HOME"], "snaplift", "export.ini")) as kept:
                return setting in kept.read()
        again(setting, act, is_kept)
    choose("layout=device", "f", "d")
    choose("skipExisting=true", "s")
    window.keys("ctrl+q", "the end", window.has_ended)

    window = test.window()
    window.text("5 Photos")
    window.activate()
    everything = os.path.join(test.folder, "everything")
    os.mkdir(everything)
    def ask():
        xdotool("key", "alt+f")
        xdotool("key", "v")
    lost = "Encrypted, so nothing was exported from: Grandma, January 12, 2012"
    for text in (f"1012 photos exported to everything. {lost}",
                 f"0 photos exported to everything, 1012 there already. {lost}"):
        window.choose("Export", ask, everything)
        window.text(text)
    assert {name: len(os.listdir(os.path.join(everything, name))) for name in os.listdir(
        everything)} == {"Anna": 10, "Big": 1000, "Ben": 2}, os.listdir(everything)
    assert len(set(contents(everything))) == 1012, "photos are missing"
    press(find(window.application, "push button", "Details..."))
    window.keys("Escape", "no details", lambda: not matching(
        window.application, "tree", "Photos That Were Not Exported"))
    report = os.path.join(test.folder, "report.csv")
    window.choose("Save Report", lambda: press(
        find(window.application, "push button", "Save Report...")), report)
    wait_for("the report", lambda: os.path.exists(report))
    with open(report, newline="") as lines:
        photos = list(csv.DictReader(lines))
    found = digests(everything)
    assert len(photos) == 1012 and all(
        found[photo["written"]][0] == photo["sha256"] and photo["outcome"] == "skipped"
        for photo in photos), photos[0]
    window.keys("Escape", "no notice", lambda: not names(window.application, "push button").count(
        "Save Report..."))


def copy(test):
    """Copied photos are pasted in a file manager, and dragged ones dropped into it."""
    window = test.window()
    window.text("5 Photos")
    place_window(window.window(), 0, 30, 640, 500)
    manager, place = start_file_manager(test.stack, test.manager, test.folder, 660, 120, 560, 500)
    def paste():
        window.activate()
        window.select_photos(1)
        xdotool("key", "ctrl+c")
        answer_questions(manager, window.window())
        xdotool("mousemove", *place)
        xdotool("click", 1)
        xdotool("key", "ctrl+v")
    again("the pasted photo", paste, lambda: "IMG_0002.JPG" in os.listdir(test.folder))

    def drag(target):
        answer_questions(manager, window.window())
        window.activate()
        window.select_photos(1, 2, 3)
        drag_pointer(window.photo(2), target)
        xdotool("mouseup", 1)
    before = contents(test.folder)
    drag((400, 700))  # nobody takes files on the bare desktop
    assert contents(test.folder) == before, "a refused drag exported"
    os.remove(os.path.join(test.folder, "IMG_0002.JPG"))
    wanted = ["IMG_0002.JPG", "IMG_0003.JPG", "IMG_0004.JPG"]
    again("the dropped photos", lambda: drag(place),
          lambda: set(wanted) <= set(os.listdir(test.folder)), 10)
    source = contents(os.path.join(test.root, "Anna-5.1"))
    wait_for("whole photos", lambda: all(digest in source for digest in contents(test.folder)))


def drop(test):
    """Photos are dropped on a program of GTK 4, which asks for them in a way of its own."""
    window = test.window()
    window.text("5 Photos")
    place_window(window.window(), 0, 30, 640, 500)
    program = os.path.join(os.path.dirname(__file__), "filetarget.py")
    started(test.stack, [sys.executable, program, test.folder],
            env=dict(os.environ, GDK_BACKEND="x11", GSK_RENDERER="cairo"))
    place_window(wait_for("the target", lambda: visible_window("^Target of files$")),
                 660, 120, 400, 400)
    def drag():
        window.activate()
        window.select_photos(1, 2, 3)
        drag_pointer(window.photo(2), (860, 320))
        xdotool("mouseup", 1)
    again("the dropped photos", drag, lambda: len(os.listdir(test.folder)) == 3, 10)
    source = contents(os.path.join(test.root, "Anna-5.1"))
    wait_for("whole photos", lambda: all(digest in source for digest in contents(test.folder)))


def finding(test):
    """Photos in the order of dates, by month, name, date and kind; the order stays."""
    folder = os.path.join(test.folder, "backups")
    subprocess.run([test.writer, folder, "dated"], check=True)
    window = test.window(folder)
    window.text("6 Photos")
    window.activate()
    def grid(role, *states):
        return [safe(lambda: one.name) for one in safe(lambda: list(window.photos()), [])
                if safe(lambda: one.getRoleName()) == role
                and all(has_state(one, state) for state in states)]
    def view(*keys, until):
        def act():
            while "\n" in xdotool("search", "--onlyvisible", "--pid", window.process.pid):
                xdotool("key", "Escape")  # a menu in which keys got lost
            xdotool("key", "alt+v", *keys)
        again(f"the view {keys}", act, until)
    def exported(keys, name):
        target = os.path.join(test.folder, name)
        os.mkdir(target)
        window.export(keys, target)
        return lambda: sorted(os.listdir(target))

    original = ["IMG_0001.JPG", "IMG_0002.JPG", "IMG_0003.JPG", "IMG_0010.JPG"]
    by_date = ["IMG_0010.JPG", "IMG_0001.JPG", "FullSizeRender.jpg", "IMG_0002.JPG",
               "IMG_0003.JPG", "IMG_2011.JPG"]
    assert sorted(grid("list item")) == sorted(by_date) != grid("list item"), grid("list item")
    chosen = grid("list item").index("IMG_0002.JPG")
    again("a selection", lambda: (xdotool("mousemove", *window.photo(chosen)),
                                  xdotool("click", 1)),
          lambda: window.says("1 of 6 Photos Selected"))
    view("s", "d", until=lambda: grid("list item") == by_date)
    assert grid("list item", "selected") == ["IMG_0002.JPG"], "another one is selected"

    months = ["December 2010, 1 Photo", "June 2011, 3 Photos", "January 2012, 1 Photo",
              "February 2012, 1 Photo"]
    view("g", until=lambda: grid("heading") == months)
    june = next(one for one in window.photos() if one.name == months[1])
    again("a month", lambda: window.click(june), lambda: window.says("3 of 6 Photos Selected"))
    files = exported("ctrl+e", "month")
    wait_for("a month's photos", lambda: files() == [
        "FullSizeRender.jpg", "IMG_0001.JPG", "IMG_0002.JPG"])
    window.keys("Escape", "no notice", lambda: not names(window.application, "push button").count(
        "Save Report..."))

    def fields():
        return matching(window.application, "text", "Find Photos")
    def look_for(text, *said):
        """By Ctrl+F, from the whole keyboard."""
        def act():
            xdotool("key", "ctrl+f")
            xdotool("type", "--delay", "1", text)
        again(text, act, lambda: all(window.says(one) for one in said))
    look_for("img_00", "Showing 5 of 6", "3 of 5 Photos Selected")
    assert sorted(grid("list item")) == ["FullSizeRender.jpg", *original], "not by folders"
    look_for("june 2011", "Showing 3 of 6", "3 of 3 Photos Selected")
    look_for("<b>nobody", "No Photos Match “<b>nobody”", "No Photos")
    press(find(window.application, "push button", "Show All Photos"))
    wait_for("no field", lambda: not fields())
    window.text("3 of 6 Photos Selected")
    window.keys("Escape", "no selection", lambda: window.says("6 Photos"))

    view("c", until=lambda: window.says("2 edited and other pictures are hidden"))
    window.text("Showing 4 of 6")
    find(window.application, "push button", "Export Shown...")
    files = exported("ctrl+shift+e", "originals")
    wait_for("the originals", lambda: files() == original)

    def type_digit():
        if not fields():
            window.click(window.photos().getChildAtIndex(0))
            xdotool("key", "3")
    again("the field", type_digit, lambda: [one for one in fields() if has_state(one, "focused")
          and safe(lambda: one.queryText().getText(0, -1)) == "3"])
    window.text("Showing 1 of 6")
    window.keys("Escape", "no field", lambda: not fields())
    window.text("Showing 4 of 6")
    window.keys("ctrl+q", "the end", window.has_ended)

    window = test.window()
    window.text("5 Photos")
    window.select("May 13, 2014", "4 Photos")
    wait_for("the same months", lambda: grid("heading") == [
        months[0], "June 2011, 2 Photos", months[2]])
    assert grid("list item") == [name for name in by_date if name in original]


def reveal(test):
    """The backup's folder in the file manager that answers on the session bus."""
    window = test.window()
    window.text("5 Photos")
    start_file_manager(test.stack, test.manager, test.folder, 660, 120, 560, 500)
    window.activate()
    window.select("April 11, 2012", "3 Photos")
    window.keys("ctrl+r", "the backup's folder", lambda: visible_window("Anna-4.3"))


def keyboard(test):
    """All of it without a pointer: walk the tree, go to the grid, look, select, export."""
    window = test.window()
    window.text("5 Photos")
    window.activate()
    tree = find(window.application, "tree", "Backups")
    window.keys("Tab", "keys to go to the tree", lambda: has_state(tree, "focused")
                or has_state(window.row("May 11, 2012"), "focused"))
    def down():
        if has_state(window.row("May 11, 2012"), "selected"):  # not beyond the next
            xdotool("key", "Down")
    again("the next backup", down, lambda: window.says("3 Photos"))
    assert has_state(window.row("April 11, 2012"), "selected")
    window.keys("Tab", "keys to go to the grid", lambda: has_state(window.photos(), "focused"))
    def selected(*indexes):
        return lambda: [index for index in range(3) if has_state(
            window.photos().getChildAtIndex(index), "selected")] == list(indexes)
    window.keys("Home", "one photo", selected(0))
    window.keys("Home space Escape shift+Right", "two photos", selected(0, 1))
    window.keys("Home shift+Right ctrl+i", "the third photo", selected(2))
    window.keys("ctrl+a", "all photos", selected(0, 1, 2))
    window.text("3 of 3 Photos Selected")
    window.export("ctrl+e", test.folder)
    wait_for("three photos", lambda: len(os.listdir(test.folder)) == 3)
    window.text("3 of 3 Photos Selected")
    window.keys("ctrl+q", "the end", window.has_ended)
    assert window.exit_status() == 0


def details(test):
    """Get Info by the keyboard, the menu of photos, and a live photo that takes its film along."""
    folder = test.stack.enter_context(tempfile.TemporaryDirectory(prefix="snaplift-live-"))
    subprocess.run([test.writer, folder, "live"], check=True)
    window = test.window("--no-state", folder)
    window.select("October 12, 2011", "2 Photos")
    window.activate()
    window.select_photos(0)
    def open_info():
        if not window.says("Kind: Original"):
            xdotool("key", "alt+Return")
    again("Get Info", open_info, lambda: window.says("Camera: Maker Handset 4"))
    for said in ("Exposure: 1/125 s, f/2.8, ISO 100", "Pixels: 160 × 121",
                 "On the device: Media/DCIM/100APPLE/IMG_0001.JPG"):
        assert window.says(said), (said, names(window.application, "label"))

    menu = FocusedMenu()
    def is_open():
        return "\n" in xdotool("search", "--onlyvisible", "--pid", window.process.pid)
    def shows_menu(ask):
        again("a menu", lambda: is_open() or ask(), is_open)
        def found():
            if menu.items() != ["Preview", "Export...", "Copy", "Get Info", "", "Select All"]:
                xdotool("key", "Down")
                return False
            return True
        wait_for("the menu of photos", found)
        window.keys("Escape", "the menu to close", lambda: not is_open())
        menu.item = None
    def press_on_second():
        xdotool("mousemove", *window.photo(1))
        xdotool("click", 3)
    shows_menu(press_on_second)
    assert [has_state(window.photos().getChildAtIndex(index), "selected")
            for index in range(2)] == [False, True], "pressed, and not selected"
    shows_menu(lambda: xdotool("key", "Menu"))

    window.select_photos(0)
    live = os.path.join(test.folder, "live")
    os.mkdir(live)
    window.export("ctrl+e", live)
    window.text("1 photo and 1 film exported to live")
    assert sorted(os.listdir(live)) == ["IMG_0001.JPG", "IMG_0001.MOV"], os.listdir(live)


def quit(test):
    """While a backup loads, while an alert is up, and while photos are exported."""
    window = test.window()
    window.text("5 Photos")
    window.click(window.row("February 11, 2012"))
    window.keys("ctrl+q", "the end", window.has_ended)
    assert window.exit_status() == 0, "while a backup loads"

    window = test.window()
    window.text("5 Photos")
    window.provoke("January 12, 2012", "This Backup is Encrypted")
    xdotool("windowquit", window.window())
    window.dismiss("This Backup is Encrypted")  # it comes first: the window waits behind it
    window.text("Backup is Encrypted")
    window.activate()
    window.keys("ctrl+q", "the end", window.has_ended)
    assert window.exit_status() == 0, "after an alert"

    window = test.window()
    window.text("5 Photos")
    window.select("February 11, 2012", "1000 Photos")
    window.export("ctrl+shift+e", test.folder)
    question = "Photos Are Still Being Exported"
    window.keys("ctrl+q", "the question or the end",
                lambda: window.alerts(question) or window.has_ended())
    if not window.has_ended():
        window.dismiss(question, "Stop and Quit")
    # The question goes away by itself when there is nothing more to stop.
    window.keys("ctrl+q", "the end", window.has_ended)
    assert window.exit_status() == 0, "while photos are exported"
    source = contents(os.path.join(test.root, "Big-9.3"))
    assert all(re.fullmatch(r"BIG_\d+\.JPG", name) for name in os.listdir(test.folder))
    assert all(digest in source for digest in contents(test.folder)), "a part of a photo"


class Test:
    def __init__(self, stack, program, writer, manager):
        self.stack = stack
        self.program = program
        self.writer = writer
        self.manager = manager
        self.folder = stack.enter_context(tempfile.TemporaryDirectory(prefix="snaplift-folder-"))
        self.root = os.path.join(os.environ["HOME"], ROOT)
        self.errors = stack.enter_context(tempfile.TemporaryFile("w+"))
        subprocess.run([writer, self.root], check=True)

    def window(self, *arguments):
        return Window(self.stack, self.program, self.errors, *arguments)

    def sanitizer_reports(self):
        """What a sanitizer had to say, in a build with one."""
        self.errors.seek(0)
        said = self.errors.read()
        return said[said.find("Sanitizer"):] if "Sanitizer" in said else ""


def main(scenario, program, writer, manager=None):
    with contextlib.ExitStack() as stack:
        os.environ["LC_ALL"] = "C.UTF-8"
        os.environ["LANG"] = "en_US.UTF-8"
        os.environ["LANGUAGE"] = ""
        test = Test(stack, program, writer, manager)
        start_display(stack)
        before = digests(test.root)
        globals()[scenario](test)
        assert digests(test.root) == before, "the backups were touched"
        assert not test.sanitizer_reports(), test.sanitizer_reports()
    print(f"window: {scenario} is as it should be")


main(*sys.argv[1:])
