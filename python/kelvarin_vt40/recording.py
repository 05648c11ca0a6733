"""Reads recordings (``.vtrec``) of what passed between an application and the scan library.

    >>> from kelvarin_vt40 import recording
    >>> with recording.open("station.vtrec") as record:          # doctest: +SKIP
    ...     for call in record.calls():
    ...         print(call.begin, call.function, call.result)
    ...     frames = [frame.planes for frame in record.frames()]

**A recording holds fingerprints** unless it is blurred; treat it like the pictures themselves. docs/recordings.md describes
the format. Compressed blocks need the package zstandard (``python3-zstandard``).

A file that is cut or damaged is read up to the damage, which `Recording.damage` then names.
"""

from __future__ import annotations

import builtins
import datetime
import math
import os
import struct
import zlib
from dataclasses import dataclass
from types import TracebackType
from typing import Any, BinaryIO, Callable, Dict, Iterator, List, NamedTuple, Optional, Type, Union

import numpy as np
import numpy.typing as npt

from . import errors
from ._functions import FUNCTIONS

_MAGIC = b"KLVVTREC"
_HEADER = struct.Struct("<8sHHIqII")
_BLOCK = struct.Struct("<4sBBHIIIII")
_CALL = struct.Struct("<HHIIIqqq")
_FIELD = struct.Struct("<BBBBI")
_MOST_CONTENT = 268435456
_MOST_SURPLUS = 65536
_DROPPED = 4294967295

_FACTS, _DATA, _CALL_KIND, _LOSS, _END = range(1, 6)
_PLAIN, _ZSTD = range(2)
_WIDTH, _HEIGHT, _PLANES, _SENSOR_MODE = range(240, 244)


class RecordingError(errors.Error, ValueError):
    """The file is no recording, or one of a version that this package does not read."""

    name = "RecordingError"
    hint = "docs/recordings.md describes the format."


@dataclass(frozen=True)
class Data:
    """Data of a call that stands in a block of its own; `Recording.data` reads it."""

    block: int
    size: int

    @property
    def was_dropped(self) -> bool:
        """Whether the recorder had to leave it out."""
        return self.block == _DROPPED


Value = Union[None, int, float, str, bytes, Data]


class Field(NamedTuple):
    """One argument of a call.

    Attributes
    ----------
    argument : int
        Counted from 0 in the order of the declaration; from 240 on what the recorder adds.
    was_given : bool
        True for what the application gave, False for what it got.
    value : None, int, float, str, bytes or Data
        None for a NULL pointer.
    """

    argument: int
    was_given: bool
    value: Value


@dataclass(frozen=True)
class Call:
    """One call. Times are nanoseconds since the recording began.

    Attributes
    ----------
    function : str
        Its name, such as "VTScanAPILockRawSequence"; "function 99" for a number without one.
    number : int
        The function's number in the file.
    thread, device : int
        Counted from 1; device 0 is none.
    begin_ns, end_ns : int
        When it began and ended.
    result : int
        What it returned; 0 for functions that return a text.
    has_lost_data : bool
        Whether data of this call was dropped.
    fields : list of Field
        Its arguments.
    """

    function: str
    number: int
    thread: int
    device: int
    begin_ns: int
    end_ns: int
    result: int
    has_lost_data: bool
    fields: List[Field]

    @property
    def begin(self) -> float:
        """When it began, seconds."""
        return self.begin_ns / 1e9

    @property
    def end(self) -> float:
        """When it ended, seconds."""
        return self.end_ns / 1e9

    def got(self, argument: int) -> Value:
        """What the application got for an argument; None when there is nothing."""
        return next((f.value for f in self.fields if f.argument == argument and not f.was_given), None)


@dataclass(frozen=True, eq=False)
class RawFrame:
    """One sequence of raw planes as the sensor gave it.

    Attributes
    ----------
    planes : numpy.ndarray
        Shape (planes, height, width), dtype uint8, writable and the caller's own. x is mirrored against the picture.
    sensor_mode : int
        The sensor mode; docs/simulator.md lists them.
    call : Call
        The call that delivered it.
    """

    planes: npt.NDArray[np.uint8]
    sensor_mode: int
    call: Call


class Loss(NamedTuple):
    """What the recorder had to drop."""

    calls: int
    data: int
    data_bytes: int


class _Damage(Exception):
    """A block cannot be used."""


class _Block(NamedTuple):
    kind: int
    coding: int
    stored: int
    size: int
    crc: int
    offset: int


def open(path: Union[str, "os.PathLike[str]"]) -> Recording:  # noqa: A001
    """Opens a recording.

    Raises
    ------
    OSError
        The file cannot be read.
    RecordingError
        It is no recording, or one of another version.
    """
    return Recording(path)


class Recording:
    """An open recording; use it in a ``with`` statement.

    Attributes
    ----------
    facts : dict of str
        The facts of the file's beginning, such as "recorder" and "wordSize".
    simulated, blurred : bool
        Whether the scanner is a simulated one, and whether frames are without ridges.
    began : datetime.datetime
        When the recording began, UTC.
    damage : str or None
        Where and why the reading ended early; None while nothing is wrong. Known after `calls` or `frames` went through.
    is_complete : bool
        Whether the block that ends a recording was met.
    losses : list of Loss
        What the recorder said it dropped, as far as the file was read.

    Threads: thread-bound.
    """

    def __init__(self, path: Union[str, "os.PathLike[str]"]) -> None:
        self._file: BinaryIO = builtins.open(path, "rb")
        try:
            self._size = os.fstat(self._file.fileno()).st_size
            self._read_header(os.fspath(path))
        except BaseException:
            self._file.close()
            raise
        self._blocks: Dict[int, _Block] = {}
        self.damage: Optional[str] = None
        self.is_complete = False
        self.losses: List[Loss] = []
        self.facts: Dict[str, str] = {}
        next(self._walk(), None)

    def _read_header(self, path: str) -> None:
        header = self._file.read(_HEADER.size)
        if len(header) < _HEADER.size or not header.startswith(_MAGIC):
            raise RecordingError(f"{path} is no recording.")
        _, version, flags, _, began, _, crc = _HEADER.unpack(header)
        if zlib.crc32(header[:-4]) != crc:
            raise RecordingError(f"The beginning of {path} is damaged.")
        if version != 1:
            raise RecordingError(f"{path} is a recording of version {version}; this package reads version 1.")
        self.simulated, self.blurred = bool(flags & 1), bool(flags & 2)
        epoch = datetime.datetime(1970, 1, 1, tzinfo=datetime.timezone.utc)
        try:
            self.began = epoch + datetime.timedelta(microseconds=began // 1000)
        except OverflowError:
            raise RecordingError(f"{path} says that it began {began} ns after 1970.") from None

    def close(self) -> None:
        """Closes the file."""
        self._file.close()

    def __enter__(self) -> Recording:
        return self

    def __exit__(
        self, kind: Optional[Type[BaseException]], failure: Optional[BaseException], trace: Optional[TracebackType]
    ) -> None:
        self.close()

    def calls(self) -> Iterator[Call]:
        """The calls, in the order in which they ended. Ends at damage, which `damage` names then."""
        for block, content in self._walk():
            if block.kind == _CALL_KIND:
                try:
                    yield _call_of(content)
                except (_Damage, struct.error, UnicodeDecodeError) as failure:
                    self.damage = f"at byte {block.offset}: {failure}"
                    return

    def frames(self) -> Iterator[RawFrame]:
        """The raw frames that calls delivered; those whose data was dropped are left out. Ends at damage as `calls`."""
        for call in self.calls():
            shape = [call.got(argument) for argument in (_PLANES, _HEIGHT, _WIDTH)]
            part = next((f.value for f in call.fields if isinstance(f.value, Data) and not f.was_given), None)
            if part is None or part.was_dropped or any(n is None for n in shape):
                continue
            try:
                planes = _planes_of(self._content(self._data_block(part)), shape)
            except _Damage as failure:
                self.damage = f"in a call of {call.function} at {call.begin:.3f} s: {failure}"
                return
            mode = call.got(_SENSOR_MODE)
            yield RawFrame(planes, mode if isinstance(mode, int) else 0, call)

    def data(self, data: Data) -> bytes:
        """The bytes of a piece of data that an iterated call names.

        Raises
        ------
        RecordingError
            The data was dropped, or its block is not among what was read.
        """
        if data.was_dropped:
            raise RecordingError("The data was dropped.")
        try:
            return self._content(self._data_block(data))
        except _Damage as failure:
            raise RecordingError(f"Block {data.block} cannot be read: {failure}.") from None

    def _data_block(self, data: Data) -> _Block:
        block = self._blocks.get(data.block)
        if block is None or block.kind != _DATA:
            raise _Damage(f"there is no data block {data.block}")
        return block

    def _walk(self) -> Iterator[tuple[_Block, bytes]]:
        """The good blocks up to the damage; the content of data blocks is checked, but left where it is."""
        offset = _HEADER.size
        number = 0
        self.losses, self.damage = [], None
        while offset < self._size:
            try:
                block = self._block_at(offset, number)
                content = b"" if block.kind == _DATA else self._content(block)
                if block.kind == _DATA:
                    self._stored(block)
                self._note(block, content)
            except (_Damage, struct.error, UnicodeDecodeError) as failure:
                self.damage = f"at byte {offset}: {failure}"
                return
            self._blocks[number] = block
            yield block, content
            offset = block.offset + block.stored
            number += 1

    def _block_at(self, offset: int, number: int) -> _Block:
        self._file.seek(offset)
        header = self._file.read(_BLOCK.size)
        if len(header) < _BLOCK.size:
            raise _Damage("the file is cut within the head of a block")
        magic, kind, coding, _, stored, size, found, crc, own = _BLOCK.unpack(header)
        if magic != b"VTRB" or zlib.crc32(header[:-4]) != own:
            raise _Damage("the head of a block is damaged")
        if found != number:
            raise _Damage(f"block {found} stands where block {number} should")
        if size > _MOST_CONTENT or stored > size + _MOST_SURPLUS or coding == _PLAIN and stored != size:
            raise _Damage(f"block {number} has {stored} bytes for {size}")
        if offset + _BLOCK.size + stored > self._size:
            raise _Damage("the file is cut within a block")
        return _Block(kind, coding, stored, size, crc, offset + _BLOCK.size)

    def _stored(self, block: _Block) -> bytes:
        self._file.seek(block.offset)
        stored = self._file.read(block.stored)
        if len(stored) != block.stored or zlib.crc32(stored) != block.crc:
            raise _Damage("the bytes of a block are damaged")
        return stored

    def _content(self, block: _Block) -> bytes:
        stored = self._stored(block)
        if block.coding == _PLAIN:
            return stored
        if block.coding != _ZSTD:
            raise _Damage(f"coding {block.coding} is unknown")
        return _unpack(stored, block.size)

    def _note(self, block: _Block, content: bytes) -> None:
        if block.kind == _FACTS:
            lines = (line.partition("=") for line in content.decode().splitlines())
            self.facts.update((name, value) for name, _, value in lines)
        elif block.kind == _LOSS:
            self.losses.append(Loss(*struct.unpack_from("<3Q", content)))
        elif block.kind == _END:
            self.is_complete = True


def _planes_of(content: bytes, shape: List[Value]) -> npt.NDArray[np.uint8]:
    sides = [n for n in shape if isinstance(n, int) and n > 0]
    if len(sides) != len(shape) or math.prod(sides) > len(content):
        raise _Damage(f"a frame of {' x '.join(map(str, shape))} samples has {len(content)} bytes of data")
    return np.frombuffer(content, np.uint8, math.prod(sides)).reshape(sides).copy()


def _unpack(stored: bytes, size: int) -> bytes:
    try:
        import zstandard
    except ImportError:
        raise RecordingError(
            "The recording is compressed, and the package zstandard is missing.", hint="Install python3-zstandard."
        ) from None
    try:
        # The size that the stream claims decides what is allocated.
        if zstandard.frame_content_size(stored) != size:
            raise _Damage("a block claims another size than its head")
        content: bytes = zstandard.ZstdDecompressor().decompress(stored)
    except zstandard.ZstdError as failure:
        raise _Damage(str(failure)) from None
    return content


_VALUES: Dict[int, Callable[[bytes], Value]] = {
    0: lambda _: None,
    1: lambda raw: int(struct.unpack("<q", raw)[0]),
    2: lambda raw: float(struct.unpack("<d", raw)[0]),
    3: lambda raw: raw.decode("utf-8", "replace"),
    4: bytes,
    5: lambda raw: Data(*_data_of(raw)),
}


def _data_of(raw: bytes) -> tuple[int, int]:
    block, _, size = struct.unpack("<IIQ", raw)
    return block, size


def _call_of(content: bytes) -> Call:
    number, flags, thread, device, count, begin, end, result = _CALL.unpack_from(content)
    fields: List[Field] = []
    at = _CALL.size
    for _ in range(count):
        argument, direction, kind, _, size = _FIELD.unpack_from(content, at)
        at += _FIELD.size
        if size > len(content) - at:
            raise _Damage("a field of a call is longer than the call")
        read: Callable[[bytes], Any] = _VALUES.get(kind, bytes)
        fields.append(Field(argument, direction == 0, read(content[at : at + size])))
        at += size
    name = FUNCTIONS.get(number, f"function {number}")
    return Call(name, number, thread, device, begin, end, result, bool(flags & 1), fields)
