"""Spreads a catalogue over processes with Dask: input files, each loaded into a library of its own
state, and records, worked on as arrays. Shows that many processes give the same bits as one.

    python examples/dask_catalogue.py                            two local processes
    python examples/dask_catalogue.py --scheduler tcp://HOST:8786   those of a cluster
    python examples/dask_catalogue.py --workers 8 --files 200 --records 1000000

The workers of a cluster need the package corvale; this file is sent to them.
"""

from __future__ import annotations

import argparse
import os
import pathlib
import socket
import tempfile
import threading
from typing import Any, Iterator

import numpy as np
import numpy.typing as npt
from distributed import Client, LocalCluster

import corvale
from corvale.capi import Corvale

RECORD = np.dtype([("satellite", "S5"), ("epoch", "S14"), ("node", "f8"), ("covariance", "f8", 21)])

# Modes, MOIC values and log belong to the process: one thread at a time sets, loads and reads them.
_state = threading.Lock()
_log = {"name": ""}


def process_name() -> str:
    return f"{socket.gethostname()}-{os.getpid()}"


def open_log(library: Corvale, folder: str) -> None:
    """The log of this process, opened by its first task: two processes must not share a name, for
    opening a log empties it."""
    name = f"{folder}/corvale-{process_name()}.log"
    if _log["name"] != name:
        library.open_log_file(name)
        _log["name"] = name


def load(text: bytes, logs: str) -> tuple[str, bytes]:
    """Loads the text of an input file; the process that did it, and modes and values as bytes."""
    library = Corvale()
    with _state, tempfile.NamedTemporaryFile(suffix=".inp") as file:
        file.write(text)
        file.flush()
        open_log(library, logs)
        # What an earlier task left behind in this process must not show.
        library.reset_all_key_mode()
        library.elset_key_mode = 0
        library.load_file(file.name)
        modes = (library.elset_key_mode, library.all_key_mode, library.dup_key_mode)
        values = library.moic_data()
        library.log_message(f"loaded {len(text)} bytes")
    return process_name(), bytes(modes) + np.array(values).tobytes()


def work(records: npt.NDArray[Any], logs: str) -> tuple[str, bytes]:
    """What the arrays of a block give: no state, so threads need no lock."""
    numbers = corvale.alpha5_to_num(records["satellite"])
    days = corvale.str_to_real(records["epoch"])
    nodes = corvale.deg_to_ddmmsss_str(records["node"])
    squares = corvale.lta_to_sqr_mtx(records["covariance"])
    inverses, _ = corvale.cholesky(squares, np.zeros(6))
    results: tuple[npt.NDArray[Any], ...] = (numbers, days, nodes, inverses)
    return process_name(), b"".join(result.tobytes() for result in results)


def input_files(count: int) -> Iterator[bytes]:
    """Every file sets all 128 values: what it leaves unset keeps what the process held before."""
    for i in range(count):
        cards = ["QZ_MOIC 128*0", f"QZ_MOIC {i}.5 {i}D-3 {6378 + i}.135", "QZ_DMA_ON" if i % 2 else "*"]
        yield "\n".join(cards).encode() + b"\n"


def records(count: int) -> npt.NDArray[Any]:
    random = np.random.default_rng(1)
    table = np.zeros(count, RECORD)
    table["satellite"] = corvale.num_to_alpha5(random.integers(1, 340000, count))
    table["epoch"] = corvale.fx0_to_text(random.uniform(20000, 30000, count), 14)
    table["node"] = random.uniform(0, 99, count)
    factors = random.normal(size=(count, 6, 6))
    table["covariance"] = corvale.sqr_mtx_to_lta(factors @ factors.transpose(0, 2, 1) + np.eye(6))
    return table


def connect(options: argparse.Namespace) -> Client:
    if options.scheduler:
        return Client(options.scheduler)
    return Client(LocalCluster(n_workers=options.workers, threads_per_worker=1, processes=True,
                               dashboard_address=None))


def main() -> int:
    parser = argparse.ArgumentParser(description="Spreads a catalogue over processes.")
    parser.add_argument("--scheduler", help="address of a running scheduler")
    parser.add_argument("--workers", type=int, default=2, help="local processes, without one")
    parser.add_argument("--files", type=int, default=20)
    parser.add_argument("--records", type=int, default=20000)
    parser.add_argument("--logs", default=tempfile.gettempdir(), help="folder of the workers' logs")
    options = parser.parse_args()

    import dask_catalogue as here  # by its name, as the workers know it

    files, blocks = list(input_files(options.files)), np.array_split(records(options.records), 16)
    with connect(options) as client:
        client.upload_file(str(pathlib.Path(__file__).resolve()))
        loads = client.map(here.load, files, logs=options.logs, pure=False)
        works = client.map(here.work, blocks, logs=options.logs, pure=False)
        spread = client.gather(loads) + client.gather(works)
    alone = [here.load(text, options.logs) for text in files]
    alone += [here.work(block, options.logs) for block in blocks]

    names = {name for name, _ in spread}
    print(f"{options.files} files and {options.records} records by {len(names)} processes:", *sorted(names))
    same = [bits for _, bits in spread] == [bits for _, bits in alone]
    print("the same bits as one process" if same else "NOT the same bits as one process")
    return 0 if same and names.isdisjoint({process_name()}) else 1


if __name__ == "__main__":
    raise SystemExit(main())
