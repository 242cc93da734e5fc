"""Decoding in processes of their own, as the command does it: sandbox_test.py VORLANE."""

import ctypes
import json
import os
import signal
import sys
import time
import unittest

from batch_test import VORLANE, BatchTest, tree
from pages import page, write_pgm, write_tiff


def children(process):
    """The processes that this one started, by number."""
    found = []
    for name in os.listdir("/proc"):
        try:
            with open(f"/proc/{name}/stat", encoding="ascii") as file:
                state, parent = file.read().rpartition(")")[2].split()[:2]
        except (OSError, ValueError):
            continue
        if name.isdigit() and int(parent) == process and state != "Z":
            found.append(int(name))
    return found


def below(process):
    return [one for child in children(process) for one in (child, *below(child))]


def lives(process):
    try:
        with open(f"/proc/{process}/stat", encoding="ascii") as file:
            return file.read().rpartition(")")[2].split()[0] != "Z"
    except OSError:
        return False


def forbid_filters():
    """For the process that calls: a kernel without call filters, as far as it can see."""
    library = ctypes.CDLL("libseccomp.so.2")
    library.seccomp_init.restype = ctypes.c_void_p
    context = ctypes.c_void_p(library.seccomp_init(0x7FFF0000))
    argument = (ctypes.c_uint64 * 3)(0 | 4 << 32, 22, 0)  # the first is PR_SET_SECCOMP
    prctl = library.seccomp_syscall_resolve_name(b"prctl")
    denied = ctypes.c_uint32(0x00050000 | 22)
    if library.seccomp_rule_add_array(context, denied, prctl, 1, argument) or library.seccomp_load(context):
        os._exit(99)


class SandboxTest(BatchTest):
    def workers(self, run, count):
        """Waits for the keeper's processes."""
        for _ in range(1000):
            found = [one for keeper in children(run.pid) for one in children(keeper)]
            if len(found) >= count:
                return found
            self.assertIsNone(run.poll())
            time.sleep(0.01)
        self.fail("no decoders")

    def wait_for_end(self, processes):
        for _ in range(500):
            if not any(map(lives, processes)):
                return
            time.sleep(0.01)
        self.fail("orphans")

    def test_changes_nothing(self):
        self.mixed()
        made = {}
        for word in ("off", "on", "auto"):
            found = self.report("in", "-o", "out/", "--sandbox", word, "-j", "3", exit=3)
            made[word] = (found, tree("out"))
            os.rename("out", word)
        self.assertEqual(made["on"], made["off"])
        self.assertEqual(made["auto"], made["off"])

    def test_a_decoder_that_is_killed_costs_one_page(self):
        self.scans(40)
        whole = {one["file"]: one for one in self.report("in", "-o", "out/")}
        outputs = tree("out")
        os.rename("out", "whole")
        plain = {**os.environ, "ASAN_OPTIONS": "handle_segv=0"}  # nobody else takes the signal
        run = self.start("in", "-o", "out/", "--json", "-j1", "--sandbox", "on", env=plain)
        worker = self.workers(run, 1)[0]
        os.kill(worker, signal.SIGSTOP)
        time.sleep(0.5)  # it is asked meanwhile
        os.kill(worker, signal.SIGSEGV)
        os.kill(worker, signal.SIGCONT)
        out, err = run.communicate(timeout=60)
        self.assertEqual(run.returncode, 3, err)
        found = [json.loads(line) for line in out.splitlines()]
        bad = [one for one in found if one["result"] == "error"]
        self.assertEqual(len(bad), 1, bad)
        self.assertIn("the decoder was ended by signal 11", json.dumps(bad[0]))
        self.assertEqual({one["file"] for one in found}, set(whole))
        made = tree("out")
        for files in outputs, made:
            files.pop(os.path.relpath(bad[0]["file"], "in"), None)
        self.assertEqual(made.keys(), outputs.keys())
        self.assertTrue(made == outputs)

    def test_no_process_is_left(self):
        self.scans(300)
        for stop, code in ((signal.SIGKILL, -9), (signal.SIGINT, 130), (signal.SIGTERM, 143)):
            run = self.start("in", "-o", "out/", "--overwrite", "-j", "2")
            self.workers(run, 2)
            processes = below(run.pid)
            run.send_signal(stop)
            _, err = run.communicate(timeout=60)
            self.assertEqual(run.returncode, code, err)
            self.wait_for_end(processes)

    def test_where_the_system_does_not_allow_it(self):
        write_pgm("a.pgm", page(3))
        write_tiff("b.tif", [page(1), page(2)])
        refused = self.straighten("a.pgm", "-o", "a.png", "--sandbox", "on", exit=2,
                                  preexec_fn=forbid_filters).stderr
        self.assertIn(b"--sandbox on: the system does not allow it", refused)
        told = self.straighten("a.pgm", "b.tif", "-o", "out/", "-v", preexec_fn=forbid_filters).stderr
        self.assertIn(b"decoding without a sandbox", told)
        self.assertEqual(set(tree("out")), {"a.pgm", "b.tif"})


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
