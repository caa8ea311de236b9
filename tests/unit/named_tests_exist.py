"""Checks that the tests that a document names exist: named_tests_exist.py DOCUMENT TESTS"""
import pathlib
import re
import sys

document, tests = map(pathlib.Path, sys.argv[1:])
named = set(re.findall(r"`([A-Z]\w+\.[A-Z]\w+)`", document.read_text()))
known = set()
for source in tests.rglob("*.cpp"):
    known.update(map(".".join, re.findall(r"\bTEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\)", source.read_text())))
if not named:
    sys.exit(f"{document}: names no tests")
missing = sorted(named - known)
if missing:
    sys.exit(f"{document}: unknown tests: {', '.join(missing)}")
