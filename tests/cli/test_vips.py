"""The operation that the module adds to libvips lights as the command does, also when called from Python."""

import os
import platform
import subprocess
import sys

import support

MODULE = os.environ.get("LIMN_VIPS_MODULE", "")

FROM_PYTHON = """
import ctypes
import gi
import sys
gi.require_version("Vips", "8.0")
from gi.repository import Vips
Vips.init("test")

def call(name, **settings):
    operation = Vips.Operation.new(name)
    for key, value in settings.items():
        setattr(operation.props, key, value)
    if operation.build() != 0:
        raise SystemExit(Vips.error_buffer())
    return operation

# As a program may have set it: rounding upwards.
if len(sys.argv) > 1:
    ctypes.CDLL("libm.so.6").fesetround(int(sys.argv[1]))
image = call("ppmload", filename="in.ppm").props.out
lit = call("limn", **{"in": image, "style": "Evening Lamp"}).props.out
call("ppmsave", **{"in": lit, "filename": "python.ppm"})
"""


class VipsOperation(support.LimnTest):
    def setUp(self):
        super().setUp()
        # libvips looks for its modules from a folder that the environment names; where below it differs.
        folder = os.path.dirname(os.path.abspath(MODULE))
        for place in ["home", "home/lib", "home/x86_64-linux-gnu", "home/lib/x86_64-linux-gnu"]:
            os.makedirs(place, exist_ok=True)
            os.symlink(folder, os.path.join(place, os.path.basename(folder)))
        self.env = {**os.environ, "VIPSHOME": os.path.abspath("home")}
        support.write_pnm("in.ppm", support.pattern(90, 70, 3))
        support.write_pnm("plane.pgm", support.pattern(90, 70, 1, seed=5))

    def vips(self, *arguments, says=None):
        answer = subprocess.run(["vips", *arguments], capture_output=True, text=True, env=self.env, timeout=600)
        self.assertEqual(answer.returncode != 0, says is not None, answer.stderr)
        self.assertIn(says or "", answer.stderr)

    def test_same_as_the_command(self):
        for operation, command in [
                (["--style", "Evening Lamp"], ["-s", "Evening Lamp"]),
                (["--relief", "plane.pgm"], ["--channel", "plane.pgm", "--set", "bumpChannel=4"]),
                (["--mask", "plane.pgm", "--set", "gloss=70; light.0.intensity=200", "--left", "7", "--width", "50"],
                 ["--mask", "plane.pgm", "--set", "gloss=70", "--set", "light.0.intensity=200", "--area", "7,0,50,70"])]:
            with self.subTest(command):
                self.vips("limn", "in.ppm", "vips.ppm", *operation)
                self.limn("apply", "in.ppm", *command, "-o", "limn.ppm", "-qf")
                self.assertSame(support.read("vips.ppm"), support.read("limn.ppm"))

    def test_deep(self):
        support.write_pnm("deep.ppm", support.pattern(90, 70, 3, depth=16))
        self.vips("limn", "deep.ppm", "vips.ppm", "--style", "Evening Lamp")
        self.limn("apply", "deep.ppm", "-s", "Evening Lamp", "-o", "limn.ppm", "-q")
        self.assertEqual(support.read("vips.ppm").depth, 16)
        self.assertSame(support.read("vips.ppm"), support.read("limn.ppm"))

    def test_refusals(self):
        support.vips("cast", "in.ppm", "int.v", "int")
        support.write_pnm("wide.ppm", support.filled(32768, 1, 9, 3))
        for arguments, says in [(["plane.pgm"], "red, green and blue"), (["int.v"], "8 or 16 bits or float"),
                                (["wide.ppm"], "more than 32767"),
                                (["in.ppm", "--style", "nowhere"], "nowhere: no such file or directory, and no bundled style"),
                                (["in.ppm", "--style", "plane.pgm"], "plane.pgm: "),
                                (["in.ppm", "--set", "gloss"], "KEY=VALUE"), (["in.ppm", "--set", "glos=1"], "glos"),
                                (["in.ppm", "--left", "80", "--width", "11"], "outside"),
                                (["in.ppm", "--relief", "in.ppm"], "one band")]:
            with self.subTest(arguments):
                self.vips("limn", arguments[0], "out.ppm", *arguments[1:], says=says)

    def test_from_python(self):
        self.limn("apply", "in.ppm", "-s", "Evening Lamp", "-o", "limn.ppm", "-q")
        upwards = {"x86_64": ["2048"], "aarch64": ["4194304"]}.get(platform.machine(), [])
        for rounding in [], upwards:
            subprocess.run(["/usr/bin/python3", "-c", FROM_PYTHON, *rounding], check=True, env=self.env, timeout=600)
            self.assertSame(support.read("python.ppm"), support.read("limn.ppm"), f"rounding {rounding}")


support.main()
