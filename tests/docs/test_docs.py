"""The documentation is true: its commands run, its links lead somewhere, and its pictures are what the
programs draw today.  test_docs.py [quick|deep]"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "scripts"))

from docs_pages import PAGES, Page, shrink_photographs, working_folder

BUILD = os.environ["BUILD"]
DEPTH = sys.argv.pop() if sys.argv[-1] in ("quick", "deep") else "quick"
# Each of another kind, and quickly drawn.
QUICK_PICTURES = ["settings/radius.jpg", "lights/spread.svg", "recipes/catch-light.jpg"]
NEAR = 1.0  # mean difference of a byte that another JPEG decoder or font may make


def anchors(text):
    """The names that headings get on the pages people read."""
    text = re.sub(r"^```.*?^```", "", text, flags=re.MULTILINE | re.DOTALL)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")
            for heading in re.findall(r"^#+ (.*)$", text, re.MULTILINE)}


class Docs(unittest.TestCase):
    def test_links_lead_somewhere(self):
        count = 0
        for page in map(Page, PAGES):
            for link in re.findall(r"\]\(([^)\s]+)\)", page.text):
                if re.match(r"\w+:", link):
                    continue
                path, _, anchor = link.partition("#")
                target = os.path.join(os.path.dirname(page.path), path) if path else page.path
                self.assertTrue(os.path.exists(target), f"{page.name}: {link}")
                if anchor:
                    with open(target, encoding="utf-8") as file:
                        self.assertIn(anchor, anchors(file.read()), f"{page.name}: {link}")
                count += 1
        print("counted: links in the documentation", count)

    def test_pictures_are_shown_and_described(self):
        for page in map(Page, PAGES):
            for picture in page.pictures():
                shown = rf"<!-- {picture.kind} {re.escape(picture.name)}\b[^>]*-->\n!\[[^\]]{{12,}}\]\(pictures/{re.escape(picture.name)}\)"
                self.assertRegex(page.text, shown, page.name)

    def test_commands_run(self):
        photos = os.path.join(tempfile.mkdtemp(prefix="limn-docs-photos-"), "small")
        self.addCleanup(shutil.rmtree, os.path.dirname(photos))
        shrink_photographs(photos, 450)
        count = 0
        for page in map(Page, PAGES):
            with working_folder(BUILD, photos):
                said = ""
                for block in page.blocks():
                    with self.subTest(page=page.name, block=block.text):
                        try:
                            if block.mark == "said":
                                self.assertEqual(said, block.text, page.name)
                            said = block.run() or said
                        except subprocess.CalledProcessError as error:
                            self.fail(f"{page.name}:\n{block.text}\n{error.output}")
                    count += len(re.findall(r"^[^#\s].*[^\\]$", block.text, re.MULTILINE)) if block.is_run() else 0
        print("counted: commands of the documentation run", count)

    def test_pictures_are_true(self):
        out = tempfile.mkdtemp(prefix="limn-docs-pictures-")
        self.addCleanup(shutil.rmtree, out)
        names = QUICK_PICTURES if DEPTH == "quick" else []
        subprocess.run([sys.executable, os.path.join(ROOT, "scripts/docs"), "--build", BUILD, "--out", out, *names],
                       check=True, stdout=subprocess.DEVNULL)
        if DEPTH == "deep" and os.path.exists(os.path.join(BUILD, "bin/editor_screenshots")):
            subprocess.run([os.path.join(ROOT, "scripts/screenshots"), BUILD, out], check=True)
        drawn = [os.path.relpath(os.path.join(folder, file), out)
                 for folder, _, files in os.walk(out) for file in files]
        self.assertTrue(set(names) <= set(drawn), drawn)
        for name in drawn:
            with self.subTest(picture=name):
                self.assertSame(os.path.join(ROOT, "docs/pictures", name), os.path.join(out, name))
        print("counted: pictures of the documentation drawn again", len(drawn))

    def assertSame(self, kept, drawn):
        if kept.endswith(".svg"):
            texts = [pathlib.Path(path).read_text(encoding="utf-8") for path in (kept, drawn)]
            versions = {re.search(r"GNUPLOT [\w. ]+", text)[0] for text in texts}
            if len(versions) == 1:  # each version writes the same curve in its own words
                self.assertEqual(*texts)
            return
        # Through subtract's signed result: what is thrown away there would hide every darker pixel.
        difference = drawn + ".v"
        subprocess.run(["vips", "subtract", kept, drawn, difference], check=True)
        subprocess.run(["vips", "abs", difference, drawn + ".abs.v"], check=True)
        mean = float(subprocess.run(["vips", "avg", drawn + ".abs.v"], check=True, capture_output=True).stdout)
        self.assertLess(mean, NEAR)


unittest.main()
