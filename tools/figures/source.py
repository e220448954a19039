"""Reads the declarations and functions of a C++ source, for scripts/figures.

It looks for whole declarations; the reader in tools/mutations cuts a source into single tokens.
"""

import re
from dataclasses import dataclass
from functools import cached_property

LITERAL_OR_COMMENT = re.compile(
    r'//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|(?<![0-9])\'(?:\\.|[^\'\\\n])+\'',
    re.S)
DIRECTIVE = re.compile(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", re.M)
LABEL = re.compile(r"\s*(?:(public|private|protected)(?:\s+(?:Q_SLOTS|slots))?\s*:(?!:)|"
                   r"(Q_SIGNALS|signals)\s*:(?!:)|Q_OBJECT\b|Q_GADGET\b|Q_DISABLE_COPY\w*\([^)]*\))")
TEMPLATE = re.compile(r"^template\s*<(?:[^<>]|<[^<>]*>)*>\s*")
INTERFACE = re.compile(r"^@(?:interface\b|protocol\b(?!\s+\w+\s*[;,])).*?^@end\b", re.M | re.S)
BRANCH = re.compile(r"\b(?:if|for|while|case|catch)\b|(?<=\s)(?:&&|\|\|)(?=\s)|\?")


def blank(match):
    """Replaces a comment, a literal or the like by spaces; keeps line ends, so that line numbers stay."""
    text = match.group()
    spaces = re.sub(r"[^\n]", " ", text)
    return spaces if text[0] in "/#@" else '"' + spaces[1:-1] + '"'


def stem(name):
    """A file's name without its system and its extension."""
    return re.sub(r"(_linux|_macos|_none)?\.\w+$", "", name)


@dataclass
class Function:
    path: tuple          # the namespaces, classes and the name itself
    line: int
    lines: int           # 0 for a mere declaration
    parameters: int
    complexity: int
    public: bool
    exempt: bool         # needs no comment: a constructor, an operator, a getter, a signal …
    undefined: bool      # only declared, and needs a definition
    documented: bool


class Source:
    """One file and the functions that it declares or defines."""

    def __init__(self, root, name):
        self.name = name
        self.raw = (root / name).read_text(encoding="utf-8", errors="replace")
        self.raw_lines = self.raw.splitlines()
        self._found = None

    @cached_property
    def code(self):
        return INTERFACE.sub(blank, DIRECTIVE.sub(blank, LITERAL_OR_COMMENT.sub(blank, self.raw)))

    @property
    def without_comments(self):
        return LITERAL_OR_COMMENT.sub(lambda m: blank(m) if m[0].startswith("/") else m[0], self.raw)

    @cached_property
    def ends(self):
        return self._matching_brackets()

    @property
    def functions(self):
        if self._found is None:
            self._found = []
            self._scan(0, len(self.code), (), "free")
        return self._found

    @property
    def layer(self):
        return self.name.split("/")[0]

    @property
    def is_header(self):
        return self.name.endswith(".h")

    @property
    def stem(self):
        return stem(self.name)

    @property
    def included(self):
        return {stem(name) for name in re.findall(r'^\s*#\s*include\s+"([^"]+)"', self.raw, re.M)}

    def line_of(self, position):
        return self.code.count("\n", 0, position) + 1

    def _matching_brackets(self):
        ends, open_brackets = {}, []
        for match in re.finditer(r"[(){}\[\]]", self.code):
            if match.group() in "({[":
                open_brackets.append(match.start())
            elif open_brackets:
                ends[open_brackets.pop()] = match.start()
        return ends

    def _scan(self, begin, end, path, access):
        """Reads the declarations between two positions of a namespace or a class."""
        position = begin
        while position < end:
            label = LABEL.match(self.code, position, end)
            if label:
                access = label.group(1) or ("signals" if label.group(2) else access)
                position = label.end()
            elif self.code[position] in " \t\n;}":
                position += 1
            else:
                position = self._declaration(position, end, path, access)

    def _declaration(self, begin, end, path, access):
        """Reads one declaration; returns the position after it."""
        position = begin
        while position < end and self.code[position] != ";":
            if self.code[position] == "{":
                close = self.ends.get(position, end)
                kind, name = self._kind(self.code[begin:position])
                if kind == "scope":
                    inner = {"class": "private", "struct": "public"}.get(name[1])
                    hidden = access in ("private", "protected")
                    self._scan(position + 1, close, path + name[0],
                               "private" if hidden else inner or "free")
                    return close + 1
                if kind == "function":
                    self._add(begin, position, close, path, access)
                    return close + 1
                position = close
            position = self.ends.get(position, position) + 1 if self.code[position] in "([" \
                else position + 1
        self._add(begin, position, None, path, access)
        return position + 1

    @staticmethod
    def _kind(header):
        """Returns what a brace after this text opens: a scope with its name, a function, or neither."""
        header = TEMPLATE.sub("", re.sub(r"\[\[[^\]]*\]\]\s*", "", header)).strip()
        scope = re.match(r'(?:inline\s+)?namespace\b\s*([\w:]*)$|extern\s+""$', header)
        if scope:
            name = scope.group(1) if scope.group(1) is not None else "extern"
            return "scope", (tuple(name.split("::")) if name else ("(anonymous)",), "namespace")
        if re.match(r"enum\b|union\b", header):
            return "value", None
        scope = re.match(r"(class|struct)\s+([\w:]+)[^(=]*$", header)
        if scope:
            return "scope", (tuple(scope.group(2).split("::")), scope.group(1))
        before, _, after = signature(header)
        if before is None:
            return "value", None
        initialises_members = re.search(r"(?<!:):(?!:)", flattened(after))
        if initialises_members and re.search(r"[\w>]$", header):
            return "value", None
        return "function", None

    def _add(self, begin, end, close, path, access):
        header = self.code[begin:end]
        before, parameters, after = signature(TEMPLATE.sub("", header))
        name = before and re.search(r"((?:\w+(?:<[^<>]*>)?::)*)(~?\w+)\s*$", before)
        if not name or re.match(r"(using|typedef|static_assert|friend|extern|return|Q_\w+)\b", header):
            return
        full = path + tuple(re.sub("<.*>", "", part) for part in name[1].split("::")[:-1]) + (name[2],)
        last_line = self.line_of(end if close is None else close)
        line = self.line_of(begin)
        owner = full[-2] if len(full) > 1 else ""
        getter = not parameters.strip() and re.match(r"\s*const\b", after) and access != "free"
        exempt = (name[2].lstrip("~") == owner or name[2].startswith("operator")
                  or re.search(r"\boperator\b", before) or bool(getter)
                  or re.search(r"\boverride\b|=\s*(default|delete)\b", after) is not None)
        body = self.code[end:close] if close is not None else ""
        above = self.raw_lines[line - 2].strip() if line > 1 else ""
        beside = "".join(self.raw_lines[line - 1:self.line_of(end)])
        previous = self._found[-1] if self._found else None
        follows = (previous is not None and previous.path == full and above != ""
                   and previous.documented)
        self._found.append(Function(
            full, line, last_line - line + 1 if close is not None else 0,
            count_parameters(parameters), 1 + len(BRANCH.findall(after + body)),
            access in ("public", "free") and "(anonymous)" not in path, bool(exempt),
            close is None and access != "signals"
            and not re.search(r"=\s*(0|default|delete)\b", after),
            above.startswith("///") or "///<" in beside or follows))


def flattened(text):
    """Returns the text without the contents of its parentheses."""
    previous = None
    while previous != text:
        previous, text = text, re.sub(r"\([^()]*\)", "", text)
    return text


def signature(header):
    """Splits a function header around its parameters; returns None three times if it has none."""
    header = re.sub(r"\boperator\s*(\(\)|[^\w\s(]+)", lambda m: "operator" + "_" * (len(m[0]) - 8),
                    header)
    angle = 0
    for position, character in enumerate(header):
        if character == "<":
            angle += 1
        elif character == ">" and header[position - 1] != "-":
            angle -= 1
        elif character == "=" and angle == 0:
            break
        elif character == "(" and angle == 0:
            depth = 0
            for close in range(position, len(header)):
                depth += {"(": 1, ")": -1}.get(header[close], 0)
                if depth == 0:
                    return header[:position], header[position + 1:close], header[close + 1:]
            break
    return None, None, None


def count_parameters(text):
    depth = 0
    count = 1 if text.strip() not in ("", "void") else 0
    for character in text.replace("->", ""):
        depth += {"(": 1, "<": 1, "[": 1, "{": 1, ")": -1, ">": -1, "]": -1, "}": -1}.get(character, 0)
        count += character == "," and depth == 0
    return count
