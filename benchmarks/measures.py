"""What is measured, and how the program is run for it."""

import collections
import concurrent.futures
import json
import os
import re
import subprocess

MIB = 1024 * 1024
# valgrind counts an instruction for each byte that "rep movsb" copies, which the C library takes for what is
# larger than some KiB. Whether a buffer is copied when it grows depends on chance.
COUNTED_ENVIRONMENT = {"GLIBC_TUNABLES": "glibc.cpu.x86_rep_movsb_threshold=1000000000"}

# One run of the program. One that is not timed may share the machine with others.
Run = collections.namedtuple("Run", "tool contender work times round")

# unit; tool that runs the program; what of its result is used; whether that is counted, and so the longer
# run's less the shorter's; how the value follows from it, the times and the pieces
Measure = collections.namedtuple("Measure", "unit tool used is_counted value")


def each(scale):
    return lambda used, times, pieces: used * scale / times / pieces


MEASURES = {
    "instructions": Measure("", "callgrind", "instructions", True, each(1)),
    "allocations": Measure("", "plain", "allocations", True, each(1)),
    "time": Measure("ms", "timed", "seconds", False, each(1000)),
    "cpu": Measure("ms/MiB", "timed", "cpuSeconds", False, each(1000)),
    "memory": Measure("MiB", "timed", "memoryBytes", False, lambda used, times, pieces: used / MIB),
    "rate": Measure("MiB/s", "timed", "seconds", False, lambda used, times, pieces: times * pieces / used),
}


class Runner:
    """Runs the program in the server's folder and keeps what each run gave."""

    def __init__(self, program, folder):
        self.program = program
        self.folder = folder
        self.results = {}

    def perform(self, runs, progress):
        new = [run for run in dict.fromkeys(runs) if run not in self.results]
        counted = [run for run in new if run.tool != "timed"]
        pool = concurrent.futures.ThreadPoolExecutor(os.cpu_count())
        try:
            self._keep(counted, pool.map(self._execute, counted), progress)
        finally:
            pool.shutdown(cancel_futures=True)
        timed = [run for run in new if run.tool == "timed"]
        self._keep(timed, map(self._execute, timed), progress)

    def _keep(self, runs, results, progress):
        for run, result in zip(runs, results):
            self.results[run] = result
            progress(run)

    def _execute(self, run):
        command = [self.program, run.contender, run.work, str(run.times)]
        if run.tool == "timed":
            os.sync()  # what the run before has left to write would hold this one up
        if run.tool == "callgrind":
            # In turns the threads get the same work done in about as many pieces each time.
            command = ["valgrind", "--tool=callgrind", "--fair-sched=yes", "--child-silent-after-fork=yes",
                       "--callgrind-out-file=/dev/null"] + command
        environment = {**os.environ, **(COUNTED_ENVIRONMENT if run.tool == "callgrind" else {})}
        done = subprocess.run(command, cwd=self.folder, env=environment, capture_output=True, text=True)
        if done.returncode != 0:
            raise SystemExit(f"benchmark: {' '.join(command)} failed:\n{done.stderr}")
        if run.tool == "callgrind":
            return {"instructions": int(re.search(r"Collected : (\d+)", done.stderr).group(1))}
        return json.loads(done.stdout)
