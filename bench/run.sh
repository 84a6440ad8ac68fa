#!/usr/bin/env bash
# Builds the benchmarks and runs kestrana and ezdxf on the same generated
# drawings; prints the measured times and the ratios the goals are about.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/build.sh build-bench -DKESTRANA_BENCH=ON -DKESTRANA_TESTS=OFF -DCMAKE_BUILD_TYPE=Release
export KESTRANA_BENCH_DIR=${KESTRANA_BENCH_DIR:-/tmp/kestrana_bench}
results=$(mktemp -d)
build-bench/dxf_bench --benchmark_format=json --benchmark_out="$results/kestrana.json" \
  --benchmark_out_format=json --benchmark_repetitions=${REPETITIONS:-5} \
  --benchmark_report_aggregates_only=true >/dev/null
/usr/bin/python3 bench/ezdxf_bench.py "$KESTRANA_BENCH_DIR" 2000 20000 >"$results/ezdxf.json"
/usr/bin/python3 - "$results" <<'PY'
import json, os, sys
folder = sys.argv[1]
k = json.load(open(os.path.join(folder, "kestrana.json")))
e = json.load(open(os.path.join(folder, "ezdxf.json")))
ms = {}
for b in k["benchmarks"]:
    if b.get("aggregate_name") != "median":
        continue
    name, n = b["run_name"].split("/")
    ms[(name, int(n))] = b["real_time"]  # milliseconds
print(f"{'pipes':>7} {'bytes':>9} {'load':>9} {'load+save':>10} {'all changed':>12} "
      f"{'ezdxf load+save':>16} {'vs ezdxf':>9} {'vs bytes':>9}")
for n in (2000, 20000):
    floor, load, ls = ms[("BM_ReadBytes", n)], ms[("BM_Load", n)], ms[("BM_LoadSave", n)]
    changed = ms[("BM_LoadChangeAllSave", n)]
    ez = e[str(n)]["load_save_ms"]
    print(f"{n:>7} {floor:>7.2f}ms {load:>7.1f}ms {ls:>8.1f}ms {changed:>10.1f}ms "
          f"{ez:>14.0f}ms {ez / ls:>8.1f}x {ls / floor:>8.1f}x")
g = ms[("BM_LoadSave", 20000)] / ms[("BM_LoadSave", 2000)]
print(f"growth of load+save from 2 000 to 20 000 pipes: {g:.1f}x (10x is linear)")
PY
rm -rf "$results"

# The crossing search: trying every pipe (in full up to 5 000 pipes, scaled
# from a sample beyond), the plan index, and GEOS's STRtree.
echo
build-bench/bench_crossing ${CROSSING_SIZES:-1000 2000 5000 10000 20000}

# Converting drawn polylines into a network against saving the result, and
# the documented steps one polyline at a time for the smaller sizes.
echo
build-bench/bench_conversion ${CONVERSION_SIZES:-1000 5000 10000}
