"""What users of NumPy look for in a stream, and where it is."""

import numpy as np

from tvmathrng.errors import TvAttributeError


class _InNumPy:
    """An attribute that is not there and tells where it is."""

    def __set_name__(self, owner, name):
        self.name = name

    def __get__(self, stream, owner):
        text = f"a {owner.__name__} has no '{self.name}'"
        if self.name == "capsule":
            text += "; NumPy's generators take stream.bit_generator()"
        else:
            text += (f"; NumPy's Generator has it: np.random.Generator(stream.bit_generator()).{self.name}, "
                     "or tvmathrng.random.default_rng(seed)")
        raise TvAttributeError(text, "TALVOR:python:NoAttribute")


def point_to_numpy(owner):
    """Lets a class tell where the methods of NumPy's Generator are that it has not; dir() and help()
    do not show them."""
    for name in ["capsule", *dir(np.random.Generator)]:
        if not name.startswith("_") and not hasattr(owner, name):
            mark = _InNumPy()
            mark.__set_name__(owner, name)
            setattr(owner, name, mark)
    hidden = {name for name, value in vars(owner).items() if isinstance(value, _InNumPy)}
    owner.__dir__ = lambda self: sorted({*object.__dir__(self)} - hidden)
    # The class's class is of this library alone.
    type(owner).__dir__ = lambda kind: sorted({*type.__dir__(kind)} - hidden)
