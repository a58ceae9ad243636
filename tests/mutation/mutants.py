"""Mutants of this tree's sources: one token of one line changed at a time."""

import hashlib
import pathlib
import random
import re
from dataclasses import dataclass

# Binary operators have a blank on both sides in this tree, brackets of templates and pointers do not.
BINARY = {
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"],
    "==": ["!="], "!=": ["=="], "&&": ["||"], "||": ["&&"],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"],
    "&": ["|"], "|": ["&"], "^": ["&"], "<<": [">>"], ">>": ["<<"],
    "+=": ["-="], "-=": ["+="], "*=": ["+="], "|=": ["&="], "&=": ["|="],
}
WORDS = {
    "true": ["false"], "false": ["true"], "std::min": ["std::max"], "std::max": ["std::min"],
    "continue": ["break"], "break": ["continue"],
}
TOKEN = re.compile(
    r"(?P<skip>\"(?:[^\"\\]|\\.)*\"|'(?:[^'\\]|\\.)*'|//.*)"
    r"|(?<= )(?P<binary><=|>=|==|!=|&&|\|\||<<|>>|\+=|-=|\*=|\|=|&=|[-<>+*/%&|^])(?= )"
    r"|(?P<step>\+\+|--)"
    r"|(?P<word>std::min|std::max|\btrue\b|\bfalse\b|\bcontinue\b|\bbreak\b)(?!\w)"
    r"|(?P<negation>(?<=[( ])!(?=[\w(]))"
    r"|(?<![\w.'])(?P<number>\d+(?:\.\d+f?)?)(?![\w.'])")
# Lines that say something to the compiler or to people, not to the processor.
SILENT = re.compile(
    r"^\s*(#|static_assert|template|using |namespace|friend |struct |class |enum |///|//|\*|alignas)"
    r"|\bpragma\b|__builtin_prefetch|\.summary\(|\.family\(")


@dataclass(frozen=True)
class Mutant:
    path: str
    line: int  # from 1
    before: str
    after: str

    def text(self, source):
        lines = source.split("\n")
        lines[self.line - 1] = self.after
        return "\n".join(lines)

    def diff(self):
        return f"{self.path}:{self.line}\n-{self.before.strip()}\n+{self.after.strip()}"

    def key(self, source):
        return hashlib.sha256((self.path + "\0" + self.text(source)).encode()).hexdigest()


def changes(match):
    """What may stand in the place of a token."""
    if match["binary"]:
        return BINARY[match["binary"]]
    if match["step"]:
        return ["--" if match["step"] == "++" else "++"]
    if match["word"]:
        return WORDS[match["word"]]
    if match["negation"]:
        return [""]
    if match["number"]:
        number = match["number"]
        if "." in number:
            return ["0.0" if float(number.rstrip("f")) != 0 else "1.0"]
        return [str(int(number) + 1)] + ([str(int(number) - 1)] if int(number) > 0 else [])
    return []


def mutants_of_line(path, number, line):
    if SILENT.search(line):
        return
    for match in TOKEN.finditer(line):
        for fresh in changes(match):
            yield Mutant(path, number, line, line[:match.start()] + fresh + line[match.end():])


def mutants_of_file(root, path):
    for number, line in enumerate((root / path).read_text().split("\n"), 1):
        yield from mutants_of_line(path, number, line)


def files_under(root, folders):
    found = set()
    for folder in folders:
        place = root / folder
        found |= {place} if place.is_file() else set(place.rglob("*.cpp")) | set(place.rglob("*.h"))
    return sorted(str(path.relative_to(root)) for path in found)


def draw(root, folders, seed):
    """All mutants under `folders`, in an order that `seed` decides."""
    root = pathlib.Path(root)
    every = [mutant for path in files_under(root, folders) for mutant in mutants_of_file(root, path)]
    random.Random(seed).shuffle(every)
    return every
