#!/usr/bin/env python3
"""Runs a command beside a mail catcher and ends with its exit status.

In the command {port} stands for the catcher's port and {folder} for the folder where it keeps the
messages, as Windows programs name it.
"""

import pathlib
import subprocess
import sys
import tempfile

CATCHER = pathlib.Path(__file__).resolve().parents[1] / "servers" / "catcher.py"


def main(command):
    with tempfile.TemporaryDirectory(prefix="quorvane-") as folder:
        catcher = subprocess.Popen([sys.executable, CATCHER, "--limit", "120", folder],
                                   stdout=subprocess.PIPE, text=True)
        try:
            port = catcher.stdout.readline().strip()
            if not port:
                sys.exit("the catcher didn't start")
            values = {"{port}": port, "{folder}": "Z:" + folder}
            return subprocess.run([values.get(word, word) for word in command],
                                  stdin=subprocess.DEVNULL).returncode
        finally:
            catcher.terminate()
            catcher.wait()


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
