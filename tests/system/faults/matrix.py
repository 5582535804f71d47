#!/usr/bin/env python3
"""The fault matrix: its sessions, and its page.

  matrix.py sessions DIRECTORY   write a session for each cell; tell, one line each: name, session,
                                 its label, and the fault that is on from the start
  matrix.py page                 print docs/faults.md
  matrix.py check FILE           fail if FILE is not that page
"""

import pathlib
import sys

from table import AT_WAIT_SCREEN, EVERYDAY, OUTCOMES, ROWS, SCREENS, SEEN

# With a run on; each sample differs, so that one can tell what has been shown.
BEGIN = """\
server params 0.1 0.05 0.15 0.25 0.35
server values 1000 900 800 700
allow complaint "*"
"""
NEW = "server values 2000 1890 1780 1670"
NEWEST = "server values 3000 2870 2740 2610"

# How each screen is reached, what a user does there while the fault is on (where the program looks at
# touches; and where it need not), and what is on it: before the fault, with the second and the third
# values.
ENTER = {
    "counter": 'wait text "COUNTER MODE"\ntap 339 28\nwait text 1000\n',
    "histogram": 'wait text "COUNTER MODE"\ntap 394 28\nwait text "PNR MODE"\ntap 30 28\n'
                 "tap 339 28\nwait text 700\nwait text 100\n",
    "options": 'wait text "COUNTER MODE"\ntap 339 28\nwait text 1000\ntap 449 28\nwait text Options\n',
    "keypad": 'wait text "COUNTER MODE"\ntap 339 28\nwait text 1000\ntap 449 28\nwait text Options\n'
              'tap 430 80\nwait text "Time constant, sec"\n',
}
DOES = {
    "counter": "wait time 1s\n",
    "histogram": "wait time 1s\n",
    "options": "tap 430 80\nwait time 600ms\n",
    "keypad": "tap 147 237\ntap 56 142\nwait time 600ms\n", # .1
}
TRIES = {
    **DOES,
    "options": "press 430 80 now\nwait time 400ms\nrelease now\nwait time 600ms\n",
    "keypad": "press 147 237 now\nwait time 300ms\nrelease now\nwait time 300ms\n"
              "press 56 142 now\nwait time 300ms\nrelease now\nwait time 300ms\n",
}
SHOWS = {
    "counter": ("1000", "2000", "3000"),
    "histogram": ("100", "110", "130"),
    "options": ("Options", '"Time constant, sec"', None),
    "keypad": ('"Time constant, sec"', ".1", None),
}
# With the second values, and 0 for the missing last one.
SHOWS_ZERO = {
    "counter": "wait text 0 at 449 219\n",
    "histogram": "wait text 1780\n",
}


def is_polled(screen):
    return screen in ("counter", "histogram")


def back_to_counter(screen):
    """From wherever the touches have led; the button is at one place on all screens."""
    if is_polled(screen):
        return ""
    return 'tap 29 28\ntap 29 28\nwait text "COUNTER MODE"\n'


def stop_once():
    return "mark\ntap 339 28\nwait request STOP\nwait reads 4\nexpect requests STOP\n"


def restart():
    return ("application kill\napplication start\n"
            'wait text "Please wait"\nwait text "COUNTER MODE"\n' + NEWEST +
            "\nmark\ntap 339 28\nwait text 3000\nexpect requests PARAMS? \"START 0.1\"\n")


def works(screen):
    """That the screen does all that it should, with the newest values."""
    text = NEWEST + "\n" + back_to_counter(screen)
    newest = SHOWS[screen][2] or "3000"
    return text + f"wait text {newest}\n" + stop_once()


def enters_once(fault):
    """The keypad's Ok, where the server can hear it."""
    if fault.startswith(("server-off", "server-hang")):
        return ""
    return ('tap 379 237\nwait request "START 0.1"\nwait text Options\n'
            'expect requests "START 0.1"\n')


def polls(screen, outcome):
    """Whether the program goes on: where it does, it asks for data."""
    if screen in ("start-up", "keypad"):
        return ""
    if outcome == "manager":
        return 'mark\nwait time 500ms\nexpect no-request "*"\n'
    return "mark\nwait request DATA?\nwait request DATA?\n"


def still_broken(screen):
    if screen == "start-up":
        return 'wait time 1s\nexpect no-text "COUNTER MODE"\n'
    if is_polled(screen):
        return NEWEST + f"\nwait time 700ms\nexpect no-text {SHOWS[screen][2]}\n"
    return ('press 29 28 now\nwait time 400ms\nrelease now\nwait time 300ms\n'
            'expect no-text "COUNTER MODE"\n')


def seen_lines(screen, seen):
    if seen == "zero":
        return SHOWS_ZERO[screen]
    old, new, _ = SHOWS.get(screen, ("", "", ""))
    return {
        "all": f"wait text {new}\n",
        "last": f"expect text {old}\n",
        "dark": 'expect no-text "*"\n',
        "wait": 'expect text "Please wait"\n',
    }.get(seen, "")


def screen_session(fault, screen, outcome, seen):
    text = BEGIN + ENTER[screen] + f"mark\nfault {fault}\n{NEW}\n"
    if screen == "options" and fault.startswith("server-"):
        text += f"wait fault {fault.split()[0]}\n" # the keypad will ask for nothing
    text += (DOES if seen == "all" else TRIES)[screen] + seen_lines(screen, seen)
    if screen == "keypad" and seen == "all":
        text += enters_once(fault)
    if outcome == "unnoticed":
        return text + works(screen).replace(stop_once(), "") + "fault off\n" + stop_once()
    text += "fault off\n"
    if outcome in ("itself", "touch"):
        return text + works(screen)
    if outcome in ("manager", "hidden"):
        text += still_broken(screen) + polls(screen, outcome)
    return text + restart()


def start_session(fault, outcome, seen):
    text = BEGIN
    if fault in AT_WAIT_SCREEN:
        text += f'wait text "Please wait"\nfault {fault}\n'
    started = 'wait text "COUNTER MODE"\n'
    runs = "tap 339 28\nwait text 1000\n"
    if outcome == "unnoticed":
        return text + started + runs + "fault off\n" + stop_once()
    if outcome == "touch":
        return text + started + "wait time 500ms\nfault off\n" + runs + stop_once()
    if outcome == "again":
        return (text + started + "wait time 500ms\nfault off\ntap 339 28\nwait time 700ms\n"
                "expect no-text 1000\nmark\ntap 339 28\nwait request STOP\n" + runs + stop_once())
    if outcome == "status":
        waits = 'wait text "Error: Can\'t connect to server!"\n' if seen == "error" else ""
        return text + waits + "wait exit 1\nfault off\n" + restart().replace("application kill\n", "")
    text += "wait time 3s\n" + seen_lines("start-up", seen) + "fault off\n"
    if outcome == "itself":
        return text + started + runs + stop_once()
    if outcome == "hidden":
        text += "wait request PARAMS?\n"
    if outcome in ("manager", "hidden"):
        text += still_broken("start-up")
    return text + restart()


def cells():
    for fault, row in ROWS:
        for screen in SCREENS:
            outcome, seen = row[screen]
            name = (fault + "-" + screen).replace(" ", "-")
            yield name, fault, screen, outcome, seen


def session(fault, screen, outcome, seen):
    asks_nothing = screen == "keypad" and fault.startswith("server-")
    struck = "" if asks_nothing else f"wait fault {fault.split()[0]}\n"
    head = f"# {fault}, {screen}: {SEEN[seen]}; then {OUTCOMES[outcome][0]}.\n\n"
    if screen == "start-up":
        text = start_session(fault, outcome, seen)
    else:
        text = screen_session(fault, screen, outcome, seen)
    return head + text.replace("fault off\n", struck + "fault off\n")


def write_sessions(directory):
    for name, fault, screen, outcome, seen in cells():
        path = pathlib.Path(directory) / (name + ".session")
        path.parent.mkdir(parents=True, exist_ok=True)
        text = session(fault, screen, outcome, seen)
        if not path.exists() or path.read_text() != text:
            path.write_text(text)
        label = "system" if (fault, screen) in EVERYDAY else "faults"
        print(name, path, label, fault if screen == "start-up" and fault not in AT_WAIT_SCREEN else "", sep="|")


HEAD = """\
# When something breaks

What the user sees while something is broken, and what becomes of it when it is whole again. Each
cell is a test that plays just this on the virtual instrument, with a run going on: the fault is
there for a second (three at the start), and on the options screen and the keypad the user touches
something meanwhile. The same faults can be tried by hand, in the window's menu, with
`panelsim --fault FAULT` and with the line `fault FAULT` of [a session](sessions.md); `panelsim
--help` says what each of them does. What the service manager does stands in
[installing](installing.md#when-the-panel-stands-still).

This page is made by `tests/system/faults/matrix.py page` from `table.py` beside it, which the tests
are made from, too; `ctest --preset faults` plays all of them.

"meanwhile: afterwards", where *afterwards* is

"""


def page():
    lines = [f"- **{word}**: {text}" for word, text in OUTCOMES.values()]
    text = HEAD + "\n".join(lines) + "\n\n"
    text += "| fault | " + " | ".join(SCREENS) + " |\n"
    text += "|---" * (len(SCREENS) + 1) + "|\n"
    for fault, row in ROWS:
        entries = [f"{SEEN[seen]}: **{OUTCOMES[outcome][0]}**" for outcome, seen in
                   (row[screen] for screen in SCREENS)]
        text += f"| `{fault}` | " + " | ".join(entries) + " |\n"
    return text


def main(arguments):
    if arguments[:1] == ["sessions"] and len(arguments) == 2:
        write_sessions(arguments[1])
    elif arguments == ["page"]:
        print(page(), end="")
    elif arguments[:1] == ["check"] and len(arguments) == 2:
        if pathlib.Path(arguments[1]).read_text() != page():
            sys.exit(f"{arguments[1]} is not what the table says; renew it with\n"
                     "  tests/system/faults/matrix.py page > docs/faults.md")
    else:
        sys.exit(__doc__)


if __name__ == "__main__":
    main(sys.argv[1:])
