#!/usr/bin/env python3
"""Waits until fingers lie still and writes their picture as a PNG, or as a numpy file where Pillow is missing."""

import argparse
import sys
from pathlib import Path

import kelvarin_vt40 as vt40
import numpy as np


def write(frame, path):
    """Writes the picture with its resolution; returns the file that was written."""
    try:
        frame.to_pil().save(path, dpi=(frame.dpi, frame.dpi))
    except ImportError:
        path = path.with_suffix(".npy")
        np.save(path, frame.pixels)
    return path


def show(frame):
    """One line of progress for each preview."""
    print(f"\r{frame.state.value:8} {frame.dark_pixels:7} pixels", end="", file=sys.stderr, flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--out", type=Path, default=Path("fingers.png"), help="file to write (%(default)s)")
    parser.add_argument("--serial", help="serial number of the scanner; the first one without it")
    parser.add_argument("--timeout", type=float, default=30, help="seconds to wait (%(default)s)")
    parser.add_argument("--live", action="store_true", help="measure the score of liveness")
    options = parser.parse_args()
    try:
        with vt40.Scanner(options.serial) as scanner:
            frame = scanner.auto_capture(options.timeout, options.live, show)
        print(file=sys.stderr)
        score = f", liveness {frame.score:.0f}" if options.live else ""
        note = ", simulated" if frame.simulated else ""
        print(f"{write(frame, options.out)}: {frame.size.width} x {frame.size.height}, {frame.dpi} dpi{score}{note}")
    except (vt40.errors.Error, OSError) as failure:
        sys.exit(f"capture.py: {failure}")


if __name__ == "__main__":
    main()
