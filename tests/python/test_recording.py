"""Recordings, written here by the page of their format and once by the recorder: calls, frames, cut and damaged files."""

import os
import re
import struct
import subprocess
import sys
import zlib

import numpy as np
import pytest
import zstandard
from kelvarin_vt40 import library, recording

PLANES = np.arange(2 * 4 * 6, dtype=np.uint8).reshape(2, 4, 6)


class Writer:
    """A recording in memory."""

    def __init__(self, flags=1, version=1):
        head = struct.pack("<8sHHIqI", b"KLVVTREC", version, flags, 0, 1_700_000_000_000_000_000, 0)
        self.file = head + struct.pack("<I", zlib.crc32(head))
        self.starts = []

    def block(self, kind, content, coding=0, size=None, stored=None):
        if stored is None:
            stored = content if coding == 0 else zstandard.compress(content)
        head = struct.pack(
            "<4sBBHIIII", b"VTRB", kind, coding, 0, len(stored), len(content) if size is None else size,
            len(self.starts), zlib.crc32(stored),
        )  # fmt: skip
        self.starts.append(len(self.file))
        self.file += head + struct.pack("<I", zlib.crc32(head)) + stored
        return len(self.starts) - 1

    def call(self, number, *fields, result=0, flags=0):
        content = struct.pack("<HHIIIqqq", number, flags, 1, 1, len(fields), 5_000_000, 6_000_000, result)
        for argument, direction, kind, value in fields:
            content += struct.pack("<BBBBI", argument, direction, kind, 0, len(value)) + value
        return self.block(3, content)


def frame_fields(block, planes=2, height=4, width=6):
    facts = [(n, 1, 1, struct.pack("<q", v)) for n, v in ((240, width), (241, height), (242, planes), (243, 35))]
    return [(1, 1, 5, struct.pack("<IIQ", block, 0, PLANES.size)), *facts]


def sample():
    """Facts, a call with every type of field, a frame of each coding, a dropped one, and the end."""
    writer = Writer()
    writer.block(1, b"recorder=1.5\nwordSize=64\n")
    values = [(0, 0, 0, b""), (1, 1, 1, struct.pack("<q", -7)), (2, 0, 2, struct.pack("<d", 0.5)), (3, 0, 3, "ü".encode()),
              (4, 1, 4, b"\0\1")]  # fmt: skip
    writer.call(23, *values, result=-60)
    for coding in (0, 1, 1):
        writer.call(35, *frame_fields(writer.block(2, PLANES.tobytes(), coding)))
    writer.block(4, struct.pack("<QQQ", 0, 1, 48))
    writer.call(35, *frame_fields(4294967295), flags=1)
    writer.block(99, b"a later version's")
    writer.call(101)
    writer.block(5, struct.pack("<QQQQ", 6, 3, 0, 1))
    return writer


def read(file, tmp_path):
    (tmp_path / "a.vtrec").write_bytes(file)
    with recording.open(tmp_path / "a.vtrec") as record:
        calls = list(record.calls())
        return record, calls, [frame.planes for frame in record.frames()]


def test_a_recording_gives_its_calls_and_frames(tmp_path):
    record, calls, frames = read(sample().file, tmp_path)
    assert record.simulated and not record.blurred and record.began.year == 2023
    assert record.facts == {"recorder": "1.5", "wordSize": "64"}
    assert [call.function for call in calls] == (
        ["VTScanAPIGetPropertyA"] + ["VTScanAPILockRawSequence"] * 4 + ["FD_VT40Initialize"]
    )
    assert [field.value for field in calls[0].fields] == [None, -7, 0.5, "ü", b"\0\1"]
    assert (calls[0].result, calls[0].begin, calls[0].end) == (-60, 0.005, 0.006) and calls[0].got(1) == -7
    assert len(frames) == 3 and all(np.array_equal(planes, PLANES) for planes in frames)
    assert calls[4].has_lost_data and calls[4].fields[0].value.was_dropped
    with recording.open(tmp_path / "a.vtrec") as again:
        names = [call.fields[0].value for call in again.calls() if call.number == 35]
        assert again.data(names[1]) == PLANES.tobytes()
        with pytest.raises(recording.RecordingError, match="dropped"):
            again.data(names[3])
        with pytest.raises(recording.RecordingError, match="no data block 0"):
            again.data(recording.Data(0, 1))
    assert record.losses == [recording.Loss(0, 1, 48)] and record.is_complete and record.damage is None


def test_a_cut_file_is_read_up_to_the_cut(tmp_path):
    writer = sample()
    whole = read(writer.file, tmp_path)[1]
    for end in range(32, len(writer.file), 7):
        record, calls, _ = read(writer.file[:end], tmp_path)
        assert calls == whole[: len(calls)] and not record.is_complete
        assert (record.damage is None) == (end in [*writer.starts, len(writer.file)])


def test_a_damaged_byte_ends_the_reading_at_its_block(tmp_path):
    writer = sample()
    for at in range(32, len(writer.file), 5):
        broken = bytearray(writer.file)
        broken[at] ^= 0x40
        record, calls, _ = read(bytes(broken), tmp_path)
        start = max(start for start in writer.starts if start <= at)
        assert record.damage.startswith(f"at byte {start}:") and not record.is_complete


@pytest.mark.parametrize(
    "change, words",
    [
        (lambda w: w.block(3, b"x" * 39), "unpack|requires"),
        (lambda w: w.call(35, (1, 1, 1, b"short")), "requires"),
        (lambda w: w.block(3, struct.pack("<HHIIIqqqBBBBI", 35, 0, 1, 1, 1, 0, 0, 0, 1, 1, 4, 0, 1 << 31)), "longer than"),
        (lambda w: w.block(3, b"", 1, size=268435457, stored=b""), "268435457"),
        (lambda w: w.block(3, b"", 1, size=50, stored=zstandard.compress(bytes(1 << 20))), "another size"),
        (lambda w: w.block(3, b"", 1, size=50, stored=b"no zstd"), "."),
        (lambda w: w.block(3, b"", 1, size=50, stored=zstandard.compress(bytes(50))[:-3]), "."),
        (lambda w: w.block(3, bytes(50), 2), "coding 2 is unknown"),
    ],
    ids=["call too short", "number too short", "field too long", "huge", "bomb", "not zstd", "cut zstd", "unknown coding"],
)
def test_content_that_contradicts_itself_is_damage(tmp_path, change, words):
    writer = Writer()
    writer.block(1, b"recorder=1\n")
    writer.call(1)
    change(writer)
    record, calls, _ = read(writer.file, tmp_path)
    assert [call.number for call in calls] == [1] and re.search(words, record.damage)


@pytest.mark.parametrize(
    "fields", [frame_fields(0, height=1 << 62), frame_fields(0, planes=-2), frame_fields(77), frame_fields(1)],
    ids=["too large", "below 0", "no block", "no data block"],
)  # fmt: skip
def test_a_frame_that_contradicts_its_data_is_damage(tmp_path, fields):
    writer = Writer()
    writer.block(2, PLANES.tobytes())
    writer.block(1, b"recorder=1\n")
    writer.call(35, *frame_fields(0))
    writer.call(35, *fields)
    record, calls, frames = read(writer.file, tmp_path)
    assert len(calls) == 2 and len(frames) == 1 and "VTScanAPILockRawSequence" in record.damage


@pytest.mark.parametrize(
    "file, words",
    [(b"", "no recording"), (b"PNG" * 20, "no recording"), (Writer(version=2).file, "version 2"),
     (Writer().file[:-1] + b"\0", "damaged")],
    ids=["empty", "another kind", "another version", "damaged head"],
)  # fmt: skip
def test_what_is_no_recording_is_refused(tmp_path, file, words):
    (tmp_path / "a.vtrec").write_bytes(file)
    with pytest.raises(recording.RecordingError, match=words):
        recording.open(tmp_path / "a.vtrec")
    with pytest.raises(OSError):
        recording.open(tmp_path / "missing.vtrec")


def test_what_the_recorder_has_written_is_read(tmp_path):
    folder = library.simulator_folder()
    program = "import kelvarin_vt40\nwith kelvarin_vt40.Scanner() as s: print(s.simulated, s.capture().dark_pixels > 0)"
    environment = {name: value for name, value in os.environ.items() if name != "KELVARIN_SDK_SIMULATE"}
    environment.update(
        LD_LIBRARY_PATH=os.path.join(os.path.dirname(folder), "recorder"), KELVARIN_VTSIM_SCENE="finger",
        KELVARIN_VT40_RECORD_FROM=folder, KELVARIN_VT40_RECORD_FILE=str(tmp_path / "a.vtrec"),
    )  # fmt: skip
    done = subprocess.run(
        [sys.executable, "-c", program], env=environment, cwd=tmp_path, stdout=subprocess.PIPE, text=True, timeout=60
    )
    assert done.stdout == "True True\n"
    with recording.open(tmp_path / "a.vtrec") as record:
        calls = [call.function for call in record.calls()]
        frames = list(record.frames())
        assert record.simulated and record.is_complete and record.damage is None and record.losses == []
    assert calls[0] == "VTScanAPIInitialize" and calls.count("VTScanAPIReadEPROMFile") == 3
    assert [(frame.sensor_mode, frame.planes.shape) for frame in frames] == [(34, (2, 2720, 1920))]
    dark, lit = sorted(plane.mean() for plane in frames[0].planes)
    assert lit > dark + 1
