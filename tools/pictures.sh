#!/bin/sh
# Makes the pictures of the README anew: docs/speed.svg from the tables of docs/performance.md, and
# docs/report.png, the head of a report as headless Chromium shows it.
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
python3 tools/speed_picture.py
tools/install_packages.sh build browser
tools/build.sh tvrng
page=$(mktemp --suffix=.html)
trap 'rm -f "$page"' EXIT
build/bin/tvrng report philox4x32_10 -o "$page"
python3 - "$page" <<'END'
import base64
import pathlib
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, "tests/report")
from browser import Browser

with Browser() as browser:
    browser.call("Emulation.setDeviceMetricsOverride", width=960, height=700,
                 deviceScaleFactor=1, mobile=False)
    browser.call("Page.navigate", url=pathlib.Path(sys.argv[1]).as_uri())
    browser.wait("Page.loadEventFired")
    picture = browser.call("Page.captureScreenshot", format="png")["data"]
    pathlib.Path("docs/report.png").write_bytes(base64.b64decode(picture))
END
