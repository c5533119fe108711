"""What a photograph says about itself is in the lit one too."""

import base64
import os
import struct

import support


def exif(orientation, make):
    """An APP1 segment: orientation, maker and resolution (300 dpi)."""
    make = make.encode() + b"\0"
    offset = 8 + 2 + 5 * 12 + 4
    entries = [(0x010F, 2, len(make), offset), (0x0112, 3, 1, orientation),
               (0x011A, 5, 1, offset + len(make)), (0x011B, 5, 1, offset + len(make)), (0x0128, 3, 1, 2)]
    table = b"".join(struct.pack("<HHII", *entry) for entry in entries)
    body = (b"Exif\0\0" + struct.pack("<2sHI", b"II", 42, 8) + struct.pack("<H", len(entries)) + table +
            struct.pack("<I", 0) + make + struct.pack("<II", 300, 1))
    return b"\xff\xe1" + struct.pack(">H", len(body) + 2) + body


def xmp(text):
    body = b"http://ns.adobe.com/xap/1.0/\0" + text.encode()
    return b"\xff\xe1" + struct.pack(">H", len(body) + 2) + body


class Metadata(support.LimnTest):
    def setUp(self):
        super().setUp()
        support.write_pnm("in.ppm", support.smooth(40, 30))
        support.vips("icc_transform", "in.ppm", "plain.jpg", "p3", "--input-profile", "srgb")
        plain = support.content("plain.jpg")
        support.put("photo.jpg", plain[:2] + exif(6, "Lumen Works") +
                    xmp('<x:xmpmeta xmlns:x="adobe:ns:meta/" tiff:Orientation="6" note="kept"/>') + plain[2:])

    def test_kept_in_each_format(self):
        loses = "its EXIF data is not written"
        for output, says in [("out.jpg", ""), ("out.webp", ""), ("out.png", ""), ("out.tif", loses)]:
            with self.subTest(output):
                self.limn("apply", "photo.jpg", "-o", output, says=says)
                self.assertEqual(support.field(output, "width"), "30")
                self.assertIn(support.field(output, "orientation"), (None, "1"))
                self.assertEqual(support.field(output, "icc-profile-data"), support.field("photo.jpg", "icc-profile-data"))
                if output != "out.webp":  # which has no resolution of its own
                    self.assertAlmostEqual(float(support.field(output, "xres")), 300 / 25.4, places=1)
                if not says:
                    self.assertIn("Lumen Works", support.field(output, "exif-ifd0-Make"))
                self.limn("apply", output, "-o", "again.jpg", "-f")

    def test_tags_agree_with_the_pixels(self):
        self.limn("apply", "photo.jpg", "-o", "out.jpg")
        content = support.content("out.jpg")
        self.assertIn(b'tiff:Orientation="1" note="kept"', content)
        self.assertRegex(support.field("out.jpg", "exif-ifd0-Orientation") or "1 ", "^1 ")

    def test_gain_map_goes_with_its_tags(self):
        """Tags without their map would have a viewer brighten the picture. All else is kept byte for byte."""
        names = [("rdf", "http://www.w3.org/1999/02/22-rdf-syntax-ns#"), ("dc", "http://purl.org/dc/elements/1.1/"),
                 ("map", "http://ns.adobe.com/hdr-gain-map/1.0/"), ("all", "http://ns.google.com/photos/1.0/container/"),
                 ("Item", "http://ns.google.com/photos/1.0/container/item/")]
        kept = [f' xmlns:{name}="{uri}"' for name, uri in names]
        items = "".join(f'<rdf:li><all:Item Item:Semantic="{kind}" Item:Length="{length}"/></rdf:li>'
                        for kind, length in [("Primary", 0), ("GainMap", 9)])
        parts = ["<?xpacket begin='' id='x'?>\n<x:xmpmeta xmlns:x='adobe:ns:meta/'>", f"<rdf:RDF{kept[0]}><rdf:Description",
                 "".join(kept[2:]), kept[1], ' map:Version="1.0"', ' dc:format=\'map:Version="1.0"\'>',
                 f"<all:Directory><rdf:Seq>{items}</rdf:Seq></all:Directory>", "<dc:title>kept &amp; whole</dc:title>",
                 "<map:GainMapMax><rdf:Seq><rdf:li>2.0</rdf:li></rdf:Seq></map:GainMapMax>",
                 "</rdf:Description></rdf:RDF></x:xmpmeta>\n", " " * 500, "<?xpacket end='w'?>"]
        packet = "".join(parts)
        rest = "".join(parts[i] for i in (0, 1, 3, 5, 7, 9, 10, 11))
        plain = support.content("plain.jpg")
        index = b"MPF\0II*\0\x08\0\0\0\0\0\0\0\0\0"
        segment = b"\xff\xe2" + struct.pack(">H", len(index) + 2) + index
        support.put("hdr.jpg", plain[:2] + xmp(packet) + segment + plain[2:] + plain[:2] + xmp(packet) + plain[2:])
        for output, *options in [("out.jpg",), ("out.png",), ("out.tif",), ("out.webp",), ("out.jpg", "--through-plugin")]:
            with self.subTest(output, options=options):
                self.limn("apply", "hdr.jpg", "-o", output, "-f", *options, says="its gain map and the tags for it")
                self.assertEqual(base64.b64decode(support.field(output, "xmp-data")), rest.encode())
                self.assertNotIn(b"MPF\0", support.content(output))
                self.assertNotIn(b"gain-map", support.content(output))
        for name, broken in [("cut", packet[:700]), ("doctype", "<!DOCTYPE x>" + packet)]:
            with self.subTest(name):
                support.put("hdr.jpg", plain[:2] + xmp(broken) + plain[2:])
                self.limn("apply", "hdr.jpg", "-o", "out.jpg", "-f", says="its gain map and the tags for it")
                self.assertIsNone(support.field("out.jpg", "xmp-data"))

    def test_profile_of_another_space_is_not_kept(self):
        support.vips("icc_transform", "in.ppm", "ink.jpg", "cmyk", "--input-profile", "srgb")
        profile = base64.b64decode(support.field("ink.jpg", "icc-profile-data"))
        support.write_tiff("in.tif", support.smooth(8, 8), fields=[(34675, 7, len(profile), profile)])
        self.limn("apply", "in.tif", "-o", "out.tif", says="is not one for RGB and is left out")
        self.assertIsNone(support.field("out.tif", "icc-profile-data"))

    def test_jpeg_without_room_for_the_metadata(self):
        packet = b"<x:xmpmeta>" + b" " * 70000 + b"</x:xmpmeta>"
        support.write_tiff("in.tif", support.smooth(8, 8), fields=[(700, 1, len(packet), packet)])
        self.limn("apply", "in.tif", "-o", "out.jpg", says="too large for a jpg file")

    def test_recipe_travels_with_the_picture(self):
        """In every format that holds one it lights the original to the same pixels again."""
        support.write_pnm("mask.ppm", support.smooth(30, 40, 1))
        plain = support.content("plain.jpg")
        rdf = 'xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#"'
        support.put("photo.jpg", plain[:2] + exif(6, "Lumen Works") + xmp(
            f'<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF {rdf}><rdf:Description rdf:about="" '
            'xmlns:dc="http://purl.org/dc/elements/1.1/" dc:format="kept"/></rdf:RDF></x:xmpmeta>') + plain[2:])
        style = '{"lights": [{"type": "omni", "center": [12.25, -3.5], "radius": 40.125}], "relief": {"source": "auto"}}'
        lit = ["apply", "photo.jpg", "--recipe", "-s", style, "--set", "relief=1", "--area", "2,3,20,30", "--mask", "mask.ppm"]
        for output in ["out.png", "out.tif", "out.webp", "out.jpg"]:
            with self.subTest(output):
                self.limn(*lit, "-o", output)
                says = "equal, every pixel" if output in ("out.png", "out.tif") else "equal but for what its format loses"
                self.assertIn(says, self.limn("verify", "photo.jpg", output, "--mask", "mask.ppm").stdout)
                shown = self.limn("style", "show", output, says="also lit with --area 2,3,20,30 --mask mask.ppm").stdout
                self.assertIn("(12.25, -3.5)", shown)
                self.limn("apply", "photo.jpg", "-s", output, "--area", "2,3,20,30", "--mask", "mask.ppm", "-o", "again.png", "-f")
                self.assertEqual(support.read("again.png").samples, support.read("out.png").samples)
        self.assertRegex(support.content("out.jpg"), b"dc:format=?>?.kept")
        self.limn("verify", "photo.jpg", "out.png", code=2, says="--mask mask.ppm, which is to be named")
        self.limn("verify", "photo.jpg", "out.png", "--mask", "in.ppm", code=3, says="is not the mask.ppm of out.png")
        self.limn("apply", "out.jpg", "-o", "twice.jpg")
        self.limn("verify", "out.jpg", "twice.jpg", code=3, says="holds no recipe")  # not that of out.jpg
        self.limn("apply", "photo.jpg", "--recipe", "-o", "out.ppm", says="for which ppm files have no room")

    def test_verify_finds_a_changed_pixel(self):
        self.limn("apply", "in.ppm", "--recipe", "-o", "out.tif")
        content = bytearray(support.content("out.tif"))
        content[8 + 3 * (40 * 7 + 11) + 1] ^= 1  # the pixels come first
        support.put("changed.tif", bytes(content))
        self.limn("verify", "in.ppm", "changed.tif", code=3, says="first at pixel 11,7 (RMS 0.02")

    def test_update_goes_by_the_recipe(self):
        """Another style or a younger input is lit anew, and nothing else is."""
        def lit(*options, **expected):
            return '"skipped"' not in self.limn("apply", "photo.jpg", "-o", "out.jpg", "--update", "--json", *options, **expected).stdout

        self.assertTrue(lit())
        self.assertFalse(lit())
        self.assertTrue(lit("--set", "gloss=3"))
        self.assertFalse(lit("--set", "gloss=3"))
        os.utime("photo.jpg", (2**32, 2**32))
        self.assertTrue(lit("--set", "gloss=3"))
        self.limn("apply", "photo.jpg", "-o", "out.jpg", "-f")
        self.assertTrue(lit())
        self.limn("apply", "photo.jpg", "-o", "photo.jpg", "--update", code=4, says="is the input itself")


support.main()
