"""Tables that are refused, scripts that do not fit, a second console, and kills at any moment."""
import os
import random
import shutil
import subprocess
import time
import unittest

import dbase
from console import MENU, TIMEOUT, ProjectCase, SettingsCase


REFUSED = {
    "record length": lambda data: data[:10] + b"\xd2" + data[11:],
    "record cut": lambda data: data[:-60],
    "zeros": lambda data: bytes(len(data)),
}


class Refused(ProjectCase):
    def test_irregular_table_stays_as_it_was_and_shows_no_menu(self):
        good = self.read()
        for name, defect in REFUSED.items():
            with self.subTest(name):
                self.write_table(defect(good))
                before = self.read()
                shown, _ = self.play("erwarte Fehler Aufgetreten!", "start", "ok", "ende")
                self.assertEqual(shown.count("+-- Fehler Aufgetreten!"), 1)
                self.assertIn(self.table, shown)
                self.assertNotIn(MENU, shown)
                self.assertEqual(self.read(), before)

    def test_table_that_went_away(self):
        process = self.start()
        os.remove(self.table)
        shown, said = process.communicate("erwarte Fehler Aufgetreten\nstart\nok\nende\n".encode(), timeout=TIMEOUT)
        self.assertEqual(process.returncode, 0, said.decode())
        self.assertIn("Datei", shown.decode())
        self.assertNotIn(MENU, shown.decode())
        self.assertFalse(os.path.exists(self.table))

    def test_path_that_the_host_has_no_room_for(self):
        deep = os.path.join(self.folder, "d" * 60)
        shutil.copytree(self.project, deep)
        _, said = self.play("start", "0", "ende", code=1, project=deep)
        self.assertIn("zu lang", said)
        self.assertEqual(os.listdir(deep), ["punkte.dbf"])


class NoRoom(SettingsCase):
    """Files may not grow: what is saved fails, and the signal of that limit ends nobody."""

    def command(self, project=None):
        return ["prlimit", "--fsize=100"] + super().command(project)

    def test_table_without_its_columns_takes_nothing_and_says_why(self):
        before = self.read()
        shown, _ = self.play("erwarte fehlen die Spalten NE_OA, NE_ANTRAGN", "start", "ok", "6",
                             "erwarte es kann nichts gespeichert werden: Die Datei ist zu groß.", "1001", "ok", "abbruch",
                             "0", "ende")
        self.assertNotIn("=== 7020", shown)
        self.assertEqual(self.read(), before)

    def test_settings_that_cannot_be_written_are_told_once_a_run(self):
        before = self.read(self.ini)
        once = ("erwarte fehlen die Spalten", "start", "ok", "2", "erwarte Einstellungen konnten nicht", "ok", "ok",
                "2", "ok", "0")
        shown, _ = self.play(*once, *once, "ende")
        self.assertEqual(shown.count("die Datei '%s' geschrieben werden: Die Datei ist zu groß." % self.ini), 2)
        self.assertEqual(self.read(self.ini), before)


class Quotes(SettingsCase):
    def test_double_quote_in_a_setting_is_told_and_becomes_a_single_one(self):
        self.play("start", "2", '7011 = Büro "Nord"', "erwarte Büro 'Nord'", "ok", "ok", "0", "ende")
        before = self.read(self.ini)
        self.assertIn("Büro 'Nord'".encode("cp1252"), before)
        self.play("start", "2", "ok", "0", "ende")
        self.assertEqual(self.read(self.ini), before)


# Lines, and a part of what is said on stderr.
WRONG_SCRIPTS = {
    "control that is not there": (["start", "10", "7999 = 1"], "7999"),
    "read-only control": (["start", "10", "7010 = 1"], "7010"),
    "row that is not there": (["start", "10", 'haken 7000 "4711" an'], "4711"),
    "entry that is not there": (["start", "10", "wähle 7006 Bremerhaven"], "Bremerhaven"),
    "number that the menu lacks": (["start", "3"], "3"),
    "end in an open dialog": (["start", "10"], "zu Ende"),
    "end in the menu": (["start"], "zu Ende"),
    "box that was not expected": (["start", "10", "1", "out.XML", "ok"], "nicht erwartet"),
    "other box than expected": (["start", "10", "erwarte Erfolgreich", "1", "out.XML", "ok"], "Erwartet war"),
    "box that did not come": (["erwarte Erfolgreich", "start", "0", "ende"], "nicht erschienen"),
    "lines left over": (["start", "0", "ende", "start"], "steht noch"),
    "unknown command": (["starte"], "starte"),
}


class Scripts(ProjectCase):
    def test_script_that_does_not_fit_stops_with_a_message(self):
        for name, (lines, message) in WRONG_SCRIPTS.items():
            with self.subTest(name):
                _, said = self.play(*lines, code=2)
                self.assertIn(message, said)


class SecondConsole(ProjectCase):
    def test_looks_on_until_the_first_one_is_gone(self):
        first = self.start()
        before = self.read()
        shown, _ = self.play("punkt 1001", "ende")
        self.assertIn("1001", shown)
        self.play("start", code=2)
        self.assertEqual(self.read(), before)
        first.kill()
        first.wait()
        self.play("start", "0", "ende")


class Killed(ProjectCase):
    def test_old_table_or_new_table_at_any_moment(self):
        sample = dbase.Table(self.table)
        records = sample.records * 100
        old = (sample.bytes[:4] + len(records).to_bytes(4, "little") + sample.bytes[8:sample.header] + b"".join(records)
               + b"\x1a")
        self.write_table(old)
        began = time.monotonic()
        self.play("start", "0", "ende")
        whole_run = time.monotonic() - began
        new = self.read()
        self.assertNotEqual(new, old)
        random.seed(4711)
        for _ in range(int(os.environ.get("PKTAUS_KILLS", "50"))):
            self.write_table(old)
            process = subprocess.Popen(self.command(), cwd=self.folder, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL)
            process.stdin.write(b"start\n0\nende\n")
            process.stdin.flush()
            time.sleep(random.uniform(0, whole_run))
            process.kill()
            process.communicate()
            self.assertTrue(self.read() in (old, new), "neither the old table nor the new one")
        self.play("start", "0", "ende")
        self.assertEqual(self.read(), new)
        left = [name for name in os.listdir(self.project) if name.endswith(".pktaus-neu")]
        self.assertEqual(left, [], "what killed runs left goes with the next one")


if __name__ == "__main__":
    unittest.main()
