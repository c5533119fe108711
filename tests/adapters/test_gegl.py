"""limn:light in the gegl command: its pictures are what the command makes of the same file, of 8 bits or deeper."""

import os
import subprocess

import support
from adapter_cases import CASES, NO_STYLES, SLIDERS, AdapterTest

MODULES = subprocess.run(["pkg-config", "--variable=pluginsdir", "gegl-0.4"], check=True, capture_output=True,
                         text=True).stdout.strip()
WIDTH, HEIGHT = 150, 130  # more than one of GEGL's tiles


class Gegl(AdapterTest):
    def setUp(self):
        super().setUp()
        gamma = b"\0\0\0\4gAMA\0\0\xb1\x8f\x0b\xfca\5"
        support.write_png("rgb.png", support.pattern(WIDTH, HEIGHT, 3))
        support.write_png("rgba.png", support.pattern(WIDTH, HEIGHT, 4))
        support.write_png("gamma.png", support.pattern(WIDTH, HEIGHT, 3), extra=gamma)
        os.mkdir("modules")  # few, as loading them all takes longer than the lighting
        for module in "gegl-core", "gegl-common", "png-load", "png-save", "tiff-load", "tiff-save":
            os.symlink(f"{MODULES}/{module}.so", f"modules/{module}.so")

    def environment(self):
        return {**os.environ, "GEGL_PATH": f"modules:{os.path.dirname(os.environ['LIMN_GEGL'])}"}

    def gegl(self, image, *operations):
        """What gegl makes of an image file, and what it said."""
        answer = subprocess.run(
            ["gegl", "--", "gegl:png-load", f"path={image}", *operations, "gegl:png-save", "path=gegl.png", "bitdepth=8"],
            check=True, capture_output=True, timeout=600, text=True, env=self.environment())
        return support.read("gegl.png"), answer.stderr

    def test_pictures_are_those_of_the_command(self):
        for style, sliders, changes in CASES:
            values = [f"{name}={value}" for name, value in zip(SLIDERS, sliders)]
            picture, said = self.gegl("rgb.png", "limn:light", f"style={style}", *values)
            self.assertEqual(said, "")
            self.assertSame(picture, self.lit("rgb.png", style, changes), f"{style} {values}")
        for image in "rgba.png", "gamma.png":
            self.assertSame(self.gegl(image, "limn:light", "style=style.json")[0], self.lit(image, "style.json"), image)

    def deep(self, image, *operations):
        """The floats that gegl makes of a TIFF file."""
        subprocess.run(["gegl", "--", "gegl:tiff-load", f"path={image}", *operations,
                        "gegl:tiff-save", "path=gegl.tif", "bitdepth=32", "fp=1"],
                       check=True, capture_output=True, timeout=600, env=self.environment())
        return support.read("gegl.tif")

    def test_deep_graphs_are_lit_as_floats(self):
        support.write_png("words.png", support.pattern(WIDTH, HEIGHT, 3, 16))
        support.vips("linear", "--", "words.png", "floats.tif", 2 / 65535, -0.3)
        support.vips("copy", "words.png", "words.tif")
        for image in "words.tif", "floats.tif":
            self.limn("apply", "--quiet", "--force", "--depth", "float", "--style", "style.json", image, "-o", "lit.tif")
            picture = self.deep(image, "limn:light", "style=style.json")
            expected = support.read("lit.tif")
            if image == "floats.tif":
                self.assertSame(picture, expected, image)
            # The graph divides words by 65535, the command multiplies by its inverse.
            self.assertLess(max(abs(a - b) for a, b in zip(picture.samples, expected.samples)), 1e-5, image)
        self.assertLess(min(picture.samples), -0.1)
        self.assertGreater(max(picture.samples), 1.1)

    def test_second_input_is_the_relief(self):
        for depth in 8, 16:  # whatever the picture has
            support.write_png("heights.png", support.pattern(WIDTH, HEIGHT, 1, depth, seed=3))
            picture, _ = self.gegl("rgb.png", "limn:light", "style=style.json", "aux=[", "gegl:png-load", "path=heights.png", "]")
            self.assertSame(picture, self.lit("rgb.png", "style.json", ["bumpChannel=4"], channel="heights.png"), depth)

    def test_an_operation_that_stays_gives_what_a_new_one_gives(self):
        subprocess.run([os.environ["GEGL_CHANGES"], "style.json", "Carved in Stone", "Campfire"], check=True, timeout=600,
                       env=self.environment())

    def test_a_part_is_lit_as_part_of_the_whole(self):
        support.vips("crop", "rgb.png", "part.png", 30, 40, 100, 60)
        self.lit("rgb.png", "style.json")
        support.vips("crop", "lit.png", "expected.png", 30, 40, 100, 60)
        crop = "gegl:crop", "x=30", "y=40", "width=100", "height=60"
        self.assertSame(self.gegl("rgb.png", "limn:light", "style=style.json", *crop)[0], support.read("expected.png"))
        # Cut before, it is a picture of its own.
        picture, _ = self.gegl("rgb.png", *crop, "limn:light", "style=style.json")
        self.assertSame(picture, self.lit("part.png", "style.json"))

    def test_what_cannot_be_lit_stays(self):
        original = support.read("rgb.png")
        for style in NO_STYLES[:2]:
            picture, said = self.gegl("rgb.png", "limn:light", f"style={style}")
            self.assertSame(picture, original, style)
            self.assertEqual(said.count("the picture stays as it is"), 1, said)
        crop = "gegl:crop", "x=0", "y=0", "width=4", "height=4"
        expected, _ = self.gegl("rgb.png", "gegl:checkerboard", *crop)  # without end
        self.assertSame(self.gegl("rgb.png", "gegl:checkerboard", "limn:light", *crop)[0], expected)


support.main()
