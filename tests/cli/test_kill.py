"""The command killed at any moment, or starved of memory: every file is whole, old or new, and a rerun needs no
cleaning up. `test_kill.py quick` or `deep`."""

import fcntl
import os
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import time
import unittest

import support
from support import LIMN, content

IS_DEEP = "deep" in sys.argv
MOMENTS = 200 if IS_DEEP else 12
MEMORY_SIZES = 50 if IS_DEEP else 6
CANCELLED = 1
# A stopped batch does not finish what is left; how soon it ends is counted, since machines that run tests are shared.
STOP_SECONDS_AT_WORST = 60
WAIT = 300


def counted(what, number):
    print(f"counted: {what} {number}", flush=True)


class Kill(support.LimnTest):
    def start(self, *arguments, **options):
        """In a session of its own, so that it can be killed with its workers, as by a power failure."""
        return subprocess.Popen([LIMN, *map(str, arguments)], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                                text=True, start_new_session=True, **options)

    def reap(self, process, group):
        """Waits until the process and its workers are gone."""
        told = process.communicate(timeout=WAIT)[1]
        deadline = time.monotonic() + WAIT
        while group and time.monotonic() < deadline:
            try:
                os.killpg(process.pid, 0)
            except ProcessLookupError:
                return told
            time.sleep(0.002)
        self.assertFalse(group, "workers outlived the command")
        return told

    def time_of(self, *arguments):
        start = time.monotonic()
        self.limn(*arguments)
        return time.monotonic() - start

    def batch(self, size, count):
        os.mkdir("in")
        support.write_pnm("in/0.ppm", support.smooth(*size))
        for i in range(1, count):
            shutil.copy("in/0.ppm", f"in/{i}.ppm")
        return ["apply", "-q", "-r", "-f", "in", "-o", "out/", "-j", 2]

    def test_batch_killed(self):
        command = self.batch((300, 200), 6)
        duration = self.time_of(*command)
        whole = {name: strip(content("out/" + name)) for name in os.listdir("out")}
        moments, partly = random.Random(11), 0
        for i in range(MOMENTS):
            for name in whole:
                support.put("out/" + name, "old")
            process = self.start(*command)
            if i % 4 < 2:  # in the middle, however long that takes
                while process.poll() is None and all(os.path.getsize("out/" + name) == len("old") for name in whole):
                    time.sleep(0.001)
            else:
                time.sleep(moments.uniform(0, duration))
            # Every other time its workers are left to notice by themselves.
            (os.killpg if i % 2 == 0 else os.kill)(process.pid, signal.SIGKILL)
            self.reap(process, group=True)
            states = [strip(content("out/" + name)) for name in whole]
            for name, state in zip(whole, states):
                self.assertIn(state, (b"old", whole[name]), name)
            partly += 0 < states.count(b"old") < len(states)
        self.assertGreater(partly, 0, "no moment in the middle was met")
        self.limn(*command)  # which also finds that nothing is left behind
        self.assertEqual({name: strip(content("out/" + name)) for name in os.listdir("out")}, whole)
        counted("batches killed", MOMENTS)

    def test_left_behind(self):
        """What only looks like a dead run's temporary file stays, and so does one that is held."""
        support.write_pnm("in.ppm", support.smooth(9, 9))
        os.mkdir("out")
        own = ".limn-{}-0123456789abcdef.tmp".format
        for name in [own(1), own(os.getpid()), ".limn-1-0123.tmp", ".limn-mine", own(2) + ".bak"]:
            support.put("out/" + name, "")
        os.symlink("../in.ppm", "out/" + own(3))
        os.link("in.ppm", "out/" + own(4))
        os.mkdir("out/" + own(5))
        os.mkfifo("out/" + own(6))
        holder = subprocess.Popen(["flock", "out/" + own(7), "sleep", "60"], start_new_session=True)
        while not os.path.exists("out/" + own(7)) or not subprocess.run(["flock", "-n", "out/" + own(7), "true"]).returncode:
            time.sleep(0.01)
        subprocess.run([LIMN, "apply", "-q", "in.ppm", "-o", "out/a.ppm"], check=True)
        os.killpg(holder.pid, signal.SIGKILL)
        holder.wait()
        self.assertEqual(set(os.listdir("out")), {"a.ppm", ".limn-1-0123.tmp", ".limn-mine", own(2) + ".bak", own(3),
                                                  own(5), own(6), own(7)})
        self.assertEqual(len(content("in.ppm")), 9 * 9 * 3 + 11)
        support.put("out/" + own(8), "")
        subprocess.run([LIMN, "apply", "-q", "--skip-existing", "in.ppm", "-o", "out/a.ppm"], check=True)
        self.assertFalse(os.path.exists("out/" + own(8)))
        shutil.rmtree("out")

    def test_stopped_quickly(self):
        """Finished images are kept, the exit code is 1, and nobody waits for it, big images or small."""
        worst = 0
        for size, count in [((120, 90), 40), ((2500, 2000), 2)]:
            shutil.rmtree("in", ignore_errors=True)
            command = self.batch(size, count)
            moments = random.Random(13)
            for i in range(MOMENTS // 2):
                shutil.rmtree("out", ignore_errors=True)
                process = self.start(*command)
                # Only now it is sure to listen; before that a signal ends it as it ends any program.
                while not os.path.exists("out"):
                    time.sleep(0.005)
                time.sleep(moments.uniform(0, 0.3))
                process.send_signal([signal.SIGINT, signal.SIGTERM][i % 2])
                start = time.monotonic()
                self.reap(process, group=True)
                took = time.monotonic() - start
                worst = max(worst, took)
                self.assertIn(process.returncode, (0, CANCELLED))
                self.assertNoTemporaries()
                for name in os.listdir("out"):
                    self.assertGreater(os.path.getsize("out/" + name), size[0] * size[1] * 3)
        counted("batches stopped", MOMENTS // 2 * 2)
        print(f"counted: milliseconds to stop at worst {round(worst * 1000)}", flush=True)
        self.assertLess(worst, STOP_SECONDS_AT_WORST)

    def test_stopped_while_nobody_reads(self):
        for i in range(3):
            support.write_pnm(f"{i}.ppm", support.smooth(8, 8))
        # Also just before it begins to wait.
        for moment in [*([0, 1, 2, 3, 4, 5] * (20 if IS_DEEP else 2)), 300]:
            shutil.rmtree("out", ignore_errors=True)
            reading, writing = os.pipe()
            # A pipe as small as can be, and full.
            fcntl.fcntl(writing, fcntl.F_SETPIPE_SZ, 4096)
            os.write(writing, b"x" * 4096)
            process = subprocess.Popen([LIMN, "apply", "--json", "0.ppm", "1.ppm", "2.ppm", "-o", "out/"],
                                       stdout=writing, stderr=subprocess.PIPE, text=True)
            while not os.path.exists("out/0.ppm"):
                time.sleep(0.0005)
            time.sleep(moment / 1000)
            process.terminate()
            process.communicate(timeout=10)
            os.close(reading), os.close(writing)
            self.assertEqual(process.returncode, CANCELLED)

    def test_short_of_memory(self):
        """The same bytes as with all the memory there is, or a failure and no file."""
        if support.IS_SANITIZED:
            self.skipTest("a sanitizer maps more than the limits")
        support.write_pnm("s.ppm", support.smooth(150, 100))
        support.vips("resize", "s.ppm", "big.ppm", 10)
        ways = [("big.ppm", "out.jpg"), ("big.png", "out.png"), ("big.webp", "out.ppm"), ("big.ppm", "out.gif"),
                ("big.jpg", "out.webp"), ("big.tif", "out.tif[compression=lzw]"), ("big.ppm", "out.jp2"),
                ("big.ppm", "out.avif")]
        codes = {}
        for i in range(MEMORY_SIZES * (2 if IS_DEEP else 1)):
            source, out = ways[i % len(ways)]
            if not os.path.exists(source):
                support.vips("copy", "big.ppm", source)
            path = out.split("[")[0]
            if not os.path.exists("whole-" + path):
                self.limn("apply", "-q", source, "-o", "whole-" + out)
            limit = int(120e6 + 480e6 * (i * 7 % 50) / 50)
            ended = subprocess.run([LIMN, "apply", "-q", source, "-o", out], capture_output=True, text=True,
                                   preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (limit, limit)))
            codes[ended.returncode] = codes.get(ended.returncode, 0) + 1
            told = f"{limit} bytes, {source} to {out}: {ended}"
            if ended.returncode == 0:
                self.assertEqual(strip(content(path)), strip(content("whole-" + path)), told)
                os.remove(path)
            self.assertFalse(os.path.exists(path), told)
            self.assertNoTemporaries()
        counted("runs short of memory", sum(codes.values()))
        print(f"exit codes: {codes}")


def strip(picture):
    """Without the date that libvips writes into a PPM."""
    return re.sub(rb"\A(P6\n)#.*\n", rb"\1", picture)


unittest.main(argv=sys.argv[:1])
