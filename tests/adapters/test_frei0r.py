"""The frei0r filter in ffmpeg and melt: its frames are the bytes that the command makes of the same picture."""

import contextlib
import ctypes
import os
import re
import subprocess
from xml.etree import ElementTree

import support
from adapter_cases import CASES, NO_STYLES, SLIDERS, AdapterTest

FILTER = os.environ["LIMN_FREI0R"]
WIDTH, HEIGHT = 64, 48
WIDTHS = WIDTH, 1, 17, 854, 1080, 1366


class Frei0r(AdapterTest):
    def setUp(self):
        super().setUp()
        self.picture = support.pattern(WIDTH, HEIGHT, 4)
        support.write_png("in.png", self.picture)

    def frames(self, parameters, count=1, filters="{}"):
        """What ffmpeg makes of `count` frames of the picture, and what the filter said. `filters` go around it."""
        support.put("in.raw", bytes(self.picture.samples) * count)
        answer = subprocess.run(
            ["ffmpeg", "-nostdin", "-v", "error", "-f", "rawvideo", "-pix_fmt", "rgba", "-s",
             f"{self.picture.width}x{self.picture.height}", "-i", "in.raw", "-vf", filters.format(f"frei0r=limn:{parameters}"),
             "-f", "rawvideo", "-pix_fmt", "rgba", "pipe:1"],
            check=True, capture_output=True, timeout=600, env={**os.environ, "FREI0R_PATH": os.path.dirname(FILTER)})
        return answer.stdout, answer.stderr.decode()

    def test_frames_are_those_of_the_command(self):
        for style, sliders, changes in (*CASES, ("style.json", (0.5, "nan", 7, -1), ("exposure=255", "ambientBrightness=-127"))):
            parameters = "|".join(map(str, (style, *sliders)))
            frames, said = self.frames(parameters, 2)
            self.assertEqual(said, "")
            self.assertTrue(frames == 2 * bytes(self.lit("in.png", style, changes).samples), f"{parameters}: other pixels")

    def test_frames_of_any_width(self):
        """ffmpeg pads rows to what vectors like and does not say so: the line of the documentation."""
        for width in WIDTHS:
            self.picture = support.pattern(width, HEIGHT, 4)
            support.write_png("in.png", self.picture)
            frames, said = self.frames(f"style.json|0.5|0.5|0.5|0.5|0.5|{width}x{HEIGHT}", 2,
                                       f"format=rgba,pad=ceil(iw/16)*16:ih,{{}},crop={width}:{HEIGHT}:0:0")
            self.assertEqual(said, "")
            self.assertTrue(frames == 2 * bytes(self.lit("in.png", "style.json").samples), f"{width}: other pixels")
        for area in "854", "854x", "1x2x3", "99999999999x1", "0x1", "-1x1", f"1x{HEIGHT + 1}":
            frames, said = self.frames(f"style.json|0.5|0.5|0.5|0.5|0.5|{area}", 1, "pad=ceil(iw/16)*16:ih,{}")
            self.assertIn("area", said)

    def test_melt_cuts_the_same_frames(self):
        for width in WIDTHS:
            self.melt(width)

    def melt(self, width):
        """Square pixels and the picture's own size, so that melt has nothing to scale."""
        with open("profile", "w", encoding="utf-8") as file:
            file.write(f"description=Small\nwidth={width}\nheight={HEIGHT}\nframe_rate_num=25\nframe_rate_den=1\nprogressive=1\n"
                       f"sample_aspect_num=1\nsample_aspect_den=1\ndisplay_aspect_num={width}\n"
                       f"display_aspect_den={HEIGHT}\ncolorspace=709\n")
        support.write_png("opaque.png", support.pattern(width, HEIGHT, 3))
        style, sliders, changes = CASES[-1]
        values = [f"{number}={value}" for number, value in enumerate((style, *sliders))]
        command = ["melt", "-silent", "-profile", "profile", "opaque.png", "out=1", "-attach", "frei0r.limn", *values,
                   "-consumer", "avformat:melt.raw", "f=rawvideo", "vcodec=rawvideo", "pix_fmt=rgba",
                   "mlt_image_format=rgba", "an=1", "real_time=-1"]
        for _ in range(20):  # a busy machine's melt may end before its first frame or never, whatever the filter
            support.put("melt.raw", b"")
            with contextlib.suppress(subprocess.TimeoutExpired):
                subprocess.run(command, check=True, capture_output=True, timeout=20,
                               env={**os.environ, "MLT_FREI0R_PLUGIN_PATH": os.path.dirname(FILTER)})
            if support.content("melt.raw"):
                break
        rows = self.lit("opaque.png", style, changes).samples
        expected = b"".join(bytes(rows[at : at + 3]) + b"\xff" for at in range(0, len(rows), 3))
        self.assertTrue(support.content("melt.raw") == 2 * expected, f"{width}: other pixels")

    def test_bad_styles_leave_the_frames_and_say_so_once(self):
        for style in NO_STYLES:
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
        for index in -1, 7, 2**31 - 1:
            library.f0r_set_param_value(filter_, ctypes.byref(ctypes.c_double(1)), index)
        library.f0r_set_param_value(filter_, None, 0)
        for text in 0, 6:
            library.f0r_set_param_value(filter_, ctypes.byref(ctypes.c_char_p(None)), text)
        self.assertEqual(lit(filter_, pixels), first)
        library.f0r_set_param_value(filter_, ctypes.byref(ctypes.c_double(0.1)), 3)
        self.assertNotEqual(lit(filter_, pixels), first)
        library.f0r_set_param_value(filter_, ctypes.byref(ctypes.c_double(0.5)), 3)
        self.assertEqual(lit(filter_, pixels), first)
        library.f0r_destruct(filter_)
        for width, height in (0, 0), (0, 2**32 - 1), (40000, 1):
            filter_, pixels = library.f0r_construct(width, height), bytes(range(160)) * 1000
            pixels = pixels[: 4 * width * height]
            self.assertEqual(lit(filter_, pixels), pixels)
            library.f0r_destruct(filter_)

    def test_editors_know_the_parameters(self):
        """As melt lists them, for the editors that are built on it, and as Kdenlive's description has them."""
        listed = subprocess.run(["melt", "-query", "filter=frei0r.limn"], check=True, capture_output=True, text=True,
                                env={**os.environ, "MLT_FREI0R_PLUGIN_PATH": os.path.dirname(FILTER)}).stdout
        listed = re.findall(r"- identifier: (\d)\n    title: (\w+)\n.*?default: (\S+)\n", listed, re.DOTALL)
        self.assertEqual([float(default) for _, _, default in listed[1:]], [0.5] * len(SLIDERS))  # the area has none
        effect = ElementTree.parse(os.path.join(os.path.dirname(__file__), "../../contrib/kdenlive/limn.xml")).getroot()
        self.assertEqual([(one.get("name"), one.find("name").text.lower(), one.get("default"))
                          for one in effect.iter("parameter")], listed)


support.main()
