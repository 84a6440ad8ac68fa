"""Lines and polylines drawn with ezdxf become a network in kestrana; ezdxf
reads the pipes, nodes and annotations back and finds the drawing sound.
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


def main():
    with tempfile.TemporaryDirectory() as folder:
        drawing = os.path.join(folder, "drawn.dxf")
        doc = ezdxf.new("R2010")
        doc.layers.add("Drawn")
        msp = doc.modelspace()
        msp.add_line((0, 0), (40, 0), dxfattribs={"layer": "Drawn"})
        msp.add_lwpolyline([(40, 0), (60, 10), (80, 0)],
                           dxfattribs={"layer": "Drawn"})
        msp.add_line((0, 30), (0, 60), dxfattribs={"layer": "Roads"})
        doc.saveas(drawing)
        run("new", drawing)
        result = run("convert", drawing, "--network", "Sewer", "--type",
                     "Gravity", "--layer", "Drawn")
        assert "converted 2 pipes and 3 new nodes" in result.stdout, result.stdout
        before = open(drawing, "rb").read()
        run("convert", drawing, "--network", "Sewer", "--layer", "Drawn",
            expect=1)
        assert open(drawing, "rb").read() == before

        doc = ezdxf.readfile(drawing)
        auditor = doc.audit()
        assert not auditor.has_errors, [str(e) for e in auditor.errors]
        msp = doc.modelspace()
        pipes = {record(p)[0]: p for p in msp.query("LWPOLYLINE")
                 if p.has_xdata("Kestrana")}
        assert sorted(pipes) == ["Pipe;Sewer;P-1", "Pipe;Sewer;P-2"], pipes
        assert all(p.dxf.layer == "Sewer - Network" for p in pipes.values())
        # The polyline was first in the set; the line's polyline came after.
        assert [tuple(v) for v in pipes["Pipe;Sewer;P-2"].get_points("xy")] == [
            (0, 0), (40, 0)]
        nodes = {record(n)[0]: n for n in msp.query("INSERT[name=='Kestrana_Node']")}
        assert sorted(nodes) == ["Node;Sewer;N-1", "Node;Sewer;N-2",
                                 "Node;Sewer;N-3"], nodes
        shared = nodes["Node;Sewer;N-1"]
        assert tuple(shared.dxf.insert)[:2] == (40, 0)
        assert record(shared)[4:6] == [";RelatedToP-1", ";RelatedToP-2"]
        annotations = [a for a in msp.query("INSERT")
                       if a.dxf.name == "Kestrana_GravityPipeAttribute"]
        texts = sorted(tuple(att.dxf.text for att in a.attribs)
                       for a in annotations)
        assert texts == [("P-1", "%%c200", "S=0.00%"),
                         ("P-2", "%%c200", "S=0.00%")], texts
        # The road line was not selected and stays a line.
        assert len(msp.query("LINE[layer=='Roads']")) == 1
    print("ok")


def cyrillic_code_page():
    """An R2000 drawing in the Cyrillic code page: names written by ezdxf
    are found by kestrana, and what kestrana adds is written in the page."""
    with tempfile.TemporaryDirectory() as folder:
        drawing = os.path.join(folder, "cyrillic.dxf")
        doc = ezdxf.new("R2000")
        doc.encoding = "cp1251"  # and $DWGCODEPAGE ANSI_1251
        doc.layers.add("Канализация")
        msp = doc.modelspace()
        msp.add_line((0, 0), (40, 0), dxfattribs={"layer": "Канализация"})
        msp.add_line((40, 0), (40, 30), dxfattribs={"layer": "Канализация"})
        msp.add_text("Люк №1", dxfattribs={"layer": "Канализация"})
        doc.saveas(drawing)
        assert "Канализация".encode("cp1251") in open(drawing, "rb").read()
        run("new", drawing)
        result = run("convert", drawing, "--network", "Сеть", "--type",
                     "Gravity", "--layer", "Канализация")
        assert "converted 2 pipes" in result.stdout, result.stdout

        data = open(drawing, "rb").read()
        assert "Сеть - Network".encode("cp1251") in data
        assert b"\\U+" not in data  # every name fits the page
        doc = ezdxf.readfile(drawing)
        assert doc.dxfversion == "AC1015"
        auditor = doc.audit()
        assert not auditor.has_errors, [str(e) for e in auditor.errors]
        assert "Сеть - Annotation" in doc.layers
        pipes = [record(p)[0] for p in doc.modelspace().query("LWPOLYLINE")
                 if p.has_xdata("Kestrana")]
        assert sorted(pipes) == ["Pipe;Сеть;P-1", "Pipe;Сеть;P-2"], pipes
        assert [t.dxf.text for t in doc.modelspace().query("TEXT")] == ["Люк №1"]


if __name__ == "__main__":
    main()
    cyrillic_code_page()
