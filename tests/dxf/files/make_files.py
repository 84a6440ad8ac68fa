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


if __name__ == "__main__":
    handles64()
    minsert()
    hatch_splines()
