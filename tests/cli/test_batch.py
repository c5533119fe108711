"""Many images at once: trees, failures among them, and what is told about each."""

import json
import os

import support


class Batch(support.LimnTest):
    def tree(self):
        for index, name in enumerate(["in/a.ppm", "in/deep/er/b.png", "in/deep/c.tif", "in/é ü.ppm"]):
            os.makedirs(os.path.dirname(name), exist_ok=True)
            picture = support.smooth(20, 16, at=9 * index)
            {".ppm": support.write_pnm, ".png": support.write_png, ".tif": support.write_tiff}[name[-4:]](name, picture)
        with open("in/notes.txt", "w") as file:
            file.write("not an image")
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
        with open("bad.png", "wb") as file:
            file.write(b"\x89PNG\r\n\x1a\n nonsense")
        os.mkdir("out")
        with open("out/taken.ppm", "w") as file:
            file.write("old")
        images = [*good[:2], "bad.png", "crash.ppm", *good[2:4], "taken.ppm", "absent.ppm", *good[4:]]
        codes = {"bad.png": 3, "crash.ppm": 6, "taken.ppm": 4, "absent.ppm": 3}
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

    def test_empty_folder(self):
        os.mkdir("in")
        self.limn("apply", "-r", "in", "-o", "out", code=3, says="in: holds no image")


if __name__ == "__main__":
    support.main()
