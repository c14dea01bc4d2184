from collections.abc import Sequence
from typing import Any, SupportsFloat, SupportsIndex

_Shape = SupportsIndex | Sequence[SupportsIndex]

# The results are arrays of Dask, which has no types.
def rand(shape: _Shape, chunks: Any = ..., seed: SupportsIndex | None = ..., generator: str = ..., item: SupportsIndex = ...) -> Any: ...
def randn(shape: _Shape, chunks: Any = ..., seed: SupportsIndex | None = ..., generator: str = ..., item: SupportsIndex = ...) -> Any: ...
def randi(
    limits: SupportsFloat | tuple[SupportsFloat, SupportsFloat],
    shape: _Shape,
    chunks: Any = ...,
    seed: SupportsIndex | None = ...,
    generator: str = ...,
    item: SupportsIndex = ...,
) -> Any: ...
