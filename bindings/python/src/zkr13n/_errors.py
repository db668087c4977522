"""What the codes of the library become: exceptions that carry the code and the library's own text."""

from __future__ import annotations

from typing import Any, Dict, Optional, Tuple, Type

from . import _constants as constants
from ._library import lib

SUCCESS = constants.Z_SUCCESS


class Error(Exception):
    """A function of the library has failed.

    code      the library's code
    text      its message, "" where it has none for that code
    function  which function it was
    """

    code: int
    text: str
    function: str

    def __init__(self, code: int, text: str = "", function: str = "") -> None:
        super().__init__(code, text, function)
        self.code, self.text, self.function = code, text, function

    def __str__(self) -> str:
        where = f"{self.function}: " if self.function else ""
        return f"{where}{self.text or 'stopped'} (code {self.code})"

    def __reduce__(self) -> Tuple[Any, ...]:
        return type(self), (self.code, self.text, self.function)


class OutOfMemoryError(Error, MemoryError):
    """There is not enough memory."""


class ArgumentError(Error, ValueError):
    """An argument, or the bitmap that it was about, is not what the function takes."""


class StorageError(Error, OSError):
    """A file, or a module that compresses strips, cannot be read, written or loaded."""


class FeatureError(Error, NotImplementedError):
    """The library does not do this."""


class LockedError(Error, PermissionError):
    """The capability that this needs is locked."""


class BusyError(RuntimeError):
    """Another thread, or the progress callable of this one, uses the bitmap at a moment when a call is at work on it."""


class Stopped(Exception):
    """The progress callable has asked for an end by a false value. What the operation leaves is told with it."""


CLASSES: Dict[int, Type[Error]] = {
    constants.Z_ERROR_MEMORY: OutOfMemoryError,
    constants.Z_ERROR_BITMAP: ArgumentError,
    constants.Z_ERROR_SEEK: StorageError,
    constants.Z_ERROR_WRITE: StorageError,
    constants.Z_ERROR_READ: StorageError,
    constants.Z_ERROR_DIMENSIONS: ArgumentError,
    constants.Z_ERROR_ARGUMENT: ArgumentError,
    constants.Z_ERROR_FEATURE: FeatureError,
    constants.Z_ERROR_BITS_PER_PIXEL: ArgumentError,
    constants.Z_ERROR_DOCUMENT_LOCKED: LockedError,
    constants.Z_ERROR_DISK_SPACE: StorageError,
    constants.Z_ERROR_COLOUR_FILTER: StorageError,
    constants.Z_ERROR_FAX_FILTER: StorageError,
    constants.Z_ERROR_EXTENDED_GRAY_LOCKED: LockedError,
}


def error_of(code: int, text: str, function: str = "") -> Error:
    """The exception for a code, with a text of one's own."""
    return CLASSES.get(code, Error)(code, text, function)


def failure(code: int, function: Optional[Any] = None) -> Error:
    """The exception for a code that a function has returned."""
    text = lib.Z_GetErrorText(code)
    return error_of(code, text.decode("ascii", "replace") if text else "", getattr(function, "__name__", ""))


def check(code: int, function: Optional[Any] = None) -> None:
    """Raises what a code stands for, unless it is success."""
    if code != SUCCESS:
        raise failure(code, function)
