"""A network drawn with ezdxf and converted by kestrana is moved and
stretched; ezdxf reads the drawing back sound, with every pipe end on its
node and the crossings where the pipes now cross.
Run: python3 THIS_FILE path/to/kestrana"""
import os
import subprocess
import sys
import tempfile

import ezdxf

KESTRANA = sys.argv[1]


def run(*args, expect=0):
    result = subprocess.run([KESTRANA, *args], capture_output=True, text=True)
    assert result.returncode == expect, (args, result.returncode, result.stderr)
    return result


def record(entity):
    return [tag.value for tag in entity.get_xdata("Kestrana")]


def read(drawing):
    doc = ezdxf.readfile(drawing)
    auditor = doc.audit()
    assert not auditor.has_errors, [str(e) for e in auditor.errors]
    msp = doc.modelspace()
    pipes = {record(p)[0]: p for p in msp.query("LWPOLYLINE")
             if p.has_xdata("Kestrana")}
    nodes = {record(n)[0]: n
             for n in msp.query("INSERT[name=='Kestrana_Node']")}
    return msp, pipes, nodes


def ends_on_nodes(pipes, nodes):
    for name, pipe in pipes.items():
        fields = record(pipe)
        network = name.split(";")[1]
        points = [tuple(v) for v in pipe.get_points("xy")]
        # Fields 12 and 13 (11 and 12 without the application name) name
        # the start and end nodes by label.
        for point, label in ((points[0], fields[11]), (points[-1], fields[12])):
            node = nodes["Node;%s;%s" % (network, label[len(";RelatedTo"):])]
            at = tuple(node.dxf.insert)[:2]
            assert abs(point[0] - at[0]) < 1e-6 and abs(point[1] - at[1]) < 1e-6, (
                name, point, at)


def crossings(msp):
    return sorted(record(a)[0] for a in msp.query("INSERT")
                  if a.dxf.name.startswith("Kestrana_CrossingAnno"))


def main():
    with tempfile.TemporaryDirectory() as folder:
        drawing = os.path.join(folder, "drawn.dxf")
        doc = ezdxf.new("R2010")
        msp = doc.modelspace()
        msp.add_lwpolyline([(0, 0), (100, 0)], dxfattribs={"layer": "Sewer"})
        msp.add_lwpolyline([(100, 0), (200, 0)], dxfattribs={"layer": "Sewer"})
        msp.add_line((150, -40), (150, 40), dxfattribs={"layer": "Water"})
        stray = msp.add_line((0, 80), (20, 80), dxfattribs={"layer": "Roads"})
        doc.saveas(drawing)
        run("new", drawing)
        run("convert", drawing, "--network", "Sewer", "--type", "Gravity",
            "--layer", "Sewer")
        run("convert", drawing, "--network", "Water", "--type", "Pressure",
            "--layer", "Water")
        msp, pipes, nodes = read(drawing)
        assert crossings(msp) == ["CPA;;WaterP-1SewerP-2Annotation"]

        # N-2 across the main: P-1 crosses it now, P-2 no longer.
        run("move", drawing, "--network", "Sewer", "--nodes", "N-2",
            "--by", "120,0")
        msp, pipes, nodes = read(drawing)
        ends_on_nodes(pipes, nodes)
        assert [tuple(v) for v in pipes["Pipe;Sewer;P-1"].get_points("xy")] == [
            (0, 0), (220, 0)]
        assert crossings(msp) == ["CPA;;SewerP-1WaterP-1Annotation"], crossings(msp)
        assert len([l for l in msp.query("LINE") if l.has_xdata("Kestrana")]) == 1

        # P-2's end dragged off N-3 snaps back; a line of no network just
        # moves.
        run("stretch", drawing, "--network", "Sewer", "--pipe", "P-2",
            "--vertex", "1", "--to", "200,60")
        run("move", drawing, "--handles", stray.dxf.handle, "--by", "5,5")
        msp, pipes, nodes = read(drawing)
        ends_on_nodes(pipes, nodes)
        assert [tuple(v) for v in pipes["Pipe;Sewer;P-2"].get_points("xy")] == [
            (220, 0), (200, 0)]
        roads = msp.query("LINE[layer=='Roads']")
        assert tuple(roads[0].dxf.start)[:2] == (5, 85)
    print("ok")


if __name__ == "__main__":
    main()
