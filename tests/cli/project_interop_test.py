"""A drawing made by another program gets a project and networks from
kestrana; ezdxf reads the result back. Run: python3 THIS_FILE path/to/kestrana"""
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
    """The record by field number: field 0 is the application name."""
    return ["Kestrana"] + [tag.value for tag in entity.get_xdata("Kestrana")]


def main():
    with tempfile.TemporaryDirectory() as folder:
        source = os.path.join(folder, "street.dxf")
        doc = ezdxf.new("R2010")
        msp = doc.modelspace()
        doc.layers.add("Kerbs", color=1).lock()
        msp.add_lwpolyline([(0, 0), (50, 0), (50, 30)], dxfattribs={"layer": "Kerbs"})
        msp.add_line((0, 5), (40, 5))
        doc.saveas(source)
        with open(source, "rb") as f:
            original = f.read()

        target = os.path.join(folder, "project.dxf")
        run("new", source, "-o", target)
        run("network", "add", target, "Foul Sewer", "--type", "Gravity")
        run("network", "add", target, "Water Main", "--type", "Pressure")
        run("network", "add", target, "Foul Sewer", "--type", "Gravity", expect=1)
        with open(source, "rb") as f:
            assert f.read() == original, "the input drawing was changed"

        doc = ezdxf.readfile(target)
        assert len(doc.audit().errors) == 0
        project = kestrana_record(doc.block_records.get("*Model_Space"))
        assert project[3] == "Foul Sewer;Water Main;", project
        assert project[4] == "Gravity;Pressure;", project
        assert project[7] == "Metric"
        assert project[8] == "-1;Water Main;Foul Sewer", project
        assert project[9] == "Water Main;"
        assert project[11] == "2.00"
        assert project[1].startswith("Standard;11;"), project[1]

        # The markers named by the project record are hidden points.
        roles = {}
        for entity in doc.modelspace().query("POINT"):
            record = kestrana_record(entity)
            roles[record[2]] = entity
            assert entity.dxf.invisible == 1
        assert set(roles) == {"ViewStylePoint", "MaterialLibraryPoint",
                              "SectionSizeLibraryPoint", "ProfileStylePoint"}
        assert len(kestrana_record(roles["ViewStylePoint"])) == 43
        assert len(kestrana_record(roles["ProfileStylePoint"])) == 21

        # What the drawing held before is still there, the lock included.
        assert doc.layers.get("Kerbs").is_locked()
        assert len(doc.modelspace().query("LWPOLYLINE")) == 1
        assert len(doc.modelspace().query("LINE")) == 1
        assert doc.layers.get("Foul Sewer - Network").color == 6
        assert doc.layers.get("Water Main - Network").color == 4
        assert doc.layers.get("Water Main - Annotation").color == 3

        listed = run("network", "list", target, "--json").stdout
        assert '"name": "Water Main", "type": "Pressure"' in listed, listed
    print("ok")


if __name__ == "__main__":
    main()
