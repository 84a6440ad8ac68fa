"""Runs `kestrana save` over a corpus of DXF drawings and counts how many
load, how many come back byte for byte and how many ezdxf finds equal to
their input (entities per type in every block, layers, extended data).

The corpus: ezdxf writes every version it knows (R12, R2000 to R2018), in
ASCII and binary, with every entity kind it can make; Debian's librecad
package adds its library of real drawings.

Usage: /usr/bin/python3 bench/dxf_corpus.py path/to/kestrana [WORKDIR]
"""
import collections
import glob
import os
import subprocess
import sys
import tempfile

import ezdxf

VERSIONS = ["R12", "R2000", "R2004", "R2007", "R2010", "R2013", "R2018"]


def every_kind(doc):
    """Adds one entity of every kind ezdxf makes for the version."""
    msp = doc.modelspace()
    block = doc.blocks.new("B")
    block.add_circle((0, 0), 1)
    block.add_attdef("TAG", (0, 0))
    makers = [
        lambda: msp.add_point((1, 2)),
        lambda: msp.add_line((0, 0), (5, 5)),
        lambda: msp.add_circle((1, 1), 2),
        lambda: msp.add_arc((1, 1), 2, 10, 200),
        lambda: msp.add_solid([(0, 0), (1, 0), (0, 1), (1, 1)]),
        lambda: msp.add_trace([(0, 0), (1, 0), (0, 1), (1, 1)]),
        lambda: msp.add_3dface([(0, 0, 0), (1, 0, 0), (1, 1, 1), (0, 1, 0)]),
        lambda: msp.add_text("Text é", dxfattribs={"insert": (0, 5)}),
        lambda: msp.add_blockref("B", (3, 3)).add_attrib("TAG", "v", (3, 3)),
        lambda: msp.add_polyline2d([(0, 0), (2, 0), (2, 2)]),
        lambda: msp.add_polyline3d([(0, 0, 0), (2, 0, 1), (2, 2, 2)]),
        lambda: msp.add_polymesh((3, 3)),
        lambda: msp.add_polyface().append_face([(0, 0, 0), (1, 0, 0),
                                                (1, 1, 0)]),
        lambda: msp.add_lwpolyline([(0, 0), (1, 1, 0, 0, 0.5), (2, 0)]),
        lambda: msp.add_ellipse((0, 0), (3, 0), 0.5),
        lambda: msp.add_mtext("MText\\Pline", dxfattribs={"insert": (0, 9)}),
        lambda: msp.add_spline([(0, 0), (1, 2), (3, 1), (4, 4)]),
        lambda: hatch(msp),
        lambda: msp.add_xline((0, 0), (1, 1)),
        lambda: msp.add_ray((0, 0), (1, 0)),
        lambda: msp.add_leader([(0, 0), (2, 2), (4, 2)]),
        lambda: msp.add_wipeout([(0, 0), (2, 0), (2, 2)]),
        lambda: mesh(msp),
        lambda: msp.add_linear_dim((0, 3), (0, 0), (5, 0)).render(),
        lambda: msp.add_radius_dim((0, 0), radius=3, angle=45).render(),
        lambda: image(doc, msp),
        lambda: msp.add_line((9, 9), (10, 10)).set_xdata(
            "CORPUS", [(1000, "x"), (1040, 1.5), (1070, 2)]),
    ]
    doc.appids.new("CORPUS")
    for make in makers:
        try:
            make()
        except Exception:  # not in this version
            pass


def hatch(msp):
    h = msp.add_hatch(color=2)
    h.paths.add_polyline_path([(0, 0), (4, 0), (4, 4)], is_closed=True)


def mesh(msp):
    m = msp.add_mesh()
    with m.edit_data() as data:
        data.vertices = [(0, 0, 0), (1, 0, 0), (1, 1, 0)]
        data.faces = [(0, 1, 2)]


def image(doc, msp):
    definition = doc.add_image_def("plan.png", size_in_pixel=(64, 64))
    msp.add_image(definition, (0, 0), (4, 4))


def make_corpus(folder):
    paths = []
    for version in VERSIONS:
        doc = ezdxf.new(version)
        every_kind(doc)
        for fmt in ("asc", "bin"):
            path = os.path.join(folder, f"ezdxf_{version}_{fmt}.dxf")
            doc.saveas(path, fmt=fmt)
            paths.append(path)
    return paths


def summary(path):
    doc = ezdxf.readfile(path)
    blocks = {}
    for block in doc.blocks:
        blocks[block.name.upper()] = collections.Counter(
            e.dxftype() for e in block)
    xdata = collections.Counter()
    for layout_or_block in doc.blocks:
        for e in layout_or_block:
            if e.xdata is not None:
                for app in e.xdata.data:
                    xdata[(e.dxftype(), app, str(list(e.xdata.get(app))))] += 1
    layers = sorted(layer.dxf.name.upper() for layer in doc.layers)
    return blocks, layers, xdata


def main():
    kestrana = os.path.abspath(sys.argv[1])
    work = sys.argv[2] if len(sys.argv) > 2 else tempfile.mkdtemp()
    os.makedirs(work, exist_ok=True)
    groups = {
        "ezdxf": make_corpus(work),
        "librecad": sorted(glob.glob("/usr/share/librecad/library/**/*.dxf",
                                     recursive=True)),
    }
    for name, paths in groups.items():
        counts = collections.Counter()
        refused = collections.Counter()
        for i, path in enumerate(paths):
            out = os.path.join(work, f"out_{name}_{i}.dxf")
            run = subprocess.run([kestrana, "save", path, "-o", out],
                                 capture_output=True, text=True)
            counts["files"] += 1
            if run.returncode != 0:
                refused[run.stderr.split(": ", 2)[-1].strip()[:70]] += 1
                continue
            counts["load"] += 1
            with open(path, "rb") as a, open(out, "rb") as b:
                if a.read() == b.read():
                    counts["same bytes"] += 1
            try:
                before = summary(path)
            except Exception:
                counts["ezdxf cannot read the input"] += 1
                continue
            try:
                after = summary(out)
            except Exception as e:
                counts["ezdxf cannot read the output"] += 1
                print("  ezdxf fails on output of", path, e)
                continue
            if before == after:
                counts["equal for ezdxf"] += 1
            else:
                print("  differs for ezdxf:", path)
        print(f"{name}: " + ", ".join(f"{k} {v}" for k, v in counts.items()))
        for message, n in refused.most_common(5):
            print(f"  refused {n}: {message}")


if __name__ == "__main__":
    main()
