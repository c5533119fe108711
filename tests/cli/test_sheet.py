"""limn sheet: every style once, in order, with the very light that limn apply gives, and named below. The bundled styles."""

import glob
import json
import os
import shutil

import support

WIDTH, HEIGHT = 90, 60
RESOURCES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../resources")
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


def burnt(rows):
    """The pixels of which a channel is full, as a number that has a byte for each, 1 or 0."""
    full = b"".join(rows).translate(bytes(255) + b"\1")
    red, green, blue = (int.from_bytes(full[band::3], "big") for band in range(3))
    return red | green | blue


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

    def lit(self, style, options=("--channel", "heights.pgm"), image="in.ppm"):
        self.limn("apply", image, "-s", style, *options, "-o", "lit.ppm", "-f", "-q")
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

    def test_relief_and_details_are_those_of_apply(self):
        own = '{"bumpChannel": 2, "relief": {"source": "green", "smoothing": 40, "detail": 60, "fit": true}, "lights": [{}]}'
        support.put("own.json", own)
        support.write_pnm("deep.pgm", support.pattern(WIDTH, HEIGHT, 1, 16, seed=3))
        for relief in [(), ("--relief", "auto"), ("--relief", "deep.pgm", "--relief-invert"), ("--relief", "none"),
                       ("--relief", "blue")]:
            with self.subTest(relief):
                # All of a photograph that is no larger than its picture is its detail too.
                styles, page = self.sheet("-s", "own.json", "-s", "Carved in Stone", "--detail", *relief)
                for style in ["own.json", "Carved in Stone"]:
                    picture = self.lit(style, relief)
                    self.assertEqual(len(find(page, picture)), 2, style)
        support.vips("resize", "in.ppm", "large.ppm", 4)
        options = ["large.ppm", "-s", "Clay Model", "--relief", "auto", "--relief-detail", 50, "--size", WIDTH]
        told = json.loads(self.limn("sheet", *options, "--detail-at", "350,3", "-o", "sheet.png", "-f", "--json").stdout)
        self.assertEqual(told["detail"], [4 * WIDTH - WIDTH, 0, WIDTH, HEIGHT])
        self.lit("Clay Model", options[3:-2], image="large.ppm")
        page = support.read("sheet.png")
        for whole in "lit.ppm", "large.ppm":
            support.vips("extract_area", whole, "piece.ppm", *told["detail"])
            self.assertEqual(len(find(page, support.read("piece.ppm"))), 1, whole)

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

    def test_relief_made_small_is_what_apply_gives(self):
        photograph, size = f"{RESOURCES}/photos/still-life.jpg", 240
        style, relief = "Carved in Stone", ("--relief", "auto")
        support.vips("thumbnail", photograph, "in.ppm", size)
        self.sheet("-s", style, *relief, "--size", size, "--columns", 2)
        (x, y), = find(support.read("sheet.png"), self.lit(style, relief))
        self.lit(style, relief, image=photograph)
        support.vips("thumbnail", "lit.ppm", "small.ppm", size)
        self.limn("sheet", photograph, "-s", style, *relief, "--columns", 2, "--size", size, "-o", "sheet.png", "-f", "-q")
        page, small = support.read("sheet.png"), support.read("small.ppm")
        shown = [value for row in page.rows()[y : y + small.height] for value in row[3 * x : 3 * (x + small.width)]]
        self.assertLess(sum((a - b) ** 2 for a, b in zip(shown, small.samples)) / len(shown), 4**2)

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
            (["in.ppm", "-o", "a.png", "--relief", "wide.ppm"], 3, "wide.ppm: "),
            (["in.ppm", "-o", "a.png", "--relief", "9"], 3, "in.ppm: has no channel 9"),
            (["in.ppm", "-o", "a.png", "--detail-at", "90,0"], 2, "--detail-at 90,0: is not in in.ppm"),
            (["in.ppm", "-o", "a.png", "--detail-at", "7"], 2, "--detail-at 7: "),
            (["wide.ppm", "-o", "a.png", "--size", "2048", "--columns", "31"], 2, "would be"),
        ]:
            with self.subTest(says):
                self.limn("sheet", *arguments, code=code, says=says)
                self.assertFalse(os.path.exists("a.png"))
        self.limn("sheet", "in.ppm", "-o", "there.png", "--force", says="no channel for the relief of Evening Lamp;")

class Gallery(support.LimnTest):
    def test_styles_keep_the_highlights_of_the_bundled_photographs(self):
        """All but those that say in their description that they burn them."""
        styles = [path for path in sorted(glob.glob(f"{RESOURCES}/styles/*.json"))
                  if "burn" not in json.loads(support.content(path))["description"]]
        photographs = glob.glob(f"{RESOURCES}/photos/*.jpg")
        self.assertTrue(len(styles) >= 30 and len(photographs) >= 4)
        for photograph in photographs:
            support.vips("thumbnail", photograph, "in.ppm", 250)  # places of lights are then whole pixels
            self.limn("sheet", "in.ppm", *(word for path in styles for word in ("-s", path)), "--size", 250,
                      "--columns", 1, "-o", "sheet.ppm", "-f", "-q")
            self.limn("apply", "in.ppm", "-s", styles[0], "-o", "first.ppm", "-f", "-q")
            picture, page = support.read("in.ppm"), support.read("sheet.ppm")
            (left, top), = find(page, picture)
            (_, second), = find(page, support.read("first.ppm"))
            before, lines = burnt(map(bytes, picture.rows())), page.rows()
            size = picture.width * picture.height
            for at, path in enumerate(styles, 1):
                y = top + at * (second - top)
                lit = burnt(bytes(line[3 * left : 3 * (left + picture.width)]) for line in lines[y : y + picture.height])
                share = (lit & ~before).to_bytes(size, "big").count(1) / size
                self.assertLess(share, 0.03, (os.path.basename(path), os.path.basename(photograph)))


support.main()
