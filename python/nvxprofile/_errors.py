"""What goes wrong."""

from __future__ import annotations

from typing import Iterable, NamedTuple, Sequence, Tuple


class Finding(NamedTuple):
    """One thing that a load found wrong, as ``nvxprofile validate`` tells it."""

    severity: str
    """``"error"`` or ``"warning"``."""
    place: str
    """Path of the enclosing structures, such as ``"NVX1/entry 6"``; empty at the top."""
    offset: int
    """Bytes from the start of the file."""
    rule: str
    """What the bytes at that place break."""


class ProfileError(Exception):
    """Why a profile could not be opened, built, changed or saved. The profile is as it was before."""

    place: str
    """Where the first finding is, or the JSON pointer into a document; empty where there is no place."""
    rule: str
    """The rule that is broken there; empty where none is known."""
    findings: Tuple[Finding, ...]
    """All that a load found, the decisive fault first; empty for other failures."""

    def __init__(self, message: str = "", place: str = "", rule: str = "", findings: Sequence[Finding] = ()) -> None:
        super().__init__(message)
        self.place = place
        self.rule = rule
        self.findings = tuple(findings)

    @classmethod
    def _made(
        cls, message: str, place: str, rule: str, findings: Iterable[Tuple[str, str, int, str]]
    ) -> "ProfileError":
        return cls(message, place, rule, [Finding(*finding) for finding in findings])
