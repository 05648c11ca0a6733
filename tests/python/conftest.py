"""What the tests of the Python package share: the simulated scanner, laid anew for each of them."""

import threading

import kelvarin_vt40 as vt40
import pytest
from kelvarin_vt40 import simulator as sim


@pytest.fixture(autouse=True)
def simulated():
    """The simulated scanner with one finger; whatever a test broke is whole again."""
    sim.use("finger")
    sim.clear_faults()
    yield
    vt40.shutdown()
    sim.reset()


@pytest.fixture
def scanner(simulated):
    with vt40.Scanner() as opened:
        yield opened


class Waiting:
    """A call in a thread of its own, and how it ended."""

    def __init__(self, call):
        self.result = None
        self.failure = None
        self._thread = threading.Thread(target=self._run, args=(call,), daemon=True)
        self._thread.start()

    def _run(self, call):
        try:
            self.result = call()
        except BaseException as failure:  # whatever ends the thread is what the test looks at
            self.failure = failure

    def end(self, seconds=30):
        self._thread.join(seconds)
        assert not self._thread.is_alive(), "the call did not return"
        return self.failure

    def ends_within(self, seconds):
        self._thread.join(seconds)
        return not self.runs

    @property
    def runs(self):
        return self._thread.is_alive()
