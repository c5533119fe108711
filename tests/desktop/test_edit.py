"""limn edit from outside: real windows, a mouse and a keyboard."""

import json
import os
import shutil
import subprocess
import unittest

from case import LIMN, PHOTOGRAPH, PROJECT, DesktopCase
from screen import wait_for
from support import content, put, vips

HEIGHTS = f"{PROJECT}/resources/photos/still-life-height.png"
STYLE = "A light by hand"  # right after the default style
OK, SAVE, WORK_AREA, LIGHT_TYPE, RELIEF, GLOSS, STYLES, WELL, BIN = 1, 4, 6, 11, 12, 13, 20, 21, 22

with open(f"{PROJECT}/resources/en/dialogs.json") as file:
    ITEMS = {item["number"]: item for item in json.load(file)["DLOG"]["16000"]["items"]}


def middle(item):
    left, top, width, height = ITEMS[item]["box"]
    return left + width // 2, top + height // 2


class Edit(DesktopCase):
    def start_dialog(self, *command):
        self.start("Lighting", *command)

    def style(self, name):
        return json.loads(self.limn("style", "show", name, "--json"))

    # Places are in the dialog.

    def press_item(self, item):
        self.screen.xdotool(*self.move_words(middle(item)), "click", 1)

    def choose(self, item, *keys):
        """Opens a popup, walks through it, and takes what is reached."""
        self.screen.changes(f"popup {item}", *self.move_words(middle(item)), "click", 1)
        for key in keys:
            self.screen.changes(f"{key} in popup {item}", "key", key)
        self.screen.changes(f"choosing in popup {item}", "key", "Return")

    @staticmethod
    def body(light):
        """Where a light is in the dialog: the frame's middle is the origin of lights."""
        x, y = middle(WORK_AREA)
        return x + light["center"][0], y + light["center"][1]

    def save_style(self, name):
        self.press_item(SAVE)
        x, y = self.screen.window("Save Style")
        self.screen.xdotool("mousemove", x + 100, y + 20)
        self.screen.changes("typing", "key", "ctrl+a", "type", name)
        self.screen.xdotool("key", "Return")
        self.screen.wait_until_gone("Save Style")
        wait_for("no style file", lambda: os.path.exists(self.path(f"data/limn/Lighting Styles/{name}")))
        self.screen.settle()

    def test_lighting_by_hand(self):
        put(self.path("mask, half.pgm"), b"P5\n1800 1200\n255\n" + bytes(at * 255 // 1799 for at in range(1800)) * 1200)
        around = ["--channel", HEIGHTS, "--mask", self.path("mask, half.pgm"), "--area", "100,50,1500,1100"]
        self.start_dialog(LIMN, "edit", PHOTOGRAPH, *around, "--print-command", "-o", self.path("lit.png"))
        first = self.style("Default")["lights"][0]
        start = self.body(first)
        moved = (start[0] + 30, start[1] + 24)
        self.drag("the light", start, moved)
        handle = (moved[0] + first["handle1"][0], moved[1] + first["handle1"][1])
        self.drag("a handle", handle, (handle[0] + 20, handle[1] + 12))
        self.drag("the well", middle(WELL), (60, 80))
        self.screen.xdotool("keydown", "alt")
        self.drag("a copy", (60, 80), (250, 60))
        self.screen.xdotool("keyup", "alt")
        self.drag("the new light", (60, 80), middle(BIN))
        self.screen.changes("selecting the copy", *self.move_words((250, 60)), "click", 1)
        self.choose(LIGHT_TYPE, "Up")  # the spotlight becomes an omni light
        self.choose(RELIEF, *["Down"] * 4)
        left, top, width, height = ITEMS[GLOSS]["box"]
        self.drag("the gloss", self.gloss_knob(), (left + width - 60, self.gloss_knob()[1]))
        self.save_style(STYLE)

        style = self.style(STYLE)
        self.assertEqual([light["type"] for light in style["lights"]], ["spot", "omni"])
        self.assertEqual([self.body(light) for light in style["lights"]], [moved, (250, 60)])
        self.assertNotEqual(style["lights"][0]["handle1"], first["handle1"])
        self.assertEqual(style["bumpChannel"], 4)
        self.assertGreater(style["gloss"], 150)

        # Another style and back: what is lit is what the file says.
        self.assertEqual(self.limn("styles").splitlines()[:2], ["Default", STYLE])
        self.choose(STYLES, "Up")
        self.choose(STYLES, "Down")
        self.press_item(OK)
        command = self.end(0)
        self.limn("apply", PHOTOGRAPH, *around, "-s", STYLE, "-o", self.path("applied.png"), "-q")
        self.assertSameFiles("lit.png", "applied.png")
        os.rename(self.path("lit.png"), self.path("by hand.png"))
        subprocess.run(["sh", "-c", command], check=True, capture_output=True, timeout=600,
                       env={**os.environ, "PATH": f"{os.path.dirname(LIMN)}:{os.environ['PATH']}"})
        self.assertSameFiles("lit.png", "by hand.png")

    def deep_photograph(self, name, depth, scale, space):
        """The photograph with values between those of bytes."""
        vips("linear", PHOTOGRAPH, self.path("scaled.v"), str(scale), str(scale / 3))
        vips("cast", self.path("scaled.v"), self.path("cast.v"), depth)
        vips("copy", self.path("cast.v"), self.path(name), "--interpretation", space)
        return self.path(name)

    def test_beginning_with_a_style(self):
        """What is lit is what limn apply lights by itself, at the picture's own depth."""
        words = self.deep_photograph("words.png", "ushort", 250.3, "rgb16")
        floats = self.deep_photograph("floats.tif", "float", 1 / 200, "scrgb")  # beyond white too
        vips("extract_band", words, self.path("slope.png"), "1")
        relief = {**self.style("Campfire"), "bumpChannel": 4, "bumpAmplitude": 40}
        around = ["--channel", self.path("slope.png"), "--mask", HEIGHTS, "--area", "100,50,1500,1100"]
        for photograph, name, style, options in [
                (PHOTOGRAPH, "lit.png", "Campfire", []),
                (PHOTOGRAPH, "lit.jpg", json.dumps(relief), around),
                (words, "lit.png", json.dumps(relief), around),
                (floats, "lit.tif", "Campfire", []),
                (floats, "lit.ppm", "Campfire", []),
                (words, "lit.jpg", "Campfire", [])]:
            with self.subTest(photograph=photograph, name=name):
                self.start_dialog(LIMN, "edit", photograph, *options, "-s", style, "-o", self.path(name),
                                  "--print-command")
                self.press_item(OK)
                command = self.end(0, "16 bits a channel become 8" if (photograph, name) == (words, "lit.jpg") else "")
                self.assertNotIn("--depth", command)
                self.limn("apply", photograph, *options, "-s", style, "-o", self.path("applied-" + name), "-q", "-f")
                self.assertSameFiles(name, "applied-" + name)
                os.remove(self.path(name))

    def test_writing_that_fails(self):
        answer = subprocess.run([LIMN, "edit", PHOTOGRAPH, "-o", "/proc/lit.png"], capture_output=True, text=True,
                                env=self.screen.environment(), timeout=600)
        self.assertEqual(answer.returncode, 4, "before the dialog")
        self.start_dialog(LIMN, "edit", PHOTOGRAPH, "-s", "Campfire", "-o", self.path("lit.png"))
        os.symlink("nowhere", self.path("lit.png"))
        self.press_item(OK)
        self.end(4, "the lights are those of: limn apply ")

    def gloss_knob(self):
        """The indicator's place, which stands for the default style's gloss."""
        left, top, width, height = ITEMS[GLOSS]["box"]
        start = left + ITEMS[GLOSS]["refCon"][1]
        return start + (left + width - start) * self.style("Default")["gloss"] // 255, top + 18

    def test_cancel(self):
        self.start_dialog(LIMN, "edit", PHOTOGRAPH, "-o", self.path("lit.png"))
        window = self.screen.find("Lighting")
        self.assertEqual(self.screen.xdotool("getwindowname", window).stdout, "Lighting — still-life.jpg\n")
        self.assertTrue(os.path.exists(f"{PROJECT}/desktop/limn.desktop"))
        self.assertIn(window, self.screen.xdotool("search", "--onlyvisible", "--class", "^limn$").stdout.split())
        self.screen.xdotool(*self.move_words(middle(WORK_AREA)), "key", "Escape")
        self.end(1)
        self.assertFalse(os.path.exists(self.path("lit.png")))

    def test_in_place_for_photo_managers(self):
        shutil.copy(PHOTOGRAPH, self.path("photo.jpg"))
        os.environ["PATH"] = f"{os.path.dirname(LIMN)}:{os.environ['PATH']}"
        self.limn("apply", self.path("photo.jpg"), "-o", self.path("lit.jpg"))
        for key, expected in ("Escape", PHOTOGRAPH), ("Return", self.path("lit.jpg")):
            self.start_dialog(f"{PROJECT}/contrib/photo-managers/limn-in-place", self.path("photo.jpg"))
            self.screen.xdotool(*self.move_words(middle(WORK_AREA)), "key", key)
            self.end(0)
            self.assertTrue(content(self.path("photo.jpg")) == content(expected), key)

    def test_a_long_run_can_be_cancelled(self):
        style = self.style("Campfire")
        style.update(lights=(style["lights"] * 16)[:16], bumpChannel=1, bumpAmplitude=99)
        for top, samples in (255, 3), (65535, 6):
            put(self.path("large.ppm"), b"P6\n6000 4000\n%d\n" % top + bytes(range(240)) * (100000 * samples))
            self.start_dialog(LIMN, "edit", self.path("large.ppm"), "-s", json.dumps(style), "-o", self.path("lit.ppm"))
            self.screen.xdotool(*self.move_words(middle(WORK_AREA)), "key", "Return")
            # Without a window manager keys go to the window under the mouse.
            name = wait_for("no progress", lambda: self.screen.find("Limn"))
            self.screen.xdotool("mousemove", "--window", name, 20, 20, "key", "Escape")
            self.end(1)
            self.assertEqual(sorted(os.listdir(self.folder)), ["data", "large.ppm"])

    def test_without_a_display(self):
        environment = {name: value for name, value in os.environ.items()
                       if name not in ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM")}
        answer = subprocess.run([LIMN, "edit", PHOTOGRAPH, "-o", self.path("lit.png")], env=environment,
                                capture_output=True, text=True, timeout=600)
        self.assertEqual((answer.returncode, answer.stderr), (6, "limn: there is no display to show the dialog on\n"))


unittest.main()
