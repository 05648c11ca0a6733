"""Who may call on one handle, and when the handle may be closed.

The library allows any number of calls on a handle at a time, but the closing must come after all of them, and it takes
nobody's word for that. It serves calls that wait for a picture one after the other, in no given order.
"""

from __future__ import annotations

import contextlib
import os
import threading
from collections import Counter, deque
from typing import Callable, Deque, Iterator, Optional

from . import errors

# The longest that a waiting call takes is 15 seconds.
_CLOSE_LIMIT = 20.0


class Gate:
    """Lets calls in until the closing begins, and closes when the last of them has left.

    A call that is inside when the closing begins ends with `ClosedError`, whatever it got; one that waits for its turn
    does so at once. Turns go in order of arrival.

    Threads: thread-safe. After a fork the child is refused, since the library's threads are not there.
    """

    def __init__(self, name: str, close: Callable[[], None]) -> None:
        self._name = name
        self._close = close
        self._process = os.getpid()
        self._changed = threading.Condition(threading.RLock())
        self._inside: Counter[int] = Counter()
        self._turns: Deque[object] = deque()
        self._holder: Optional[int] = None
        self._closing = False
        self._closed = False
        self._is_left_to_a_call = False

    @property
    def is_closed(self) -> bool:
        return self._closing or self._closed

    @property
    def is_foreign(self) -> bool:
        """Whether this process is a child of the one that opened the handle."""
        return os.getpid() != self._process

    def _refuse(self) -> None:
        if self.is_foreign:
            raise errors.ClosedError(f"Scanner {self._name} was opened by process {self._process}, not by this child.")
        if self.is_closed:
            raise errors.ClosedError(f"Scanner {self._name} is closed.")

    @contextlib.contextmanager
    def call(self) -> Iterator[None]:
        """Around a call that waits for nobody."""
        self._refuse()
        with self._changed:
            self._refuse()
            self._inside[threading.get_ident()] += 1
        try:
            yield
            self._refuse()
        except errors.Error as failure:
            if self.is_closed and not isinstance(failure, errors.ClosedError):
                raise errors.ClosedError(f"Scanner {self._name} was closed while the call waited.") from failure
            raise
        finally:
            self._leave()

    @contextlib.contextmanager
    def turn(self) -> Iterator[None]:
        """Around a call that waits for a picture, or for one that does."""
        self._refuse()
        turn = object()
        with self._changed:
            if self._holder == threading.get_ident():
                raise errors.InvalidStateError(
                    f"A call on scanner {self._name} interrupts one of the same thread, and would wait for it for ever."
                )
            self._turns.append(turn)
            try:
                self._changed.wait_for(lambda: self.is_closed or self._turns[0] is turn)
                self._refuse()
            except BaseException:
                self._pass(turn)
                raise
            self._holder = threading.get_ident()
        try:
            with self.call():
                yield
        finally:
            with self._changed:
                self._holder = None
                self._pass(turn)

    def _pass(self, turn: object) -> None:
        self._turns.remove(turn)
        self._changed.notify_all()

    def _leave(self) -> None:
        with self._changed:
            me = threading.get_ident()
            self._inside[me] -= 1
            if self._inside[me] == 0:
                del self._inside[me]
            if self._is_left_to_a_call and not self._inside:
                self._close_once()
            self._changed.notify_all()

    def close(self) -> None:
        """Closes after the last call that is inside; further closings do nothing.

        From within a call of the same thread, as a signal handler does, the closing is left to the end of that call.
        """
        if self.is_foreign:
            return
        with self._changed:
            self._closing = True
            self._changed.notify_all()
            if threading.get_ident() in self._inside:
                self._is_left_to_a_call = True
                return
            if not self._changed.wait_for(lambda: not self._inside, _CLOSE_LIMIT):
                raise errors.BusyError(
                    f"Calls of {len(self._inside)} threads on scanner {self._name} have not returned "
                    f"in {_CLOSE_LIMIT:g} s."
                )
            self._close_once()

    def _close_once(self) -> None:
        if not self._closed:
            self._closed = True
            self._close()
