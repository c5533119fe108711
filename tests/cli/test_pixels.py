"""What becomes of every kind of image on its way to the plug-in and back. A mask that selects nothing
leaves the lighting out, so the pixels are known."""

import array
import base64
import os
import struct

import support
from support import Picture, content, pattern


def grey_to_rgb(picture):
    """Grey three times, then what follows it."""
    bands = picture.bands
    pixels = [picture.samples[at : at + bands] for at in range(0, len(picture.samples), bands)]
    return Picture(picture.width, picture.height, bands + 2,
                   [value for pixel in pixels for value in pixel[:1] * 3 + pixel[1:]])


def upright(picture, orientation):
    """The picture as it is to be seen; orientations 1 to 8 as EXIF counts them."""
    bands = picture.bands
    grid = [[tuple(row[at : at + bands]) for at in range(0, len(row), bands)] for row in picture.rows()]
    if orientation >= 5:
        grid = [list(column) for column in zip(*grid)]  # transposed
    if orientation in (2, 3, 6, 7):
        grid = [row[::-1] for row in grid]
    if orientation in (3, 4, 7, 8):
        grid = grid[::-1]
    return Picture(len(grid[0]), len(grid), bands, [value for row in grid for pixel in row for value in pixel])


def floats(path):
    """Those of a PFM file, in the byte order that its scale tells."""
    scale, values = content(path).split(b"\n", 3)[2:]
    return struct.unpack(f"{'<' if float(scale) < 0 else '>'}{len(values) // 4}f", values)


class Pixels(support.LimnTest):
    def converted(self, name, output, width, height, says="", *options):
        support.write_pnm("none.pgm", support.filled(width, height, 0))
        self.limn("apply", name, "--mask", "none.pgm", "-o", output, "-f", *options, says=says)
        return support.read(output.split("[")[0])

    def test_spaces_and_depths(self):
        grey, grey_alpha, grey16 = pattern(7, 5, 1), pattern(7, 5, 2), pattern(7, 5, 1, 16)
        rgb, rgba, rgb16, rgba16 = pattern(7, 5, 3), pattern(7, 5, 4), pattern(7, 5, 3, 16), pattern(7, 5, 4, 16)
        five, five16 = pattern(7, 5, 5), pattern(7, 5, 5, 16)
        png, tiff, pnm = support.write_png, support.write_tiff, support.write_pnm
        cases = [
            ("grey.png", lambda path: png(path, grey), grey_to_rgb(grey), ""),
            ("grey-alpha.png", lambda path: png(path, grey_alpha), grey_to_rgb(grey_alpha), ""),
            ("grey16.png", lambda path: png(path, grey16), grey_to_rgb(grey16), ""),
            ("rgb.png", lambda path: png(path, rgb), rgb, ""),
            ("rgba.png", lambda path: png(path, rgba), rgba, ""),
            ("rgb16.png", lambda path: png(path, rgb16), rgb16, ""),
            ("rgba16.png", lambda path: png(path, rgba16), rgba16, ""),
            ("grey.pgm", lambda path: pnm(path, grey), grey_to_rgb(grey), ""),
            ("rgb.ppm", lambda path: pnm(path, rgb), rgb, ""),
            ("rgb16.ppm", lambda path: pnm(path, rgb16), rgb16, ""),
            ("grey.tif", lambda path: tiff(path, grey, photometric=1), grey_to_rgb(grey), ""),
            ("grey and two more.tif", lambda path: tiff(path, rgb, photometric=1), grey_to_rgb(rgb), ""),
            ("rgba.tif", lambda path: tiff(path, rgba), rgba, ""),
            ("five.tif", lambda path: tiff(path, five), five, ""),
            ("five16.tif", lambda path: tiff(path, five16), five16, ""),
        ]
        for name, write, expected, says in cases:
            with self.subTest(name):
                write(name)
                self.assertSame(self.converted(name, "out.tif", 7, 5, says), expected)
                if "16" in name:
                    shallow = self.converted(name, "out.tif", 7, 5, "16 bits a channel become 8", "--depth", 8)
                    self.assertEqual(list(shallow.samples), [value >> 8 for value in expected.samples])

    def test_depth_is_kept(self):
        """Lit, a picture of 257 times its bytes lies less than two levels above these; --depth forces one."""
        small = support.smooth(60, 40)
        support.write_pnm("in.ppm", small)
        words = Picture(60, 40, 3, [257 * value for value in small.samples], 16)
        support.write_png("in.png", words)
        support.vips("copy", "in.png", "in.tif")
        support.vips("cast", "in.ppm", "floats.v", "float")
        support.vips("copy", "floats.v", "floats.tif", "--interpretation", "srgb")
        self.limn("apply", "in.ppm", "-o", "bytes.ppm", "-q")
        lit = support.read("bytes.ppm").samples
        for name, output, depth in [("in.png", "out.png", 16), ("in.tif", "out.tif", 16), ("in.png", "out.ppm", 16),
                                    ("floats.tif", "out.tif", 32), ("in.png", "out.jpg", 8), ("in.ppm", "out.png", 8)]:
            with self.subTest(name=name, output=output):
                says = "become 8" if depth == 8 and name == "in.png" else ""
                self.limn("apply", name, "-o", output, "-f", says=says)
                got = support.read(output)
                self.assertEqual(got.depth, depth)
                if depth == 16:
                    above = [word / 257 - byte for word, byte in zip(got.samples, lit)]
                    self.assertTrue(-0.01 <= min(above) and 0.3 < max(above) < 2, (min(above), max(above)))
                    self.assertGreater(len(set(got.samples)), 4 * len(set(lit)), "lit in bytes")
        support.vips("linear", "floats.v", "bright.v", 0.01, "--", -0.2)
        support.vips("copy", "bright.v", "bright.tif", "--interpretation", "scrgb")
        support.write_pnm("none.pgm", support.filled(60, 40, 0))
        self.limn("apply", "bright.tif", "--mask", "none.pgm", "-o", "out.tif", "-f")
        self.assertSame(support.read("out.tif"), support.read("bright.tif"), "beyond black and white")
        self.limn("apply", "in.png", "-o", "out.tif[compression=webp]", "-f", says="become 8")
        os.rename("in.tif", "two.tif")
        answer = self.limn("apply", "in.png", "two.tif", "-o", "lit/", "--format", "jpg", says="become 8, since jpg")
        self.assertEqual(len(answer.stderr.splitlines()), 1, "once for a batch")
        answer = self.limn("apply", "in.png", "two.tif", "-o", "lit/", "--format", "png", "--depth", "float",
                           says="--depth float is not kept: png files hold 16 bits a channel")
        self.assertEqual(len(answer.stderr.splitlines()), 1, "once for a batch")
        for depth, bits in [("8", 8), ("16", 16), ("float", 32)]:
            self.limn("apply", "in.ppm", "-o", "out.tif", "-f", "--depth", depth)
            self.assertEqual(support.read("out.tif").depth, bits)
        support.write_pnm("heights.pgm", Picture(60, 40, 1, [257 * (i % 60) for i in range(2400)], 16))
        support.write_pnm("terraces.pgm", Picture(60, 40, 1, [i % 60 for i in range(2400)]))
        relief = ["--set", "bumpChannel=4", "--set", "bumpAmplitude=30", "-qf"]
        self.limn("apply", "in.ppm", "--channel", "heights.pgm", *relief, "-o", "a.ppm")
        self.limn("apply", "in.ppm", "--channel", "terraces.pgm", *relief, "-o", "b.ppm")
        self.assertSame(support.read("a.ppm"), support.read("b.ppm"))
        slope = Picture(60, 40, 1, [257 * 90 + 60 * (i % 60) for i in range(2400)], 16)  # terraces in bytes
        support.write_pnm("slope.pgm", slope)
        support.write_pnm("stairs.pgm", Picture(60, 40, 1, [value >> 8 for value in slope.samples]))
        for depth, channel, output in [([], "slope.pgm", "a.ppm"), (["--depth", 8], "slope.pgm", "b.ppm"),
                                       ([], "stairs.pgm", "c.ppm")]:
            self.limn("apply", "in.ppm", "--channel", channel, *depth, *relief, "-o", output)
        self.assertSame(support.read("b.ppm"), support.read("c.ppm"), "--depth 8 is what the dialog does")
        self.assertNotEqual(list(support.read("a.ppm").samples), list(support.read("c.ppm").samples))

    def unlit(self, name, output, *options, says="", size=(8, 6)):
        return self.converted(name, output, *size, says, *options)

    def test_formats_at_depth(self):
        """Unlit, each format gives and takes all that it holds, the right way up and with white at its end."""
        picture = Picture(8, 6, 3, [65535 * i // 143 for i in range(144)], 16)
        support.write_png("in.png", picture)
        support.vips("cast", "in.png", "in.v", "uint", "--shift")
        support.vips("copy", "in.v", "in.tif")
        self.assertSame(self.unlit("in.tif", "out.png"), picture, "32-bit integers")
        ten = Picture(8, 6, 3, [7 * i for i in range(143)] + [1023], 16)
        support.put("in.ppm", b"P6\n8 6\n1023\n" + ten.packed(">"))
        self.assertEqual(list(self.unlit("in.ppm", "out.png").samples),
                         [int(value * 65535 / 1023 + 0.5) for value in ten.samples])

        numbers = array.array("f", [i / 100 - 0.2 for i in range(144)])
        rows = [numbers[at : at + 24].tobytes() for at in range(0, 144, 24)]
        support.put("in.pfm", b"PF\n8 6\n-1.0\n" + b"".join(reversed(rows)))
        self.assertEqual(list(self.unlit("in.pfm", "out.tif").samples), list(numbers))
        self.unlit("in.pfm", "out.pfm")
        self.assertEqual(floats("out.pfm"), floats("in.pfm"))
        self.unlit("in.png", "out.pfm")
        self.assertAlmostEqual(floats("out.pfm")[-49], 71 / 143, places=4)
        self.unlit("in.png", "out.pfm", "--depth", 8, says="--depth 8 is not kept: pfm files hold floats")

        light = bytes([128, 128, 128, 129]) * 24 + bytes([64, 64, 64, 128]) * 24
        support.put("in.hdr", b"#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 6 +X 8\n" + light)
        self.assertAlmostEqual(self.unlit("in.hdr", "out.tif").samples[-1], 0.25, places=2)
        encoded = self.unlit("in.hdr", "out.png", "--depth", 8, says="linear light becomes sRGB").samples
        self.assertTrue(encoded[0] == 255 and abs(encoded[-1] - 137) <= 1, (encoded[0], encoded[-1]))
        samples = [[value / 7 - 1 for value in range(8 * y, 8 * y + 8)] for y in range(6)]
        support.put("in.exr", support.exr(8, 6, samples))
        lit = self.unlit("in.exr", "out.tif")
        self.assertEqual((lit.width, lit.height, lit.depth), (8, 6, 32))
        for value, wanted in zip(lit.samples[::4], sum(samples, [])):
            self.assertAlmostEqual(value, wanted, places=2)
        self.assertEqual(set(lit.samples[3::4]), {1})
        self.assertEqual(self.unlit("in.png", "out.tif", "--depth", "float").depth, 32)
        self.assertSame(self.unlit("out.tif", "back.png", "--depth", 16), picture, "a profile says that these are sRGB")

        flat = Picture(64, 64, 3, [65535] * 12288, 16)
        support.write_png("white.png", flat)
        for output, bits in [("out.heic[bitdepth=10,Q=90]", "10"), ("out.heic[Q=90]", "12"), ("out.avif[Q=90]", "12"),
                             ("out.heic[bitdepth=8]", "8")]:
            with self.subTest(output):
                says = f"16 bits a channel become {bits}, since {output.split('.')[1]} files hold no more"
                self.converted("white.png", output, 64, 64, says)
                self.assertEqual(support.field(output.split("[")[0], "heif-bitdepth"), bits)
                deep = self.converted(output.split("[")[0], "back.png", 64, 64)
                white = 255 if bits == "8" else 65535
                self.assertGreaterEqual(min(deep.samples), white - (500 if "avif" in output else 0), output)
        is_old = support.version("vips") < (8, 15)
        self.limn("apply", "white.png", "-o", "new.avif[bitdepth=10]", code=2 if is_old else 0,
                  says="takes 8 or 12 bits" if is_old else "")

    def test_wide_gamut(self):
        """A white ambience of 64 and nothing else is the picture as it is: its numbers, its profile, its depth."""
        support.write_pnm("in.ppm", support.smooth(8, 6))
        support.vips("icc_transform", "in.ppm", "p3.tif", "p3", "--input-profile", "srgb")
        profile = base64.b64decode(support.field("p3.tif", "icc-profile-data"))
        picture = pattern(8, 6, 3, 16)
        support.write_tiff("words.tif", picture, fields=[(34675, 7, len(profile), profile)])
        support.vips("linear", "words.tif", "floats.v", 1 / 65535, 0)
        support.vips("copy", "floats.v", "floats.tif", "--interpretation", "scrgb")
        support.vips("copy", "words.tif", "words.png")
        support.vips("copy", "p3.tif", "bytes.png")
        for name, output, count in [("words.tif", "out.tif", 1), ("words.png", "out.png", 1), ("bytes.png", "out.png", 1),
                                    ("floats.tif", "out.tif", 1 / 65535), ("floats.tif", "out.png", 0)]:
            with self.subTest(name=name, output=output):
                self.limn("apply", name, "-o", output, "-f", "--set", "ambience=64", "--set", "ambientColor=white",
                          "--set", "light.0.on=false")
                before, after = support.read(name), support.read(output)
                if count:
                    self.assertEqual(after.depth, before.depth)
                    self.assertLessEqual(max(abs(a - b) for a, b in zip(before.samples, after.samples)), 1.01 * count)
                else:
                    self.assertLessEqual(max(abs(a - b) for a, b in zip(picture.samples, after.samples)), 1)
                self.assertEqual(support.field(output, "icc-profile-data"), base64.b64encode(profile).decode())

    def test_masks_of_any_depth(self):
        """They are rounded to 8 bits."""
        support.write_pnm("in.ppm", support.smooth(8, 6))
        support.write_pnm("bytes.pgm", Picture(8, 6, 1, [5 * i for i in range(48)]))
        self.limn("apply", "in.ppm", "--mask", "bytes.pgm", "-o", "expected.ppm")
        support.write_pnm("words.pgm", Picture(8, 6, 1, [max(0, 257 * 5 * i - 120) for i in range(48)], 16))
        rows = [struct.pack("<8f", *((5 * i + 0.4) / 255 for i in range(at, at + 8))) for at in range(40, -1, -8)]
        support.put("floats.pfm", b"Pf\n8 6\n-1.0\n" + b"".join(rows))
        for mask in ["words.pgm", "floats.pfm"]:
            with self.subTest(mask):
                self.limn("apply", "in.ppm", "--mask", mask, "-o", "out.ppm", "-f")
                self.assertSame(support.read("out.ppm"), support.read("expected.ppm"))

    def test_orientation(self):
        picture = pattern(7, 5, 4)
        for orientation in range(1, 9):
            with self.subTest(orientation):
                support.write_tiff("turned.tif", picture, orientation=orientation)
                expected = upright(picture, orientation)
                result = self.converted("turned.tif", "out.tif", expected.width, expected.height)
                self.assertSame(result, expected)
                self.assertIn(support.field("out.tif", "orientation"), (None, "1"))

    def test_cmyk(self):
        white, black, cyan = [0, 0, 0, 0], [0, 0, 0, 255], [255, 0, 0, 0]
        support.write_tiff("ink.tif", Picture(3, 1, 4, white + black + cyan), photometric=5)
        result = self.converted("ink.tif", "out.png", 3, 1, "CMYK becomes sRGB").samples
        self.assertEqual(len(result), 9)
        self.assertGreater(min(result[0:3]), 250)
        self.assertLess(max(result[3:6]), 70)
        self.assertTrue(result[6] < 60 < 120 < min(result[7:9]), list(result))

    def test_formats_with_fewer_channels(self):
        five = pattern(7, 5, 5)
        support.write_tiff("five.tif", five)
        support.write_png("rgba.png", pattern(7, 5, 4))
        cases = [("rgba.png", "out.ppm", 3, "its alpha channel is left out, since ppm has none"),
                 ("rgba.png", "out.jpg", 3, "its alpha channel is left out, since jpg has none"),
                 ("rgba.png", "out.webp[lossless]", 4, ""),
                 ("five.tif", "out.png", 4, "only 4 of its 5 channels are written"),
                 ("five.tif", "out.tif[compression=lzw]", 5, "")]
        for name, output, bands, says in cases:
            with self.subTest(name=name, output=output):
                self.limn("apply", name, "-o", output, "-f", says=says)
                self.assertEqual(support.field(output.split("[")[0], "bands"), str(bands))

    def test_lossless_formats_agree(self):
        support.write_pnm("in.ppm", support.smooth(60, 40))
        self.limn("apply", "in.ppm", "-o", "out.ppm")
        expected = support.read("out.ppm")
        self.assertFalse(list(expected.samples) == support.smooth(60, 40).samples, "nothing was lit")
        for output in ["out.png", "out.tif", "out.tiff[compression=deflate]", "out.webp[lossless]", "out.JP2[lossless]",
                       "upper.PNG", "a[1].png", "out.pnm"]:
            with self.subTest(output):
                self.limn("apply", "in.ppm", "-o", output)
                path = output if output.endswith("g") else output.split("[")[0]
                os.rename(path, "got" + os.path.splitext(path)[1].lower())
                self.assertSame(support.read("got" + os.path.splitext(path)[1].lower()), expected)
        for name in ["in.png", "in.tif", "in.webp[lossless]", "in[brackets].png"]:
            with self.subTest(name):
                support.vips("copy", "in.ppm", "plain" + os.path.splitext(name.replace("[lossless]", ""))[1] +
                             ("[lossless]" if "lossless" in name else ""))
                path = name.replace("[lossless]", "")
                os.rename("plain" + os.path.splitext(path)[1], path)
                self.limn("apply", path, "-o", "again.ppm", "-f")
                self.assertSame(support.read("again.ppm"), expected)

    def test_lossy_formats_are_written(self):
        support.write_pnm("in.ppm", support.smooth(64, 48))
        self.limn("apply", "in.ppm", "-o", "out.ppm")
        expected = support.read("out.ppm").samples
        for output in ["out.jpg[Q=95]", "out.webp[Q=95]", "out.heic[Q=95]", "out.avif[Q=95]"]:
            with self.subTest(output):
                self.limn("apply", "in.ppm", "-o", output)
                got = support.read(output.split("[")[0]).samples
                self.assertEqual(len(got), len(expected))
                difference = sum(abs(a - b) for a, b in zip(got, expected)) / len(expected)
                self.assertLess(difference, 6)


support.main()
