"""A screen of its own for a test: Xvfb with its picture in a file, and xdotool for mouse and keyboard."""

import glob
import os
import shutil
import struct
import subprocess
import tempfile
import time

SETTLED = 0.12  # a picture that stays the same for so many seconds, while its program waits, is taken to be finished


def wait_for(what, condition, seconds=100):
    deadline = time.monotonic() + seconds
    while not (answer := condition()):
        if time.monotonic() > deadline:
            raise TimeoutError(what)
        time.sleep(0.02)
    return answer


class Screen:
    client = None  # the process that is watched

    def __init__(self, size):
        self.folder = tempfile.mkdtemp(prefix="screen-")
        read, write = os.pipe()
        with open(os.path.join(self.folder, "log"), "w") as log:
            self.server = subprocess.Popen(
                ["Xvfb", "-displayfd", str(write), "-screen", "0", size + "x24", "-nolisten", "tcp", "-noreset", "-r",
                 "-fbdir", self.folder], pass_fds=[write], stdout=log, stderr=log)
        os.close(write)
        with os.fdopen(read) as numbers:
            self.display = ":" + numbers.readline().strip()
        if self.display == ":":
            raise RuntimeError("Xvfb does not start")

    def close(self):
        self.server.terminate()
        self.server.wait()
        shutil.rmtree(self.folder)

    def environment(self):
        return {**os.environ, "DISPLAY": self.display, "QT_QPA_PLATFORM": "xcb", "XDG_RUNTIME_DIR": self.folder}

    def xdotool(self, *words):
        return subprocess.run(["xdotool", *map(str, words)], env=self.environment(), capture_output=True, text=True,
                              timeout=600)

    def is_client_at_work(self):
        try:
            with open(f"/proc/{self.client}/stat", encoding="utf-8") as file:
                return file.read().rsplit(")", 1)[1].split()[0] in "RD"
        except FileNotFoundError:  # none, or at its end
            return False

    def pixels(self):
        """The bytes of the whole screen."""
        with open(glob.glob(self.folder + "/Xvfb_screen0")[0], "rb") as file:
            return file.read()

    def _geometry(self, content):
        """Where the pixels begin, the screen's sides, and the bytes of a row."""
        header = struct.unpack(">25I", content[:100])
        return header[0] + 12 * header[19], header[4], header[5], header[12]

    def part(self, left, top, width, height):
        """The bytes of a rectangle of the screen."""
        content = self.pixels()
        start, _, _, row_bytes = self._geometry(content)
        rows = (start + y * row_bytes + 4 * left for y in range(top, top + height))
        return b"".join(content[row : row + 4 * width] for row in rows)

    def settle(self):
        """The screen once it has stopped changing."""
        last, since = self.pixels(), time.monotonic()
        deadline = since + 100
        while time.monotonic() - since < SETTLED:
            time.sleep(0.03)
            now = self.pixels()
            if now != last or self.is_client_at_work():
                last, since = now, time.monotonic()
            if since > deadline:
                raise TimeoutError("the screen never rests")
        return last

    def changes(self, what, *words):
        """Runs xdotool and waits until something can be seen of it, and then until nothing more comes."""
        before = self.settle()
        self.xdotool(*words)
        wait_for(f"{what} changed nothing on the screen", lambda: self.pixels() != before)
        self.settle()

    def find(self, title):
        """A window of this title, with or without the name of the picture that it ends with."""
        found = self.xdotool("search", "--onlyvisible", "--name", f"^{title}( — .*)?$").stdout.split()
        return found[0] if found else None

    def window(self, title):
        """Waits for the window; answers the place of its content."""
        name = wait_for(f"no window “{title}”", lambda: self.find(title))
        self.settle()
        lines = self.xdotool("getwindowgeometry", "--shell", name).stdout.split()
        place = dict(line.split("=") for line in lines)
        return int(place["X"]), int(place["Y"])

    def wait_until_gone(self, title):
        wait_for(f"“{title}” stays", lambda: not self.find(title))

    def save_picture(self, path):
        """The screen as a PPM file, to look at."""
        content = self.pixels()
        start, width, height, row_bytes = self._geometry(content)
        with open(path, "wb") as file:
            file.write(b"P6\n%d %d\n255\n" % (width, height))
            for y in range(height):
                row = content[start + y * row_bytes :][: 4 * width]
                rgb = bytearray(3 * width)
                rgb[0::3], rgb[1::3], rgb[2::3] = row[2::4], row[1::4], row[0::4]
                file.write(rgb)
