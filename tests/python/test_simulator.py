"""The control side of the simulated scanner: scenes as dataclasses, ground truth, what the host did, faults."""

import json

import kelvarin_vt40 as vt40
import numpy as np
import pytest
from kelvarin_vt40 import errors
from kelvarin_vt40 import simulator as sim

# Every class of a scene with every key, so that each name meets the simulator's reader.
ALL = sim.Scene(
    seed=2, pacing="consumer", library_version="1.21", fault_seed=3,
    faults=[
        sim.FailCall("VTScanAPIBeep", -101, first=1, repeat=1), sim.FailRandomly("VTScanAPISetVSYNC", 0.0, -101),
        sim.Unplug("VT40-AB0002", 900), sim.Plug("VT40-AB0002", 901),
    ],
    scanners=[
        sim.SimulatedScanner(
            serial="VT40-AB0001", product=17, usb_powered=True, version="FW:3.10 FPGA:2.07 HW:1.4 LIB:1.20",
            plane_order="lit-first", ambient=[sim.Light(0, 5), sim.Light(2, 9)], noise=np.float32(0.5),
            eprom=sim.Eprom(form="current", gainset=sim.EpromFile(missing=True), brghtcal=sim.EpromFile(flip=[])),
            dirt=[sim.Dirt(x=5, y=5, width=1, length=2, angle=3, strength=0.3, from_=0, until=9)],
            pen=sim.Pen([sim.Stroke([(10, 10), (20, 20, 0.5)], at=30, speed=50, line="straight"),
                         sim.Stroke([(5, 5), (6, 9)], after=0.3)], diameter=0.7, strength=0.9),
            fingers=[
                sim.Finger(
                    sim.Print(seed=4, pattern="arch", width=15, height=20, ridge_period=0.45, pores=0.4, material="skin",
                              skin="elderly", creases=3, scars=1, cuts=1),
                    x=20, y=40, angle=5, pressure=0.6, dryness=0.1, touch=0.1, lift=5, touch_seconds=0.2, lift_seconds=0.1,
                    repeat=7, halo=0.1, sweat=0.2, stretch=sim.Stretch(x=0.5, y=0.1, turn=3), settle=sim.Settle(x=1, y=1, turn=2, pressure=0.4, seconds=0.5),
                    press=sim.Press(start=1, seconds=0.3, pressure=0.8),
                ),
                sim.Finger(x=60, slide=sim.Slide(speed=3, direction=90, start=0, until=1, radius=2)),
                sim.Finger(roll=sim.Rolling(width=12, tilt=3, path=[sim.RollMoment(0.2, -7, 0, 1), sim.RollMoment(1, 7)])),
            ],
        ),
        sim.SimulatedScanner(serial="VT40-AB0002", target=sim.Target(
            seed=1, x=40.64, y=40.64, angle=0, radius=1.5, uneven=0.1, dust=1, scratches=1, missing=[3], doubled=[4])),
    ],
)  # fmt: skip


def test_every_part_of_a_scene_is_understood_by_the_simulator(simulated, tmp_path):
    sim.load_scene(ALL)
    assert vt40.scanners() == ["VT40-AB0001", "VT40-AB0002"]
    assert sim.target_dots("VT40-AB0002").shape == (64, 2) and sim.target_dots().shape == (0, 2)
    assert [round(stroke.begin, 1) for stroke in sim.pen_strokes()][0] == 30.0
    (tmp_path / "scene.json").write_text(json.dumps(sim.scenes.as_dict(ALL)))
    sim.load_scene(tmp_path / "scene.json")
    with vt40.Scanner("VT40-AB0002") as scanner:
        assert scanner.versions.endswith("1.21")


def test_minutiae_lie_in_the_skin_that_is_down_and_ridges_with_them():
    sim.load_scene(sim.Scene([sim.SimulatedScanner(fingers=[sim.Finger(sim.Print(pattern="left-loop"), x=30)])]))
    points, ridges, mask = sim.minutiae(0), sim.ridges(0), sim.ground_truth(0).mask
    down = [point for point in points if point.down]
    assert 15 < len(down) < len(points) and {point.kind for point in points} == {1, 2, 3, 4}
    assert all(mask[round(point.y), round(point.x)] for point in down)
    assert ridges.shape == (200, 200, 2) and 7 < np.median(ridges[ridges[..., 1] > 0, 1]) < 11


def test_laying_replaces_what_lies_there_while_time_goes_on(scanner):
    scanner.mode = vt40.Mode.PREVIEW
    columns = []
    for x in (20, 60):
        sim.lay(sim.Finger(x=x), ambient=10, noise=0)
        scanner.preview_frame()
        truth = sim.ground_truth()
        columns.append(np.flatnonzero(truth.mask.any(axis=0)).mean() * 25.4 / 500)
    assert columns == pytest.approx([20, 60], abs=0.5) and sim.state().time > 0
    sim.lay(sheets=[sim.Sheet("bars", x=41, angle=2)])
    sheet, fields = sim.sheet_at(sim.state().time)
    assert (sheet.kind, sheet.x, sheet.angle) == (1, 41, 2) and max(field.frequency for field in fields) == 10
    assert 0.3 <= sim.optics().spread_x <= 0.45


def test_the_truth_of_another_moment_and_of_a_roll_can_be_had(scanner):
    sim.load_scene("roll-right")
    assert not sim.ground_truth(at=0.0).mask.any() and sim.ground_truth(at=1.5).mask.any()
    unrolled = sim.unrolled_truth(0, 4).mask.any(axis=0).sum()
    assert unrolled > 1.3 * sim.ground_truth(at=1.5).mask.any(axis=0).sum()
    x, y = sim.picture_to_sensor(800, 800)
    assert abs(x - 1920) < 200 and abs(y - 1360) < 200


def test_the_state_says_what_the_host_has_done(scanner):
    scanner.mode = vt40.Mode.PREVIEW
    scanner.preview_frame()
    state = sim.state()
    assert (state.plugged, state.open, state.capture_enabled, state.planes) == (1, 1, 1, 2) and state.sequences > 0
    assert sim.wait_for_sequences(state.sequences + 1, timeout=10)
    assert sim.sequences(first=1)[0].number == 1 and sim.sequences()[0].fingers == 1
    assert sim.call_count("VTScanAPICreateHandle") == 1
    assert not sim.wait_for_sequences(1 << 40, timeout=0.01)


def test_held_sequences_pass_one_by_one(scanner):
    scanner.mode = vt40.Mode.PREVIEW
    scanner.preview_frame()
    sim.hold_sequences()
    before = sim.state().sequences
    sim.delay_sequence(0.01)
    sim.pass_sequences(2)
    assert sim.wait_for_sequences(before + 2, timeout=10)
    assert sim.state().sequences <= before + 3


def test_faults_strike_and_are_logged(scanner):
    sim.fail_call("VTScanAPILockRawSequence", -101)
    with pytest.raises(errors.InternalError):
        scanner.capture()
    scanner.capture()
    sim.fail_randomly("VTScanAPILockRawSequence", 1.0, -60, seed=5)
    with pytest.raises(errors.DisconnectedError):
        scanner.capture()
    sim.clear_faults()
    scanner.capture()
    assert len([line for line in sim.fault_log() if "VTScanAPILockRawSequence" in line]) == 2
    sim.advance(1.0)
    sim.unplug(at=sim.state().time)
    sim.plug(at=sim.state().time + 100)
    assert vt40.scanners() == []


def test_versions_and_calibration_files_can_be_replaced(simulated):
    sim.set_library_version("1.99")
    sim.set_device_version("FW:3.11 FPGA:2.07 HW:1.4 LIB:1.20")
    sim.set_eprom_file("GAINSET", None)
    with vt40.Scanner() as scanner:
        assert "FW:3.11" in scanner.versions and scanner.versions.endswith("1.99")
