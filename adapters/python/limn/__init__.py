"""Limn relights pictures that are numpy arrays: lamps, spotlights and suns, gloss, and relief from heights.

    import limn, numpy
    image = numpy.fromfile("photo.rgb", numpy.uint8).reshape(1080, 1920, 3)
    lit = limn.light(image, "Evening Lamp")

What comes out is what the command `limn apply` makes with the same style and depth, bit for bit.
"""

import json
import os
from typing import Any, Iterator, List, Optional, Sequence, Tuple, TypeVar, Union

import numpy as np
import numpy.typing as npt

from . import _limn
from ._limn import ArgumentError, Error, NoMemoryError, ReadError, StyleError

__all__ = ["ArgumentError", "Error", "Light", "NoMemoryError", "ReadError", "Style", "StyleError", "heights", "light", "styles"]
__version__ = _limn.version()

Sample = TypeVar("Sample", np.uint8, np.uint16, np.float32)
Heights = Union[npt.NDArray[np.uint8], npt.NDArray[np.uint16], npt.NDArray[np.float32]]
Value = Union[bool, int, float, str, Sequence[float]]

_CHANNELS = {"red": 1, "green": 2, "blue": 3}


def light(image: npt.NDArray[Sample], style: "Union[Style, str]", *, relief: Optional[Heights] = None,
          area: Optional[Tuple[int, int, int, int]] = None, threads: int = 0,
          out: Optional[npt.NDArray[Sample]] = None) -> npt.NDArray[Sample]:
    """Lights an image, and returns it.

    image: an array of shape (height, width, channels), channels being red, green, blue and any others, which are
        not changed; not multiplied by alpha. uint8, uint16 or float32: white is 255, 65535 or 1.0, and floats below 0
        and above 1 are kept. Any strides will do; where samples of a pixel, or pixels of a row, do not lie side by
        side the image is copied first.
    style: a Style, or the name of one that Limn brings.
    relief: heights, an array of shape (height, width) of any of the three types, whatever the image's is. None: the
        channel of the image that the style names, if there is one.
    area: x, y, width and height of the part to light, to which the style is fitted. None: everything.
    threads: how many work at once; 0: as many as the processor runs. Other Python threads run meanwhile.
    out: an array of the image's shape and type for the result, which may be the image itself and may not share a
        part of its memory otherwise. None: a new one.

    Raises ArgumentError, StyleError or NoMemoryError; `out` is then as it was. Ctrl+C ends a long call, and leaves
    `out` lit in part.
    """
    settings = (style if isinstance(style, Style) else Style(style))._settings
    result = _limn.light(image, settings, relief, area, threads, out)
    return result if out is None else out


def heights(image: Heights, source: Union[str, int] = "auto", *, smoothing: Optional[int] = None,
            detail: Optional[int] = None, fit: bool = False, invert: bool = False) -> npt.NDArray[np.uint16]:
    """Makes heights of a picture, for light(relief=...), as `limn heights` does: an array of shape (height, width).

    image: of shape (height, width, channels), or (height, width) for one channel, such as a map of any kind.
    source: "auto" (luminance, with grain evened out and as steep at any size), "luminance", "red", "green", "blue", or
        a channel's number from 1.
    smoothing: 0 to 255. Differences below it, of 255, are grain and are evened out; edges stay. None: 16 with "auto",
        else 0.
    detail: 0 to 1000. How large what stands out is, in thousandths of the longer side; broader shading is flattened,
        finer is smoothed. None: 20 with "auto" or fit, else 0 for neither.
    fit: slopes as steep as on a picture of 1800 pixels. "auto" does so.
    invert: what is dark is high.

    Raises ArgumentError or MemoryError.
    """
    usual = -1
    for name, value, most in (("smoothing", smoothing, 255), ("detail", detail, 1000)):
        if value is not None and not 0 <= value <= most:
            raise ArgumentError(f"{name}: {value} is not between 0 and {most}")
    channel = _CHANNELS.get(source, 0) if isinstance(source, str) else source
    if isinstance(source, str) and not channel and source not in ("auto", "luminance"):
        raise ArgumentError(f"source: {source!r} is not auto, luminance, red, green, blue or a channel's number")
    kind = "channel" if channel or not isinstance(source, str) else source
    return _limn.heights(image, kind, channel, usual if smoothing is None else smoothing,
                         usual if detail is None else detail, fit, invert)


def styles() -> List[str]:
    """The names of the styles that Limn brings."""
    return _limn.style_names()


def _read(settings: _limn.Settings, key: str) -> Any:
    """What the JSON form has at "gloss", "light.0" or "light.0.center.1"; all of it at ""."""
    found = json.loads(settings.json())
    parts = key.split(".") if key else []
    if parts[:1] == ["light"]:
        parts[0] = "lights"
    try:
        for part in parts:
            found = found[int(part)] if isinstance(found, list) and part.isdecimal() else found[part]
    except (IndexError, KeyError, TypeError):
        raise KeyError(key) from None
    return found


class _Fields:
    """Settings of a style as attributes and items, under the names of its JSON form."""

    __slots__ = ("_settings", "_key")
    _settings: _limn.Settings
    _key: str  # of what has the fields: "" or "light.0"

    def __init__(self, settings: _limn.Settings, key: str = "") -> None:
        object.__setattr__(self, "_settings", settings)
        object.__setattr__(self, "_key", key)

    def _whole(self, key: str) -> str:
        return f"{self._key}.{key}" if self._key else key

    def __getitem__(self, key: str) -> Any:
        return _read(self._settings, self._whole(key))

    def __setitem__(self, key: str, value: Value) -> None:
        self._settings.set(self._whole(key), _text(value))

    def __getattr__(self, name: str) -> Any:
        try:
            return self[name]
        except KeyError:
            raise AttributeError(f"there is no setting {self._whole(name)}") from None

    def __setattr__(self, name: str, value: Value) -> None:
        self[name] = value

    def __iter__(self) -> Iterator[str]:
        return iter(_read(self._settings, self._key))

    def __dir__(self) -> List[str]:
        return [*object.__dir__(self), *self]


def _text(value: Value) -> str:
    """A value as `limn apply --set` takes it: three numbers are a colour of 65535, as they are read."""
    if isinstance(value, bool):
        return "true" if value else "false"
    if isinstance(value, (int, float, str)):
        return str(value)
    try:
        numbers = [str(part) for part in value]
    except TypeError:
        return str(value)
    return ",".join(numbers) + ("/65535" if len(numbers) == 3 else "")


class Light(_Fields):
    """One light of a style, as `style.lights[0]`; what is set is set in the style. Fields are those of the JSON
    form: `type`, `on`, `color`, `intensity`, `spread`, `center`, `handle1`, `handle2`, `radius`."""

    __slots__ = ()

    def __repr__(self) -> str:
        return f"<limn.Light {self.type} at {self.center}>"


class Style(_Fields):
    """Lights and the surface that they fall on.

    Fields are attributes or items under the names of the JSON form, a light's with its number from 0:
    `style.exposure = 150`, `style["light.0.type"] = "omni"`, `style.lights[0].center = (-30, 12)`. What can be set is
    what `limn apply --set` takes, also in its words: colours as "#ff8800" or "orange", or as three numbers up to
    65535. A field of the light after the last one adds a light. A wrong key or value raises ArgumentError and changes
    nothing.
    """

    __slots__ = ()

    def __init__(self, name: Optional[str] = None) -> None:
        """The style of that name of styles(); None: one light, as a new dialog has it. Raises StyleError."""
        super().__init__(_limn.Settings() if name is None else _limn.Settings.bundled(name))

    @classmethod
    def _of(cls, settings: _limn.Settings) -> "Style":
        style = cls.__new__(cls)
        _Fields.__init__(style, settings)
        return style

    @classmethod
    def load(cls, path: "Union[str, bytes, os.PathLike[str]]") -> "Style":
        """Reads a style file, or its JSON form. Raises ReadError or StyleError."""
        return cls._of(_limn.Settings.load(os.fsencode(path)))

    @classmethod
    def from_json(cls, text: "Union[str, bytes]") -> "Style":
        """Reads the JSON form, or the bytes of a style file. Raises StyleError."""
        return cls._of(_limn.Settings.from_memory(text.encode() if isinstance(text, str) else text))

    def to_json(self) -> str:
        """The whole style as text that from_json() and `limn apply --style` take."""
        return self._settings.json()

    def copy(self) -> "Style":
        """A style of its own."""
        return self._of(self._settings.copy())

    @property
    def lights(self) -> Tuple[Light, ...]:
        """The lights, from 0."""
        return tuple(Light(self._settings, f"light.{i}") for i in range(len(self["lights"])))

    @property
    def warning(self) -> str:
        """What reading the style passed over, as a sentence; or nothing."""
        return self._settings.warning

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Style) and self.to_json() == other.to_json()

    __hash__ = None  # type: ignore[assignment]

    def __copy__(self) -> "Style":
        return self.copy()

    def __deepcopy__(self, memo: object) -> "Style":
        return self.copy()

    def __reduce__(self) -> Tuple[Any, ...]:
        return Style.from_json, (self.to_json(),)

    def __repr__(self) -> str:
        return f"<limn.Style of {len(self['lights'])} lights>"
