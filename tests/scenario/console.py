"""A project of a test's own, and the console that works on it with the real plug-in library."""
import os
import re
import shutil
import subprocess
import tempfile
import unittest

TOP = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", ".."))
BIN = os.environ.get("PKTAUS_BIN_DIR", os.path.join(TOP, "build", "release", "bin"))
SETTINGS = os.path.join(TOP, "sample", "einstellungen")
ORIGINAL = os.path.join(SETTINGS, "bestand.xml")
FRONT_END = os.environ.get("PKTAUS_FRONT_END", "korvo-console")
SAMPLE = os.path.join(TOP, "sample", "musterstadt", "punkte.dbf")
MENU = "--- Punkte mit ALKIS-Angaben ---"
TIMEOUT = 60  # a hang, not a measure


class ProjectCase(unittest.TestCase):
    """Each test has a folder with a project "p" and a plug-in "plugin" of its own."""

    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="pktaus-")
        self.addCleanup(holder.cleanup)
        self.folder = holder.name
        self.project = os.path.join(self.folder, "p")
        self.table = os.path.join(self.project, "punkte.dbf")
        os.mkdir(self.project)
        shutil.copy(SAMPLE, self.table)
        plugin = os.path.join(self.folder, "plugin")
        shutil.copytree(os.path.join(TOP, "data"), plugin)
        self.library = shutil.copy(os.path.join(BIN, "libpkt_aus.so"), plugin)
        self.plugin = plugin

    def command(self, project=None):
        return [os.path.join(BIN, FRONT_END), "--clock", "2026-03-02T09:05:03", "--zone", "Europe/Berlin",
                "--plugin", self.library, project or self.project]

    def start(self):
        """A console that waits for its lines, at its first prompt."""
        process = subprocess.Popen(self.command(), cwd=self.folder, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE)
        self.addCleanup(self.end, process)
        seen = b""
        while not seen.endswith(b"Korvo> "):
            byte = process.stdout.read(1)
            self.assertTrue(byte, "no prompt")
            seen += byte
        return process

    @staticmethod
    def end(process):
        if process.poll() is None:
            process.kill()
        process.communicate()

    def play(self, *lines, code=0, project=None):
        """Runs a script to its end and gives what was shown, stdout and stderr."""
        done = subprocess.run(self.command(project), cwd=self.folder, input="\n".join(lines).encode() + b"\n",
                              capture_output=True, timeout=TIMEOUT, check=False)
        shown, said = done.stdout.decode(), done.stderr.decode()
        self.assertEqual(done.returncode, code, shown + said)
        return shown, said

    def read(self, path=None):
        with open(path or self.table, "rb") as file:
            return file.read()

    def write_table(self, data):
        with open(self.table, "wb") as file:
            file.write(data)


class SettingsCase(ProjectCase):
    """With the sample's settings beside the plug-in."""

    def setUp(self):
        super().setUp()
        self.ini = os.path.join(self.plugin, "pktausout.ini")
        shutil.copy(os.path.join(SETTINGS, "pktausout.ini"), self.ini)
        self.settings("PUNKTXMLFOLDER", os.path.join(SETTINGS, "reservierungen"))
        self.settings("ORIGXML", ORIGINAL)

    def settings(self, key, value):
        with open(self.ini, encoding="cp1252") as file:
            text = re.sub("(?m)^%s = .*$" % key, '%s = "%s"' % (key, value), file.read())
        with open(self.ini, "w", encoding="cp1252") as file:
            file.write(text)
