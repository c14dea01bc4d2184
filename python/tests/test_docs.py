"""The examples of the docstrings and of the guide's page run; the stubs name what there is."""

import ast
import doctest
import inspect
import pathlib

import numpy as np
import pytest

import tvmathrng as tv

GUIDE = pathlib.Path(__file__).resolve().parents[2] / "docs/python.md"
NAMES = {"tv": tv, "tvmathrng": tv, "np": np, "streams": tv.streams}
OBJECTS = {
    **{name: getattr(tv, name) for name in tv.__all__},
    **{
        f"{owner.__name__}.{name}": value
        for owner in (tv.RandStream, tv.BitGenerator, tv.Family)
        for name, value in vars(owner).items()
        if name in dir(owner) and not name.startswith("_")
    },
}


def run_examples(text, name):
    test = doctest.DocTestParser().get_doctest(text, dict(NAMES), name, None, 0)
    said = []
    result = doctest.DocTestRunner(optionflags=doctest.ELLIPSIS).run(test, out=said.append)
    assert result.failed == 0, "".join(said)
    return result.attempted


@pytest.mark.parametrize("name", OBJECTS)
def test_docstrings_have_examples_that_run(name):
    text = inspect.getdoc(OBJECTS[name])
    assert text
    run_examples(text, name)


@pytest.mark.parametrize("name", ["random.default_rng", "dask.rand"])
def test_examples_of_submodules_run(name):
    module, function = name.split(".")
    found = pytest.importorskip(f"tvmathrng.{module}", reason=f"{module} is not installed")
    assert run_examples(getattr(found, function).__doc__, name) > 0


def test_sampling_functions_tell_their_signatures():
    assert tv.RandStream.rand.__text_signature__.startswith("($self, /, *shape, size=None, ")
    assert run_examples(tv.RandStream.rand.__doc__, "rand") >= 4


@pytest.mark.parametrize("page, least", [("python.md", 20), ("parallel.md", 6)])
def test_examples_of_the_pages_run(page, least):
    if page == "parallel.md":
        pytest.importorskip("dask", reason="Dask is not installed")
    # Fences of code are no part of the examples.
    text = GUIDE.with_name(page).read_text(encoding="utf-8").replace("```", "\n")
    assert run_examples(text, page) > least


def defined(body):
    return {
        target
        for node in body
        for target in (
            [node.name]
            if isinstance(node, (ast.FunctionDef, ast.ClassDef))
            else [node.target.id] if isinstance(node, ast.AnnAssign) else []
        )
        if not target.startswith("_")
    }


def test_stubs_name_what_there_is():
    stubs = ast.parse(pathlib.Path(tv.__file__).with_name("__init__.pyi").read_text())
    assert defined(stubs.body) == set(tv.__all__)
    classes = {node.name: node for node in stubs.body if isinstance(node, ast.ClassDef)}
    for owner in (tv.RandStream, tv.BitGenerator, tv.Family):
        public = {name for name in vars(owner) if name in dir(owner) and not name.startswith("_")}
        # What NumPy's stubs say of its bit generators holds for ours.
        assert public - {*dir(np.random.BitGenerator)} <= defined(classes[owner.__name__].body) <= public


def test_types_of_the_documented_lines_are_strict(tmp_path):
    mypy = pytest.importorskip("mypy.api", reason="mypy is not installed")
    lines = doctest.DocTestParser().get_examples(GUIDE.read_text(encoding="utf-8").replace("```", "\n"))
    lines = [line.source for line in lines if line.exc_msg is None]
    program = tmp_path / "documented.py"
    program.write_text("".join(lines))
    said, errors, status = mypy.run(["--strict", "--cache-dir", str(tmp_path), str(program)])
    assert status == 0, said + errors
