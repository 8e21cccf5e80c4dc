#!/usr/bin/env python3
"""Compares what json.txt says of its documents with what another parser makes of them."""

import json
import pathlib
import re
import sys


def decoded(text):
    def spelled(match):
        code, _, times = match.group(1).partition(b"*")
        return bytes.fromhex(code.decode()) * int(times or 1)

    return re.sub(rb"<([0-9A-F*]+)>", spelled, text)


def refuse(constant):
    raise ValueError(constant)


def kind_of(document):
    try:
        value = json.loads(document.decode("utf-8"), parse_constant=refuse)
    except (ValueError, RecursionError):  # the deepest ones do not end
        return "broken"
    if not isinstance(value, dict):
        return "other"
    code = value.get("code")
    if code is None:
        return "codeless"
    is_number = isinstance(code, (int, float)) and not isinstance(code, bool)
    if is_number and code != 0 and code == int(code) and -(2**31) <= code < 2**31:
        return "refused"
    return "accepted"


sys.setrecursionlimit(5000)
surprises = 0
for line in (pathlib.Path(__file__).parent / "json.txt").read_bytes().split(b"\n"):
    if not line or line.startswith(b"#"):
        continue
    kind, name, document = line.split(b"\t")
    said = kind.decode().split("/")[-1]
    if kind_of(decoded(document)) != said:
        surprises += 1
        print(f"{name.decode()}: not {said} but {kind_of(decoded(document))}")
sys.exit(surprises > 0)
