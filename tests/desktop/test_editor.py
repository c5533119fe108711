"""The editor from outside: a photograph is lit, saved, proved and opened again."""

import configparser
import json
import os
import shutil
import unittest

from case import PHOTOGRAPH, PROJECT, DesktopCase
from screen import wait_for
from support import read

CORVALINE = os.environ["PROGRAM"]
MIDDLE = (620, 420)  # of the window: on the picture
AROUND = (120, 90)  # to each side of it, what is compared
A_STYLE, NO_STYLE = (950, 270), (620, 80)
BELOW = (620, 500)
DRAGGED = (60, -40)  # from the middle
CORNER = (500, 505)  # of the picture
LAMP = (412, 87)
INTENSITY = (318, 378)


class Editor(DesktopCase):
    SIZE = "1280x900"

    def open(self, name):
        self.start(f"{name} – Corvaline", CORVALINE, self.path(name))
        for what, place in ("picture", MIDDLE), ("style", A_STYLE):
            wait_for(f"no {what}", lambda: len(set(self.around(place, (20, 20)))) > 60)

    def around(self, place, sides):
        self.screen.settle()
        left, top = self.at((place[0] - sides[0], place[1] - sides[1]))
        return self.screen.part(left, top, 2 * sides[0], 2 * sides[1])

    def picture(self):
        return self.around(MIDDLE, AROUND)

    def picture_alone(self):
        """Without the pointer on it."""
        self.screen.xdotool(*self.move_words(NO_STYLE))
        return self.picture()

    def key(self, *keys):
        self.screen.xdotool(*self.move_words(MIDDLE), "key", *keys)

    def quit(self):
        # Without a window manager, a window that another has covered gets the keyboard by a click.
        self.screen.xdotool(*self.move_words(CORNER), "click", 1)
        self.key("ctrl+q")
        self.end(0)

    def answer_file_dialog(self, title, path):
        x, y = self.screen.window(title)
        self.screen.xdotool("mousemove", x + 40, y + 10, "key", "ctrl+a", "type", path)
        self.screen.settle()
        self.screen.xdotool("key", "Return")
        self.screen.wait_until_gone(title)

    def test_from_opening_to_opening_again(self):
        shutil.copy(PHOTOGRAPH, self.path("photo.jpg"))
        self.open("photo.jpg")
        window = self.screen.find("photo.jpg – Corvaline")
        entry = configparser.ConfigParser(interpolation=None)
        entry.read(f"{PROJECT}/desktop/corvaline.desktop", encoding="utf-8")
        of_class = f"^{entry['Desktop Entry']['StartupWMClass']}$"
        self.assertIn(window, self.screen.xdotool("search", "--onlyvisible", "--class", of_class).stdout.split())

        unlit = self.picture_alone()
        self.screen.changes("hovering a style", *self.move_words(A_STYLE))
        wait_for("no style is shown", lambda: self.picture() != unlit)
        self.screen.xdotool(*self.move_words(NO_STYLE))
        wait_for("the style stays", lambda: self.picture() == unlit)
        self.screen.xdotool(*self.move_words(A_STYLE), "click", 1, *self.move_words(NO_STYLE))
        wait_for("the style is not kept", lambda: self.picture() != unlit)
        wait_for("no mark", lambda: self.screen.find(r"photo.jpg\* – Corvaline"))

        for place in MIDDLE, BELOW:
            self.drag("a light out of the lamp", LAMP, place)
        self.drag("the second light", BELOW, (MIDDLE[0] + DRAGGED[0], MIDDLE[1] + DRAGGED[1]))
        dragged = self.picture_alone()
        self.screen.xdotool(*self.move_words(INTENSITY), "click", 1, "key", "ctrl+a", "type", "33")
        self.screen.xdotool("key", "Return")
        wait_for("a number changes nothing", lambda: self.picture_alone() != dragged)

        # Letters are the picture's once it has the keyboard.
        self.screen.xdotool(*self.move_words(CORNER), "click", 1)
        lit = self.picture_alone()
        for what, *words in ("splitting", "key", "y"), ("the original", "keydown", "o"):
            self.screen.xdotool(*words)
            wait_for(what, lambda: self.picture() != lit)
            self.screen.xdotool("key" if words[0] == "key" else "keyup", words[1])
            wait_for("lit again after " + what, lambda: self.picture() == lit)

        self.key("ctrl+shift+s")
        self.answer_file_dialog("Save the image as", self.path("lit.png"))
        wait_for("nothing is saved", lambda: os.path.exists(self.path("lit.png")))
        wait_for("the mark stays", lambda: self.screen.find("lit.png – Corvaline"))
        self.assertIn("equal, every pixel", self.limn("verify", self.path("photo.jpg"), self.path("lit.png")))
        self.limn("apply", self.path("photo.jpg"), "-s", self.path("lit.png"), "-o", self.path("applied.ppm"), "-q")
        saved, applied = (read(self.path(name)).samples for name in ("lit.png", "applied.ppm"))
        self.assertTrue(saved == applied, "what is saved is not what the command gives")
        lights = json.loads(self.limn("style", "show", self.path("lit.png"), "--json"))["lights"]
        self.assertIn(33, [light["intensity"] for light in lights])
        right, down = (two - one for one, two in zip(*(light["center"] for light in lights[-2:])))
        self.assertGreater(right, 0)
        self.assertAlmostEqual(down / right, DRAGGED[1] / DRAGGED[0], delta=0.05)
        self.quit()

        self.open("lit.png")
        again = self.picture_alone()
        differing = sum(one != other for one, other in zip(lit, again))
        self.assertLess(differing, len(lit) // 50, "but for the mark of what is selected")
        self.screen.xdotool(*self.move_words(CORNER), "click", 1, "key", "Delete")  # they are there to be changed
        wait_for("the light cannot be taken away", lambda: self.picture_alone() != again)
        self.key("ctrl+z")
        wait_for("and not be put back", lambda: self.picture_alone() == again)
        self.quit()


unittest.main()
