"""Captures: what each mode delivers, against the C interface and against what lay on the platen."""

import ctypes
import gc
import itertools
import os
import subprocess
import sys
import textwrap

import kelvarin_vt40 as vt40
import numpy as np
import pytest
from kelvarin_vt40 import simulator as sim
from PIL import Image

QUIET = sim.Scene([sim.SimulatedScanner(fingers=[sim.Finger()], noise=0)], seed=3)


def captured_by_c(mode):
    """A picture as a C program takes it, in a process of its own."""
    program = f"""
        import ctypes, os, sys
        library = ctypes.CDLL(os.environ["KELVARIN_VT40_LIBRARY"])
        handle, score, done, result = ctypes.c_void_p(), ctypes.c_double(), ctypes.c_ubyte(), ctypes.c_long()
        pixels = ctypes.create_string_buffer(1600 * 1600)
        assert library.LS_VT40Initialize(None) == 0
        assert library.LS_VT40OpenScanner(b"VT40-AB0001", ctypes.byref(handle)) == 0
        assert library.LS_VT40SetCaptureMode(handle, {int(mode)}) == 0
        facts = (ctypes.byref(score), ctypes.byref(done), ctypes.byref(result))
        assert library.LS_VT40GetImage(handle, pixels, *facts) == 0
        sys.stdout.buffer.write(pixels.raw)
        assert library.LS_VT40CloseScanner(ctypes.byref(handle)) == 0
    """
    environment = dict(os.environ, KELVARIN_SDK_SIMULATE="1", KELVARIN_VTSIM_SCENE=sim.scenes.as_json(QUIET))
    done = subprocess.run(
        [sys.executable, "-c", textwrap.dedent(program)], env=environment, check=True, stdout=subprocess.PIPE, timeout=60
    )
    return np.frombuffer(done.stdout, np.uint8).reshape(1600, 1600)


def test_a_picture_is_byte_for_byte_what_the_c_interface_gives():
    sim.load_scene(QUIET)
    with vt40.Scanner() as scanner:
        frame = scanner.capture()
    assert np.array_equal(frame.pixels, captured_by_c(vt40.Mode.OFF))
    assert (frame.dpi, frame.size, frame.done, frame.mode) == (500, (1600, 1600), False, vt40.Mode.OFF)
    assert frame.simulated and frame.serial == "VT40-AB0001"


def test_a_capture_shows_what_lay_on_the_platen(scanner):
    scanner.mode = vt40.Mode.PREVIEW
    picture = scanner.capture().pixels
    truth = sim.ground_truth()
    assert truth.picture.shape == picture.shape and set(np.unique(truth.mask)) == {0, 255}
    inside = truth.mask == 255
    assert np.corrcoef(picture[inside], truth.picture[inside])[0, 1] > 0.8
    assert not np.array_equal(truth.picture, np.fliplr(truth.picture))
    assert (picture[sim.ground_truth(at=0.0).mask == 0] < 128).mean() < 0.01


def test_previews_follow_each_other_and_each_owns_its_pixels(scanner):
    first, second = itertools.islice(scanner.preview(), 2)
    assert scanner.mode is vt40.Mode.PREVIEW
    assert first.pixels.shape == (800, 800) and first.pixels.dtype == np.uint8 and first.dpi == 250
    assert first.state is vt40.State.FINGER and first.verdict is None
    assert not np.shares_memory(first.pixels, second.pixels)
    assert np.asarray(first) is first.pixels and np.asarray(first, np.float32).dtype == np.float32
    view, copy = first.pixels[200:600, 200:600], first.pixels[200:600, 200:600].copy()
    del first, second
    scanner.close()
    gc.collect()
    assert np.array_equal(view, copy)


def test_a_picture_goes_to_the_array_of_the_caller(scanner):
    mine = np.zeros((800, 800), np.uint8)
    assert next(scanner.preview(out=mine)).pixels is mine
    assert mine.any()


def test_an_empty_platen_gives_an_empty_state(scanner):
    sim.lay()
    scanner.mode = vt40.Mode.PREVIEW
    seen = [frame.state for frame in itertools.islice(scanner.preview(), 4)]
    assert seen[-1] is vt40.State.EMPTY


def test_an_automatic_capture_waits_until_fingers_lie_still_and_then_until_they_are_lifted(scanner):
    sim.load_scene("settling-slap")
    seen = []
    first = scanner.auto_capture(timeout=60, on_frame=seen.append)
    assert first.done and first.state is vt40.State.DONE and first.size == (1600, 1600)
    assert len(seen) > 3 and [frame.done for frame in seen[:-1]] == [False] * (len(seen) - 1)
    scanner.auto_capture(timeout=60, on_frame=seen.append)
    done = [frame.done for frame in seen]
    assert False in done[done.index(True) :], "the same fingers were captured twice"


def test_a_live_capture_is_scored(scanner):
    sim.load_scene("settling-slap")
    assert scanner.auto_capture(timeout=60, live=True).score > 50
    sim.load_scene("fake-finger")
    assert scanner.auto_capture(timeout=60, live=True).score < 20


def test_an_automatic_capture_without_fingers_times_out_with_the_last_preview(scanner):
    sim.lay()
    with pytest.raises(vt40.errors.CaptureTimeoutError, match="within 0.2 s") as raised:
        scanner.auto_capture(timeout=0.2)
    assert isinstance(raised.value, TimeoutError) and raised.value.frame.size == (800, 800)


@pytest.mark.parametrize("scene, verdict", [("roll-right", vt40.Verdict.CLEAN), ("roll-slipped", vt40.Verdict.SLIPPED)])
def test_a_roll_grows_and_ends_with_its_verdict(scanner, scene, verdict):
    sim.load_scene(scene)
    roll = scanner.roll(timeout=60, postprocess=False)
    ink = [frame.dark_pixels for frame in roll]
    assert roll.verdict is verdict and roll.frame.verdict is verdict and roll.verdict.hint
    assert roll.frame.dpi == 500 and roll.frame.size == scanner.roll_size
    assert ink[-1] > 0.99 * max(ink) > 4 * next(n for n in ink if n)
    assert list(roll) == [] and roll.wait() is roll.frame
    assert next(scanner.roll()).verdict is None, "the next roll begins with the end of this one"


def test_a_roll_that_does_not_come_times_out(scanner):
    sim.lay()
    with pytest.raises(vt40.errors.CaptureTimeoutError, match="No roll"):
        scanner.roll(timeout=0.1).wait()


@pytest.mark.parametrize("half, height", [(False, 1600), (True, 800)])
def test_a_signature_ends_when_the_pen_rests(scanner, half, height):
    sim.load_scene("signature")
    signature = scanner.sign(pause=0.2, timeout=60, half=half, sigma=1.0)
    picture = signature.wait()
    assert signature.finished and signature.frame.dpi == 250
    assert picture.pixels.shape == (height, 1600) and picture.dark_pixels > 1000
    # The ink lies where the sensor saw the pen; what taps the glass and does not move is no stroke.
    strokes = [stroke for stroke in sim.pen_strokes() if stroke.end - stroke.begin > 0.3]
    assert len(strokes) > 1
    for stroke in strokes:
        pen = sim.pen_at((stroke.begin + stroke.end) / 2)
        x, y = round(1600 - pen.sensor_x / 2.4), round(pen.sensor_y / 1.7)
        assert pen.down and picture.pixels[y - 8 : y + 9, x - 8 : x + 9].min() < 128


def test_a_signature_that_is_not_written_times_out(scanner):
    sim.lay()
    with pytest.raises(vt40.errors.CaptureTimeoutError, match="No signature"):
        scanner.sign(pause=0, timeout=1).wait()


def test_full_frames_come_as_a_stream(scanner):
    scanner.mode = vt40.Mode.FULL
    frames = [scanner.capture() for _ in range(2)]
    assert [frame.size for frame in frames] == [scanner.image_size] * 2


def test_lights_sound_and_display_arrive_at_the_scanner(scanner):
    scanner.set_led(3, 4)
    scanner.set_leds([0, 11], 7)
    assert list(sim.lights()[-1].leds) == [7, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0, 7]
    scanner.beep(200, 50)
    assert [(b.first, b.second) for b in sim.beeps()] == [(200, 50)]
    scanner.display("Right thumb", "Roll, please")
    assert sim.display().lines == ("Right thumb".ljust(16), "Roll, please".ljust(16))


def test_properties_are_attributes_with_types(scanner):
    for name, value in [
        ("auto_capture_beep", True),
        ("rolled_post_process", False),
        ("signature_half", True),
        ("signature_filter_sigma", 1.25),
        ("signature_detect_time", 0.5),
    ]:
        setattr(scanner, name, value)
        assert getattr(scanner, name) == value and type(getattr(scanner, name)) is type(value)
    assert scanner.signature_size == (1600, 800) and scanner.signature_preview_size == (800, 400)
    assert "SAPI:" in scanner.versions and scanner.serial in vt40.scanners() and scanner.condition == 0
    assert vt40.version().startswith("1.")


def test_a_frame_becomes_a_pillow_image_with_its_resolution(scanner, tmp_path, monkeypatch):
    frame = scanner.capture()
    frame.to_pil().save(tmp_path / "print.png", dpi=(frame.dpi, frame.dpi))
    with Image.open(tmp_path / "print.png") as read:
        assert round(read.info["dpi"][0]) == 500 and np.array_equal(np.asarray(read), frame.pixels)
    monkeypatch.setitem(sys.modules, "PIL", None)
    with pytest.raises(ImportError, match="python3-pil"):
        frame.to_pil()
