#!/usr/bin/env python3
"""Runs the tests that send real mail with quorvane-send.

    tests/real/run.py [--native BIN] [--windows BIN] [WORD...]

BIN is the bin folder of a build. Without either, those of build/linux-release and
build/windows-release are taken as far as they exist. WORDs select tests that have one in their
name. Prints one line per test and 'N passed, M failed' at the end, with ', K skipped' behind it when
the machine doesn't permit what K tests need.
"""

import argparse
import signal
import sys
import time
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "servers"))

import test_beyond  # noqa: E402
import test_command_line  # noqa: E402
import test_direct  # noqa: E402
import test_gallery  # noqa: E402
import test_queue  # noqa: E402
import test_relay  # noqa: E402
import test_terminal  # noqa: E402
import test_tls  # noqa: E402
from client import ROOT, Client  # noqa: E402

MODULES = (test_relay, test_tls, test_direct, test_beyond, test_command_line, test_queue,
           test_terminal, test_gallery)


class LineResult(unittest.TestResult):
    """A line for each test as it ends, and what went wrong below it."""

    def __init__(self, system):
        super().__init__()
        self.system = system
        self.failed = 0
        self._problems = []
        self._reason = None  # why the test was skipped

    def startTest(self, test):
        super().startTest(test)
        self._problems = []
        self._reason = None
        self._started = time.monotonic()

    def addError(self, test, error):
        if isinstance(test, unittest.TestCase):
            self._problems.append((test, error))
        else:  # in setUpClass or its like, outside any test
            self.failed += 1
            print(f"FAILED  {self.system:8}{test}", flush=True)
            print(self._exc_info_to_string(error, test), flush=True)

    addFailure = addError

    def addSkip(self, test, reason):
        super().addSkip(test, reason)
        self._reason = reason

    def addSubTest(self, test, subtest, error):
        if error:
            self._problems.append((subtest, error))

    def stopTest(self, test):
        name = test.id().rpartition(".")[2].removeprefix("test_").replace("_", " ")
        word = "FAILED" if self._problems else "SKIPPED" if self._reason else "ok"
        remark = self._reason or f"{time.monotonic() - self._started:.1f} s"
        print(f"{word:8}{self.system:8}{name} ({remark})", flush=True)
        for problem, error in self._problems:
            text = self._exc_info_to_string(error, test)
            print(f"    {problem}\n    " + text.replace("\n", "\n    "), flush=True)
        self.failed += bool(self._problems)
        super().stopTest(test)


def selected(words):
    loader = unittest.TestLoader()
    for module in MODULES:
        for suite in loader.loadTestsFromModule(module):
            for test in suite:
                if not words or any(word in test.id() for word in words):
                    yield test


def run(client, system, words):
    """Numbers of tests that passed, failed and were skipped with this client."""
    result = LineResult(system)
    for module in MODULES:
        for value in vars(module).values():
            if isinstance(value, type) and issubclass(value, unittest.TestCase):
                value.client = client
    unittest.TestSuite(selected(words)).run(result)
    skipped = len(result.skipped)
    return max(result.testsRun - result.failed - skipped, 0), result.failed, skipped


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--native", metavar="BIN", help="bin folder of a Linux build")
    parser.add_argument("--windows", metavar="BIN", help="bin folder of a Windows build")
    parser.add_argument("words", nargs="*", metavar="WORD", help="run the tests with it in the name")
    options = parser.parse_args()
    # Or the programs that it starts would ignore interruptions, where the runner is a shell's
    # background job.
    signal.signal(signal.SIGINT, signal.default_int_handler)
    folders = {"native": options.native, "windows": options.windows}
    if not any(folders.values()):
        for system, preset in (("native", "linux-release"), ("windows", "windows-release")):
            folder = ROOT / "build" / preset / "bin"
            if (folder / "quorvane-send").exists() or (folder / "quorvane-send.exe").exists():
                folders[system] = folder
    totals = [0, 0, 0]
    for system, folder in folders.items():
        if folder:
            counts = run(Client(Path(folder), system == "windows"), system, options.words)
            totals = [total + count for total, count in zip(totals, counts)]
    passed, failed, skipped = totals
    print(f"{passed} passed, {failed} failed" + (f", {skipped} skipped" if skipped else ""))
    return 1 if failed or not passed else 0


if __name__ == "__main__":
    sys.exit(main())
