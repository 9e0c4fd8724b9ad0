"""Runs the benchmarks of the hook's parts, and says how each grows with the size of its work."""

import json
import math
import subprocess


def measured(program, part=1):
    """Benchmark name to a list of pairs: size, and the least processor time in seconds of a few
    repetitions. `part`: of the time for it."""
    ended = subprocess.run(
        [program, "--benchmark_format=json", f"--benchmark_min_time={0.1 * part}",
         f"--benchmark_repetitions={max(1, round(3 * part))}", "--benchmark_enable_random_interleaving=true"],
        stdout=subprocess.PIPE, check=True)
    least = {}
    for row in json.loads(ended.stdout)["benchmarks"]:
        if row.get("error_occurred"):
            raise RuntimeError(f"{row['name']}: {row['error_message']}")
        if row["run_type"] != "iteration":
            continue
        name, _, size = row["run_name"].rpartition("/")
        seconds = row["cpu_time"] * {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1}[row["time_unit"]]
        sizes = least.setdefault(name, {})
        sizes[int(size)] = min(seconds, sizes.get(int(size), math.inf))
    return {name: sorted(sizes.items()) for name, sizes in least.items()}


def exponent(points):
    """The exponent of the power of the size by which the time grows, fitted by least squares on
    logarithms: 1 is linear."""
    logs = [(math.log(size), math.log(seconds)) for size, seconds in points]
    size_mean = sum(size for size, _ in logs) / len(logs)
    time_mean = sum(time for _, time in logs) / len(logs)
    spread = sum((size - size_mean) ** 2 for size, _ in logs)
    return sum((size - size_mean) * (time - time_mean) for size, time in logs) / spread
