"""Every command's --json on the demo's town is JSON that programs read:
keys in one style (snake_case), numbers as numbers, sizes as numbers with
their shape. Run: python3 THIS_FILE path/to/kestrana"""
import json
import os
import re
import subprocess
import sys
import tempfile

KESTRANA = sys.argv[1]
SNAKE = re.compile(r"^[a-z][a-z0-9]*(_[a-z0-9]+)*$")
NUMBER_TEXT = re.compile(r"^-?\d+(\.\d+)?([eE][-+]?\d+)?$")
# Maps whose keys are the drawing's own names, not keys of the output.
DATA_MAPS = {"by_type"}
# Values that are names or handles, which may well be all digits.
TEXTS = {"handle", "label", "labels", "name", "node", "start_node",
         "end_node", "drawing", "written", "version", "outside", "items",
         "record", "networks", "pipes", "type", "layer", "block", "material",
         "surface", "matching", "network", "text_style"}


def run(*args):
    result = subprocess.run([KESTRANA, *args], capture_output=True, text=True)
    assert result.returncode == 0, (args, result.returncode, result.stderr)
    return result.stdout


def check(value, where, key=None):
    if isinstance(value, dict):
        for k, v in value.items():
            if key not in DATA_MAPS:
                assert SNAKE.match(k), f"{where}: key {k!r}"
            check(v, f"{where}.{k}", k)
    elif isinstance(value, list):
        for i, v in enumerate(value):
            check(v, f"{where}[{i}]", key)
    elif isinstance(value, str) and key not in TEXTS:
        assert not NUMBER_TEXT.match(value), f"{where}: number as text {value!r}"
        assert "%%c" not in value, f"{where}: size as text {value!r}"


def main():
    with tempfile.TemporaryDirectory() as folder:
        run("demo", folder, "--size", "64")
        town = os.path.join(folder, "town-network.dxf")
        sewer = json.loads(run("list", town, "--network", "Sewer", "--json"))
        pipes = [p["label"] for p in sewer["networks"][0]["pipes"]]
        outlet_run = "P-1,P-3,P-2"
        assert all(p in pipes for p in outlet_run.split(",")), pipes
        surface = os.path.join(os.path.dirname(os.path.dirname(
            os.path.dirname(os.path.abspath(__file__)))),
            "examples", "town-surface.xml")
        commands = [
            ["info", town], ["dump", town], ["network", "list", town],
            ["list", town], ["list", town, "--nodes"],
            ["library", "materials", town], ["library", "sizes", town],
            ["style", "list", town], ["style", "show", town, "Standard"],
            ["crossings", town, "--list"], ["lowhigh", town, "--list"],
            ["profile", "lines", town, "--network", "Sewer"],
            ["profile", "style", "list", town],
            ["profile", "style", "show", town, "Standard"],
            ["profile", "data", town, "--network", "Sewer", "--pipes",
             outlet_run],
            ["ground", town, "--surface", surface, "--networks", "Sewer",
             "-o", os.path.join(folder, "ground.dxf")],
        ]
        for command in commands:
            data = json.loads(run(*command, "--json"))
            check(data, " ".join(command[:2]))

        # Sizes as numbers with their shape, wherever a size is shown.
        for pipe in sewer["networks"][0]["pipes"]:
            assert pipe["size"]["shape"] == "circular", pipe
            assert pipe["size"]["span"] in (200, 300, 400), pipe
        crossings = json.loads(run("crossings", town, "--list", "--json"))
        assert crossings["crossings"], crossings
        for c in crossings["crossings"]:
            assert isinstance(c["pipe1"]["size"]["span"], (int, float)), c
            assert isinstance(c["clearance"], (int, float)), c
        materials = json.loads(run("library", "materials", town, "--json"))
        assert sum(m["pipes"] for m in materials) == 12, materials
    print("ok")


if __name__ == "__main__":
    main()
