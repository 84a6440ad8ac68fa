"""Old and binary drawings given a project by kestrana open in ezdxf as
R2000 drawings, with their classic polylines as lightweight ones.

Run as: /usr/bin/python3 old_versions_test.py path/to/kestrana
"""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

import ezdxf
from ezdxf import recover

KESTRANA = None
FILES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "files")


class OldVersions(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.mkdtemp()

    def tearDown(self):
        shutil.rmtree(self.dir)

    def new_project(self, name):
        out = os.path.join(self.dir, "out_" + name)
        run = subprocess.run(
            [KESTRANA, "new", os.path.join(FILES, name), "-o", out],
            capture_output=True, text=True)
        self.assertEqual(run.returncode, 0, run.stderr)
        return out, run.stderr

    def test_project_in_old_drawings_makes_them_r2000(self):
        for name, old in (("r12.dxf", "AC1009"), ("r12_binary.dxf", "AC1009"),
                          ("r13.dxf", "AC1012"), ("r14.dxf", "AC1014")):
            with self.subTest(name):
                source = ezdxf.readfile(os.path.join(FILES, name))
                out, err = self.new_project(name)
                self.assertEqual(err.count("saved as DXF R2000"), 1, err)
                self.assertIn(old, err)
                doc = ezdxf.readfile(out)
                self.assertEqual(doc.dxfversion, "AC1015")
                msp = doc.modelspace()
                self.assertTrue(msp.block_record.has_xdata("Kestrana"))
                kinds = [e.dxftype() for e in msp]
                self.assertNotIn("POLYLINE", kinds)
                self.assertEqual(kinds.count("LWPOLYLINE"), 1)
                old_poly = next(e for e in source.modelspace()
                                if e.dxftype() == "POLYLINE")
                lw = next(e for e in msp if e.dxftype() == "LWPOLYLINE")
                self.assertEqual(
                    [tuple(v.dxf.location)[:2] for v in old_poly.vertices],
                    [tuple(p) for p in lw.get_points("xy")])
                self.assertEqual(lw.dxf.layer, old_poly.dxf.layer)
                # Everything else of the plan is there.
                for kind in ("LINE", "TEXT", "INSERT", "CIRCLE"):
                    self.assertEqual(
                        kinds.count(kind),
                        len(source.modelspace().query(kind)), kind)
                circle = msp.query("CIRCLE")[0]
                self.assertEqual(circle.get_xdata("SURVEY")[0].value, "tree")
                if not name.endswith("binary.dxf"):  # recover reads ASCII
                    _, auditor = recover.readfile(out)
                    self.assertEqual(len(auditor.errors), 0,
                                     [e.message for e in auditor.errors])

    def test_librecad_opens_the_upgraded_drawing(self):
        out, _ = self.new_project("r12.dxf")
        env = dict(os.environ, QT_QPA_PLATFORM="offscreen")
        run = subprocess.run(["librecad", "dxf2pdf", "-a", out], cwd=self.dir,
                             env=env, capture_output=True, timeout=300)
        pdf = out[:-4] + ".pdf"
        self.assertTrue(os.path.exists(pdf), run.stderr)
        # An empty page is about 1.2 kB; this plan draws about 10 kB.
        self.assertGreater(os.path.getsize(pdf), 5000)

    def test_binary_stays_binary(self):
        out, _ = self.new_project("r12_binary.dxf")
        with open(out, "rb") as f:
            self.assertEqual(f.read(22), b"AutoCAD Binary DXF\r\n\x1a\x00")

    def test_unchanged_old_drawing_stays_as_it_was(self):
        for name in ("r12.dxf", "r12_binary.dxf", "r14.dxf"):
            with self.subTest(name):
                out = os.path.join(self.dir, "saved_" + name)
                run = subprocess.run(
                    [KESTRANA, "save", os.path.join(FILES, name), "-o", out],
                    capture_output=True, text=True)
                self.assertEqual(run.returncode, 0, run.stderr)
                self.assertEqual(run.stderr, "")
                with open(out, "rb") as a, open(os.path.join(FILES, name),
                                                "rb") as b:
                    self.assertEqual(a.read(), b.read())


if __name__ == "__main__":
    KESTRANA = os.path.abspath(sys.argv.pop(1))
    unittest.main()
