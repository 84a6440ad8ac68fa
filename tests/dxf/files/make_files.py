"""Writes the small drawings the dxf tests read: each holds one thing that
real CAD programs write and that a reader must take. Run with Debian's
python3-ezdxf (/usr/bin/python3 make_files.py) from this folder."""
import ezdxf


def handles64():
    # AutoCAD hands out 64-bit handles; long-lived drawings reach 16 digits.
    doc = ezdxf.new("R2018")
    doc.entitydb.handles.reset("D9B071D01A0CB6A8")
    doc.layers.add("Base")
    doc.appids.new("SURVEY")
    msp = doc.modelspace()
    msp.add_line((0, 0), (10, 5), dxfattribs={"layer": "Base"})
    msp.add_lwpolyline([(0, 0), (5, 0), (5, 5)])
    line = msp.add_line((1, 1), (2, 2))
    line.set_xdata("SURVEY", [(1000, "kerb"), (1040, 12.5)])
    doc.saveas("handles64.dxf")


def minsert():
    # An arrayed insert: three columns, two rows of one block.
    doc = ezdxf.new("R2018")
    block = doc.blocks.new("Tree")
    block.add_circle((0, 0), 1)
    msp = doc.modelspace()
    ref = msp.add_blockref("Tree", (10, 20))
    ref.grid(size=(2, 3), spacing=(5, 4))
    msp.add_blockref("Tree", (0, 0))
    doc.saveas("minsert.dxf")


def hatch_splines():
    # Two boundary paths made of spline edges that carry fit points and
    # tangents (group 97 follows the control points).
    doc = ezdxf.new("R2018")
    msp = doc.modelspace()
    hatch = msp.add_hatch(color=3)
    for dx in (0, 20):
        path = hatch.paths.add_edge_path()
        path.add_spline(
            control_points=[(dx, 0), (dx + 5, 8), (dx + 10, 0)],
            fit_points=[(dx, 0), (dx + 5, 4), (dx + 10, 0)],
            knot_values=[0, 0, 0, 1, 1, 1],
            degree=2,
            start_tangent=(1, 1),
            end_tangent=(1, -1),
        )
        path.add_line((dx + 10, 0), (dx, 0))
    # Splines without fit points still say "97 0" (AutoCAD 2010 and
    # later); as the last edge of a path that count meets the path's own
    # "97" count of source objects.
    hatch = msp.add_hatch(color=5)
    for dy in (20, 40):
        path = hatch.paths.add_edge_path()
        path.add_line((0, dy), (10, dy))
        path.add_spline(
            control_points=[(10, dy), (5, dy + 8), (0, dy)],
            knot_values=[0, 0, 0, 1, 1, 1],
            degree=2,
        )
    doc.saveas("hatch_splines.dxf")


def base_plan(version):
    # What a surveyor's base plan holds: lines, a classic polyline, texts
    # with accents, a block with an attribute, extended data.
    doc = ezdxf.new(version)
    doc.appids.new("SURVEY")
    doc.layers.add("Kerb", color=3)
    block = doc.blocks.new("Manhole")
    block.add_circle((0, 0), 0.6)
    block.add_attdef("ID", (0.8, 0), dxfattribs={"height": 0.25})
    msp = doc.modelspace()
    msp.add_line((0, 0), (12.5, 4.25), dxfattribs={"layer": "Kerb"})
    msp.add_line((0.1, 0.2), (1 / 3, -0.0))
    msp.add_polyline2d([(0, 0), (3, 0), (3, 3), (6, 4)])
    msp.add_text("Rue de l'Église", dxfattribs={"insert": (1, 2), "height": 0.5})
    ref = msp.add_blockref("Manhole", (10, 10))
    ref.add_attrib("ID", "MH-1", (10.8, 10))
    circle = msp.add_circle((5, 5), 1.5)
    circle.set_xdata("SURVEY", [(1000, "tree"), (1040, 0.25), (1070, 3)])
    return doc


def without_handles(name, out):
    # R12 drawings may hold no handles at all ($HANDLING 0).
    with open(name, encoding="cp1252", newline="") as f:
        lines = f.read().split("\n")
    kept = []
    i = 0
    while i + 1 < len(lines):
        code, value = lines[i], lines[i + 1]
        if code.strip() == "9" and value == "$HANDSEED":
            i += 4
            continue
        if code.strip() not in ("5", "105"):
            kept += [code, value]
        i += 2
    text = "\n".join(kept + lines[i:])
    text = text.replace("$HANDLING\n 70\n1\n", "$HANDLING\n 70\n0\n")
    with open(out, "w", encoding="cp1252", newline="") as f:
        f.write(text)


def old_and_binary():
    base_plan("R12").saveas("r12.dxf")
    without_handles("r12.dxf", "r12_no_handles.dxf")
    base_plan("R12").saveas("r12_binary.dxf", fmt="bin")
    base_plan("R2018").saveas("r2018_binary.dxf", fmt="bin")
    # ezdxf writes no R13 or R14; their files have the structure of R2000
    # (subclass markers, handles, OBJECTS), so an R2000 file named so
    # stands for them.
    doc = base_plan("R2000")
    for name, version in (("r13.dxf", "AC1012"), ("r14.dxf", "AC1014")):
        doc.saveas(name)
        with open(name, encoding="cp1252") as f:
            text = f.read()
        with open(name, "w", encoding="cp1252", newline="") as f:
            f.write(text.replace("AC1015", version, 1))


def extension_dictionaries():
    # Lines with extension dictionaries holding records, as TurboCAD and
    # others write them.
    doc = ezdxf.new("R2018")
    msp = doc.modelspace()
    for i, end in enumerate(((10, 0), (10, 10))):
        line = msp.add_line((0, 0), end)
        xdict = line.new_extension_dict()
        record = xdict.add_xrecord("TCAD_DATA")
        record.reset([(1, f"line {i}"), (40, 1.5 * i)])
    doc.saveas("xdict.dxf")


def plan_kinds():
    # What base plans hold besides lines and texts, one of each kind.
    doc = ezdxf.new("R2018")
    msp = doc.modelspace()
    msp.add_mtext("Manhole\\PMH-7", dxfattribs={
        "insert": (0, 50), "char_height": 2, "attachment_point": 1})
    msp.add_linear_dim((0, 40), (0, 30), (20, 30)).render()
    msp.add_leader([(0, 0), (10, 10), (20, 10)])
    msp.add_open_spline([(30, 0), (35, 10), (40, 0), (45, 10)])
    msp.add_polyline2d([(50, 0), (60, 0), (60, 10)],
                       format="xyb").vertices[0].dxf.bulge = 1
    msp.add_solid([(70, 0), (80, 0), (70, 10), (80, 10)])
    msp.add_3dface([(90, 0, 0), (100, 0, 0), (100, 10, 5), (90, 10, 0)])
    msp.add_wipeout([(110, 0), (120, 0), (120, 10), (110, 10)])
    image_def = doc.add_image_def("aerial.png", size_in_pixel=(100, 50))
    msp.add_image(image_def, (130, 0), (20, 10))
    mesh = msp.add_mesh()
    with mesh.edit_data() as data:
        data.vertices = [(0, -10, 0), (5, -10, 0), (5, -5, 0)]
        data.faces = [(0, 1, 2)]
    doc.saveas("plan_kinds.dxf")


if __name__ == "__main__":
    plan_kinds()
    extension_dictionaries()
    handles64()
    minsert()
    hatch_splines()
    old_and_binary()
