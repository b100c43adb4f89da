"""check-sensor-lists has to say what is wrong, and nothing about a good list."""
import plistlib
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = sys.argv.pop(1)
DIE = {"Key": "CPU Die", "SMCKey": "Tcp0"}
SPEED = {"Key": "ActualSpeed", "SMCKey": "F%dAc"}


class CheckSensorLists(unittest.TestCase):
    def findings(self, name, content):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / name
            path.write_bytes(content if isinstance(content, bytes) else plistlib.dumps(content))
            run = subprocess.run([SCRIPT, str(path)], capture_output=True, text=True, check=False)
        self.assertEqual(run.returncode != 0, bool(run.stdout), run.stderr)
        return run.stdout

    def temperature(self, *elements):
        return self.findings("Temperature.plist", [DIE, *elements])

    def test_good_lists(self):
        self.assertEqual(self.temperature({"Key": "GPU", "SMCKey": "Tgp0"}), "")
        self.assertEqual(self.findings("Fan.plist", [SPEED]), "")

    def test_not_a_list(self):
        self.assertIn("no property list", self.findings("Fan.plist", b"<plist><array>"))
        self.assertIn("not an array", self.findings("Fan.plist", {"Key": "x"}))

    def test_elements(self):
        self.assertIn("element 1", self.temperature("text"))
        self.assertIn("element 1", self.temperature({"Key": "GPU"}))
        self.assertIn("no name or key", self.temperature({"Key": " ", "SMCKey": "Tgp0"}))

    def test_keys_have_four_characters(self):
        self.assertIn("four characters", self.temperature({"Key": "GPU", "SMCKey": "Tgp"}))
        self.assertIn("four characters", self.temperature({"Key": "GPU", "SMCKey": "Tgp10"}))
        self.assertIn("four characters", self.findings("Fan.plist", [SPEED, {"Key": "x", "SMCKey": "F%dLong"}]))

    def test_formats_have_one_number(self):
        for text in ("F0Ac", "F%d%d", "F%sAc", "F%%d"):
            self.assertIn("format", self.findings("Fan.plist", [SPEED, {"Key": "x", "SMCKey": text}]))

    def test_nothing_stands_there_twice(self):
        self.assertIn('name "GPU"', self.temperature({"Key": "GPU", "SMCKey": "Tgp0"}, {"Key": "GPU", "SMCKey": "Tgp1"}))
        self.assertIn('key "Tcp0"', self.temperature({"Key": "GPU", "SMCKey": "Tcp0"}))

    def test_what_is_needed(self):
        self.assertIn('"CPU Die"', self.findings("Temperature.plist", []))
        self.assertIn('"ActualSpeed"', self.findings("Fan.plist", []))


if __name__ == "__main__":
    unittest.main()
