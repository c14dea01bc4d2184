"""One result on any number of workers: the examples, and Dask's arrays by element."""

import importlib.util
import os
import pathlib
import shutil
import subprocess
import sys

import numpy as np
import pytest
from conftest import GENERATORS, WITH_SUBSTREAMS

import tvmathrng as tv

EXAMPLES = pathlib.Path(__file__).resolve().parents[2] / "examples/python"
WORKERS = (1, 2, 4)
MPI = ["mpirun", "--allow-run-as-root", "--oversubscribe", "--mca", "btl_vader_single_copy_mechanism", "none", "-n"]


def said(*command):
    environment = {**os.environ, "PYTHONPATH": str(pathlib.Path(tv.__file__).parents[1])}
    done = subprocess.run(list(map(str, command)), cwd=EXAMPLES, env=environment, capture_output=True,
                          text=True, timeout=240)
    assert done.returncode == 0, done.stderr
    return done.stdout.split()


@pytest.fixture(scope="module")
def alone():
    """The hash of the work items, done one after the other here."""
    return said(sys.executable, "-c", "from work import *; report(map(work, range(ITEMS)))")


def need(module):
    if not importlib.util.find_spec(module):
        pytest.skip(f"{module} is not installed")


@pytest.mark.parametrize("workers", WORKERS)
@pytest.mark.parametrize("engine", ["fork", "spawn", "joblib", "mpi4py"])
def test_every_engine_has_one_result_on_any_number_of_workers(alone, engine, workers):
    if engine in ("fork", "spawn"):
        command = [sys.executable, "with_multiprocessing.py", workers, engine]
    else:
        need(engine)
        command = [sys.executable, f"with_{engine.removesuffix('4py')}.py"]
        if engine == "mpi4py":
            if not shutil.which("mpirun"):
                pytest.skip("mpirun is not installed")
            command = [*MPI, workers, *command]
        else:
            command.append(workers)
    assert said(*command) == alone


def test_dask_has_one_result_on_any_number_of_workers(alone):
    need("distributed")
    whole = tv.RandStream("philox", 7, randn_alg="Inversion").randn(300, 400)
    code = "import sys, hashlib; print(hashlib.sha256(sys.stdin.buffer.read()).hexdigest()[:16])"
    digest = subprocess.run([sys.executable, "-c", code], input=whole.tobytes(), capture_output=True, check=True)
    for workers in WORKERS:
        assert said(sys.executable, "with_dask.py", workers) == [*alone, digest.stdout.decode().strip()]


CHUNKS = {(7,): [7, 1, (3, 4)], (4, 6): [(4, 6), (1, 6), (4, 1), (3, 4), ((1, 3), (5, 1))],
          (2, 3, 5): [(2, 3, 5), (1, 2, 5), (2, 3, 2), (1, 1, 1), (2, 2, 2)], (3, 0): [(2, 1)], (): [()]}


@pytest.mark.parametrize("shape", CHUNKS)
@pytest.mark.parametrize("generator", WITH_SUBSTREAMS)
def test_elements_do_not_depend_on_chunks(shape, generator):
    arrays = pytest.importorskip("tvmathrng.dask", reason="Dask is not installed")
    stream = tv.RandStream(generator, 7, randn_alg="Inversion", substream=2)
    for make, draw in (
        (arrays.rand, stream.rand),
        (arrays.randn, stream.randn),
        (lambda *a, **k: arrays.randi((-3, 9), *a, **k), lambda s: stream.randi((-3, 9), s)),
    ):
        stream.substream = 2
        expected = draw(shape)
        for chunks in CHUNKS[shape]:
            array = make(shape, chunks, 7, generator, item=2)
            values = array.compute(scheduler="sync")
            assert values.dtype == array.dtype == expected.dtype and np.array_equal(values, expected)


def test_arrays_that_cannot_be_are_refused_at_once():
    arrays = pytest.importorskip("tvmathrng.dask", reason="Dask is not installed")
    for generator in sorted({*GENERATORS} - {*WITH_SUBSTREAMS}):
        with pytest.raises(tv.TvValueError, match="no substreams"):
            arrays.rand(3, generator=generator)
    with pytest.raises(tv.TvValueError):
        arrays.randi((3, 1), 4)
    names = {arrays.rand(4, 2, 7).name, arrays.rand(4, 2, 8).name, arrays.randn(4, 2, 7).name,
             arrays.rand(4, 4, 7).name, arrays.rand(4, 2, 7, item=1).name, arrays.randi(3, 4, 2, 7).name,
             arrays.randi(4, 4, 2, 7).name}
    assert len(names) == 7 and arrays.rand(4, 2, 7).name in names
