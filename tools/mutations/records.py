"""Which fields and enumerators may replace one another: those of one record and one type."""

import re
from collections import defaultdict

from .source import Source

FIELD = re.compile(r"^(?:mutable )?(?P<type>[\w:<>,*& ]+?[\w>*&]) (?P<name>\w+)(?: = .*| \{.*)?$")
INCLUDE = re.compile(r'^#include "([^"]+)"', re.MULTILINE)
NO_TYPE = ("using", "return", "friend", "typedef", "static", "constexpr", "enum", "struct", "class")


def _next_of_each(names):
    """Pairs every name with the one after it, and the last with the first."""
    return zip(names, names[1:] + names[:1]) if len(names) > 1 else ()


def _bodies(source, keyword):
    """The brackets of every `keyword [class] Name ... { }` and the name."""
    for index, token in enumerate(source.tokens):
        if token.text != keyword or source.word(index - 1) == "enum":
            continue
        at = index + 2 if source.word(index + 1) in ("class", "struct") else index + 1
        name = source.word(at)
        while source.word(at) not in ("{", ";", "(", ")", ">", ""):
            at += 1
        if source.word(at) == "{":
            yield name, at, source.partners[at]


def _fields(source, first, last):
    """The names of a record's fields by their type."""
    by_type = defaultdict(list)
    for begin, end in source.statements(first, last):
        words = [source.word(index) for index in range(begin, end)]
        while words[1:2] == [":"]:  # public: and private:
            words = words[2:]
        match = FIELD.match(" ".join(words))
        if match and words[0] not in NO_TYPE and "(" not in words[: words.index(match["name"]) + 1]:
            by_type[match["type"]].append(match["name"])
    return by_type


def _enumerators(source, first, last):
    return [
        source.word(index)
        for index in range(first + 1, last)
        if source.word(index - 1) in ("{", ",") and source.tokens[index].kind == "word"
    ]


def _with_headers(root, text):
    """A source and every header of the tree that it includes, directly or not."""
    texts, names = [text], INCLUDE.findall(text)
    for name in names:
        if (root / name).is_file():
            texts.append((root / name).read_text(encoding="utf-8"))
            names += [found for found in INCLUDE.findall(texts[-1]) if found not in names]
    return texts


class Records:
    """The records and enumerations that a source can see."""

    def __init__(self, root, text):
        self.fields = defaultdict(set)
        self.enumerators = defaultdict(set)
        for known in _with_headers(root, text):
            self._read(Source(known))

    def _read(self, source):
        for keyword in ("struct", "class"):
            for _, first, last in _bodies(source, keyword):
                for names in _fields(source, first, last).values():
                    for name, other in _next_of_each(names):
                        self.fields[name].add(other)
        for name, first, last in _bodies(source, "enum"):
            for value, other in _next_of_each(_enumerators(source, first, last)):
                self.enumerators[name, value].add(other)
