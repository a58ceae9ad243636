"""What fails, and why."""

from __future__ import annotations

from typing import Sequence

from . import _native


class KrlError(ValueError):
    """A call that the engine refused or that failed.

    Attributes
    ----------
    method : str
        The effect's name.
    argument : str or None
        The argument that was wrong, if it was one.
    text : str
        The message of the method itself, as scripts get it; empty for mistakes that a script cannot make.
    reason : str
        The kind of failure in words, such as ``"no such choice"``.

    Examples
    --------
    >>> import krlimage
    >>> try:
    ...     krlimage.brightness(krlimage.sample(), 40, "Grey")
    ... except krlimage.KrlError as error:
    ...     print(error.method, error.argument, error.reason, sep=", ")
    brightness, colourOrAlpha, no such choice
    """

    def __init__(self, message: str, method: str, argument: str | None = None, text: str = "",
                 reason: str = "") -> None:
        super().__init__(message)
        self.method = method
        self.argument = argument
        self.text = text
        self.reason = reason

    def __reduce__(self) -> tuple[type, tuple[object, ...]]:
        return type(self), (str(self), self.method, self.argument, self.text, self.reason)


KrlError.__module__ = "krlimage"  # as tracebacks name it


def wrong(method: str, argument: str, expected: str, got: object) -> KrlError:
    """An argument of a type that does not fit."""
    return KrlError(f"{method}: {argument}: expected {expected}, got {got!r:.200}", method, argument,
                    reason="wrong type")


def failure(code: int, message: str, text: str, method: str, argument_names: Sequence[str]) -> Exception:
    """The exception for a code of the C interface and its message: `method: argument: what`, or without method."""
    if code == _native.OUT_OF_MEMORY:
        return MemoryError(message)
    parts = message.split(": ")
    named = parts[1:-1] if parts[0] == method else parts[:-1]
    argument = named[0] if named and named[0] in argument_names else None
    return KrlError(message, method, argument, text, _native.code_text(code))
