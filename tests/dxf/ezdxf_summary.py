"""Prints what ezdxf finds in a DXF file, as JSON, for the C++ tests.

Usage: /usr/bin/python3 ezdxf_summary.py FILE.dxf
"""
import json
import sys

import ezdxf
from ezdxf.math import Vec3


def plain(value):
    return list(value) if isinstance(value, Vec3) else value


doc = ezdxf.readfile(sys.argv[1])
audit = doc.audit()
entities = []
for layout in doc.layouts:
    for e in layout:
        item = {"type": e.dxftype(), "handle": e.dxf.handle, "layer": e.dxf.layer,
                "layout": layout.name, "owner": e.dxf.owner}
        if e.xdata is not None:
            item["xdata"] = {app: [[t.code, plain(t.value)] for t in e.xdata.get(app)]
                             for app in e.xdata.data}
        if e.dxftype() == "INSERT":
            item["attribs"] = [[a.dxf.tag, a.dxf.text] for a in e.attribs]
        if e.dxftype() == "TEXT":
            item["text"] = e.dxf.text
        entities.append(item)
msp = doc.block_records.get("*Model_Space")
blocks = {b.name: [e.dxftype() for e in b] for b in doc.blocks if not b.is_any_layout}
print(json.dumps({
    "version": doc.dxfversion,
    "errors": [e.message for e in audit.errors],
    "entities": entities,
    "blocks": blocks,
    "layers": sorted(l.dxf.name for l in doc.layers),
    "appids": sorted(a.dxf.name for a in doc.appids),
    "msp_xdata": [[t.code, t.value] for t in msp.get_xdata("Kestrana")]
    if msp.has_xdata("Kestrana") else None,
}, ensure_ascii=False))
