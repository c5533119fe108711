"""The pages of the documentation, read for what is run and drawn in them.

  ```sh               a block of commands that a reader can type; run one page after the other block by block,
                      in a folder that holds the bundled photographs, `photo.jpg`, `camera.jpg` and a folder `photos`
  ```python           the same for /usr/bin/python3, where the Python package is built; one program a page
  <!-- not run: WHY -->  before a block: it needs a screen, an installation or minutes; so do blocks that call
                         one of ELSEWHERE
  <!-- file: NAME -->    before a block of another kind: saved under that name, for the commands after it
  <!-- said -->          before a block of another kind: what the commands before it print
"""

import contextlib
import glob
import os
import re
import shlex
import shutil
import subprocess
import tempfile
from dataclasses import dataclass

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
PHOTOS = os.path.join(ROOT, "resources/photos")
PAGES = [os.path.join(ROOT, "README.md"), *sorted(glob.glob(os.path.join(ROOT, "docs/*.md")))]

# Programs that have tests of their own, where Limn is run by them.
ELSEWHERE = re.compile(r"^(sudo|ffmpeg|melt|gegl|vips limn|sbatch|parallel)\b", re.MULTILINE)
PYTHON = "/usr/bin/python3"  # for which the package is built, whatever other one comes first in the path
# What is to be made is checked to be there, and not made.
PRELUDE = f'make() {{ command make -n -C "{ROOT}" "$@" > make.out 2>&1 || {{ cat make.out; return 1; }}; }}\n'
PIECE = re.compile(r"^<!-- (?P<kind>strip|pair|one|plot) (?P<name>[\w./-]+)(?::(?P<words>[^>]*?))? -->$"
                   r"|(?:^<!-- (?P<mark>not run|file|said)(?:: (?P<note>[^>]*?))? -->\n)?"
                   r"^```(?P<language>\w*)\n(?P<text>.*?)^```$", re.MULTILINE | re.DOTALL)


@dataclass
class Picture:
    kind: str
    name: str
    words: list
    at: int  # in the page's text


@dataclass
class Block:
    language: str
    text: str
    mark: str
    note: str
    at: int

    def is_run(self):
        if self.language == "python":
            return self.mark != "not run" and bool(glob.glob("build/lib/python/limn/_limn.*.so"))
        return self.language == "sh" and self.mark != "not run" and not ELSEWHERE.search(self.text)

    def run(self):
        """In the current folder. What it printed, or null. Throws CalledProcessError."""
        if self.mark == "file":
            with open(self.note, "w", encoding="utf-8") as file:
                file.write(self.text)
        if not self.is_run():
            return None
        if self.language == "python":
            return subprocess.run([PYTHON, "-"], input=self.text, check=True, text=True, timeout=300,
                                  stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                  env={**os.environ, "PYTHONPATH": os.path.abspath("build/lib/python")}).stdout
        return subprocess.run(["sh", "-eu"], input=PRELUDE + self.text, check=True, text=True, timeout=300,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT).stdout


class Page:
    def __init__(self, path):
        self.path, self.name = path, os.path.relpath(path, ROOT)
        with open(path, encoding="utf-8") as file:
            self.text = file.read()
        self._next = 0
        self._blocks = [Block(found["language"], found["text"], found["mark"], found["note"], found.start())
                        for found in PIECE.finditer(self.text) if not found["kind"]]
        program = ""
        for block in self._blocks:
            if block.language == "python" and block.mark != "not run":
                program = block.text = program + block.text

    def pictures(self):
        return [Picture(found["kind"], found["name"], shlex.split(found["words"] or ""), found.start())
                for found in PIECE.finditer(self.text) if found["kind"]]

    def blocks(self):
        return self._blocks

    def run_up_to(self, at):
        """Runs the blocks before that place that have not been run yet."""
        while self._next < len(self._blocks) and self._blocks[self._next].at < at:
            self._blocks[self._next].run()
            self._next += 1


def shrink_photographs(folder, width):
    os.makedirs(folder)
    for photo in os.listdir(PHOTOS):
        subprocess.run(["vips", "thumbnail", os.path.join(PHOTOS, photo), os.path.join(folder, photo), str(width)],
                       check=True, capture_output=True)


def make_camera_photograph(clean, target):
    """The picture with the grain of a camera's."""
    def vips(*words):
        return subprocess.run(["vips", *words], check=True, capture_output=True, text=True).stdout

    size = [subprocess.run(["vipsheader", "-f", side, clean], check=True, capture_output=True, text=True).stdout.strip()
            for side in ("width", "height")]
    steps = [target + step for step in (".grain.v", ".sum.v", ".bytes.v")]
    vips("gaussnoise", steps[0], *size, "--sigma", "5.3", "--mean", "0", "--seed", "1")
    vips("add", clean, steps[0], steps[1])
    vips("cast", steps[1], steps[2], "uchar")
    vips("copy", steps[2], target + "[Q=92]")
    for step in steps:
        os.remove(step)


@contextlib.contextmanager
def working_folder(build, photos=PHOTOS):
    """Makes a folder as the pages assume it the current one, with `build`'s programs in the path."""
    folder, before, environment = tempfile.mkdtemp(prefix="limn-docs-"), os.getcwd(), dict(os.environ)
    try:
        os.makedirs(f"{folder}/resources")
        os.makedirs(f"{folder}/photos/lake")
        os.symlink(build, f"{folder}/build")
        for part in ("contrib", "host", "library"):
            os.symlink(f"{ROOT}/{part}", f"{folder}/{part}")
        os.symlink(photos, f"{folder}/resources/photos")
        for photo in os.listdir(photos):
            shutil.copy(f"{photos}/{photo}", folder)
        shutil.copy(f"{photos}/still-life.jpg", f"{folder}/photo.jpg")
        subprocess.run(["vips", "copy", f"{photos}/still-life.jpg", f"{folder}/photo.png[compression=1]"], check=True)
        make_camera_photograph(f"{photos}/still-life.jpg", f"{folder}/camera.jpg")
        shutil.copy(f"{photos}/portrait.jpg", f"{folder}/photos")
        shutil.copy(f"{photos}/landscape.jpg", f"{folder}/photos/lake")
        with open(f"{folder}/last-time", "w", encoding="utf-8"):
            os.utime(f"{folder}/last-time", (0, 0))
        os.environ.update(PATH=f"{build}/bin:{os.environ['PATH']}", HOME=folder, XDG_DATA_HOME=f"{folder}/.data",
                          LC_ALL="C.UTF-8")
        os.chdir(folder)
        yield folder
    finally:
        os.chdir(before)
        os.environ.clear()
        os.environ.update(environment)
        shutil.rmtree(folder)
