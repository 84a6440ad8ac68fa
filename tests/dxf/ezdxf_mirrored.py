"""Mirrored entities as ezdxf writes them, and where ezdxf finds them.

Usage: /usr/bin/python3 ezdxf_mirrored.py write FILE.dxf
       /usr/bin/python3 ezdxf_mirrored.py points FILE.dxf

'write' mirrors a circle, an arc, a text, two hatches and an ellipse in X
(ezdxf gives them the normal (0,0,-1)) and adds an insert with that normal
and an attribute. 'points' prints the world points of the model space's
entities, one a line: handle, name, X, Y.
"""
import sys

import ezdxf
from ezdxf.math import Matrix44, Vec3


def write(path):
    doc = ezdxf.new("R2010")
    msp = doc.modelspace()
    block = doc.blocks.new("B")
    block.add_line((0, 0), (1, 0))
    block.add_attdef("TAG", (14, 20), dxfattribs={"height": 1})
    mirrored = [
        msp.add_circle((3, 4), 1),
        msp.add_arc((3, 4), 1, 10, 80),
        msp.add_text("hi", dxfattribs={"height": 1, "rotation": 30}).set_pos((5, 5)),
        msp.add_ellipse((0, 0), (2, 0), 0.5, 0, 1.5707963267948966),
    ]
    solid = msp.add_hatch()
    solid.paths.add_polyline_path([(0, 0), (1, 0), (1, 1)])
    edges = msp.add_hatch(color=3)
    loop = edges.paths.add_edge_path()
    loop.add_arc((20, 0), 1, 0, 90)
    loop.add_line((20, 1), (20, 0))
    loop.add_line((20, 0), (21, 0))
    mirrored += [solid, edges]
    for entity in mirrored:
        entity.transform(Matrix44.scale(-1, 1, 1))
    ref = msp.add_blockref("B", (2, 0), dxfattribs={"extrusion": (0, 0, -1)})
    ref.add_auto_attribs({"TAG": "v"})
    doc.saveas(path)


def points(path):
    doc = ezdxf.readfile(path)
    out = []

    def put(entity, name, point):
        out.append(f"{entity.dxf.handle} {name} {point.x!r} {point.y!r}")

    for e in doc.modelspace():
        kind = e.dxftype()
        if kind == "CIRCLE":
            put(e, "center", e.ocs().to_wcs(e.dxf.center))
        elif kind in ("ARC", "ELLIPSE"):
            put(e, "start", Vec3(e.start_point))
            put(e, "end", Vec3(e.end_point))
        elif kind == "TEXT":
            put(e, "insert", e.ocs().to_wcs(e.dxf.insert))
        elif kind == "HATCH":
            ocs = e.ocs()
            elevation = e.dxf.elevation.z
            loop = e.paths.paths[0]
            if hasattr(loop, "vertices"):
                corners = [Vec3(v[0], v[1], elevation) for v in loop.vertices]
            else:  # an edge path: the centre of its arc, then its line ends
                corners = [Vec3(loop.edges[0].center.x, loop.edges[0].center.y, elevation)]
                corners += [Vec3(edge.end.x, edge.end.y, elevation) for edge in loop.edges[1:]]
            for k, corner in enumerate(corners):
                put(e, f"v{k}", ocs.to_wcs(corner))
        elif kind == "INSERT":
            for line in e.virtual_entities():
                put(e, "line_start", line.dxf.start)
                put(e, "line_end", line.dxf.end)
            for attrib in e.attribs:
                put(attrib, "insert", attrib.ocs().to_wcs(attrib.dxf.insert))
    print("\n".join(out))


if __name__ == "__main__":
    {"write": write, "points": points}[sys.argv[1]](sys.argv[2])
