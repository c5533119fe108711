"""limn styles, and styles named by the names that the library gives them."""

import json
import os
import shutil

import support

FOLDER = "data/limn/Lighting Styles"


class Library(support.LimnTest):
    def names(self, **options):
        return self.limn("styles", **options).stdout.splitlines()

    def test_the_bundled_styles_come_once(self):
        names = self.names()
        self.assertEqual(names[0], "Default")
        self.assertGreaterEqual(len(names), 12)
        self.assertEqual(names[1:], sorted(names[1:], key=str.lower))
        os.remove(f"{FOLDER}/{names[1]}")
        self.assertEqual(self.names(), names[:1] + names[2:])
        # A style that the user deleted can still be named.
        self.limn("style", "check", names[1])

    def test_the_users_own(self):
        first = self.names()[1]
        shutil.copy(f"{FOLDER}/{first}", f"{FOLDER}/Über%2Funter")
        shutil.copy(f"{FOLDER}/Default", f"{FOLDER}/{first}")
        support.put(f"{FOLDER}/notes.txt", "no style")
        support.put(f"{FOLDER}/Broken", support.content(f"{FOLDER}/Default")[:50])
        answer = self.limn("styles", "--json", says="Broken: ")
        styles = {line["name"]: line for line in map(json.loads, answer.stdout.splitlines())}
        self.assertEqual(styles["Über/unter"]["origin"], "user")
        self.assertEqual(styles[first]["origin"], "user", "another style under a bundled name")
        self.assertEqual(styles["Default"], {"name": "Default", "origin": "bundled", "lights": 1})
        self.assertFalse({"notes.txt", "Broken"} & set(styles))
        # The user's file is what the name means, in any case of its letters.
        default = self.limn("style", "show", "Default").stdout
        self.assertEqual(self.limn("style", "show", first.upper()).stdout, default)
        self.assertNotEqual(self.limn("style", "show", "Über/unter").stdout, default)
        self.limn("style", "show", "Broken", code=3, says="Broken: ")

    def test_without_a_library(self):
        support.write_pnm("in.ppm", support.smooth(12, 8))
        self.limn("apply", "in.ppm", "-o", "with.ppm", "-q")
        names = self.names()
        support.put("file", "")
        missing = {"XDG_DATA_HOME": os.path.abspath("file")}
        self.assertEqual(self.names(says="cannot be created", env=missing), names)
        answer = self.limn("apply", "in.ppm", "-o", "without.ppm", "-q", env=missing)
        self.assertEqual(answer.stderr, "")
        self.assertSame(support.read("without.ppm"), support.read("with.ppm"))


support.main()
