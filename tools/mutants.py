"""Finds places in a C++ source where one small change should make a test fail, and weaves the changes in.

Every mutant of a source is compiled in at once and chosen at run time, so that a source is compiled once and not once a
mutant. A woven source asks `cairnfield::mutation::isOn(number)` wherever a mutant may take effect; the line numbers stay
as they were. What counts as a place:

- condition: an `if` or `while` is negated
- operator: one comparison or logical operator in a condition, a returned value or an initialiser is replaced
- constant: a number is one larger, `true` is `false`, a text is empty
- call: a statement that is nothing but a call is left out

The reading goes by the text as clang-format leaves it. What does not compile when woven is dropped by the caller.
"""

import re
from dataclasses import dataclass

ON = "cairnfield::mutation::isOn"
SWAPS = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "&&": "||", "||": "&&"}
OPERATOR = re.compile(r" (==|!=|<=|>=|<|>|&&|\|\|)(?=[ \n])")
NUMBER = re.compile(r"(?<![\w.'])(\d[\d']*)(?![\w.'])")
BOOLEAN = re.compile(r"\b(true|false)\b")
TEXT = re.compile(r'(?<![\w"])"((?:[^"\\\n]|\\.)+)"(?!")')
CALL = re.compile(r"^[ ]+((?:co_await )?(?:[A-Za-z_][\w]*(?:::|\.|->))*[A-Za-z_]\w*\()", re.MULTILINE)
NOT_A_CALL = re.compile(r"(if|while|for|switch|return|co_return|catch|sizeof|static_assert|assert|defined)\b")


@dataclass(frozen=True)
class Mutant:
    """One change of one source. `spot` is unique within a source whose text stays as it is."""

    file: str
    line: int
    kind: str
    spot: int  # offset of the change
    start: int  # offsets of what is rewritten to hold it
    end: int
    form: str  # how it is woven: "value", "statement" or "literal"
    replacement: str
    change: str  # for people

    @property
    def key(self):
        return f"{self.file}:{self.spot}:{self.kind}:{self.change}"


def blanked(text):
    """The text with the inside of comments and literals blanked out, of the same length."""

    def blank(match):
        piece = match[0]
        if piece.startswith("/"):
            return re.sub(r"[^\n]", " ", piece)
        return piece[0] + re.sub(r"[^\n]", "_", piece[1:-1]) + piece[-1]

    pattern = r'//[^\n]*|/\*.*?\*/|"(?:[^"\\\n]|\\.)*"|\'(?:[^\'\\\n]|\\.)\''
    return re.sub(pattern, blank, text, flags=re.DOTALL)


def closing(code, start):
    """The offset of the bracket that closes the one at `start`; -1 when there is none."""
    depth = 0
    for offset in range(start, len(code)):
        if code[offset] in "([{":
            depth += 1
        elif code[offset] in ")]}":
            depth -= 1
            if depth == 0:
                return offset
    return -1


def statement_end(code, start):
    """The offset of the semicolon that ends a statement; -1 where a block begins first."""
    depth = 0
    for offset in range(start, len(code)):
        if code[offset] in "([{":
            depth += 1
        elif code[offset] in ")]}":
            depth -= 1
            if depth < 0:
                return -1
        elif code[offset] == ";" and depth == 0:
            return offset
    return -1


def is_simple(expression):
    """Whether an expression may be written twice in a conditional expression."""
    return ";" not in expression and "co_await" not in expression and "co_yield" not in expression


class Finder:
    def __init__(self, file, text):
        self.file = file
        self.text = text
        self.code = blanked(text)
        self.found = []
        self.values = []  # [start, end) of expressions that are rewritten as wholes

    def run(self):
        self.find_conditions()
        self.find_other_values()
        self.find_literals()
        self.find_calls()
        return self.found

    def add(self, kind, spot, start, end, form, replacement, change):
        line = self.text.count("\n", 0, spot) + 1
        self.found.append(Mutant(self.file, line, kind, spot, start, end, form, replacement, change))

    def find_conditions(self):
        for match in re.finditer(r"\b(if|while) \(", self.code):
            start = match.end()
            end = closing(self.code, start - 1)
            condition = self.text[start:end]
            # A declaration in a condition is no expression.
            declares = re.match(r"(const )?[\w:<>*&, ]+ [&*]?\w+ = ", self.code[start:end])
            if end < 0 or not is_simple(self.code[start:end]) or declares:
                continue
            self.values.append((start, end))
            self.add("condition", start, start, end, "value", f"!({condition})", f"not ({condition})")
            self.find_operators(start, end)

    def find_other_values(self):
        for match in re.finditer(r"\b(?:return|co_return) |(?<=[\w\]\)]) = ", self.code):
            start = match.end()
            end = statement_end(self.code, start)
            if end < 0 or not is_simple(self.code[start:end]) or "[" in self.code[start:end]:
                continue
            if any(first <= start < last for first, last in self.values):
                continue
            if OPERATOR.search(self.code, start, end):
                self.values.append((start, end))
                self.find_operators(start, end)

    def find_operators(self, start, end):
        for match in OPERATOR.finditer(self.code, start - 1, end):
            spot = match.start(1)
            if spot < start:
                continue
            other = SWAPS[match[1]]
            changed = self.text[start:spot] + other + self.text[match.end(1) : end]
            self.add("operator", spot, start, end, "value", changed, f"{match[1]} to {other}")

    def find_literals(self):
        for pattern, changed in (
            (NUMBER, lambda match: f"{int(match[1].replace(chr(39), '')) + 1}"),
            (BOOLEAN, lambda match: "false" if match[1] == "true" else "true"),
        ):
            for match in pattern.finditer(self.code):
                self.add_literal(match.start(1), match.end(1), changed(match))
        for match in TEXT.finditer(self.code):
            # Neighbours would be joined to one literal.
            around = self.code[: match.start()].rstrip()[-1:] + self.code[match.end() :].lstrip()[:1]
            if '"' not in around:
                self.add_literal(match.start(), match.end(), '""')

    def add_literal(self, start, end, replacement):
        line_start = self.text.rfind("\n", 0, start) + 1
        if self.text[line_start:].startswith("#"):
            return
        was = self.text[start:end]
        if replacement.isdigit() and was.startswith("0") and was != "0":
            return
        for first, last in self.values:
            if first <= start < last:
                changed = self.text[first:start] + replacement + self.text[end:last]
                self.add("constant", start, first, last, "value", changed, f"{was} to {replacement}")
                return
        self.add("constant", start, start, end, "literal", replacement, f"{was} to {replacement}")

    def find_calls(self):
        for match in CALL.finditer(self.code):
            start = match.start(1)
            words = self.code[start : match.end(1)]
            before = self.code[: match.start()].rstrip()[-1:]
            end = closing(self.code, match.end(1) - 1)
            if NOT_A_CALL.match(words) or end < 0 or before not in ";{}":
                continue
            while self.code[end + 1 : end + 2] in (".", "-"):
                further = re.match(r"(?:\.|->)[\w:]+\(", self.code[end + 1 :])
                if not further:
                    break
                end = closing(self.code, end + further.end())
            if self.code[end + 1 : end + 2] == ";":
                self.add("call", start, start, end + 2, "statement", "", "left out: " + self.text[start : end + 1][:60])


def mutants_of(file, text):
    return Finder(file, text).run()


def one_line(text):
    return re.sub(r"\s*\n\s*", " ", text)


def woven(text, numbered, header):
    """The source with the mutants in it, [(number, Mutant)]; the lines keep their numbers."""
    by_span = {}
    for number, mutant in numbered:
        by_span.setdefault((mutant.start, mutant.end, mutant.form), []).append((number, mutant))
    # Inner ones first; the text of outer ones is then taken with what was woven into it.
    pieces = sorted(by_span.items(), key=lambda item: (item[0][1] - item[0][0], item[0][0]))
    edits = []  # (start, end, prefix, suffix), applied around the original text
    for (start, end, form), members in pieces:
        if form == "literal":
            number, mutant = members[0]
            edits.append((start, end, f"({ON}({number}) ? {mutant.replacement} : ", ")"))
        elif form == "value":
            prefix = "".join(f"{ON}({number}) ? ({one_line(mutant.replacement)}) : " for number, mutant in members)
            edits.append((start, end, f"({prefix}(", "))"))
        else:
            edits.append((start, end, f"if (!{ON}({members[0][0]})) {{ ", " }"))
    marks = []
    for start, end, prefix, suffix in edits:
        marks.append((start, 1, -(end - start), prefix))  # wider ones open first
        marks.append((end, 0, end - start, suffix))  # narrower ones close first
    result, last = [], 0
    for offset, _, _, mark in sorted(marks):
        result += [text[last:offset], mark]
        last = offset
    result.append(text[last:])
    without_constexpr = loosened("".join(result))
    return f'#include "{header}"\n#line 1\n' + without_constexpr


def loosened(text):
    """A constant that asks which mutant is on is none to the compiler."""
    lines = text.split("\n")
    for number, line in enumerate(lines):
        if ON in line and "constexpr" in line and "if constexpr" not in line:
            lines[number] = re.sub(r"\bconstexpr const char\* (\w)", r"const char* const \1", line).replace(
                "constexpr", "const"
            )
    return "\n".join(lines)


RUNTIME = """#pragma once
#pragma clang diagnostic ignored "-Weverything"
#include <array>
#include <atomic>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>
namespace cairnfield::mutation {
inline int chosen() {
    const char* const number = std::getenv("CAIRNFIELD_MUTANT");
    return number ? std::atoi(number) : -1;
}
inline void note(int number) {
    static std::array<std::atomic<bool>, 65536> seen{};
    static const char* const file = std::getenv("CAIRNFIELD_MUTANTS_MET");
    if (!file || seen[number].exchange(true)) return;
    const int descriptor = open(file, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    const std::string line = std::to_string(number) + "\\n";
    if (write(descriptor, line.data(), line.size()) < 0) std::abort();
    close(descriptor);
}
inline bool isOn(int number) {
    static const int on = chosen();
    note(number);
    return on == number;
}
}  // namespace cairnfield::mutation
"""
