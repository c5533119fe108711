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
        support.write_pnm("deep.ppm", support.pattern(61, 47, 3, depth=16))
        support.write_pnm("in.ppm", support.smooth(61, 47))
        for style, image in ("style.json", "in.ppm"), ("Raking Light", "in.ppm"), ("Raking Light", "deep.ppm"):
            subprocess.run(["./light", style, image, "c.ppm"], check=True, capture_output=True,
                           env={**os.environ, "LD_LIBRARY_PATH": library})
            self.limn("apply", "--quiet", "--force", "--style", style, image, "-o", "limn.ppm")
            self.assertSame(support.read("c.ppm"), support.read("limn.ppm"), f"{style} {image}")
        answer = subprocess.run(["./light", "no.json", "in.ppm", "c.ppm"], capture_output=True, text=True,
                                env={**os.environ, "LD_LIBRARY_PATH": library})
        self.assertEqual((answer.returncode, answer.stderr),
                         (1, "light: no.json: no such file or directory\n"))

    def test_from_python(self):
        os.environ.setdefault("LIBLIMN", LIBLIMN)
        import light
        for depth in 8, 16:
            support.write_pnm("in.ppm", support.pattern(90, 70, 3, depth))
            light.main("style.json", "in.ppm", "python.ppm", "exposure=150", "light.1.spread=40")
            self.limn("apply", "--quiet", "--force", "--style", "style.json", "--set", "exposure=150", "--set",
                      "light.1.spread=40", "in.ppm", "-o", "limn.ppm")
            self.assertSame(support.read("python.ppm"), support.read("limn.ppm"))
        with self.assertRaisesRegex(RuntimeError, "^glos: there is no such setting; did you mean gloss.$"):
            light.main("style.json", "in.ppm", "x.ppm", "glos=1")

    def test_depth_alpha_area_and_height_map(self):
        import light
        floats = "linear", "--", "in.png", "in.tif", 2 / 65535, -0.3  # darker than black, brighter than white
        for depth, bands, kind, area in (8, 4, light.BYTES, None), (8, 4, light.BYTES, (7, 9, 50, 40)), \
                (8, 3, light.WORDS, None), (16, 4, light.WORDS, (7, 9, 50, 40)), (16, 3, light.BYTES, None), \
                (32, 3, light.WORDS, None), (32, 4, light.BYTES, (7, 9, 50, 40)):
            case = f"{depth} bits, {bands} bands, heights of kind {kind}, {area}"
            support.write_png("in.png", support.pattern(80, 60, bands, min(depth, 16)))
            source = "in.png"
            if depth == 32:
                support.vips(*floats)
                source = "in.tif"
            picture = support.read(source)
            heights = support.pattern(80, 60, 1, 8 if kind == light.BYTES else 16, seed=5)
            support.write_png("heights.png", heights)
            channel = bands == 3
            self.limn("apply", "--quiet", "--force", "--style", "style.json", source, "-o", "limn.tif",
                      *(["--channel", "heights.png"] if channel else []),
                      *(["--area", ",".join(map(str, area))] if area else []))
            self.assertEqual(support.read("limn.tif").depth, depth, case)
            component = {8: ctypes.c_uint8, 16: ctypes.c_uint16, 32: ctypes.c_float}
            pixels, error = (component[depth] * len(picture.samples))(*picture.samples), light.Error()
            relief = (component[heights.depth] * len(heights.samples))(*heights.samples)
            settings = light.limn.limn_settings_load(b"style.json", error)
            address = ctypes.addressof(pixels)
            given = light.Picture(width=80, height=60, channels=bands, source=address, output=address,
                                  kind=[8, 16, 32].index(depth), area=light.Area(*(area or ())))
            if channel:
                given.relief, given.relief_kind = ctypes.addressof(relief), kind
            light.limn.limn_light(settings, given, None, error)
            light.limn.limn_settings_free(settings)
            self.assertEqual(error.text, b"")
            self.assertSame(Picture(80, 60, bands, pixels, depth), support.read("limn.tif"), case)


unittest.main()
