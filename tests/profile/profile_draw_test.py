"""A sewer drawn with ezdxf becomes a network in kestrana; `kestrana profile
draw` draws its profile, and ezdxf reads back the block: manholes and pipe
lines at the levels of the records, the records of the profile and its
pipes; an edit stamps the profile and `kestrana profile update` redraws it
without the stamp.
Run: python3 THIS_FILE path/to/kestrana"""
import math
import os
import subprocess
import sys
import tempfile

import ezdxf

KESTRANA = sys.argv[1]
PLACES = [(0, 0), (50, 0), (80, 40), (130, 40)]
GROUND = {(0, 0): 104.0, (50, 0): 103.5, (80, 40): 103.0, (130, 40): 102.2}
SUMP = {(0, 0): 101.0, (50, 0): 100.6, (80, 40): 100.2, (130, 40): 99.7}
VE = 10  # the Standard style's exaggeration
BLOCK = "Kestrana_Profile_Sewer_Trunk"


def run(*args, expect=0):
    result = subprocess.run([KESTRANA, *args], capture_output=True, text=True)
    assert result.returncode == expect, (args, result.returncode, result.stderr)
    return result


def record(entity):
    return [tag.value for tag in entity.get_xdata("Kestrana")]


def build(folder):
    drawing = os.path.join(folder, "sewer.dxf")
    doc = ezdxf.new("R2010")
    msp = doc.modelspace()
    for a, b in zip(PLACES, PLACES[1:]):
        msp.add_lwpolyline([a, b], dxfattribs={"layer": "Drawn"})
    doc.saveas(drawing)
    run("new", drawing)
    run("convert", drawing, "--network", "Sewer", "--type", "Gravity",
        "--layer", "Drawn")
    msp = ezdxf.readfile(drawing).modelspace()
    labels = {}
    for node in msp.query("INSERT[name=='Kestrana_Node']"):
        at = tuple(round(c, 6) for c in node.dxf.insert)[:2]
        labels[at] = record(node)[0].split(";")[2]
        run("node", "set", drawing, "--network", "Sewer", "--label",
            labels[at], "--ground", str(GROUND[at]))
    for pipe in msp.query("LWPOLYLINE"):
        if pipe.has_xdata("Kestrana"):
            points = [tuple(p) for p in pipe.get_points("xy")]
            run("pipe", "set", drawing, "--network", "Sewer", "--label",
                record(pipe)[0].split(";")[2], "--start-invert",
                str(SUMP[points[0]]), "--end-invert", str(SUMP[points[-1]]))
    return drawing, labels


def entities(doc, layer, kind):
    return [e for e in doc.blocks.get(BLOCK)
            if e.dxf.layer == layer and e.dxftype() == kind]


def check_levels(doc, datum, sumps):
    distances = [0.0]
    for a, b in zip(PLACES, PLACES[1:]):
        distances.append(distances[-1] + math.dist(a, b))
    manholes = sorted(entities(doc, "Profile - Manhole", "LWPOLYLINE"),
                      key=lambda e: min(p[0] for p in e.get_points("xy")))
    assert len(manholes) == len(PLACES)
    for manhole, d, place in zip(manholes, distances, PLACES):
        xs = [p[0] for p in manhole.get_points("xy")]
        ys = [p[1] for p in manhole.get_points("xy")]
        assert abs((min(xs) + max(xs)) / 2 - d) < 1e-6
        assert abs(min(ys) - (sumps[place] - datum) * VE) < 1e-6
        assert abs(max(ys) - (GROUND[place] - datum) * VE) < 1e-6
    lines = entities(doc, "Profile - Pipe", "LINE")
    assert len(lines) == 2 * (len(PLACES) - 1)


def main():
    with tempfile.TemporaryDirectory() as folder:
        drawing, labels = build(folder)
        pipes = ",".join(f"P-{i}" for i in range(1, len(PLACES)))
        run("profile", "draw", drawing, "--network", "Sewer", "--name",
            "Trunk", "--pipes", pipes, "--start", "0,0", "--at", "500,-200",
            "--plan-stations")
        doc = ezdxf.readfile(drawing)
        datum = math.floor(min(SUMP.values()) - 2)
        check_levels(doc, datum, SUMP)
        insert = [i for i in doc.modelspace().query("INSERT")
                  if i.dxf.name == BLOCK]
        assert len(insert) == 1
        assert tuple(insert[0].dxf.insert)[:2] == (500, -200)
        r = record(insert[0])
        # Without the application name: field k is r[k - 1].
        assert r[0] == "Profile;Sewer;Trunk" and r[14] == 0, r
        assert r[10] == "1;0" and r[13] == "0;1", r
        labels_in_block = {e.dxf.text for e in
                           entities(doc, "Profile - Label", "TEXT")}
        assert "%%uTrunk" in labels_in_block
        assert f"DATUM  {datum:.2f}" in labels_in_block
        for pipe in doc.modelspace().query("LWPOLYLINE"):
            if pipe.has_xdata("Kestrana"):
                assert record(pipe)[21] == ";RelatedToTrunk", record(pipe)

        # An edit stamps the profile; the update redraws it without.
        first = labels[PLACES[0]]
        run("node", "set", drawing, "--network", "Sewer", "--label", first,
            "--sump", "100.9")
        doc = ezdxf.readfile(drawing)
        stamps = [e for e in doc.modelspace()
                  if e.dxf.layer == "Profile - Stamp"]
        assert [e.dxf.text for e in stamps] == ["NeedsUpdate"]
        run("profile", "update", drawing, "--all-flagged")
        doc = ezdxf.readfile(drawing)
        assert not [e for e in doc.modelspace()
                    if e.dxf.layer == "Profile - Stamp"]
        sumps = dict(SUMP)
        sumps[PLACES[0]] = 100.9
        check_levels(doc, datum, sumps)
        insert = [i for i in doc.modelspace().query("INSERT")
                  if i.dxf.name == BLOCK]
        assert len(insert) == 1 and record(insert[0])[14] == 0
    print("ok")


main()
