# examples/blobs.py: the blob finder of blobs.tsp, fed and read from Python.
#
#   build/examples/frames/generate_frames frames --ppm
#   PYTHONPATH=build/python python3 examples/blobs.py frames
#
#   NumPy frame --set_data--> [camera] --> Blobs --> boxes, centres, mask, annotated
#                                                      |
#                                     get_data <-------+-------> on("Blobs:mask", ...)
#
import pathlib
import sys

import numpy as np
import tessarity


def read_ppm(path):
    """A binary PPM of 8-bit samples as an HxWx3 uint8 array, red, green, blue."""
    data = path.read_bytes()
    width, height = map(int, data.split(maxsplit=3)[1:3])
    size = width * height * 3  # the pixels end the file, right after the header
    return np.frombuffer(data, np.uint8, size, len(data) - size).reshape(height, width, 3)


# No workers: a process runs when a sink of it is read, on the reading thread.
engine = tessarity.Engine(threads=0)
engine.load_program_file(pathlib.Path(__file__).with_name("blobs.tsp"))
# A callback runs on the thread that made the value; an image comes as a NumPy view of the
# engine's pixels, valid for as long as Python holds it.
masks = []
engine.on("Blobs:mask", lambda mask: masks.append(np.count_nonzero(mask)))

for number, path in enumerate(sorted(pathlib.Path(sys.argv[1]).glob("*.ppm"))):
    time = (number + 1) * 40_000  # microseconds: 25 frames a second
    engine.set_data("camera", read_ppm(path), time=time)
    boxes = engine.get_data("Blobs:boxes", time=time)  # a list of Region2
    print(path.name, ", ".join("%d %d %d %d" % (*box.start, *box.end) for box in boxes),
          "| mask", masks[-1], "pixels")

annotated = engine.get_data("Blobs:annotated", time=time)
print("annotated", annotated.dtype, annotated.shape)
