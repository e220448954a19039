"""Reads the command line and takes every mutant through its trials."""

import argparse
import os
import signal
import sys
from pathlib import Path

from .mutants import mutants_of, sample
from .records import Records
from .results import Results, survivors, table
from .shield import Shield
from .trials import LAYERS, BaselineError, Trials, layer_of
from .workshop import BuildError, Workshop

ROOT = Path(__file__).resolve().parents[2]


def arguments():
    parser = argparse.ArgumentParser(
        prog="scripts/test-mutations",
        description="Changes the sources a little at a time and says which changes no test of their "
        "layer notices. Works on a copy of the tree below build/mutations.",
    )
    parser.add_argument("sources", nargs="+", metavar="SOURCE", help="a .cpp file of a layer")
    parser.add_argument("--list", action="store_true", help="print the mutants and run nothing")
    parser.add_argument("--only", metavar="ID", action="append", help="try this mutant alone")
    parser.add_argument("--sample", metavar="N", type=int, help="try N mutants chosen at random")
    parser.add_argument("--seed", metavar="S", type=int, default=1, help="of that choice (1)")
    parser.add_argument("--jobs", metavar="N", type=int, default=os.cpu_count(), help="of the build")
    parser.add_argument("--results", metavar="FILE", type=Path, help="where verdicts are kept")
    parser.add_argument("--fresh", action="store_true", help="forget the verdicts of earlier runs")
    return parser.parse_args()


def relative(path):
    """Returns the path relative to the checkout, or as given if it is elsewhere."""
    path = Path(path).resolve()
    return str(path.relative_to(ROOT)) if path.is_relative_to(ROOT) else str(path)


def chosen_mutants(options):
    found = []
    for path in dict.fromkeys(map(relative, options.sources)):
        text = (ROOT / path).read_text(encoding="utf-8")
        found += mutants_of(path, text, Records(ROOT, text))
    if options.only:
        return [mutant for mutant in found if mutant.id in options.only]
    return sample(found, options.sample, options.seed)


def try_out(mutant, workshop, trials, objects):
    """Returns the verdict, and the test that decided it."""
    try:
        workshop.make_object(mutant.path)
    except BuildError:
        return "unbuildable", ""
    twin = objects.setdefault(workshop.object_digest(mutant.path), mutant.id)
    if twin != mutant.id:
        return "no change", twin
    verdict = trials.judge(mutant.path)
    return ("killed" if verdict.killed else "survived"), verdict.by


def run_file(path, mutants, workshop, trials, results):
    original = (workshop.tree / path).read_text(encoding="utf-8")
    objects = {workshop.object_digest(path): "the source itself"}
    try:
        for mutant in mutants:
            if mutant.id in results.verdicts:
                continue
            workshop.write(path, mutant.text)
            verdict, by = try_out(mutant, workshop, trials, objects)
            results.add(mutant, verdict, by)
            print(f"{verdict:12} {mutant.described}", flush=True)
    finally:
        workshop.write(path, original)


def run(options, mutants):
    layers = {layer_of(mutant.path): mutant.path for mutant in mutants}
    if unknown := [path for layer, path in layers.items() if layer not in LAYERS]:
        raise BaselineError(f"no layer's tests are known for {', '.join(unknown)}")
    workshop = Workshop(ROOT, options.jobs)
    workshop.prepare()
    shield = Shield(workshop.place / "tmp")
    path = options.results or workshop.place / "results.jsonl"
    if options.fresh:
        path.unlink(missing_ok=True)
    results = Results(path, workshop.fingerprint())
    for layer in sorted(layers):
        trials = Trials(workshop, shield, layer, print)
        for file in dict.fromkeys(m.path for m in mutants if layer_of(m.path) == layer):
            run_file(file, [m for m in mutants if m.path == file], workshop, trials, results)
    print("\n" + table(mutants, results.verdicts))
    print("\nSurvivors:\n" + (survivors(mutants, results.verdicts) or "none"))


def main():
    # SIGTERM restores the copy, as an interruption does.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    options = arguments()
    try:
        mutants = chosen_mutants(options)
        if options.list:
            print("\n".join(mutant.described for mutant in mutants))
        else:
            run(options, mutants)
    except (BuildError, BaselineError, OSError) as error:
        sys.exit(f"scripts/test-mutations: {error}")
    except KeyboardInterrupt:
        sys.exit(130)
