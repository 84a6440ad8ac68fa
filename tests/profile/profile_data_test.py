"""A sewer drawn with ezdxf in mixed directions becomes a network in
kestrana; `kestrana profile data --json` gathers its profile, and the
distances, levels and depths are checked against values computed here from
the geometry and the records that ezdxf reads back.
Run: python3 THIS_FILE path/to/kestrana"""
import json
import math
import os
import subprocess
import sys
import tempfile

import ezdxf

KESTRANA = sys.argv[1]

# The run from (0, 0): east-north-east, a bend drawn backwards, then south.
DRAWN = [
    [(0, 0), (30, 40)],
    [(90, 40), (60, 80), (30, 40)],  # against the run
    [(90, 40), (90, 0)],
]
LATERAL = [(0, 40), (30, 40)]
GROUNDS = {(0, 0): 103.0, (30, 40): 104.0, (90, 40): 102.5, (90, 0): 101.0,
           (0, 40): 104.2}


def plane(x, y):
    return 100 + 0.01 * x + 0.02 * y


def run(*args, expect=0):
    result = subprocess.run([KESTRANA, *args], capture_output=True, text=True)
    assert result.returncode == expect, (args, result.returncode, result.stderr)
    return result


def record(entity):
    return [tag.value for tag in entity.get_xdata("Kestrana")]


def length(points):
    return sum(math.dist(a, b) for a, b in zip(points, points[1:]))


def close(a, b, tolerance=1e-6):
    return abs(float(a) - float(b)) <= tolerance


def write_surface(path):
    # LandXML points are northing, easting, elevation.
    corners = [(-10, -10), (200, -10), (200, 200), (-10, 200)]
    points = "".join(f'<P id="{i + 1}">{y} {x} {plane(x, y)}</P>'
                     for i, (x, y) in enumerate(corners))
    with open(path, "w") as f:
        f.write('<?xml version="1.0"?>\n<LandXML><Surfaces>'
                '<Surface name="EG"><Definition surfType="TIN">'
                f"<Pnts>{points}</Pnts>"
                "<Faces><F>1 2 3</F><F>1 3 4</F></Faces>"
                "</Definition></Surface></Surfaces></LandXML>\n")


def build(folder):
    drawing = os.path.join(folder, "sewer.dxf")
    doc = ezdxf.new("R2010")
    msp = doc.modelspace()
    for points in DRAWN + [LATERAL]:
        msp.add_lwpolyline(points, dxfattribs={"layer": "Drawn"})
    doc.saveas(drawing)
    run("new", drawing)
    run("convert", drawing, "--network", "Sewer", "--type", "Gravity",
        "--layer", "Drawn")
    doc = ezdxf.readfile(drawing)
    msp = doc.modelspace()
    for node in msp.query("INSERT[name=='Kestrana_Node']"):
        at = tuple(round(c, 6) for c in node.dxf.insert)[:2]
        label = record(node)[0].split(";")[2]
        run("node", "set", drawing, "--network", "Sewer", "--label", label,
            "--ground", str(GROUNDS[at]))
    # Levels falling along the run, whatever way each pipe was drawn.
    inverts = {(0, 0): 100.0, (30, 40): 99.5, (90, 40): 99.0, (90, 0): 98.6,
               (0, 40): 100.2}
    for pipe in msp.query("LWPOLYLINE"):
        if not pipe.has_xdata("Kestrana"):
            continue
        points = [tuple(p) for p in pipe.get_points("xy")]
        label = record(pipe)[0].split(";")[2]
        run("pipe", "set", drawing, "--network", "Sewer", "--label", label,
            "--start-invert", str(inverts[points[0]]),
            "--end-invert", str(inverts[points[-1]]))
    return drawing


def read_network(drawing):
    """Pipes by their first vertex's place, nodes by their place."""
    msp = ezdxf.readfile(drawing).modelspace()
    pipes, nodes = {}, {}
    for pipe in msp.query("LWPOLYLINE"):
        if pipe.has_xdata("Kestrana"):
            r = record(pipe)
            pipes[r[0].split(";")[2]] = {
                "points": [tuple(p) for p in pipe.get_points("xy")],
                "start_invert": float(r[8]), "end_invert": float(r[9]),
                "handle": pipe.dxf.handle}
    for node in msp.query("INSERT[name=='Kestrana_Node']"):
        r = record(node)
        nodes[tuple(node.dxf.insert)[:2]] = {
            "label": r[0].split(";")[2], "ground": float(r[8]),
            "sump": float(r[9])}
    return pipes, nodes


def expected_run(pipes):
    """The run walked from (0, 0): labels, directions, vertices from a."""
    order, here = [], (0, 0)
    remaining = {label: p for label, p in pipes.items()
                 if p["points"] != LATERAL}
    while remaining:
        for label, pipe in list(remaining.items()):
            points = pipe["points"]
            if points[0] == here or points[-1] == here:
                direction = 0 if points[0] == here else 1
                walked = points if direction == 0 else points[::-1]
                order.append((label, direction, walked))
                here = walked[-1]
                del remaining[label]
                break
    return order


def values(part, series):
    return part["series"][series]


def check(drawing, data, pipes, nodes, from_surface):
    order = expected_run(pipes)
    assert data["labels"] == [label for label, _, _ in order], data["labels"]
    assert data["directions"] == [d for _, d, _ in order]
    assert len(data["parts"]) == 1
    part = data["parts"][0]
    assert len(part["series"]) == 22
    lengths = [length(walked) for _, _, walked in order]
    assert all(close(v, l) for v, l in zip(values(part, 2), lengths))
    starts = [sum(lengths[:i]) for i in range(len(lengths) + 1)]
    node_places = [order[0][2][0]] + [walked[-1] for _, _, walked in order]
    assert values(part, 7) == [nodes[p]["label"] for p in node_places]
    ground = [plane(*p) if from_surface else nodes[p]["ground"]
              for p in node_places]
    assert all(close(v, g, 1e-5) for v, g in zip(values(part, 8), ground))
    for i, (label, direction, walked) in enumerate(order):
        pipe = pipes[label]
        a, b = pipe["start_invert"], pipe["end_invert"]
        if direction == 1:
            a, b = b, a
        assert close(values(part, 3)[2 * i], a)
        assert close(values(part, 3)[2 * i + 1], b)
        assert close(values(part, 11)[2 * i], ground[i] - a, 1e-5)
        assert close(values(part, 11)[2 * i + 1], ground[i + 1] - b, 1e-5)
        # 200 mm pipes: the cover is 0.2 less than the invert depth.
        assert close(values(part, 12)[2 * i], ground[i] - a - 0.2, 1e-5)
        assert close(values(part, 5)[i], abs(b - a) / lengths[i], 1e-8)
    # The lateral meets the run at (30, 40), one pipe along.
    lateral = [p for p in pipes.values() if p["points"] == LATERAL][0]
    connected = values(part, 10)
    assert len(connected) == 6, connected
    assert close(connected[0], starts[1]) and close(
        connected[1], lateral["end_invert"])
    # Stations at the nodes of the standard style.
    stations = values(part, 15)
    assert all(close(d, s) and close(s, starts[k])
               for k, (d, s) in enumerate(zip(stations[::2], stations[1::2])))
    line = values(part, 13)
    distances, levels = line[::2], line[1::2]
    if not from_surface:
        assert len(line) == 4 * len(order)
        return
    # Every 3 m along each pipe from its a end, and the b end.
    expected = []
    for (_, _, walked), start in zip(order, starts):
        total = length(walked)
        along = [3.0 * k for k in range(int(total // 3) + 1)]
        if total % 3 > 1e-7:
            along.append(total)
        for s in along:
            expected.append((start + s, plane(*point_at(walked, s))))
    assert len(distances) == len(expected), (len(distances), len(expected))
    for d, z, (ed, ez) in zip(distances, levels, expected):
        assert close(d, ed) and close(z, ez, 1e-5), (d, z, ed, ez)


def point_at(points, s):
    for a, b in zip(points, points[1:]):
        step = math.dist(a, b)
        if s <= step:
            t = s / step
            return (a[0] + (b[0] - a[0]) * t, a[1] + (b[1] - a[1]) * t)
        s -= step
    return points[-1]


def main():
    with tempfile.TemporaryDirectory() as folder:
        drawing = build(folder)
        pipes, nodes = read_network(drawing)
        run_labels = ",".join(sorted(
            label for label, p in pipes.items() if p["points"] != LATERAL))
        before = open(drawing, "rb").read()
        data = json.loads(run("profile", "data", drawing, "--network", "Sewer",
                              "--pipes", run_labels, "--start", "0,0",
                              "--json").stdout)
        check(drawing, data, pipes, nodes, from_surface=False)
        # The part holds the run's pipes by the same IDs.
        assert values(data["parts"][0], 0) == data["oids"]
        assert len(set(data["oids"])) == 3 and all(
            isinstance(o, int) for o in data["oids"])

        surface = os.path.join(folder, "eg.xml")
        write_surface(surface)
        data = json.loads(run("profile", "data", drawing, "--network", "Sewer",
                              "--pipes", run_labels, "--start", "0,0",
                              "--surface", surface, "--json").stdout)
        check(drawing, data, pipes, nodes, from_surface=True)

        # A branched selection is refused with the system's message.
        result = run("profile", "data", drawing, "--network", "Sewer",
                     "--pipes", ",".join(pipes), expect=1)
        assert "don't represent a single continuous line" in result.stderr
        assert open(drawing, "rb").read() == before, "the drawing is only read"
    print("ok")


if __name__ == "__main__":
    main()
