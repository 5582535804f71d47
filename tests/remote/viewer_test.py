#!/usr/bin/env python3
"""The panel as a VNC viewer has it: its picture, and the mouse for the finger.

viewer_test.py PANELSIM FRONTPANEL
"""

import http.client
import os
import socket
import subprocess
import sys
import tempfile

from instrument import Instrument, SIGN, VALUE, is_start, is_stop
from rfb import Viewer

PANELSIM, FRONTPANEL = sys.argv[1:]


def the_mouse_starts_a_run():
    with Instrument(PANELSIM, FRONTPANEL) as instrument:
        viewer = Viewer(instrument.port)
        assert (viewer.width, viewer.height) == (480, 272)
        assert viewer.title == "Front panel"
        viewer.wait(lambda: is_start(viewer.pixel(*SIGN)))
        other = Viewer(instrument.port)
        zeros = viewer.part(*VALUE)
        button = viewer.pixel(SIGN[0], SIGN[1] + 16)
        viewer.mouse(*SIGN, down=True)
        viewer.wait(lambda: viewer.pixel(SIGN[0], SIGN[1] + 16) != button)  # held
        other.mouse(10, 10, down=True)  # the finger is taken
        viewer.mouse(*SIGN, down=False)
        viewer.wait(lambda: is_stop(viewer.pixel(*SIGN)))
        viewer.wait(lambda: viewer.part(*VALUE) != zeros)
        other.wait(lambda: is_stop(other.pixel(*SIGN)))


def a_viewer_that_goes_lifts_its_finger():
    with Instrument(PANELSIM, FRONTPANEL) as instrument:
        viewer = Viewer(instrument.port)
        viewer.wait(lambda: is_start(viewer.pixel(*SIGN)))
        button = viewer.pixel(SIGN[0], SIGN[1] + 16)
        viewer.mouse(*SIGN, down=True)
        viewer.wait(lambda: viewer.pixel(SIGN[0], SIGN[1] + 16) != button)
        viewer.close()
        after = Viewer(instrument.port)
        after.wait(lambda: is_stop(after.pixel(*SIGN)))


def a_password_is_asked_for():
    with tempfile.NamedTemporaryFile("w", suffix=".txt") as file:
        file.write("secret\n")
        file.flush()
        with Instrument(PANELSIM, FRONTPANEL, "--remote-password", file.name) as instrument:
            viewer = Viewer(instrument.port)
            assert viewer.refuses(bytes(16)), "took a wrong password"


def only_the_pages_can_be_read():
    with Instrument(PANELSIM, FRONTPANEL) as instrument:
        def get(path):
            connection = http.client.HTTPConnection("127.0.0.1", instrument.page_port, timeout=60)
            connection.request("GET", path)
            reply = connection.getresponse()
            return reply.status, reply.getheader("Location") or "", reply.read()

        status, place, _ = get("/")
        assert status == 302 and place.startswith("/vnc.html?"), (status, place)
        assert f"port={instrument.port}&" in place, place
        status, _, page = get(place)
        assert status == 200 and b"noVNC" in page, status
        for path in ("/../../../etc/passwd", "/%2e%2e/%2e%2e/%2e%2e/etc/passwd", "/nothing", "/app"):
            assert get(path)[0] == 404, path


def only_this_machine_is_served():
    with Instrument(PANELSIM, FRONTPANEL) as instrument:
        for port in (instrument.port, instrument.page_port):
            listening = subprocess.run(["ss", "-Htln", "sport", "=", str(port)],
                                       capture_output=True, text=True, check=True).stdout
            assert listening.split()[3] == f"127.0.0.1:{port}", listening


def run(*options):
    return subprocess.run([PANELSIM, "--headless", "--app", FRONTPANEL, *options],
                          capture_output=True, text=True, timeout=60)


def failures_say_what_is_wrong():
    with socket.create_server(("127.0.0.1", 0)) as taken:
        port = taken.getsockname()[1]
        outcome = run("--remote", str(port))
        assert outcome.returncode == 14, outcome
        assert f"cannot share the panel at 127.0.0.1, port {port}: " in outcome.stderr, outcome
    outcome = run("--remote", "0", "--remote-password", "/no/such/file")
    assert outcome.returncode == 14, outcome
    assert "cannot read the password file /no/such/file: No such file" in outcome.stderr, outcome
    outcome = run("--remote", "0", "--remote-password", os.devnull)
    assert outcome.returncode == 14, outcome
    assert "has no password in its first line" in outcome.stderr, outcome


for test in (the_mouse_starts_a_run, a_viewer_that_goes_lifts_its_finger, a_password_is_asked_for,
             only_the_pages_can_be_read, only_this_machine_is_served, failures_say_what_is_wrong):
    print(test.__name__.replace("_", " "), flush=True)
    test()
