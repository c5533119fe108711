"""Area, mask, relief channels, settings and memory: what the command adds to the plug-in's picture."""

import json
import math
import os
import subprocess

import support
from support import LIMN, Picture

STYLE = {"worldUnit": 140, "exposure": 128, "ambientBrightness": 20, "bumpAmplitude": 200,
         "lights": [{"type": "omni", "on": True, "color": [65535, 60000, 50000], "intensity": 90,
                     "center": [-30, -20], "handle1": [20, 0], "handle2": [0, 10], "radius": 60}]}


def cut(picture, x, y, width, height):
    bands = picture.bands
    return Picture(width, height, bands, [value for row in picture.rows()[y : y + height]
                                          for value in row[x * bands : (x + width) * bands]])


class Lighting(support.LimnTest):
    def setUp(self):
        super().setUp()
        self.image = support.smooth(90, 70)
        support.write_pnm("in.ppm", self.image)
        support.put("light.json", json.dumps(STYLE))

    def lit(self, *options, name="in.ppm"):
        self.limn("apply", name, "-s", "light.json", *options, "-o", "lit.tif", "-f")
        return support.read("lit.tif")

    def test_area(self):
        x, y, width, height = 13, 9, 50, 40
        lit = self.lit("--area", f"{x},{y},{width},{height}")
        support.write_pnm("cut.ppm", cut(self.image, x, y, width, height))
        # The area is lit as an image of its own would be, and nothing else changes.
        self.assertSame(cut(lit, x, y, width, height), self.lit(name="cut.ppm"))
        for piece in [(0, 0, 90, y), (0, y, x, height), (x + width, y, 90 - x - width, height),
                      (0, y + height, 90, 70 - y - height)]:
            self.assertSame(cut(lit, *piece), cut(self.image, *piece), piece)

    def test_mask(self):
        full = self.lit()
        levels = [0, 1, 127, 128, 254, 255]
        mask = Picture(90, 70, 1, [levels[(x + y) % 6] for y in range(70) for x in range(90)])
        support.write_pnm("mask.pgm", mask)
        support.write_png("mask.png", Picture(90, 70, 4, [v for m in mask.samples for v in (m, m, m, 0)]))
        masked = self.lit("--mask", "mask.pgm")
        self.assertSame(self.lit("--mask", "mask.png"), masked, "a neutral RGB mask")
        for i, (before, after, got) in enumerate(zip(self.image.samples, full.samples, masked.samples)):
            expected = before + (after - before) * mask.samples[i // 3] / 255
            self.assertLessEqual(abs(got - expected), 1, f"sample {i}")
            if mask.samples[i // 3] in (0, 255):
                self.assertEqual(got, expected, f"sample {i}")

    def test_relief(self):
        flat = self.lit()
        heights = support.pattern(90, 70, 1, seed=7)
        support.write_pnm("heights.pgm", heights)
        support.write_pnm("level.pgm", support.filled(90, 70, 77))
        colors = [self.image.samples[at : at + 3] for at in range(0, len(self.image.samples), 3)]
        support.write_png("alpha.png", Picture(90, 70, 4, [v for rgb, h in zip(colors, heights.samples) for v in (*rgb, h)]))
        fourth = ["--set", "bumpChannel=4"]
        relief = self.lit("--channel", "heights.pgm", *fourth)
        self.assertFalse(list(relief.samples) == list(flat.samples), "no relief")
        self.assertSame(self.lit("--channel", "level.pgm", *fourth), flat, "a level height map")
        second = self.lit("--channel", "level.pgm", "--channel", "heights.pgm", "--set", "bumpChannel=5")
        self.assertSame(second, relief, "the second channel")
        lit = self.lit(*fourth, name="alpha.png")
        self.assertSame(Picture(90, 70, 3, [v for i, v in enumerate(lit.samples) if i % 4 < 3]), relief, "alpha")
        self.assertEqual(list(lit.samples[3::4]), heights.samples, "alpha is kept")
        answer = self.limn("apply", "in.ppm", "-s", "light.json", *fourth, "-o", "lit.tif", "-f")
        self.assertIn("has no channel 4", answer.stderr)
        self.assertSame(support.read("lit.tif"), flat, "a channel that is not there")

    def test_relief_from_elsewhere(self):
        flat = self.lit()
        red = self.lit("--set", "bumpChannel=1")
        self.assertSame(self.lit("--relief", "red"), red, "a channel as it is")
        self.assertSame(self.lit("--relief", "none", "--set", "bumpChannel=1"), flat, "none")
        self.assertSame(self.lit("--relief", "auto"), flat, "auto in a style without relief")
        made = self.lit("--relief", "auto", "--set", "bumpChannel=1")
        self.assertFalse(list(made.samples) in (list(flat.samples), list(red.samples)), "auto")
        support.put("auto.json", json.dumps({**STYLE, "bumpChannel": 1, "relief": {"source": "auto"}}))
        self.limn("apply", "in.ppm", "-s", "auto.json", "-o", "lit.tif", "-f")
        self.assertSame(support.read("lit.tif"), made, "a style that says so")
        self.assertIn("relief object is left out", self.limn("style", "pack", "auto.json", "-o", "auto.style").stderr)
        # What limn heights writes is what is lit with.
        self.limn("heights", "in.ppm", "-o", "heights.png", "--preview", "look.png")
        self.assertSame(self.lit("--relief", "heights.png"), made, "heights written and read")
        self.assertEqual((support.read("look.png").width, support.read("look.png").height), (90, 70))
        support.write_pnm("half.pgm", support.filled(45, 35, 77))
        answer = self.limn("apply", "in.ppm", "-s", "light.json", "--relief", "half.pgm", "-o", "lit.tif", "-f")
        self.assertIn("half.pgm is scaled from 45 × 35 to its 90 × 70 pixels", answer.stderr)
        self.assertSame(support.read("lit.tif"), flat, "a level map of half the size")

    def test_normal_maps(self):
        waves = [int(30000 + 6000 * math.sin(x / 9) * math.cos(y / 11)) for y in range(70) for x in range(90)]
        support.write_png("heights.png", Picture(90, 70, 1, waves, 16))
        lit = self.lit("--relief", "heights.png").samples
        self.limn("heights", "in.ppm", "--relief", "heights.png", "--as-normals", "-o", "up.png")
        normals = support.read("up.png")
        self.assertEqual((normals.bands, normals.depth), (3, 16))
        self.limn("heights", "in.ppm", "--normals", "up.png", "-o", "back.png")
        shift = 32768 - sum(waves) / len(waves)
        self.assertLessEqual(max(abs(a - b - shift) for a, b in zip(support.read("back.png").samples, waves)), 1.5)
        down = [65536 - v if i % 3 == 1 and v else v for i, v in enumerate(normals.samples)]
        support.write_png("down.png", Picture(90, 70, 3, down, 16))
        support.write_png("alpha.png", Picture(90, 70, 4, [v for i in range(0, len(down), 3) for v in (*down[i : i + 3], i % 9)], 16))
        support.write_png("bytes.png", Picture(90, 70, 3, [v // 256 for v in normals.samples]))
        for name, options, most in [("up.png", [], 1), ("down.png", [], 1), ("alpha.png", [], 1),
                                    ("down.png", ["--normals-y", "down"], 1), ("bytes.png", [], 12)]:
            with self.subTest(name, options=options):
                answer = self.limn("apply", "in.ppm", "-s", "light.json", "--normals", name, *options, "-o", "lit.tif", "-f")
                guessed = "" if options else f"its green is taken for {'up' if name[0] in 'ub' else 'down'}"
                self.assertIn(guessed, answer.stderr)
                self.assertEqual(not options, "its green" in answer.stderr)
                self.assertLessEqual(max(abs(a - b) for a, b in zip(support.read("lit.tif").samples, lit)), most)
        support.write_pnm("grey.pgm", support.pattern(90, 70, 1))
        support.write_pnm("black.ppm", support.filled(90, 70, 0, 3))
        support.write_pnm("shape.ppm", support.filled(90, 90, 200, 3))
        support.write_tiff("turned.tif", support.filled(70, 90, 200, 3), orientation=6)
        for options, code, says in [
            (["--normals", "grey.pgm"], 3, "grey.pgm: is no normal map, which has red, green and blue"),
            (["--normals", "black.ppm"], 3, "black.ppm: is no normal map: of its vectors, 100 %"),
            (["--normals", "turned.tif"], 3, "turned.tif: is turned by its tag"),
            (["--normals", "shape.ppm"], 3, "shape.ppm: is 90 × 90 pixels, and in.ppm is 90 × 70"),
            (["--normals", "up.png", "--relief", "red"], 2, "--relief"),
            (["--normals", "up.png", "--recipe"], 2, "--normals has no place in a recipe"),
            (["--normals-y", "up"], 2, "--normals"),
        ]:
            with self.subTest(says):
                self.limn("apply", "in.ppm", "-s", "light.json", *options, "-o", "none.tif", code=code, says=says)
                self.assertFalse(os.path.exists("none.tif"))

    def test_plugin_lights_the_same(self):
        support.write_pnm("heights.pgm", support.pattern(90, 70, 1, seed=7))
        support.write_pnm("mask.pgm", support.pattern(90, 70, 1, seed=8))
        support.write_png("alpha.png", support.pattern(90, 70, 4, seed=9))
        support.write_tiff("turned.tif", support.pattern(90, 70, 3, seed=10), orientation=6)
        support.write_pnm("wide.ppm", support.pattern(2100, 40, 3, seed=11))
        surroundings = ["--area", "7,3,71,60", "--mask", "mask.pgm", "--channel", "heights.pgm"]
        for image in ["in.ppm", "alpha.png", "turned.tif", "wide.ppm"]:
            for style in ["Default", "Evening Lamp", "light.json"]:
                for channel, options in [(0, []), (2, []), (4, ["--channel", "heights.pgm"]), (0, surroundings),
                                         (1, ["--relief", "auto", "--depth", "8"]),
                                         (4, surroundings)]:
                    if options and image in ("turned.tif", "wide.ppm"):
                        continue
                    with self.subTest(image, style=style, channel=channel, options=options):
                        run = ["apply", image, "-s", style, "--set", f"bumpChannel={channel}", *options, "-qf", "-o"]
                        self.limn(*run, "here.tif")
                        self.limn(*run, "there.tif", "--through-plugin")
                        self.assertSame(support.read("here.tif"), support.read("there.tif"))

    def test_settings(self):
        support.put("other.json", json.dumps({**STYLE, "exposure": 150, "lights": [{**STYLE["lights"][0], "intensity": 40}]}))
        expected = self.lit()
        changed = self.lit("--set", "exposure=150", "--set", "light.0.intensity=40")
        self.limn("apply", "in.ppm", "-s", "other.json", "-o", "other.tif")
        self.assertSame(changed, support.read("other.tif"))
        self.assertFalse(list(changed.samples) == list(expected.samples))

    def test_memory_of_a_large_photograph(self):
        if support.IS_SANITIZED:
            self.skipTest("a sanitizer's own memory would be measured")
        support.vips("black", "black.v", 6000, 4000, "--bands", 3)
        support.vips("copy", "black.v", "large.jpg")
        os.remove("black.v")
        process = subprocess.Popen([LIMN, "apply", "large.jpg", "-o", "lit.jpg"], stdout=subprocess.DEVNULL)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = 0
        self.assertEqual(status, 0)
        self.assertLess(usage.ru_maxrss, 400 * 1024)


support.main()
