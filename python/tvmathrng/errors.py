"""The exceptions of tvmathrng. Each is a TvError, and also of the built-in kind that fits."""


class TvError(Exception):
    """A call that was refused. It has drawn nothing and changed nothing.

    identifier  for programs, for example 'TALVOR:RandStream:create:UnknownRNGType'
    """

    def __init__(self, message="", identifier=""):
        super().__init__(message)
        self.identifier = identifier


class TvValueError(TvError, ValueError):
    """A value that makes no sense there."""


class TvTypeError(TvError, TypeError):
    """An argument of a type that does not fit."""


class TvAttributeError(TvError, AttributeError):
    """What a stream does not have, and where it is."""


class TvMemoryError(TvError, MemoryError):
    """A result larger than the machine's memory."""


class TvThreadError(TvError, RuntimeError):
    """A stream that another thread is using."""
