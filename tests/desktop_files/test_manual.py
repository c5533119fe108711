"""The manual pages, through two programs that show them, and against the programs they tell of."""

import json
import os
import re
import struct
import subprocess

import support
from support import LimnTest

PAGES = os.path.join(os.environ["BUILD"], "man")


class Manual(LimnTest):
    def shown(self, page):
        """The page as a reader sees it."""
        answer = subprocess.run(["man", "--warnings", "-P", "cat", "-l", f"{PAGES}/{page}"], check=True, text=True,
                                capture_output=True, env={**os.environ, "LC_ALL": "C.UTF-8", "MANWIDTH": "120"})
        self.assertEqual(answer.stderr, "", page)
        return answer.stdout

    def test_readers_have_nothing_to_say(self):
        for page in "limn.1", "corvaline.1", "limn-style.5":
            self.shown(page)
            answer = subprocess.run(["mandoc", "-T", "lint", f"{PAGES}/{page}"], capture_output=True, text=True)
            self.assertEqual((answer.returncode, answer.stdout + answer.stderr), (0, ""), page)

    def test_no_option_is_missing(self):
        for name, page in (os.environ["LIMN"], "limn.1"), (os.environ["CORVALINE"], "corvaline.1"):
            text = re.sub(r"\s+", " ", self.shown(page))
            program = json.loads(subprocess.run([name, "--describe-options"], check=True, capture_output=True).stdout)
            inner = [command for outer in program["commands"] for command in (outer["commands"] or [outer])]
            for command in inner:
                self.assertIn(f"{command['name']} [OPTIONS]", text)
            for option in (option for command in [program, *inner] for option in command["options"]):
                self.assertIn(", ".join(option["names"]), text)

    def test_style_format_is_as_told(self):
        text = self.shown("limn-style.5")
        header, light = re.search(r"Header\n(.*)\n *Light\n(.*)\n *JSON", text, re.DOTALL).groups()
        rows = lambda table: {name: int(at) for at, name in re.findall(r"^ +(\d+) +(\w\S*) ", table, re.MULTILINE)}
        header, light = rows(header), rows(light)
        style = {"bumpChannel": 3, "bumpAmplitude": 41, "ambientColor": [1000, 2000, 3000], "material": 77, "gloss": 200,
                 "exposure": 99, "ambientBrightness": -5, "worldUnit": 140, "curLight": 1,
                 "lights": [{"type": "omni"}, {"type": "omni", "color": [9, 8, 7], "intensity": -30, "spread": 12,
                                               "center": [-20, 30], "handle1": [4, 5], "handle2": [6, 7], "radius": 33}]}
        support.put("style.json", json.dumps(style))
        self.limn("style", "pack", "style.json", "-o", "style")
        content = support.content("style")
        self.assertEqual(content[:6], b"BBCVLM")
        self.assertEqual(set(header) - {"version", "whiteIsHigh"}, set(style) - {"lights"})
        self.assertEqual(set(light) - {"on"}, set(style["lights"][1]))
        fields = [(header[name], value) for name, value in style.items() if name in header]
        fields += [(36 + 28 + light[name], value) for name, value in style["lights"][1].items() if name != "type"]
        for at, value in fields:
            values = value if isinstance(value, list) else [value]
            self.assertEqual(list(struct.unpack_from(f">{len(values)}h", content, at)), values, at)
        self.assertEqual(struct.unpack_from(">IH", content, header["version"])[0], 144)
        self.assertEqual(struct.unpack_from(">HH", content, 36 + 28 + light["on"]), (1, 2))  # on, an omni light


support.main()
