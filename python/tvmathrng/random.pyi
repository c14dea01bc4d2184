from typing import SupportsIndex

import numpy as np
from numpy.random.bit_generator import ISeedSequence
from numpy.typing import ArrayLike

from tvmathrng import RandStream

def default_rng(
    seed: ArrayLike | ISeedSequence | RandStream | np.random.BitGenerator | np.random.Generator | None = ...,
    generator: str = ...,
    item: SupportsIndex | None = ...,
) -> np.random.Generator: ...
