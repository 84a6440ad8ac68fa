"""Pipes and nodes written by another program get crossing annotations and
low/high points from kestrana; ezdxf reads the result back.
Run: python3 THIS_FILE path/to/kestrana"""
import json
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


def kestrana_record(entity):
    return ["Kestrana"] + [tag.value for tag in entity.get_xdata("Kestrana")]


def pipe_record(network, kind, label, start_invert, end_invert,
                start_node=("", ""), end_node=("", "")):
    """Fields 1 to 23 of a pipe record; nodes are (label, handle-as-ID)."""
    def ref(value):
        return ";RelatedTo" + value if value else ""
    return [(1000, f"Pipe;{network};{label}"), (1000, kind + "Pipe"),
            (1000, "SectionShape_Circular"), (1040, 250.0), (1040, 250.0),
            (1040, 0.0), (1040, 0.0), (1070, 1), (1040, start_invert),
            (1040, end_invert), (1000, "PVC"), (1000, ref(start_node[0])),
            (1000, ref(end_node[0])), (1000, ref(start_node[1])),
            (1000, ref(end_node[1]))] + [(1000, "")] * 8


def node_record(network, label, sump):
    return [(1000, f"Node;{network};{label}"), (1000, "PressureNode"),
            (1070, 0), (1070, 1)] + [(1000, "")] * 4 + [
                (1040, sump + 2), (1040, sump)] + [(1000, "")] * 4


def object_id(entity):
    # kestrana derives an object's ID from its handle (as long as the
    # drawing's handles are small).
    return str(2130000000 + int(entity.dxf.handle, 16))


def main():
    with tempfile.TemporaryDirectory() as folder:
        drawing = os.path.join(folder, "site.dxf")
        run("new", drawing)
        run("network", "add", drawing, "Sewer", "--type", "Gravity")
        run("network", "add", drawing, "Water", "--type", "Pressure")

        doc = ezdxf.readfile(drawing)
        msp = doc.modelspace()
        block = doc.blocks.new("Kestrana_Node")
        block.add_circle((0, 0), 0.5)
        for y, label in ((0, "P-1"), (30, "P-2")):
            pipe = msp.add_lwpolyline([(0, y), (100, y)],
                                      dxfattribs={"layer": "Sewer - Network"})
            pipe.set_xdata("Kestrana",
                           pipe_record("Sewer", "Gravity", label, 100, 99))
        nodes = []
        for i, (x, y, sump) in enumerate(((50, -20, 95), (50, 10, 94),
                                           (50, 50, 96))):
            node = msp.add_blockref("Kestrana_Node", (x, y),
                                    dxfattribs={"layer": "Water - Network"})
            nodes.append((node, f"N-{i + 1}", sump))
        pipes_at = {n[1]: ([], []) for n in nodes}
        for i in range(2):
            (a, a_label, a_sump), (b, b_label, b_sump) = nodes[i], nodes[i + 1]
            pipe = msp.add_lwpolyline(
                [a.dxf.insert.vec2, b.dxf.insert.vec2],
                dxfattribs={"layer": "Water - Network"})
            pipe.set_xdata("Kestrana", pipe_record(
                "Water", "Pressure", f"W-{i + 1}", a_sump, b_sump,
                (a_label, object_id(a)), (b_label, object_id(b))))
            pipes_at[a_label][0].append(object_id(pipe))
            pipes_at[b_label][1].append(object_id(pipe))
        for node, label, sump in nodes:
            record = node_record("Water", label, sump)
            record[6] = (1000, "".join(";RelatedTo" + p for p in pipes_at[label][0]))
            record[7] = (1000, "".join(";RelatedTo" + p for p in pipes_at[label][1]))
            node.set_xdata("Kestrana", record)
        doc.layers.get("Sewer - Network").lock()
        doc.saveas(drawing)

        out = run("crossings", drawing, "--build", "--threshold", "4.5").stdout
        assert "drew 2 new crossing annotations" in out, out
        out = run("lowhigh", drawing, "--build", "--hide", "Water").stdout
        assert "low points: 1, high points: 2" in out, out

        doc = ezdxf.readfile(drawing)
        assert len(doc.audit().errors) == 0
        assert doc.layers.get("Sewer - Network").is_locked()
        msp = doc.modelspace()
        annotations = [e for e in msp.query("INSERT")
                       if e.dxf.name.startswith("Kestrana_CrossingAnno_")]
        assert len(annotations) == 2
        by_pipe = {kestrana_record(a)[5]: a for a in annotations}
        first = by_pipe[";RelatedToP-1"]
        assert first.dxf.layer == "Crossing Point Annotation Text"
        assert tuple(first.dxf.insert)[:2] == (70, 20), first.dxf.insert
        assert [a.dxf.text for a in first.attribs] == [
            "Water %%c250", "I.L.= 94.333", "Sewer %%c250", "I.L.= 99.500",
            "Clearance= 4.917"]
        # Above the threshold of 4.5: hidden with its line; the other
        # crossing's clearance is 4.25.
        assert first.dxf.invisible == 1
        second = by_pipe[";RelatedToP-2"]
        assert second.dxf.invisible == 0
        lines = {object_id(line): line for line in msp.query("LINE")
                 if line.dxf.layer == "Crossing Point Annotation Lines"}
        line = lines[kestrana_record(first)[15][len(";RelatedTo"):]]
        assert tuple(line.dxf.start)[:2] == (50, 0)
        assert line.dxf.invisible == 1

        markers = {kestrana_record(m)[3]: m for m in msp.query("INSERT")
                   if m.dxf.name in ("Kestrana_LowPoint", "Kestrana_HighPoint")}
        assert markers[";RelatedToN-2"].dxf.name == "Kestrana_LowPoint"
        assert markers[";RelatedToN-3"].dxf.name == "Kestrana_HighPoint"
        assert all(m.dxf.invisible == 1 for m in markers.values())
        assert all(m.dxf.layer == "Water - Low&High Points"
                   for m in markers.values())

        listed = json.loads(
            run("crossings", drawing, "--list", "--json").stdout)
        pipes = [c[p] for c in listed["crossings"] for p in ("pipe1", "pipe2")]
        w2 = next(p for p in pipes if p["label"] == "W-2")
        assert w2["size"] == {"shape": "circular", "span": 250, "rise": 250,
                              "cells": 1}, w2
        assert w2["invert"] == 95, w2
    print("ok")


if __name__ == "__main__":
    main()
