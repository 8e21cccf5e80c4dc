"""Measures the rows of rows.txt and prints them as one table. scripts/benchmark.sh builds and calls it."""

import argparse
import json
import operator
import os
import signal
import statistics
import sys
import time

from measures import MEASURES, Run, Runner
from server import Server

HERE = os.path.dirname(os.path.abspath(__file__))
QUICK_TOLERANCE = 0.02  # of the goal
COUNTED_ROUNDS = 3  # they hardly differ
TIMED_ROUNDS = 5


class Row:
    def __init__(self, line):
        fields = [field.strip() for field in line.split("|")]
        self.name, self.what, measure, self.work, times, pieces, self.base, contenders, goal, quick = fields
        self.measure = MEASURES[measure]
        self.is_difference = measure == "allocations"  # compared by it, and not by a ratio
        self.times = [int(number) for number in times.split()]
        self.pieces = int(pieces)
        self.contenders = contenders.split()
        self.goal = None if goal == "-" else goal
        self.is_quick = quick in ("shown", "gate")
        self.is_gate = quick == "gate"
        self.rounds = range(COUNTED_ROUNDS if self.measure.is_counted else TIMED_ROUNDS)

    def runs(self, contender, number):
        return [Run(self.measure.tool, contender, self.work, times, number) for times in self.times]

    def all_runs(self):
        """In each round the contenders take turns."""
        return [run for number in self.rounds for contender in [self.base] + self.contenders
                for run in self.runs(contender, number)]

    def value(self, results, contender, number):
        used = [results[run][self.measure.used] for run in self.runs(contender, number)]
        if self.measure.is_counted:
            return self.measure.value(used[1] - used[0], self.times[1] - self.times[0], self.pieces)
        return self.measure.value(used[0], self.times[0], self.pieces)

    def compare(self, value, base):
        return round(value - base) if self.is_difference else value / base

    def outcome(self, results, contender):
        """The medians of a contender's values, and of what they are to the base's of the same round."""
        values = [self.value(results, contender, number) for number in self.rounds]
        compared = [self.compare(value, self.value(results, self.base, number))
                    for number, value in zip(self.rounds, values)]
        judged = contender == self.contenders[0] and self.goal
        return {"row": self.name, "what": self.what, "unit": self.measure.unit, "base": self.base,
                "contender": contender, "value": statistics.median(values), "values": values,
                "compared": statistics.median(compared), "comparisons": compared,
                "isDifference": self.is_difference, "goal": self.goal if judged else None,
                "isGate": self.is_gate}


def read_rows():
    with open(os.path.join(HERE, "rows.txt"), encoding="utf-8") as file:
        lines = [line for line in file if line.strip() and not line.startswith("#")]
    return [Row(line) for line in lines]


def excess(outcome):
    """How far the outcome is on the wrong side of its goal, as a part of the goal; negative: not at all."""
    kind, sign, limit = outcome["goal"].split()
    reached = outcome["value"] if kind == "value" else outcome["compared"]
    beyond = reached - float(limit) if sign == "<=" else float(limit) - reached
    return beyond / float(limit)


def verdict(outcome):
    if not outcome["goal"]:
        return ""
    over = excess(outcome)
    return "met" if over <= 0 else f"missed by {over:.1%}"


def number(value):
    return f"{value:,.0f}" if abs(value) >= 1000 else f"{value:.4g}"


def comparison(outcome, value):
    return f"{value:+}" if outcome["isDifference"] else f"{value:.3f}"


def cells(outcome):
    is_base = outcome["contender"] == outcome["base"]
    low, high = min(outcome["comparisons"]), max(outcome["comparisons"])
    return [outcome["row"], outcome["what"] if is_base else "", outcome["contender"],
            f"{number(outcome['value'])} {outcome['unit']}".strip(),
            "" if is_base else comparison(outcome, outcome["compared"]),
            "" if is_base else f"{comparison(outcome, low)}..{comparison(outcome, high)}",
            outcome["goal"] or "", verdict(outcome)]


def print_table(outcomes):
    lines = [["row", "what", "contender", "median", "to base", "spread", "goal", ""]]
    lines += [cells(outcome) for outcome in outcomes]
    widths = [max(len(line[column]) for line in lines) for column in range(len(lines[0]))]
    for line in lines:
        print("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip())


def measure(runner, rows):
    began = time.monotonic()

    def progress(run):
        print(f"[{time.monotonic() - began:4.0f} s] {run.work} {run.contender} {run.times}", file=sys.stderr)

    runner.perform([run for row in rows for run in row.all_runs()], progress)
    return [row.outcome(runner.results, contender)
            for row in rows for contender in [row.base] + row.contenders]


def too_far(outcomes):
    return [outcome for outcome in outcomes
            if outcome["isGate"] and outcome["goal"] and excess(outcome) > QUICK_TOLERANCE]


def parse_arguments():
    parser = argparse.ArgumentParser(prog="scripts/benchmark.sh", description=__doc__.split(".")[0] + ".")
    parser.add_argument("--quick", action="store_true",
                        help="only what is counted, beside the base alone, once or, where that is beyond the goal "
                        "by more than 2 %%, three times; the exit status is 1 when it still is")
    parser.add_argument("--row", action="append", metavar="NAME", help="only this row; may be repeated")
    parser.add_argument("--rounds", type=int, metavar="N",
                        help=f"how often all is measured (counts {COUNTED_ROUNDS} times, times {TIMED_ROUNDS})")
    parser.add_argument("--json", metavar="FILE", help="writes what was measured there as well")
    parser.add_argument("--voices", type=int, metavar="N", default=10000, help="entries of the catalogue")
    parser.add_argument("--program", required=True, help=argparse.SUPPRESS)
    parser.add_argument("--folder", required=True, help=argparse.SUPPRESS)
    return parser.parse_args()


def chosen_rows(arguments):
    rows = read_rows()
    names = [row.name for row in rows]
    for name in arguments.row or []:
        if name not in names:
            raise SystemExit(f"benchmark: there is no row {name}; there are {', '.join(names)}")
    rows = [row for row in rows if (row.name in arguments.row if arguments.row else
                                    row.is_quick or not arguments.quick)]
    for row in rows:
        if arguments.quick:
            row.contenders = row.contenders[:1]
        if arguments.quick or arguments.rounds:
            row.rounds = range(arguments.rounds or 1)
        if row.work == "voices" and row.pieces > 1:
            row.pieces = arguments.voices
    return rows


def main():
    signal.signal(signal.SIGTERM, lambda *unused: sys.exit(1))  # nginx is not left behind
    arguments = parse_arguments()
    rows = chosen_rows(arguments)
    runner = Runner(os.path.abspath(arguments.program), os.path.abspath(arguments.folder))
    with Server(runner.folder, arguments.voices):
        outcomes = measure(runner, rows)
        suspects = [outcome["row"] for outcome in too_far(outcomes)]
        if arguments.quick and suspects:
            for row in rows:
                row.rounds = range(COUNTED_ROUNDS) if row.name in suspects else row.rounds
            outcomes = measure(runner, rows)
    print_table(outcomes)
    if arguments.json:
        with open(arguments.json, "w", encoding="utf-8") as file:
            json.dump(outcomes, file, indent=1)
    beyond = too_far(outcomes) if arguments.quick else []
    for outcome in beyond:
        print(f"benchmark: {outcome['row']} is beyond its goal ({outcome['goal']})", file=sys.stderr)
    return 1 if beyond else 0


if __name__ == "__main__":
    sys.exit(main())
