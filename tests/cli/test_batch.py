"""Many images at once: trees, failures among them, and what is told about each."""

import hashlib
import json
import os
import resource
import shutil
import signal
import subprocess
import time

import support
from support import content


class Batch(support.LimnTest):
    def tree(self):
        for index, name in enumerate(["in/a.ppm", "in/deep/er/b.png", "in/deep/c.tif", "in/é ü.ppm"]):
            os.makedirs(os.path.dirname(name), exist_ok=True)
            picture = support.smooth(20, 16, at=9 * index)
            {".ppm": support.write_pnm, ".png": support.write_png, ".tif": support.write_tiff}[name[-4:]](name, picture)
        support.put("in/notes.txt", "not an image")
        support.put("in/scan.jp2", "of a format that is only written")
        os.symlink("..", "in/deep/loop")
        return ["a.ppm", "deep/c.tif", "deep/er/b.png", "é ü.ppm"]

    def found(self, folder):
        return sorted(os.path.relpath(os.path.join(where, name), folder)
                      for where, _, names in os.walk(folder) for name in names)

    def test_tree_is_kept(self):
        names = self.tree()
        self.limn("apply", "-r", "in", "-o", "out", "--jobs", 3)
        self.assertEqual(self.found("out"), names)
        for name in names:
            with self.subTest(name):
                single = "single" + os.path.splitext(name)[1]
                self.limn("apply", "in/" + name, "-o", single, "-f")
                self.assertSame(support.read("out/" + name), support.read(single))

    def test_output_inside_the_tree_is_not_lit_again(self):
        names = self.tree()
        for _ in range(2):
            self.limn("apply", "-r", "in", "-o", "in/lit", "-f")
            self.assertEqual(self.found("in/lit"), names)

    def test_goes_on_after_failures(self):
        good = [f"good{i}.ppm" for i in range(6)]
        for name in good:
            support.write_pnm(name, support.smooth(12, 10))
        support.write_pnm("crash.ppm", support.smooth(1, 4))
        support.write_pnm("taken.ppm", support.smooth(12, 10))
        support.put("bad.png", b"\x89PNG\r\n\x1a\n nonsense")
        os.mkdir("out")
        support.put("out/taken.ppm", "old")
        images = [*good[:2], "bad.png", "crash.ppm", *good[2:4], "taken.ppm", "absent.ppm", *good[4:]]
        codes = {"bad.png": 3, "crash.ppm": 6, "taken.ppm": 4, "absent.ppm": 3}
        support.write_pnm("hangs.ppm", support.smooth(4, 4))
        self.limn("apply", "--through-plugin", "hangs.ppm", good[0], "-o", "timed/", "--max-seconds", 3, "-j", 2, code=3,
                  says="hangs.ppm: takes longer than the 3 s", env={"LIMN_PLUGIN": support.MISBEHAVING_MODULE})
        self.assertEqual(os.listdir("timed"), [good[0]])
        for jobs in [1, 4]:
            with self.subTest(jobs=jobs):
                answer = self.limn("apply", "--through-plugin", *images, "-o", "out/", "--jobs", jobs, "--json", code=6,
                                   env={"LIMN_PLUGIN": support.MISBEHAVING_MODULE})
                lines = [json.loads(line) for line in answer.stdout.splitlines()]
                self.assertEqual(sorted(line["input"] for line in lines), sorted(images))
                self.assertEqual(len(answer.stderr.splitlines()), len(codes))
                for line in lines:
                    if line["input"] in codes:
                        self.assertEqual(line["code"], codes[line["input"]])
                        self.assertIn(line["input"], line["error"])
                    else:
                        self.assertEqual((line["output"], line["size"]), ("out/" + line["input"], [12, 10]))
                        self.assertGreater(line["seconds"], 0)
                        os.remove(line["output"])
                self.assertEqual(os.listdir("out"), ["taken.ppm"])

    def test_quiet_and_strange_names(self):
        name = b"caf\xe9 \xff.ppm"  # not UTF-8
        support.write_pnm(name, support.smooth(5, 4))
        self.assertEqual(self.limn("apply", os.fsdecode(name), "-o", "out/", "--quiet").stdout, "")
        self.assertEqual(os.listdir(b"out"), [name])
        line = json.loads(self.limn("apply", os.fsdecode(name), "-o", "lit.ppm", "--json").stdout)
        self.assertEqual(line["input"], "caf\ufffd \ufffd.ppm")
        support.write_pnm("-r.ppm", support.smooth(5, 4))
        self.limn("apply", "-o", "dash/", "--", "-r.ppm")
        self.assertEqual(os.listdir("dash"), ["-r.ppm"])
        for folder in "[a,b]", "a", "b":
            os.mkdir(folder)
            support.write_pnm(f"{folder}/{folder}.ppm", support.smooth(5, 4))
        self.limn("apply", "-r", "[a,b]", "-o", "brackets/")
        self.assertEqual(os.listdir("brackets"), ["[a,b].ppm"])

    def test_closed_standard_files(self):
        support.write_pnm("a.ppm", support.smooth(5, 4))
        self.limn("apply", "a.ppm", "-o", "a.png")
        for closed, code in (">&-", 4), ("2>&-", 3), ("<&- >&- 2>&-", 4):
            with self.subTest(closed):
                command = f'exec "$0" apply --json -f a.ppm absent.ppm -o out/ {closed}'
                answer = subprocess.run(["sh", "-c", command, support.LIMN], capture_output=True)
                self.assertEqual(answer.returncode, code)
                self.assertEqual(len(answer.stdout.splitlines()), 2 if code == 3 else 0)
                self.assertSame(support.read("out/a.ppm"), support.read("a.png"))

    def test_fewer_processes_than_wanted(self):
        os.mkdir("many")
        for number in range(30):
            support.write_pnm(f"many/{number}.ppm", support.smooth(5, 4))
        limit = lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (25, 25))
        self.limn("apply", "-r", "many", "-o", "lit/", "-q", "-j", "30", preexec_fn=limit)
        self.assertEqual(len(os.listdir("lit")), 30)

    def test_lists_of_names(self):
        odd = [b"plain.ppm", b"deep/er/b.ppm", b" lead and trail .ppm", b"-r.ppm", "\u00e9 \u00fc.ppm".encode(), b"{}.ppm",
               b"caf\xe9.ppm", b"quo'te\".ppm", b"back\\slash.ppm", b"./dot/../dotted.ppm", b"../outside.ppm"]
        places = [b"dotted.ppm" if b"dot/" in name else name.removeprefix(b"../") for name in odd]
        os.makedirs("here/deep/er")
        os.mkdir("here/dot")
        for name in [*odd, b"new\nline.ppm"]:
            support.write_pnm(b"here/" + name, support.smooth(6, 5))
        os.chdir("here")
        for end, options, further in ((b"\n", [], []), (b"\0", ["--null"], [b"new\nline.ppm"])):
            for last in end, b"":
                support.put("list", end.join([*odd, b"", *further]) + last)
                for source in "list", "-":
                    with self.subTest(end=end, last=last, source=source), open("list", "rb") as file:
                        self.limn("apply", "--from-file", source, *options, "-q", "-o", "../lit/", stdin=file)
                        self.assertEqual(sorted(map(os.fsencode, self.found("../lit"))), sorted(places + further))
                        shutil.rmtree("../lit")
        os.chdir("..")

    def test_bad_lists(self):
        support.write_pnm("a.ppm", support.smooth(6, 5))
        for text, options, code, says in (
                (None, [], 3, "list: no such file"), (b"\n\n", [], 3, "names no image"),
                (b"a.ppm\0a.ppm\0", [], 3, "holds a NUL byte"), (b"a.ppm\n" + b"x" * 5000, [], 3, "list: name 2 is longer"),
                (b"a.ppm\n./a.ppm\n", [], 2, "would both be written to"), (b"absent.ppm\na.ppm\n", [], 3, "absent.ppm"),
                (b"a.ppm\n", ["--null"], 2, "a.ppm"), (b".\n", [], 2, "is a folder")):
            with self.subTest(text=text):
                if text is not None:
                    support.put("list", text)
                self.limn("apply", "--from-file", "list", *options, "-o", "lit/", code=code, says=says)
                self.assertEqual(os.path.exists("lit/a.ppm"), b"absent" in (text or b""))
                shutil.rmtree("lit", ignore_errors=True)

    def test_shards(self):
        names = self.tree()
        for name in "0.ppm", "deep/z.ppm", "~.ppm":
            support.write_pnm("in/" + name, support.smooth(8, 8))
            names.append(name)

        def taken(index, count, again="-f"):
            answer = self.limn("apply", "-r", "in", "-o", "out/", again, "--json", "--shard", f"{index}/{count}")
            lines = [json.loads(line) for line in answer.stdout.splitlines()]
            return sorted(line["output"].removeprefix("out/") for line in lines if "skipped" not in line)

        def part(name, count):  # as documented
            return int(hashlib.sha256(name.encode()).hexdigest()[:16], 16) % count + 1

        for count in 1, 2, 3, 9:
            for index in range(1, count + 1):
                self.assertEqual(taken(index, count), sorted(name for name in names if part(name, count) == index))
        # What comes in between two rounds is lit in the second, once.
        support.write_pnm("in/m.ppm", support.smooth(8, 8))
        self.assertEqual(sum([taken(index, 3, again="--skip-existing") for index in (1, 2, 3)], []), ["m.ppm"])
        for wrong in "0/4", "5/4", "1", "1/0", "-1/2", "1/4x", "/", "1/", "+1/2", "18446744073709551617/1":
            self.limn("apply", "-r", "in", "-o", "out/", "--shard", wrong, code=2, says="is not of the form I/N")

    def test_standard_input_and_output(self):
        support.write_png("in.png", support.smooth(30, 20))
        self.limn("apply", "in.png", "-o", "lit.png")
        whole = content("in.png")
        for source, options, code, out in ((whole, ["-o", "-.png"], 0, content("lit.png")),
                                           (whole, ["-o", "-", "--format", "png"], 0, content("lit.png")),
                                           (whole[:-40], ["-o", "-.png"], 3, b""), (b"", ["-o", "-.png"], 3, b"")):
            with self.subTest(code=code, options=options):
                answer = subprocess.run([support.LIMN, "apply", "-", *options], input=source, capture_output=True)
                self.assertEqual((answer.returncode, answer.stdout), (code, out), answer.stderr)
                self.assertIn(b"standard input: " if code else b"", answer.stderr)
        self.assertEqual(set(os.listdir()) - {"data"}, {"in.png", "lit.png"})

    def test_patterns_styles_and_formats(self):
        stems = [os.path.splitext(name) for name in self.tree()]
        self.limn("apply", "-r", "in", "-s", "Campfire", "-s", "Candlelight", "-o", "out/{style}/{name}-lit.{ext}")
        self.assertEqual(self.found("out"), sorted(f"{style}/{stem}-lit{end}" for stem, end in stems
                                                   for style in ("Campfire", "Candlelight")))
        self.limn("apply", "in/a.ppm", "-s", "Candlelight", "-o", "single.ppm")
        self.assertSame(support.read("out/Candlelight/a-lit.ppm"), support.read("single.ppm"))
        self.limn("apply", "-r", "in", "-o", "other", "--format", "jpg[Q=50]")
        self.assertEqual(self.found("other"), sorted(stem + ".jpg" for stem, _ in stems))

    def test_dry_run_writes_nothing(self):
        self.tree()
        support.put("in/bad.ppm", "no picture")
        answer = self.limn("apply", "-r", "in", "-o", "out/new", "--dry-run", "--json", code=3, says="bad.ppm: is not")
        lines = [json.loads(line) for line in answer.stdout.splitlines()]
        self.assertEqual([line.get("size") for line in lines if "dryRun" in line], [[20, 16]] * 4)
        self.assertFalse(os.path.exists("out"))

    def test_no_folder_is_left_of_an_output_that_failed(self):
        support.write_png("cut.png", support.pattern(90, 70, 3))
        os.truncate("cut.png", os.path.getsize("cut.png") // 2)
        self.limn("apply", "cut.png", "-o", "new/deep/out.png", code=3)
        self.assertEqual(set(os.listdir()) - {"data"}, {"cut.png"})

    def test_what_another_run_writes_meanwhile_is_skipped(self):
        os.mkdir("in")
        for name in "0.png", "1.png":
            support.put("in/" + name, b"P6\n3000 2000\n255\n" + bytes(range(250)) * 72000)
        process = subprocess.Popen([support.LIMN, "apply", "-r", "in", "-o", "out", "--skip-existing", "-j", "1", "--json"],
                                   start_new_session=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        while not os.path.exists("out") or not os.listdir("out"):
            time.sleep(0.001)
        os.killpg(process.pid, signal.SIGSTOP)
        for name in "0.png", "1.png":
            support.put("out/" + name, "theirs")
        os.killpg(process.pid, signal.SIGCONT)
        told, problems = process.communicate(timeout=600)
        self.assertEqual((process.returncode, problems), (0, ""))
        self.assertEqual([json.loads(line)["skipped"] for line in told.splitlines()], [True, True])
        self.assertEqual((content("out/0.png"), content("out/1.png")), (b"theirs", b"theirs"))

    def test_empty_folder(self):
        os.mkdir("in")
        self.limn("apply", "-r", "in", "-o", "out", code=3, says="in: holds no image")


support.main()
