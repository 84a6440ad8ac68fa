"""Times ezdxf on the drawings dxf_bench made: readfile, and readfile + saveas.

Usage: /usr/bin/python3 ezdxf_bench.py DIR N... ; prints JSON {N: {...}} in ms.
"""
import json
import os
import sys
import time

import ezdxf


def best_of(runs, fn):
    times = []
    for _ in range(runs):
        start = time.perf_counter()
        fn()
        times.append((time.perf_counter() - start) * 1000)
    return min(times)


def main():
    folder, sizes = sys.argv[1], [int(n) for n in sys.argv[2:]]
    result = {}
    for n in sizes:
        path = os.path.join(folder, f"pipes_{n}.dxf")
        out = path + ".ezdxf.dxf"
        runs = 3 if n <= 2000 else 1
        load = best_of(runs, lambda: ezdxf.readfile(path))
        load_save = best_of(runs, lambda: ezdxf.readfile(path).saveas(out))
        result[n] = {"load_ms": load, "load_save_ms": load_save}
    print(json.dumps(result))


if __name__ == "__main__":
    main()
