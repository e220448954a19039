"""Cuts a C++ source into tokens, and finds its brackets, blocks and statements."""

import re
from bisect import bisect_right
from dataclasses import dataclass, field
from functools import cached_property

TOKEN = re.compile(
    r"""(?P<space>\s+)
      | (?P<comment>//[^\n]*|/\*.*?\*/)
      | (?P<directive>^[ \t]*\#(?:\\\n|[^\n])*)
      | (?P<string>(?:u8|u|U|L)?R"(?P<mark>[^(]*)\(.*?\)(?P=mark)"\w*
                  |(?:u8|u|U|L)?"(?:\\.|[^"\\\n])*"\w*)
      | (?P<char>(?:u8|u|U|L)?'(?:\\.|[^'\\\n])+')
      | (?P<number>\.?\d(?:[eEpP][+-]|'?[\w.])*)
      | (?P<word>[A-Za-z_]\w*)
      | (?P<sign><=>|\.\.\.|->\*|<<=|::|->|\+\+|--|<<|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|.)
    """,
    re.VERBOSE | re.DOTALL | re.MULTILINE,
)
PAIRS = {"(": ")", "[": "]", "{": "}"}
BEFORE_BLOCK = {")", "]", "else", "try", "do", "const", "noexcept", "override", "mutable"}
COMPOUND = {"if", "for", "while", "switch", "try", "do"}


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int
    end: int


@dataclass
class Source:
    """A source's tokens without blanks, comments and directives."""

    text: str
    tokens: list = field(init=False)

    def __post_init__(self):
        found = (
            Token(match.lastgroup if match.lastgroup != "mark" else "string", match[0], *match.span())
            for match in TOKEN.finditer(self.text)
        )
        self.tokens = [t for t in found if t.kind not in ("space", "comment", "directive")]

    def word(self, index):
        """Returns the text of a token; an empty text beyond either end."""
        return self.tokens[index].text if 0 <= index < len(self.tokens) else ""

    @cached_property
    def partners(self):
        """The index of every bracket's counterpart."""
        partners, opened = {}, []
        for index, token in enumerate(self.tokens):
            if token.text in PAIRS:
                opened.append(index)
            elif token.text in PAIRS.values() and opened:
                first = opened.pop()
                partners[first], partners[index] = index, first
        return partners

    @cached_property
    def line_starts(self):
        return [0] + [match.end() for match in re.finditer("\n", self.text)]

    def line(self, offset):
        return bisect_right(self.line_starts, offset)

    def spaced(self, index):
        """Whether there is a blank on both sides, as around a binary operator."""
        token = self.tokens[index]
        return self.text[token.start - 1].isspace() and self.text[token.end : token.end + 1].isspace()

    def span(self, first, last):
        return self.tokens[first].start, self.tokens[last].end

    def blocks(self):
        """The brackets' indices of every block of statements."""
        for first, last in self.partners.items():
            if self.word(first) == "{" and self.word(first - 1) in BEFORE_BLOCK:
                yield first, last

    def is_switch(self, block):
        opening = self.partners.get(block - 1, -1)
        return self.word(block - 1) == ")" and self.word(opening - 1) == "switch"

    def statements(self, first, last):
        """The statements between two brackets, each as the indices of its first and last token."""
        begin = index = first + 1
        while index < last:
            if self.word(index) in PAIRS:
                closing = self.partners[index]
                ends = self.word(index) == "{" and self._ends_compound(begin, closing)
                index = closing
            else:
                ends = self.word(index) == ";"
            if ends:
                yield begin, index
                begin = index + 1
            index += 1

    def _ends_compound(self, begin, closing):
        follows = "while" if self.word(begin) == "do" else ""
        return (
            self.word(begin) in COMPOUND | {"{"}
            and self.word(closing + 1) not in ("else", "catch", follows)
            and self.word(begin) != "do"
        )
