"""The small changes of a C++ source that scripts/mutate can make.

Regular expressions find them. They see the code alone: comments, texts, characters,
preprocessor lines, attributes and static assertions are blanked out first.
"""

import dataclasses
import hashlib
import re

NOT_CODE = re.compile(
    r'//[^\n]*|/\*.*?\*/|^[ \t]*#[^\n]*|"(?:[^"\\\n]|\\.)*"'
    r"|'(?:[^'\\\n]|\\.)+'|__attribute__\(\(.*?\)\)\)|static_assert\(.*?\);"
    r"|R\"\w*\(.*?\)\w*\"",
    re.S | re.M,
)
BLANK = "\0"

COMPARISON, LOGIC, ARITHMETIC = "comparison", "logic", "arithmetic"
OPERATOR = re.compile(r"(?<= )(==|!=|<=|>=|<<|&&|\|\||\+=|[<>+\-*%&|])(?= )")
SWAPS = {
    "==": (COMPARISON, ["!="]),
    "!=": (COMPARISON, ["=="]),
    "<": (COMPARISON, ["<=", ">="]),
    "<=": (COMPARISON, ["<", ">"]),
    ">": (COMPARISON, [">=", "<="]),
    ">=": (COMPARISON, [">", "<"]),
    "&&": (LOGIC, ["||"]),
    "||": (LOGIC, ["&&"]),
    "+": (ARITHMETIC, ["-"]),
    "-": (ARITHMETIC, ["+"]),
    "*": (ARITHMETIC, ["/"]),
    "%": (ARITHMETIC, ["*"]),
    "&": (ARITHMETIC, ["|"]),
    "|": (ARITHMETIC, ["&"]),
    "<<": (ARITHMETIC, [">>"]),
    "+=": (ARITHMETIC, ["-="]),
}

NUMBER = re.compile(r"(?<![\w.'])\d+(?=[uUlLzZ]*\b)(?!\.)")
INCREMENT = re.compile(r"\+\+(?=\w)")
TRUTH = re.compile(r"\b(?:true|false)\b")
RETURN_VALUE = re.compile(rf"(?<=\breturn )[^;{{}}{BLANK}][^;{{}}]*(?=;)")
# Removing a declaration would not compile. Removing the return of a value has no defined result.
STATEMENT = re.compile(
    r"(?:(?<=[;{})] )|(?<=\n)[ ]+)(?=[\w+*])(?!return |(?:constexpr|const|static|using|extern"
    r"|namespace|auto|else|if|for|while|case|default|struct|enum|public|private)\b)"
    r"(?![\w:<>,]+[ *&]+\w+(?: = |\{|;|\())[^;{}\n]*(?:\n[^;{}\n]*)?;"
)
CONDITION = re.compile(r"\b(?:if|while) \(")
CHARACTER = re.compile(r"'(?:[^'\\]|\\.)'")

# One row of a table of texts. The sample takes only one in ten changes of such rows, because they
# would outnumber all others.
TABLE_ROW = re.compile(r'\{"[^"]*", "[^"]*"\},')
TABLE_SHARE = 10


@dataclasses.dataclass(frozen=True)
class Change:
    """One change: `replacement` for the source's characters from `start` to `end`."""

    path: str
    start: int
    end: int
    replacement: str
    kind: str
    line: int
    before: str
    after: str
    key: str

    def __str__(self):
        return f"{self.path}:{self.line}: {self.kind}\n    - {self.before}\n    + {self.after}"

    def apply(self, source):
        return source[: self.start] + self.replacement + source[self.end :]


def digest(*parts):
    return hashlib.sha1(" ".join(map(str, parts)).encode())


def closing_parenthesis(code, position):
    """The end of the parenthesis that opened before the position."""
    depth = 1
    while depth > 0:
        depth += {"(": 1, ")": -1}.get(code[position], 0)
        position += 1
    return position - 1


def neighbours(number):
    value = int(number, 8 if re.fullmatch("0[0-7]+", number) else 10)
    return sorted({str(value + 1), str(value - 1)})


def other_values(value):
    if value in ("nullptr", "0"):
        return ["1"]
    return ["0"] if value == "-1" else sorted([f"!({value})", f"({value}) + 1", "{}"])


def code_spots(source, code):
    """Every (start, end, replacement, kind) in the code."""
    for match in OPERATOR.finditer(code):
        kind, replacements = SWAPS[match.group()]
        for replacement in replacements:
            yield *match.span(), replacement, kind
    for match in NUMBER.finditer(code):
        for replacement in neighbours(match.group()):
            yield *match.span(), replacement, "number"
    for match in INCREMENT.finditer(code):
        yield *match.span(), "--", "step"
    for match in TRUTH.finditer(code):
        yield *match.span(), "false" if match.group() == "true" else "true", "truth"
    for match in RETURN_VALUE.finditer(code):
        for replacement in other_values(source[match.start() : match.end()]):
            yield *match.span(), replacement, "return value"
    for match in STATEMENT.finditer(code):
        yield *match.span(), ";", "removed statement"
    for match in CONDITION.finditer(code):
        start, end = match.end(), closing_parenthesis(code, match.end())
        yield start, end, f"!({source[start:end]})", "condition"


def literal_spots(source):
    """Every (start, end, replacement, kind) in a character or a text."""
    for match in NOT_CODE.finditer(source):
        literal = match.group()
        if CHARACTER.fullmatch(literal):
            yield *match.span(), "'x'" if literal != "'x'" else "'y'", "character"
        elif literal.startswith('"'):
            yield match.start() + 1, match.start() + 1, "x", "text"
            if literal != '""':
                yield *match.span(), '""', "text"


def changes_of(path, source):
    """Every change of a source file, in any order."""
    code = NOT_CODE.sub(lambda match: BLANK * len(match.group()), source)
    source_digest = digest(source).hexdigest()
    for start, end, replacement, kind in (*code_spots(source, code), *literal_spots(source)):
        first, last = source.rfind("\n", 0, start) + 1, source.find("\n", end)
        before = " ".join(source[first:last].split())
        after = " ".join((source[first:start] + replacement + source[end:last]).split())
        if before != after:
            key = digest(path, source_digest, start, end, replacement).hexdigest()[:12]
            line = source.count("\n", 0, start) + 1
            yield Change(path, start, end, replacement, kind, line, before, after, key)


def sample(sources, seed):
    """All changes of the sources (path to text), in the order in which the seed takes them.

    The place of a change depends only on its own lines, so it stays when other lines change.
    """
    ranked = []
    for path, source in sources.items():
        counts = {}
        for change in changes_of(path, source):
            text = f"{change.path} {change.kind} {change.before} {change.after}"
            counts[text] = counts.get(text, 0) + 1
            rank = digest(seed, text, counts[text]).digest()
            if not TABLE_ROW.fullmatch(change.before) or rank[-1] % TABLE_SHARE == 0:
                ranked.append((rank, change))
    return [change for _, change in sorted(ranked, key=lambda pair: pair[0])]
