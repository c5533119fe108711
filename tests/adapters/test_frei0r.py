"""The frei0r filter in ffmpeg: its frames are the bytes that the command makes of the same picture."""

import ctypes
import json
import os
import subprocess

import support
from support import LimnTest

FILTER = os.environ["LIMN_FREI0R"]
WIDTH, HEIGHT = 64, 48
STYLE = {"gloss": 200, "material": 90, "bumpChannel": 2, "lights": [
    {"type": "omni", "center": [20, -30], "color": [65535, 30000, 9000]}, {"type": "spot", "intensity": 90}]}


class Frei0r(LimnTest):
    def setUp(self):
        super().setUp()
        with open("style.json", "w", encoding="utf-8") as file:
            json.dump(STYLE, file)
        self.picture = support.pattern(WIDTH, HEIGHT, 4)
        support.write_png("in.png", self.picture)

    def frames(self, parameters, count=1):
        """What ffmpeg makes of `count` frames of the picture, and what the filter said."""
        with open("in.raw", "wb") as file:
            file.write(bytes(self.picture.samples) * count)
        answer = subprocess.run(
            ["ffmpeg", "-nostdin", "-v", "error", "-f", "rawvideo", "-pix_fmt", "rgba", "-s", f"{WIDTH}x{HEIGHT}",
             "-i", "in.raw", "-vf", f"frei0r=limn:{parameters}", "-f", "rawvideo", "-pix_fmt", "rgba", "pipe:1"],
            check=True, capture_output=True, timeout=60, env={**os.environ, "FREI0R_PATH": os.path.dirname(FILTER)})
        return answer.stdout, answer.stderr.decode()

    def test_frames_are_those_of_the_command(self):
        for parameters, style, changes in (
                ("style.json", "style.json", []),
                ("Raking Light", "Raking Light", []),
                ("", "Default", []),
                ("style.json|0.5|0.25|1|0|0.2", "style.json",
                 ["gloss=128", "material=64", "exposure=255", "ambientBrightness=-127", "bumpAmplitude=51"]),
                ("style.json|-1|nan|7|1", "style.json", ["exposure=255", "ambientBrightness=127"])):
            options = [word for change in changes for word in ("--set", change)]
            self.limn("apply", "--quiet", "--force", "--style", style, *options, "in.png", "-o", "out.png")
            expected = bytes(support.read("out.png").samples)
            self.assertNotEqual(expected, bytes(self.picture.samples))
            frames, said = self.frames(parameters, 2)
            self.assertEqual(said, "")
            self.assertTrue(frames == 2 * expected, f"{parameters}: other pixels")

    def test_bad_styles_leave_the_frames_and_say_so_once(self):
        with open("broken.json", "w", encoding="utf-8") as file:
            file.write('{"lights": 7')
        os.mkdir("folder")
        for style in ("no.json", "No Such Style", "broken.json", "folder", "%s%n"):
            frames, said = self.frames(style, 3)
            self.assertTrue(frames == bytes(self.picture.samples) * 3, f"{style}: other pixels")
            self.assertEqual(said.count("limn: "), 1, f"{style}: {said}")
            self.assertIn("frames stay as they are", said)

    def test_a_host_that_does_anything(self):
        """Changes between frames, values of no parameter, sizes without a pixel or beyond the limits."""
        library = ctypes.CDLL(FILTER)
        library.f0r_construct.restype = ctypes.c_void_p
        for call in library.f0r_destruct, library.f0r_set_param_value, library.f0r_update:
            call.restype = None
        library.f0r_set_param_value.argtypes = [ctypes.c_void_p, ctypes.c_void_p, ctypes.c_int]
        library.f0r_update.argtypes = [ctypes.c_void_p, ctypes.c_double, ctypes.c_void_p, ctypes.c_void_p]
        library.f0r_destruct.argtypes = [ctypes.c_void_p]

        def lit(filter_, pixels):
            output = ctypes.create_string_buffer(len(pixels))
            library.f0r_update(filter_, 0, ctypes.create_string_buffer(pixels, len(pixels)), output)
            return output.raw

        filter_ = library.f0r_construct(WIDTH, HEIGHT)
        pixels = bytes(self.picture.samples)
        first = lit(filter_, pixels)
        for index in -1, 6, 2**31 - 1:
            library.f0r_set_param_value(filter_, ctypes.byref(ctypes.c_double(1)), index)
        library.f0r_set_param_value(filter_, None, 0)
        library.f0r_set_param_value(filter_, ctypes.byref(ctypes.c_char_p(None)), 0)
        self.assertEqual(lit(filter_, pixels), first)
        library.f0r_set_param_value(filter_, ctypes.byref(ctypes.c_double(0.1)), 3)
        self.assertNotEqual(lit(filter_, pixels), first)
        library.f0r_set_param_value(filter_, ctypes.byref(ctypes.c_double(-1)), 3)
        self.assertEqual(lit(filter_, pixels), first)
        library.f0r_destruct(filter_)
        for width, height in (0, 0), (0, 2**32 - 1), (40000, 1):
            filter_, pixels = library.f0r_construct(width, height), bytes(range(160)) * 1000
            pixels = pixels[: 4 * width * height]
            self.assertEqual(lit(filter_, pixels), pixels)
            library.f0r_destruct(filter_)

    def test_exports_the_contract_alone(self):
        symbols = subprocess.run(["nm", "-D", "--defined-only", "--format=posix", FILTER], check=True,
                                 capture_output=True, text=True).stdout
        self.assertTrue(all(line.startswith("f0r_") for line in symbols.splitlines()), symbols)


support.main()
