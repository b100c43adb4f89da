"""Each rule of scripts/check-manual, on a small manual made for it."""
import struct
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = sys.argv.pop(1)
PAGE = '<!DOCTYPE html><html lang="en"><head><title>T</title></head><body><main><h1 id="top">T</h1>{}</main></body></html>'


def picture(width=4, height=3, size=100):
    header = b"\x89PNG\r\n\x1a\n\0\0\0\rIHDR" + struct.pack(">II", width, height)
    return header + bytes(size - len(header))


class CheckManual(unittest.TestCase):
    def check(self, body, page=PAGE, **files):
        with tempfile.TemporaryDirectory() as folder:
            Path(folder, "index.html").write_text(page.format(body), encoding="utf-8")
            for name, content in files.items():
                Path(folder, name.replace("_", ".")).write_bytes(content)
            done = subprocess.run([sys.executable, SCRIPT, folder], capture_output=True, text=True, check=False)
            return done.returncode, done.stdout

    def assert_fine(self, body, **files):
        self.assertEqual(self.check(body, **files), (0, ""))

    def assert_told(self, what, body, **options):
        code, output = self.check(body, **options)
        self.assertEqual(code, 1, output)
        self.assertIn(what, output)

    def test_a_sound_page(self):
        self.assert_fine('<p><a href="#top">up</a><br><img src="a.png" alt="A" width="4" height="3"></p>', a_png=picture())

    def test_elements(self):
        self.assert_told("</p> closes nothing", "<p><b></p>")
        self.assert_told("<main> is never closed", "", page=PAGE.replace("</main></body></html>", ""))
        self.assert_told("there is no <h1>", "", page=PAGE.replace("h1", "h2"))
        self.assert_told("the language is not told", "", page=PAGE.replace(' lang="en"', ""))
        self.assert_told("id top is there twice", '<p id="top"></p>')

    def test_links(self):
        self.assert_told("other.html leads nowhere", '<a href="other.html">x</a>')
        self.assert_told("leads to no place in index.html", '<a href="#bottom">x</a>')
        self.assert_told("needs the network", '<a href="https://example.org/">x</a>')
        self.assert_told("needs the network", '<img src="//example.org/a.png" alt="a">')

    def test_pictures(self):
        self.assert_told("without a text", '<img src="a.png" alt="" width="4" height="3">', a_png=picture())
        self.assert_told("a.png is 5 by 3, not 4 by 3", '<img src="a.png" alt="A" width="4" height="3">', a_png=picture(5))
        self.assert_told("a.png has 200000 bytes", '<img src="a.png" alt="A" width="4" height="3">',
                         a_png=picture(size=200000))
        self.assert_told("a.png is no PNG", '<img src="a.png" alt="A" width="4" height="3">', a_png=b"GIF89a")
        self.assert_told("b.png is not referred to", "", b_png=picture())

    def test_nothing_is_fetched_and_nothing_runs(self):
        self.assert_told("a script", '<p onclick="x()"></p>')
        self.assert_told("a.css: fetches something", '<a href="a.css">x</a>', a_css=b"p { background: url(x.png) }")


if __name__ == "__main__":
    unittest.main()
