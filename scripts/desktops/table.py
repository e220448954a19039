#!/usr/bin/python3
"""Reads what trial.py printed, for one desktop or several, and prints it as a table. Desktops that do the same with
an application share a row."""
import json
import sys


def shown_as(window):
    """The menu entry that a desktop found, or the name of the window where desktops look for none."""
    return window["entry"] or window["app_id"]


def verdict(facts, key):
    clones = facts["clones"]
    if not all(clone["window"] for clone in clones):
        return "no window"
    values = [clone[key] for clone in clones]
    if None in values:
        return "-"
    if all(values):
        return "own"
    if any(values):
        return f"own: {values.count(True)} of {len(values)}"
    *windows, original = facts["windows"]
    grouped = original and shown_as(original) and all(shown_as(one) == shown_as(original) for one in windows)
    return "the original’s" if grouped else "none"


def focus(facts):
    tried = [one for one in facts.get("focus", []) if one]
    if not tried:
        return "-"
    if all(one["done"] for one in tried):
        if any(one.get("new") for one in tried):
            return "by the button, as a new window"
        return "by the button" if any(one.get("button") for one in tried) else "yes"
    return "no, but reports success" if any(one["reported"] and not one["done"] for one in tried) else "no, and says so"


def badge(facts):
    found = facts.get("badge")
    if found is None:
        return "-"
    if not found["shown"]:
        return "none"
    return "own" if found["withdrawn"] else "own, and stays"


def main():
    rows = {}
    for line in sys.stdin:
        facts = json.loads(line)
        entry = verdict(facts, "entry")
        if not facts["original"]:
            entry += "; the original is not under its own"
        cells = (facts["application"], entry, verdict(facts, "name"), verdict(facts, "icon"), focus(facts),
                 badge(facts))
        rows.setdefault(cells, []).append(facts["desktop"])
    order = list(dict.fromkeys(cells[0] for cells in rows))
    print("| application | desktop | entry | name | icon | focus | badge |")
    print("|---|---|---|---|---|---|---|")
    for cells, desktops in sorted(rows.items(), key=lambda row: order.index(row[0][0])):
        print("| " + " | ".join([cells[0], "; ".join(desktops), *cells[1:]]) + " |")


if __name__ == "__main__":
    main()
