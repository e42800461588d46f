import os
import subprocess
import sys

from conftest import EXAMPLES


def test_blobs_py_prints_the_boxes_of_the_generated_shapes(tmp_path):
    """The generator prints each shape's box; the finder's 3x3 dilation widens it by one."""
    truth = subprocess.run([os.environ["TESSARITY_GENERATE_FRAMES"], str(tmp_path), "--ppm"],
                           check=True, capture_output=True, text=True, timeout=60).stdout
    expected = {}
    for line in truth.splitlines():
        name, _, x0, y0, x1, y1 = line.split()
        expected.setdefault(name, set()).add((int(x0) - 1, int(y0) - 1, int(x1) + 1, int(y1) + 1))
    printed = subprocess.run([sys.executable, os.path.join(EXAMPLES, "blobs.py"), str(tmp_path)],
                             check=True, capture_output=True, text=True, timeout=60).stdout
    found = {}
    for line in printed.splitlines()[:-1]:
        name, boxes = line.split(" | ")[0].split(" ", 1)
        found[name] = {tuple(map(int, box.split())) for box in boxes.split(", ")}
    assert found == expected and len(found) == 12
    assert printed.splitlines()[-1] == "annotated uint8 (240, 320, 3)"
