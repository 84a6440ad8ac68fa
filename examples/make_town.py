#!/usr/bin/python3
"""Writes the bundled example: examples/town.dxf and examples/town-surface.xml.

A small street grid with sewer lines and water mains drawn as plain lines and
polylines on their own layers, crossing each other, over a rolling terrain
given as a LandXML TIN. Run with Debian's python3-ezdxf:
    /usr/bin/python3 examples/make_town.py
"""
import math
import os

import ezdxf

HERE = os.path.dirname(os.path.abspath(__file__))


def ground(x, y):
    return 100.0 + 0.02 * x - 0.012 * y + 1.5 * math.sin(x / 60.0) * math.cos(y / 50.0)


def write_dxf(path):
    doc = ezdxf.new("R2010")
    # Unitless: LibreCAD sizes its paper in drawing units otherwise.
    doc.header["$INSUNITS"] = 0
    doc.layers.add("Sewer lines", color=6)
    doc.layers.add("Water lines", color=5)
    doc.layers.add("Streets", color=8)
    msp = doc.modelspace()
    # Street edges, for context only.
    for y in (140, 160):
        msp.add_line((0, y), (400, y), dxfattribs={"layer": "Streets"})
    for x in (110, 130, 290, 310):
        msp.add_line((x, 0), (x, 300), dxfattribs={"layer": "Streets"})
    # Sewer: a trunk along the main street, drawn manhole to manhole, and two
    # branches along the cross streets that join it.
    trunk = [(20, 150), (80, 150), (120, 150), (180, 150), (240, 150), (300, 150), (380, 150)]
    for a, b in zip(trunk, trunk[1:]):
        msp.add_line(a, b, dxfattribs={"layer": "Sewer lines"})
    msp.add_lwpolyline([(120, 270), (120, 210), (120, 150)], dxfattribs={"layer": "Sewer lines"})
    msp.add_line((300, 30), (300, 90), dxfattribs={"layer": "Sewer lines"})
    msp.add_line((300, 90), (300, 150), dxfattribs={"layer": "Sewer lines"})
    # Water: two mains with bends, crossing the sewer trunk and a branch.
    msp.add_lwpolyline([(60, 20), (60, 120), (100, 145), (100, 280)], dxfattribs={"layer": "Water lines"})
    msp.add_lwpolyline([(100, 280), (200, 280), (260, 200), (330, 120), (390, 120)],
                       dxfattribs={"layer": "Water lines"})
    msp.add_line((200, 20), (200, 280), dxfattribs={"layer": "Water lines"})
    doc.saveas(path)


def write_landxml(path):
    step = 20
    nx, ny = 420 // step + 1, 320 // step + 1
    pts = []
    for j in range(ny):
        for i in range(nx):
            x, y = -10 + i * step, -10 + j * step
            pts.append((x, y, ground(x, y)))
    faces = []
    for j in range(ny - 1):
        for i in range(nx - 1):
            a = j * nx + i + 1
            faces.append((a, a + 1, a + nx + 1))
            faces.append((a, a + nx + 1, a + nx))
    with open(path, "w", encoding="utf-8") as f:
        f.write('<?xml version="1.0" encoding="UTF-8"?>\n')
        f.write('<LandXML xmlns="http://www.landxml.org/schema/LandXML-1.2" version="1.2">\n')
        f.write('  <Units><Metric linearUnit="meter" areaUnit="squareMeter" volumeUnit="cubicMeter"/></Units>\n')
        f.write('  <Surfaces>\n    <Surface name="Existing Ground">\n')
        f.write('      <Definition surfType="TIN">\n        <Pnts>\n')
        for k, (x, y, z) in enumerate(pts, start=1):
            # LandXML points are northing, easting, elevation.
            f.write(f'          <P id="{k}">{y:.3f} {x:.3f} {z:.3f}</P>\n')
        f.write('        </Pnts>\n        <Faces>\n')
        for a, b, c in faces:
            f.write(f'          <F>{a} {b} {c}</F>\n')
        f.write('        </Faces>\n      </Definition>\n    </Surface>\n  </Surfaces>\n</LandXML>\n')


if __name__ == "__main__":
    write_dxf(os.path.join(HERE, "town.dxf"))
    write_landxml(os.path.join(HERE, "town-surface.xml"))
