"""quorvane-send of a build, run natively or under Wine."""

import os
import pathlib
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[2]
TIMEOUT_SECONDS = 120


class Client:
    def __init__(self, bin_folder, windows):
        self.windows = windows
        program = pathlib.Path(bin_folder).resolve() / (
            "quorvane-send.exe" if windows else "quorvane-send")
        if not program.exists():
            raise FileNotFoundError(f"{program} is not built")
        self._command = [str(program)]
        if windows:
            self._command.insert(0, str(ROOT / "scripts/lib/run-wine"))

    def run(self, *arguments, stdin=None):
        """Runs it; the result has returncode, and stdout and stderr as text."""
        done = subprocess.run(
            [*self._command, *map(str, arguments)], input=stdin or b"", capture_output=True,
            timeout=TIMEOUT_SECONDS, env=self._environment())
        done.stdout = done.stdout.decode("utf-8").replace("\r\n", "\n")
        done.stderr = done.stderr.decode("utf-8").replace("\r\n", "\n")
        return done

    @staticmethod
    def _environment():
        # Wine reads names and arguments by the locale, which a build server may leave unset.
        return dict(os.environ, LC_ALL="C.UTF-8")
