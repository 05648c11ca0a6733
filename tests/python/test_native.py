"""The declarations by which the package calls, against the C headers, and the layout of what they fill."""

import ctypes
import re
from pathlib import Path

import kelvarin_vt40 as vt40
import pytest
from kelvarin_vt40 import _native
from kelvarin_vt40 import simulator as sim
from kelvarin_vt40.simulator import control

PROJECT = Path(__file__).resolve().parents[2]
TYPES = {
    "int": ctypes.c_int, "long": ctypes.c_long, "double": ctypes.c_double, "unsigned char": ctypes.c_ubyte,
    "unsigned int": ctypes.c_uint, "unsigned long long": ctypes.c_ulonglong, "char*": ctypes.c_char_p,
    "void*": ctypes.c_void_p,
}  # fmt: skip
STRUCTURES = {
    "VTSimState": sim.State, "VTSimBeep": sim.Beep, "VTSimLight": sim.LightWord, "VTSimDisplay": sim.DisplayState,
    "VTSimFrame": sim.SequenceRecord, "VTSimPen": sim.PenState, "VTSimStroke": sim.PenStroke, "VTSimPoint": control._Point,
    "VTSimOptics": sim.OpticsState, "VTSimSheet": sim.SheetState, "VTSimSheetField": sim.SheetField,
    "VTSimMinutia": sim.Minutia, "VTSimRidge": control._Ridge,
}  # fmt: skip


def without_comments(path):
    return re.sub(r"/\*.*?\*/", "", path.read_text("utf-8"), flags=re.S)


def fits(declared, written):
    """Whether a ctypes type stands for the C type of an argument; a buffer goes by its bare address."""
    plain = re.sub(r"\s*\*", "*", written.replace("const ", "")).strip()
    if plain in TYPES and declared is TYPES[plain]:
        return True
    if not plain.endswith("*"):
        return False
    if written.startswith("const void") and declared is ctypes.c_char_p:
        return True
    pointed = {**TYPES, **STRUCTURES}.get(plain[:-1])
    return declared is ctypes.c_void_p or declared is ctypes.POINTER(pointed)


@pytest.mark.parametrize(
    "header, functions, prefix",
    [("include/KelvarinLiveScannerVT40.h", _native.FUNCTIONS, "LS_VT40"),
     ("simulator/KelvarinVTScanAPI/VTSim.h", control._FUNCTIONS, "VTSim")],
    ids=["library", "simulator"],
)  # fmt: skip
def test_functions_are_called_as_the_header_declares_them(header, functions, prefix):
    text = without_comments(PROJECT / header)
    declared = {
        name: [re.sub(r"\w+$", "", argument.strip()) for argument in arguments.split(",")] if arguments != "void" else []
        for name, arguments in re.findall(rf"_API long ({prefix}\w+)\(([^)]*)\)", " ".join(text.split()))
    }
    for name, types in functions.items():
        written = [argument for argument in declared[name] if argument]
        assert len(types) == len(written) and all(map(fits, types, written)), (name, types, written)
    if prefix == "VTSim":
        assert set(declared) == set(functions)


def test_structures_are_laid_out_as_the_header_declares_them():
    text = without_comments(PROJECT / "simulator/KelvarinVTScanAPI/VTSim.h")
    declared = dict(re.findall(r"typedef struct (\w+) \{(.*?)\}", text, re.S))
    assert set(declared) == set(STRUCTURES)
    for name, structure in STRUCTURES.items():
        rows = [re.fullmatch(r"\s*(.*?)\s*\w+((?:\[\w+\])*)\s*", row).groups() for row in declared[name].split(";")[:-1]]
        assert len(rows) == len(structure._fields_), name
        for (written, sides), (_, kind) in zip(rows, structure._fields_):
            wanted = ctypes.c_char if written == "char" else TYPES[written]
            for side in reversed(re.findall(r"\[(\w+)\]", sides)):
                wanted = wanted * int(side)
            assert kind is wanted or ctypes.sizeof(kind) == ctypes.sizeof(wanted) and kind._type_, (name, written, kind)


def test_modes_and_verdicts_have_the_values_of_the_header():
    text = without_comments(PROJECT / "include/KelvarinLiveScannerVT40.h")
    modes = {name: int(value) for name, value in re.findall(r"KLV_VT40_CAPTURE_MODE_(\w+) = (\d)", text)}
    verdicts = {name: int(value) for name, value in re.findall(r"KLV_VERDICT_(\w+) \((-\d+)L\)", text)}
    assert modes == {mode.name: mode.value for mode in vt40.Mode}
    assert {"CLEAN": 0, **verdicts} == {verdict.name: verdict.value for verdict in vt40.Verdict}
    assert all(verdict.hint for verdict in vt40.Verdict)
