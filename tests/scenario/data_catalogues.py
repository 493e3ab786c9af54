"""The catalogues that ship are those that the generator makes of its tables, and lead to templates that ship."""
import os
import subprocess
import sys
import tempfile
import unittest

TOP = os.path.join(os.path.dirname(__file__), "..", "..")
SHIPPED = os.path.join(TOP, "data")


def bytes_of(folder, name):
    with open(os.path.join(folder, name), "rb") as file:
        return file.read()


class Catalogues(unittest.TestCase):
    def test_are_those_of_the_generator(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run([sys.executable, os.path.join(TOP, "scripts", "make_catalogues.py"), folder], check=True)
            names = sorted(os.listdir(folder))
            self.assertEqual([name for name in sorted(os.listdir(SHIPPED)) if name.endswith(".ini")], names)
            for name in names:
                self.assertEqual(bytes_of(folder, name), bytes_of(SHIPPED, name), name)

    def test_name_the_template_of_their_state_which_only_zone_32_has(self):
        templates = {name[:2]: name for name in os.listdir(SHIPPED) if name.endswith(".XML")}
        for number in range(1, 17):
            code = f"{number:02d}"
            text = bytes_of(SHIPPED, code + ".ini").decode("cp1252")
            header = text.split('HEADER = "')[1].split('"')[0]
            self.assertEqual(header[:2], code)
            self.assertEqual(templates.get(code), None if 11 <= number <= 14 else header)
            self.assertEqual(text.count(f'punktkennung = "{33 if 11 <= number <= 14 else 32}EEENNNNxxxxxx"'), 7)


if __name__ == "__main__":
    unittest.main()
