"""Makes the mutants of a source, each with a name that is stable while the source is unchanged."""

import hashlib
import random
from dataclasses import dataclass

from .mutators import MUTATORS
from .source import Source

SHOWN = 60


@dataclass(frozen=True)
class Mutant:
    id: str
    path: str
    line: int
    kind: str
    change: str
    text: str

    @property
    def described(self):
        return f"{self.id}  {self.path}:{self.line}  {self.kind}: {self.change}"


def _shown(text):
    flat = " ".join(text.split())
    return flat if len(flat) <= SHOWN else flat[: SHOWN - 1] + "…"


def _change(source, edit):
    """Describes the old and the new text, with the words around a changed operator."""
    start, end = edit.start, edit.end
    before, after = source.text[start:end], edit.text
    if "\n" not in before and len(before) < 4:
        begin = max(source.text.rfind(" ", 0, max(start - 16, 0)), source.text.rfind("\n", 0, start)) + 1
        stop = min(i for i in (source.text.find(c, end + 16 * (c == " ")) for c in " \n") if i >= 0)
        before = source.text[begin:stop]
        after = source.text[begin:start] + edit.text + source.text[end:stop]
    return f"{_shown(before)} → {_shown(after) or 'nothing'}"


def mutants_of(path, text, records):
    """Returns the mutants of a source in order; of those with equal text only the first."""
    source = Source(text)
    edits = [edit for mutator in MUTATORS for edit in mutator(source, records)]
    seen = {text}
    for edit in sorted(edits, key=lambda edit: (edit.start, edit.end)):
        mutated = text[: edit.start] + edit.text + text[edit.end :]
        if mutated in seen:
            continue
        seen.add(mutated)
        name = hashlib.sha256(f"{path}\0{mutated}".encode()).hexdigest()[:10]
        change = _change(source, edit)
        yield Mutant(name, path, source.line(edit.start), edit.kind, change, mutated)


def sample(mutants, number, seed):
    """Returns a random choice, repeatable by its seed, in the order of the sources."""
    if number is None or number >= len(mutants):
        return mutants
    chosen = set(random.Random(seed).sample([mutant.id for mutant in mutants], number))
    return [mutant for mutant in mutants if mutant.id in chosen]
