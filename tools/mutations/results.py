"""Records the verdict on every mutant, so that an interrupted run can continue; prints the table."""

import json
from collections import Counter


class Results:
    """One line of JSON per mutant. Survivors count only while no file has changed."""

    def __init__(self, path, fingerprint):
        self.path = path
        self.fingerprint = fingerprint
        self.verdicts = {}
        if path.exists():
            for line in path.read_text(encoding="utf-8").splitlines():
                self._read(line)

    def _read(self, line):
        try:
            entry = json.loads(line)
        except ValueError:
            return  # cut off while it was written
        if entry["verdict"] != "survived" or entry["fingerprint"] == self.fingerprint:
            self.verdicts[entry["id"]] = entry

    def add(self, mutant, verdict, by=""):
        entry = {"id": mutant.id, "path": mutant.path, "line": mutant.line, "kind": mutant.kind,
                 "change": mutant.change, "verdict": verdict, "by": by,
                 "fingerprint": self.fingerprint}  # fmt: skip
        self.verdicts[mutant.id] = entry
        with self.path.open("a", encoding="utf-8") as file:
            file.write(json.dumps(entry, ensure_ascii=False) + "\n")


def _row(name, counts):
    made = counts["killed"] + counts["survived"]
    share = f"{100 * counts['survived'] / made:.1f}" if made else "-"
    return f"| {name} | {made} | {counts['killed']} | {counts['survived']} | {share} |"


def table(mutants, verdicts):
    """Mutants that could not be built, or made no difference to the program, are not counted."""
    by_file = {}
    for mutant in mutants:
        if mutant.id in verdicts:
            by_file.setdefault(mutant.path, Counter())[verdicts[mutant.id]["verdict"]] += 1
    rows = [_row(path, counts) for path, counts in by_file.items()]
    rows.append(_row("all", sum(by_file.values(), Counter())))
    heading = ["| file | mutants | killed | survived | % survived |", "|---|--:|--:|--:|--:|"]
    return "\n".join(heading + rows)


def survivors(mutants, verdicts):
    alive = (m for m in mutants if verdicts.get(m.id, {}).get("verdict") == "survived")
    return "\n".join(mutant.described for mutant in alive)
