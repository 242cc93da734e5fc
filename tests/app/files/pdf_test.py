"""Scanned PDF files in and out: pdf_test.py VORLANE [unittest options]."""

import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

try:
    import img2pdf
    import pikepdf
    from PIL import Image
except ImportError as missing:
    print(f"not run: {missing}")
    sys.exit(77)

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "batch"))
from pages import HEIGHT, WIDTH, dark, page

VORLANE = os.path.abspath(sys.argv[1])
DPI = 100


def grey(rows):
    return Image.frombytes("L", (WIDTH, HEIGHT), b"".join(rows))


def tool(*words):
    return subprocess.run(words, capture_output=True, check=True, text=True).stdout


def pictures(path):
    """Width, height, encoding and dots per inch of each picture, as pdfimages lists them."""
    listed = [line.split() for line in tool("pdfimages", "-list", path).splitlines()[2:]]
    return [(int(words[3]), int(words[4]), words[8], round(float(words[12]))) for words in listed]


def stored(path, number):
    with pikepdf.open(path) as pdf:
        return next(iter(pdf.pages[number - 1].images.values())).read_raw_bytes()


class PdfTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="vorlane-pdf-")
        os.chdir(self.folder)
        self.addCleanup(shutil.rmtree, self.folder)
        self.addCleanup(os.chdir, "/")

    def straighten(self, *words, exit=0, **options):
        done = subprocess.run([VORLANE, "straighten", *words], capture_output=True, check=False,
                              text=True, timeout=120, **options)
        self.assertEqual(done.returncode, exit, done.stderr)
        return done

    def make_scans(self):
        """Pages of every coding, one shown turned, one without a page, one of text."""
        names = ["1.tif", "2.jpg", "3.jpg", "4.png", "5.jpg", "6.tif"]
        at = {"dpi": (DPI, DPI)}
        grey(page(3)).point(lambda v: 255 * (v > 128), "1").save(names[0], compression="group4", **at)
        grey(page(-2)).save(names[1], quality=88, **at)
        grey(page(2)).convert("RGB").save(names[2], quality=85, **at)
        grey(page(1.5)).convert("RGB").save(names[3], **at)
        grey(dark()).save(names[4], **at)
        Image.new("1", (WIDTH, HEIGHT)).save(names[5], compression="group4", **at)
        with open("plain.pdf", "wb") as file:
            file.write(img2pdf.convert(*names, title="Minutes", author="Clerk"))
        with pikepdf.open("plain.pdf") as pdf:
            pdf.pages[1].Rotate = 90
            text = pdf.make_stream(b"BT /F1 24 Tf 20 20 Td (Typed) Tj ET")
            font = pikepdf.Dictionary(Type=pikepdf.Name.Font, Subtype=pikepdf.Name.Type1,
                                      BaseFont=pikepdf.Name.Helvetica)
            typed = pikepdf.Dictionary(
                Type=pikepdf.Name.Page, MediaBox=[0, 0, 200, 200], Contents=text,
                Resources=pikepdf.Dictionary(Font=pikepdf.Dictionary(F1=font)))
            pdf.pages.append(pikepdf.Page(typed))
            labels = [0, pikepdf.Dictionary(S=pikepdf.Name.r), 2, pikepdf.Dictionary(S=pikepdf.Name.D)]
            pdf.Root.PageLabels = pikepdf.Dictionary(Nums=pikepdf.Array(labels))
            pdf.save("scans.pdf")

    def test_pages_are_straightened_and_all_else_stays(self):
        self.make_scans()
        lines = self.straighten("scans.pdf", "-o", "straight.pdf", "--json", "-j", "3").stdout
        results = [json.loads(line) for line in lines.splitlines()]
        self.assertEqual([line["result"] for line in results[:4]], ["straightened"] * 4)
        self.assertTrue(all(line["unchanged"] for line in results[4:]))
        self.assertIn("it has text", results[6]["reasons"][0]["words"])
        tool("qpdf", "--check", "straight.pdf")

        before, after = pictures("scans.pdf"), pictures("straight.pdf")
        self.assertEqual([made[2] for made in after], [was[2] for was in before])
        self.assertEqual([made[2] for made in after[:4]], ["ccitt", "jpeg", "jpeg", "image"])
        self.assertTrue(all(abs(made[3] - DPI) <= 1 for made in after))
        for line, made in zip(results[:4], after):
            shown = (line["newWidth"], line["newHeight"])
            self.assertEqual(made[:2], shown[::-1] if line["page"] == 2 else shown)
        for number in (5, 6):
            self.assertEqual(stored("straight.pdf", number), stored("scans.pdf", number))

        with pikepdf.open("scans.pdf") as was, pikepdf.open("straight.pdf") as made:
            self.assertEqual([p.label for p in made.pages], [p.label for p in was.pages])
            self.assertEqual(made.pages[1].Rotate, 90)
            box = [float(side) for side in made.pages[0].MediaBox]
            self.assertAlmostEqual(box[2], results[0]["newWidth"] * 72 / DPI, delta=0.1)
        facts = tool("pdfinfo", "straight.pdf")
        self.assertRegex(facts, r"Title: +Minutes\nAuthor: +Clerk\n")
        self.assertIn("Typed", tool("pdftotext", "straight.pdf", "-"))

        self.straighten("scans.pdf", "-o", "again.pdf", "-j", "1")
        with open("scans.pdf", "rb") as scans:
            piped = subprocess.run([VORLANE, "straighten", "-", "-o", "-"], stdin=scans,
                                   capture_output=True, check=True).stdout
        with open("straight.pdf", "rb") as one, open("again.pdf", "rb") as other:
            self.assertEqual(one.read(), piped)
            self.assertEqual(other.read(), piped)

    def test_what_is_shown_is_upright_and_light(self):
        self.make_scans()
        self.straighten("scans.pdf", "-o", "straight.pdf")
        tool("pdftoppm", "-r", str(DPI), "-gray", "straight.pdf", "shown")
        for number in range(1, 5):
            shown = Image.open(f"shown-{number}.pgm")
            width, height = shown.size
            # Of the page's corners none is of the dark ground.
            corners = [shown.getpixel((x, y)) for x in (4, width - 5) for y in (4, height - 5)]
            self.assertGreater(min(corners), 200, number)
            self.assertEqual(width < height, number != 2)

    def test_pages_become_files_and_files_pages(self):
        self.make_scans()
        self.straighten("scans.pdf", "-o", "page-{page}.tif", exit=3)  # text is no picture
        self.straighten("1.tif", "-o", "one.pdf")
        self.assertEqual(pictures("one.pdf")[0][2:], ("ccitt", DPI))
        book = [grey(page(turn)) for turn in (2, -3)]
        book[0].save("book.tif", save_all=True, append_images=book[1:], dpi=(DPI, DPI))
        self.straighten("book.tif", "-o", "book.pdf")
        self.assertEqual([made[2:] for made in pictures("book.pdf")], [("image", DPI)] * 2)
        tool("qpdf", "--check", "book.pdf")

        lines = subprocess.run([VORLANE, "detect", "scans.pdf", "--json"], capture_output=True,
                               check=False).stdout.splitlines()
        with open("some.jsonl", "wb") as report:
            report.write(lines[2] + b"\n" + lines[0] + b"\n")
        tool(VORLANE, "apply", "some.jsonl", "-o", "some.pdf")
        with pikepdf.open("some.pdf") as some:
            self.assertEqual([p.label for p in some.pages], ["i", "1"])

    def test_damage_is_an_error_of_its_page(self):
        self.make_scans()
        with pikepdf.open("scans.pdf") as pdf:
            picture = next(iter(pdf.pages[1].images.values()))
            bytes_ = picture.read_raw_bytes()
            picture.write(bytes_[: len(bytes_) // 2], filter=pikepdf.Name.DCTDecode)
            pdf.save("damaged.pdf")
        done = self.straighten("damaged.pdf", "-o", "out.pdf", exit=3)
        self.assertIn("damaged.pdf[2]: ", done.stderr)
        self.assertEqual(stored("out.pdf", 2), stored("damaged.pdf", 2))
        for name, content in (("cut.pdf", b"%PDF-1.4\n1 0 obj"), ("none.pdf", b"%PDF-1.4\n%%EOF\n")):
            with open(name, "wb") as file:
                file.write(content)
            self.assertIn(name + ": ", self.straighten(name, "-o", "no.pdf", exit=3).stderr)
        self.assertFalse(os.path.exists("no.pdf"))

    def test_the_helper_is_heard(self):
        self.make_scans()
        os.mkdir("bin")
        here = {"env": {**os.environ, "PATH": os.path.abspath("bin")}}
        self.assertIn("poppler-utils", self.straighten("scans.pdf", "-o", "o.pdf", exit=3, **here).stderr)
        for script, words in (("echo 'Syntax Error: bad' >&2", "Syntax Error: bad"),
                              ("exit 3", "exit code 3"), ("kill -9 $$", "by a signal"),
                              ("exit 0", "took 0 pictures")):
            with open("bin/pdfimages", "w", encoding="ascii") as file:
                file.write(f"#!/bin/sh\n{script}\n")
            os.chmod("bin/pdfimages", 0o755)
            done = self.straighten("scans.pdf", "-o", "o.pdf", "--overwrite", exit=3, **here)
            self.assertIn(words, done.stderr)

    def test_the_helper_reaches_its_own_files_alone(self):
        self.make_scans()
        refused = subprocess.run([VORLANE, "detect", "scans.pdf", "--sandbox", "on"], check=False,
                                 capture_output=True).stderr
        if b"--sandbox on: " in refused:
            self.skipTest(refused.decode())
        os.mkdir("bin")
        here = {"env": {**os.environ, "PATH": os.path.abspath("bin")}}
        connect = "import socket, sys\ntry: socket.socket()\nexcept OSError: sys.exit(1)"
        for action in ("/bin/cat secret", "echo x > outside", "/bin/rm -f secret",
                       f"/usr/bin/python3 -c '{connect}'"):
            with open("bin/pdfimages", "w", encoding="ascii") as file:
                file.write(f"#!/bin/sh\n{action} || exit 7\n")
            os.chmod("bin/pdfimages", 0o755)
            for sandbox, words in (("off", "took 0 pictures"), ("on", "exit code 7")):
                with open("secret", "w", encoding="ascii") as file:
                    file.write("secret")
                done = self.straighten("scans.pdf", "-o", "o.pdf", "--overwrite", "--sandbox", sandbox,
                                       exit=3, **here)
                self.assertIn(words, done.stderr, (action, sandbox))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
