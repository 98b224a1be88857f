#!/usr/bin/env python3
"""Compares the numbered messages that the parser library raises with the message table.

Every call ERRLOG_...New(NUMBER, ...) in IbisParser must name a number that the table's search
finds and whose text is in use, with arguments of the right number and kind. The kinds are checked
by the compiler: each call is rewritten, in a copy of its file, as a printf-like call with the text of
its row. A number that is no literal is followed to its source: both branches of a conditional, the
callers of a function with a number parameter, the initialisers of a table with a number column.
Rows that nothing raises are listed.

usage: check_messages.py [--root DIR] [--compiler CXX]
"""
import argparse
import os
import re
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

SPARE = re.compile(r'"(Spare|Unused) (board )?message\."')
LITERAL = re.compile(r'"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'')
PLACEHOLDER = re.compile(r'%(?:%|[-+ #0]*(\*|\d*)(?:\.\d+)?[hlz]*[a-zA-Z])')
CHECKED = 'ERRLOG_Checked'
PREAMBLE = ('extern "C" int %s(const char*, ...) __attribute__((format(printf, 1, 2)));\n'
            '#line 1 "%s"\n')


def read_rows(folder):
    """The table's rows in order: (number, text as C source)."""
    rows = []
    row = re.compile(r'\{\s*(\d+),\s*((?:"(?:\\.|[^"\\])*"\s*)+)\}')
    for name in re.findall(r'#include "IbisParser/(base/messages/.*\.inc)"',
                           (folder / 'base/messages.cpp').read_text()):
        for number, text in row.findall((folder / name).read_text()):
            rows.append((int(number), ' '.join(text.split('\n'))))
    return rows


def search(rows, number):
    """The library's own bisection; the table is not wholly sorted."""
    low, high = 0, len(rows) - 1
    while low <= high:
        middle = (low + high) // 2
        if rows[middle][0] == number:
            return middle
        if rows[middle][0] < number:
            low = middle + 1
        else:
            high = middle - 1
    return None


def mask(text):
    """text with comments, strings and characters blanked out, position by position."""
    blank = lambda match: re.sub(r'[^\n]', ' ', match.group())
    pattern = re.compile(r'//[^\n]*|/\*.*?\*/|' + LITERAL.pattern, re.S)
    return pattern.sub(lambda match: match.group() if match.group()[0] == "'" and
                       match.start() and text[match.start() - 1].isdigit() else blank(match), text)


def split_list(masked, start):
    """Spans of the comma-separated items behind the bracket at start, and the end of the list."""
    spans, depth, begin = [], 0, start + 1
    for at in range(start, len(masked)):
        c = masked[at]
        if c in '([{':
            depth += 1
        elif c in ')]}':
            depth -= 1
            if depth == 0:
                if masked[begin:at].strip() or spans:
                    spans.append((begin, at))
                return [s for s in spans if masked[s[0]:s[1]].strip() or s[1] - s[0] > 1], at + 1
        elif c == ',' and depth == 1:
            spans.append((begin, at))
            begin = at + 1
    raise ValueError('bracket without end')


class Source:
    def __init__(self, path):
        self.path = path
        self.text = path.read_text()
        self.masked = mask(self.text)

    def place(self, at):
        return f'{self.path}:{self.text.count(chr(10), 0, at) + 1}'

    def structs(self):
        """(name, member names, position of the closing brace) of every struct."""
        for match in re.finditer(r'\bstruct\s*(\w*)\s*(:[^{;]*)?\{', self.masked):
            spans, end = split_list(self.masked.replace(';', ','), match.end() - 1)
            members = [re.sub(r'=.*|\[.*', '', self.masked[a:b], flags=re.S) for a, b in spans]
            names = [re.findall(r'\w+', member)[-1:] for member in members]
            base = [''] if match.group(2) else []  # its cells stand first, in braces of their own
            yield match.group(1), base + [name[0] if name else '' for name in names], end - 1

    def function_at(self, at):
        """(start, name, parameter names) of the function around a position, by house layout."""
        start = self.masked.rfind('\n{\n', 0, at)
        if start < 0:
            return None
        head = max(self.masked.rfind(mark, 0, start) for mark in ('\n}', ';\n', '\n\n', '>\n')) + 1
        match = re.search(r'(\w+)\s*\(', self.masked[head:start])
        if match is None:
            return None
        spans, _ = split_list(self.masked, head + match.end() - 1)
        names = [re.findall(r'\w+', self.masked[a:b])[-1:] for a, b in spans]
        return start, match.group(1), [name[0] if name else '' for name in names]


class Resolver:
    """Follows the number argument of a call to the literals that it may be."""

    def __init__(self, sources):
        self.sources = sources

    def numbers(self, source, span, seen=()):
        """The set of numbers, or None when they cannot be told."""
        text = source.masked[span[0]:span[1]].strip()
        text = re.sub(r'^(?:static_cast<\w+>)\s*\((.*)\)$', r'\1', text, flags=re.S).strip()
        key = (source.path, span, text)
        if key in seen:
            return set()
        seen += (key,)
        if re.fullmatch(r'\d+u?', text):
            return {int(text.rstrip('u'))}
        text = re.sub(r'(\[[^\]]*\])+$', '', text)
        if '?' in text:
            return self.join(source, span, seen, re.finditer(r'[?:]\s*([^?:]+)', text), text)
        if re.fullmatch(r'[a-zA-Z_]\w*', text):
            return self.of_variable(source, span[0], text, seen)
        field = re.search(r'(?:\.|->)(\w+)$', text)
        if field is not None:
            owner = re.search(r'(\w+)(?:\[[^\]]*\])*(?:\.|->)\w+$', text).group(1)
            return self.of_field(source, span[0], owner, field.group(1), seen)
        call = re.match(r'(\w+)\(', text)
        if call is not None:
            return self.of_results(source, call.group(1), seen)
        return None

    def join(self, source, span, seen, matches, text):
        offset = source.masked.index(text, span[0])
        found = set()
        for match in matches:
            part = self.numbers(source, (offset + match.start(1), offset + match.end(1)), seen)
            if part is None:
                return None
            found |= part
        return found

    def of_variable(self, source, at, name, seen):
        function = source.function_at(at)
        if function is None:
            return None
        start, function_name, parameters = function
        found, known = set(), False
        if name in parameters:
            found, known = self.of_callers(function_name, parameters.index(name), seen), True
        stop = source.masked.find('\n}\n', start)
        for match in re.finditer(rf'\b{name}\s*=\s*([^=;][^;]*);', source.masked[start:stop]):
            part = self.numbers(source, (start + match.start(1), start + match.end(1)), seen)
            if part is None or found is None:
                return None
            found, known = found | part, True
        return found if known else None

    def of_callers(self, name, index, seen):
        found = set()
        for source in self.sources:
            for match in re.finditer(rf'\b{name}\s*\(', source.masked):
                line_start = source.masked.rfind('\n', 0, match.start()) + 1
                before = source.masked[line_start:match.start()]
                if re.fullmatch(r'[\w:<>*& ]+[ *&]', before) and before[0] != ' ' or \
                        re.match(r'(static|template|extern|int|void|char|const)\b', before):
                    continue  # the function itself
                spans, _ = split_list(source.masked, match.end() - 1)
                if index >= len(spans):
                    continue
                part = self.numbers(source, spans[index], seen)
                if part is None:
                    return None
                found |= part
        return found

    def of_results(self, source, name, seen):
        match = re.search(rf'\b{name}\([^;]*?\)\s*\n\{{\n(.*?)\n\}}\n', source.masked, re.S)
        if match is None:
            return None
        found = set()
        for result in re.finditer(r'\breturn\s+([^;]+);', match.group(1)):
            span = tuple(match.start(1) + at for at in result.span(1))
            part = self.numbers(source, span, seen)
            if part is None:
                return None
            found |= part
        return found

    def of_field(self, source, at, owner, field, seen):
        """Column `field` of the tables that owner may stand for: those of the list that a range
        loop walks, else those of its type, else those of this file, else of any."""
        function = source.function_at(at)
        body = source.masked[function[0] - 300:at] if function else ''
        walked = re.findall(rf'\b{owner}\s*:\s*(\w+)\)', body)
        typed = re.compile(rf'\b([A-Z]\w+)\b[\s&*]+{owner}\b')
        types = typed.findall(body) or [t for s in self.sources for t in typed.findall(s.masked)]
        declarations = [(s, *d) for s in self.sources for d in s.structs() if field in d[1]]
        nearest = [d for d in declarations if d[1] and d[1] in types] or \
                  [d for d in declarations if d[0] is source] or declarations
        found = set()
        for declaring, name, members, end in nearest:
            index = members.index(field)
            for part in self.column(declaring, name, end, index, field, walked[-1:], seen):
                if part is None:
                    return None
                found |= part
        return found if nearest else None

    def column(self, declaring, name, end, index, field, walked, seen):
        """The cells of a column in all variables of a struct, or in the one that is walked."""
        variable = r'\s+(\w+)\s*(\[[^=;]*)?=\s*\{'
        match = re.compile(r'\}' + variable).match(declaring.masked, end)
        places = [(declaring, match)] if match else []
        if name:
            head = rf'\b{name}' + variable
            places += [(s, m) for s in self.sources for m in re.finditer(head, s.masked)]
        for source, match in places:
            if walked and match.group(1) not in walked:
                continue
            rows, _ = split_list(source.masked, match.end() - 1)
            if match.group(2) is None:
                yield self.cell(source, rows, index, field, seen)
                continue
            for row in rows:
                bracket = source.masked.find('{', *row)
                if bracket >= 0:
                    cells, _ = split_list(source.masked, bracket)
                    yield self.cell(source, cells, index, field, seen)

    def cell(self, source, cells, index, field, seen):
        for span in cells:
            designated = re.match(rf'\s*\.{field}\s*=', source.masked[span[0]:span[1]])
            if designated:
                return self.numbers(source, (span[0] + designated.end(), span[1]), seen)
        if index >= len(cells):
            return set()
        text = source.masked[cells[index][0]:cells[index][1]]
        if '{' in text:
            return {int(number) for number in re.findall(r'\b\d+\b', text)}
        return self.numbers(source, cells[index], seen)


def check_calls(source, rows, resolver, report):
    """Checks the calls of a file; gives the numbers raised and the rewritten copy."""
    raised, copy, done = set(), [], 0
    for match in re.finditer(r'\bERRLOG_\w*New\s*\(', source.masked):
        spans, end = split_list(source.masked, match.end() - 1)
        place = source.place(match.start())
        numbers = resolver.numbers(source, spans[0])
        if numbers is None:
            report(f'{place}: where does the number {source.text[slice(*spans[0])]} come from?')
            continue
        arguments = source.text[spans[0][1]:end - 1].replace('\n', ' ')
        checked = []
        for number in sorted(numbers - {0}):
            row = search(rows, number)
            if row is None:
                report(f'{place}: {number} is not in the table')
                continue
            text = rows[row][1]
            raised.add(number)
            if SPARE.search(text):
                report(f'{place}: {number} has no text of its own')
            wanted = sum(1 + (m.group(1) == '*') for m in PLACEHOLDER.finditer(text)
                         if m.group() != '%%')
            if wanted != len(spans) - 1:
                report(f'{place}: {number} takes {wanted} arguments, given {len(spans) - 1}: {text}')
            checked.append(f'{CHECKED}({text}{arguments})')
        lines = '\n' * source.text.count('\n', match.start(), end)
        copy += [source.text[done:match.start()], '(' + (', '.join(checked) or '0') + ')', lines]
        done = end
    return raised, ''.join(copy + [source.text[done:]])


def compile_copy(compiler, root, folder, source, text):
    """The compiler's complaints about the rewritten copy of a file."""
    copy = Path(folder) / '-'.join(source.path.parts[-3:])
    copy.write_text(PREAMBLE % (CHECKED, source.path) + text)
    done = subprocess.run([compiler, '-std=c++20', f'-I{root}', '-fsyntax-only', '-Werror=format',
                           '-Werror=format-extra-args', str(copy)], capture_output=True, text=True)
    return done.stderr if done.returncode else ''


def ranges(numbers):
    parts = []
    for number in sorted(numbers):
        if parts and parts[-1][1] == number - 1:
            parts[-1][1] = number
        else:
            parts.append([number, number])
    return ', '.join(str(a) if a == b else f'{a}-{b}' for a, b in parts)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split('\n')[0])
    parser.add_argument('--root', type=Path, default=Path(__file__).resolve().parent.parent)
    parser.add_argument('--compiler', default=os.environ.get('CXX', 'c++'))
    options = parser.parse_args()
    folder = options.root / 'IbisParser'

    rows = read_rows(folder)
    paths = sorted(folder.rglob('*.cpp')) + sorted(folder.rglob('*.h'))
    sources = [Source(path) for path in paths if path.stem != 'errlog']
    resolver = Resolver(sources)
    problems, raised, copies = [], set(), []
    for source in sources:
        numbers, copy = check_calls(source, rows, resolver, problems.append)
        raised |= numbers
        if copy != source.text and source.path.suffix == '.cpp':
            copies.append((source, copy))
    with tempfile.TemporaryDirectory() as scratch:
        with ThreadPoolExecutor(os.cpu_count()) as pool:
            complaints = pool.map(lambda c: compile_copy(options.compiler, options.root, scratch, *c),
                                  copies)
            problems += [complaint for complaint in complaints if complaint]

    in_use = {number for at, (number, text) in enumerate(rows)
              if number and not SPARE.search(text) and search(rows, number) == at}
    print(f'{len(rows)} rows, {len(in_use)} in use, {len(raised)} raised.')
    if in_use - raised:
        print(f'Raised by nothing: {ranges(in_use - raised)}')
    for problem in problems:
        print(problem)
    return 1 if problems else 0


if __name__ == '__main__':
    sys.exit(main())
