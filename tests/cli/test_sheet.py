"""limn sheet: every style once, in order, with the very light that limn apply gives, and named below."""

import json
import os
import shutil

import support

WIDTH, HEIGHT = 90, 60
LONG_NAME = "A name <b>& that is longer than its picture is wide"


def find(page, picture):
    """The places of the picture on the page."""
    lines, wanted = [bytes(row) for row in page.rows()], [bytes(row) for row in picture.rows()]
    places = []
    for y in range(page.height - picture.height + 1):
        at = lines[y].find(wanted[0])
        while at >= 0:
            if at % 3 == 0 and all(lines[y + row][at : at + len(wanted[0])] == wanted[row]
                                   for row in range(picture.height)):
                places.append((at // 3, y))
            at = lines[y].find(wanted[0], at + 1)
    return places


class Sheet(support.LimnTest):
    def setUp(self):
        super().setUp()
        support.write_pnm("in.ppm", support.smooth(WIDTH, HEIGHT))
        support.write_pnm("heights.pgm", support.pattern(WIDTH, HEIGHT, 1))

    def sheet(self, *arguments):
        told = json.loads(self.limn("sheet", "in.ppm", *arguments, "-o", "sheet.png", "-f", "--json", "-q").stdout)
        page = support.read("sheet.png")
        self.assertEqual(told["size"], [page.width, page.height])
        return told["styles"], page

    def lit(self, style):
        self.limn("apply", "in.ppm", "-s", style, "--channel", "heights.pgm", "-o", "lit.ppm", "-f", "-q")
        return support.read("lit.ppm")

    def test_all_styles_with_the_light_of_apply(self):
        styles, page = self.sheet("--channel", "heights.pgm")
        self.assertEqual(styles, self.limn("styles").stdout.splitlines())
        pictures = [support.read("in.ppm")] + [self.lit(style) for style in styles]
        places = [find(page, picture) for picture in pictures]
        self.assertEqual([len(found) for found in places], [1] * len(pictures))
        in_rows = [(y, x) for (x, y), in places]
        self.assertEqual(in_rows, sorted(in_rows))

    def test_named_styles_and_their_labels(self):
        self.limn("styles")
        shutil.copy("data/limn/Lighting Styles/Campfire", LONG_NAME)
        styles, page = self.sheet("-s", "Campfire", "-s", LONG_NAME, "--columns", 2)
        self.assertEqual(styles, ["Campfire", LONG_NAME])
        (left, top), (right, below) = sorted(find(page, self.lit("Campfire")), key=lambda place: -place[0])
        self.assertTrue(left > right and top < below, "two columns")
        rows, paper = page.rows(), page.samples[:3]
        for x, y in [(left, top), (right, below)]:
            label = {tuple(row[3 * at : 3 * at + 3]) for row in rows[y + HEIGHT : y + HEIGHT + 20]
                     for at in range(x, x + WIDTH)}
            self.assertGreater(max(map(sum, label)), 600, "no letters")
            beside = [row[3 * at : 3 * at + 3] for row in rows[y + HEIGHT : y + HEIGHT + 20] for at in
                      range(x + WIDTH + 8, x + WIDTH + 14)]
            self.assertTrue(all(pixel == paper for pixel in beside), "letters beside the card")
        for name in b" ", b"\xed\xa0\x80", b"\xe0\x80\x80", b"\xf4\x90\x80\x80":  # no letters, no UTF-8
            shutil.copy("data/limn/Lighting Styles/Campfire", name)
            self.sheet("-s", os.fsdecode(name))

    def test_a_large_jpeg_is_what_apply_gives_made_small(self):
        support.vips("resize", "in.ppm", "large.jpg[Q=95]", 20)
        for style in ["Campfire", "Dark Corners"]:
            self.limn("sheet", "large.jpg", "-s", style, "--size", WIDTH, "-o", "sheet.png", "-f", "-q", "--columns", 2)
            self.limn("apply", "large.jpg", "-s", style, "-o", "lit.ppm", "-f", "-q")
            support.vips("resize", "lit.ppm", "small.ppm", 0.05)
            page, small = support.read("sheet.png"), support.read("small.ppm")
            # The pictures lie at the same places as those of a photograph that needs no reduction.
            self.limn("sheet", "in.ppm", "-s", style, "--columns", 2, "-o", "places.png", "-f", "-q")
            (x, y), = find(support.read("places.png"), self.lit(style))
            shown = [value for row in page.rows()[y : y + HEIGHT] for value in row[3 * x : 3 * (x + WIDTH)]]
            error = sum(abs(a - b) for a, b in zip(shown, small.samples)) / len(shown)
            self.assertLess(error, 2, style)

    def test_what_is_wrong(self):
        support.write_pnm("wide.ppm", support.filled(2048, 1, 9, 3))
        support.write_pnm("small.pgm", support.filled(3, 3, 9))
        support.put("there.png", "old")
        for arguments, code, says in [
            (["in.ppm", "-o", "there.png"], 4, "there.png: exists already"),
            (["in.ppm", "-o", "a.nonsense"], 2, "a.nonsense"),
            (["none.jpg", "-o", "a.png"], 3, "none.jpg: "),
            (["in.ppm", "-o", "a.png", "-s", "No such style"], 3, "No such style: "),
            (["in.ppm", "-o", "a.png", "--max-pixels", "5000"], 3, "--max-pixels"),
            (["in.ppm", "-o", "a.png", "-s", '{"lights": 3}'], 3, "the style's JSON: lights: "),
            (["in.ppm", "-o", "a.png", "--size", "9"], 2, "--size"),
            (["in.ppm", "-o", "a.png", "--channel", "small.pgm"], 3, "small.pgm: "),
            (["wide.ppm", "-o", "a.png", "--size", "2048", "--columns", "31"], 2, "would be"),
        ]:
            with self.subTest(says):
                self.limn("sheet", *arguments, code=code, says=says)
                self.assertFalse(os.path.exists("a.png"))
        self.limn("sheet", "in.ppm", "-o", "there.png", "--force", says="no channel for the relief of Evening Lamp;")


support.main()
