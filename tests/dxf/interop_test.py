"""Drawings written by ezdxf go through kestrana and come back to ezdxf intact.

Run as: /usr/bin/python3 interop_test.py path/to/kestrana
"""
import json
import os
import re
import subprocess
import sys
import tempfile
import unittest

import ezdxf
from ezdxf.math import Vec3

KESTRANA = None
APPS = ["Kestrana", "SecondApp", "ThirdApp"]
LAYERS = ["Kanäle", "Трубы", "水管", "Hidden", "Frozen", "Locked"]


def xdata_of_all_kinds(app, index):
    return [
        (1000, f"{app} record {index} — ü"),
        (1002, "{"),
        (1003, "0"),
        (1005, "0"),
        (1010, (1.5, -2.25, 3.0)),
        (1040, 0.1 * index),
        (1041, 2.0),
        (1042, 0.5),
        (1070, -7),
        (1071, 123456),
        (1002, "}"),
    ]


def build_drawing(version, register_apps=True):
    doc = ezdxf.new(version, setup=True)
    if register_apps:
        for app in APPS:
            doc.appids.new(app)
    for name in LAYERS:
        doc.layers.add(name, color=3)
    doc.layers.get("Hidden").off()
    doc.layers.get("Frozen").freeze()
    doc.layers.get("Locked").lock()

    node = doc.blocks.new("Kestrana_Node")
    node.add_circle((0, 0), 1)
    node.add_attdef("LABEL", (1, 1), dxfattribs={"height": 0.5, "prompt": "Label"})
    node.add_attdef("LEVEL", (1, -1), dxfattribs={"height": 0.5})
    other = doc.blocks.new("Arrow")
    other.add_lwpolyline([(0, 0), (1, 0.5), (1, -0.5)], close=True)
    other.add_hatch(color=1).paths.add_polyline_path([(0, 0), (1, 0.5), (1, -0.5)])

    msp = doc.modelspace()
    for i in range(4):
        layer = LAYERS[i % len(LAYERS)]
        pl = msp.add_lwpolyline(
            [(i, 0, 0.1, 0.2, 0.0), (i + 5, 0, 0, 0, 0.4), (i + 5, 5, 0, 0, 0)],
            format="xyseb", dxfattribs={"layer": layer})
        pl.set_xdata(APPS[i % 3], xdata_of_all_kinds(APPS[i % 3], i))
        pl.set_xdata("Kestrana", [(1000, f"Pipe;Sewer;P-{i}"), (1040, 200.0), (1070, 1)])
    msp.add_line((0, 0, 1), (3, 4, 5), dxfattribs={"layer": "Трубы", "color": 1})
    msp.add_point((7, 7), dxfattribs={"layer": "水管"})
    msp.add_circle((2, 2), 1.5)
    msp.add_arc((4, 4), 2, 10, 200)
    msp.add_ellipse((10, 10), (3, 1), 0.4, 0.5, 5.0)
    for k, align in enumerate(["LEFT", "CENTER", "RIGHT", "MIDDLE", "TOP_LEFT",
                               "MIDDLE_CENTER", "BOTTOM_RIGHT"]):
        msp.add_text(f"Text {align} äöü Ж", dxfattribs={"height": 0.7}).set_pos(
            (k * 3, 20), align=align)
    msp.add_text("aligned", dxfattribs={"height": 1}).set_pos((0, 30), (10, 31), align="ALIGNED")
    msp.add_mtext("MTEXT line 1\\Pline 2 — Größe", dxfattribs={"char_height": 0.5})
    msp.add_spline([(0, 0), (1, 3), (4, 2), (6, 6)])
    msp.add_polyline3d([(0, 0, 0), (1, 1, 1), (2, 0, 2)])
    dim = msp.add_linear_dim(base=(0, -5), p1=(0, -3), p2=(10, -3))
    dim.render()
    solid = msp.add_hatch(color=5)
    solid.paths.add_polyline_path([(20, 0), (30, 0), (30, 10), (20, 10)], is_closed=True)
    pattern = msp.add_hatch(color=6)
    pattern.set_pattern_fill("ANSI31", scale=0.5, angle=15)
    path = pattern.paths.add_edge_path()
    path.add_line((40, 0), (50, 0))
    path.add_arc((50, 5), 5, -90, 90)
    path.add_line((50, 10), (40, 10))
    path.add_ellipse((40, 5), (0, -5), 0.5, 0, 180)
    spline_hatch = msp.add_hatch(color=2)
    edges = spline_hatch.paths.add_edge_path()
    edges.add_spline(control_points=[(60, 0), (65, 5), (70, 0), (75, 5)], degree=3)
    edges.add_line((75, 5), (60, 0))
    for i in range(3):
        ref = msp.add_blockref("Kestrana_Node", (i * 10, -20), dxfattribs={"layer": "Kanäle"})
        ref.add_auto_attribs({"LABEL": f"N-{i}", "LEVEL": f"{100 + i}.50"})
        ref.set_xdata("Kestrana", [(1000, f"Node;Sewer;N-{i}"), (1040, 1.5 * i)])
    msp.add_blockref("Arrow", (5, 5), dxfattribs={"rotation": 30, "xscale": 2})

    layout = doc.layouts.new("Sheet A")
    layout.add_line((0, 0), (100, 50))
    layout.add_text("paper text", dxfattribs={"height": 3})
    doc.layouts.get("Layout1").add_circle((10, 10), 5)

    msp_record = doc.block_records.get("*Model_Space")
    msp_record.set_xdata("Kestrana", [(1000, "2.00"), (1000, "Metric")])
    return doc


def unescape(text):
    """Table names of older files as ezdxf leaves them: with \\U+XXXX."""
    return re.sub(r"\\U\+([0-9A-Fa-f]{4})", lambda m: chr(int(m.group(1), 16)), text)


def audit_messages(doc):
    return sorted(e.message for e in doc.audit().errors)


def file_handles(path):
    """The handles (group codes 5 and 105) of every object in a file."""
    with open(path, "rb") as f:
        lines = [line.rstrip(b"\r").decode("latin-1") for line in f.read().split(b"\n")]
    handles, kind, section = [], None, None
    for code, value in zip(lines[0::2], lines[1::2]):
        code = int(code)
        if code == 0:
            kind = value
        elif code == 2 and kind == "SECTION":
            section, kind = value, None  # "9 $DIMSTYLE 2 ..." is no section
        elif section != "HEADER" and (code == 105 or (code == 5 and kind != "DIMSTYLE")):
            handles.append(int(value, 16))
    return handles


def run(*args):
    return subprocess.run([KESTRANA, *args], capture_output=True, text=True)


def xdata_map(entity):
    """Every application's XData of an entity as plain tuples."""
    if entity.xdata is None:
        return {}
    out = {}
    for app in entity.xdata.data:
        tags = []
        for tag in entity.xdata.get(app):
            value = tuple(tag.value) if isinstance(tag.value, Vec3) else tag.value
            tags.append((tag.code, value))
        out[app] = tags
    return out


def entity_print(e):
    d = e.dxf
    item = [e.dxftype(), d.handle, d.get("layer"), d.get("owner"), xdata_map(e)]
    if e.dxftype() == "INSERT":
        item.append([(a.dxf.handle, a.dxf.tag, a.dxf.text) for a in e.attribs])
    if e.dxftype() in ("TEXT", "MTEXT"):
        item.append(e.dxf.text if e.dxftype() == "TEXT" else e.text)
    if e.dxftype() == "LWPOLYLINE":
        item.append([tuple(p) for p in e.get_points()])
    if e.dxftype() == "HATCH":
        item.append((e.dxf.pattern_name, len(e.paths)))
    return item


def fingerprint(doc):
    """What must survive: entities with handles, layers, blocks, XData."""
    layouts = {}
    for layout in doc.layouts:
        layouts[layout.name] = [entity_print(e) for e in layout]
    blocks = {}
    for block in doc.blocks:
        blocks[block.name] = [entity_print(e) for e in block]
    layers = sorted((l.dxf.name, l.color, l.is_on(), l.is_frozen(), l.is_locked())
                    for l in doc.layers)
    records = {r.dxf.name: xdata_map(r) for r in doc.block_records}
    return {"layouts": layouts, "blocks": blocks, "layers": layers, "records": records}


class Interop(unittest.TestCase):
    def setUp(self):
        self.tmp = tempfile.TemporaryDirectory()
        self.dir = self.tmp.name

    def tearDown(self):
        self.tmp.cleanup()

    def path(self, name):
        return os.path.join(self.dir, name)

    def save_through_kestrana(self, doc, name):
        src = self.path(name + ".in.dxf")
        out = self.path(name + ".out.dxf")
        doc.saveas(src)
        result = run("save", src, "-o", out)
        self.assertEqual(result.returncode, 0, result.stderr)
        return src, out

    def test_every_version_comes_back_byte_for_byte(self):
        for version in ["R2000", "R2004", "R2010", "R2018"]:
            with self.subTest(version=version):
                src, out = self.save_through_kestrana(build_drawing(version), version)
                with open(src, "rb") as a, open(out, "rb") as b:
                    self.assertEqual(a.read(), b.read())

    def test_drawings_come_back_with_the_same_content(self):
        # Without registered applications kestrana adds their APPID entries,
        # so the file changes and ezdxf must still find everything.
        for version in ["R2000", "R2018"]:
            with self.subTest(version=version):
                doc = build_drawing(version, register_apps=False)
                src, out = self.save_through_kestrana(doc, "apps" + version)
                before = ezdxf.readfile(src)
                after = ezdxf.readfile(out)
                self.assertEqual(fingerprint(after), fingerprint(before))
                for app in APPS:
                    self.assertIn(app, after.appids, app)
                # ezdxf flags its own R2000 layer names; kestrana adds nothing.
                self.assertEqual(audit_messages(after), audit_messages(before))
                self.assertEqual(after.dxfversion, before.dxfversion)
                seed = int(after.header["$HANDSEED"], 16)
                handles = file_handles(out)
                self.assertGreater(len(handles), 100)
                self.assertTrue(all(h < seed for h in handles))

    def test_crlf_files_stay_crlf(self):
        doc = build_drawing("R2010")
        src = self.path("crlf.dxf")
        doc.saveas(src)
        with open(src, "rb") as f:
            data = f.read().replace(b"\n", b"\r\n")
        with open(src, "wb") as f:
            f.write(data)
        out = self.path("crlf.out.dxf")
        self.assertEqual(run("save", src, "-o", out).returncode, 0)
        with open(out, "rb") as f:
            self.assertEqual(f.read(), data)

    def test_info_and_dump_agree_with_ezdxf(self):
        doc = build_drawing("R2000")  # texts in the code page, with \\U+ escapes
        src = self.path("info.dxf")
        doc.saveas(src)
        doc = ezdxf.readfile(src)
        result = run("info", src, "--json")
        self.assertEqual(result.returncode, 0, result.stderr)
        info = json.loads(result.stdout)
        self.assertTrue(info["project"])
        self.assertEqual(info["version"], "AC1015")
        counts = {}
        for e in doc.modelspace():
            counts[e.dxftype()] = counts.get(e.dxftype(), 0) + 1
        self.assertEqual(info["model_space"]["by_type"], counts)
        layers = {l["name"]: l for l in info["layers"]}
        self.assertEqual(set(layers), {unescape(l.dxf.name) for l in doc.layers})
        for name in LAYERS:
            self.assertIn(name, layers)
        self.assertFalse(layers["Hidden"]["on"])
        self.assertTrue(layers["Frozen"]["frozen"])
        self.assertTrue(layers["Locked"]["locked"])

        result = run("dump", src, "--json")
        self.assertEqual(result.returncode, 0, result.stderr)
        dumped = {d["handle"]: d for d in json.loads(result.stdout)}
        expected = {}
        for e in list(doc.modelspace()) + list(doc.block_records):
            if e.has_xdata("Kestrana"):
                expected[e.dxf.handle] = [[t.code, t.value] for t in e.get_xdata("Kestrana")]
        self.assertEqual(set(dumped), set(expected))
        for handle, tags in expected.items():
            self.assertEqual(dumped[handle]["record"][1:], tags, handle)
        self.assertEqual(dumped[doc.block_records.get("*Model_Space").dxf.handle]["type"],
                         "BLOCK_RECORD")

    def test_librecad_renders_what_kestrana_writes(self):
        doc = build_drawing("R2010", register_apps=False)
        doc.header["$INSUNITS"] = 0  # metres would scale LibreCAD's paper a thousandfold
        src, out = self.save_through_kestrana(doc, "render")
        env = dict(os.environ, QT_QPA_PLATFORM="offscreen")
        subprocess.run(["librecad", "dxf2pdf", "-a", out], cwd=self.dir, env=env,
                       capture_output=True, timeout=300)
        pdf = out[:-4] + ".pdf"
        self.assertTrue(os.path.exists(pdf), "LibreCAD wrote no PDF")
        # An empty page is about 1.3 kB; this drawing draws tens of kB.
        self.assertGreater(os.path.getsize(pdf), 10000)

    def test_bad_files_fail_with_the_line_and_stay_untouched(self):
        doc = build_drawing("R2010")
        good = self.path("good.dxf")
        doc.saveas(good)
        with open(good, "rb") as f:
            data = f.read()
        cases = {
            "truncated.dxf": (data[: len(data) // 2], "line "),
            "notdxf.dxf": (b"%PDF-1.4\n1 0 obj\n", "not a DXF drawing"),
            "badcode.dxf": (data.replace(b"\nENTITIES\n", b"\nENTITIES\nxx\n", 1), "group code"),
        }
        binary = self.path("binary.dxf")
        doc.saveas(binary, fmt="bin")
        with open(binary, "rb") as f:
            whole = f.read()
            cases["binary.dxf"] = (whole[: len(whole) // 2], "binary DXF, byte ")
        for name, (content, message) in cases.items():
            with self.subTest(name=name):
                path = self.path(name)
                with open(path, "wb") as f:
                    f.write(content)
                result = run("save", path)
                self.assertEqual(result.returncode, 1)
                self.assertIn(message, result.stderr)
                self.assertEqual(result.stdout, "")
                with open(path, "rb") as f:
                    self.assertEqual(f.read(), content)


if __name__ == "__main__":
    KESTRANA = os.path.abspath(sys.argv.pop(1))
    unittest.main(verbosity=2)
