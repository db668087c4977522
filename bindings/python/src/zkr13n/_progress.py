"""Progress: a callable that long operations tell how far they are, and that can stop them."""

from __future__ import annotations

import ctypes
import threading
from types import TracebackType
from typing import Any, Callable, List, Optional, Tuple, Type

from ._errors import SUCCESS, Stopped
from ._library import lib
from ._records import StatusCallback

# Gets percentages that rise from 0 to 100. A false value other than None stops the operation, which then raises
# Stopped; an exception stops it too, and comes through.
Progress = Callable[[int], object]

STOP = -30000  # no code of the library


class _Current(threading.local):
    report: Optional[Reporting] = None


_current = _Current()


def _status(percent: int, _user: int) -> int:
    report = _current.report
    return SUCCESS if report is None else report.tell(percent)


_callback = StatusCallback(_status)


class Reporting:
    """While it is entered, operations of this thread report to a callable. The callbacks that a host has set stand there
    again afterwards. `finish` raises what the callable has asked for."""

    def __init__(self, function: Progress) -> None:
        self._function = function
        self._error: Optional[BaseException] = None
        self._stopped = False
        self._before: List[Tuple[Any, Any, int]] = []
        self._outer: Optional[Reporting] = None

    def __enter__(self) -> Reporting:
        user = ctypes.c_ssize_t()
        for setter, getter in ((lib.Z_SetStatusCallBack, lib.Z_GetStatusCallBack),
                               (lib.Z_SetCopyStatusCallBack, lib.Z_GetCopyStatusCallBack)):
            before = getter(ctypes.byref(user))
            self._before.append((setter, before, user.value))
            setter(_callback, 0)
        self._outer, _current.report = _current.report, self
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        _current.report = self._outer
        for setter, before, user in self._before:
            setter(before, user)

    def tell(self, percent: int) -> int:
        if self._error is None and not self._stopped:
            _current.report = None  # what the callable itself does with other bitmaps is not told to it
            try:
                answer = self._function(percent)
                self._stopped = answer is not None and not answer
            except BaseException as error:  # also KeyboardInterrupt: it must not pass through the library
                self._error = error
            finally:
                _current.report = self
        return STOP if self._stopped or self._error is not None else SUCCESS

    def finish(self) -> None:
        error, self._error = self._error, None
        if error is not None:
            raise error
        if self._stopped:
            raise Stopped("the progress callable has stopped the operation")


def run(function: Any, arguments: Tuple[Any, ...], progress: Optional[Progress]) -> Any:
    """Calls a function of the library, with reports where there is a callable for them."""
    if progress is None:
        return function(*arguments)
    with Reporting(progress) as report:
        result = function(*arguments)
    report.finish()
    return result
