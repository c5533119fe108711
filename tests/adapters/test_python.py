"""The Python package: arrays come out as the command writes the same pixels, in whatever way they lie in memory."""

import copy
import json
import os
import pickle
import signal
import subprocess
import sys
import threading
import time

import limn
import numpy as np
import support
from adapter_cases import STYLE, AdapterTest

WIDTH, HEIGHT = 90, 70
# Ways to lay out the same array; what the C library cannot take is copied.
LAYOUTS = {
    "packed": lambda a: a,
    "upwards": lambda a: a[::-1].copy()[::-1],
    "mirrored": lambda a: a[:, ::-1].copy()[:, ::-1],
    "colours backwards": lambda a: a[..., ::-1].copy()[..., ::-1],
    "planes": lambda a: np.moveaxis(np.moveaxis(a, 2, 0).copy(), 0, 2),
    "turned": lambda a: a.swapaxes(0, 1).copy().swapaxes(0, 1),
    "with gaps": lambda a: np.repeat(a, 2, axis=0)[::2],
    "every other pixel": lambda a: np.repeat(a, 2, axis=1)[:, ::2],
    "unaligned": lambda a: np.frombuffer(bytearray(b"?" + a.tobytes()), a.dtype, a.size, 1).reshape(a.shape),
    "another buffer": lambda a: a.view(np.ndarray).copy(),
}


def array_of(path):
    picture = support.read(path)
    kind = {8: np.uint8, 16: np.uint16, 32: np.float32}[picture.depth]
    return np.array(picture.samples, kind).reshape(picture.height, picture.width, picture.bands)


class Python(AdapterTest):
    def setUp(self):
        super().setUp()
        self.style = limn.Style.load("style.json")

    def command(self, image, *options):
        self.limn("apply", "--quiet", "--force", "--style", "style.json", *options, image, "-o", "lit.tif")
        return array_of("lit.tif")

    def assertEqualArrays(self, one, other, note=""):
        self.assertEqual((one.shape, one.dtype), (other.shape, other.dtype), note)
        self.assertTrue(np.array_equal(one, other), note)

    def pictures(self):
        """A file of every depth and its array; alpha where it is deep."""
        support.write_png("bytes.png", support.pattern(WIDTH, HEIGHT, 3))
        support.write_png("words.png", support.pattern(WIDTH, HEIGHT, 4, 16))
        support.vips("linear", "--", "words.png", "floats.tif", 2 / 65535, -0.3)
        for name in "bytes.png", "words.png", "floats.tif":
            yield name, array_of(name)

    def test_every_depth_area_and_relief(self):
        support.write_png("8.png", support.pattern(WIDTH, HEIGHT, 1, 8, seed=5))
        support.write_png("16.png", support.pattern(WIDTH, HEIGHT, 1, 16, seed=6))
        for name, image in self.pictures():
            before = image.copy()
            self.assertEqualArrays(limn.light(image, self.style), self.command(name), name)
            self.assertEqualArrays(limn.light(image, self.style, area=(7, 9, 50, 40), threads=1),
                                   self.command(name, "--area", "7,9,50,40"), name)
            for heights in "8.png", "16.png":
                relief = array_of(heights)[..., 0]
                expected = self.command(name, "--channel", heights, "--set", f"bumpChannel={image.shape[2] + 1}")
                for way in LAYOUTS:
                    lit = limn.light(image, self.style, relief=LAYOUTS[way](relief[..., None])[..., 0])
                    self.assertEqualArrays(lit, expected, f"{name} {heights} {way}")
                heights_as_floats = relief / np.float32(np.iinfo(relief.dtype).max)
                self.assertEqualArrays(limn.light(image, self.style, relief=heights_as_floats), expected, name)
            self.assertEqualArrays(image, before, name)

    def test_heights(self):
        """As the command makes them, of a picture and of one channel."""
        for name, image in list(self.pictures())[:2]:  # floats are linear light to the command
            for given, options in [({}, []), ({"source": "green", "smoothing": 40, "detail": 200, "invert": True},
                                              ["--relief", "green", "--relief-smoothing", "40", "--relief-detail", "200",
                                               "--relief-invert"])]:
                self.limn("heights", name, "-o", "heights.tif", "-f", *options)
                wanted = array_of("heights.tif")[..., 0]
                self.assertEqualArrays(limn.heights(image, **given), wanted, f"{name} {given}")
            self.assertEqualArrays(limn.heights(image[..., 1], smoothing=40, source=1, detail=200, invert=True), wanted)
        for wrong in [{"source": "grün"}, {"source": 4}, {"detail": 1001}, {"smoothing": -2}]:
            with self.assertRaises(limn.ArgumentError):
                limn.heights(np.zeros((4, 4, 3), np.uint8), **wrong)

    def test_many_workers(self):
        """The example for Dask lights what the command lights, tells what it cannot, and does nothing twice."""
        support.write_pnm("in.ppm", support.pattern(WIDTH, HEIGHT, 3))
        for name in "in/a.ppm", "in/b/c.png":
            os.makedirs(os.path.dirname(name), exist_ok=True)
            support.vips("copy", "in.ppm", name)
        support.put("in/bad.jpg", b"\xff\xd8 none")
        example = os.path.join(os.path.dirname(__file__), "../../contrib/dask/light_folder.py")
        told = [subprocess.run([sys.executable, example, "in", "lit", "--style", "style.json"], capture_output=True, text=True)
                for _ in range(2)]
        self.assertEqual([run.returncode for run in told], [3, 3], told[0].stderr)
        self.assertRegex(told[0].stdout, "3/3 ")
        self.assertRegex(told[1].stdout, "^1/1 in/bad.jpg: cannot identify")
        self.limn("apply", "--quiet", "-r", "--style", "style.json", "in", "-o", "wanted/", code=3)
        for name in "a.ppm", "b/c.png":
            self.assertEqualArrays(array_of(f"lit/{name}"), array_of(f"wanted/{name}"), name)
        self.assertEqual(sorted(os.listdir("lit")), ["a.ppm", "b"])

    def test_every_layout(self):
        for name, image in self.pictures():
            expected = limn.light(image, self.style)
            for way, lay_out in LAYOUTS.items():
                note = f"{name} {way}"
                laid = lay_out(image.copy())
                self.assertEqualArrays(limn.light(laid, self.style), expected, note)
                self.assertEqualArrays(laid, image, note)
                out = lay_out(np.zeros_like(image))
                self.assertIs(limn.light(image, self.style, out=out), out)
                self.assertEqualArrays(out, expected, note)
                self.assertIs(limn.light(laid, self.style, out=laid), laid)  # in place
                self.assertEqualArrays(laid, expected, note)
            mapped = np.memmap("map", image.dtype, "w+", shape=image.shape)
            mapped[:] = image
            self.assertIs(limn.light(mapped, self.style, out=mapped), mapped)
            self.assertEqualArrays(np.asarray(mapped), expected, name)

    def test_what_cannot_be(self):
        image = array_of(next(self.pictures())[0])
        read_only = image.copy()
        read_only.flags.writeable = False
        whole = np.zeros((HEIGHT + 1, WIDTH, 3), np.uint8)
        cases = (("its shape is .70, 90., not", image[..., 0], {}),
                 ("channels: 2 is not", image[..., :2], {}),
                 ("width: 0 is not", image[:, :0], {}),
                 ("height: 32768 is more", np.broadcast_to(image[:1], (32768, WIDTH, 3)), {}),
                 ("image: its samples are int64, not", image.astype(np.int64), {}),
                 ("image: its samples are >u2, not", image.astype(">u2"), {}),
                 ("relief: its shape is", image, {"relief": image}),
                 ("relief: its shape is", image, {"relief": image[1:, :, 0]}),
                 ("relief: its samples are bool", image, {"relief": image[..., 0] > 9}),
                 ("area: it is empty", image, {"area": (0, 0, 0, 0)}),
                 ("area: -1 is not", image, {"area": (-1, 0, 5, 5)}),
                 ("area.width: 90 is not", image, {"area": (1, 0, 90, 5)}),
                 ("out: it is not of the image's", image, {"out": whole}),
                 ("out: it is not of the image's", image, {"out": image.astype(np.uint16)}),
                 ("out: it is read-only", image, {"out": read_only}),
                 ("shares bytes", whole[1:], {"out": whole[:-1]}))
        for sentence, given, options in cases:
            with self.assertRaisesRegex(limn.ArgumentError, sentence):
                limn.light(given, self.style, **options)
        for options in {"out": [[1]]}, {"relief": [[1]]}, {"area": "whole"}, {"threads": "two"}:
            with self.assertRaises(TypeError):
                limn.light(image, self.style, **options)
        self.assertTrue(issubclass(limn.ArgumentError, ValueError) and issubclass(limn.NoMemoryError, MemoryError))
        for make, kind, base in ((lambda: limn.Style.load("no.json"), limn.ReadError, OSError),
                                 (lambda: limn.Style.load("broken.json"), limn.StyleError, ValueError),
                                 (lambda: limn.Style.from_json("{"), limn.StyleError, ValueError),
                                 (lambda: limn.light(image, "No Such Style"), limn.StyleError, limn.Error),
                                 (lambda: limn.Style("Default\0"), limn.ArgumentError, ValueError)):
            with self.assertRaises(base) as caught:
                make()
            self.assertIs(type(caught.exception), kind, caught.exception)

    def test_styles(self):
        style = self.style
        self.assertEqual({key: style[key] for key in STYLE if key != "lights"},
                         {key: value for key, value in STYLE.items() if key != "lights"})
        style.exposure = 150
        style["light.1.center"] = style.lights[0].center
        style.lights[0].color = style.lights[1]["color"] = (200, 100, 65535)
        style["light.2.type"] = "sun"
        self.assertEqual([light.type for light in style.lights], ["omni", "spot", "directional"])
        self.assertEqual((style.exposure, style["light.1.center.1"], style.lights[0].color), (150, -30, [200, 100, 65535]))
        for other in style.copy(), copy.deepcopy(style), pickle.loads(pickle.dumps(style)):
            self.assertEqual(other, style)
            other.lights[0].on = False
            self.assertNotEqual(other, style)
            self.assertEqual(json.loads(other.to_json())["lights"][0]["on"], False)
        for key, value in (("glos", 1), ("gloss", 99999), ("light.9.type", "omni"), ("gloss\0", 1)):
            with self.assertRaises(limn.ArgumentError):
                style[key] = value
        self.assertFalse(hasattr(style, "glos") or hasattr(style.lights[0], "gloss") or "light.7.type" in style)
        self.assertIn("exposure", dir(style))
        for name in limn.styles():
            limn.Style(name)
        self.assertGreaterEqual(len(limn.styles()), 30)

    def test_others_run_meanwhile(self):
        """Lighting lets go of the lock, and a style that is changed meanwhile lights as it was or as it is."""
        for i in range(2, 16):
            self.style[f"light.{i}.type"] = "omni"
        image, changed, results, ticks = np.zeros((1000, 2000, 3), np.uint8), self.style.copy(), [], 0
        changed.gloss = 90
        expected = [limn.light(image, style) for style in (self.style, changed)]
        thread = threading.Thread(target=lambda: results.append(limn.light(image, self.style, threads=1)))
        thread.start()
        while not results:
            time.sleep(0.001)
            ticks += 1
            if ticks == 3:
                self.style.gloss = 90
        thread.join()
        self.assertGreater(ticks, 5)
        self.assertTrue(any(np.array_equal(results[0], one) for one in expected))

    def test_ctrl_c_ends_a_long_call(self):
        program = ("import limn, numpy\nstyle = limn.Style.load('style.json')\n"
                   "for i in range(2, 16): style[f'light.{i}.type'] = 'omni'\n"
                   "image = numpy.full((8000, 8000, 3), 99, numpy.uint8)\nout = numpy.zeros_like(image)\n"
                   "print('began', flush=True)\ntry: limn.light(image, style, out=out, threads=1)\n"
                   "except KeyboardInterrupt: print('ended', out[0].any(), out[-1].any())")
        with subprocess.Popen([sys.executable, "-c", program], stdout=subprocess.PIPE, text=True) as process:
            process.stdout.readline()
            time.sleep(0.3)
            process.send_signal(signal.SIGINT)
            self.assertEqual(process.communicate(timeout=60)[0], "ended True False\n")

    def test_types(self):
        support.put("user.py", """import numpy as np
import limn
image = np.zeros((4, 5, 3), np.uint16)
style = limn.Style("Evening Lamp")
style.lights[0].center = (3, 4)
reveal_type(limn.light(image, style, relief=np.zeros((4, 5), np.float32), area=(0, 0, 2, 2), out=image))
limn.light(np.zeros((4, 5, 3)), style)
limn.light(image, style, out=np.zeros((4, 5, 3), np.uint8))
""")
        def told(*what):
            return subprocess.run([sys.executable, "-m", "mypy", "--strict", *what], capture_output=True, text=True,
                                  env={**os.environ, "MYPYPATH": os.path.dirname(os.path.dirname(limn.__file__))}).stdout
        self.assertIn("Success", told("-p", "limn"))
        user = told("user.py")
        self.assertRegex(user, "user.py:6: note: Revealed type is .*unsignedinteger")
        self.assertEqual({line.split(":")[1] for line in user.splitlines() if " error: " in line}, {"7", "8"}, user)


support.main()
