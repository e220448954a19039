"""A layer's own tests: which they are, and whether one of them fails."""

import re
import time
from dataclasses import dataclass

# Which programs test a layer, and which of their tests count.
LAYERS = {
    "Base": {"base_tests": "*"},
    "Platform": {"platform_tests": "*", "platform_entries_tests": "*"},
    "LinkDoor": {"link_door_tests": "*"},
    "LaunchKit": {"launchkit_tests": "*", "icon_tests": "WrapperIconTest.*"},
    "LaunchKit's icons": {"icon_tests": "*", "launchkit_tests": "IconComposerTest.*"},
    "WebHost": {"web_host_tests": "*"},
    "ProbeKit": {"probe_tests": "*"},
    "Presentation": {"presentation_tests": "*"},
    "Runner": {"runner_tests": "*"},
    "CommandLine": {"commandline_tests": "*"},
    "QuorvelApp": {"app_tests": "*"},
}
ICONS = re.compile(r"LaunchKit/(?:Icons/|IconComposer)")
SUITE = re.compile(r"^(?:TYPED_)?TEST(?:_[FP])?\((\w+),", re.MULTILINE)
CASE = re.compile(r"^\[  FAILED  \] ([\w./]+)", re.MULTILINE)


class BaselineError(Exception):
    pass


def layer_of(path):
    return "LaunchKit's icons" if ICONS.match(path) else path.split("/")[0]


@dataclass
class Verdict:
    killed: bool
    by: str = ""


class Trials:
    """The tests of one layer. Tests that fail without any mutant are left out."""

    def __init__(self, workshop, shield, layer, report):
        self.workshop = workshop
        self.shield = shield
        self.programs = LAYERS[layer]
        self.failing = {}
        self.seconds = {}
        for program in self.programs:
            self._measure(program, report)

    def _command(self, program, chosen, options=()):
        left_out = ":".join(sorted(self.failing.get(program, ())))
        place = self.workshop.build / "bin" / program
        return [place, f"--gtest_filter={chosen}-{left_out}", *options]

    def _measure(self, program, report):
        self.workshop.make(program)
        began = time.monotonic()
        status, output = self.shield.run(self._command(program, self.programs[program]), 1800)
        self.seconds[program] = time.monotonic() - began
        if status is None or (status != 0 and not CASE.search(output)):
            raise BaselineError(f"{program} does not get through its tests:\n{output[-2000:]}")
        self.failing[program] = set(CASE.findall(output))
        report(f"{program}: {self.seconds[program]:.1f} s")
        for case in sorted(self.failing[program]):
            report(f"  left out, since it fails without any mutant: {case}")

    def _own_suites(self, path):
        """The suites in the file that tests this source, which find most mutants at once."""
        stem = path.rsplit("/", 1)[-1].split(".")[0].split("_")[0]
        files = (self.workshop.tree / "tests").rglob(f"{stem}*Test.cpp")
        suites = {name for file in files for name in SUITE.findall(file.read_text(encoding="utf-8"))}
        return ":".join(f"{name}.*:*/{name}.*" for name in sorted(suites))

    def _fails(self, program, chosen):
        self.workshop.make(program)
        command = self._command(program, chosen, ["--gtest_fail_fast", "--gtest_brief=1"])
        status, output = self.shield.run(command, 10 + 5 * self.seconds[program])
        if status is None:
            return "time ran out"
        case = CASE.search(output)
        return None if status == 0 else case[1] if case else f"{program} ended with {status}"

    def judge(self, path):
        own = self._own_suites(path)
        rounds = [(program, own) for program in self.programs if own]
        for program, chosen in rounds + list(self.programs.items()):
            if reason := self._fails(program, chosen):
                return Verdict(True, reason)
        return Verdict(False)
