#!/usr/bin/env python3
"""Makes small mistakes in the logic, one at a time, and says which of them no unit test notices.

  tests/mutation/mutate.py                               300 mistakes, chosen by the seed 1
  tests/mutation/mutate.py --count 50 --seed 2           others
  tests/mutation/mutate.py --files src/core/text.cpp     all of one file, or of one line: src/core/text.cpp:45
  tests/mutation/mutate.py --list                        says what it would do; builds nothing

A mistake flips a condition (< <= > >= == != && || ! true false), adds one to a number, or deletes a statement that calls
or assigns. It is made in a copy of the sources under build/mutation, which has a build folder of its own. What does not
compile is skipped. Each of the test programs that can see the file is built and run in turn until one fails or hangs.

A mistake that changes nothing anybody could notice is named in equivalent.toml, with the reason. The run fails when a
mistake survives that is not named, when one is caught that is named, and when a name fits no line any more.
"""

import argparse
import concurrent.futures
import dataclasses
import os
import pathlib
import queue
import random
import re
import resource
import signal
import subprocess
import sys
import time
import tomllib

FOLDERS = ("src/core", "src/inventory", "src/input", "src/services")
# The next program is asked only when those before it have noticed nothing.
PROGRAMS = {
    "src/core": ("ferrowyn_core_tests", "ferrowyn_input_tests", "ferrowyn_status_menu_tests"),
    "src/inventory": ("inventory_test", "ferrowyn_input_tests", "ferrowyn_app_services_tests"),
    "src/input": ("ferrowyn_input_tests", "ferrowyn_app_services_tests"),
    "src/services": ("services_test", "ferrowyn_app_services_tests"),
}
COPIED = ("CMakeLists.txt", "CMakePresets.json", "cmake", "packaging", "resources", "scripts", "src", "tests")
# Quick to compile: nobody debugs these programs, and what a mistake leaves unused is no reason not to build it.
BUILD_FLAGS = ("-DCMAKE_CXX_FLAGS_DEBUG=-O0 -g0 -w", "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST")
BUILD_SECONDS = 600
# A program that takes this many times as long as it does without a mistake hangs.
PATIENCE = 8
LEAST_SECONDS = 10
# A mistake can make a loop allocate without end.
MEMORY_BYTES = 4 << 30


class Broken(Exception):
    """The run itself cannot say anything."""


# What a C++ file is made of ------------------------------------------------------------------------------------------

TOKEN = re.compile(
    r"""(?P<comment>//[^\n]*|/\*.*?\*/)
      | (?P<directive>^[ \t]*\#(?:\\\n|[^\n])*)
      | (?P<string>(?:u8|[uUL])?R"(?P<fence>[^(\s]*)\(.*?\)(?P=fence)" | (?:u8|[uUL])?"(?:\\.|[^"\\\n])*")
      | (?P<number>\.?\d(?:'?[\w.]|(?<=[eEpP])[+-])*)
      | (?P<character>(?:u8|[uUL])?'(?:\\.|[^'\\\n])+')
      | (?P<word>[A-Za-z_]\w*)
      | (?P<mark><=>|->\*|<<=|>>=|\.\.\.|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|[^\s\w])""",
    re.VERBOSE | re.DOTALL | re.MULTILINE)

FLIPS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "&&": "||", "||": "&&"}
ASSIGNMENTS = {"=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^=", "<<=", ">>="}
CLOSING = {"(": ")", "[": "]", "{": "}"}
TYPE_WORDS = {"namespace", "class", "struct", "union", "enum"}
# A statement that begins with one of these neither calls nor assigns, or checks what only the compiler or a developer sees.
OTHER_STATEMENTS = {"return", "if", "else", "for", "while", "do", "switch", "case", "default", "break", "continue", "goto",
                    "using", "typedef", "template", "static", "const", "constexpr", "auto", "friend", "public", "private",
                    "protected", "try", "catch", "throw", "explicit", "virtual", "inline", "operator", "static_assert",
                    "assert", "namespace", "class", "struct", "union", "enum", "extern", "thread_local"}
CHECKS = {"static_assert", "assert"}


@dataclasses.dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int
    end: int


@dataclasses.dataclass(frozen=True)
class Mutant:
    file: str
    line: int
    start: int
    end: int
    replacement: str
    # What is done, as equivalent.toml names it; with a number behind it from the second of its kind in a line on.
    mutation: str
    line_text: str
    # Tells lines of the same text apart.
    line_before: str

    def __str__(self):
        return f"{self.file}:{self.line}: {self.mutation}: {self.line_text}"

    def applied_to(self, text):
        return text[:self.start] + self.replacement + text[self.end:]


def tokens_of(text):
    found = []
    for match in TOKEN.finditer(text):
        if match.lastgroup not in ("comment", "directive"):
            kind = "string" if match.lastgroup == "fence" else match.lastgroup
            found.append(Token(kind, match[0], match.start(), match.end()))
    return found


def without_checks(tokens):
    """Leaves out the assertions: a mistake in one is no mistake of the program."""
    kept = []
    index = 0
    while index < len(tokens):
        if tokens[index].text in CHECKS and index + 1 < len(tokens) and tokens[index + 1].text == "(":
            index = end_of_group(tokens, index + 1)
        else:
            kept.append(tokens[index])
            index += 1
    return kept


def end_of_group(tokens, index):
    """The index behind the bracket that closes the one at the index."""
    depth = 0
    while index < len(tokens):
        if tokens[index].text in CLOSING:
            depth += 1
        elif tokens[index].text in CLOSING.values():
            depth -= 1
            if depth == 0:
                return index + 1
        index += 1
    return index


def number_plus_one(text):
    match = re.fullmatch(r"(0[xX][0-9a-fA-F']+|\d[\d']*\.\d*|\d[\d']*)(\D\w*)?", text)
    if match is None:
        return None
    digits = match[1].replace("'", "")
    if digits[:2].lower() == "0x":
        value = f"{int(digits, 16) + 1:#x}"
    elif "." in digits:
        value = f"{float(digits) + 1:.{len(digits.partition('.')[2])}f}"
    else:
        value = str(int(digits) + 1)
    return value + (match[2] or "")


def stands_between_spaces(text, token):
    """An operator does, in the way that this project is formatted; the brackets of a template do not."""
    return text[token.start - 1] in " \n" and text[token.end] in " \n"


def flips(text, tokens):
    """The conditions and numbers of a file as (start, end, replacement, mutation)."""
    for index, token in enumerate(tokens):
        before = tokens[index - 1].text if index > 0 else ""
        if before == "operator":
            continue
        if token.text in FLIPS and stands_between_spaces(text, token):
            flipped = FLIPS[token.text]
            yield token.start, token.end, flipped, f"{token.text} to {flipped}"
        elif token.text == "!" and before != "[":
            yield token.start, token.end, "", "! dropped"
        elif token.text in ("true", "false"):
            flipped = "false" if token.text == "true" else "true"
            yield token.start, token.end, flipped, f"{token.text} to {flipped}"
        elif token.kind == "number" and not is_pure_specifier(tokens, index):
            more = number_plus_one(token.text)
            if more is not None:
                yield token.start, token.end, more, f"{token.text} to {more}"


def is_pure_specifier(tokens, index):
    return (tokens[index].text == "0" and index >= 2 and tokens[index - 1].text == "="
            and tokens[index - 2].text in (")", "const", "noexcept", "override"))


def is_function_body(tokens, brace):
    """Whether statements stand between the braces: not so in a namespace, in a type and in a braced value."""
    for index in range(brace - 1, -1, -1):
        text = tokens[index].text
        if text in (";", "{", "}"):
            break
        if text in TYPE_WORDS and (index == 0 or tokens[index - 1].text != "<"):
            # "struct X f() {" does not occur here: results are named without the keyword.
            return False
    return True


def deletions(tokens):
    """The statements that call or assign as (start, end, replacement, mutation)."""
    open_brackets = []
    for index, token in enumerate(tokens):
        if open_brackets and open_brackets[-1] == "body" and follows_a_statement(tokens, index):
            end = end_of_statement(tokens, index)
            if end is not None:
                yield token.start, tokens[end].end, ";", "deleted"
        if token.text == "{":
            open_brackets.append("body" if is_function_body(tokens, index) else "{")
        elif token.text in CLOSING:
            open_brackets.append(token.text)
        elif token.text in CLOSING.values() and open_brackets:
            open_brackets.pop()


def follows_a_statement(tokens, index):
    before = tokens[index - 1].text
    if before != ":":
        # "Type{}(argument)" goes on behind its brace.
        return before in (";", "{", "}") and (before, tokens[index].text) != ("}", "(")
    # Of the colons, those behind a case; the others are those of conditions.
    for token in reversed(tokens[:index - 1]):
        if token.text in ("case", "default"):
            return True
        if token.text in (";", "{", "}", "?"):
            return False
    return False


def end_of_statement(tokens, begin):
    """The index of the semicolon behind a call or an assignment that begins here; None where something else does."""
    first = tokens[begin]
    if first.text in OTHER_STATEMENTS or (first.kind != "word" and first.text not in ("++", "--", "*", "(")):
        return None
    assigns = False
    calls = False
    index = begin
    while index < len(tokens) and tokens[index].text != ";":
        token = tokens[index]
        if token.text in ASSIGNMENTS | {"++", "--"}:
            assigns = True
        if token.text in ("}", ")", "]", ":", ","):
            return None
        if token.text == "{" and tokens[index - 1].text in (")", "const", "noexcept", "override", "mutable") and not assigns:
            return None
        if not assigns and token.kind == "word" and index > begin and is_declared(tokens[index - 1]):
            return None
        if token.text in CLOSING:
            calls = calls or token.text == "("
            index = end_of_group(tokens, index)
            continue
        index += 1
    if index == len(tokens) or not (calls or assigns):
        return None
    # Room that is made ahead for what is inserted saves time and changes nothing else.
    is_reservation = not assigns and tokens[index - 1].text == ")" and any(
        token.text == "reserve" and before.text in (".", "->")
        for before, token in zip(tokens[begin:index], tokens[begin + 1:index]))
    return None if is_reservation else index


def is_declared(before):
    """Whether a name behind this token is being declared, as in "Type name", "Type& name" and "Type<X> name"."""
    return before.kind == "word" or before.text in (">", "&", "&&", "*", ">>")


def mutants_of(file, text):
    """All mistakes that can be made in the file, in the order of its text."""
    tokens = tokens_of(text)
    found = sorted(set(flips(text, without_checks(tokens))) | set(deletions(without_checks(tokens))))
    lines = text.split("\n")
    mutants = []
    seen = {}
    for start, end, replacement, mutation in found:
        line = text.count("\n", 0, start) + 1
        times = seen[line, mutation] = seen.get((line, mutation), 0) + 1
        mutants.append(Mutant(file, line, start, end, replacement, mutation if times == 1 else f"{mutation} ({times})",
                              lines[line - 1].strip(), lines[line - 2].strip() if line > 1 else ""))
    return mutants


# Which of them to make -----------------------------------------------------------------------------------------------


def source_files(root):
    return [path.relative_to(root).as_posix() for folder in FOLDERS if (root / folder).is_dir()
            for path in sorted((root / folder).iterdir()) if path.suffix in (".cpp", ".h")]


def chosen_mutants(mutants, files, count, seed):
    """A sample in the order of the files: the same for the same sources and the same seed."""
    if files:
        places = [place.partition(":") for place in files]
        mutants = [mutant for mutant in mutants
                   if any(mutant.file == file and line in ("", str(mutant.line)) for file, _, line in places)]
    if count is None:
        count = len(mutants) if files else 300
    if count >= len(mutants):
        return mutants
    return [mutants[index] for index in sorted(random.Random(seed).sample(range(len(mutants)), count))]


@dataclasses.dataclass(frozen=True)
class Equivalent:
    """A mistake that changes nothing anybody could notice."""

    file: str
    line: str
    mutation: str
    reason: str
    # The line before, where another one has the same text.
    behind: str = ""

    def __str__(self):
        return f"{self.file}: {self.mutation}: {self.line}"

    def is_of(self, mutant):
        return ((self.file, self.line, self.mutation) == (mutant.file, mutant.line_text, mutant.mutation)
                and self.behind in ("", mutant.line_before))


def read_equivalents(path, mutants):
    """Each of them must fit a line that is there."""
    entries = tomllib.loads(path.read_text(encoding="utf-8")).get("equivalent", []) if path.exists() else []
    equivalents = []
    for entry in entries:
        try:
            equivalent = Equivalent(**entry)
        except TypeError as error:
            raise Broken(f"{path.name}: {entry}: {error}") from error
        if not any(equivalent.is_of(mutant) for mutant in mutants):
            raise Broken(f"{path.name}: this fits no line any more: {equivalent}")
        equivalents.append(equivalent)
    return equivalents


# Making them ---------------------------------------------------------------------------------------------------------


class Workshop:
    """A copy of the sources with a build folder, in which one mistake at a time is made. For one thread."""

    def __init__(self, root, folder):
        self.root = root
        self.folder = folder
        self.build = folder / "build/dev"
        self.environment = os.environ | {"CCACHE_BASEDIR": str(folder), "GTEST_FAIL_FAST": "1", "GTEST_BRIEF": "1"}
        self.limits = {}

    def prepare(self, programs):
        """Copies what differs, builds the programs and measures how long each takes; all must pass."""
        self.copy_sources()
        # Configures anew each time, since a list of files may have changed: that takes a second.
        self.must_succeed(["cmake", "--preset", "dev", *BUILD_FLAGS])
        self.must_succeed(["ninja", "-C", str(self.build), "-j1", *programs])
        for program in programs:
            began = time.monotonic()
            if (finder := self.failure_of(program, 10 * 60)) is not None:
                raise Broken(f"{program} fails before any mistake is made: {finder}")
            self.limits[program] = max(LEAST_SECONDS, PATIENCE * (time.monotonic() - began))

    def copy_sources(self):
        wanted = set()
        for name in COPIED:
            source = self.root / name
            files = [source] if source.is_file() else [path for path in source.rglob("*") if path.is_file()]
            for path in files:
                copy = self.folder / path.relative_to(self.root)
                wanted.add(copy)
                data = path.read_bytes()
                if not copy.exists() or copy.read_bytes() != data:
                    copy.parent.mkdir(parents=True, exist_ok=True)
                    copy.write_bytes(data)
                    copy.chmod(path.stat().st_mode)
        for name in COPIED:
            for path in (self.folder / name).rglob("*"):
                if path.is_file() and path not in wanted:
                    path.unlink()

    def verdict(self, mutant, programs):
        """What notices the mistake; "does not compile", or None when nothing does. Leaves the copy as it was."""
        copy = self.folder / mutant.file
        text = copy.read_text(encoding="utf-8")
        copy.write_text(mutant.applied_to(text), encoding="utf-8")
        try:
            for program in programs:
                if self.run(["ninja", "-C", str(self.build), "-j1", program], BUILD_SECONDS)[0] != 0:
                    return "does not compile"
                if (finder := self.failure_of(program, self.limits[program])) is not None:
                    return finder
            return None
        finally:
            copy.write_text(text, encoding="utf-8")

    def failure_of(self, program, seconds):
        code, printed = self.run([str(self.build / "bin" / program)], seconds)
        if code == 0:
            return None
        if code is None:
            return f"{program}, which hangs"
        failed = re.search(r"\[  FAILED  \] ([\w./]+)", printed)
        return failed[1] if failed else f"{program}, which {'crashes' if code < 0 else 'fails'}"

    def must_succeed(self, command):
        code, printed = self.run(command, 60 * 60)
        if code != 0:
            raise Broken(f"{' '.join(command)}: {printed}")

    def run(self, command, seconds):
        """The exit code, None when it was ended for taking too long, and what was printed."""
        # In a session of its own, so that what the program has started ends with it.
        with subprocess.Popen(command, cwd=self.folder, env=self.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace",
                              start_new_session=True, preexec_fn=limit_resources) as process:
            try:
                printed, _ = process.communicate(timeout=seconds)
                return process.returncode, printed
            except subprocess.TimeoutExpired:
                return None, ""
            finally:
                if process.returncode is None:
                    os.killpg(process.pid, signal.SIGKILL)


def limit_resources():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY_BYTES, MEMORY_BYTES))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def programs_of(file):
    return PROGRAMS[str(pathlib.PurePosixPath(file).parent)]


def make(root, work, mutants, jobs, report):
    """Makes each of the mistakes and reports (mutant, verdict) as it is known, in any order."""
    programs = sorted({program for mutant in mutants for program in programs_of(mutant.file)})
    workshops = queue.SimpleQueue()
    for number in range(jobs):
        workshop = Workshop(root, work / str(number))
        workshop.prepare(programs)
        workshops.put(workshop)

    def make_one(mutant):
        workshop = workshops.get()
        try:
            return mutant, workshop.verdict(mutant, programs_of(mutant.file))
        finally:
            workshops.put(workshop)

    with concurrent.futures.ThreadPoolExecutor(jobs) as workers:
        try:
            for job in concurrent.futures.as_completed([workers.submit(make_one, mutant) for mutant in mutants]):
                report(*job.result())
        finally:
            workers.shutdown(cancel_futures=True)


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--files", nargs="+", default=[], metavar="FILE[:LINE]", help="make mistakes in these alone")
    parser.add_argument("--count", type=int, help="how many to make; 300, with --files all")
    parser.add_argument("--seed", type=int, default=1, help="which to choose")
    parser.add_argument("--jobs", type=int, default=1, help="how many at a time; each needs a build folder of its own")
    parser.add_argument("--list", action="store_true", help="only say which would be made")
    parser.add_argument("--root", type=pathlib.Path, default=pathlib.Path(__file__).parents[2], help="the project")
    options = parser.parse_args(arguments)
    root = options.root.resolve()

    sources = source_files(root)
    if unknown := [place for place in options.files if place.partition(":")[0] not in sources]:
        raise Broken(f"not in {', '.join(FOLDERS)}: {', '.join(unknown)}")
    possible = [mutant for file in sources for mutant in mutants_of(file, (root / file).read_text("utf-8"))]
    equivalents = read_equivalents(root / "tests/mutation/equivalent.toml", possible)
    mutants = chosen_mutants(possible, options.files, options.count, options.seed)
    if options.list:
        print("\n".join(map(str, mutants)))
        return 0
    if not mutants:
        raise Broken("there is no mistake to make")

    counts = {"caught": 0, "equivalent": 0, "survived": 0, "does not compile": 0}
    surprises = []

    def report(mutant, finder):
        reason = next((equivalent.reason for equivalent in equivalents if equivalent.is_of(mutant)), None)
        if finder == "does not compile":
            outcome = verdict = finder
        elif finder is not None:
            outcome = "caught"
            verdict = f"caught by {finder}"
        else:
            outcome = "equivalent" if reason else "survived"
            verdict = f"survives, as it must: {reason}" if reason else "SURVIVES"
        if outcome == "survived" or (outcome == "caught" and reason):
            verdict += ", though it is named as equivalent" if reason else ""
            surprises.append(f"{mutant}: {verdict}")
        counts[outcome] += 1
        print(f"{mutant}: {verdict}", flush=True)

    make(root, root / "build/mutation", mutants, options.jobs, report)
    print("\n" + "\n".join(sorted(surprises)) + ("\n" if surprises else "")
          + ", ".join(f"{count} {outcome}" for outcome, count in counts.items()) + f", of {len(possible)} possible")
    return 1 if surprises else 0


if __name__ == "__main__":
    try:
        sys.exit(main(sys.argv[1:]))
    except Broken as broken:
        sys.exit(f"FAILED: {broken}")
