"""What the package does when it is used wrongly: closed scanners, wrong types and sizes, two threads."""

import gc
import itertools
import os
import re
import signal
import subprocess
import sys
import threading
import time

import kelvarin_vt40 as vt40
import numpy as np
import pytest
from conftest import Waiting
from kelvarin_vt40 import errors
from kelvarin_vt40 import simulator as sim
from kelvarin_vt40._native import native

READ_ONLY = np.empty((1600, 1600), np.uint8)
READ_ONLY.flags.writeable = False

# What is wrong, the call, the exception, and a part of its text.
MISUSE = [
    ("LED beyond the last", lambda s: s.set_led(12, 0), errors.OutOfRangeError, "index is 12"),
    ("LED that wraps to 0 in a byte", lambda s: s.set_led(256, 0), errors.OutOfRangeError, "index is 256"),
    ("LED state below 0", lambda s: s.set_led(0, -1), errors.OutOfRangeError, "state is -1"),
    ("LED of a list beyond the last", lambda s: s.set_leds([3, 12], 1), errors.OutOfRangeError, "index is 12"),
    ("LED as a text", lambda s: s.set_led("3", 1), TypeError, "str"),
    ("LED as a fraction", lambda s: s.set_led(3.5, 1), TypeError, "float"),
    ("beep beyond 32 bits", lambda s: s.beep(1 << 32), errors.OutOfRangeError, "4294967296"),
    ("display line too long", lambda s: s.display("x" * 17), errors.InvalidParameterError, "x" * 17),
    ("display line not in ASCII", lambda s: s.display("", "Zeigefinger ü"), errors.InvalidParameterError, "ü"),
    ("display line with a control character", lambda s: s.display("a\n"), errors.InvalidParameterError, "'a\\\\n'"),
    ("display line as bytes", lambda s: s.display(b"x"), TypeError, "b'x'"),
    ("number that is no mode", lambda s: setattr(s, "mode", 7), ValueError, "7"),
    ("name as a mode", lambda s: setattr(s, "mode", "PREVIEW"), ValueError, "PREVIEW"),
    ("number for a truth", lambda s: setattr(s, "auto_capture_beep", 2), TypeError, "2"),
    ("text for a number", lambda s: setattr(s, "signature_filter_sigma", "1"), TypeError, "'1'"),
    ("value outside its range", lambda s: setattr(s, "signature_filter_sigma", 1e9), ValueError, "1e\\+09"),
    ("value that is no number", lambda s: setattr(s, "signature_filter_sigma", float("nan")), ValueError, "nan"),
    ("time-out as a text", lambda s: s.auto_capture(timeout="1"), TypeError, "'1'"),
    ("time-out that is no number", lambda s: s.roll(timeout=float("nan")), errors.OutOfRangeError, "nan"),
    ("pause below 0", lambda s: s.sign(pause=-1), errors.OutOfRangeError, "pause is -1"),
    ("array of another size", lambda s: s.capture(out=np.empty((800, 800), np.uint8)), ValueError, "1600, 1600"),
    ("array one row short", lambda s: s.capture(out=np.empty((1599, 1600), np.uint8)), ValueError, "1599"),
    ("array of another type", lambda s: s.capture(out=np.empty((1600, 1600), np.int8)), ValueError, "int8"),
    ("array with gaps", lambda s: s.capture(out=np.empty((1600, 3200), np.uint8)[:, ::2]), ValueError, "C order"),
    ("array that is read-only", lambda s: s.capture(out=READ_ONLY), ValueError, "read-only"),
    ("list for an array", lambda s: s.capture(out=[0]), TypeError, "list"),
    ("preview without a stream", lambda s: s.preview_frame(), errors.InvalidStateError, "-50"),
    ("roll frame without a roll", lambda s: s.roll_frame(), errors.InvalidStateError, "-50"),
    ("reset with nothing under way", lambda s: s.reset_image(), errors.InvalidStateError, "-50"),
    ("scanner that is open already", lambda s: vt40.Scanner(s.serial), errors.DeviceOpenFailError, "VT40-AB0001"),
    ("scanner that is not there", lambda s: vt40.Scanner("VT40-XX"), errors.DisconnectedError, "VT40-XX"),
    ("serial with a zero", lambda s: vt40.Scanner("VT40-AB0001\0"), errors.DisconnectedError, "x00"),
    ("serial as bytes", lambda s: vt40.Scanner(b"VT40-AB0001"), TypeError, "b'VT40"),
    ("scene that is not JSON", lambda s: sim.load_scene("{"), errors.SimulatorError, "JSON"),
    ("scene out of range", lambda s: sim.lay(sim.Finger(pressure=2)), errors.SimulatorError, "pressure"),
    ("scene with infinity", lambda s: sim.lay(sim.Finger(x=float("inf"))), ValueError, "inf"),
    ("fault of no function", lambda s: sim.fail_call("VTScanAPINothing", -1), errors.SimulatorError, "VTScanAPINothing"),
    ("count below 0", lambda s: sim.pass_sequences(-1), ValueError, "-1"),
    ("time for no scanner", lambda s: sim.advance(1.0, serial="none"), errors.SimulatorError, "none"),
]


def test_misuse_is_answered_by_name_and_leaves_the_scanner_usable(scanner):
    for what, call, kind, words in MISUSE:
        with pytest.raises(kind, match=words) as raised:
            call(scanner)
            pytest.fail(f"{what} was accepted")
        if isinstance(raised.value, errors.Error):
            assert raised.value.text and raised.value.hint and raised.value.name != "KLV_ERROR", what
        assert scanner.mode is vt40.Mode.OFF and scanner.condition == 0, what
    assert scanner.capture().dark_pixels > 10_000


def every_use():
    """All that can be done with a scanner: methods without arguments that matter, and attributes."""
    arguments = {"set_led": (0, 0), "set_leds": ([0], 0)}
    for name, member in vars(vt40.Scanner).items():
        if name.startswith("_") or name in ("close", "closed", "simulated"):
            continue
        if isinstance(member, property):
            yield name, lambda s, name=name: getattr(s, name)
        else:
            yield name, lambda s, name=name: getattr(s, name)(*arguments.get(name, ()))


def test_a_closed_scanner_refuses_everything(scanner):
    scanner.close()
    scanner.close()
    for name, use in every_use():
        with pytest.raises(errors.ClosedError, match="VT40-AB0001 is closed"):
            use(scanner)
            pytest.fail(f"{name} was answered")
    assert scanner.closed and "closed" in repr(scanner)


def test_every_exception_has_the_number_of_its_class_and_of_the_header():
    header = open(os.path.join(os.path.dirname(__file__), "../../include/KelvarinLiveScannerVT40.h"), encoding="utf-8")
    with header:
        rows = [line.split() for line in header if line.startswith("#define KLV_ERROR_")]
    assert len(rows) > 20
    for _, name, number, *_ in rows:
        failure = errors.error_for(int(number.strip("(L)")), "text")
        assert (failure.name, failure.number) == (name, int(number.strip("(L)")))
        assert type(failure) is not errors.Error
    assert type(errors.error_for(-12345, "text")) is errors.Error and "-12345" in str(errors.error_for(-12345, "text"))


def waiting(call):
    """A call that waits for a frame, since the scanner holds them back; frames that were under way are taken first."""
    sim.hold_sequences()
    for _ in range(20):
        thread = Waiting(call)
        if not thread.ends_within(0.3):
            return thread
        assert thread.failure is None
    pytest.fail("frames come although they are held back")


def test_closing_ends_a_wait_of_another_thread_when_its_frame_comes(scanner):
    scanner.mode = vt40.Mode.PREVIEW
    wait = waiting(scanner.preview_frame)
    queued = Waiting(scanner.capture)
    closing = Waiting(scanner.close)
    # Who waits for a turn hears of it at once, who waits for a frame with the frame.
    assert isinstance(queued.end(5), errors.ClosedError)
    assert wait.runs and closing.runs
    sim.hold_sequences(False)
    assert isinstance(wait.end(), errors.ClosedError)
    assert closing.end() is None and sim.state().open == 0


def test_closing_ends_a_wait_to_which_no_frame_comes_at_the_stated_time(scanner):
    scanner.mode = vt40.Mode.ROLL
    begin = time.monotonic()
    wait = waiting(scanner.roll_frame)
    assert Waiting(scanner.close).end(10) is None
    assert isinstance(wait.end(5), errors.ClosedError) and time.monotonic() - begin < 10


def test_threads_that_poll_while_the_scanner_is_closed_end_without_a_crash():
    for _ in range(3):
        scanner = vt40.Scanner()
        scanner.mode = vt40.Mode.PREVIEW
        calls = (scanner.preview_frame, scanner.capture, lambda: scanner.set_led(1, 1), lambda: scanner.versions)
        threads = [Waiting(lambda call=call: [call() for _ in itertools.count()]) for call in calls]
        scanner.preview_frame()
        scanner.close()
        assert [type(thread.end()) for thread in threads] == [errors.ClosedError] * len(threads)


def test_turns_go_in_order_of_arrival_so_that_nobody_who_polls_keeps_others_out(scanner):
    order = []
    deadline = time.monotonic() + 10

    def take(name):
        with scanner._gate.turn():
            order.append(name)

    with scanner._gate.turn():
        threads = []
        for name in range(4):
            threads.append(Waiting(lambda name=name: take(name)))
            while len(scanner._gate._turns) < name + 2 and time.monotonic() < deadline:
                threading.Event().wait(0.001)
            assert len(scanner._gate._turns) == name + 2 and order == []
    assert [thread.end() for thread in threads] == [None] * 4 and order == [0, 1, 2, 3]


def test_waiting_lets_other_threads_run(scanner):
    scanner.mode = vt40.Mode.PREVIEW
    wait = waiting(scanner.preview_frame)
    begin = time.monotonic()
    assert scanner.condition == 0 and scanner.preview_size == (800, 800) and time.monotonic() - begin < 5
    assert wait.runs
    sim.hold_sequences(False)
    assert wait.end() is None


def test_a_signal_handler_may_close_the_scanner_that_its_thread_waits_for(scanner):
    scanner.mode = vt40.Mode.PREVIEW
    signal.signal(signal.SIGALRM, lambda *_: scanner.close())
    signal.setitimer(signal.ITIMER_REAL, 0.05)
    with pytest.raises(errors.ClosedError):
        for _ in scanner.preview():
            pass
    signal.signal(signal.SIGALRM, signal.SIG_DFL)
    assert sim.state().open == 0


def test_a_signal_handler_cannot_wait_for_its_own_thread(scanner):
    scanner.mode = vt40.Mode.PREVIEW
    with scanner._gate.turn(), pytest.raises(errors.InvalidStateError, match="same thread"):
        scanner.preview_frame()
    assert scanner.preview_frame().size == (800, 800)


def test_a_closing_that_the_scan_library_refuses_is_reported_and_ends_the_handle(scanner):
    sim.fail_call("VTScanAPIDestroyHandle", -101)
    with pytest.raises(errors.InternalError, match="VT40-AB0001"):
        scanner.close()
    assert scanner._handle.value is None
    with vt40.Scanner() as again:
        assert again.serial == "VT40-AB0001"


def test_an_unplugged_scanner_is_lost_and_can_be_opened_when_it_is_back(scanner):
    sim.unplug()
    with pytest.raises(errors.DisconnectedError):
        scanner.capture()
    assert vt40.scanners() == []
    with pytest.raises(errors.DisconnectedError, match="No scanner is connected"):
        vt40.Scanner()
    sim.plug()
    scanner.close()
    with vt40.Scanner() as again:
        assert again.capture().dark_pixels > 0


def test_damaged_calibration_is_named(simulated):
    sim.set_eprom_file("GEOCAL", b"damaged")
    with pytest.raises(errors.CorruptDataError):
        vt40.Scanner()
    sim.restore_eprom_file("GEOCAL")
    vt40.Scanner().close()


def test_a_forgotten_scanner_is_closed_with_a_warning(simulated):
    scanner = vt40.Scanner()
    with pytest.warns(ResourceWarning, match="VT40-AB0001 was not closed"):
        del scanner
        gc.collect()
    assert sim.state().open == 0


def test_shutting_down_closes_all_and_the_next_call_starts_afresh(scanner):
    with pytest.raises(errors.DeviceOpenFailError):
        vt40.Scanner()
    sim.fail_call("VTScanAPIDestroyHandle", -101)
    with pytest.raises(errors.InternalError):
        vt40.shutdown()
    assert scanner.closed and sim.state().open == 0
    assert native().try_call("LS_VT40Uninitialize") == errors.NotInitializedError.number
    assert vt40.scanners() == ["VT40-AB0001"]


def test_a_scanner_that_is_opened_while_the_library_is_shut_down_meanwhile_can_be_closed(simulated, monkeypatch):
    monkeypatch.setattr(vt40.library, "register", lambda _: None)
    scanner = vt40.Scanner()
    vt40.shutdown()
    assert scanner.capture().size == (1600, 1600)
    scanner.close()
    assert sim.state().open == 0


def in_a_fresh_interpreter(program, folder="/", **environment):
    plain = {k: v for k, v in os.environ.items() if not k.startswith("KELVARIN_SDK") and not k.startswith("KELVARIN_VTSIM")}
    return subprocess.run(
        [sys.executable, "-c", "import kelvarin_vt40 as vt40\n" + program],
        env=dict(plain, **environment), cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=60,
    )  # fmt: skip


@pytest.mark.parametrize(
    "program, environment, words",
    [
        ("vt40.scanners()", {"KELVARIN_VT40_LIBRARY": "/nowhere/library.so"}, "LibraryNotFoundError.*/nowhere/library.so"),
        ("vt40.scanners()", {"KELVARIN_VT40_LIBRARY": "libc.so.6"}, "LibraryNotFoundError.*LS_VT40"),
        ("vt40.scanners()", {}, "FileOpenFailError.*simulator.use"),
        ("vt40.simulator.lay()", {}, "SimulatorError.*not asked for"),
    ],
    ids=["no library", "another library", "no scan library", "simulator not asked for"],
)
def test_what_is_missing_is_named(program, environment, words):
    done = in_a_fresh_interpreter(program, **environment)
    assert done.returncode == 1 and re.search(words, done.stdout), done.stdout


def test_a_simulated_scan_library_is_known_as_one_however_it_was_found(simulated):
    program = (
        "with vt40.Scanner() as scanner:\n"
        "    print('simulated', scanner.simulated)\n"
        "assert not vt40.library.is_simulation_asked_for()\n"
        "vt40.simulator.use('finger')\n"
        "with vt40.Scanner() as scanner:\n"
        "    print('state', vt40.simulator.state().open)\n"
    )
    done = in_a_fresh_interpreter(program, folder=vt40.library.simulator_folder())
    assert "simulated True" in done.stdout and "state 1" in done.stdout, done.stdout


def test_the_simulator_does_not_take_the_place_of_an_open_scanner(scanner, monkeypatch):
    monkeypatch.setattr(vt40.library, "_simulated", False)
    with pytest.raises(errors.InvalidStateError, match="real scanner is open"):
        sim.use("finger")
    assert scanner.capture().size == (1600, 1600)


def test_an_interpreter_that_ends_with_an_open_scanner_and_a_waiting_thread_ends_well():
    program = (
        "import threading\n"
        "scanner = vt40.Scanner()\n"
        "scanner.mode = vt40.Mode.PREVIEW\n"
        "scanner.preview_frame()\n"
        "threading.Thread(target=lambda: [0 for _ in scanner.preview()], daemon=True).start()\n"
        "print('end', scanner.simulated)\n"
    )
    done = in_a_fresh_interpreter(program, KELVARIN_SDK_SIMULATE="1")
    assert done.returncode == 0 and "end True" in done.stdout


def test_a_forked_child_is_refused(scanner):
    child = os.fork()
    if child == 0:
        status = 1
        try:
            scanner.capture()
        except errors.ClosedError:
            try:
                vt40.scanners()
            except errors.NotInitializedError:
                status = 0
        os._exit(status)
    assert os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]) == 0
    assert scanner.capture().size == (1600, 1600)
