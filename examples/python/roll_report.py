#!/usr/bin/env python3
"""Rolls a finger and reports how the print grew and what the roll is worth; with matplotlib, draws it.

Ends with 2 for a roll that is to be repeated.
"""

import argparse
import sys

import kelvarin_vt40 as vt40
import numpy as np

MILLIMETRES = 25.4


def extent(frame):
    """The first and last column of the print in millimetres, or None while there is nothing."""
    columns = np.flatnonzero((frame.pixels < 128).sum(axis=0) >= 10)
    return columns[[0, -1]] * MILLIMETRES / frame.dpi if columns.size else None


def plot(path, times, widths, frame, verdict):
    """The growing width beside the finished print."""
    import matplotlib

    matplotlib.use("Agg")
    from matplotlib import pyplot

    figure, (left, right) = pyplot.subplots(1, 2, figsize=(10, 4.5))
    left.plot(times, widths)
    left.set(xlabel="seconds", ylabel="rolled width, mm", title=f"{verdict.name}: {verdict.hint}")
    right.imshow(frame.pixels, cmap="gray", vmin=0, vmax=255)
    right.set_axis_off()
    figure.savefig(path, dpi=100)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--plot", default="roll.png", help="picture of the report (%(default)s)")
    parser.add_argument("--timeout", type=float, default=30, help="seconds to wait (%(default)s)")
    options = parser.parse_args()
    times, widths = [], []
    try:
        with vt40.Scanner() as scanner:
            print("roll the finger from one side to the other, then lift it")
            roll = scanner.roll(options.timeout)
            for frame in roll:
                edges = extent(frame)
                if edges is not None:
                    times.append(frame.time)
                    widths.append(edges[1] - edges[0])
    except vt40.errors.Error as failure:
        sys.exit(f"roll_report.py: {failure}")
    print(f"{roll.verdict.name} ({roll.verdict.value}): {roll.verdict.hint}")
    print(f"{widths[-1] if widths else 0:.1f} mm wide, {len(widths)} frames with a print")
    try:
        plot(options.plot, [time - times[0] for time in times], widths, roll.frame, roll.verdict)
        print(options.plot)
    except ImportError:
        print("no plot: matplotlib is not installed")
    sys.exit(0 if roll.verdict is vt40.Verdict.CLEAN else 2)


if __name__ == "__main__":
    main()
