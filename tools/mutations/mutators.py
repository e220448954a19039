"""The small changes that a source's tests should notice, one function per kind."""

import re
from dataclasses import dataclass

COMPARISONS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">"}
ARITHMETIC = {"+": "-", "-": "+", "*": "/", "/": "*"}
OPPOSITES = {"==": "!=", "!=": "==", "&&": "||", "||": "&&"}
JUMPS = ("return", "continue", "break", "throw")
DECLARATION = re.compile(r"^(?:const |constexpr |static )*[A-Za-z_][\w:<>,*& ]*[ *&](\w+) ?(?:=(?!=)|[;{(]|$)")
ASSIGNMENT = re.compile(r"^(\w+(?:(?:\.|->)\w+)*) = (.*);$", re.DOTALL)


@dataclass(frozen=True)
class Edit:
    kind: str
    start: int
    end: int
    text: str


def _replace(kind, token, text):
    return Edit(kind, token.start, token.end, text)


def swapped_members(source, records):
    """One field of a record for the next of its type, one enumerator for the next."""
    for index, token in enumerate(source.tokens):
        before = source.word(index - 1)
        if token.kind != "word" or before not in (".", "->", "::"):
            continue
        others = records.enumerators.get((source.word(index - 2), token.text), ())
        if before != "::" or source.word(index - 3) == "&":
            others = records.fields.get(token.text, ()) if source.word(index + 1) != "(" else ()
        if source.word(index - 3) != "case" and source.word(index - 5) != "case":
            yield from (_replace("member", token, other) for other in sorted(others))


def off_by_one(source, _):
    for index, token in enumerate(source.tokens):
        if token.text in COMPARISONS and source.spaced(index) and source.word(index - 1) != "template":
            yield _replace("off-by-one", token, COMPARISONS[token.text])


def arithmetic(source, _):
    for index, token in enumerate(source.tokens):
        beside = source.word(index - 1)[-1:] + source.word(index + 1)[:1]
        if token.text in ARITHMETIC and source.spaced(index) and '"' not in beside:
            yield _replace("arithmetic", token, ARITHMETIC[token.text])


def opposites(source, _):
    """`==` for `!=`, `&&` for `||` and the reverse; `x` for `!x`."""
    for index, token in enumerate(source.tokens):
        if token.text in OPPOSITES and source.spaced(index):
            yield _replace("negated", token, OPPOSITES[token.text])
        elif token.text == "!":
            yield _replace("negated", token, "")


def _has_an_opposite(source, first, last):
    """Whether another mutator already negates the whole condition."""
    operators = [source.word(i) for i in range(first, last) if source.word(i) in OPPOSITES]
    negated = source.word(first) == "!"
    return (negated and not operators) or (not negated and operators in (["=="], ["!="]))


def _parenthesis(source, index):
    """Returns the parenthesis of an `if` or `while`, with or without `constexpr` in between."""
    return index + 1 if source.word(index + 1) == "(" else index + 2


def negated_conditions(source, _):
    for index, token in enumerate(source.tokens):
        if token.text not in ("if", "while"):
            continue
        opening = _parenthesis(source, index)
        first, last = opening + 1, source.partners[opening] - 1
        semicolon = next((i for i in range(first, last) if source.word(i) == ";"), None)
        first = semicolon + 1 if semicolon else first
        start, end = source.span(first, last)
        condition = source.text[start:end]
        declared = DECLARATION.match(condition) if "=" in condition else None
        if declared:
            yield Edit("negated", end, end, f"; !{declared[1]}")
        elif not _has_an_opposite(source, first, last):
            yield Edit("negated", start, end, f"!({condition})")


def _expression_end(source, index):
    """Returns the last token from here to the end of the statement, argument or bracket."""
    while source.word(index) not in (",", ";", ")", "]", "}", ":", ""):
        index = source.partners.get(index, index) + 1
    return index - 1


def swapped_choices(source, _):
    """`a ? c : b` for `a ? b : c`."""
    for index, token in enumerate(source.tokens):
        if token.text != "?":
            continue
        middle = _expression_end(source, index + 1)
        if source.word(middle + 1) != ":":
            continue
        last = _expression_end(source, middle + 2)
        yes, no = source.span(index + 1, middle), source.span(middle + 2, last)
        text = source.text[slice(*no)] + " : " + source.text[slice(*yes)]
        yield Edit("negated", yes[0], no[1], text)


def removed_guards(source, _):
    """Removes an `if` whose body leaves the function or loop."""
    for block in source.blocks():
        for begin, end in source.statements(*block):
            if source.word(begin) != "if" or source.word(begin - 1) == "else":
                continue
            body = source.partners[_parenthesis(source, begin)] + 1
            if source.word(body) != "{" or source.partners[body] != end:
                continue
            inner = list(source.statements(body, end))
            if inner and source.word(inner[-1][0]) in JUMPS:
                yield Edit("guard", *source.span(begin, end), "{}")


def _mentions(name, text):
    return re.search(rf"\b{re.escape(name)}\b", text)


def _order_matters(first, second):
    """Returns false if the compiler would refuse the swap, or for two independent assignments."""
    declared = DECLARATION.match(first)
    if declared and not re.match(r"(?:return|delete)\b", first) and _mentions(declared[1], second):
        return False
    one, two = ASSIGNMENT.match(first), ASSIGNMENT.match(second)
    if one and two and one[1] != two[1]:
        return bool(_mentions(one[1], two[2]) or _mentions(two[1], one[2]))
    plain = [DECLARATION.match(text) and "(" not in text for text in (first, second)]
    return not any(plain)


def swapped_statements(source, _):
    fixed = JUMPS + ("case", "default", "using", "goto", "public", "private", "static_assert")
    for block in source.blocks():
        if source.is_switch(block[0]):
            continue
        statements = list(source.statements(*block))
        for one, two in zip(statements, statements[1:]):
            (a, b), (c, d) = source.span(*one), source.span(*two)
            first, between, second = source.text[a:b], source.text[b:c], source.text[c:d]
            leaves = source.word(one[0]) in fixed or source.word(two[0]) in fixed
            if not leaves and first != second and _order_matters(first, second):
                yield Edit("order", a, d, second + between + first)


def _changed_number(text):
    suffix = re.search(r"[uUlLzZ]*$|(?<=[\d.])[fF]$", text)[0] if not text.startswith("0x") else ""
    digits = text[: len(text) - len(suffix)].replace("'", "")
    if re.fullmatch(r"0[xX][\da-fA-F]+", digits):
        return hex(int(digits, 16) + 1)
    if re.fullmatch(r"0[0-7]+", digits):
        return "0" + format(int(digits, 8) + 1, "o")
    if re.fullmatch(r"\d+", digits):
        return str(int(digits) + 1) + suffix
    if re.fullmatch(r"\d*\.\d*(?:[eE][-+]?\d+)?|\d+[eE][-+]?\d+", digits):
        return repr(float(digits) * 1.1 or 1.0) + suffix
    return None


def _changed_text(token):
    end = token.text.rindex('"')
    end -= len(re.search(r'\)[^)"]*$', token.text[:end])[0]) if 'R"' in token.text[:4] else 0
    return token.text[:end] + "X" + token.text[end:]


def changed_literals(source, _):
    flips = {"true": "false", "false": "true"}
    for index, token in enumerate(source.tokens):
        if token.text in flips:
            yield _replace("literal", token, flips[token.text])
        elif token.kind == "string" and source.word(index - 1) != "extern":
            yield _replace("literal", token, _changed_text(token))
        elif token.kind == "char":
            yield _replace("literal", token, "'X'" if token.text != "'X'" else "'Y'")
        elif token.kind == "number" and (changed := _changed_number(token.text)):
            yield _replace("literal", token, changed)


MUTATORS = (
    swapped_members,
    off_by_one,
    arithmetic,
    opposites,
    negated_conditions,
    swapped_choices,
    removed_guards,
    swapped_statements,
    changed_literals,
)
