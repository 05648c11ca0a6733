"""The blocks of the documentation run as they stand, and the programs of the examples do what they are for."""

import doctest
import inspect
import os
import re
import subprocess
import sys
from pathlib import Path

import kelvarin_vt40 as vt40
import numpy as np
import pytest
from kelvarin_vt40 import simulator as sim

PROJECT = Path(__file__).resolve().parents[2]


def failures_in(text, name):
    test = doctest.DocTestParser().get_doctest(text, {}, name, name, 0)
    assert test.examples, f"{name} has no examples"
    runner = doctest.DocTestRunner(verbose=False, optionflags=doctest.IGNORE_EXCEPTION_DETAIL)
    return runner.run(test).failed


def test_the_blocks_of_the_guide_run(simulated, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    blocks = re.findall(r"^```python\n(>>> .*?)^```$", (PROJECT / "docs/python.md").read_text("utf-8"), re.M | re.S)
    assert failures_in("\n".join(blocks), "docs/python.md") == 0


def test_the_lines_of_the_readme_run(simulated, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    lines = re.search(r"^```python\n(.*?)^```$", (PROJECT / "README.md").read_text("utf-8"), re.M | re.S)[1]
    exec(compile(lines, "README.md", "exec"), {})
    assert (tmp_path / "fingers.png").stat().st_size > 10_000


@pytest.mark.parametrize("module", [vt40, sim], ids=["kelvarin_vt40", "simulator"])
def test_the_examples_of_the_module_run(simulated, module):
    assert failures_in(inspect.getdoc(module), module.__name__) == 0


def test_what_is_public_is_described(simulated):
    guide = (PROJECT / "docs/python.md").read_text("utf-8")
    members = [name for name, member in vars(vt40.Scanner).items() if not name.startswith("_")]
    functions = [name for name in sim.__all__ if inspect.isfunction(getattr(sim, name))]
    missing = [name for name in members + functions if not re.search(rf"\b{name}\b", guide)]
    assert missing == []
    for name in members:
        member = vars(vt40.Scanner)[name]
        assert inspect.getdoc(member), f"{name} has no description"


def run_example(name, *arguments, scene, folder):
    environment = dict(os.environ, KELVARIN_SDK_SIMULATE="1", KELVARIN_VTSIM_SCENE=scene, COLUMNS="60", LINES="32")
    program = [sys.executable, str(PROJECT / "examples/python" / name), *arguments]
    return subprocess.run(program, env=environment, cwd=folder, stdout=subprocess.PIPE, text=True, timeout=100)


def test_the_capture_program_writes_what_it_captured(tmp_path):
    done = run_example("capture.py", "--live", scene="settling-slap", folder=tmp_path)
    assert done.returncode == 0
    assert re.search(r"fingers\.(png|npy): 1600 x 1600, 500 dpi, liveness \d+, simulated", done.stdout)
    assert list(tmp_path.glob("fingers.*"))


def test_the_roll_program_reports_a_roll_that_slipped(tmp_path):
    done = run_example("roll_report.py", scene="roll-slipped", folder=tmp_path)
    assert done.returncode == 2 and "SLIPPED (-801)" in done.stdout and " mm wide" in done.stdout
    assert "matplotlib is not installed" in done.stdout or (tmp_path / "roll.png").exists()


def test_the_live_program_draws_the_preview_in_the_terminal(tmp_path):
    done = run_example("live.py", "--frames", "3", scene="finger", folder=tmp_path)
    lines = done.stdout.split("\033[H")[-1].splitlines()
    assert done.returncode == 0 and lines[-1].startswith("finger")
    rows = np.array([["█" in part for part in (line[:20], line[20:40], line[40:])] for line in lines[:30]])
    assert rows[:, 1].any() and not rows[:, 0].any() and not rows[:, 2].any()
