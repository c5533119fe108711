"""The Debian packages: built and checked as `make deb` does, installed in a fresh Debian, used there, removed."""

import glob
import os
import shutil
import subprocess
import tempfile
import unittest

import support
from fresh_system import FreshSystem

PROJECT = os.environ["PROJECT"]
# Packages that are there already are taken as they are.
PACKAGES = os.environ.get("LIMN_PACKAGES") or os.path.join(os.environ["BUILD"], "packages")
NAMES = {"limn", "corvaline", "liblimn1", "liblimn-dev", "limn-adapters", "python3-limn"}
STYLE = "Evening Lamp"


class Packages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        if not os.environ.get("LIMN_PACKAGES"):
            subprocess.run([PROJECT + "/scripts/deb", PACKAGES], check=True)
        cls.folder = tempfile.mkdtemp(prefix="limn-packages-")
        cls.addClassCleanup(subprocess.run, ["rm", "-rf", "--one-file-system", cls.folder], check=False)
        cls.addClassCleanup(os.chdir, "/")
        cls.system = FreshSystem(cls.folder)
        os.chdir(cls.folder)
        for package in glob.glob(PACKAGES + "/*.deb"):
            shutil.copy(package, cls.system.path("/root"))
        support.write_pnm(cls.system.path("/root/photo.ppm"), support.smooth(160, 120))
        shutil.copy(PROJECT + "/library/examples/light.c", cls.system.path("/root"))

    def samples(self, inside):
        return support.read(self.system.path(inside)).samples

    def assertLit(self, *pictures):
        """They are what the programs of this build make of the photograph."""
        for picture in pictures:
            self.assertEqual(self.samples(picture), self.samples("/root/here.ppm"), picture)

    def limn(self, *words):
        return self.system.run("limn", *words)

    def test_1_are_all_there(self):
        built = {os.path.basename(path).split("_")[0] for path in glob.glob(PACKAGES + "/*.deb")}
        self.assertEqual(built, NAMES)

    def test_1_hold_what_other_programs_read(self):
        for name, files in (("limn", "doc/limn/examples/limn-array.sbatch"),
                            ("corvaline", "applications/limn-in-place.desktop"),
                            ("limn-adapters", "kdenlive/effects/limn.xml")):
            [package] = glob.glob(f"{PACKAGES}/{name}_*.deb")
            self.assertIn(files, subprocess.run(["dpkg", "--contents", package], check=True, capture_output=True,
                                                text=True).stdout)

    def test_2_the_command_alone(self):
        self.system.install(*self.files("limn"))
        self.assertRegex(self.limn("--version"), r"^limn \d+\.\d+\.\d+ \(vectors: \w+\)\n$")
        self.limn("apply", "--quiet", "-s", STYLE, "/root/photo.ppm", "-o", "/root/lit.ppm")
        self.limn("apply", "--quiet", "--through-plugin", "-s", STYLE, "/root/photo.ppm", "-o", "/root/plugin.ppm")
        subprocess.run([support.LIMN, "apply", "--quiet", "-s", STYLE, self.system.path("/root/photo.ppm"), "-o",
                        self.system.path("/root/here.ppm")], check=True)
        self.assertLit("/root/lit.ppm", "/root/plugin.ppm")
        with self.assertRaisesRegex(RuntimeError, "the dialog is not installed"):
            self.limn("edit", "/root/photo.ppm", "-o", "/root/edited.ppm")

    def test_3_the_library(self):
        self.system.install(*self.files("liblimn1", "liblimn-dev"), "gcc", "libc6-dev", "pkg-config")
        self.system.run("sh", "-c", "cd /root && gcc light.c $(pkg-config --cflags --libs limn) -o light")
        self.system.run("/root/light", STYLE, "/root/photo.ppm", "/root/library.ppm")
        self.assertLit("/root/library.ppm")

    def test_4_other_programs(self):
        self.system.install(*self.files("limn-adapters"), "libvips-tools", "ffmpeg", "gegl")
        self.system.run("vips", "limn", "/root/photo.ppm", "/root/vips.ppm", "--style", STYLE)
        self.assertLit("/root/vips.ppm")
        self.system.run("ffmpeg", "-v", "error", "-i", "/root/photo.ppm", "-vf", f"frei0r=limn:{STYLE}", "-pix_fmt",
                        "rgb24", "/root/ffmpeg.ppm")
        self.assertLit("/root/ffmpeg.ppm")
        self.assertIn("limn:light", self.system.run("gegl", "--list-all"))

    def test_4_python(self):
        self.system.install(*self.files("python3-limn"), "mypy")
        self.system.run("python3", "-c", f"""
import limn, numpy
header, samples = open("/root/photo.ppm", "rb").read().split(b"255\\n", 1)
image = numpy.frombuffer(samples, numpy.uint8).reshape(120, 160, 3)
open("/root/numpy.ppm", "wb").write(header + b"255\\n" + limn.light(image, "{STYLE}").tobytes())
""")
        self.assertLit("/root/numpy.ppm")
        with self.assertRaisesRegex(RuntimeError, 'Argument 2 to "light" has incompatible type "int"'):  # it has hints
            self.system.run("mypy", "--strict", "-c", "import limn, numpy; limn.light(numpy.zeros((1, 1, 3), 'u1'), 2)")

    def test_5_the_editor(self):
        self.system.install(*self.files("corvaline"), "desktop-file-utils", "shared-mime-info", "libglib2.0-bin")
        self.assertIn("1.", self.system.run("corvaline", "--version"))
        self.limn("style", "show", STYLE, "--json")
        [style] = glob.glob(self.system.path("/root/.local/share/limn/*/" + STYLE))
        shutil.copy(style, self.system.path("/root/a style"))
        self.assertIn(": application/x-limn-style", self.system.run("gio", "info", "/root/a style"))
        self.system.run("update-desktop-database")
        with open(self.system.path("/usr/share/applications/mimeinfo.cache"), encoding="utf-8") as handlers:
            self.assertIn("application/x-limn-style=limn-style.desktop", handlers.read())
        for page in "limn", "corvaline", "limn-style":
            self.assertTrue(glob.glob(self.system.path(f"/usr/share/man/man?/{page}.?.gz")), page)

    def test_6_leave_nothing(self):
        self.system.run("apt-get", "purge", "-qy", *NAMES)
        left = self.system.run("find", "/usr", "/etc", "-name", "*limn*", "-o", "-name", "*corvaline*").split()
        self.assertEqual(left, [])

    def files(self, *names):
        return ["/root/" + os.path.basename(path) for name in names for path in glob.glob(f"{PACKAGES}/{name}_*.deb")]


support.main()
