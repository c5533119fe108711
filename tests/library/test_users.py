"""The C library as programs get it: installed, found by pkg-config, called from C and from Python. What
it makes of pixels is what the command makes of the same picture."""

import ctypes
import os
import subprocess
import unittest

import support
from support import LimnTest, Picture

LIBLIMN = os.environ["LIBLIMN"]
EXAMPLES = os.path.join(os.path.dirname(__file__), "../../library/examples")

STYLE = """{"bumpChannel": 4, "gloss": 200, "material": 90, "lights": [
  {"type": "omni", "center": [20, -30], "color": [65535, 30000, 9000]}, {"type": "spot", "intensity": 90}]}"""


class Users(LimnTest):
    def setUp(self):
        super().setUp()
        support.put("style.json", STYLE)

    def test_installed_for_c(self):
        prefix = os.path.join(self.folder, "usr")
        for component in ("liblimn", "liblimn-dev"):
            subprocess.run([os.environ["CMAKE"], "--install", os.environ["BUILD"], "--prefix", prefix,
                            "--component", component], check=True, capture_output=True)
        [pc] = [os.path.join(folder, "limn.pc") for folder, _, files in os.walk(prefix) if "limn.pc" in files]
        library = os.path.dirname(os.path.dirname(pc))
        # The file names its own prefix, wherever the tree was put.
        flags = subprocess.run(["pkg-config", f"--define-variable=prefix={prefix}", "--cflags", "--libs", pc],
                               check=True, capture_output=True, text=True).stdout.split()
        strict = ["-pedantic", "-Wall", "-Wextra", "-Werror"]
        source = os.path.join(EXAMPLES, "light.c")
        subprocess.run([os.environ["CC"], "-std=c99", *strict, source, *flags, "-o", "light"], check=True)
        subprocess.run([os.environ["CXX"], "-std=c++98", "-Wno-long-long", *strict, "-fsyntax-only", "-xc++",
                        f"{prefix}/include/limn.h"], check=True)
        support.write_pnm("in.ppm", support.smooth(61, 47))
        for style, of_command in ("style.json", "style.json"), ("Raking Light", "Raking Light"):
            subprocess.run(["./light", style, "in.ppm", "c.ppm"], check=True, capture_output=True,
                           env={**os.environ, "LD_LIBRARY_PATH": library})
            self.limn("apply", "--quiet", "--force", "--style", of_command, "in.ppm", "-o", "limn.ppm")
            self.assertSame(support.read("c.ppm"), support.read("limn.ppm"), style)
        answer = subprocess.run(["./light", "no.json", "in.ppm", "c.ppm"], capture_output=True, text=True,
                                env={**os.environ, "LD_LIBRARY_PATH": library})
        self.assertEqual((answer.returncode, answer.stderr),
                         (1, "light: no.json: no such file or directory\n"))

    def test_from_python(self):
        os.environ.setdefault("LIBLIMN", LIBLIMN)
        import light
        picture = support.pattern(90, 70, 3)
        support.write_pnm("in.ppm", picture)
        light.main("style.json", "in.ppm", "python.ppm", "exposure=150", "light.1.spread=40")
        self.limn("apply", "--quiet", "--style", "style.json", "--set", "exposure=150", "--set",
                  "light.1.spread=40", "in.ppm", "-o", "limn.ppm")
        self.assertSame(support.read("python.ppm"), support.read("limn.ppm"))
        with self.assertRaisesRegex(RuntimeError, "^glos: there is no such setting; did you mean gloss.$"):
            light.main("style.json", "in.ppm", "x.ppm", "glos=1")

    def test_alpha_area_and_height_map(self):
        import light
        heights = support.pattern(80, 60, 1, seed=5)
        support.write_png("heights.png", heights)
        for bands, options, area in (4, [], None), (4, ["--area", "7,9,50,40"], (7, 9, 50, 40)), \
                (3, ["--channel", "heights.png"], None):
            picture = support.pattern(80, 60, bands)
            support.write_png("in.png", picture)
            self.limn("apply", "--quiet", "--force", "--style", "style.json", *options, "in.png", "-o", "limn.png")
            pixels, error = (ctypes.c_uint8 * len(picture.samples))(*picture.samples), light.Error()
            relief = (ctypes.c_uint8 * len(heights.samples))(*heights.samples)
            settings = light.limn.limn_settings_load(b"style.json", error)
            address = ctypes.addressof(pixels)
            given = light.Picture(width=80, height=60, channels=bands, source=address, output=address,
                                  area=light.Area(*(area or ())))
            if "--channel" in options:
                given.relief = ctypes.addressof(relief)
            light.limn.limn_light(settings, given, None, error)
            light.limn.limn_settings_free(settings)
            self.assertEqual(error.text, b"")
            self.assertSame(Picture(80, 60, bands, pixels), support.read("limn.png"), f"{bands} {options}")


unittest.main()
