"""A file that is cut short or damaged is refused, and leaves nothing behind."""

import os
import random
import sys
import unittest

import support

IS_DEEP = "deep" in sys.argv
BAD_INPUT = 3
# Formats that end in bytes which no pixel depends on.
LOOSE_ENDS = {"png": 30, "webp": 2, "gif": 2, "jpg": 2}


class Damage(support.LimnTest):
    def setUp(self):
        super().setUp()
        support.write_pnm("whole.ppm", support.pattern(160, 120, 3))

    def make(self, kind):
        path = "whole." + kind
        if kind != "ppm":
            support.vips("copy", "whole.ppm", path)
        return support.content(path)

    def refused(self, content, name, note):
        support.put(name, content)
        with self.subTest(note):
            answer = self.limn("apply", name, "-o", "out.png", "-f", code=BAD_INPUT, says=name + ": ")
            self.assertEqual(len(answer.stderr.splitlines()), 1, answer.stderr)
            self.assertFalse(os.path.exists("out.png"))

    def test_truncated(self):
        number = 0
        for kind in ["jpg", "png", "tif", "webp", "ppm", "pfm", "hdr", "gif", "heic", "avif"]:
            content = self.make(kind)
            end = len(content) - LOOSE_ENDS.get(kind, 0)
            further = random.Random(7).sample(range(end), 60) if IS_DEEP else []
            for length in [0, 1, 10, end // 4, end // 2, end * 9 // 10, end - 1, *further]:
                number += 1
                self.refused(content[:length], "cut." + kind, f"{kind} cut to {length} of {len(content)}")
        print(f"counted: images cut short {number}")

    def test_compressed_tiff_truncated_inside(self):
        for compression in ["lzw", "deflate", "jpeg"]:
            support.vips("copy", "whole.ppm", f"whole.tif[compression={compression}]")
            content = bytearray(support.content("whole.tif"))
            content[len(content) // 3 : len(content) // 2] = b"\xff" * (len(content) // 2 - len(content) // 3)
            self.refused(content, "damaged.tif", compression)

    def test_overwritten_in_the_middle(self):
        noise = random.Random(5)
        for kind in ["jpg", "png"]:
            content = bytearray(self.make(kind))
            middle = len(content) // 2
            content[middle : middle + 200] = noise.randbytes(200)
            self.refused(content, "damaged." + kind, kind)

    def test_not_an_image(self):
        svg = b'<svg xmlns="http://www.w3.org/2000/svg" width="9" height="9"><rect width="9" height="9"/></svg>'
        for name, content in [("notes.jpg", b"Dear diary\n" * 50), ("drawing.svg", svg), ("table.csv", b"1,2,3\n4,5,6\n"),
                              ("wide.ppm", b"P6\n40000 1\n255\n" + b"\0" * 120000),
                              ("huge.ppm", b"P6\n2000000000 2000000000\n255\n"),
                              ("flat.ppm", b"P6\n0 5\n255\n"), ("flat.hdr", b"#?RADIANCE\n\n-Y 0 +X 5\n"), ("zeros.tif", b"\0" * 500),
                              ("nothing.tif", b"II*\0\x08\0\0\0\0\0\0\0\0\0")]:
            self.refused(content, name, name)

    def test_floats_that_are_not_read_are_named(self):
        support.vips("cast", "whole.ppm", "double.tif", "double")
        self.limn("apply", "double.tif", "-o", "out.tif", code=BAD_INPUT, says="double.tif: has floats of 64 bits")

    def test_mask_and_channels_too(self):
        content = self.make("png")
        support.put("cut.png", content[: len(content) // 2])
        for option in ["--mask", "--channel"]:
            with self.subTest(option):
                self.limn("apply", "whole.ppm", option, "cut.png", "-o", "out.png", code=BAD_INPUT, says="cut.png: ")
                self.assertFalse(os.path.exists("out.png"))

    def test_old_output_survives(self):
        content = self.make("jpg")
        support.put("cut.jpg", content[: len(content) // 2])
        support.put("out.jpg", "old")
        self.limn("apply", "cut.jpg", "-o", "out.jpg", "--force", code=BAD_INPUT)
        self.assertEqual(support.content("out.jpg"), b"old")


unittest.main(argv=sys.argv[:1])
