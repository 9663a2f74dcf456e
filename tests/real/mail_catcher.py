"""The catcher of tests/servers as a process of the test's own."""

import json
import pathlib
import subprocess

# Debian's Python runs it, which has its library, whatever Python runs the tests.
PROGRAM = pathlib.Path(__file__).resolve().parents[1] / "servers" / "catcher.py"


class Catcher:
    def __init__(self, folder, *options, command=()):
        """With these options of the catcher's own, run by the command that stands in front."""
        self.folder = pathlib.Path(folder)
        self._process = subprocess.Popen(
            [*command, str(PROGRAM), str(self.folder), *options], stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE, text=True)
        line = self._process.stdout.readline()
        if not line:
            self.stop()
            raise RuntimeError("the catcher did not start")
        self.port = int(line)
        self._taken = 0

    def messages(self):
        """The messages since the last call, as pairs of envelope and bytes. A message is there when
        its sender has had the answer to it."""
        new = sorted(self.folder.glob("*.json"))[self._taken:]
        self._taken += len(new)
        return [(json.loads(path.read_text("utf-8")), path.with_suffix(".eml").read_bytes())
                for path in new]

    def stop(self):
        self._process.terminate()
        self._process.wait(10)
        self._process.stdout.close()
