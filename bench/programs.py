#!/usr/bin/env python3
"""The command beside other programs, from file to file: programs.py VORLANE [--rounds N] [--many N]

Straightens one A4 page of 300 dots per inch with each program in turn and prints Markdown tables:
milliseconds of a whole run, least of all rounds, and of processor time. Of the OpenCV script, which
does what a careful engineer would write, only the page counts, without its start. --many N takes N
small pages instead, beside xargs over one process a page. Wants Debian's python3-opencv, unpaper,
imagemagick and libtiff-tools; a program that is not there is left out.
"""
import argparse
import os
import resource
import shutil
import subprocess
import sys
import tempfile
import time

OPENCV = """
import sys, time, cv2, numpy
cv2.setNumThreads(1)
cv2.imread(sys.argv[1], -1)
start, used = time.perf_counter(), time.process_time()
page = cv2.imread(sys.argv[1], -1)
grey = page if page.ndim == 2 else cv2.cvtColor(page, cv2.COLOR_BGR2GRAY)
small = cv2.resize(grey, None, fx=0.125, fy=0.125, interpolation=cv2.INTER_AREA)
_, mask = cv2.threshold(small, 0, 255, cv2.THRESH_OTSU)
outlines, _ = cv2.findContours(mask, cv2.RETR_EXTERNAL, cv2.CHAIN_APPROX_NONE)
(x, y), (w, h), angle = cv2.minAreaRect(max(outlines, key=cv2.contourArea))
if angle > 45: angle, w, h = angle - 90, h, w
x, y, w, h = 8 * x + 3.5, 8 * y + 3.5, int(8 * w), int(8 * h)
turn = cv2.getRotationMatrix2D((x, y), angle, 1)
turn[:, 2] += (w / 2 - x, h / 2 - y)
cv2.imwrite(sys.argv[2], cv2.warpAffine(page, turn, (w, h), flags=cv2.INTER_CUBIC))
print(1e3 * (time.perf_counter() - start), 1e3 * (time.process_time() - used))
"""

DRAW = """
import sys, cv2, numpy
folder = sys.argv[1]
height, width = 3508, 2480
page = numpy.full((height, width), 30, numpy.uint8)
cv2.rectangle(page, (90, 110), (width - 110, height - 120), 230, -1)
for row in range(330, height - 330, 62):
    cv2.putText(page, "The quick brown fox jumps over the lazy dog, %d" % row, (300, row),
                cv2.FONT_HERSHEY_SIMPLEX, 1.9, 40, 4, cv2.LINE_AA)
turn = cv2.getRotationMatrix2D((width / 2, height / 2), -2, 1)
page = cv2.warpAffine(page, turn, (width, height), flags=cv2.INTER_CUBIC, borderValue=30)
noise = numpy.random.default_rng(1)
grey = numpy.clip(page + noise.normal(0, 3, page.shape), 0, 255).astype(numpy.uint8)
tint = page[:, :, None] * numpy.array([0.86, 0.95, 1.0])
colour = numpy.clip(tint + noise.normal(0, 3, tint.shape), 0, 255).astype(numpy.uint8)
for name, picture in (("grey.tif", grey), ("colour.tif", colour), ("grey.png", grey),
                      ("colour.png", colour), ("colour.jpg", colour)):
    cv2.imwrite(folder + "/" + name, picture)
cv2.imwrite(folder + "/bits.pgm", (page > 128).astype(numpy.uint8) * 255)
"""


def measure(words, inside=False):
    """Milliseconds by the clock and of processor time; None when the program fails."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    start = time.perf_counter()
    done = subprocess.run(words, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
    wall = 1e3 * (time.perf_counter() - start)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    if done.returncode != 0:
        return None
    if inside:
        return tuple(float(word) for word in done.stdout.split())
    used = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    return wall, 1e3 * used


def contenders(vorlane, source, folder):
    kind = source.rsplit(".", 1)[1]
    out = f"{folder}/out.{kind}"
    found = [("vorlane straighten", [vorlane, "straighten", source, "-o", out, "-q", "-j1",
                                     "--overwrite"], False)]
    if not source.endswith("bits.tif"):
        found.append(("OpenCV script, page alone", ["/usr/bin/python3", "-c", OPENCV, source, out],
                      True))
    if shutil.which("unpaper") and kind != "jpg":
        end = "pbm" if "bits" in source else "pgm" if "grey" in source else "ppm"
        found.append(("unpaper, to PNM", ["unpaper", "--overwrite", "-q", source,
                                          f"{folder}/out.{end}"], False))
    magick = "/usr/bin/convert" if os.path.exists("/usr/bin/convert") else shutil.which("convert")
    if magick:
        found.append(("ImageMagick", [magick, source, "-deskew", "40%", "-trim", out], False))
    return found


def compare(vorlane, rounds):
    print("### Whole programs, from file to file\n")
    print("| page | by | least ms | processor ms | times ours |\n|---|---|--:|--:|--:|")
    with tempfile.TemporaryDirectory(prefix="vorlane-bench-") as folder:
        subprocess.run(["/usr/bin/python3", "-c", DRAW, folder], check=True)
        subprocess.run(f"cd {folder}; pgm=bits.pgm; ppm2tiff -c none bits.pgm grey8.tif && "
                       "tiffdither grey8.tif bits0.tif && tiffcp -c g4 bits0.tif bits.tif",
                       shell=True, check=True)
        for name in ("grey.tif", "colour.tif", "grey.png", "colour.png", "colour.jpg", "bits.tif"):
            row(vorlane, name, folder, rounds)


def row(vorlane, name, folder, rounds):
    taken = {}
    for _ in range(rounds):
        for who, words, inside in contenders(vorlane, f"{folder}/{name}", folder):
            found = measure(words, inside)
            if found:
                taken.setdefault(who, []).append(found)
    ours = min(used for _, used in taken["vorlane straighten"])
    for who, times in taken.items():
        wall, used = min(wall for wall, _ in times), min(used for _, used in times)
        print(f"| {name} | {who} | {wall:.0f} | {used:.0f} | {used / ours:.2f} |", flush=True)


def many(vorlane, count):
    sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../tests/app/batch"))
    from pages import page, write_pgm
    print(f"### {count} pages of 300 x 360 pixels\n")
    print("| by | seconds | processor seconds | peak memory, MB |\n|---|--:|--:|--:|")
    with tempfile.TemporaryDirectory(prefix="vorlane-bench-") as folder:
        for i in range(count):
            os.makedirs(f"{folder}/in/{i // 1000}", exist_ok=True)
            write_pgm(f"{folder}/in/{i // 1000}/{i}.pgm", page(i % 9 - 4.3))
        os.mkdir(f"{folder}/single")
        for who, words in (
                ("one run", f"{vorlane} straighten in -o out/ -q"),
                ("the same with a journal", f"{vorlane} straighten in -o logged/ -q --journal j"),
                ("xargs -P 2, one process a page",
                 f"find in -name '*.pgm' | xargs -P 2 -I@ {vorlane} straighten @ -o 'single/{{name}}.pgm'"
                 " -q -j1")):
            used = f"{folder}/time"
            subprocess.run(["/usr/bin/time", "-o", used, "-f", "%e %U %S %M", "sh", "-c", words],
                           cwd=folder, check=True, stdout=subprocess.DEVNULL)
            with open(used, encoding="ascii") as file:
                wall, user, system, peak = (float(word) for word in file.read().split()[-4:])
            print(f"| {who} | {wall:.1f} | {user + system:.1f} | {peak / 1024:.0f} |", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("vorlane")
    parser.add_argument("--rounds", type=int, default=7)
    parser.add_argument("--many", type=int)
    options = parser.parse_args()
    vorlane = os.path.abspath(options.vorlane)
    if options.many:
        many(vorlane, options.many)
    else:
        compare(vorlane, options.rounds)


main()
