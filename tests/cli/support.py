"""Runs the limn command on images that are written here byte by byte, so that what it must make of
them is known without any image library."""

import array
import os
import re
import shutil
import struct
import subprocess
import tempfile
import unittest
import zlib

LIMN = os.environ.get("LIMN", "limn")
MISBEHAVING_MODULE = os.environ.get("MISBEHAVING_MODULE", "")
IS_SANITIZED = bool(os.environ.get("LIMN_SANITIZE"))


class Picture:
    """Interleaved samples of `depth` bits (8 or 16)."""

    def __init__(self, width, height, bands, samples, depth=8):
        assert len(samples) == width * height * bands
        self.width, self.height, self.bands = width, height, bands
        self.samples, self.depth = list(samples), depth

    def packed(self, order):
        code = "B" if self.depth == 8 else "H"
        return struct.pack(f"{order}{len(self.samples)}{code}", *self.samples)

    def rows(self):
        step = self.width * self.bands
        return [self.samples[at : at + step] for at in range(0, len(self.samples), step)]


def pattern(width, height, bands, depth=8, seed=1):
    """Samples without any regularity that a wrong stride or order could hide behind."""
    state, samples = seed, []
    for _ in range(width * height * bands):
        state = (state * 1103515245 + 12345) % 2**31
        samples.append(state >> (31 - depth))
    return Picture(width, height, bands, samples, depth)


def filled(width, height, value, bands=1):
    return Picture(width, height, bands, [value] * (width * height * bands))


def smooth(width, height, bands=3, at=0):
    """Soft slopes, which lossy formats keep well; `at` makes one picture differ from another."""
    return Picture(width, height, bands, [(3 * x + 2 * y + 50 * band + at) // 4 % 200 + 20
                                          for y in range(height) for x in range(width)
                                          for band in range(bands)])


def write_pnm(path, picture):
    kind = {1: "P5", 3: "P6"}[picture.bands]
    top = 255 if picture.depth == 8 else 65535
    put(path, f"{kind}\n{picture.width} {picture.height}\n{top}\n".encode() + picture.packed(">"))


PNG = b"\x89PNG\r\n\x1a\n"


def png_chunk(kind, body):
    return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))


def write_png(path, picture, extra=b""):
    color_type = {1: 0, 2: 4, 3: 2, 4: 6}[picture.bands]
    line = picture.width * picture.bands * picture.depth // 8
    data = picture.packed(">")
    rows = b"".join(b"\0" + data[at : at + line] for at in range(0, len(data), line))
    head = struct.pack(">IIBBBBB", picture.width, picture.height, picture.depth, color_type, 0, 0, 0)
    put(path, PNG + png_chunk(b"IHDR", head) + extra + png_chunk(b"IDAT", zlib.compress(rows)) + png_chunk(b"IEND", b""))


def write_tiff(path, picture, photometric=2, orientation=1, fields=()):
    """photometric: 1 grey, 2 RGB, 5 CMYK. fields: further (tag, type, count, bytes)."""
    colors = {1: 1, 2: 3, 5: 4}[photometric]
    data = picture.packed("<")
    entries = [(256, 4, 1, struct.pack("<I", picture.width)), (257, 4, 1, struct.pack("<I", picture.height)),
               (258, 3, picture.bands, struct.pack("<H", picture.depth) * picture.bands),
               (259, 3, 1, struct.pack("<H", 1)), (262, 3, 1, struct.pack("<H", photometric)),
               (273, 4, 1, struct.pack("<I", 8)), (274, 3, 1, struct.pack("<H", orientation)),
               (277, 3, 1, struct.pack("<H", picture.bands)), (278, 4, 1, struct.pack("<I", picture.height)),
               (279, 4, 1, struct.pack("<I", len(data))), *fields]
    further = picture.bands - colors
    if further:
        entries.append((338, 3, further, struct.pack("<H", 0) * further))
    entries.sort()
    body = bytearray(data + b"\0" * (len(data) % 2))
    table = b""
    for tag, kind, count, value in entries:
        if len(value) > 4:
            value, place = struct.pack("<I", 8 + len(body)), value
            body += place + b"\0" * (len(place) % 2)
        table += struct.pack("<HHI", tag, kind, count) + value.ljust(4, b"\0")
    put(path, struct.pack("<2sHI", b"II", 42, 8 + len(body)) + body + struct.pack("<H", len(entries)) + table + bytes(4))


def exr(width, height, rows=(), channels="BGR", version=2):
    """OpenEXR in floats, unpacked; rows: of numbers, the same in every channel."""
    def attribute(name, kind, content):
        return b"%s\0%s\0" % (name, kind) + struct.pack("<i", len(content)) + content
    box = struct.pack("<4i", 0, 0, width - 1, height - 1)
    head = struct.pack("<2I", 20000630, version) + attribute(b"channels", b"chlist", b"".join(
        name.encode() + b"\0" + struct.pack("<4i", 2, 0, 1, 1) for name in channels) + b"\0") + b"".join(
            attribute(*words) for words in [
                (b"compression", b"compression", b"\0"), (b"dataWindow", b"box2i", box), (b"displayWindow", b"box2i", box),
                (b"lineOrder", b"lineOrder", b"\0"), (b"pixelAspectRatio", b"float", struct.pack("<f", 1)),
                (b"screenWindowCenter", b"v2f", bytes(8)), (b"screenWindowWidth", b"float", struct.pack("<f", 1))]) + b"\0"
    size = 4 * width * len(channels)
    first = len(head) + 8 * len(rows)
    return head + b"".join(struct.pack("<Q", first + y * (8 + size)) for y in range(len(rows))) + b"".join(
        struct.pack("<2i", y, size) + array.array("f", list(row) * len(channels)).tobytes() for y, row in enumerate(rows))


def content(path):
    with open(path, "rb") as file:
        return file.read()


def put(path, data):
    """Writes bytes, or text."""
    with open(path, "wb") as file:
        file.write(data.encode() if isinstance(data, str) else data)


def vips(*arguments):
    subprocess.run(["vips", *map(str, arguments)], check=True, capture_output=True)


def version(program):
    """The two numbers that it begins with, of a program that prints "NAME-1.2..."."""
    told = subprocess.run([program, "--version"], check=True, capture_output=True, text=True).stdout
    return tuple(int(number) for number in re.findall(r"\d+", told)[:2])


def field(path, name):
    """One header field as libvips prints it, or None."""
    answer = subprocess.run(["vipsheader", "-f", name, path], capture_output=True, text=True)
    return answer.stdout.strip() if answer.returncode == 0 else None


def read(path):
    """The samples of an image in any format: of 8 or 16 bits, or float."""
    vips("copy", path, "read.v")
    data = content("read.v")
    os.remove("read.v")
    width, height, bands, _, kind = struct.unpack_from("=5I", data, 4)
    code = {0: "B", 2: "H", 6: "f"}[kind]
    size = struct.calcsize(code)
    samples = array.array(code, data[64 : 64 + width * height * bands * size])
    return Picture(width, height, bands, samples, 8 * size)


class LimnTest(unittest.TestCase):
    """Each test works in a folder of its own, and leaves no temporary file there."""

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="limn-test-")
        self.addCleanup(shutil.rmtree, self.folder)
        before = os.getcwd()
        os.chdir(self.folder)
        self.addCleanup(os.chdir, before)
        os.environ["XDG_DATA_HOME"] = os.path.join(self.folder, "data")

    def limn(self, *arguments, code=0, says="", env=None, **options):
        """Runs the command; fails unless it exits with `code` and says `says` on standard error."""
        answer = subprocess.run([LIMN, *map(str, arguments)], capture_output=True, text=True, timeout=600,
                                env={**os.environ, **(env or {})}, **options)
        told = f"limn {arguments}: {answer.returncode}\n{answer.stdout}{answer.stderr}"
        self.assertEqual(answer.returncode, code, told)
        self.assertIn(says, answer.stderr, told)
        for line in answer.stderr.splitlines():
            self.assertTrue(line.startswith("limn: "), told)
        self.assertNoTemporaries()
        return answer

    def assertNoTemporaries(self):
        for folder, _, files in os.walk(self.folder):
            self.assertFalse([name for name in files if name.startswith(".limn-")], folder)

    def assertSame(self, one, other, note=""):
        self.assertEqual((one.width, one.height, one.bands), (other.width, other.height, other.bands), note)
        self.assertTrue(list(one.samples) == list(other.samples), f"{note}: other pixels")


main = unittest.main
