"""What every adapter is asked for, and what the command makes of the same picture."""

import json

import support

STYLE = {"gloss": 200, "material": 90, "exposure": 100, "ambientBrightness": -20, "bumpAmplitude": 60,
         "bumpChannel": 2, "lights": [{"type": "omni", "center": [20, -30], "color": [65535, 30000, 9000]},
                                      {"type": "spot", "intensity": 90}]}
SLIDERS = "gloss", "material", "exposure", "ambience", "relief"

# The style, the sliders from the first on, and what they change in the style.
CASES = (("style.json", (), ()),
         ("Raking Light", (), ()),
         ("", (), ()),
         ("Default", (0.5,) * 5, ()),
         ("style.json", (0.25, 1, 0, 0.75, 0.9),
          ("gloss=100", "material=256", "exposure=0", "ambientBrightness=54", "bumpAmplitude=216")))
NO_STYLES = "no.json", "No Such Style", "broken.json", "folder", "%s%n"


class AdapterTest(support.LimnTest):
    def setUp(self):
        super().setUp()
        support.put("style.json", json.dumps(STYLE))
        support.put("broken.json", '{"lights": 7')
        support.os.mkdir("folder")

    def lit(self, image, style, changes=(), channel=None):
        """The command's picture, which is not the one it was given."""
        options = [word for change in changes for word in ("--set", change)]
        options += ["--channel", channel] if channel else []
        self.limn("apply", "--quiet", "--force", "--style", style or "Default", *options, image, "-o", "lit.png")
        lit = support.read("lit.png")
        self.assertNotEqual(lit.samples, support.read(image).samples)
        return lit
