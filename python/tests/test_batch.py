"""Batches: folders of frames in, folders of frames out, stopped and lost workers between."""

import json
import os
import signal
import sys
import threading
import time

import numpy as np
import pytest

import zvfilter
from zvfilter import batch


@pytest.fixture
def sequences(tmp_path, camera, disparity):
    """Four folders, whose frames are in natural order only."""
    folders = []
    for number in range(4):
        folder = tmp_path / "in" / f"scene_{number}"
        folder.mkdir(parents=True)
        for index in range(12):
            zvfilter.write(folder / f"f_{index}.npy", np.roll(disparity[index % 6], number, axis=0))
        folders.append(folder)
    (folders[0] / "f_1_preview.png").write_bytes(b"")
    (folders[0] / ".f_1.png").write_bytes(b"")
    (folders[0] / "notes.txt").write_bytes(b"")
    return folders


def contents(folder):
    """The results by name. Records have times in them."""
    return {str(file.relative_to(folder)): file.read_bytes() for file in folder.rglob("*") if file.suffix == ".png"}


def names(reports, **what):
    return [report.name for report in reports if all(getattr(report, key) == value for key, value in what.items())]


def test_results_are_those_of_the_chain(tmp_path, sequences, chain):
    told = []
    reports = batch.run(chain, sequences, tmp_path / "out", progress=lambda *what: told.append(what))
    assert names(reports, frames=12, error=None, skipped=False, retried=0) == [f"scene_{number}" for number in range(4)]
    assert [(done, total) for _, done, total in told] == [(1, 4), (2, 4), (3, 4), (4, 4)]
    for number, folder in enumerate(sequences):
        frames = [zvfilter.read(folder / f"f_{index}.npy") for index in range(12)]
        for index, made in enumerate(chain.copy().stream(frames)):
            assert np.array_equal(made, zvfilter.read(tmp_path / f"out/scene_{number}/f_{index}.png"))
    assert len(contents(tmp_path / "out")) == 48
    assert batch.run(chain, sequences, tmp_path / "threads", workers=3) and contents(tmp_path / "threads") == contents(tmp_path / "out")


def test_what_is_made_is_skipped_and_what_has_changed_is_not(tmp_path, sequences, chain):
    out = tmp_path / "out"

    def made_again(changed=chain):
        return [report.name[-1] for report in batch.run(changed, sequences, out) if not report.skipped]

    assert made_again() == ["0", "1", "2", "3"]
    first = contents(out)
    assert made_again() == []
    (out / "scene_1/f_3.png").unlink()
    (out / "scene_2" / batch.RECORD).write_text("{ not json")
    os.utime(sequences[3] / "f_0.npy", (1, 1))
    assert made_again() == ["1", "2", "3"] and contents(out) == first
    (sequences[0] / "f_11.npy").unlink()
    assert made_again() == ["0"] and not (out / "scene_0/f_11.png").exists()
    other = chain.copy()
    other[3].weight = 0.9
    assert made_again(other) == ["0", "1", "2", "3"] and contents(out) != first


def test_a_run_that_stops_halfway_leaves_no_record_of_the_one_before(tmp_path, sequences, chain):
    out = tmp_path / "out"
    batch.run(chain, sequences[:1], out)
    first = contents(out)
    intact = (sequences[0] / "f_6.npy").read_bytes()
    other = chain.copy()
    other[3].weight = 0.9
    state = (sequences[0] / "f_6.npy").stat()
    (sequences[0] / "f_6.npy").write_bytes(bytes(len(intact)))
    [report] = batch.run(other, sequences[:1], out)
    assert "f_6.npy" in report.error and report.frames == 0
    (sequences[0] / "f_6.npy").write_bytes(intact)
    os.utime(sequences[0] / "f_6.npy", ns=(state.st_atime_ns, state.st_mtime_ns))
    assert contents(out) != first
    [report] = batch.run(chain, sequences[:1], out)
    assert not report.skipped and contents(out) == first


def test_one_that_fails_does_not_stop_the_others(tmp_path, sequences, chain, capsys):
    (tmp_path / "empty").mkdir()
    jobs = {"none": [tmp_path / "none.png"], "empty": tmp_path / "empty", "twice": [sequences[0] / "f_1.npy", tmp_path / "f_1.npy"],
            "good": reversed([sequences[1] / f"f_{index}.npy" for index in range(3)])}
    np.save(tmp_path / "f_1.npy", np.ones((4, 4), np.uint16))
    reports = batch.run(chain, jobs, tmp_path / "out", progress=True)
    assert names(reports, error=None, frames=3) == ["good"]
    assert all(words in report.error for report, words in zip(reports, ["none.png", "no frames", "one name"]))
    assert len(capsys.readouterr().err.splitlines()) == 4
    zvfilter.write(tmp_path / "out/good/f_0.png", np.ones((4, 4), np.uint16))
    [report] = batch.run(chain, [tmp_path / "out/good"], tmp_path / "out")
    assert "own files" in report.error and zvfilter.read(tmp_path / "out/good/f_0.png").shape == (4, 4)
    for wrong in ([sequences[0], sequences[0]], {"a/b": sequences[0]}, {"..": sequences[0]}):
        with pytest.raises(ValueError):
            batch.run(chain, wrong, tmp_path / "out")
    with pytest.raises(TypeError):
        batch.run(chain, sequences[0], tmp_path / "out")


def test_without_distributed_the_package_is_named(tmp_path, sequences, chain, monkeypatch):
    monkeypatch.setitem(sys.modules, "distributed", None)
    with pytest.raises(ImportError, match="python3-distributed"):
        batch.run(chain, sequences, tmp_path / "out", client="tcp://127.0.0.1:1")


def kill_a_worker_at_work(client, out, killed):
    """Kills the process whose first sequence has some of its frames and not all."""
    processes = client.run(os.getpid)
    while True:
        for folder in out.glob("*"):
            made = len(list(folder.glob("*.png")))
            try:
                state = json.loads((folder / batch.RECORD).read_text())
            except (OSError, ValueError):
                continue
            if 3 <= made < 40 and not state["complete"] and state["process"] in processes.values():
                os.kill(state["process"], signal.SIGKILL)
                killed.append(folder.name)
                return
        time.sleep(0.002)


def test_a_lost_workers_sequence_is_made_by_another(tmp_path, sequences, chain, disparity):
    distributed = pytest.importorskip("distributed")
    for folder in sequences:
        for index in range(12, 40):
            zvfilter.write(folder / f"f_{index}.npy", disparity[index % 6])
    batch.run(chain, sequences, tmp_path / "local")
    killed = []
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True, dashboard_address=None,
                                  local_directory=str(tmp_path / "dask")) as cluster, distributed.Client(cluster) as client:
        killer = threading.Thread(target=kill_a_worker_at_work, args=(client, tmp_path / "out", killed), daemon=True)
        killer.start()
        reports = batch.run(chain, sequences, tmp_path / "out", client)
        killer.join(10)
        assert killed and names(reports, error=None, frames=40) == [f"scene_{number}" for number in range(4)]
        assert killed[0] in [report.name for report in reports if report.retried >= 1]
        assert contents(tmp_path / "out") == contents(tmp_path / "local")
        again = batch.run(chain, sequences, tmp_path / "out", cluster.scheduler_address)
        assert names(again, skipped=True) == names(again)
