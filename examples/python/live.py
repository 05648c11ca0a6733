#!/usr/bin/env python3
"""Shows the live preview: in a window of matplotlib with --window, else in the terminal. Ends with Ctrl-C."""

import argparse
import itertools
import shutil
import sys

import kelvarin_vt40 as vt40

# Two rows of pixels are one row of characters: neither, the upper, the lower, or both are dark.
BLOCKS = " ▀▄█"


def as_text(frame, columns):
    """The preview as lines of half blocks, a character for each of the columns."""
    side = frame.pixels.shape[1] // columns
    rows = frame.pixels.shape[0] // side // 2 * 2
    cells = frame.pixels[: rows * side, : columns * side].reshape(rows, side, columns, side)
    dark = cells.mean(axis=(1, 3)) < 200
    return "\n".join("".join(BLOCKS[cell] for cell in row) for row in dark[::2] + 2 * dark[1::2])


def show_in_terminal(frames):
    size = shutil.get_terminal_size()
    columns = max(8, min(size.columns, 2 * (size.lines - 2)))
    print("\033[2J", end="")
    for frame in frames:
        print(f"\033[H{as_text(frame, columns)}\n{frame.state.value:8}", end="", flush=True)


def show_in_window(frames):
    from matplotlib import pyplot

    picture = None
    for frame in frames:
        if picture is None:
            picture = pyplot.imshow(frame.pixels, cmap="gray", vmin=0, vmax=255)
        elif not pyplot.get_fignums():
            return
        picture.set_data(frame.pixels)
        pyplot.title(frame.state.value)
        pyplot.pause(0.001)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--window", action="store_true", help="a window of matplotlib")
    parser.add_argument("--frames", type=int, help="end after so many frames")
    options = parser.parse_args()
    try:
        with vt40.Scanner() as scanner:
            frames = itertools.islice(scanner.preview(), options.frames)
            (show_in_window if options.window else show_in_terminal)(frames)
    except KeyboardInterrupt:
        pass
    except (vt40.errors.Error, ImportError) as failure:
        sys.exit(f"live.py: {failure}")
    print()


if __name__ == "__main__":
    main()
