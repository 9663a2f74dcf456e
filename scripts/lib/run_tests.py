"""Builds the presets that the named parts need, runs their tests and counts every case."""

import json
import os
import re
import shutil
import subprocess
import sys
import time
import xml.etree.ElementTree as ElementTree
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
BUILD = ROOT / "build"
CTEST_TIMEOUT_SECONDS = 600
# More than there are processors: most tests wait most of the time, for a peer or for the pace of
# the queue.
TESTS_AT_A_TIME = "3"

PRESETS = {
    "native": ["linux-release"],
    "windows": ["windows-release"],
    "sanitize": ["linux-asan"],
    "threads": ["linux-tsan"],
    "real": ["linux-release", "windows-release"],
}
# Of these presets only these tests are built and run, each with the target that it needs.
LIMITED = {
    "linux-tsan": {"platform": "test_platform", "component": "test_component", "storm": "storm"},
}


class Totals:
    def __init__(self):
        self.passed = 0
        self.failed = 0
        self.skipped = 0
        self.failures = []

    def add(self, what, passed, failed, skipped=0):
        self.passed += passed
        self.failed += failed
        self.skipped += skipped
        if failed:
            self.failures.append(f"{what}: {failed} failed")


def say(text):
    print(f"\n== {text}", flush=True)


def build(preset, totals):
    say(f"build {preset}")
    started = time.monotonic()
    log = BUILD / f"{preset}.log"
    BUILD.mkdir(exist_ok=True)
    with open(log, "w") as out:
        targets = LIMITED.get(preset, {}).values()
        steps = [["cmake", "--preset", preset],
                 ["cmake", "--build", "--preset", preset,
                  *(["--target", *targets] if targets else [])]]
        for step in steps:
            if subprocess.run(step, cwd=ROOT, stdout=out, stderr=subprocess.STDOUT).returncode:
                print(log.read_text()[-6000:])
                totals.add(f"build {preset}", 0, 1)
                return False
    print(f"   {time.monotonic() - started:.0f} s", flush=True)
    return True


def count_entry(name, failed, results):
    """Cases of one ctest entry: those of its GoogleTest report, or the entry itself."""
    report = results / f"test_{name}.json"
    if not report.exists():
        return (0, 1, 0) if failed else (1, 0, 0)
    data = json.loads(report.read_text())
    bad = data["failures"] + data.get("errors", 0)
    skipped = sum(
        1 for suite in data["testsuites"] for case in suite["testsuite"]
        if case.get("result") == "SKIPPED")
    if failed and not bad:
        bad = 1  # every case passed, but the program did not end well
    return max(data["tests"] - bad - skipped, 0), bad, skipped


def run_ctest(preset, totals):
    say(f"test {preset}")
    folder = BUILD / preset
    results = folder / "test-results"
    shutil.rmtree(results, ignore_errors=True)
    results.mkdir(parents=True)
    junit = results / "ctest.xml"
    environment = dict(os.environ, GTEST_OUTPUT=f"json:{results}/", GTEST_BRIEF="1")
    environment.setdefault("UBSAN_OPTIONS", "print_stacktrace=1")
    limit = ["-R", f"^({'|'.join(LIMITED[preset])})$"] if preset in LIMITED else []
    subprocess.run(
        ["ctest", "--test-dir", str(folder), "--output-on-failure", "--no-tests=error", *limit,
         "--parallel", TESTS_AT_A_TIME,
         "--timeout", str(CTEST_TIMEOUT_SECONDS), "--output-junit", str(junit)],
        env=environment, stdin=subprocess.DEVNULL)
    if not junit.exists():
        totals.add(f"ctest {preset}", 0, 1)
        return
    for case in ElementTree.parse(junit).getroot().iter("testcase"):
        failed = case.get("status") != "run"
        name = case.get("name")
        if any(skip.get("message", "").startswith("SKIP_RETURN_CODE")
               for skip in case.iter("skipped")):
            passed, bad, skipped = 0, 0, 1
        else:
            passed, bad, skipped = count_entry(name, failed, results)
        totals.add(f"{preset}: {name}", passed, bad, skipped)


def run_real(totals):
    for system, preset in (("--native", "linux-release"), ("--windows", "windows-release")):
        say(f"real mail, {system[2:]}")
        process = subprocess.run(
            [sys.executable, "tests/real/run.py", system, str(BUILD / preset / "bin")], cwd=ROOT,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, stdin=subprocess.DEVNULL)
        print(process.stdout, end="", flush=True)
        found = re.findall(r"(\d+) passed, (\d+) failed(?:, (\d+) skipped)?", process.stdout)
        passed, failed, skipped = (int(n or 0) for n in found[-1]) if found else (0, 0, 0)
        if process.returncode and not failed:
            failed = 1
        totals.add(f"real {system}", passed, failed, skipped)


def with_wine(action, totals):
    """Runs the action with a Wine prefix of the build tree whose server is up."""
    prefix = BUILD / "wine-prefix"
    script = ROOT / "scripts/lib/wine-env.sh"
    command = f'. "{script}" "{prefix}" && env -0'
    shell = subprocess.run(["bash", "-c", command], stdout=subprocess.PIPE,
                           stdin=subprocess.DEVNULL)
    if shell.returncode:
        totals.add("wine prefix", 0, 1)
        return
    saved = dict(os.environ)
    pairs = [p.partition("=") for p in shell.stdout.decode().split("\0") if p]
    os.environ.clear()
    os.environ.update({name: value for name, _, value in pairs})
    try:
        action()
    finally:
        subprocess.run(["bash", "-c", f'. "{script}" --stop "{prefix}"'],
                       stdin=subprocess.DEVNULL)
        os.environ.clear()
        os.environ.update(saved)


def main(parts):
    totals = Totals()
    presets = list(dict.fromkeys(p for part in parts for p in PRESETS[part]))
    if all([build(preset, totals) for preset in presets]):
        for part in parts:
            if part == "real":
                with_wine(lambda: run_real(totals), totals)
            elif part == "windows":
                with_wine(lambda: run_ctest("windows-release", totals), totals)
            else:
                for preset in PRESETS[part]:
                    run_ctest(preset, totals)
    print()
    for failure in totals.failures:
        print(f"   {failure}")
    skipped = f", {totals.skipped} skipped" if totals.skipped else ""
    print(f"{totals.passed} passed, {totals.failed} failed{skipped}")
    return 1 if totals.failed or not totals.passed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
