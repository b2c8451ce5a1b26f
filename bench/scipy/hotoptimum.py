#!/usr/bin/python3
"""Hensel-Spittel on the measured Gleeble series by scipy, within the descent's
guards: the bounded optimum of the stress error and of the error of ln σ, and
the time of scipy's fits from the log-linear start.

Usage: hotoptimum.py HOTQUALITY [REFERENCE_FILE]

Runs HOTQUALITY --entries (the stress-table entries with the factors of ln σ,
the guards' limits and the automatic start), prints the optimum sums of squares
with AARE and RMSE, and the least time of many runs of: trust-region least
squares (bounded, method 'trf') and Levenberg-Marquardt (method 'lm', which
takes no bounds) of the stress error from the log-linear start, and the bounded
linear fit of ln σ. With REFERENCE_FILE it writes the two optimum sums there.
"""
import math
import subprocess
import sys
import tempfile
import timeit

import numpy as np
from scipy.optimize import least_squares, lsq_linear

FREE = [0, 1, 2, 3, 4, 5, 7, 8, 9]  # A, m1 .. m5, m7 .. m9; m6 stays 0
LN_A_LIMIT = 700.0


def read(binary):
    with tempfile.NamedTemporaryFile(suffix=".txt") as f:
        subprocess.run([binary, "--entries", f.name], check=True, capture_output=True)
        rows = {"entry": []}
        for line in open(f.name):
            words = line.split()
            values = [float(w) for w in words[1:]]
            if words[0] == "entry":
                rows["entry"].append(values)
            else:
                rows[words[0]] = np.array(values)
    entries = np.array(rows["entry"])
    factors = entries[:, :9]  # columns m1 .. m9
    design = np.hstack([np.ones((len(entries), 1)), factors[:, [0, 1, 2, 3, 4, 6, 7, 8]]])
    lower, upper = rows["lower"][FREE], rows["upper"][FREE]
    lower[0], upper[0] = -LN_A_LIMIT, LN_A_LIMIT
    start = rows["start"][FREE]
    start[0] = math.log(start[0])
    return design, entries[:, 9], np.sqrt(entries[:, 10]), lower, upper, np.clip(start, lower, upper)


def main():
    design, stress, root_w, lower, upper, start = read(sys.argv[1])
    ln_stress = np.log(stress)

    def absolute(x):
        return root_w * (np.exp(design @ x) - stress)

    def absolute_jac(x):
        return (root_w * np.exp(design @ x))[:, None] * design

    def relative(x):
        return root_w * (design @ x - ln_stress)

    def log_linear():
        return lsq_linear(root_w[:, None] * design, root_w * ln_stress, bounds=(lower, upper), tol=1e-14).x

    def measures(x):
        model = np.exp(design @ x)
        return float(np.sum((model - stress) ** 2)), float(np.mean(np.abs(model - stress) / stress)) * 100, \
            float(math.sqrt(np.mean((model - stress) ** 2)))

    linear = log_linear()
    starts = [linear, start]
    rng = np.random.default_rng(17)
    for _ in range(10):
        starts.append(np.clip(linear + rng.normal(0, 0.05, len(linear)) * np.maximum(np.abs(linear), 1e-3), lower, upper))
    best = None
    for x0 in starts:
        res = least_squares(absolute, x0, jac=absolute_jac, bounds=(lower, upper), method="trf", x_scale="jac",
                            ftol=1e-14, xtol=1e-14, gtol=1e-14, max_nfev=20000)
        if best is None or res.cost < best.cost:
            best = res
    sse, aare, rmse = measures(best.x)
    rel_sse = float(np.sum(relative(linear) ** 2))
    _, rel_aare, rel_rmse = measures(linear)

    def trf():
        return least_squares(absolute, linear, jac=absolute_jac, bounds=(lower, upper), method="trf", x_scale="jac")

    def lm():
        return least_squares(absolute, linear, jac=absolute_jac, method="lm", x_scale="jac")

    def timed(f):
        return min(timeit.repeat(lambda: f(), number=1, repeat=30)) * 1e3

    print("| fit | SSE (MPa²) | AARE % | RMSE MPa | time (ms) |")
    print("|---|---|---|---|---|")
    print(f"| optimum of the stress error (trf from {len(starts)} starts) | {sse:.6g} | {aare:.2f} | {rmse:.2f} | |")
    one = trf()
    print(f"| trf from the log-linear start | {measures(one.x)[0]:.6g} | {measures(one.x)[1]:.2f} | "
          f"{measures(one.x)[2]:.2f} | {timed(trf):.2f} |")
    free = lm()
    inside = bool(np.all(free.x >= lower - 1e-12) and np.all(free.x <= upper + 1e-12))
    print(f"| lm from the log-linear start (no bounds; inside the guards: {inside}) | {measures(free.x)[0]:.6g} | "
          f"{measures(free.x)[1]:.2f} | {measures(free.x)[2]:.2f} | {timed(lm):.2f} |")
    print(f"| bounded linear fit of ln σ (sum of squares {rel_sse:.6g}) | {measures(linear)[0]:.6g} | "
          f"{rel_aare:.2f} | {rel_rmse:.2f} | {timed(log_linear):.2f} |")
    if len(sys.argv) > 2:
        with open(sys.argv[2], "w") as f:
            f.write("# The bounded optimum of Hensel-Spittel on the measured series within the descent's\n"
                    "# guards, by bench/scipy/hotoptimum.py: the least sum of squared stress errors of\n"
                    "# scipy's least_squares ('trf', analytic Jacobian, tolerances 1e-14) from the\n"
                    "# log-linear start, the automatic start and 10 starts about the first; and the\n"
                    "# sum of squared errors of ln σ at scipy's bounded linear fit (lsq_linear).\n")
            f.write(f"absolute {sse:.9g}\nrelative {rel_sse:.9g}\n")


if __name__ == "__main__":
    main()
