#!/usr/bin/env python3
"""Lights a binary PPM picture of 8 or 16 bits through the C library, without any Python package.

usage: light.py STYLE input.ppm output.ppm [KEY=VALUE…]

STYLE is a style file or its JSON form; KEY=VALUE changes a setting, such as exposure=150.
"""

import array
import ctypes
import os
import re
import sys


class Error(ctypes.Structure):
    _fields_ = [("code", ctypes.c_int), ("text", ctypes.c_char * 508)]


class Area(ctypes.Structure):
    _fields_ = [(name, ctypes.c_int32) for name in ("x", "y", "width", "height")]


class Picture(ctypes.Structure):
    _fields_ = [("width", ctypes.c_int32), ("height", ctypes.c_int32), ("channels", ctypes.c_int32),
                ("kind", ctypes.c_int),
                ("source", ctypes.c_void_p), ("source_stride", ctypes.c_ssize_t),
                ("output", ctypes.c_void_p), ("output_stride", ctypes.c_ssize_t),
                ("relief", ctypes.c_void_p), ("relief_stride", ctypes.c_ssize_t),
                ("relief_step", ctypes.c_ssize_t), ("relief_kind", ctypes.c_int), ("area", Area)]


BYTES, WORDS, FLOATS = range(3)


limn = ctypes.CDLL(os.environ.get("LIBLIMN", "liblimn.so.1"))
limn.limn_settings_load.restype = ctypes.c_void_p
limn.limn_settings_load.argtypes = [ctypes.c_char_p, ctypes.POINTER(Error)]
limn.limn_settings_set.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p, ctypes.POINTER(Error)]
limn.limn_settings_free.restype = None
limn.limn_settings_free.argtypes = [ctypes.c_void_p]
limn.limn_light.argtypes = [ctypes.c_void_p, ctypes.POINTER(Picture), ctypes.c_void_p, ctypes.POINTER(Error)]


def light(style, width, height, pixels, kind=BYTES, changes=()):
    """pixels: a writable buffer of width × height × 3 components of that kind, lit in place."""
    error = Error()
    settings = limn.limn_settings_load(os.fsencode(style), error)
    try:
        for change in changes if settings else ():
            key, _, value = change.partition("=")
            limn.limn_settings_set(settings, key.encode(), value.encode(), error)
            if error.code:
                break
        if error.code == 0:
            address = ctypes.addressof(ctypes.c_uint8.from_buffer(pixels))
            picture = Picture(width=width, height=height, channels=3, kind=kind, source=address, output=address)
            limn.limn_light(settings, picture, None, error)
    finally:
        limn.limn_settings_free(settings)
    if error.code:
        raise RuntimeError(error.text.decode())


def main(style, source, output, *changes):
    with open(source, "rb") as file:
        content = file.read()
    space = rb"(?:\s|#[^\n]*\n)+"
    header = re.match(rb"P6" + space + rb"(\d+)" + space + rb"(\d+)" + space + rb"(255|65535)\s", content)
    if not header:
        raise RuntimeError(f"{source}: is no binary PPM picture")
    width, height = int(header[1]), int(header[2])
    kind = BYTES if header[3] == b"255" else WORDS
    pixels = array.array("BH"[kind])
    if len(content) - header.end() != width * height * 3 * pixels.itemsize:
        raise RuntimeError(f"{source}: is cut off")
    pixels.frombytes(content[header.end():])
    if sys.byteorder == "little":  # the file has the greater byte first
        pixels.byteswap()
    light(style, width, height, pixels, kind, changes)
    if sys.byteorder == "little":
        pixels.byteswap()
    with open(output, "wb") as file:
        file.write(b"P6\n%d %d\n%s\n" % (width, height, header[3]) + pixels.tobytes())


if __name__ == "__main__":
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    try:
        main(*sys.argv[1:])
    except (OSError, RuntimeError) as failure:
        sys.exit(f"light.py: {failure}")
