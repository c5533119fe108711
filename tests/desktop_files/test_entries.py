"""Desktop entries, the catalogue's text, icons and the type of style files, as desktops see them."""

import configparser
import glob
import os
import re
import shutil
import subprocess

import support
from support import LimnTest

BUILT = os.path.join(os.environ["BUILD"], "desktop")
SOURCES = os.path.join(os.environ["PROJECT"], "desktop")


def entries():
    for path in sorted(glob.glob(BUILT + "/*.desktop")):
        parser = configparser.ConfigParser(interpolation=None, strict=True)
        parser.optionxform = str
        parser.read(path, encoding="utf-8")
        yield path, parser["Desktop Entry"]


class Entries(LimnTest):
    def test_checkers_find_nothing(self):
        version = subprocess.run(["appstreamcli", "--version"], check=True, capture_output=True, text=True).stdout
        # There is no home page. Older checkers do not ask for one.
        homeless = ["--override", "url-homepage-missing=info"] if int(re.search(r"\d+", version).group()) > 0 else []
        checks = [["desktop-file-validate", *glob.glob(BUILT + "/*.desktop")],
                  ["appstreamcli", "validate", "--no-net", "--pedantic", *homeless, *glob.glob(BUILT + "/*.metainfo.xml")],
                  ["xmllint", "--noout", *glob.glob(SOURCES + "/*.xml"), *glob.glob(SOURCES + "/*.svg")]]
        for check in checks:
            self.assertGreater(len([word for word in check if word.startswith("/")]), 0, check)
            answer = subprocess.run(check, capture_output=True, text=True)
            told = answer.stdout + answer.stderr
            self.assertEqual(answer.returncode, 0, told)
            for word in "error", "warning", "hint":
                self.assertNotIn(word, told, check)

    def test_what_entries_start_and_show(self):
        help_text = subprocess.run([os.environ["CORVALINE"], "--help"], check=True, capture_output=True, text=True).stdout
        names = set()
        for path, entry in entries():
            program, *words = entry["Exec"].split()
            self.assertEqual(program, "corvaline", path)
            self.assertEqual(words[-1], "%f" if "--style" in words else "%F", path)
            for option in words[:-1]:
                self.assertIn(option, help_text, path)
            for size in 48, 128, 256:
                picture = f"{BUILT}/{size}/{entry['Icon']}.png"
                self.assertEqual(support.field(picture, "width"), str(size), path)
            names.add(os.path.basename(path))
        self.assertEqual(names, {"corvaline.desktop", "limn.desktop", "limn-style.desktop"})

    def test_images_are_those_that_the_one_table_reads(self):
        with open(os.path.join(os.environ["PROJECT"], "photographs/image_output.cpp"), encoding="utf-8") as file:
            read = set(re.findall(r'^    \{"\.(\w+)", .*, true(?:, \w+)*\},$', file.read(), re.MULTILINE))
        self.assertGreater(len(read), 10)
        with open("/usr/share/mime/globs2", encoding="utf-8") as file:
            known = [line.strip().split(":") for line in file if not line.startswith("#")]
        # Of the types of one name, that with the most weight: the others are special kinds of it.
        weights = sorted((fields[2].removeprefix("*."), int(fields[0]), fields[1]) for fields in known)
        wanted = set({name: kind for name, _, kind in weights if name in read}.values())
        types = {fields[1] for fields in known} # older releases know nothing of Radiance
        for path, entry in entries():
            if "limn-style" not in path:
                self.assertEqual(set(entry["MimeType"].strip(";").split(";")) & types, wanted, path)

    def test_files_have_the_type_that_opens_them(self):
        packages = os.path.join(self.folder, "data/mime/packages")
        os.makedirs(packages)
        shutil.copy(SOURCES + "/limn.xml", packages)
        shutil.copy("/usr/share/mime/packages/freedesktop.org.xml", packages)
        subprocess.run(["update-mime-database", os.path.dirname(packages)], check=True, capture_output=True)
        self.limn("style", "show", "Campfire", "--json")
        shutil.copy(glob.glob("data/limn/*/Campfire")[0], "Campfire")
        support.write_png("photo", support.smooth(8, 8))
        for file, wanted in ("Campfire", "application/x-limn-style"), ("photo", "image/png"):
            answer = subprocess.run(["gio", "info", "-a", "standard::content-type", file], check=True, text=True,
                                    capture_output=True, env={**os.environ, "XDG_DATA_DIRS": self.folder + "/data"})
            kind = answer.stdout.rsplit(":", 1)[1].strip()
            self.assertEqual(kind, wanted)
            self.assertTrue(any(wanted in entry["MimeType"].split(";") for _, entry in entries()), wanted)


support.main()
