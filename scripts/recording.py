#!/usr/bin/env python3
"""Draws a terminal in which somebody meets vospeak, as an SVG picture of what a build really printed.

Usage: recording.py BUILD PICTURE          writes the picture
       recording.py BUILD PICTURE --check  fails when the picture differs, but for the code and the time

The local service runs meanwhile, at the address that the build knows.
"""

import difflib
import fcntl
import html
import os
import pathlib
import pty
import re
import select
import struct
import subprocess
import sys
import tempfile
import termios
import unicodedata
import xml.dom.minidom

COLUMNS, ROWS = 80, 24
PATIENCE = 60  # seconds
REST = "\0"  # the second cell of a wide character
PROMPT = "$ "
NUMBER = "5550100"
# What is typed, and what the terminal asks after it. The code is what the service prints.
SCRIPT = [
    ('vospeak say "good morning how are you today" --anonymous -o morning.wav', PROMPT),
    ("vospeak recognize morning.wav", PROMPT),
    (f"vospeak login --sms {NUMBER}", "enter it: "),
    ("CODE", PROMPT),
    ("vospeak recognize morning.wav", PROMPT),
    ("vospeak voices", PROMPT),
]


class Terminal:
    """A shell at a pseudo-terminal, and what stands on its screen, which does not scroll."""

    def __init__(self, folder, environment):
        self.rows, self.column = [""], 0
        child, self.descriptor = pty.fork()
        if child == 0:
            os.chdir(folder)
            os.execve("/bin/sh", ["sh", "-i"], environment)
        fcntl.ioctl(self.descriptor, termios.TIOCSWINSZ, struct.pack("HHHH", ROWS, COLUMNS, 0, 0))
        self.wait(PROMPT)

    def type(self, line):
        rows = len(self.rows)
        os.write(self.descriptor, line.encode() + b"\n")
        while len(self.rows) == rows:  # the terminal shows what is typed
            self.read()

    def wait(self, question):
        while not self.rows[-1][: self.column].endswith(question):
            self.read()

    def read(self):
        if not select.select([self.descriptor], [], [], PATIENCE)[0]:
            sys.exit("recording: nothing comes any more after\n" + "\n".join(self.rows))
        for character in os.read(self.descriptor, 65536).decode():
            self.show(character)

    def show(self, character):
        if character == "\r":
            self.column = 0
        elif character == "\n":
            self.rows.append("")
        elif character.isprintable():
            is_wide = unicodedata.east_asian_width(character) in "FW"
            cells = character + REST * is_wide
            if self.column + len(cells) > COLUMNS:
                self.rows.append("")
                self.column = 0
            row = self.rows[-1].ljust(self.column)
            self.rows[-1] = row[: self.column] + cells + row[self.column + len(cells) :]
            self.column += len(cells)
        else:
            sys.exit(f"recording: {character!r} cannot be drawn")


def line_with(service, pattern):
    for line in service.stdout:
        if found := re.search(pattern, line):
            return found
    sys.exit("recording: the local service has ended")


def record(build):
    """The rows of the screen in the end."""
    with tempfile.TemporaryDirectory() as folder:
        programs = build / "examples" / "cli"
        environment = {"HOME": folder, "LC_ALL": "C.UTF-8", "TZ": "UTC", "PS1": PROMPT,
                       "TERM": "xterm", "PATH": f"{programs}:/usr/bin:/bin"}
        with subprocess.Popen([programs / "vospeak", "start"], env=environment, encoding="utf-8",
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT) as service:
            try:
                line_with(service, "Ctrl-C ends the service")
                terminal = Terminal(folder, environment)
                for line, question in SCRIPT:
                    code = line == "CODE" and line_with(service, f"SMS to {NUMBER}: (\\d+)")
                    terminal.type(code[1] if code else line)
                    terminal.wait(question)
            finally:
                service.terminate()
    return [row.rstrip() for row in terminal.rows[:-1]]


CELL, LINE, MARGIN = 8.4, 21, 16  # pixels
STYLE = """
text{font:14px ui-monospace,SFMono-Regular,Menlo,Consolas,"DejaVu Sans Mono",monospace;white-space:pre;
fill:#c9d1d9;animation:appear 1ms backwards}
.typed{fill:#fff;font-weight:bold}
.prompt{fill:#7ee787}
@keyframes appear{from{visibility:hidden}}
@media (prefers-reduced-motion:reduce){text{animation:none}}
"""


def drawn(row):
    """The parts of a row, each at its place and with its width, whatever the reader's font."""
    for part in re.finditer(r"\$ |\S+(?: \S+)*", row):
        kind = " class='prompt'" if part[0] == PROMPT else ""
        if row.startswith(PROMPT) and not kind:
            kind = " class='typed'"
        yield (f"<tspan{kind} x='{MARGIN + part.start() * CELL:.1f}'"
               f" textLength='{len(part[0]) * CELL:.1f}'>"
               f"{html.escape(part[0].replace(REST, ''), quote=False)}</tspan>")


def draw(rows):
    """The picture of a screen, on which the rows appear one after the other."""
    width, height = round(COLUMNS * CELL) + 2 * MARGIN, len(rows) * LINE + 2 * MARGIN
    lines = [
        f"<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 {width} {height}'"
        f" width='{width}' height='{height}'>",
        "<title>vospeak at work in a terminal</title>",
        f"<style>{STYLE}</style>",
        f"<rect x='.5' y='.5' width='{width - 1}' height='{height - 1}' rx='8'"
        " fill='#161b22' stroke='#57606a'/>",
    ]
    seconds = 0.0
    for place, row in enumerate(rows):
        seconds += 1.2 if row.startswith(PROMPT) else 0.2
        lines.append(f"<text y='{MARGIN + 15 + place * LINE}' style='animation-delay:{seconds:.1f}s'>"
                     + "".join(drawn(row)) + "</text>")
    return "\n".join([*lines, "</svg>", ""])


def without_differences(picture):
    """What every run draws: the code is a random one, and the session ends when it ends."""
    picture = re.sub(r"(enter it: )\d{6}", r"\1", picture)
    return re.sub(r"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d", "", picture)


def main():
    build, path = map(pathlib.Path, sys.argv[1:3])
    picture = draw(record(build.resolve()))
    xml.dom.minidom.parseString(picture)  # raises where it is not well-formed
    if "--check" not in sys.argv:
        path.write_text(picture, encoding="utf-8")
        return
    pictures = path.read_text(encoding="utf-8"), picture
    compared = [without_differences(text).splitlines() for text in pictures]
    difference = list(difflib.unified_diff(*compared, str(path), "this build", lineterm="", n=0))
    if difference:
        sys.exit("\n".join([*difference, "scripts/recording.sh draws the picture anew"]))


main()
