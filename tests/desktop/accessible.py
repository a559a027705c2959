"""The window as a screen reader meets it: what is there, what it is called, where it stands."""

import os

os.environ.update(QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_ACCESSIBILITY="1", NO_AT_BRIDGE="0")

import pyatspi  # noqa: E402  (reads the environment when it is loaded)
from gi.repository import Atspi, GLib  # noqa: E402

from desktop import wait_for  # noqa: E402

GRID = "Photos"  # its children are as many as the photos: nobody walks them


def safe(ask, otherwise=None):
    """What an object answers; `otherwise` where it has gone meanwhile."""
    try:
        return ask()
    except Exception:  # every kind of error of the bus
        return otherwise


def objects(top):
    """`top` and everything below it that shows, but for the photos."""
    waiting = [top]
    while waiting:
        one = waiting.pop(0)
        yield one
        if safe(lambda: one.name) != GRID:
            waiting += [child for child in safe(lambda: list(one), []) if child]


def application(process):
    """What the bus knows of a process, if anything. It is asked anew each time: what it kept would
    follow from its events, some of which a busy machine brings late or never."""
    desktop = pyatspi.Registry.getDesktop(0)
    desktop.set_cache_mask(Atspi.Cache.NONE)
    return next((one for one in safe(lambda: list(desktop), [])
                 if one and safe(one.get_process_id) == process), None)


def is_showing(one):
    return safe(lambda: one.getState().contains(pyatspi.STATE_SHOWING), False)


def has_state(one, state):
    return safe(lambda: one.getState().contains(getattr(pyatspi, "STATE_" + state.upper())), False)


def matching(top, role, name=None):
    """The objects of that role (as AT-SPI words it) that show, under that name if one is given."""
    return [one for one in objects(top)
            if safe(lambda: one.getRoleName()) == role and is_showing(one)
            and (name is None or safe(lambda: one.name) == name)]


def find(top, role, name=None):
    return wait_for(f"the {role} {name or ''}", lambda: next(iter(matching(top, role, name)), None))


def extents(one):
    """Where an object is on the screen. A busy bus may leave the question open at first."""
    return wait_for("the place of an object", lambda: safe(
        lambda: one.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)))


def middle(one):
    """The middle of an object on the screen."""
    box = extents(one)
    return box.x + box.width // 2, box.y + box.height // 2


def press(one):
    """What pressing it does, as an assistive technology would do it."""
    one.queryAction().doAction(0)


def names(top, role):
    return [safe(lambda: one.name, "") for one in matching(top, role)]


class FocusedMenu:
    """The context menu that is open, which the bus tells of only while an item of it is focused."""

    def __init__(self):
        self.item = None
        pyatspi.Registry.registerEventListener(self.heard, "object:state-changed:focused")

    def heard(self, event):
        if event.detail1 and safe(lambda: event.source.getRoleName()) == "menu item":
            self.item = event.source

    def items(self):
        """The names of all its items, an empty one for a separator."""
        while GLib.MainContext.default().iteration(False):
            pass
        return safe(lambda: [item.name for item in self.item.parent], [])
