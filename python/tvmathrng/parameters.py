"""The sizes of the family that a stream belongs to."""

from typing import NamedTuple


class Parameters(NamedTuple):
    """How many streams and substreams there are, and the binary logarithms of their lengths."""

    num_streams: int
    num_substreams: int
    log2_stream_length: int
    log2_substream_length: int
