#!/usr/bin/env python3
"""The panel as a browser has it: opens the page, presses start by mouse, and sees counts.

browser_test.py PANELSIM FRONTPANEL [PICTURE]

Needs Chromium; ends with 77 where that is missing. PICTURE keeps what the page shows at the end.
"""

import shutil
import sys

from browser import Browser
from instrument import Instrument, SIGN, VALUE, is_start, is_stop

PANELSIM, FRONTPANEL = sys.argv[1:3]
# Of the panel, whatever its size on the page.
CANVAS = "document.querySelector('canvas')"


def pixels(browser, x, y, width, height):
    return browser.evaluate(
        f"{CANVAS} && {CANVAS}.width == 480 && Array.from({CANVAS}.getContext('2d')"
        f".getImageData({x}, {y}, {width}, {height}).data).join()")


def sign(browser):
    text = pixels(browser, *SIGN, 1, 1)
    if not text:
        return 0
    red, green, blue, _ = (int(part) for part in text.split(","))
    return red << 16 | green << 8 | blue


def place_of(browser, x, y):
    left, top, width = (float(part) for part in browser.evaluate(
        f"(box => [box.left, box.top, box.width].join())({CANVAS}.getBoundingClientRect())"
    ).split(","))
    zoom = width / 480
    return left + (x + 0.5) * zoom, top + (y + 0.5) * zoom


def main():
    program = shutil.which("chromium")
    if not program:
        print("chromium is not installed; packaging/install-build-packages.sh --browser installs it.")
        return 77
    with Instrument(PANELSIM, FRONTPANEL) as instrument, \
            Browser(program, f"http://127.0.0.1:{instrument.page_port}/") as browser:
        browser.wait(lambda: is_start(sign(browser)))
        zeros = pixels(browser, *VALUE)
        button = pixels(browser, SIGN[0], SIGN[1] + 16, 1, 1)
        place = place_of(browser, *SIGN)
        browser.mouse("mouseMoved", *place)
        browser.mouse("mousePressed", *place)
        browser.wait(lambda: pixels(browser, SIGN[0], SIGN[1] + 16, 1, 1) != button)  # held
        browser.mouse("mouseReleased", *place)
        browser.wait(lambda: is_stop(sign(browser)))
        browser.wait(lambda: pixels(browser, *VALUE) != zeros)
        if len(sys.argv) > 3:
            with open(sys.argv[3], "wb") as file:
                file.write(browser.picture())
    print("A browser starts a run and sees it count.")
    return 0


sys.exit(main())
