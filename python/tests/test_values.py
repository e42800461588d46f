import datetime
import gc
import weakref

import numpy as np
import pytest

import tessarity
from tessarity import AudioBuffer, Color, Histogram, Region2, Region3

AT = datetime.datetime(2024, 5, 1, 12, 30, 0, 123456, tzinfo=datetime.timezone.utc)

# (value, the engine's type, what comes back)
VALUES = [
    (None, None, None),
    (True, "Boolean", True),
    (-7, "Integer", -7),
    (2**31 - 1, "Integer", 2**31 - 1),
    (2**31, "UnsignedInteger", 2**31),
    (np.uint32(5), "UnsignedInteger", 5),
    (np.int64(-3), "Integer", -3),
    (0.1, "Double", 0.1),
    (np.float32(0.25), "Float", 0.25),
    ("größe", "String", "größe"),
    ([1, "a", [2.5], None], "Array", [1, "a", [2.5], None]),
    ((1, 2), "Vector2", (1.0, 2.0)),
    ((1, 2, 3), "Vector3", (1.0, 2.0, 3.0)),
    ((1, 2, 3, 4), "Vector4", (1.0, 2.0, 3.0, 4.0)),
    ((1, 2, 3, 4, 5, 6), "Vector6", (1.0, 2.0, 3.0, 4.0, 5.0, 6.0)),
    (Color(1, 0.5, 0), "Color", Color(1.0, 0.5, 0.0)),
    (Region2((0, 1), (2, 3)), "Region2", Region2((0.0, 1.0), (2.0, 3.0))),
    (Region3((0, 1, 2), (3, 4, 5)), "Region3", Region3((0.0, 1.0, 2.0), (3.0, 4.0, 5.0))),
    (AT, "Time", AT),
    (datetime.timedelta(seconds=3, microseconds=7), "Duration",
     datetime.timedelta(seconds=3, microseconds=7)),
    (Histogram(np.array([[1, 2], [3, 4]], np.float32)), "Histogram",
     Histogram(np.array([[1, 2], [3, 4]], np.float32))),
    (AudioBuffer(np.arange(6, dtype=np.int16).reshape(3, 2), 16000, AT), "AudioBuffer",
     AudioBuffer(np.arange(6, dtype=np.int16).reshape(3, 2), 16000, AT)),
]


@pytest.mark.parametrize("value, type_name, back", VALUES)
def test_values_cross_the_engine_both_ways(identity, value, type_name, back):
    assert tessarity.type_name(value) == type_name
    identity.set_data("in", value, time=1)
    result = identity.get_data("copy:out", time=1)
    assert result == back and type(result) is type(back)


@pytest.mark.parametrize("value, error", [
    (2**32, OverflowError),
    (-2**31 - 1, OverflowError),
    ((1, 2, 3, 4, 5), TypeError),
    (("a", "b"), TypeError),
    (np.zeros((2, 2), np.float16), TypeError),
    (np.zeros((2, 2, 4), np.uint8), TypeError),
    (tessarity.BinaryImage(np.zeros((2, 2), np.uint16)), TypeError),
    (tessarity.ColorImage([[1, 2]]), TypeError),
    (Histogram(np.zeros(0)), TypeError),
])
def test_values_without_an_engine_form_are_refused(value, error):
    with pytest.raises(error):
        tessarity.type_name(value)


# (samples, the engine's image class), every class with a dtype and shape of its own or named
IMAGES = [
    (np.uint8, (4, 5), "GrayscaleImage", None),
    (np.bool_, (4, 5), "BinaryImage", None),
    (np.uint16, (4, 5), "DepthImage", None),
    (np.int32, (4, 5), "LabelImage", None),
    (np.float32, (4, 5), "MatrixImage", None),
    (np.uint8, (4, 5, 3), "ColorImage", None),
    (np.float32, (4, 5, 3), "XYZImage", None),
    (np.uint8, (4, 5), "BinaryImage", tessarity.BinaryImage),
    (np.uint8, (4, 5), "GrayscaleImage", tessarity.GrayscaleImage),
]


@pytest.mark.parametrize("dtype, shape, type_name, wrap", IMAGES)
def test_images_share_their_pixels_both_ways(identity, dtype, shape, type_name, wrap):
    array = (np.arange(np.prod(shape)) % 2).astype(dtype).reshape(shape)
    value = wrap(array) if wrap else array
    assert tessarity.type_name(value) == type_name
    identity.set_data("in", value, time=1)
    result = identity.get_data("copy:out", time=1)
    assert result.ctypes.data == array.ctypes.data
    assert result.shape == shape and np.array_equal(result, array)
    assert not result.flags.writeable


@pytest.mark.parametrize("array", [
    np.arange(60, dtype=np.uint8).reshape(4, 5, 3)[:, ::2],
    np.arange(20, dtype=np.int32).reshape(4, 5).T,
    np.arange(20, dtype=">u2").reshape(4, 5),
], ids=["strided", "transposed", "big-endian"])
def test_other_arrays_are_copied_once(identity, array):
    identity.set_data("in", array, time=1)
    result = identity.get_data("copy:out", time=1)
    assert np.array_equal(result, array) and result.ctypes.data != array.ctypes.data


def test_a_view_keeps_the_value_alive_and_the_engine_lets_go():
    engine = tessarity.Engine(threads=0)
    engine.create_source("in")
    engine.create_process("copy", "Identity", {"in": "in"}, {"out": "out"}, frequency=1e6)
    frame = np.full((48, 64, 3), 7, np.uint8)
    address, gone = frame.ctypes.data, weakref.ref(frame)
    engine.set_data("in", frame, time=1)
    view = engine.get_data("copy:out", time=1)
    del frame, engine
    gc.collect()
    assert view.ctypes.data == address and (view == 7).all() and gone() is not None
    del view
    assert gone() is None


def test_other_objects_travel_as_themselves(identity):
    thing = {"id": object()}
    assert tessarity.type_name(thing) == "Unknown"
    identity.set_data("in", thing, time=1)
    assert identity.get_data("copy:out", time=1) is thing


def test_records_are_shared_with_the_engine(identity):
    face = tessarity.Object2D(Region2((0, 0), (2, 3)))
    face.set_property(1, "smile")
    person = tessarity.Human()
    person.name, person.id, person.position = "ann", 12, (1, 2, 3)
    person.set_score("attention", 0.5)
    person.set_object2d("face", face)
    person.set_property(4, [1, 2])
    identity.set_data("in", person, time=1)
    back = identity.get_data("copy:out", time=1)
    assert back is person
    assert (back.name, back.id, back.position, back.get_score("attention")) == \
        ("ann", 12, (1.0, 2.0, 3.0), 0.5)
    assert back.get_object2d("face") is face and back.get_object3d("body") is None
    assert face.region == Region2((0.0, 0.0), (2.0, 3.0)) and face.get_property(1) == "smile"
    assert back.get_property(4) == [1, 2] and not back.has_property(5)


def test_images_made_in_the_engine_are_read_in_place(engine):
    class Make(tessarity.Filter):
        inputs = ["in"]
        outputs = ["out"]

        def process(self, inputs):
            self.made = np.full((4, 5), inputs[0], np.uint8)
            return [self.made]

    maker = Make()
    engine.create_filter(maker)
    engine.create_source("in")
    engine.create_source("frame")
    engine.create_process("make", "Make", {"in": "in"}, {"out": "out"}, frequency=1e6)
    engine.create_process("luma", "Luminance", {"in": "frame"}, {"out": "out"}, frequency=1e6)
    engine.set_data("in", 9, time=1)
    engine.set_data("frame", np.full((4, 5, 3), 9, np.uint8), time=1)
    made = engine.get_data("make:out", time=1)
    assert made.ctypes.data == maker.made.ctypes.data and (made == 9).all()
    luma = engine.get_data("luma:out", time=1)
    assert engine.get_last_data("luma:out").ctypes.data == luma.ctypes.data
