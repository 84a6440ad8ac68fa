"""kestrana render on drawings written by ezdxf: the SVG read back, PNG, errors."""
import math
import os
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ET

import ezdxf
from ezdxf.math import Matrix44

KESTRANA = sys.argv[1]
SVG = "{http://www.w3.org/2000/svg}"
failures = []


def check(condition, what):
    if not condition:
        failures.append(what)
        print("FAIL:", what)


def run(*args, env=None):
    return subprocess.run([KESTRANA, "render", *args], capture_output=True, text=True, env=env)


def drawing(path):
    doc = ezdxf.new("R2010")
    doc.layers.add("Pipes", color=5)
    doc.layers.add("Frozen", color=1).freeze()
    msp = doc.modelspace()
    msp.add_line((0, 0), (100, 50), dxfattribs={"layer": "Pipes"})
    msp.add_line((0, 50), (100, 0), dxfattribs={"layer": "Frozen"})
    msp.add_text("%%c300", dxfattribs={"height": 2.5}).set_pos((10, 40))
    node = doc.blocks.new("Node")
    node.add_circle((0, 0), 1, dxfattribs={"color": 0})
    node.add_attdef("LABEL", (0, -2), dxfattribs={"height": 1})
    ref = msp.add_blockref("Node", (50, 25), dxfattribs={"layer": "Pipes", "rotation": 90})
    ref.add_auto_attribs({"LABEL": "N-7"})
    msp.add_xline((200, 200), (1, 0))  # a kind pictures do not show
    doc.saveas(path)


def elements(root, tag):
    return list(root.iter(SVG + tag))


with tempfile.TemporaryDirectory() as tmp:
    dxf = os.path.join(tmp, "plan.dxf")
    drawing(dxf)
    with open(dxf, "rb") as f:
        original = f.read()

    svg_path = os.path.join(tmp, "plan.svg")
    r = run(dxf, "-o", svg_path)
    check(r.returncode == 0, "render succeeds: " + r.stderr)
    root = ET.parse(svg_path).getroot()
    lines = elements(root, "line")
    check(len(lines) == 1, "the frozen layer's line is hidden")
    if lines:
        coords = [float(lines[0].get(k)) for k in ("x1", "y1", "x2", "y2")]
        check(coords == [0, 0, 100, -50], "line in drawing coordinates, Y turned over")
        check(lines[0].get("stroke") == "#0000ff", "ByLayer takes the layer colour")
    texts = [t.text for t in elements(root, "text")]
    check("\u00d8300" in texts, "%%c shows as a diameter sign: %r" % texts)
    check("N-7" in texts, "attribute values are drawn: %r" % texts)
    circles = [c for c in elements(root, "circle") if c.get("r") == "1"]
    check(len(circles) == 1 and circles[0].get("stroke") == "#0000ff",
          "ByBlock takes the insert's colour")
    comments = open(svg_path, encoding="utf-8").read()
    check("XLINE" in comments and "XLINE" in r.stderr, "kinds not drawn are named")

    png_path = os.path.join(tmp, "plan.png")
    r = run(dxf, "-o", png_path, "--size", "300")
    check(r.returncode == 0, "PNG succeeds: " + r.stderr)
    with open(png_path, "rb") as f:
        head = f.read(24)
    check(head[:8] == b"\x89PNG\r\n\x1a\n", "a PNG file")
    check(int.from_bytes(head[16:20], "big") == 300, "the longer side is --size pixels")

    block_path = os.path.join(tmp, "node.svg")
    r = run(dxf, "-o", block_path, "--block", "Node")
    check(r.returncode == 0, "a block is drawn: " + r.stderr)
    block_texts = [t.text for t in elements(ET.parse(block_path).getroot(), "text")]
    check(block_texts == ["LABEL"], "a definition shows its tag: %r" % block_texts)

    window_path = os.path.join(tmp, "window.svg")
    r = run(dxf, "-o", window_path, "--window", "40,20,60,30", "--layers", "Pipes")
    check(r.returncode == 0, "a window is drawn: " + r.stderr)
    view = [float(v) for v in ET.parse(window_path).getroot().get("viewBox").split()]
    check(view == [40, -30, 20, 10], "the window is the view: %r" % view)

    missing = os.path.join(tmp, "missing.svg")
    r = run(dxf, "-o", missing, "--block", "Nope")
    check(r.returncode == 1 and "Nope" in r.stderr, "unknown block refused: " + r.stderr)
    r = run(dxf, "-o", missing, "--window", "500,500,600,600")
    check(r.returncode == 1 and "no entities" in r.stderr, "empty window refused: " + r.stderr)
    r = run(dxf, "-o", missing, "--layers", "Nope")
    check(r.returncode == 1 and "Nope" in r.stderr, "unknown layer refused: " + r.stderr)
    r = run(dxf)
    check(r.returncode == 2 and "--output" in r.stderr, "the picture name is required")
    r = run(dxf, "-o", os.path.join(tmp, "plan.pdf"))
    check(r.returncode == 2 and ".png" in r.stderr, "only .svg and .png: " + r.stderr)
    check(not os.path.exists(missing), "failures write no picture")

    bare = dict(os.environ, PATH=os.path.join(tmp, "nothing-here"))
    lost_png = os.path.join(tmp, "lost.png")
    r = run(dxf, "-o", lost_png, env=bare)
    check(r.returncode == 1 and "librsvg2-bin" in r.stderr, "missing rsvg-convert named: " + r.stderr)
    check(not os.path.exists(lost_png), "no PNG without rsvg-convert")

    with open(dxf, "rb") as f:
        check(f.read() == original, "the drawing is left untouched")
    check(sorted(os.listdir(tmp)) == sorted(["plan.dxf", "plan.svg", "plan.png", "node.svg",
                                             "window.svg"]),
          "no temporary files left: %r" % sorted(os.listdir(tmp)))


def mirrored_drawing(path):
    """Entities mirrored by ezdxf (normal (0,0,-1)) and a mirrored insert."""
    doc = ezdxf.new("R2010")
    msp = doc.modelspace()
    node = doc.blocks.new("Node")
    node.add_circle((1, 0), 0.5)
    node.add_attdef("LABEL", (14, 20), dxfattribs={"height": 1})
    for entity in (msp.add_circle((3, 4), 1), msp.add_arc((3, 4), 2, 0, 90),
                   msp.add_text("T", dxfattribs={"height": 1}).set_pos((5, 5))):
        entity.transform(Matrix44.scale(-1, 1, 1))
    ref = msp.add_blockref("Node", (2, 0), dxfattribs={"extrusion": (0, 0, -1)})
    ref.add_auto_attribs({"LABEL": "N-1"})
    doc.saveas(path)


def origin(text_element):
    """Where a picture's text starts, in drawing coordinates."""
    numbers = text_element.get("transform")[len("matrix("):-1].split()
    return float(numbers[4]), -float(numbers[5])


with tempfile.TemporaryDirectory() as tmp:
    dxf = os.path.join(tmp, "mirrored.dxf")
    mirrored_drawing(dxf)
    svg_path = os.path.join(tmp, "mirrored.svg")
    r = run(dxf, "-o", svg_path)
    check(r.returncode == 0, "a mirrored drawing renders: " + r.stderr)
    root = ET.parse(svg_path).getroot()
    circles = {(float(c.get("cx")), float(c.get("cy")), float(c.get("r")))
               for c in elements(root, "circle")}
    check(circles == {(-3, -4, 1), (-3, 0, 0.5)},
          "the circle and the insert's circle mirrored in X: %r" % circles)
    paths = [p.get("d") for p in elements(root, "path")]
    check(len(paths) == 1 and paths[0].startswith("M-3 -6"),
          "the arc from (3,6) runs from (-3,6) seen from above: %r" % paths)
    starts = {t.text: origin(t) for t in elements(root, "text")}
    check(starts.get("T") == (-5, 5), "the text starts at (-5,5): %r" % starts)
    check(starts.get("N-1") == (-16, 20), "the attribute sits at (-16,20): %r" % starts)
    check("ARC" not in r.stderr, "arcs are drawn, not skipped: " + r.stderr)

print("%d failure(s)" % len(failures))
sys.exit(1 if failures else 0)
