"""Many sequences of image files through one chain, on this machine or on a cluster.

A sequence, not a frame, is the unit of work: filters remember earlier frames, so the parts of a sequence cannot be worked on apart.
"""

from __future__ import annotations

import dataclasses
import importlib
import json
import os
import re
import sys
import time
import uuid
from collections.abc import Mapping
from concurrent.futures import ThreadPoolExecutor, as_completed
from pathlib import Path
from typing import Any, Callable, Iterable, Iterator, List, Optional, Tuple, Union

from . import _zvfilter, images
from .chain import Chain
from .inputs import Path as AnyPath

#: The file in a folder of results that says what was made there, from what. It is complete once all of that is.
RECORD = ".zvfilter.json"

Source = Union[AnyPath, Iterable[AnyPath]]
Sequences = Union[Mapping[str, Source], Iterable[AnyPath]]


@dataclasses.dataclass(frozen=True)
class Report:
    """What became of a sequence.

    Attributes
    ----------
    name : str
    frames : int
        That were made.
    seconds : float
        Of work, by the last worker that did it.
    error : str or None
        What stopped it, with the file.
    skipped : bool
        It had been made before, from the same files with the same chain.
    retried : int
        How often it was begun again in this run because its worker was lost.
    """

    name: str
    frames: int = 0
    seconds: float = 0.0
    error: Optional[str] = None
    skipped: bool = False
    retried: int = 0


Progress = Callable[[Report, int, int], object]


def natural_key(name: str) -> Tuple[Tuple[Union[str, int], ...], str]:
    """Sorts ``f_2`` before ``f_10``."""
    parts = re.split(r"([0-9]+)", name)
    return tuple(int(part) if number % 2 else part for number, part in enumerate(parts)), name


def frame_files(folder: AnyPath) -> List[Path]:
    """The images in a folder in natural order; hidden files and previews are left out."""
    found = [Path(entry.path) for entry in os.scandir(folder)
             if entry.is_file() and not entry.name.startswith(".") and not entry.name.endswith(_zvfilter.preview_suffix)
             and Path(entry.name).suffix.lower() in _zvfilter.extensions]
    return sorted(found, key=lambda file: natural_key(file.name))


def run(chain: Chain, sequences: Sequences, output: AnyPath, client: Any = None, *, workers: int = 1,
        size: Optional[Tuple[int, int]] = None, progress: Union[bool, Progress] = False) -> List[Report]:
    """Filter sequences of image files. Each has the chain's state for itself, from its first frame on.

    Results are 16-bit PNGs of the same names in ``output/NAME/``, each written whole or not at all. What was made before, from the
    same files (names, sizes, times of change) with the same chain, is not made again; a sequence that was stopped is made again from
    its first frame, to the same bytes.

    Parameters
    ----------
    chain : Chain
        With the input of the frames. It is not changed.
    sequences : mapping or iterable
        By name, a folder or the files of a sequence in order; or folders, whose names are taken. Files of a folder are taken in
        natural order.
    output : path-like
        A folder, made if it is not there.
    client : distributed.Client or str, optional
        A cluster's client, or its scheduler's address. Workers need this package and the same paths. A sequence whose worker is lost
        goes to another, as often as the cluster's ``allowed-failures`` says.
    workers : int
        Threads that filter in this process, without a client.
    size : (width, height), optional
        Of raw files.
    progress : bool or callable
        True: a line on standard error for each sequence done. A callable gets its report, how many are done and how many there are.

    Returns
    -------
    list of Report
        In the order of the sequences. A sequence that fails does not stop the others.

    Raises
    ------
    ValueError
        For names that cannot be folders, or are given twice.
    ImportError
        With a client, without the package ``distributed``.
    """
    named = list(_named(sequences))
    text, key, folder = chain.to_json(), uuid.uuid4().hex, Path(output).absolute()
    shared = {"run": key, "version": _zvfilter.version, "chain": text, "size": size}
    jobs = [json.dumps({**shared, "files": files, "output": str(folder / name)}) for name, files in named]
    show = _print_progress if progress is True else progress or (lambda *_: None)
    reports: List[Report] = [Report(name) for name, _ in named]
    folder.mkdir(parents=True, exist_ok=True)
    finished = _in_threads(jobs, workers) if client is None else _on_cluster(jobs, client)
    for done, (number, fields) in enumerate(finished, 1):
        reports[number] = dataclasses.replace(reports[number], **fields)
        show(reports[number], done, len(jobs))
    return reports


def _print_progress(report: Report, done: int, total: int) -> None:
    what = report.error or ("made before" if report.skipped else f"{report.frames} frames in {report.seconds:.2f} s")
    print(f"{done}/{total} {report.name}: {what}", file=sys.stderr)


def _named(sequences: Sequences) -> Iterator[Tuple[str, Optional[List[str]]]]:
    if isinstance(sequences, (str, os.PathLike)):
        raise TypeError("sequences is one path; expected folders, or a mapping from names to folders or files")
    pairs = sequences.items() if isinstance(sequences, Mapping) else ((Path(each).name, each) for each in sequences)
    seen = set()
    for name, source in pairs:
        if name in ("", ".", "..") or "/" in name or "\0" in name:
            raise ValueError(f"{name!r} is no name for a folder of results")
        if name in seen:
            raise ValueError(f"two sequences are called {name}; name them in a mapping")
        seen.add(name)
        files = frame_files(source) if isinstance(source, (str, os.PathLike)) else [Path(file) for file in source]
        yield name, [str(file.absolute()) for file in files]


def _failed(problem: BaseException) -> dict[str, Any]:
    return {"error": f"{type(problem).__name__}: {problem}"}


def _in_threads(jobs: List[str], workers: int) -> Iterator[Tuple[int, dict[str, Any]]]:
    with ThreadPoolExecutor(max(1, workers)) as pool:
        futures = {pool.submit(_work, job): number for number, job in enumerate(jobs)}
        try:
            for future in as_completed(futures):
                yield futures[future], json.loads(future.result())
        finally:
            for future in futures:
                future.cancel()


def _on_cluster(jobs: List[str], client: Any) -> Iterator[Tuple[int, dict[str, Any]]]:
    try:
        distributed = importlib.import_module("distributed")
    except ImportError as problem:
        raise ImportError("a cluster needs the package distributed; on Debian it is python3-distributed") from problem
    if isinstance(client, str):
        with distributed.Client(client) as own:
            yield from _on_cluster(jobs, own)
        return
    futures = [client.submit(_work, job, pure=False) for job in jobs]
    numbers = {future.key: number for number, future in enumerate(futures)}
    try:
        for future in distributed.as_completed(futures):
            lost = future.exception()
            yield numbers[future.key], _failed(lost) if lost else json.loads(future.result())
    finally:
        client.cancel(futures)


def _work(job: str) -> str:
    """A sequence, on whatever worker. Texts go in and out."""
    task = json.loads(job)
    try:
        return json.dumps(_Sequence(task).run())
    except Exception as problem:  # noqa: BLE001 - whatever it is, the other sequences go on
        return json.dumps(_failed(problem))


class _Sequence:
    """A sequence on its way to its folder."""

    def __init__(self, task: dict[str, Any]) -> None:
        if task["version"] != _zvfilter.version:
            raise RuntimeError(f"the worker has zvfilter {_zvfilter.version}; expected {task['version']}")
        self.run_key: str = task["run"]
        self.folder = Path(task["output"])
        self.size = task["size"]
        self.chain = Chain.parse(task["chain"])
        self.files = [Path(file) for file in task["files"]]
        if not self.files:
            raise ValueError("it has no frames; expected files ending in " + ", ".join(_zvfilter.extensions))
        self.results = [self.folder / (file.stem + ".png") for file in self.files]
        if len(set(self.results)) < len(self.results):
            raise ValueError("two of its files would be written under one name")
        if {result.resolve() for result in self.results} & {file.resolve() for file in self.files}:
            raise ValueError("its results would replace its own files")
        states = [file.stat() for file in self.files]
        self.made_from = {
            "version": _zvfilter.version, "chain": json.loads(task["chain"]), "size": self.size,
            "inputs": [[str(file), state.st_size, state.st_mtime_ns] for file, state in zip(self.files, states)],
            "results": [result.name for result in self.results]}

    def run(self) -> dict[str, Any]:
        record = self._read_record()
        same_run = record.get("run") == self.run_key
        attempt: int = record.get("attempt", 0) if same_run else 0
        if self._is_complete(record):
            report = {"frames": len(self.files), "seconds": record["seconds"]}
            return {**report, "retried": attempt} if same_run else {**report, "skipped": True}
        # Whatever stands there now is about to be replaced: from here on there is no complete record.
        self.folder.mkdir(exist_ok=True)
        self._write_record(complete=False, attempt=attempt + 1)
        for name in {Path(str(each)).name for each in record.get("results", [])} - {each.name for each in self.results}:
            (self.folder / name).unlink(missing_ok=True)
        start = time.perf_counter()
        for file, result in zip(self.files, self.results):
            try:
                images.write(result, self.chain(images.read(file, self.size)))
            except (ValueError, RuntimeError, OSError) as problem:
                raise RuntimeError(f"{file}: {problem}") from problem
        seconds = time.perf_counter() - start
        self._write_record(complete=True, attempt=attempt + 1, seconds=seconds)
        return {"frames": len(self.files), "seconds": seconds, "retried": attempt}

    def _is_complete(self, record: dict[str, Any]) -> bool:
        return (record.get("complete") is True and record.get("made_from") == self.made_from
                and all(result.is_file() for result in self.results))

    def _read_record(self) -> dict[str, Any]:
        try:
            record = json.loads((self.folder / RECORD).read_text("utf-8"))
        except (OSError, ValueError):
            return {}
        return record if isinstance(record, dict) and record.get("version") == 1 else {}

    def _write_record(self, **state: Any) -> None:
        record = {"version": 1, "run": self.run_key, "process": os.getpid(),
                  "results": self.made_from["results"], "made_from": self.made_from, **state}
        _zvfilter.write_text(os.fsencode(self.folder / RECORD), json.dumps(record, indent=1) + "\n")
