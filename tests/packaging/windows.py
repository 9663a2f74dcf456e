"""Installs the setup program as a user does, runs the examples from there, and takes it away again.

    windows.py BUILD

BUILD is a build tree of Windows. The registry and the folders of a prefix of Wine of the test's own
are compared before and after; the archive must hold what the setup program installs.
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path += [str(ROOT / "tests" / "real")]

from mail_catcher import Catcher  # noqa: E402

BUILD = Path(sys.argv[1]).resolve()
PREFIX = BUILD / "wine-package"
TIMEOUT_SECONDS = 60
# Blanks and letters of other alphabets, as users have them.
PLACE = r"C:\Program Files\Käse & Brot почта"
HOST = BUILD / "bin" / "scripthost.exe"


def wine(*command, check=True):
    # No pipe: what stays in the background would hold it open.
    with tempfile.TemporaryFile() as out:
        done = subprocess.run([str(ROOT / "scripts/lib/run-wine"), *map(str, command)],
                              stdin=subprocess.DEVNULL, stdout=out, stderr=subprocess.STDOUT,
                              timeout=TIMEOUT_SECONDS)
        out.seek(0)
        text = out.read().decode("utf-8", "replace")
    if check and done.returncode:
        raise AssertionError(f"{command}: status {done.returncode}\n{text}")
    return done.returncode, text


def to_the_end(option):
    """The words of an option that takes the rest of the command line, and wants no quotes."""
    return option.split(" ")


def files(folder):
    """Everything below a folder of the prefix, but what Wine itself keeps changing."""
    return {path.relative_to(folder).as_posix() for path in folder.rglob("*")
            if "Temp" not in path.parts and "temp" not in path.parts}


def registry():
    """The machine's part of the registry: key, and value names with data."""
    wine("reg", "export", "HKLM\\Software", r"C:\export.reg", "/y")
    exported = PREFIX / "drive_c" / "export.reg"
    text = exported.read_text("utf-16")
    exported.unlink()
    return set(re.findall(r"^\[.*\]$", text, re.M)), text


class Package(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="quorvane-")
        cls.addClassCleanup(folder.cleanup)
        cls.output = Path(folder.name)
        subprocess.run([str(ROOT / "scripts/package"), "windows", "--no-setup", "--build", str(BUILD),
                        "--output", folder.name], check=True, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL)
        cls.setup = next(cls.output.glob("*-setup.exe"))
        cls.archive = next(cls.output.glob("*-windows.zip"))
        script = ROOT / "scripts/lib/wine-env.sh"
        shutil.rmtree(PREFIX, ignore_errors=True)
        environment = subprocess.run(
            ["bash", "-c", f'. "{script}" "{PREFIX}" && env -0'], check=True,
            env={name: value for name, value in os.environ.items()
                 if name != "QUORVANE_WINE_READY"},
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE).stdout.decode()
        os.environ.update(pair.split("=", 1) for pair in environment.split("\0") if "=" in pair)
        cls.addClassCleanup(subprocess.run, ["bash", "-c", f'. "{script}" --stop "{PREFIX}"'],
                            stdin=subprocess.DEVNULL)
        cls.drive = PREFIX / "drive_c"

    def install(self, place=PLACE):
        wine(self.setup, "/S", *to_the_end(f"/D={place}"))
        return self.drive.joinpath(*place.split("\\")[1:])

    def build_example(self, installed):
        """A program that was built with what is installed, and runs where it was built."""
        build = self.output / "examples"
        for step in (["-G", "Ninja", "-S", installed / "examples", "-B", build,
                      "-DCMAKE_SYSTEM_NAME=Windows",
                      "-DCMAKE_CXX_COMPILER=x86_64-w64-mingw32-g++-posix",
                      f"-DCMAKE_PREFIX_PATH={installed}"],
                     ["--build", build, "--target", "simple-example"]):
            subprocess.run(["cmake", *step], check=True, stdin=subprocess.DEVNULL,
                           stdout=subprocess.DEVNULL)
        return build / "simple-example.exe"

    def send_from(self, installed, *programs):
        with tempfile.TemporaryDirectory(prefix="quorvane-") as folder:
            catcher = Catcher(folder)
            try:
                for example in ("simple.vbs", "simple.js", "send.vbs", "send.js"):
                    wine(HOST, "-t", "50", installed / "examples" / example, "127.0.0.1",
                         catcher.port)
                wine(installed / "quorvane-send.exe", "--server", f"127.0.0.1:{catcher.port}",
                     "--from", "a@x", "--to", "b@x", "--text", "x")
                for program in programs:
                    wine(program, "127.0.0.1", catcher.port)
                return len(catcher.messages())
            finally:
                catcher.stop()

    def check_pages(self, folder):
        """The texts are pages, whose links and pictures lead to files that come with them."""
        self.assertEqual(list(folder.rglob("*.md")), [])
        pages = list(folder.rglob("*.html"))
        self.assertIn(folder / "docs" / "manual.html", pages)
        links = [(page, link) for page in pages
                 for link in re.findall(r'(?:href|src)="([^"#]+)', page.read_text("utf-8"))]
        self.assertGreater(len(links), 100)
        broken = [(page.name, link) for page, link in links
                  if not re.match("[a-z]+:", link) and not (page.parent / link).exists()]
        self.assertEqual(broken, [])

    def test_setup(self):
        before = registry(), files(self.drive)
        for _ in range(2):  # the second time is an update
            installed = self.install()
        keys, text = registry()
        uninstall = re.search(r'"QuietUninstallString"="(.*)"', text)
        self.assertIn("Quorvane.dll", text)
        self.assertIn(PLACE.replace("\\", "\\\\"), uninstall[1])
        menu = list(self.drive.rglob("Start Menu/Programs/Quorvane/*.lnk"))
        self.assertEqual({path.stem for path in menu}, {"Manual", "Examples", "Uninstall"})
        [manual] = [path for path in menu if path.stem == "Manual"]
        self.assertIn(rb"\docs\manual.html", manual.read_bytes())
        self.assertEqual(self.send_from(installed), 5)

        # A file of the user's own is nobody's to remove.
        own = installed / "examples" / "mine.txt"
        own.write_text("mine")
        # _?= keeps the uninstaller in its place, so that it can be waited for; it then stays.
        wine(installed / "uninstall.exe", "/S", *to_the_end(f"_?={PLACE}"))
        self.assertEqual(files(installed), {"examples", "examples/mine.txt", "uninstall.exe"})
        shutil.rmtree(installed)
        (left_keys, left_text), left_files = registry(), files(self.drive)
        self.assertEqual(left_keys - before[0][0], set())
        self.assertNotIn("quorvane", left_text.lower())
        self.assertEqual(left_files - before[1], set())

    def test_archive(self):
        with zipfile.ZipFile(self.archive) as archive:
            names = [Path(name) for name in archive.namelist() if not name.endswith("/")]
            self.assertIsNone(archive.testzip())
            self.assertEqual(len({name.parts[0] for name in names}), 1)
            portable = self.output / "portable"
            archive.extractall(portable)
        folder = portable / names[0].parts[0]
        installed = self.install(r"C:\Compared")
        self.check_pages(folder)
        expected = {path for path in files(installed) if path != "uninstall.exe"} | {"README.txt"}
        self.assertEqual(files(folder), expected)
        wine(installed / "uninstall.exe", "/S", r"_?=C:\Compared")

        wine("regsvr32", "/s", folder / "Quorvane.dll")
        self.assertEqual(self.send_from(folder, self.build_example(folder)), 6)
        wine("regsvr32", "/u", "/s", folder / "Quorvane.dll")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
