"""docs/style.schema.json: it says of a JSON style what limn says, and the bundled styles keep to it."""

import glob
import json
import os

import jsonschema
import support

PROJECT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))

SCHEMA = json.loads(support.content(f"{PROJECT}/docs/style.schema.json"))

LIGHT = {"type": "omni", "radius": 40}
CASES = [  # name, style, whether it is good
    ("least", {"lights": [{}]}, True),
    ("schema named", {"$schema": "style.schema.json", "name": "a", "description": "b", "lights": [LIGHT]}, True),
    ("type as a code", {"lights": [{"type": 2}, {"type": 77, "on": 0}]}, True),
    ("sixteen lights", {"lights": [LIGHT] * 16}, True),
    ("ends of ranges", {"gloss": -32768, "exposure": 32767, "curLight": 65535, "version": 144,
                        "lights": [{"color": [0, 65535, 1], "center": [-32768, 32767], "on": False}]}, True),
    ("seventeen lights", {"lights": [LIGHT] * 17}, False),
    ("no light", {"lights": []}, False),
    ("no lights", {"gloss": 3}, False),
    ("a list", [LIGHT], False),
    ("another version", {"version": 145, "lights": [LIGHT]}, False),
    ("unknown setting", {"glos": 3, "lights": [LIGHT]}, False),
    ("unknown setting of a light", {"lights": [{"brightness": 3}]}, False),
    ("remark in a light", {"lights": [{"name": "a"}]}, False),
    ("remark no text", {"name": 3, "lights": [LIGHT]}, False),
    ("number of lights", {"numLights": 1, "lights": [LIGHT]}, False),
    ("unknown type", {"lights": [{"type": "laser"}]}, False),
    ("text for a number", {"gloss": "3", "lights": [LIGHT]}, False),
    ("null", {"gloss": None, "lights": [LIGHT]}, False),
    ("fraction", {"gloss": 3.5, "lights": [LIGHT]}, False),
    ("too small", {"gloss": -32769, "lights": [LIGHT]}, False),
    ("too large", {"lights": [{"color": [65536, 0, 0]}]}, False),
    ("too long a colour", {"lights": [{"color": [1, 2, 3, 4]}]}, False),
    ("object for a vector", {"lights": [{"center": {"x": 1}}]}, False),
    ("number for a light", {"lights": [3]}, False),
]


class Schema(support.LimnTest):
    def is_good(self, style):
        return not list(jsonschema.Draft7Validator(SCHEMA).iter_errors(style))

    def test_it_agrees_with_the_command(self):
        jsonschema.Draft7Validator.check_schema(SCHEMA)
        for name, style, good in CASES:
            with self.subTest(name):
                self.assertEqual(self.is_good(style), good)
                support.put("style.json", json.dumps(style))
                self.limn("style", "check", "style.json", code=0 if good else 3)

    def test_bundled_styles_keep_to_it(self):
        styles = glob.glob(f"{PROJECT}/resources/styles/*.json")
        self.assertGreaterEqual(len(styles), 24)
        for path in styles:
            jsonschema.validate(json.loads(support.content(path)), SCHEMA)
            # What limn writes of it keeps to the schema too, and has every setting that the schema knows.
            shown = json.loads(self.limn("style", "show", path, "--json").stdout)
            jsonschema.validate(shown, SCHEMA)
            self.assertEqual(set(SCHEMA["properties"]) - set(shown), {"$schema", "name", "description", "version", "relief", "lit"})
            self.assertEqual(set(SCHEMA["definitions"]["light"]["properties"]), set(shown["lights"][0]))

    def test_its_defaults_are_those_of_a_new_style(self):
        support.put("least.json", json.dumps({"lights": [{}]}))
        shown = json.loads(self.limn("style", "show", "least.json", "--json").stdout)
        for table, values in [(SCHEMA["properties"], shown),
                              (SCHEMA["definitions"]["light"]["properties"], shown["lights"][0])]:
            for key, entry in table.items():
                if "default" in entry:
                    self.assertEqual(values[key], entry["default"], key)


support.main()
