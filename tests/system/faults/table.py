"""Which fault does what on which screen: the one table of the tests and of docs/faults.md."""

SCREENS = ["start-up", "counter", "histogram", "options", "keypad"]

# How a cell ends, once the fault is gone: in the page's table, and at length.
OUTCOMES = {
    "unnoticed": ("works", "The screen does all that it should while the fault is there."),
    "itself": ("by itself", "It goes on without anybody doing anything."),
    "touch": ("next touch", "The next touch does what it should."),
    "again": ("run anew", "The run has to be stopped and started again: the start went wrong "
                          "without a word, as [the protocol](protocol.md#commands) says of it."),
    "manager": ("restart", "The program waits for the controller without end. The service manager "
                           "sees no more signs of life and starts it anew; then all is well."),
    "hidden": ("unseen", "A restart mends it, but nobody asks for one: the program goes on polling "
                         "touches, all of which read as none, and the service manager takes that "
                         "for a sign of life."),
    "perhaps": ("perhaps", "Depends on which messages were lost: it goes on, or waits without end "
                           "and is started anew, or shows a damaged picture until it is. After a "
                           "restart all is well."),
    "status": ("status 1", "The program ends with status 1. Started anew, it comes up."),
}

# What the user sees while the fault is there.
SEEN = {
    "all": "all as ever",
    "last": "the last picture",
    "dark": "nothing",
    "wait": "the wait screen",
    "error": "the wait screen, then the error screen",
    "zero": "0 for what is missing",
    "late": "counts, one reply late or not at all",
    "counter": "the counter screen, no counts",
    "damaged": "a picture, perhaps damaged",
    "old": "what stood there before",
}


def row(fault, **cells):
    """One fault; a cell is "OUTCOME SEEN"."""
    return fault, {name.replace("_", "-"): tuple(cell.split()) for name, cell in cells.items()}


def screens(cell, keypad=None, options=None, histogram=None):
    return {
        "counter": cell,
        "histogram": histogram or cell,
        "options": options or cell,
        "keypad": keypad or options or cell,
    }


WORKS = screens("unnoticed all")
LAST = screens("itself last", options="itself all")
LATE = screens("itself late", options="itself all")
HANGS = screens("manager last")

ROWS = [
    row("bus-dead", start_up="manager dark",
        **screens("perhaps damaged", options="touch last")),
    row("bus-fails-at 3", start_up="manager dark", **WORKS),
    row("bus-fails-at burst 1", start_up="manager dark", **screens("perhaps damaged")),
    row("bus-fails-randomly 20", start_up="perhaps damaged", **screens("perhaps damaged")),
    row("bus-corrupts 3", start_up="manager dark", **WORKS),
    row("bus-corrupts burst 1", start_up="manager dark", **screens("perhaps damaged")),
    row("bus-slow 5ms", start_up="itself dark", **WORKS),
    row("pins-forbidden", start_up="status old", **WORKS),
    row("pins-fail", start_up="manager dark", **screens("perhaps damaged", options="touch last")),
    row("coprocessor-fault", start_up="manager wait", **HANGS),
    row("coprocessor-stalled", start_up="itself dark",
        **screens("itself last", options="touch last")),
    row("controller-slow-boot 50ms", start_up="unnoticed all", **WORKS),
    row("controller-slow-boot 1s", start_up="manager dark", **WORKS),
    row("controller-brown-out", start_up="hidden dark", **screens("hidden dark")),
    row("controller-wrong-id", start_up="manager dark", **WORKS),
    row("controller-silent", start_up="manager dark",
        **screens("perhaps damaged", options="touch last")),
    row("server-off", start_up="status error", **LAST),
    row("server-silent", start_up="touch counter", **LAST),
    row("server-late 70ms", start_up="again counter", **LATE),
    row("server-late 300ms", start_up="again counter", **LATE),
    row("server-cut", start_up="touch counter", **LAST),
    row("server-not-json", start_up="touch counter", **LAST),
    row("server-not-object", start_up="touch counter", **LAST),
    row("server-missing-members", start_up="touch counter",
        **screens("itself zero", options="itself all")),
    row("server-nul-byte", start_up="touch counter", **LAST),
    row("server-huge", start_up="again counter", **LATE),
    row("server-close-connection", start_up="touch counter", **LAST),
    row("server-close-connection 2", start_up="unnoticed all", **WORKS),
    row("server-pieces", start_up="again counter", **LAST),
    row("server-hang", start_up="again counter", **LAST),
    row("server-garbage", start_up="touch counter", **LAST),
]

# What would strike nothing if it were on before the controller is: it begins at the wait screen.
AT_WAIT_SCREEN = ["coprocessor-fault", "controller-brown-out"]

# What runs every day; the others are for the whole matrix.
EVERYDAY = [
    ("bus-fails-at 3", "counter"),
    ("coprocessor-fault", "histogram"),
    ("controller-brown-out", "options"),
    ("pins-forbidden", "start-up"),
    ("server-hang", "counter"),
]
