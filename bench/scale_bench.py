"""The command line at scale: `kestrana convert` of a sewer grid onto a
water network of as many pipes (made by bench_site), against a load+save
of its result (`kestrana save`), the growth of conversion from size to
size, `kestrana save` of the 20 000-pipe drawing of dxf_bench against
copying the file and against ezdxf, and the peak memory of conversion.

Usage: /usr/bin/python3 scale_bench.py KESTRANA BENCH_SITE DIR RUNS N...
Times are medians of RUNS runs of the whole process; peak memory is the
largest resident size the kernel reports for the process.
"""
import json
import os
import shutil
import statistics
import subprocess
import sys
import time


def run(argv):
    """Wall seconds and peak resident kilobytes of one process."""
    start = time.perf_counter()
    proc = subprocess.Popen(argv, stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE)
    _, status, usage = os.wait4(proc.pid, 0)
    seconds = time.perf_counter() - start
    out = proc.stdout.read().decode()
    err = proc.stderr.read().decode()
    proc.returncode = os.waitstatus_to_exitcode(status)
    if proc.returncode != 0:
        sys.exit(f"{' '.join(argv)} failed ({proc.returncode}):\n{err}")
    return seconds, usage.ru_maxrss, out


def median_of(runs, argv):
    times, peak, out = [], 0, ""
    for _ in range(runs):
        seconds, kb, out = run(argv)
        times.append(seconds)
        peak = max(peak, kb)
    return statistics.median(times), peak, out


def copy_seconds(runs, source, target):
    times = []
    for _ in range(runs):
        start = time.perf_counter()
        shutil.copyfile(source, target)
        with open(target, "rb+") as f:
            os.fsync(f.fileno())  # the saves are flushed to disk as well
        times.append(time.perf_counter() - start)
    return statistics.median(times)


def main():
    kestrana, site, folder = sys.argv[1:4]
    runs = int(sys.argv[4])
    sizes = [int(n) for n in sys.argv[5:]]
    os.makedirs(folder, exist_ok=True)
    print(f"{'size':>7} {'pipes':>7} {'MB':>6} {'convert s':>10} "
          f"{'load+save s':>12} {'ratio':>6} {'peak MB':>8} "
          f"{'MB/10k pipes':>13}")
    converts = {}
    for n in sizes:
        drawing = os.path.join(folder, f"site_{n}.dxf")
        if not os.path.exists(drawing):
            run([site, str(n), drawing])
        result = os.path.join(folder, f"site_{n}_converted.dxf")
        resaved = os.path.join(folder, f"site_{n}_resaved.dxf")
        convert, peak, out = median_of(runs, [
            kestrana, "convert", drawing, "--network", "Sewer", "--type",
            "Gravity", "--layer", "Sewer lines", "-o", result])
        save, _, _ = median_of(runs, [kestrana, "save", result, "-o", resaved])
        # Every polyline of the result is a pipe, mains and sewers.
        _, _, info = run([kestrana, "info", result, "--json"])
        pipes = json.loads(info)["model_space"]["by_type"]["LWPOLYLINE"]
        converts[n] = convert
        megabytes = os.path.getsize(result) / 1e6
        print(f"{n:>7} {pipes:>7} {megabytes:>6.1f} {convert:>10.3f} "
              f"{save:>12.3f} {convert / save:>6.2f} {peak / 1024:>8.0f} "
              f"{peak / 1024 / (pipes / 10000):>13.0f}", flush=True)
    for a, b in zip(sizes, sizes[1:]):
        print(f"growth of convert {a} -> {b} ({b / a:.0f}x the size): "
              f"{converts[b] / converts[a]:.1f}x")

    plain = os.path.join(os.environ.get("KESTRANA_BENCH_DIR",
                                        "/tmp/kestrana_bench"),
                         "pipes_20000.dxf")
    if os.path.exists(plain):
        copied = os.path.join(folder, "pipes_20000_copy.dxf")
        resaved = os.path.join(folder, "pipes_20000_resaved.dxf")
        save, _, _ = median_of(runs, [kestrana, "save", plain, "-o", resaved])
        copy = copy_seconds(runs, plain, copied)
        start = time.perf_counter()
        subprocess.run(["/usr/bin/python3", "-c",
                        "import ezdxf, sys; "
                        "ezdxf.readfile(sys.argv[1]).saveas(sys.argv[2])",
                        plain, os.path.join(folder, "pipes_20000_ezdxf.dxf")],
                       check=True)
        ezdxf_seconds = time.perf_counter() - start
        print(f"kestrana save of pipes_20000.dxf "
              f"({os.path.getsize(plain) / 1e6:.1f} MB): {save:.3f} s, "
              f"{save / copy:.1f}x copying the file ({copy:.3f} s), "
              f"ezdxf {ezdxf_seconds / save:.0f}x slower ({ezdxf_seconds:.2f} s)")


if __name__ == "__main__":
    main()
