#!/usr/bin/python3
"""The laws fit-cold stores against scipy's bounded least squares on the same points.

Runs `fit-cold --law all --polish --json --curve-out` on each measured tensile test,
then fits the stored law (the best with a library block) again with
scipy.optimize.least_squares from several starts within the law's default bounds,
and prints both RMSEs and their relative difference.

    bench/coldoptimum.py build/cli/zelko-mat-cli
"""
import csv
import json
import os
import subprocess
import sys
import tempfile

import numpy as np
from scipy.optimize import least_squares

WIDE = 1e6  # the default bound tables' "wide" stress bound (MPa)


def swift(p, e):
    return p[0] * np.power(1.0 + e / p[1], p[2])


def hollomon(p, e):
    return p[0] * np.where(e > 0, np.power(np.maximum(e, 1e-300), p[1]), 0.0)


def ludwik(p, e):
    return p[0] + p[1] * np.where(e > 0, np.power(np.maximum(e, 1e-300), p[2]), 0.0)


# law: (function, parameter names, lower bounds, upper bounds, starts)
LAWS = {
    "swift": (swift, ["Y0", "s0", "n"], [-WIDE, 1e-12, -10.0], [WIDE, 100.0, 1.0 - 1e-12],
              [[700, 0.01, 0.2], [500, 0.001, 0.1], [900, 0.1, 0.5]]),
    "hollomon": (hollomon, ["K", "n"], [1e-12, 1e-12], [WIDE, 1.0 - 1e-12], [[1000, 0.1], [1500, 0.3], [800, 0.05]]),
    "ludwik": (ludwik, ["Y0", "K", "n"], [-WIDE, -WIDE, 0.0], [WIDE, WIDE, 10.0],
               [[700, 1000, 0.5], [600, 2000, 0.3], [300, 500, 0.1]]),
}


def rmse(f, p, e, s):
    return float(np.sqrt(np.mean((f(p, e) - s) ** 2)))


def main():
    cli = sys.argv[1] if len(sys.argv) > 1 else "build/cli/zelko-mat-cli"
    data = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "data", "measured")
    with tempfile.TemporaryDirectory() as work:
        material = os.path.join(work, "m.zmat")
        subprocess.run([cli, "new", "-o", material], check=True)
        for test in ["tensile-steel-1045.csv", "tensile-steel-4130.csv"]:
            curves = os.path.join(work, "curves.csv")
            out = subprocess.run([cli, "fit-cold", material, "--curve", os.path.join(data, test), "--input", "load",
                                  "--diameter", "10", "--gauge-length", "75", "--law", "all", "--polish", "--json",
                                  "--curve-out", curves, "-o", os.path.join(work, "o.zmat")],
                                 check=True, capture_output=True, text=True).stdout
            result = json.loads(out)
            stored = result["stored"]
            law = next(l for l in result["laws"] if l["law"] == stored)
            with open(curves) as f:
                rows = list(csv.DictReader(f))
            e = np.array([float(r["true_strain"]) for r in rows])
            s = np.array([float(r["measured_stress_MPa"]) for r in rows])
            f, names, lower, upper, starts = LAWS[stored]
            best = None
            for start in starts + [[law["parameters"][n] for n in names]]:
                start = np.clip(start, lower, upper)
                fit = least_squares(lambda p: f(p, e) - s, start, bounds=(lower, upper), x_scale="jac",
                                    xtol=1e-15, ftol=1e-15, gtol=1e-15, max_nfev=20000)
                if best is None or rmse(f, fit.x, e, s) < rmse(f, best, e, s):
                    best = fit.x
            ours, theirs = law["rmse"], rmse(f, best, e, s)
            print(f"{test}: stored {stored}, RMSE {ours:.6g} MPa; scipy {theirs:.6g} MPa "
                  f"({100.0 * (ours - theirs) / theirs:+.4f} %); parameters "
                  + ", ".join(f"{n} {law['parameters'][n]:.6g}/{v:.6g}" for n, v in zip(names, best)))


if __name__ == "__main__":
    main()
