"""Finds the mutants of C++ source text: small changes to one line that a test should notice."""

import re
from dataclasses import dataclass


@dataclass(frozen=True)
class Mutant:
    """One change: `before` at `column` of line `line` (both from 0) becomes `after`."""
    path: str
    line: int
    column: int
    before: str
    after: str

    def __str__(self):
        if not self.after.strip("{}"):
            return f"{self.path}:{self.line + 1}: '{self.before}' dropped"
        return f"{self.path}:{self.line + 1}: '{self.before}' becomes '{self.after}'"

    def apply(self, text):
        lines = text.split("\n")
        line = lines[self.line]
        end = self.column + len(self.before)
        assert line[self.column:end] == self.before
        lines[self.line] = line[:self.column] + self.after + line[end:]
        return "\n".join(lines)


# Comments, literals and preprocessor lines, none of which is mutated.
OPAQUE = re.compile(
    r"""//[^\n]*
      | /\*.*?\*/
      | R"(?P<mark>[^()\s]*)\(.*?\)(?P=mark)"
      | "(?:\\.|[^"\\\n])*"
      | (?<![0-9a-fA-F])'(?:\\.|[^'\\\n])+'
      | ^[ \t]*\#(?:\\\n|[^\n])*""", re.DOTALL | re.MULTILINE | re.VERBOSE)


def masked(text):
    """The text with blanks for all that is opaque; a literal keeps its place as a run of underscores."""
    def blank(match):
        filler = "_" if match[0].lstrip()[0] in "\"'R" else " "
        return "".join(c if c == "\n" else filler for c in match[0])
    return OPAQUE.sub(blank, text)


# Operators that clang-format puts between blanks, which templates, pointers and references don't have.
SWAPS = {
    "==": ["!="], "!=": ["=="], "<": ["<=", ">"], ">": [">=", "<"], "<=": ["<", ">="], ">=": [">", "<="],
    "&&": ["||"], "||": ["&&"], "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["/"],
    "+=": ["-="], "-=": ["+="], "|=": ["="], "&=": ["="], "&": ["|"], "|": ["&"], "<<": [">>"], ">>": ["<<"],
}
BINARY = re.compile(r"(?<= )(" + "|".join(re.escape(s) for s in sorted(SWAPS, key=len, reverse=True)) + r")(?=[ \n]|$)")
STEP = re.compile(r"\+\+|--")
NOT = re.compile(r"!(?=[\w(:*])")
WORDS = {
    "true": ["false"], "false": ["true"], "S_OK": ["S_FALSE", "E_FAIL"], "S_FALSE": ["S_OK"], "E_FAIL": ["S_OK"],
    "break": [""], "continue": [""], "std::min": ["std::max"], "std::max": ["std::min"],
    "front": ["back"], "back": ["front"],
}
WORD = re.compile(r"(?<![\w.>:])(true|false|S_OK|S_FALSE|E_FAIL|std::min|std::max)\b|(?<=[.>])(front|back)(?=\(\))"
                  r"|\b(break|continue)(?=;)")
NUMBER = re.compile(r"(?<![\w.'])(0x[0-9A-Fa-f]+|\d+)(?=[uUlL]*(?![\w.']))")
CONDITION = re.compile(r"\b(if|while) \(")
# The beginning of a call or an assignment that is a statement by itself. A declaration has a blank before the name
# that it declares.
CALL = re.compile(r"\*?[A-Za-z_][\w:]*(?:<[\w:, *]+>)?(?:\(|\.|->|\[)")
ASSIGNMENT = re.compile(r"\*?[A-Za-z_][\w:.()\[\]>-]* [-+|&]?= ")
# Statements that no test can miss, since they only make room, and those that check at compile time or in debug
# builds alone.
WITHOUT_EFFECT = re.compile(r"\b(?:reserve|shrink_to_fit|assert|static_assert|return|throw|delete|using)\b")
NEVER = re.compile(r"^\s*(?:static_assert|assert|using|template|namespace|friend|typedef)\b|\boperator\b|= 0;$")


def closing(line, opening):
    """The position of the parenthesis that closes the one at `opening`, or None if it isn't on the line."""
    depth = 0
    for i in range(opening, len(line)):
        depth += (line[i] == "(") - (line[i] == ")")
        if depth == 0:
            return i
    return None


def balanced(text):
    return text.count("(") == text.count(")") and text.count("{") == text.count("}")


def number_of(literal):
    octal = literal.startswith("0") and literal.isdigit()
    return int(literal, 8 if octal else 0)


def swaps_of(line):
    for match in BINARY.finditer(line):
        for after in SWAPS[match[1]]:
            yield match.start(1), match[1], after
    for match in STEP.finditer(line):
        yield match.start(), match[0], "--" if match[0] == "++" else "++"
    for match in NOT.finditer(line):
        yield match.start(), "!", ""
    for match in WORD.finditer(line):
        for after in WORDS[match[0]]:
            yield match.start(), match[0], after
    for match in NUMBER.finditer(line):
        yield match.start(1), match[1], str(number_of(match[1]) + 1)
        if match[1] == "1":
            yield match.start(1), match[1], "0"


def conditions_of(line):
    for match in CONDITION.finditer(line):
        end = closing(line, match.end() - 1)
        # What declares a variable can't be put into parentheses.
        if end is None or ";" in line[match.end():end] or " = " in line[match.end():end]:
            continue
        condition = (match.end(), line[match.end():end])
        yield *condition, "never"
        if match[1] == "if":
            yield *condition, "always"


def statements_of(line, before):
    """Statements that begin the line, or follow a brace, a semicolon or a condition on it."""
    starts = [match.end() for match in re.finditer(r"[{;] ", line)]
    if not before or before[-1] in ";{}:)" or before.endswith("else"):
        starts.append(len(line) - len(line.lstrip()))
    for match in CONDITION.finditer(line):
        if end := closing(line, match.end() - 1):
            starts.append(end + 2)
    for start in starts:
        # Up to the first semicolon that isn't inside the body of a lambda.
        end = line.find(";", start) + 1
        while end and not balanced(line[start:end]):
            end = line.find(";", end) + 1
        text = line[start:end]
        if not (CALL.match(text) and text.endswith(");") or ASSIGNMENT.match(text)):
            continue
        if not WITHOUT_EFFECT.search(text):
            yield start, text, "{}"


def mutants_of(path, text):
    """Yields the mutants of a file, line by line: a list for each line that has any."""
    source = text.split("\n")
    before = ""
    for number, line in enumerate(masked(text).split("\n")):
        if not NEVER.search(line):
            found = {Mutant(path, number, column, old, new) for column, old, new in swaps_of(line)}
            for column, old, kind in conditions_of(line):
                old = source[number][column:column + len(old)]
                found.add(Mutant(path, number, column, old,
                                 f"({old}) && false" if kind == "never" else f"({old}) || true"))
            for column, old, new in statements_of(line, before):
                found.add(Mutant(path, number, column, source[number][column:column + len(old)], new))
            if found:
                yield sorted(found, key=lambda m: (m.column, m.before, m.after))
        before = line.strip() or before
