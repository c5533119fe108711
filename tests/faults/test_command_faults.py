"""The command while memory or a file operation fails at every step in turn: a sentence and an exit code, and
every file what it was or what it was to be."""

import os
import struct
import subprocess
import sys

import support

PLAN = "=5Ii256s"  # of fault_shim.h
# Of a command's operations of one kind: each is tried in the long form, but for the tens of thousands of
# allocations of the libraries.
MOST_TRIES = int(os.environ.get("MOST_TRIES", 10**9 if "deep" in sys.argv else 6))
MOST_LIBRARY_TRIES = 3000
NO_MEMORY = 5
# What the command itself allocates, what the libraries allocate, errors, full disks, interruptions, short counts.
OWN_MEMORY, MEMORY, ERROR, FULL, INTERRUPTED, SHORT = 2, 1, 3, 4, 5, 6
TOLD = {OWN_MEMORY: "own allocations refused", MEMORY: "allocations refused", ERROR: "file errors", FULL: "full disks",
        INTERRUPTED: "interruptions", SHORT: "short reads and writes"}
MEASURED = {"limn apply to PNG": ["apply", "in.png", "-o", "out.png", "-f", "-q"],
            "limn apply to TIFF": ["apply", "in.jpg", "-o", "new.tif", "-q"],
            "limn style pack": ["style", "pack", "in.json", "-o", "out.style", "-f"],
            "limn styles": ["styles"]}


class CommandFaults(support.LimnTest):
    def setUp(self):
        super().setUp()
        support.write_png("in.png", support.pattern(90, 70, 1))
        support.write_png("colour.png", support.pattern(90, 70, 3))
        support.vips("copy", "colour.png", "in.jpg")
        os.rename("colour.png", "in.png")
        support.put("in.json", '{"lights": [{"type": "omni", "radius": 40}], "gloss": 44}')
        self.limn("styles")
        self.plan = os.path.join(self.folder, "plan")

    def run_with(self, words, kind, fail_at):
        """Exit code, standard error, what was written, number of operations, whether one failed."""
        for name in ["out.png", "out.style"]:
            support.put(name, "old")
        if os.path.exists("new.tif"):
            os.remove("new.tif")
        support.put(self.plan, struct.pack(PLAN, kind, fail_at, 0, 0, 1, 0, os.fsencode(self.folder)))
        answer = subprocess.run([support.LIMN, *words], capture_output=True, timeout=600,
                                env={**os.environ, "LD_PRELOAD": os.environ["FAULT_SHIM"], "FAULT_PLAN": self.plan})
        _, _, count, failed, _, _, _ = struct.unpack(PLAN, support.content(self.plan))
        written = {name: support.content(name) for name in ["out.png", "out.style", "new.tif"] if os.path.exists(name)}
        return answer, written, count, failed

    def check(self, note, kind, words, answer, before, after, written):
        note = f"{note}: exit {answer.returncode}, {answer.stderr.decode(errors='replace')}"
        if answer.returncode == 0:
            # Without memory libtiff may write a file's directory once more, after the first.
            if kind == MEMORY and written.get("new.tif") != after.get("new.tif"):
                support.put("whole.tif", after["new.tif"])
                self.assertSame(support.read("new.tif"), support.read("whole.tif"), note)
                written["new.tif"] = after["new.tif"]
            self.assertEqual(written, after, note)
            return
        self.assertIn(written, [before, after], note)
        self.assertNotIn(kind, [INTERRUPTED, SHORT], note)
        if kind == MEMORY:  # where a library ends the process itself, it has no sentence
            return
        self.assertIn(answer.returncode, [NO_MEMORY] if kind == OWN_MEMORY else [3, 4], note)
        self.assertRegex(answer.stderr.decode(), r"^(limn: [^\n]+\n)+$", note)

    def try_each(self, name, words, kind):
        answer, after, total, _ = self.run_with(words, kind, 0)
        self.assertEqual(answer.returncode, 0, answer.stderr)
        before = {"out.png": b"old", "out.style": b"old"}
        step = max(1, total // min(MOST_TRIES, MOST_LIBRARY_TRIES if kind == MEMORY else MOST_TRIES))
        tried = 0
        for n in range(1, total + 1, step):
            answer, written, _, failed = self.run_with(words, kind, n)
            with self.subTest(f"{name}, {TOLD[kind]}, {n} of {total}"):
                self.check(f"{n} of {total}", kind, words, answer, before, after, written)
            tried += failed
        print(f"counted: {TOLD[kind]} in {name} {tried}")

    def test_every_operation(self):
        for name, words in MEASURED.items():
            for kind in TOLD:
                self.try_each(name, words, kind)
        # What a process that was ended left behind, the next one sweeps.
        self.limn("apply", "in.png", "-o", "out.png", "-f", "-q")
        self.limn("styles")


support.main(argv=sys.argv[:1])
