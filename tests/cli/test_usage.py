"""What is wrong with a command line is told in one sentence and by the exit code, before or without
touching any file."""

import os
import resource

import support

USAGE, BAD_INPUT, CANNOT_WRITE, NO_MEMORY, REFUSED = 2, 3, 4, 5, 6


class Usage(support.LimnTest):
    def setUp(self):
        super().setUp()
        support.write_pnm("in.ppm", support.smooth(12, 8))
        support.write_pnm("small.pgm", support.filled(5, 5, 9))
        support.write_pnm("colour.ppm", support.smooth(12, 8))
        os.mkdir("folder")
        os.mkdir("other")
        support.write_pnm("folder/in.ppm", support.smooth(12, 8))
        support.write_pnm("other/in.ppm", support.smooth(12, 8))
        support.write_pnm("old.ppm", support.smooth(12, 8))
        os.mkfifo("pipe.ppm")
        os.symlink("nowhere.ppm", "dangling.ppm")
        os.link("in.ppm", "twin.ppm")
        os.mkdir("linked")
        os.mkdir("folder/deep")
        support.write_pnm("folder/deep/new.ppm", support.smooth(12, 8))
        for name in "in.ppm", "colour.ppm":
            os.symlink("../old.ppm", f"linked/{name}")
        self.limn("styles")  # the library is there from here on
        support.put("long.style", "")
        os.truncate("long.style", 2**40)

    def test_refusals(self):
        apply = ["apply", "in.ppm", "-o", "out.ppm"]
        cases = [
            ([], USAGE, "a command is required: apply, edit"),
            (["aply", "in.ppm"], USAGE, "aply: there is no such command; did you mean apply?"),
            (["in.ppm"], USAGE, "in.ppm: is no command; to light it, limn apply in.ppm -o"),
            (["channels", "in.ppm", "old.ppm"], USAGE, "old.ppm: is one word too many"),
            (["apply"], USAGE, "required"),
            (["apply", "in.ppm"], USAGE, "--output is required"),
            ([*apply, "--nonsense"], USAGE, "--nonsense: there is no such option"),
            ([*apply, "--skip-exsting"], USAGE, "did you mean --skip-existing?"),
            ([*apply, "--jobs", "0"], USAGE, "--jobs"),
            ([*apply, "--area", "1,2,3"], USAGE, "X,Y,WIDTH,HEIGHT"),
            ([*apply, "--area", "0,0,0,4"], USAGE, "is empty"),
            ([*apply, "--area", "-1,0,3,4"], USAGE, "X,Y,WIDTH,HEIGHT"),
            ([*apply, "--area", "10,0,3,4"], USAGE, "reaches outside its 12 × 8"),
            ([*apply, "--area", "0,0,32767,32767"], USAGE, "reaches outside"),
            ([*apply, "--set", "brightness=3"], USAGE, "did you mean ambientBrightness?"),
            ([*apply, "--set", "light.0.colr=red"], USAGE, "did you mean light.0.color?"),
            ([*apply, "--set", "intensity=3"], USAGE, "did you mean light.0.intensity?"),
            ([*apply, "--set", "light.0.colour=oranje"], USAGE, "did you mean orange?"),
            ([*apply, "--set", "gloss=256"], USAGE, "256 is not between 0 and 255"),
            ([*apply, "--set", "gloss"], USAGE, "KEY=VALUE"),
            ([*apply, "--style", "No Such Style"], BAD_INPUT, "No Such Style: "),
            ([*apply, "--style", "Candelight"], BAD_INPUT, "did you mean Candlelight?"),
            *(([*apply, option, ""], USAGE, "the value is empty")
              for option in ["--mask", "--shard", "--area", "-s", "--from-file", "--channel", "--set", "--format"]),
            (["apply", "in.ppm", "old.ppm", "--mask=", "in.ppm", "-o", "out/"], USAGE, "the value is empty"),
            (["apply", "-r", "/nonexist", "-o", "out/"], BAD_INPUT, "/nonexist: there is no such folder"),
            (["apply", "in.ppm", "-o", "{nmae}.ppm"], USAGE, "did you mean name?"),
            (["apply", "in.ppm", "-s", "Default", "-s", "Campfire", "-o", "out/"], USAGE, "tell several styles apart"),
            (["apply", "in.ppm", "-o", "-"], USAGE, "needs a format"),
            (["apply", "in.ppm", "-o", "-.png", "--json"], USAGE, "would be mixed"),
            (["apply", "-", "-o", "out/"], USAGE, "has no name"),
            ([*apply, "--format", "jpg"], USAGE, "says its format already"),
            (["apply", "in.ppm", "-o", "out/", "--format", "jgp"], USAGE, "is no format"),
            ([*apply, "--style", "./absent"], BAD_INPUT, "no such file"),
            ([*apply, "--style", "pipe.ppm"], BAD_INPUT, "not a regular file"),
            ([*apply, "--style", "long.style"], BAD_INPUT, "longer than"),
            ([*apply, "--style", "in.ppm"], BAD_INPUT, "in.ppm: "),
            ([*apply, "--mask", "small.pgm"], BAD_INPUT, "is 5 × 5 pixels, and in.ppm is 12 × 8"),
            ([*apply, "--channel", "small.pgm"], BAD_INPUT, "is 5 × 5 pixels, and in.ppm is 12 × 8, of another shape"),
            ([*apply, "--relief", "small.pgm"], BAD_INPUT, "is 5 × 5 pixels, and in.ppm is 12 × 8, of another shape"),
            ([*apply, "--relief", "7"], BAD_INPUT, "has no channel 7 for its relief"),
            ([*apply, "--relief-fit"], USAGE, "go with --relief"),
            ([*apply, "--mask", "colour.ppm"], BAD_INPUT, "coloured"),
            ([*apply, "--mask", "absent.pgm"], BAD_INPUT, "no such file"),
            (["apply", "absent.ppm", "-o", "out.ppm"], BAD_INPUT, "absent.ppm: no such file"),
            (["apply", "pipe.ppm", "-o", "out.ppm"], BAD_INPUT, "not a regular file"),
            (["apply", "/dev/zero", "-o", "out.ppm"], BAD_INPUT, "not a regular file"),
            (["apply", "folder", "-o", "out/"], USAGE, "-r lights all"),
            (["apply", "in.ppm", "small.pgm", "-o", "out.ppm"], USAGE, "must be a folder"),
            (["apply", "folder/in.ppm", "other/in.ppm", "-o", "out/"], USAGE, "both be written to out/in.ppm"),
            (["apply", "in.ppm", "-o", "out"], USAGE, "extension"),
            (["apply", "in.ppm", "-o", "out.csv"], USAGE, "extension"),
            (["apply", "in.ppm", "-o", "out.jpg[Qu=9]"], USAGE, "Qu"),
            (["apply", "in.ppm", "-o", "out.jpg[Q=900]"], USAGE, "Q"),
            (["apply", "in.ppm", "-o", "out.tif[bitdepth=1]"], USAGE, "out.tif[bitdepth=1]: "),
            (["apply", "in.ppm", "-o", "out.tif[miniswhite]"], USAGE, "out.tif[miniswhite]: "),
            (["apply", "in.ppm", "-o", ""], USAGE, "the value is empty"),
            (["apply", "in.ppm", "-o", "old.ppm"], CANNOT_WRITE, "old.ppm: exists already; --force replaces it"),
            (["apply", "in.ppm", "-o", "in.ppm"], CANNOT_WRITE, "is the input itself"),
            (["apply", "in.ppm", "-o", "twin.ppm"], CANNOT_WRITE, "is the input itself"),
            (["apply", "in.ppm", "-o", "./folder/../in.ppm"], CANNOT_WRITE, "is the input itself"),
            (["apply", "in.ppm", "-o", "pipe.ppm", "--force"], CANNOT_WRITE, "not a regular file"),
            (["apply", "in.ppm", "-o", "dangling.ppm", "--force"], CANNOT_WRITE, "link to nothing"),
            (["apply", "in.ppm", "-o", "in.ppm/out.ppm"], CANNOT_WRITE, "in.ppm"),
            (["apply", "in.ppm", "-o", "/proc/out.ppm"], CANNOT_WRITE, "/proc/out.ppm: "),
            (["apply", "-f", "in.ppm", "colour.ppm", "-o", "linked/"], USAGE, "both be written to"),
            (["apply", "-f", "-r", "folder", "folder/deep", "-o", "folder/"], USAGE, "perhaps before it is read"),
            (["apply", "-f", "-r", "folder", "--mask", "folder/in.ppm", "-o", "folder/"], USAGE, "is used for all"),
            (["preview", "in.ppm"], USAGE, "--output is required"),
            (["preview", "in.ppm", "-o", "old.ppm"], CANNOT_WRITE, "old.ppm: exists already"),
            (["preview", "in.ppm", "-o", "out.csv"], USAGE, "extension"),
            (["preview", "absent.ppm", "-o", "out.ppm"], BAD_INPUT, "absent.ppm: no such file"),
            (["preview", "in.ppm", "--area", "9,0,9,9", "-o", "out.ppm"], USAGE, "reaches outside"),
            (["channels", "absent.ppm"], BAD_INPUT, "no such file"),
            (["channels", "long.style"], BAD_INPUT, "is not a JPEG"),
            (["style"], USAGE, "required"),
            (["style", "show", "in.ppm"], BAD_INPUT, "in.ppm: "),
            (["style", "pack", "in.ppm", "-o", "out.style"], BAD_INPUT, "in.ppm: "),
        ]
        before = sorted(os.listdir("."))
        for arguments, code, says in cases:
            with self.subTest(" ".join(arguments)):
                answer = self.limn(*arguments, code=code, says=says)
                self.assertEqual(len(answer.stderr.splitlines()), 1, answer.stderr)
                self.assertEqual(answer.stdout, "")
        self.assertEqual(sorted(os.listdir(".")), before)
        self.assertSame(support.read("old.ppm"), support.smooth(12, 8))

    def test_force(self):
        self.limn("apply", "in.ppm", "-o", "lit.ppm")
        lit = support.read("lit.ppm")
        os.symlink("old.ppm", "link.ppm")
        os.chmod("old.ppm", 0o640)
        self.limn("apply", "in.ppm", "-o", "link.ppm", "--force")
        self.assertTrue(os.path.islink("link.ppm"))
        self.assertEqual(os.stat("old.ppm").st_mode & 0o777, 0o640)
        self.assertSame(support.read("old.ppm"), lit)
        self.limn("apply", "in.ppm", "-o", "in.ppm", "--force")
        self.assertSame(support.read("in.ppm"), lit)
        if os.geteuid() == 0:  # another user's file stays that user's
            os.chown("in.ppm", 65534, 65533)
            os.chmod("in.ppm", 0o4640)
            self.limn("apply", "old.ppm", "-o", "in.ppm", "--force")
            status = os.stat("in.ppm")
            self.assertEqual((status.st_uid, status.st_gid, status.st_mode & 0o7777), (65534, 65533, 0o640))

    def test_writing_fails(self):
        support.write_pnm("large.ppm", support.pattern(300, 300, 3))
        limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (5000, 5000))
        for output in ["out.ppm", "out.tif", "out.png[compression=0]", "out.jpg[Q=100]"]:
            with self.subTest(output):
                self.limn("apply", "large.ppm", "-o", output, code=CANNOT_WRITE, says=": file too large", preexec_fn=limit)
                self.assertFalse(os.path.exists(output.split("[")[0]))
        self.limn("apply", "large.ppm", "-o", "old.ppm", "-f", code=CANNOT_WRITE, preexec_fn=limit)
        self.assertSame(support.read("old.ppm"), support.smooth(12, 8))

    def test_refused_by_the_plugin(self):
        env = {"LIMN_PLUGIN": support.MISBEHAVING_MODULE}
        for width, code, says in [(1, REFUSED, "crashed"), (2, NO_MEMORY, "memory"), (3, REFUSED, "colour mode"),
                                  (9, 0, "")]:
            with self.subTest(width=width):
                support.write_pnm("narrow.ppm", support.smooth(width, 4))
                self.limn("apply", "--through-plugin", "narrow.ppm", "-o", "out.ppm", code=code, says=says, env=env)
                self.assertEqual(os.path.exists("out.ppm"), code == 0)
        self.limn("apply", "--through-plugin", "in.ppm", "-o", "new.ppm", code=REFUSED, says="nowhere.so",
                  env={"LIMN_PLUGIN": "nowhere.so"})

    def test_help_and_version(self):
        self.assertRegex(self.limn("--version").stdout, r"^limn \d+\.\d+\.\d+ \(vectors: \w+\)\n$")
        for arguments in [[], ["apply"], ["edit"], ["preview"], ["channels"], ["styles"], ["style"], ["style", "pack"]]:
            lines = self.limn(*arguments, "--help").stdout.splitlines()
            self.assertIn("Usage: ", "".join(lines))
            self.assertLessEqual(max(map(len, lines)), 80)

    def test_names_cannot_steer_the_terminal(self):
        name = "bad\x1b[2J\nname.ppm"
        self.limn("apply", name, "-o", "out.ppm", code=BAD_INPUT, says="bad?[2J?name.ppm: no such file")

    def test_channels(self):
        support.write_tiff("five.tif", support.pattern(4, 4, 5))
        support.write_png("grey.png", support.pattern(4, 4, 2))
        expected = {"five.tif": ["1  Red", "2  Green", "3  Blue", "4  Alpha", "5  Channel 5"],
                    "grey.png": ["1  Red", "2  Green", "3  Blue", "4  Alpha"]}
        for name, lines in expected.items():
            self.assertEqual(self.limn("channels", name).stdout.splitlines(), lines)
        answer = self.limn("channels", "in.ppm", "--channel", "small.pgm")
        self.assertEqual(answer.stdout.splitlines()[3:], ["4  small"])


support.main()
