"""The virtual instrument, shared with viewers on two ports of its own choice."""

import re
import signal
import subprocess

SIGN = (339, 28)  # in the middle of the button that starts and stops a run
VALUE = (100, 100, 130, 60)  # of channel 0: left, top, width, height

ANNOUNCEMENT = re.compile(
    r"The panel is at http://127\.0\.0\.1:(\d+)/ for browsers, and at 127\.0\.0\.1:(\d+) for VNC")


class Instrument:
    def __init__(self, panelsim, application, *options):
        self._process = subprocess.Popen(
            [panelsim, "--headless", "--app", application, "--remote", "0", *options],
            stdout=subprocess.PIPE, text=True)
        for line in self._process.stdout:
            found = ANNOUNCEMENT.match(line)
            if found:
                self.page_port, self.port = (int(port) for port in found.groups())
                return
        raise AssertionError("panelsim has announced no viewers' address")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.send_signal(signal.SIGINT)
        assert self._process.wait(60) == 0, self._process.returncode


def is_start(pixel):
    """Whether the sign is the green triangle."""
    return pixel >> 16 < 0x60 and pixel >> 8 & 0xFF > 0xA0


def is_stop(pixel):
    """Whether the sign is the red square."""
    return pixel >> 16 > 0xA0 and pixel >> 8 & 0xFF < 0x40
