"""A test with a screen, a folder and one program on it."""

import os
import shutil
import subprocess
import tempfile
import unittest

from screen import Screen
from support import content

LIMN = os.environ["LIMN"]
PROJECT = os.environ["PROJECT"]
PHOTOGRAPH = f"{PROJECT}/resources/photos/still-life.jpg"


class DesktopCase(unittest.TestCase):
    SIZE = "1024x768"

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="desktop-")
        self.addCleanup(shutil.rmtree, self.folder)
        for name in "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CONFIG_HOME":
            os.environ[name] = os.path.join(self.folder, "data")
        self.screen = Screen(self.SIZE)
        self.addCleanup(self.screen.close)
        self.process = None
        self.addCleanup(self.finish_process)
        self.origin = (0, 0)

    def finish_process(self):
        if self.process is not None:
            if self.process.poll() is None:
                self.screen.save_picture(f"{tempfile.gettempdir()}/desktop-failure.ppm")
                self.process.kill()
            self.process.communicate()

    def path(self, name):
        return os.path.join(self.folder, name)

    def start(self, title, *command):
        """Starts the program, and waits for the window that places are in."""
        self.process = subprocess.Popen(list(command), env=self.screen.environment(), stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE, text=True)
        self.screen.client = self.process.pid
        self.origin = self.screen.window(title)

    def end(self, code, says=""):
        told, problems = self.process.communicate(timeout=600)
        self.assertEqual((self.process.returncode, says in problems), (code, True), problems)
        return told

    def assertSameFiles(self, one, other):
        self.assertTrue(content(self.path(one)) == content(self.path(other)), f"{one} and {other} differ")

    def limn(self, *arguments):
        answer = subprocess.run([LIMN, *arguments], capture_output=True, text=True, timeout=600)
        self.assertEqual(answer.returncode, 0, answer.stderr)
        return answer.stdout

    def at(self, place):
        return [self.origin[0] + place[0], self.origin[1] + place[1]]

    def move_words(self, place):
        return ["mousemove", *self.at(place)]

    def drag(self, what, start, end):
        between = ((start[0] + end[0]) // 2, (start[1] + end[1]) // 2)
        self.screen.changes(f"pressing {what}", *self.move_words(start), "mousedown", 1, *self.move_words(between))
        self.screen.xdotool(*self.move_words(end))
        self.screen.settle()
        self.screen.xdotool("mouseup", 1)
        self.screen.settle()
