#!/usr/bin/python3
"""What a screen reader learns of the USB Installer, through the accessibility bus.

    screen-reader.py RELEASE KEYS... -- PROGRAM ARGS...

Starts the program (on $DISPLAY, with the accessibility bus of the session) and prints the tree
of roles, names, descriptions and states of its windows as the bus shows them, then types KEYS
with xdotool one at a time, printing what a screen reader is told meanwhile: the focus moving,
a box ticked, a text changed. The key "dialog" waits for the progress dialog, prints its tree
and creates the file RELEASE (which the held installation waits for); "end" waits for the
program to end. Runs inside the simulated client only: the program installs for real.
"""
import subprocess
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

STATES = [("focused", Atspi.StateType.FOCUSED), ("checked", Atspi.StateType.CHECKED)]


def say(text):
    print(text, flush=True)


def describe(node):
    """One line: role, "name", description and the states a reader announces."""
    states = node.get_state_set()
    line = f'{node.get_role_name()} "{node.get_name()}"'
    if node.get_description():
        line += f" ({node.get_description()})"
    marks = [word for word, state in STATES if states.contains(state)]
    return line + "".join(f" [{mark}]" for mark in marks)


def tree(node, depth=1):
    """The node and what it holds that is showing; a table's cells as one line per row."""
    say("  " * depth + describe(node))
    if node.get_role() == Atspi.Role.TABLE:
        for row in range(Atspi.Table.get_n_rows(node)):
            cells = [Atspi.Table.get_accessible_at(node, row, column)
                     for column in range(Atspi.Table.get_n_columns(node))]
            say("  " * (depth + 1) + "row: " + " | ".join(describe(c) for c in cells if c))
        return
    for index in range(node.get_child_count()):
        child = node.get_child_at_index(index)
        if child and child.get_state_set().contains(Atspi.StateType.SHOWING):
            tree(child, depth + 1)


def wait_for(condition, seconds=30):
    """Runs the event loop until condition() holds; False after the time given."""
    context = GLib.MainContext.default()
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        while context.pending():
            context.iteration(False)
        found = condition()
        if found:
            return found
        time.sleep(0.05)
    return None


def application(pid):
    desktop = Atspi.get_desktop(0)
    desktop.clear_cache()  # else applications that start later may not show
    for index in range(desktop.get_child_count()):
        app = desktop.get_child_at_index(index)
        if app and app.get_process_id() == pid:
            return app
    return None


def frames(app, description=None):
    app.clear_cache()
    found = []
    for index in range(app.get_child_count()):
        frame = app.get_child_at_index(index)
        if frame and frame.get_state_set().contains(Atspi.StateType.SHOWING):
            if description is None or frame.get_description() == description:
                found.append(frame)
    return found


def main():
    split = sys.argv.index("--")
    release, keys, command = sys.argv[1], sys.argv[2:split], sys.argv[split + 1:]
    Atspi.init()
    heard = []

    def on_event(event):
        if event.type == "object:property-change:accessible-name":
            # The toolkit sends the object, not its text: a reader asks for the text, which it
            # cannot do any more once the dialog has closed (after its last text).
            try:
                if event.source.get_role() == Atspi.Role.LABEL:
                    heard.append("  text: " + describe(event.source))
            except GLib.Error:
                heard.append("  text changed as the dialog closed")
        elif event.type == "object:state-changed:focused" and event.detail1 == 1:
            heard.append("  focus: " + describe(event.source))
        elif event.type == "object:state-changed:checked":
            heard.append(f"  {'ticked' if event.detail1 else 'unticked'}: "
                         f'check box "{event.source.get_name()}"')

    listener = Atspi.EventListener.new(on_event)
    for kind in ("object:property-change:accessible-name", "object:state-changed:focused",
                 "object:state-changed:checked"):
        listener.register(kind)

    # The registry runs before the program starts. The bus's address is put on the screen's
    # root window, where a program running as root finds it: asked on the session bus instead,
    # the toolkit may register before its connection is made, and then never does.
    Atspi.get_desktop(0).get_child_count()
    address = subprocess.run(["dbus-send", "--session", "--print-reply=literal",
                              "--dest=org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus.GetAddress"],
                             capture_output=True, text=True, check=True).stdout.strip()
    subprocess.run(["xprop", "-root", "-f", "AT_SPI_BUS", "8s", "-set", "AT_SPI_BUS", address],
                   check=True)
    program = subprocess.Popen(command)
    app = wait_for(lambda: application(program.pid))
    window = app and wait_for(lambda: frames(app))
    if not window:
        say("the program did not show a window on the accessibility bus")
        program.kill()
        return 1
    wait_for(lambda: False, 1)  # lets the window settle and its events pass
    heard.clear()
    say(f'application "{app.get_name()}"')
    tree(window[0])
    # The keyboard's focus, which a window manager would give the window whenever it shows.
    shown = subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--name",
                            "^USB Installer$"], capture_output=True, text=True).stdout.split()

    def focus_window():
        subprocess.run(["xdotool", "windowfocus", "--sync", shown[0]], check=True)
        wait_for(lambda: False, 1)

    say("window focused:")
    focus_window()
    for line in heard:
        say(line)
    heard.clear()

    for key in keys:
        say(f"key {key}:")
        if key == "dialog":
            dialog = wait_for(lambda: frames(app, "Progress of the installation"))
            if dialog:
                tree(dialog[0])
            open(release, "w").close()
            wait_for(lambda: not frames(app, "Progress of the installation"))
            focus_window()
        elif key == "end":
            try:
                say(f"  program ended, status {program.wait(30)}")
            except subprocess.TimeoutExpired:
                say("  the program is still running")
                program.kill()
        else:
            subprocess.run(["xdotool", "key", "--clearmodifiers", key], check=True)
            wait_for(lambda: False, 1)
        for line in heard:
            say(line)
        heard.clear()
    if program.poll() is None:
        program.kill()
    return 0


if __name__ == "__main__":
    sys.exit(main())
