"""Hostile files, folders, file systems and sizes: a sentence and nothing left, or a correct picture."""

import json
import os
import random
import shutil
import struct
import subprocess
import sys
import threading
import time
import unittest
import zlib

import support
from support import LIMN, content, png_chunk, put

IS_DEEP = "deep" in sys.argv
SHRINKS = 200 if IS_DEEP else 12
BAD_INPUT, CANNOT_WRITE = 3, 4
MOST_RESIDENT = 200 * 1024  # kB
MOST_SECONDS = 30  # of a processor, however slow: what is refused late takes minutes
NOBODY = 65534
STYLES = "data/limn/Lighting Styles"


def sparse(path, size, start=b""):
    put(path, start)
    os.truncate(path, size)


def png(width, height, *before, interlaced=0):
    head = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, interlaced)
    return support.PNG + b"".join(png_chunk(*one) for one in (
        (b"IHDR", head), *before, (b"IDAT", zlib.compress(bytes(10**6))), (b"IEND", b"")))


def gif(width, height):
    return (b"GIF89a" + struct.pack("<HHBBB", width, height, 0x80, 0, 0) + b"\0\0\0\xff\xff\xff,"
            + struct.pack("<HHHHB", 0, 0, width, height, 0) + b"\2\2\x4c\1\0;")


def webp(width, height):
    """One colour, without loss."""
    bits = width - 1 | height - 1 << 14 | 0b0001_0001_0001_0001_0001_000 << 32
    body = b"\x2f" + bits.to_bytes(15, "little")
    return b"RIFF" + struct.pack("<I", 12 + len(body)) + b"WEBPVP8L" + struct.pack("<I", len(body)) + body


def tiff(width, height, *tags):
    usual = [(256, 4, 1, width), (257, 4, 1, height), (258, 3, 1, 8), (259, 3, 1, 1), (262, 3, 1, 1),
             (277, 3, 1, 1), (273, 4, 1, 8), (278, 4, 1, height), (279, 4, 1, 100)]
    tags = sorted({tag[0]: tag for tag in [*usual, *tags]}.values())
    return (struct.pack("<2sHI", b"II", 42, 108) + bytes(100) + struct.pack("<H", len(tags))
            + b"".join(struct.pack("<HHII", *tag) for tag in tags) + bytes(4))


def box(kind, *content):
    return struct.pack(">I4s", 8 + sum(map(len, content)), kind) + b"".join(content)


def heif(kinds, *references, before=b""):
    """Items of these kinds, numbered from 1; references: a kind, the item from which, those to which."""
    items = (box(b"infe", struct.pack(">IHH4sx", 2 << 24, i, 0, kind)) for i, kind in enumerate(kinds, 1))
    lists = (box(kind, struct.pack(f">HH{len(to)}H", start, len(to), *to)) for kind, start, *to in references)
    return box(b"ftyp", b"avif", bytes(4)) + before + box(
        b"meta", bytes(4), box(b"iinf", struct.pack(">IH", 0, len(kinds)), *items), box(b"iref", bytes(4), *lists))


def bombs():
    text = zlib.compress(bytes(7 * 10**6), 9)
    yield "no side", "large.png", png(60000, 60000)
    yield "pixels", "all.gif", gif(30000, 30000)
    yield "as no photograph is", "fits.gif", gif(14000, 14000)
    yield "pixels", "all.webp", webp(16383, 16383)
    yield "as no photograph is", "fits.webp", webp(9000, 9000)
    yield "pixels", "interlaced.png", png(30000, 30000, interlaced=1)
    yield "text", "texts.png", png(9, 9, *[(b"zTXt", b"k%d\0\0" % i + text) for i in range(100)])
    yield "text", "international.png", png(9, 9, *[(b"iTXt", b"k%d\0\1\0\0\0" % i + text) for i in range(100)])
    yield "", "profile.png", png(9, 9, (b"iCCP", b"x\0\0" + zlib.compress(bytes(3 * 10**8), 9)))
    yield "", "strip.tif", tiff(30000, 30000)
    yield "", "tile.tif", tiff(9, 9, (322, 4, 1, 32000), (323, 4, 1, 32000), (324, 4, 1, 8), (325, 4, 1, 100))
    yield "beside its pixels", "profile.tif", tiff(9, 9, (34675, 7, 0x7FFFFFFF, 8))
    yield "beside its pixels", "texts.tif", tiff(9, 9, (700, 1, 10**9, 8))
    channels = ((277, 3, 1, 900), (259, 3, 1, 8))
    yield "900 channels", "channels.tif", tiff(4000, 4000, *channels)
    yield "as no photograph is", "fits.tif", tiff(4000, 1000, *channels)
    yield "segments", "markers.jpg", b"\xff\xd8" + b"\xff\xed\0\2" * 2500 + b"\xff\xd9"
    yield "tags", "tags.tif", tiff(9, 9, *((1000 + i, 3, 1, 1) for i in range(4000)))
    yield "tags", "pages.tif", b"II*\0\x08\0\0\0" + b"".join(
        struct.pack("<H108xI", 9, 8 + 114 * i) for i in range(1, 20000)) + bytes(9)
    for name, lengths in [("strips.tif", 279), ("both.tif", 325)]:
        yield "again and again", name, tiff(
            9, 8000, (278, 4, 1, 1), (273, 4, 8000, 250), (lengths, 4, 8000, 250)) + struct.pack("<I", 30000) * 8000
    for name, kind, twice in [("wide.tif", 4, 400), ("signed.tif", 9, 400), ("twice.tif", 4, 323)]:
        yield "far beyond", name, tiff(
            30000, 1, (322, kind, 1, 16), (323, kind, 1, 16000), (324, 4, 1, 8), (325, 4, 1, 100), (400, 4, 1, 16)
        ).replace(struct.pack("<HH", 400, 4), struct.pack("<HH", twice, 4))
    frames = (b"ANMF" + struct.pack("<I", 16) + bytes(16)) * 20000
    yield "chunks", "frames.webp", b"RIFF" + struct.pack("<I", 4 + len(frames)) + b"WEBP" + frames
    yield "over each other", "overlays.avif", heif([b"iovl", b"iovl"])
    yield "over each other", "long.avif", heif([b"iovl"], before=struct.pack(">I4sQ", 1, b"free", 16))
    yield "made of others", "grids.avif", heif([b"grid", b"grid", b"av01"], (b"dimg", 1, 2, 2), (b"dimg", 2, 3, 3))
    yield "made of others", "circle.avif", heif([b"iden", b"iden"], (b"dimg", 1, 2), (b"dimg", 2, 1))
    yield "made of others", "alpha.avif", heif([b"grid", b"av01", b"grid"], (b"dimg", 1, 2), (b"auxl", 3, 2))
    yield "again and again", "tiles.avif", heif([b"grid", b"av01"], (b"dimg", 1, *[2] * 100))
    yield "65536", "references.avif", heif([b"grid"], *[(b"dimg", 1, *range(2, 40000))] * 2)
    yield "fit their box", "counts.avif", heif([b"grid"], (b"dimg", 1, 2)).replace(b"dimg\0\1\0\1", b"dimg\0\1\xff\xff")
    yield "damaged", "riff.avif", b"RIFF" + heif([b"av01"])[4:]
    yield "", "boxes.avif", b"\0\0\0\x10ftypavif\0\0\0\0" + b"\0\0\0\x08meta" * 400000
    yield "", "large.ppm", b"P6\n30000 30000\n255\n"
    for says, side in [("pixels", 30000), ("as no photograph is", 8000), ("", 3000)]:
        yield says, f"{side}.pfm", b"PF\n%d %d\n-1.0\n" % (side, side)
    sides = b"#?RADIANCE\n%b\n%b 30000 +X 30000\n"
    yield "as no photograph is", "large.hdr", sides % (b"", b"-Y")
    yield "unusual order", "mirrored.hdr", sides % (b"", b"+Y")
    yield "XYZ", "xyz.hdr", sides % (b"FORMAT=32-bit_rle_xyze\n", b"-Y")
    yield "how large", "lines.hdr", sides % (b"VIEW=x\n" * 10**6, b"-Y")
    packed = b"compression\0\1\0\0\0"
    large = support.exr(32000, 9, channels="c" * 600).replace(packed + b"\0", packed + b"\t")
    for says, name, file in [
            ("tiles", "tiles.exr", support.exr(9, 9, version=0x202)), ("too much", "large.exr", large),
            ("no pixels", "none.exr", support.exr(0, 9)), ("no pixels", "far.exr", support.exr(40000, 9)),
            ("how large", "empty.exr", support.exr(9, 9)[:8] + b"\0"), ("damaged", "cut.exr", support.exr(9, 9)[:99]),
            ("attributes", "long.exr", support.exr(9, 9)[:8] + b"a\0b\0\0\0\0\0" * 2000)]:
        yield says, name, file


class Surroundings(support.LimnTest):
    def measured(self, *arguments, code, says=""):
        """Runs the command; fails unless it is quick, small and refuses, or does what `code` says."""
        process = subprocess.Popen([LIMN, *map(str, arguments)], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                   text=True)
        told = process.stdout.read()
        process.stdout.close()
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        note = f"limn {arguments}: {process.returncode}, {usage.ru_maxrss} kB, {told[-500:]}"
        self.assertEqual(process.returncode, code, note)
        self.assertIn(says, told, note)
        if not support.IS_SANITIZED:
            self.assertLess(usage.ru_maxrss, MOST_RESIDENT, note)
            self.assertLess(usage.ru_utime + usage.ru_stime, MOST_SECONDS, note)
        self.assertNoTemporaries()
        return told

    def test_bombs(self):
        number = 0
        for says, name, bomb in bombs():
            with self.subTest(name):
                put(name, bomb)
                told = self.measured("apply", name, "-o", "out.png", "-f", code=BAD_INPUT, says=says)
                self.assertIn(name + ": ", told)
                self.assertFalse(os.path.exists("out.png"))
                number += 1
        for name, start in [("long.webp", webp(9, 9)), ("long.gif", gif(9, 9))]:
            sparse(name, 3 << 30, start)
            self.measured("apply", name, "-o", "out.png", code=BAD_INPUT, says="is longer than")
        support.write_pnm("s.ppm", support.smooth(160, 120))
        support.vips("copy", "s.ppm", "scans.jpg[interlace]")
        scans = content("scans.jpg")[:-2]
        put("scans.jpg", scans + scans[scans.rindex(b"\xff\xda") :] * 500 + b"\xff\xd9")
        self.measured("apply", "scans.jpg", "-o", "out.png", code=BAD_INPUT, says="scans")
        for kind, options, mark in [("jpg", "[interlace]", b"\xff\xc2"), ("heic", "", b"ispe"), ("avif", "", b"ispe")]:
            for side in [14000, 30000]:
                support.vips("copy", "s.ppm", "s." + kind + options)
                grown = bytearray(content("s." + kind))
                at = grown.index(mark) + (5 if kind == "jpg" else 8)
                sides = struct.pack(">HH" if kind == "jpg" else ">II", side, side)
                grown[at : at + len(sides)] = sides
                put("grown." + kind, grown)
                self.measured("apply", "grown." + kind, "-o", "out.png", code=BAD_INPUT, says=f"{side}")
                number += 1
        print(f"counted: bombs refused {number + 2}")

    def test_max_pixels(self):
        support.write_pnm("in.ppm", support.smooth(30, 20))
        support.write_pnm("mask.pgm", support.filled(40, 20, 255))
        for command in [["apply", "in.ppm", "-o", "out.ppm"], ["preview", "in.ppm", "-o", "out.ppm"],
                        ["channels", "in.ppm"]]:
            answer = self.limn(*command, "--max-pixels", 599, code=BAD_INPUT, says="in.ppm: has 600 pixels (30 × 20)")
            self.assertIn("--max-pixels", answer.stderr)
            self.assertFalse(os.path.exists("out.ppm"))
            self.limn(*command, "--max-pixels", 600)
            if os.path.exists("out.ppm"):
                os.remove("out.ppm")
        self.limn("apply", "in.ppm", "--mask", "mask.pgm", "-o", "out.ppm", "--max-pixels", 700, code=BAD_INPUT,
                  says="mask.pgm: has 800")
        # What has to be in memory whole counts by its bytes, four of which an 8-bit pixel takes.
        support.write_tiff("turned.tif", support.pattern(30, 20, 3, 16), orientation=6)
        self.limn("apply", "turned.tif", "-o", "out.tif", "--max-pixels", 1199, code=BAD_INPUT,
                  says="has 1200 pixels (30 × 20 of 16 bits a channel)")
        self.limn("apply", "turned.tif", "-o", "out.tif", "--max-pixels", 1200)
        for wrong in ["0", "-5", "many", "99999999999999999999"]:
            self.limn("apply", "in.ppm", "-o", "out.ppm", "--max-pixels", wrong, code=2, says="max-pixels")

    def test_style_names(self):
        self.limn("styles")
        put("data/secret", b"secret")
        for name in ["../secret", "../../secret", "/etc/passwd", "..", ".", "/", "a/../../secret", "x" * 5000,
                     "../" * 2000, "\x01\x1b[2J", "\udcff\udcfe", "Default\n", "%2e%2e%2fsecret", "~/x", "$HOME"]:
            with self.subTest(name[:30]):
                self.limn("style", "show", name, code=BAD_INPUT)
        put("named.json", json.dumps({"name": "../../x\0", "description": "/etc/x", "lights": [{}]}))
        self.limn("style", "pack", "named.json", "-o", "packed")
        self.assertEqual(sorted(os.listdir("data")), ["limn", "secret"])

    def test_links_in_the_style_folder(self):
        names = self.limn("styles").stdout
        for name, to in [("gone", "nowhere"), ("loop", "loop"), ("folder", ".."), ("device", "/dev/zero"),
                         ("tty", "/dev/tty"), ("passwd", "/etc/passwd"), ("deep/er", "x")]:
            os.symlink(to, f"{STYLES}/{name.replace('/', '%2F')}")
        os.mkfifo(f"{STYLES}/pipe")
        sparse(f"{STYLES}/gigabyte", 1 << 30, b"BBCVLM")
        put(f"{STYLES}/json", b"[" * 10**6)
        told = self.measured("styles", code=0, says="gigabyte: ").splitlines(keepends=True)
        self.assertEqual("".join(line for line in told if not line.startswith("limn: ")), names)
        for name in ["gone", "loop", "folder", "device", "pipe", "passwd", "gigabyte", "json"]:
            self.measured("style", "show", name, code=BAD_INPUT)

    def test_links_as_files(self):
        support.write_pnm("in.ppm", support.smooth(9, 9))
        for name, to in [("gone.ppm", "nowhere"), ("loop.ppm", "loop.ppm"), ("folder.ppm", "."), ("zero.ppm", "/dev/zero"),
                         ("full.ppm", "/dev/full"), ("self.ppm", "in.ppm")]:
            os.symlink(to, name)
        self.limn("styles")
        before = sorted(os.listdir())
        for name in ["gone.ppm", "loop.ppm", "folder.ppm", "zero.ppm", "full.ppm"]:
            self.limn("apply", name, "-o", "out.png", code=2 if name == "folder.ppm" else BAD_INPUT, says=name + ": ")
            self.limn("apply", "in.ppm", "-f", "-o", name if name != "folder.ppm" else "loop.ppm/x.ppm",
                      code=CANNOT_WRITE)
        self.limn("apply", "in.ppm", "-o", "self.ppm", code=CANNOT_WRITE, says="is the input itself")
        self.assertEqual(sorted(os.listdir()), before)

    def as_nobody(self, *arguments, code, says):
        os.chmod(self.folder, 0o755)
        return self.limn(*arguments, code=code, says=says, user=NOBODY, group=NOBODY, extra_groups=[])

    def test_without_permission(self):
        if os.getuid() != 0:
            self.skipTest("needs root, to become another user")
        try:
            self.as_nobody("--version", code=0, says="")
        except (AssertionError, OSError):
            self.skipTest("the command is out of another user's reach")
        support.write_pnm("in.ppm", support.smooth(9, 9))
        names = self.limn("styles").stdout
        os.mkdir("shut", 0o700)
        os.mkdir("readonly", 0o555)
        self.as_nobody("apply", "in.ppm", "-o", "readonly/out.ppm", code=CANNOT_WRITE, says="permission denied")
        self.as_nobody("apply", "in.ppm", "-o", "shut/out.ppm", code=CANNOT_WRITE, says="permission denied")
        self.as_nobody("apply", "shut/in.ppm", "-o", "out.ppm", code=BAD_INPUT, says="permission denied")
        os.makedirs("tree/shut")
        os.chmod("tree/shut", 0o700)
        support.write_pnm("tree/a.ppm", support.smooth(9, 9))
        os.mkdir("lit")
        os.chmod("lit", 0o777)
        self.as_nobody("apply", "-r", "tree", "-o", "lit/", code=BAD_INPUT, says="tree/shut: permission denied")
        self.assertEqual(os.listdir("lit"), ["a.ppm"])
        for place in ["shut/data", "readonly"]:
            os.environ["XDG_DATA_HOME"] = os.path.abspath(place)
            self.assertEqual(self.as_nobody("styles", code=0, says="cannot be").stdout, names)
        os.chmod("in.ppm", 0)
        self.as_nobody("apply", "in.ppm", "-o", "out.ppm", code=BAD_INPUT, says="in.ppm: permission denied")

    def mounted(self, script):
        """Runs a script that may mount; skips where that is not allowed."""
        if subprocess.run(["unshare", "-m", "mount", "-t", "tmpfs", "none", "/mnt"], capture_output=True).returncode:
            self.skipTest("mounting is not permitted here")
        answer = subprocess.run(["unshare", "-m", "sh", "-c", script, "sh", LIMN], capture_output=True, text=True,
                                timeout=600, env={**os.environ, "XDG_DATA_HOME": os.path.abspath("disk")})
        return answer.stdout.splitlines(), answer.stdout + answer.stderr

    def test_full_and_read_only_disks(self):
        support.write_pnm("in.ppm", support.pattern(200, 200, 3))
        names = len(self.limn("styles").stdout.splitlines())
        os.mkdir("disk")
        script = f"""
            mount -t tmpfs -o size=64k,nr_inodes=200 none disk || exit 9
            say() {{ echo "$1 $2"; }}
            echo old > disk/old.png
            for to in png jpg tif webp ppm gif; do
                "$1" apply -q -f in.ppm -o disk/out.$to; say code $?
            done
            "$1" apply -q -f in.ppm -o disk/old.png; say code $?
            head -c 40000 /dev/zero > disk/filler; "$1" styles | wc -l; say styles $?
            say left "$(find disk -maxdepth 1 | sort | tr '\\n' ' ')"; say old "$(cat disk/old.png)"
            say hidden "$(find disk -name '.limn*' | wc -l)"
            rm -r disk/*; mount -o remount,ro none disk
            "$1" apply -q in.ppm -o disk/out.jpg; say code $?
            "$1" styles | wc -l; say styles $?; "$1" apply -q in.ppm -s 'Evening Lamp' -o out.jpg; say code $?
        """
        said, told = self.mounted(script)
        small = [line for line in said[:7] if line not in ("code 4", "code 0")]
        self.assertFalse(small, told)
        self.assertIn("code 4", said[:6], told)
        for kind in ["tif", "ppm"]:
            self.assertIn(f"disk/out.{kind}: no space left on device", told)
        self.assertTrue(said[6] == "code 4", told)
        self.assertIn("old old", said, told)
        self.assertIn("hidden 0", said, told)
        self.assertEqual(said[-4:], ["code 4", str(names), "styles 0", "code 0"], told)

    def test_shrinking_while_read(self):
        support.write_pnm("s.ppm", support.smooth(120, 100))
        support.vips("resize", "s.ppm", "whole.ppm", 10)
        moments, codes = random.Random(21), {}
        kinds = ["jpg", "png", "tif", "webp", "ppm", "gif"]
        for i in range(SHRINKS):
            name = "shrinks." + kinds[i % len(kinds)]
            support.vips("copy", "whole.ppm", name)
            timer = threading.Timer(moments.uniform(0.02, 0.3),
                                    os.truncate, (name, int(os.path.getsize(name) * moments.random())))
            timer.start()
            ended = subprocess.run([LIMN, "apply", "-q", "-f", name, "-o", "out.jpg"], capture_output=True, text=True)
            timer.join()
            self.assertIn(ended.returncode, (0, BAD_INPUT), f"{name}: {ended}")
            self.assertEqual(os.path.exists("out.jpg"), ended.returncode == 0)
            codes[ended.returncode] = codes.get(ended.returncode, 0) + 1
            if ended.returncode == 0:
                os.remove("out.jpg")
        self.assertNoTemporaries()
        print(f"counted: files cut while they are read {SHRINKS}, of them refused {codes.get(BAD_INPUT, 0)}")

    def test_ten_thousand_styles(self):
        self.limn("styles")
        for i in range(10000):
            shutil.copy(f"{STYLES}/Default", f"{STYLES}/style {i:05}")
        for arguments in [["styles"], ["styles", "--json"], ["style", "check", "STYLE 07000"]]:
            told = self.measured(*arguments, code=0)
        self.assertGreater(len(self.measured("styles", code=0).splitlines()), 10000)
        print("counted: styles in the folder 10000")

    def test_long_and_deep_json(self):
        self.limn("styles")
        sparse("gigabyte", 1 << 30, b'{"lights": [')
        sparse("style", 1 << 30, b"BBCVLM")
        put("lists", b"[" * 10**6)
        put("objects", b'{"a":' * 10**5)
        put("lights", b'{"lights":' + b"[" * 10**6)
        put("remark", b'{"description":' + b"[" * 10**5 + b"]" * 10**5 + b"}")
        put("long", b'{"lights": [' + b'{"on": true},' * (20 << 20 >> 4) + b"{}]}")
        put("string", b'{"description": "' + b"x" * 10**6)
        for name in ["gigabyte", "style", "lists", "objects", "lights", "remark", "long", "string"]:
            with self.subTest(name):
                told = self.measured("style", "show", "./" + name, code=BAD_INPUT, says=f"./{name}: ")
                self.assertLess(len(told), 300)
        put("grows", b'{"description": "')
        stop = threading.Event()

        def grow():
            with open("grows", "ab", buffering=0) as file:
                while not stop.is_set():
                    file.write(b"x" * 65536)
                    time.sleep(0.0005)
        grower = threading.Thread(target=grow)
        grower.start()
        try:
            self.measured("style", "show", "./grows", code=BAD_INPUT)
        finally:
            stop.set()
            grower.join()


unittest.main(argv=sys.argv[:1])
