#!/usr/bin/env python3
"""What the compiler does not see of the numbered messages of the parser library.

IbisParser/base/raise.h has the compiler compare every call with the text of its number. Left are:

- sources that raise without that header, and calls in parentheses, which pass it by;
- rows that nothing raises. Their line says why: "not raised: ...".

A number counts as raised where it stands as a literal in a source.

usage: check_messages.py [--root DIR]
"""
import argparse
import re
import sys
from pathlib import Path

HEADER = '#include "IbisParser/base/raise.h"'
COMMENT_OR_STRING = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"', re.S)
RAISING = re.compile(r'\bERRLOG_[A-Z][a-z]\w*New\b|\bErrNumber\b')
ROW = re.compile(r'\{\s*(\d+),\s*((?:"(?:\\.|[^"\\])*"\s*)+)\},([^\n]*)')
SPARE = re.compile(r'"(Spare|Unused) (board )?message\."')


def read_rows(folder):
    """The rows of both tables in order: (number, text, rest of the line)."""
    lists = [(folder / name).read_text() for name in ('base/messages/table.inc', 'base/messages.h')]
    blocks = re.findall(r'#include "IbisParser/(.*/m\d.*\.inc)"', '\n'.join(lists))
    return [(int(number), text, rest) for block in blocks
            for number, text, rest in ROW.findall((folder / block).read_text())]


def main():
    parser = argparse.ArgumentParser(description=__doc__.split('\n')[0])
    parser.add_argument('--root', type=Path, default=Path(__file__).resolve().parent.parent)
    folder = parser.parse_args().root / 'IbisParser'
    log = {folder / 'errlog.h', folder / 'base/errlog.cpp', folder / 'base/raise.h'}

    problems, raised = [], set()
    for path in sorted(folder.rglob('*.cpp')) + sorted(folder.rglob('*.h')):
        text = path.read_text()
        code = COMMENT_OR_STRING.sub(' ', text)
        if path in log:
            continue
        if RAISING.search(code) and HEADER not in text:
            problems.append(f'{path}: raises messages without {HEADER}')
        for call in re.findall(r'\(\s*(ERRLOG_\w+New)\s*\)', code):
            problems.append(f'{path}: ({call}) passes the check by')
        raised |= {int(number) for number in re.findall(r"(?<![\w.'])\d{3,4}(?![\w.'])", code)}

    answered = set()  # of the rows of a number the first one answers
    for number, text, rest in read_rows(folder):
        if number == 0 or number in answered or SPARE.search(text):
            continue
        answered.add(number)
        if (number in raised) == ('not raised: ' in rest):
            problems.append(f'{number} is raised, but its row denies it' if number in raised else
                            f'{number} is raised by nothing, and its row does not say why')
    print(f'{len(answered)} numbers with a text, {len(answered & raised)} raised.')
    print(*problems, sep='\n')
    return 1 if problems else 0


if __name__ == '__main__':
    sys.exit(main())
