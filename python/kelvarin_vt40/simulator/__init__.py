"""The simulated scanner: scenes, moving fingers, ground truth and faults. Used when it is asked for, by `use`.

    >>> from kelvarin_vt40 import Scanner, simulator as sim
    >>> sim.use(sim.Scene([sim.SimulatedScanner(fingers=[sim.Finger(x=30), sim.Finger(sim.Print(seed=5), x=55)])]))
    >>> with Scanner() as scanner:
    ...     both = scanner.capture()
    ...     sim.lay()                           # the fingers are lifted
    ...     nothing = scanner.capture()
    >>> both.dark_pixels > 10_000, sim.ground_truth().mask.any()
    (True, False)

Threads: all functions are thread-safe. They raise `errors.SimulatorError` with the simulator's own words.
"""

from .control import (
    PICTURE_SIDE, RIDGE_SIDE, Beep, DisplayState, GroundTruth, LightWord, Minutia, OpticsState, PenState, PenStroke,
    SequenceRecord, SheetField, SheetState, State, advance, beeps, call_count, clear_faults, delay_sequence, display,
    fail_call, fail_randomly, fault_log, ground_truth, hold_sequences, lay, lights, load_scene, minutiae, optics,
    pass_sequences, pen_at, pen_strokes, picture_to_sensor, plug, reset, restore_eprom_file, ridges, sequences,
    set_device_version, set_eprom_file, set_library_version, sheet_at, state, target_dots, unplug, unrolled_truth, use,
    wait_for_sequences,
)  # fmt: skip
from .scenes import (
    Dirt, Eprom, EpromFile, FailCall, FailRandomly, Finger, Light, Optics, Pen, Platen, Plug, Press, Print, RollMoment,
    Rolling, Scene, Settle, Sheet, SimulatedScanner, Slide, Stretch, Stroke, Target, Unplug,
)  # fmt: skip

__all__ = [
    "PICTURE_SIDE", "RIDGE_SIDE", "Beep", "Dirt", "DisplayState", "Eprom", "EpromFile", "FailCall", "FailRandomly",
    "Finger", "GroundTruth", "Light", "LightWord", "Minutia", "Optics", "OpticsState", "Pen", "PenState", "PenStroke",
    "Platen", "Plug", "Press", "Print", "RollMoment", "Rolling", "Scene", "SequenceRecord", "Settle", "Sheet",
    "SheetField", "SheetState", "SimulatedScanner", "Slide", "State", "Stretch", "Stroke", "Target", "Unplug",
    "advance", "beeps", "call_count", "clear_faults", "delay_sequence", "display", "fail_call", "fail_randomly",
    "fault_log", "ground_truth", "hold_sequences", "lay", "lights", "load_scene", "minutiae", "optics",
    "pass_sequences", "pen_at", "pen_strokes", "picture_to_sensor", "plug", "reset", "restore_eprom_file", "ridges",
    "sequences", "set_device_version", "set_eprom_file", "set_library_version", "sheet_at", "state", "target_dots",
    "unplug", "unrolled_truth", "use", "wait_for_sequences",
]  # fmt: skip
