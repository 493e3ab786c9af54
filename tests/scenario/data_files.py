"""What ships and what is shown is what its makers make: the templates in data/ and the sample's table."""
import os
import subprocess
import sys
import tempfile
import unittest

import dbase

TOP = os.path.join(os.path.dirname(__file__), "..", "..")


class DataFiles(unittest.TestCase):
    def test_templates_are_those_of_the_generator(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run([sys.executable, os.path.join(TOP, "scripts", "make_templates.py"), folder], check=True)
            shipped = os.path.join(TOP, "data")
            self.assertEqual([name for name in sorted(os.listdir(shipped)) if name.endswith(".XML")],
                             sorted(os.listdir(folder)))
            for name in os.listdir(folder):
                with open(os.path.join(folder, name), "rb") as made, open(os.path.join(shipped, name), "rb") as ships:
                    self.assertEqual(made.read(), ships.read(), name)

    def test_sample_is_a_regular_table_with_points_of_both_kinds(self):
        table = dbase.Table(os.path.join(TOP, "sample", "musterstadt", "punkte.dbf"))
        table.check_regular()
        live = table.live()
        self.assertGreaterEqual(len(live), 200)
        self.assertLess(len(live), len(table.records))
        with_zone = [point for point in live if float(point["EAST"]) > 32000000]
        self.assertTrue(50 < len(with_zone) < len(live) - 50)

    def test_original_file_is_that_of_its_generator(self):
        sample = os.path.join(TOP, "sample")
        with tempfile.TemporaryDirectory() as folder:
            made = os.path.join(folder, "bestand.xml")
            subprocess.run([sys.executable, "-B", os.path.join(sample, "make_original.py"), made], check=True,
                           stdout=subprocess.DEVNULL)
            with open(made, "rb") as fresh, open(os.path.join(sample, "einstellungen", "bestand.xml"), "rb") as kept:
                self.assertEqual(fresh.read(), kept.read())


if __name__ == "__main__":
    unittest.main()
