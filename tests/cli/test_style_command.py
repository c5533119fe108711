"""limn style: the binary and the JSON form say the same, and every broken file is told apart."""

import json
import os
import struct

import support

HEADER = ">HIIhHhHHHhhhhHHh"
LIGHT = ">HHHhhHHhhhhhhh"


def style_bytes(lights, **changes):
    values = {"signature": 0x4242, "magic": 0x43564C4D, "version": 144, "bumpChannel": -3, "whiteIsHigh": 1,
              "bumpAmplitude": 200, "red": 1, "green": 256, "blue": 65535, "material": 7, "gloss": -32768,
              "exposure": 32767, "ambience": -127, "count": len(lights), "current": 1, "unit": 97, **changes}
    return struct.pack(HEADER, *values.values()) + b"".join(struct.pack(LIGHT, *light) for light in lights)


LIGHTS = [(1, 2, 65535, -127, 300, 1, 2, -30, 40, 20, 0, 0, 10, 55),
          (0, 65535, 3, 90, -43, 0, 1, 32767, -32768, 1, 2, 3, 4, 5),
          (9, 8, 7, 6, 5, 1, 3, 4, 3, 2, 1, -1, -2, 30)]


class StyleCommand(support.LimnTest):
    def test_round_trip(self):
        support.put("three", style_bytes(LIGHTS))
        shown = self.limn("style", "show", "three", "--json").stdout
        support.put("three.json", shown)
        self.limn("style", "pack", "three.json", "-o", "packed")
        self.assertEqual(support.content("packed"), style_bytes(LIGHTS))
        content = json.loads(shown)
        self.assertEqual((content["gloss"], content["worldUnit"], len(content["lights"])), (-32768, 97, 3))
        self.assertEqual(content["lights"][1]["center"], [32767, -32768])
        self.assertEqual([light["type"] for light in content["lights"]], ["omni", "directional", "spot"])
        readable = self.limn("style", "show", "three").stdout
        for line in ["gloss           -32768", "light 1         directional, off, selected", "  intensity     90"]:
            self.assertIn(line + "\n", readable)

    def test_same_picture_from_every_form(self):
        lights = [(65535, 60000, 40000, 90, 128, 1, 3, 5, 5, 60, 0, 0, 40, 30)]
        os.makedirs("data/limn/Lighting Styles")
        support.put("data/limn/Lighting Styles/Mine", style_bytes(lights, exposure=128, gloss=90, unit=140, bumpChannel=0))
        support.put("mine.json", self.limn("style", "show", "Mine", "--json").stdout)
        self.limn("style", "pack", "mine.json", "-o", "mine")
        support.write_pnm("in.ppm", support.smooth(30, 20))
        pictures = []
        for number, style in enumerate(["Mine", "mine.json", "mine", os.path.abspath("mine")]):
            self.limn("apply", "in.ppm", "-s", style, "-o", f"{number}.ppm")
            pictures.append(support.read(f"{number}.ppm"))
            self.assertSame(pictures[-1], pictures[0], style)
        self.limn("apply", "in.ppm", "-s", "Default", "-o", "default.ppm")
        self.limn("apply", "in.ppm", "-o", "none.ppm")
        self.assertSame(support.read("default.ppm"), support.read("none.ppm"), "the default style")
        self.assertFalse(list(support.read("none.ppm").samples) == list(pictures[0].samples))

    def test_pack_does_not_overwrite(self):
        support.put("one.json", self.limn("style", "show", "Default", "--json").stdout)
        support.put("one", b"old")
        self.limn("style", "pack", "one.json", "-o", "one", code=4, says="one: exists already")
        self.limn("style", "pack", "one.json", "-o", "one", "--force")
        self.limn("style", "check", "one")

    def test_check(self):
        whole = style_bytes(LIGHTS)
        light = '{"worldUnit": 140, "lights": [{"type": "omni"}]%s}'
        cases = [
            ("whole", style_bytes(LIGHTS, gloss=0, exposure=255), 0, "good, 3 lights"),
            ("beyond sliders", whole, 0, "gloss -32768 is lit as 0, exposure 32767 is lit as 255"),
            ("cut in the third light", whole[:100], 0, "cut in the third light: "),
            ("magic", style_bytes(LIGHTS, magic=1), 3, ""),
            ("json", (light % "").encode(), 0, "good, 1 light"),
            ("json with a mark", b"\xef\xbb\xbf" + (light % "").encode(), 0, "good, 1 light"),
            ("json cut", (light % "").encode()[:30], 3, ""),
        ]
        for name, content, code, says in cases:
            with self.subTest(name):
                support.put(name, content)
                answer = self.limn("style", "check", name, code=code)
                told = answer.stdout if code == 0 else answer.stderr
                self.assertIn(name + ": ", told)
                self.assertIn(says, told)
                self.assertEqual(len(told.splitlines()), 1)
        answer = self.limn("style", "check", "whole", "magic", "json", "absent", code=3)
        self.assertEqual((len(answer.stdout.splitlines()), len(answer.stderr.splitlines())), (2, 2))


support.main()
