#!/usr/bin/env bash
# Builds the benchmarks and runs kestrana and ezdxf on the same generated
# drawings; prints the measured times and the ratios the goals are about.
# BASELINE=path/to/an/older/dxf_bench runs that build too, in turn with
# this one, for before-and-after figures from one run.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/build.sh build-bench -DKESTRANA_BENCH=ON -DKESTRANA_TESTS=OFF -DCMAKE_BUILD_TYPE=Release
export KESTRANA_BENCH_DIR=${KESTRANA_BENCH_DIR:-/tmp/kestrana_bench}
results=$(mktemp -d)
run() {  # binary, output file
  "$1" --benchmark_format=json --benchmark_out="$2" --benchmark_out_format=json \
    --benchmark_repetitions=${REPETITIONS:-5} --benchmark_report_aggregates_only=true >/dev/null
}
run build-bench/dxf_bench "$results/kestrana.json"
if [ -n "${BASELINE:-}" ]; then
  run "$BASELINE" "$results/baseline.json"
  run build-bench/dxf_bench "$results/kestrana2.json"
fi
/usr/bin/python3 bench/ezdxf_bench.py "$KESTRANA_BENCH_DIR" 2000 20000 >"$results/ezdxf.json"
/usr/bin/python3 - "$results" <<'PY'
import json, os, sys
folder = sys.argv[1]

def medians(name):
    path = os.path.join(folder, name)
    if not os.path.exists(path):
        return None
    ms = {}
    for b in json.load(open(path))["benchmarks"]:
        if b.get("aggregate_name") == "median":
            kind, n = b["run_name"].split("/")
            ms[(kind, int(n))] = b["real_time"]  # milliseconds
    return ms

ms = medians("kestrana.json")
e = json.load(open(os.path.join(folder, "ezdxf.json")))
print(f"{'pipes':>7} {'read':>8} {'write':>8} {'load':>8} {'load+save':>10} "
      f"{'all changed':>12} {'ezdxf':>8} {'vs ezdxf':>9} {'vs read':>8} {'vs r+w':>7}")
for n in (2000, 20000):
    read, write = ms[("BM_ReadBytes", n)], ms[("BM_WriteBytes", n)]
    load, ls = ms[("BM_Load", n)], ms[("BM_LoadSave", n)]
    changed = ms[("BM_LoadChangeAllSave", n)]
    ez = e[str(n)]["load_save_ms"]
    print(f"{n:>7} {read:>6.2f}ms {write:>6.2f}ms {load:>6.1f}ms {ls:>8.1f}ms "
          f"{changed:>10.1f}ms {ez:>6.0f}ms {ez / ls:>8.1f}x {ls / read:>7.1f}x "
          f"{ls / (read + write):>6.1f}x")
g = ms[("BM_LoadSave", 20000)] / ms[("BM_LoadSave", 2000)]
print(f"growth of load+save from 2 000 to 20 000 pipes: {g:.1f}x (10x is linear)")

base, again = medians("baseline.json"), medians("kestrana2.json")
if base:
    print("\nbaseline (BASELINE), then this build twice around it:")
    for n in (2000, 20000):
        for kind in ("BM_Load", "BM_LoadSave", "BM_LoadChangeAllSave"):
            b, now = base[(kind, n)], (ms[(kind, n)] + again[(kind, n)]) / 2
            print(f"{n:>7} {kind[3:]:<18} {b:>8.1f}ms -> {now:>7.1f}ms  "
                  f"{b / now:>4.1f}x faster")
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

# Ground levels: the triangle index of surfaces up to a million triangles,
# one lookup against trying every triangle, and reading LandXML.
echo
build-bench/surface_bench --benchmark_repetitions=${REPETITIONS:-5} \
  --benchmark_report_aggregates_only=true 2>/dev/null | grep -E "^Benchmark|_median"

# Drawing a profile of 20 to 200 pipes, and `profile update --all-flagged`
# of 20 profiles against drawing them fresh.
echo
build-bench/bench_profile_draw ${PROFILE_DRAW_SIZES:-20 50 100 200}
