"""Shared by the scripts that use the program as a user does: a virtual display, mouse and keyboard, and the window as an
accessibility tool sees it. Needs a D-Bus session of its own."""

import contextlib
import os
import subprocess
import threading
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402


class UnexpectedState(Exception):
    """The program or the desktop is not in the state that the script expects."""


def wait_for(what, condition, seconds=20.0):
    """Polls `condition` until its result is true and returns that; UnexpectedState when the time is over."""
    deadline = time.monotonic() + seconds
    while True:
        try:
            if result := condition():
                return result
        except GLib.Error:
            pass  # The widget disappeared while it was being read.
        if time.monotonic() > deadline:
            raise UnexpectedState(f"gave up after {seconds:.0f} s of waiting for {what}")
        time.sleep(0.1)


def expect(what, seen, expected):
    if seen != expected:
        raise UnexpectedState(f"{what}: expected {expected!r}, got {seen!r}")


@contextlib.contextmanager
def simulated_cameras(programs, scene):
    """Runs the simulator in the directory `programs` for a `with` block; its cameras are up inside."""
    process = subprocess.Popen([os.path.join(programs, "gige-simulator"), scene], stdout=subprocess.PIPE, text=True)
    try:
        if not any(line.startswith("ready ") for line in iter(process.stdout.readline, "")):
            raise UnexpectedState("the simulated cameras did not start")
        threading.Thread(target=process.stdout.read, daemon=True).start()  # A full pipe would stop the cameras.
        yield process
    finally:
        process.terminate()
        process.wait()


class Desktop:
    """A virtual display with a window manager; ends with the `with` block."""

    def __init__(self, size="1100x760"):
        self.size = size

    def __enter__(self):
        self.processes = []
        try:
            self._start_server()
            self._start_manager()
        except BaseException:
            self.__exit__()
            raise
        return self

    def _start_server(self):
        reading, writing = os.pipe()
        self.processes.append(subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", f"{self.size}x24", "-nolisten", "tcp", "-noreset"],
            pass_fds=[writing], stderr=subprocess.DEVNULL))
        os.close(writing)
        with os.fdopen(reading) as numbers:
            number = numbers.readline().strip()
        if not number:
            raise UnexpectedState("the virtual display did not start")
        os.environ.update(DISPLAY=f":{number}", QT_QPA_PLATFORM="xcb", LC_ALL="C.UTF-8", QT_ACCESSIBILITY="1",
                          QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_LOGGING_RULES="qt.accessibility.*=false")
        for name in ("LANGUAGE", "WAYLAND_DISPLAY", "XAUTHORITY", "QT_STYLE_OVERRIDE", "QT_SCALE_FACTOR"):
            os.environ.pop(name, None)

    def _start_manager(self):
        self.processes.append(subprocess.Popen(["openbox", "--sm-disable"], stderr=subprocess.DEVNULL))
        wait_for("the window manager", lambda: subprocess.run(
            ["xdotool", "get_num_desktops"], capture_output=True, check=False).returncode == 0)

    def __exit__(self, *unused):
        for process in reversed(self.processes):
            process.terminate()
            process.wait()


def act(*words):
    """Mouse and keyboard, as commands of xdotool."""
    try:
        subprocess.run(["xdotool", *map(str, words)], check=True, timeout=20)
    except subprocess.TimeoutExpired:
        raise UnexpectedState(f"xdotool did not finish: {' '.join(map(str, words))}") from None


class Window:
    """The program's window as an accessibility tool sees it. Widgets are named in English; `words` translates these
    names to what the program shows, both with their mnemonics."""

    def __init__(self, process, width=1050, height=680, words=None):
        self.process = process
        self.words = {bare(english): shown for english, shown in (words or {}).items()}
        self.frame = wait_for("the window", self._find_frame)
        act("search", "--sync", "--onlyvisible", "--name", self.frame.get_name(),
            "windowactivate", "--sync", "windowmove", 20, 40, "windowsize", width, height)

    def text(self, english):
        return bare(self.words.get(english, english))

    def letter(self, english, otherwise):
        """The key that chooses this entry of an open menu; in English, `otherwise`."""
        shown = self.words.get(english, "")
        return shown[shown.index("&") + 1].lower() if "&" in shown else otherwise

    def _find_frame(self):
        return next(self._top_levels(), None)

    def _top_levels(self):
        if self.process.poll() is not None:
            raise UnexpectedState(f"the program ended with code {self.process.returncode}")
        desktop = Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            program = desktop.get_child_at_index(index)
            if program and program.get_process_id() == self.process.pid:
                program.clear_cache()
                yield from filter(None, map(program.get_child_at_index, range(program.get_child_count())))

    def dialog(self):
        """The dialog or message box that is open."""
        return wait_for("a dialog", lambda: next(
            (top for top in self._top_levels() if top != self.frame and has(top, Atspi.StateType.SHOWING)), None))

    def widgets(self, role, node=None):
        node = node or self.frame
        node.clear_cache()
        for index in range(node.get_child_count()):
            child = node.get_child_at_index(index)
            if child is None:
                continue
            if child.get_role() == role:
                yield child
            yield from self.widgets(role, child)

    def widget(self, role, name):
        for widget in self.widgets(role):
            if widget.get_name() == self.text(name):
                return widget
        raise UnexpectedState(f"there is no {Atspi.role_get_name(role)} {name!r}")

    def field(self, name):
        return self.widget(Atspi.Role.TEXT, name)

    def text_of(self, name):
        field = self.field(name)
        return Atspi.Text.get_text(field, 0, Atspi.Text.get_character_count(field))

    def labels(self):
        return " ".join(" ".join(label.get_name() for label in self.widgets(Atspi.Role.LABEL)).split())

    def rows(self):
        """The rows of the tree from top to bottom, each a dictionary that maps English column titles to cells."""
        tree = next(self.widgets(Atspi.Role.TREE), None)
        if tree is None:
            return []
        english = {bare(shown): text for text, shown in self.words.items()}
        titles = [english.get(header.get_name(), header.get_name())
                  for header in self.widgets(Atspi.Role.TABLE_COLUMN_HEADER, tree)]
        cells = list(self.widgets(Atspi.Role.TABLE_CELL, tree))
        lines = [cells[first:first + len(titles)] for first in range(0, len(cells), len(titles))]
        # An adapter's row spans all columns; only its first cell has content.
        return [dict(zip(titles, line)) if line[-1].get_name() else {titles[0]: line[0]} for line in lines]

    def fit_columns(self):
        """Double-clicks the right edges of the column titles, the last one first, since each moves those after it."""
        spots = [place(header) for header in self.widgets(Atspi.Role.TABLE_COLUMN_HEADER)]
        for spot in sorted(spots, key=lambda spot: spot.x, reverse=True)[1:]:
            act("mousemove", "--sync", spot.x + spot.width - 1, spot.y + spot.height // 2,
                "click", "--repeat", 2, "--delay", 50, 1)

    def table(self):
        return [{title: cell.get_name() for title, cell in row.items()} for row in self.rows()]

    def camera_row(self, mac):
        """The row of that camera, or None."""
        for row in self.rows():
            if "MAC Address" in row and row["MAC Address"].get_name() == mac:
                return row
        return None

    def camera_texts(self, mac):
        row = self.camera_row(mac)
        return {title: cell.get_name() for title, cell in row.items()} if row else {}


def bare(text):
    """A text without its mnemonic."""
    return text.replace("&", "")


def place(widget):
    return Atspi.Component.get_extents(widget, Atspi.CoordType.SCREEN)


def has(widget, state):
    widget.clear_cache()
    return widget.get_state_set().contains(state)


def click(widget):
    spot = place(widget)
    act("mousemove", "--sync", spot.x + min(spot.width // 2, 30), spot.y + spot.height // 2, "click", 1)
