"""Tessarity from Python: perception pipelines as dataflow graphs, fed and read with Python values.

    engine = tessarity.Engine(threads=2)
    engine.load_program_file("pipeline.tsp")
    engine.set_data("camera", frame)           # an HxWx3 uint8 array becomes a ColorImage
    mask = engine.get_data("Main:mask")         # a read-only numpy view of the result's pixels

Values map both ways: None; bool; int (Integer, or UnsignedInteger from 2**31 up to 2**32 - 1);
float (Double; numpy.float32 gives Float, numpy.uint32 UnsignedInteger); str; list (Array);
a tuple of 2, 3, 4 or 6 numbers (a Vector); datetime (Time) and timedelta (Duration); numpy
arrays as images by dtype and shape (HxW uint8 GrayscaleImage, bool BinaryImage, uint16
DepthImage, int32 LabelImage, float32 MatrixImage; HxWx3 uint8 ColorImage, float32 XYZImage),
or wrapped in one of the image classes below to name the class; Color, Region2, Region3,
Histogram and AudioBuffer below; Human, Object2D, Object3D and Lambda, which share the C++
object. Any other object travels through the engine untouched and comes back as itself.

A C-contiguous array is not copied: the image borrows its pixels and keeps the array alive
for as long as the engine holds the value. Other arrays are copied once. Times given to the
engine are ints of microseconds since the Unix epoch or datetimes; durations ints of
microseconds or timedeltas.

The engine's log lines go to the logger "tessarity" and its children (a category such as
"tessarity.private" is its own child logger), levels 1 to 6 as CRITICAL, ERROR, WARNING,
INFO, VERBOSE (15) and DEBUG; log_to_stderr() writes them to stderr instead.
"""

import atexit
import dataclasses
import datetime as _datetime
import logging

import numpy

from . import _tessarity
from ._tessarity import (KNN, ClassificationType, Engine, Human, Lambda, Object2D, Object3D,
                         log_to_python, log_to_stderr, type_name)

__all__ = [
    "Engine", "ClassificationType", "KNN", "Filter", "Source", "Color", "Region2", "Region3",
    "Histogram", "AudioBuffer", "Human", "Object2D", "Object3D", "Lambda", "Image", "ColorImage",
    "GrayscaleImage", "BinaryImage", "LabelImage", "DepthImage", "XYZImage", "MatrixImage",
    "log_to_python", "log_to_stderr", "type_name", "VERBOSE",
]


class Filter:
    """A filter written in Python, added with Engine.create_filter(instance).

    Declare the ports as a C++ UserFilter does: `inputs` as lines such as "image
    [ColorImage GrayscaleImage]" or "optional level [Integer]", `outputs` as names. process()
    gets a list with one value per input (None where an optional input has none) and returns
    a list (or tuple) with one value per output, a dict by output name, or None; None for an
    output means no value there. It runs on the engine's threads, holding the GIL. An
    exception is logged under "tessarity.python" and the run gives no value.

    With `stateful` true, `self.state` holds the state of the process and place in the graph
    that the call is for: whatever process() leaves there comes back on the next call for
    the same process and place (None at first).
    """

    name = None  # the class's name when None
    description = None  # the class's docstring when None
    inputs = ()
    outputs = ()
    stateful = False
    state = None


class Source:
    """A source whose values Python keeps, added with Engine.create_source(instance).

    set_data(value) receives what Engine.set_data gives the source; a run asks get_data(time,
    tolerance), both ints of microseconds, for its value (None for no value). By default the
    last value set is the value at every time.
    """

    name = None  # the class's name when None
    value = None

    def set_data(self, value):
        self.value = value

    def get_data(self, time, tolerance):
        return self.value


@dataclasses.dataclass
class Color:
    r: float
    g: float
    b: float


@dataclasses.dataclass
class Region2:
    """A box from `start` to `end`, each an (x, y) tuple; nothing orders the corners."""
    start: tuple
    end: tuple


@dataclasses.dataclass
class Region3:
    """A box from `start` to `end`, each an (x, y, z) tuple."""
    start: tuple
    end: tuple


@dataclasses.dataclass(eq=False)
class Histogram:
    """Float bins, copied both ways: shape (n,) for one channel, (n, channels) for more."""
    bins: numpy.ndarray

    def __eq__(self, other):
        return isinstance(other, Histogram) and numpy.array_equal(self.bins, other.bins)


@dataclasses.dataclass(eq=False)
class AudioBuffer:
    """int16 samples, copied both ways: shape (n,) for one channel, (n, channels) for more."""
    samples: numpy.ndarray
    sample_rate: int
    time: object = None

    def __eq__(self, other):
        return (isinstance(other, AudioBuffer) and numpy.array_equal(self.samples, other.samples)
                and (self.sample_rate, self.time) == (other.sample_rate, other.time))


class Image:
    """An array given as the image class named by the subclass, with the image's metadata.

    Needed where dtype and shape would pick another class: a uint8 plane is a GrayscaleImage
    unless wrapped as BinaryImage(array). `time` (None: the value's time) is the image's own.
    """

    type = None
    __slots__ = ("array", "color_space", "time", "horizontal_angle", "vertical_angle")

    def __init__(self, array, color_space="unknow", time=None, horizontal_angle=0.0,
                 vertical_angle=0.0):
        self.array = array
        self.color_space = color_space
        self.time = time
        self.horizontal_angle = horizontal_angle
        self.vertical_angle = vertical_angle


class ColorImage(Image):
    __slots__ = ()
    type = "ColorImage"


class GrayscaleImage(Image):
    __slots__ = ()
    type = "GrayscaleImage"


class BinaryImage(Image):
    __slots__ = ()
    type = "BinaryImage"


class LabelImage(Image):
    __slots__ = ()
    type = "LabelImage"


class DepthImage(Image):
    __slots__ = ()
    type = "DepthImage"


class XYZImage(Image):
    __slots__ = ()
    type = "XYZImage"


class MatrixImage(Image):
    __slots__ = ()
    type = "MatrixImage"


_EPOCH = _datetime.datetime(1970, 1, 1, tzinfo=_datetime.timezone.utc)
_MICROSECOND = _datetime.timedelta(microseconds=1)


def _to_microseconds(value):
    if isinstance(value, _datetime.timedelta):
        return value // _MICROSECOND
    if value.tzinfo is None:
        value = value.astimezone()  # a naive datetime is local time, as datetime.timestamp() has it
    return (value - _EPOCH) // _MICROSECOND


def _time_from_microseconds(microseconds):
    return _EPOCH + _datetime.timedelta(microseconds=microseconds)


def _duration_from_microseconds(microseconds):
    return _datetime.timedelta(microseconds=microseconds)


VERBOSE = 15
logging.addLevelName(VERBOSE, "VERBOSE")
_LEVELS = {1: logging.CRITICAL, 2: logging.ERROR, 3: logging.WARNING, 4: logging.INFO,
           5: VERBOSE, 6: logging.DEBUG}
_loggers = {}


def _logger(category):
    name = category.strip()
    if name.lower() == "tessarity":
        name = "tessarity"
    elif not name.startswith("tessarity."):
        name = "tessarity." + name
    return logging.getLogger(name)


def _emit_log_line(level, category, message):
    logger = _loggers.get(category)
    if logger is None:
        logger = _loggers[category] = _logger(category)
    logger.log(_LEVELS.get(level, logging.DEBUG), message)


# The calls made for every frame take `time` by keyword here and pass it on by position:
# pybind11 matches a keyword argument by copying the call's keyword dict, which costs more than
# this extra Python call.
_bound_set_data, _bound_get_data = Engine.set_data, Engine.get_data


def _set_data(self, source, value, time=None):
    return _bound_set_data(self, source, value, time)


def _get_data(self, sink, time=None):
    return _bound_get_data(self, sink, time)


for _wrapper, _bound in ((_set_data, _bound_set_data), (_get_data, _bound_get_data)):
    _wrapper.__name__, _wrapper.__doc__ = _bound.__name__, _bound.__doc__
    _wrapper.__qualname__ = "Engine." + _bound.__name__
    setattr(Engine, _bound.__name__, _wrapper)
del _wrapper, _bound

_tessarity._register_classes({
    "Color": Color, "Region2": Region2, "Region3": Region3, "Histogram": Histogram,
    "AudioBuffer": AudioBuffer, "Image": Image, "Filter": Filter, "Source": Source,
    "datetime": _datetime.datetime, "timedelta": _datetime.timedelta,
    "to_microseconds": _to_microseconds, "time_from_microseconds": _time_from_microseconds,
    "duration_from_microseconds": _duration_from_microseconds,
    "emit_log_line": _emit_log_line,
})
log_to_python()
# Before the interpreter goes, the engines' workers stop: none may be left waiting for the GIL.
atexit.register(_tessarity._shutdown)
