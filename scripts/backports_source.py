#!/usr/bin/env python3
"""Prints one entry of an apt source file with a further suite beside its own.

Usage: backports_source.py FILE URI SUITE NEW_SUITE

FILE is in either of apt's two forms, told by its name: stanzas (.sources) or
lines. The entry is the first one that serves binary packages of SUITE from
URI; its other settings (components, Signed-By, architectures) stay with it.
"""

import re
import sys


def same_uri(one, other):
    return one.rstrip("/") == other.rstrip("/")


def fields_of(stanza):
    """The fields by lower-cased name, each with its continuation lines."""
    fields = {}
    name = None
    for line in stanza:
        if line.startswith((" ", "\t")) and name:
            fields[name][1].append(line)
        elif ":" in line:
            label, value = line.split(":", 1)
            name = label.strip().lower()
            fields[name] = (label.strip(), [value])
    return fields


def from_stanzas(text, uri, suite, new_suite):
    lines = [line for line in text.splitlines() if not line.startswith("#")]
    for stanza in "\n".join(lines).split("\n\n"):
        fields = fields_of(stanza.splitlines())

        def words(name):
            return " ".join(fields.get(name, ("", []))[1]).split()

        if (
            "deb" in words("types")
            and suite in words("suites")
            and any(same_uri(uri, each) for each in words("uris"))
            and words("enabled") not in (["no"], ["false"])
        ):
            fields["types"] = ("Types", [" deb"])
            fields["uris"] = ("URIs", [" " + uri])
            fields["suites"] = ("Suites", [f" {suite} {new_suite}"])
            return "\n".join(f"{label}:" + "\n".join(value) for label, value in fields.values())
    return None


def from_lines(text, uri, suite, new_suite):
    entry = re.compile(
        r"^\s*deb\s+(?P<options>\[[^\]]*\]\s+)?"
        r"(?P<uri>\S+)\s+(?P<suite>\S+)\s+(?P<components>[^#]*)"
    )
    for line in text.splitlines():
        found = entry.match(line)
        if found and same_uri(found["uri"], uri) and found["suite"] == suite:
            start, end = f"deb {found['options'] or ''}{uri}", found["components"].strip()
            return f"{start} {suite} {end}\n{start} {new_suite} {end}"
    return None


def main():
    path, uri, suite, new_suite = sys.argv[1:]
    with open(path, encoding="utf-8") as file:
        text = file.read()
    form = from_stanzas if path.endswith(".sources") else from_lines
    entry = form(text, uri, suite, new_suite)
    if entry is None:
        sys.exit(f"{path}: no entry for {suite} at {uri}")
    print(entry)


main()
