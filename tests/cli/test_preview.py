"""limn preview: the dialog's frame map, its place, its outlines, and the light in it."""

import support

SIDE = 280
BLACK, WHITE = [0, 0, 0], [255, 255, 255]


class Preview(support.LimnTest):
    def frame(self, *arguments):
        self.limn("preview", "in.ppm", *arguments, "-o", "frame.ppm", "--force")
        frame = support.read("frame.ppm")
        self.assertEqual((frame.width, frame.height, frame.bands), (SIDE, SIDE, 3))
        return lambda x, y: frame.samples[3 * (y * SIDE + x) : 3 * (y * SIDE + x) + 3]

    def assertShows(self, at, picture, scale=1, within=0):
        """The frame holds the picture, every scale-th pixel of it, centred within its outlines. within: by how
        much a sample may differ."""
        width, height = -(-picture.width // scale), -(-picture.height // scale)
        left, top = (SIDE - width) // 2, (SIDE - height) // 2
        rows = picture.rows()
        for y in range(height):
            shown = [value for x in range(width) for value in at(left + x, top + y)]
            wanted = [value for x in range(width) for value in rows[y * scale][3 * x * scale : 3 * x * scale + 3]]
            self.assertLessEqual(max(abs(a - b) for a, b in zip(shown, wanted)), within, f"row {y}")
        for x in range(left - 1, left + width + 1):
            self.assertEqual((at(x, top - 1), at(x, top + height)), (BLACK, BLACK))
        for y in range(top - 1, top + height + 1):
            self.assertEqual((at(left - 1, y), at(left + width, y)), (BLACK, BLACK))
        for place in range(SIDE):
            for x, y in [(place, 0), (place, SIDE - 1), (0, place), (SIDE - 1, place)]:
                self.assertEqual(at(x, y), BLACK)
        self.assertEqual((at(left - 2, top - 2), at(1, 1)), (WHITE, WHITE))

    def test_unlit(self):
        for width, height, scale in [(12, 8, 1), (256, 256, 1), (120, 600, 3), (701, 30, 3)]:
            with self.subTest(width=width, height=height):
                picture = support.pattern(width, height, 3)
                support.write_pnm("in.ppm", picture)
                self.assertShows(self.frame("--unlit"), picture, scale)

    def test_lit(self):
        picture = support.smooth(90, 70)
        support.write_pnm("in.ppm", picture)
        support.write_pnm("heights.pgm", support.smooth(90, 70, 1))
        # At full size the preview's light is that of the image, but for the falloff that it looks up in tables.
        for style in [[], ["--set", "light.0.intensity=-60", "--set", "gloss=250"]]:
            self.limn("apply", "in.ppm", *style, "-o", "lit.ppm", "-f")
            self.assertShows(self.frame(*style), support.read("lit.ppm"), within=2)
        flat, unlit = self.frame(), self.frame("--unlit")
        relief = self.frame("--channel", "heights.pgm", "--set", "bumpChannel=4", "--set", "bumpAmplitude=255")
        middle = [(x, y) for y in range(110, 170, 7) for x in range(100, 180, 7)]
        pictures = [[at(*place) for place in middle] for at in (flat, unlit, relief)]
        self.assertEqual(len({str(shown) for shown in pictures}), 3)
        part = support.Picture(20, 10, 3, [v for row in picture.rows()[5:15] for v in row[90:150]])
        self.assertShows(self.frame("--unlit", "--area", "30,5,20,10"), part)

    def test_relief_that_is_not_there(self):
        support.write_pnm("in.ppm", support.smooth(20, 20))
        self.limn("preview", "in.ppm", "--set", "bumpChannel=9", "-o", "frame.png", says="has no channel 9")


support.main()
