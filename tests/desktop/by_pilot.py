"""The roads of the scenario once more, through the desktop's windows, and the sample's own roads beside the console."""
import os
import shutil
import subprocess
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "scenario"))

from console import BIN, SAMPLE, SETTINGS, TIMEOUT, TOP, ProjectCase  # noqa: E402
from scenario_export import Export  # noqa: E402, F401
from scenario_orders import *  # noqa: E402, F401, F403
from scenario_sheet import Sheet  # noqa: E402, F401


class Road(ProjectCase):
    def left_by(self, program, script):
        """All that a script leaves behind: contents by file name."""
        shutil.copy(os.path.join(SETTINGS, "pktausout.ini"), self.plugin)
        shutil.copy(SAMPLE, self.table)
        results = os.path.join(self.folder, "out", "musterstadt")
        os.makedirs(results, exist_ok=True)
        shutil.copytree(SETTINGS, os.path.join(self.folder, "sample", "einstellungen"), dirs_exist_ok=True)
        done = subprocess.run([os.path.join(BIN, program), *self.command()[1:]], cwd=self.folder, input=script,
                              capture_output=True, timeout=TIMEOUT, check=False)
        self.assertEqual(done.returncode, 0, done.stdout.decode() + done.stderr.decode())
        left = {"punkte.dbf": self.read(), "pktausout.ini": self.read(os.path.join(self.plugin, "pktausout.ini"))}
        for name in os.listdir(results):
            left[name] = self.read(os.path.join(results, name))
            os.remove(os.path.join(results, name))
        return left

    def test_sample_roads_leave_the_same_files_as_on_the_console(self):
        for name, files in (("rundgang.txt", 4), ("angaben.txt", 2)):
            with self.subTest(name):
                with open(os.path.join(TOP, "sample", name), "rb") as file:
                    script = file.read()
                by_console = self.left_by("korvo-console", script)
                self.assertEqual(len(by_console), files, by_console.keys())
                self.assertEqual(self.left_by("korvo-pilot", script), by_console)

    def test_window_says_that_no_screen_answers(self):
        nowhere = {**os.environ, "QT_QPA_PLATFORM": "xcb", "DISPLAY": ":4711"}
        done = subprocess.run([os.path.join(BIN, "korvo")], env=nowhere, capture_output=True, timeout=TIMEOUT, check=False)
        self.assertEqual((done.returncode, done.stderr.decode()[:36]), (3, "korvo: Kein Bildschirm antwortet. Oh"))


if __name__ == "__main__":
    unittest.main()
