"""What a run over many files promises its operator: batch_test.py VORLANE [unittest options]."""

import fcntl
import json
import os
import random
import resource
import shutil
import signal
import stat
import subprocess
import sys
import tempfile
import time
import unittest

from pages import HEIGHT, WIDTH, dark, page, tiff_sizes, write_pgm, write_tiff

VORLANE = os.path.abspath(sys.argv[1])


def tree(folder):
    """The bytes of all files below a folder, by their names; pipes are no files."""
    found = {}
    for root, _, names in os.walk(folder):
        for name in names:
            path = os.path.join(root, name)
            if not os.path.isfile(path):
                continue
            with open(path, "rb") as file:
                found[os.path.relpath(path, folder)] = file.read()
    return found


def lines(path):
    with open(path, encoding="utf-8") as file:
        return sorted(file.read().splitlines())


class BatchTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="vorlane-batch-")
        os.chdir(self.folder)
        self.addCleanup(shutil.rmtree, self.folder)
        self.addCleanup(os.chdir, "/")

    def start(self, *words, **options):
        return subprocess.Popen([VORLANE, "straighten", *words], stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, **options)

    def run_command(self, *words, **options):
        return subprocess.run([VORLANE, *words], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              timeout=120, check=False, **options)

    def straighten(self, *words, exit=0, **options):
        done = self.run_command("straighten", *words, **options)
        self.assertEqual(done.returncode, exit, done.stderr.decode())
        return done

    def report(self, *words, **options):
        """The report's objects; every output that one names is there."""
        out = self.straighten(*words, "--json", **options).stdout
        objects = [json.loads(line) for line in out.splitlines()]
        for found in objects:
            for key in ("output", "overlay"):
                if key in found:
                    self.assertTrue(os.path.isfile(found[key]), found)
            found.pop("milliseconds", None)
        return objects

    def wait_for(self, path, run):
        while not os.path.exists(path):
            self.assertIsNone(run.poll(), run.stderr)
            time.sleep(0.001)

    def scans(self, count, folder="in"):
        for i in range(count):
            os.makedirs(f"{folder}/box{i % 3}", exist_ok=True)
            write_pgm(f"{folder}/box{i % 3}/p{i}.pgm", page(i % 9 - 4.3))
        pages = [page(k - 3.3) for k in range(6)]
        write_tiff(f"{folder}/book.tif", pages[:3] + [dark()] + pages[3:])

    def mixed(self):
        """One of every fate: bad and doubtful pages, alone and among good ones."""
        self.scans(4)
        write_pgm("in/dark.pgm", dark())
        write_tiff("in/all-dark.tif", [dark(), dark()])
        write_tiff("in/bad-third.tif", [page(2), page(-2), page(1), page(3)], bad=(3,))
        with open("in/no-picture.png", "wb") as file:
            file.write(b"not a picture")
        os.mkfifo("in/pipe.tif")


class ResumeTest(BatchTest):
    def test_killed_at_any_moment_it_ends_as_if_it_had_not_been(self):
        self.scans(150)
        with open("in/none.png", "wb") as file:
            file.write(b"not a picture")
        begin = time.monotonic()
        self.straighten("in", "-o", "out/", "--journal", "whole.jsonl", "-j2", exit=3)
        longest = (time.monotonic() - begin) / 4  # slow builds have to get somewhere, too
        whole = tree("out")
        chance = random.Random(1)
        kills = 0
        while kills < 60:
            shutil.rmtree("out")
            if os.path.exists("killed.jsonl"):
                os.remove("killed.jsonl")
            code = -signal.SIGKILL
            while code == -signal.SIGKILL:
                run = self.start("in", "-o", "out/", "--journal", "killed.jsonl", "--resume", "-j2")
                time.sleep(chance.uniform(0.002, longest))
                run.kill()
                _, errors = run.communicate()
                code = run.returncode
                kills += code == -signal.SIGKILL
            self.assertEqual(code, 3, errors.decode())
            self.assertEqual(lines("killed.jsonl"), lines("whole.jsonl"))
            self.assertEqual(tree("out"), whole)

    def test_does_again_what_is_no_longer_borne_out(self):
        self.scans(6)
        request = ("in", "-o", "out/", "--journal", "j.jsonl")
        self.report(*request)
        whole, said = tree("out"), lines("j.jsonl")
        self.assertEqual(self.report(*request, "--resume"), [])

        os.remove("out/box0/p0.pgm")
        with open("j.jsonl", "ab") as file:
            file.write(b'{"command":"straighten","fi')
        os.utime("in/box1/p1.pgm", ns=(1, 1))
        again = [found["file"] for found in self.report(*request, "--resume")]
        self.assertEqual(again, ["in/box0/p0.pgm", "in/box1/p1.pgm"])
        self.assertEqual(tree("out"), whole)
        self.assertEqual(len(lines("j.jsonl")), len(said))

        with open("out/book.tif", "ab") as file:
            file.write(b"edited")
        errors = self.report(*request, "--resume", exit=3)
        self.assertEqual({found["result"] for found in errors}, {"error"})
        self.assertEqual(tree("out")["book.tif"], whole["book.tif"] + b"edited")
        os.remove("out/book.tif")
        self.assertEqual(len(self.report(*request, "--resume", "--interpolation", "nearest")), 13)
        self.straighten(*request, exit=2)  # a journal is not begun anew

    def test_finishes_pages_in_work_when_it_is_asked_to_stop(self):
        self.scans(400)
        for asked, code in ((signal.SIGINT, 130), (signal.SIGTERM, 143)):
            run = self.start("in", "-o", f"out{code}/", "--journal", f"{code}.jsonl", "-j2")
            self.wait_for(f"out{code}/box0", run)
            run.send_signal(asked)
            _, errors = run.communicate(timeout=60)
            self.assertEqual(run.returncode, code, errors)
            self.assertIn(b"stopped", errors)
            told = {json.loads(line)["output"] for line in lines(f"{code}.jsonl")}
            self.assertEqual(told, {f"out{code}/{name}" for name in tree(f"out{code}")})
            self.assertLess(len(told), 400)


class TruthTest(BatchTest):
    def test_every_output_in_a_report_is_there(self):
        self.mixed()
        for k, unsure in enumerate(("copy", "skip", "left/")):
            found = self.report("in", "-o", f"out{k}/", "--overlay", f"seen{k}/",
                                "--unsure", unsure, exit=3)
            fates = {(os.path.basename(one["file"]), one.get("page", 0)): one for one in found}
            named = {os.path.normpath(one["output"]) for one in found if "output" in one}
            below = {os.path.join(f"out{k}", name) for name in tree(f"out{k}")}
            left = {os.path.join("left", name) for name in tree("left")} if k == 2 else set()
            self.assertEqual(below | left, named | (left - named))
            self.assertEqual(fates["bad-third.tif", 3]["result"], "error")
            self.assertEqual(fates["bad-third.tif", 4]["result"], "straightened")
            self.assertEqual(len(tiff_sizes(f"out{k}/bad-third.tif")), 3)
            self.assertEqual(tiff_sizes(f"out{k}/book.tif")[3], (WIDTH, HEIGHT))
            self.assertEqual(fates["no-picture.png", 0]["result"], "error")
            if unsure != "skip":
                where = "out0" if k == 0 else "left"
                self.assertEqual(tree(where)["all-dark.tif"], tree("in/")["all-dark.tif"])
                self.assertEqual(tree(where)["dark.pgm"], tree("in/")["dark.pgm"])
        self.assertIn("book.tif", tree("left"))  # a page of it wants to be looked at

    def test_the_summary_counts_every_fate(self):
        self.mixed()
        told = self.straighten("in", "-o", "out/", "--journal", "j.jsonl", exit=3).stderr.decode()
        with open("j.jsonl", encoding="utf-8") as file:
            fates = [json.loads(line)["result"] for line in file]
        for fate in ("refused", "error"):
            self.assertGreater(fates.count(fate), 0)
            self.assertRegex(told, rf"\b{fates.count(fate)} {fate}")
        merged = json.loads(self.run_command("merge", "j.jsonl", "--json").stdout)
        self.assertEqual((merged["refused"], merged["errors"]),
                         (fates.count("refused"), fates.count("error")))

    def test_threads_change_nothing(self):
        self.mixed()
        one = self.report("in", "-o", "out/", "--overlay", "seen/", "-j1", exit=3)
        first, seen = tree("out"), tree("seen")
        for jobs, memory in (("2", "1G"), ("5", "1K")):
            shutil.rmtree("out")
            shutil.rmtree("seen")
            self.assertEqual(self.report("in", "-o", "out/", "--overlay", "seen/", "-j", jobs,
                                         "--memory", memory, exit=3), one)
            self.assertEqual(tree("out"), first)
            self.assertEqual(tree("seen"), seen)

    def test_shards_are_the_whole(self):
        self.scans(40)
        self.straighten("in", "-o", "whole/", "--journal", "whole.jsonl")
        for k in (1, 2, 3):
            self.straighten("in", "-o", "parts/", "--shard", f"{k}/3", "--journal", f"{k}.jsonl")
            self.assertGreater(len(lines(f"{k}.jsonl")), 3)
        self.assertEqual(tree("parts"), tree("whole"))
        merged = self.run_command("merge", "1.jsonl", "2.jsonl", "3.jsonl", "-o", "all.jsonl")
        self.assertEqual(merged.returncode, 0, merged.stderr)
        self.assertEqual([line.replace('"parts/', '"whole/') for line in lines("all.jsonl")],
                         lines("whole.jsonl"))
        self.assertIn(b"47 pages: ", merged.stdout)

    def test_closed_descriptors_get_no_file(self):
        self.scans(4)
        self.straighten("in", "-o", "good/")
        for closed, code in (("0", 0), ("1", 3), ("2", 0), ("01", 3), ("012", 3)):
            def close(handles=closed):
                for handle in handles:
                    os.close(int(handle))
            done = subprocess.run([VORLANE, "straighten", "in", "-o", f"{closed}/",
                                   "--journal", f"{closed}.jsonl"],
                                  preexec_fn=close, check=False, timeout=60,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            self.assertEqual(done.returncode, code)
            self.assertEqual(tree(closed), tree("good"))
            self.assertEqual(len([json.loads(line) for line in lines(f"{closed}.jsonl")]), 11)

    def test_a_closed_pipe_ends_the_run(self):
        self.scans(300)
        reading, writing = os.pipe()
        os.close(reading)
        done = subprocess.run([VORLANE, "straighten", "in", "-o", "out/"], stdout=writing,
                              stderr=subprocess.PIPE, check=False, timeout=60)
        os.close(writing)
        self.assertEqual(done.returncode, 3)
        self.assertLess(len(tree("out")), 50)

    def test_names_cannot_act(self):
        os.mkdir("in")
        name = b"in/a\n\x1b[31m\xff.pgm"
        write_pgm(name, page(2))
        out = self.straighten("in", "-o", "out/").stdout
        self.assertTrue(out.startswith(rb"in/a\n\x1b[31m\xff.pgm: "), out)
        self.assertEqual(out.count(b"\n"), 1)
        out = self.straighten("in", "-o", "out/", "--overwrite", "--json").stdout
        self.assertTrue(out.isascii())
        self.assertEqual(bytes.fromhex(json.loads(out)["fileHex"]), name)


class DiskTest(BatchTest):
    def mount(self, options):
        os.mkdir("disk")
        words = ["mount", "-t", "tmpfs", "-o", options, "tmpfs", "disk"]
        if subprocess.run(words, check=False, stderr=subprocess.DEVNULL).returncode != 0:
            self.skipTest("needs the right to mount")
        self.addCleanup(subprocess.run, ["umount", os.path.abspath("disk")], check=False)

    def test_a_full_disk_is_told_and_leaves_no_half_file(self):
        self.scans(30)
        self.straighten("in", "-o", "whole/")
        whole = tree("whole")
        self.mount("size=512k")
        found = self.report("in", "-o", "disk/", exit=3)
        self.assertEqual({one["result"] for one in found} & {"error"}, {"error"})
        made = tree("disk")
        self.assertEqual({one["output"][5:] for one in found if "output" in one}, set(made))
        self.assertGreater(len(made), 2)
        for name, data in made.items():
            self.assertEqual(data, whole[name])

    def test_no_file_grows_past_the_limit(self):
        write_tiff("book.tif", [page(k) for k in (1, 2, 3)])
        limit = (100_000, 100_000)
        found = self.report("book.tif", "-o", "out.tif", exit=3, preexec_fn=lambda:
                            resource.setrlimit(resource.RLIMIT_FSIZE, limit))
        self.assertEqual([one["result"] for one in found], ["error"] * 3)
        self.assertEqual(set(tree(".")), {"book.tif"})

    def test_a_folder_that_cannot_be_written_is_refused(self):
        self.scans(2)
        self.mount("ro")
        self.assertIn(b"disk", self.straighten("in", "-o", "disk/", exit=2).stderr)

    def test_a_file_that_appears_is_left_alone(self):
        self.scans(200)
        run = self.start("in", "-o", "out/", "-j1")
        self.wait_for("out/box0/p0.pgm", run)
        os.makedirs("out/box2", exist_ok=True)
        with open("out/box2/p98.pgm", "xb") as file:
            file.write(b"mine")
        _, errors = run.communicate(timeout=60)
        self.assertEqual(run.returncode, 3)
        self.assertIn(b"out/box2/p98.pgm: has appeared meanwhile", errors)
        self.assertEqual(tree("out")["box2/p98.pgm"], b"mine")

    def test_a_replaced_file_keeps_its_rights(self):
        write_pgm("a.pgm", page(2))
        for name, rights in (("out.pgm", 0o600), ("dark-out.pgm", 0o640)):
            with open(name, "wb"):
                os.chmod(name, rights)
        write_pgm("dark.pgm", dark())
        self.straighten("a.pgm", "-o", "out.pgm", "--overwrite")
        self.straighten("dark.pgm", "-o", "dark-out.pgm", "--overwrite")
        self.assertEqual(stat.S_IMODE(os.stat("out.pgm").st_mode), 0o600)
        self.assertEqual(stat.S_IMODE(os.stat("dark-out.pgm").st_mode), 0o640)
        self.assertEqual(tree(".")["dark-out.pgm"], tree(".")["dark.pgm"])

    def test_a_folder_takes_one_run(self):
        self.scans(2)
        os.mkdir("out")
        handle = os.open("out", os.O_RDONLY)
        fcntl.flock(handle, fcntl.LOCK_SH)
        self.assertIn(b"another run", self.straighten("in", "-o", "out/", exit=2).stderr)
        self.straighten("in/box0/p0.pgm", "-o", "out/")  # one file has but itself to mix with
        os.close(handle)


class NamesTest(BatchTest):
    def test_patterns_lists_and_streams(self):
        self.scans(3)
        write_tiff("ten.tif", [page(k / 2) for k in range(10)])
        self.straighten("ten.tif", "in/book.tif", "-o", "out/{dir}/{name}-{page}-{page:04}.pgm")
        self.assertIn("ten-01-0001.pgm", tree("out"))
        self.assertIn("in/book-4-0004.pgm", tree("out"))
        self.assertIn(b"{pge}", self.straighten("ten.tif", "-o", "{pge}.pgm", exit=2).stderr)

        os.mkdir("other")
        shutil.copy("in/box0/p0.pgm", "other/p0.pgm")
        names = b"in/box0/p0.pgm\0other/p0.pgm\0in/box1/p1.pgm"
        self.straighten("--files-from", "-", "-0", "-o", "listed/", input=names)
        self.assertEqual(set(tree("listed")), {"in/box0/p0.pgm", "other/p0.pgm", "p1.pgm"})

        with open("ten.tif", "rb") as file:
            passed = self.straighten("-", "-o", "-", stdin=file).stdout
        self.straighten("ten.tif", "-o", "ten-out.tif")
        self.assertEqual(passed, tree(".")["ten-out.tif"])

        for path, content in (("named.png", "ten.tif"), ("nameless", "in/book.tif")):
            shutil.copy(content, path)
            self.straighten(content, "-o", "whole.tif", "--overwrite")
            self.assertEqual(self.straighten(path, "-o", "-").stdout, tree(".")["whole.tif"])
        write_pgm("left", dark())
        self.assertEqual(self.straighten("left", "-o", "-").stdout, tree(".")["left"])

        os.mkfifo("pipe.tif")
        self.assertIn(b"pipe.tif", self.straighten("pipe.tif", "-o", "out/", exit=3).stderr)
        self.straighten("in", "-o", "big/", "--max-pixels", "1000", exit=3)
        self.assertEqual(tree("big"), {})

    def test_pages_that_lie_on_their_side(self):
        write_tiff("book.tif", [page(2), dark()])
        request = ("book.tif", "--rotate", "90", "--overlay", "seen/", "--overlay-only", "unsure")
        found = self.report(*request, "-o", "out.tif", "--journal", "j.jsonl")
        self.assertEqual([one["rotate"] for one in found], [90, 90])
        self.assertEqual([tiff_sizes("out.tif")[1], found[1].get("unchanged")],
                         [(HEIGHT, WIDTH), None])
        self.assertEqual(len(tree("seen")), 1)
        self.assertEqual(self.report(*request, "-o", "out.tif", "--journal", "j.jsonl",
                                     "--resume"), [])
        with open("found.jsonl", "wb") as file:
            file.write(self.run_command("detect", "book.tif", "--rotate", "90", "--json").stdout)
        self.assertEqual(self.run_command("apply", "found.jsonl", "-o", "same.tif").returncode, 0)
        self.assertEqual(tree(".")["same.tif"], tree(".")["out.tif"])

    def test_exit_codes(self):
        write_pgm("dark.pgm", dark())
        self.straighten("dark.pgm", "-o", "copy.pgm")
        self.straighten("dark.pgm", "-o", "strict.pgm", "--strict", exit=1)
        self.assertIn(b"straighten", self.run_command("straihgten", "dark.pgm").stderr)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
