#!/usr/bin/env python3
"""Makes small mistakes in the macOS layer, one at a time, and says which of them the checks on Linux catch.

  scripts/check_macos_mutations.py              all of tests/macos/mutations
  scripts/check_macos_mutations.py TEXT…        those whose file or description contains one of the texts

Each mistake is made in a copy of its file. The copy is compiled and linked into the tests of its half of the layer, which
are run; if they find nothing, it is checked as scripts/check_macos.sh checks the file itself. The tests must have been
built (preset dev). Fails when fewer than nine in ten are caught, when a mistake is missed that no reason is given for,
when one is caught that is said to be uncatchable, and when a copy without a mistake is found fault with.
"""

import concurrent.futures
import dataclasses
import os
import pathlib
import re
import subprocess
import sys
import tomllib

LAYER = pathlib.Path("src/platform/macos")
BUILD = pathlib.Path("build/dev")
WORK = pathlib.Path("build/macos-mutations")
MISTAKES = pathlib.Path("tests/macos/mutations")
# The programs that hold a file of each kind; the second of them is linked without the window-number function.
PROGRAMS = {
    ".cpp": ["macos_layer_test", "macos_layer_without_window_numbers_test"],
    ".mm": ["macos_objc_test"],
}
# What puts the layer together needs both halves.
PROGRAMS_BY_FILE = {"mac_platform.cpp": ["macos_program_test"]}
LEAST_CAUGHT = 0.9
# Far more than the tests take, even beside other work: a program that is not done by then hangs.
PATIENCE_SECONDS = 90
ENVIRONMENT = os.environ | {"CCACHE_DISABLE": "1", "GTEST_FAIL_FAST": "1"}


@dataclasses.dataclass
class Mistake:
    file: str
    what: str
    text: str
    replacement: str
    uncatchable: str = ""


def programs_for(file):
    return PROGRAMS_BY_FILE.get(file) or PROGRAMS[pathlib.Path(file).suffix]


class Broken(Exception):
    """The check itself cannot say anything."""


def run(command, **options):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace",
                          env=ENVIRONMENT, **options)


def ninja(*arguments):
    answer = run(["ninja", "-C", str(BUILD), *arguments])
    if answer.returncode != 0:
        raise Broken(f"ninja {' '.join(arguments)}: {answer.stdout}")
    return answer.stdout


def final_step(target, mark):
    """The one command among those of the target's last step that contains the mark."""
    steps = [step for step in re.split(r"\s&&\s", ninja("-t", "commands", "-s", target)) if mark in step]
    if len(steps) != 1:
        raise Broken(f"{target} is built by {len(steps)} commands with {mark}")
    return steps[0].strip()


class Recipes:
    """How the build makes the objects of the layer and the programs of its tests."""

    def __init__(self):
        targets = [line.rpartition(": ")[0] for line in ninja("-t", "targets", "all").splitlines()]
        self.links = {name: final_step(f"bin/{name}", f" -o bin/{name}")
                      for names in [*PROGRAMS.values(), *PROGRAMS_BY_FILE.values()] for name in names}
        linked = {word for link in self.links.values() for word in link.split()}
        self.objects = {}
        # Where several targets have the file, the object that is linked counts; one of a library is not named there.
        for target in sorted(targets, key=lambda each: each not in linked):
            match = re.search(r"src/platform/macos/(\w+\.(?:cpp|mm))\.o$", target)
            if match and not target.startswith("/"):
                self.objects.setdefault(match[1], target)

    def compile(self, file, source, output):
        """The command that compiles the copy as the build compiles the file."""
        built = self.objects.get(file)
        if built is None:
            raise Broken(f"nothing builds {file}")
        original = str((LAYER / file).absolute())
        words = final_step(built, f" -c {original}").split()
        for flag in ("-MF", "-MT"):
            if flag in words:
                del words[words.index(flag):words.index(flag) + 2]
        words = [word for word in words if word != "-MD"]
        words[words.index(original)] = str(source)
        words[words.index("-o") + 1] = str(output)
        return words

    def link(self, program, file, replaced, output):
        """The command that links the program with this object: in the place of the file's own, or ahead of the
        library that has it."""
        words = self.links[program].split()
        words[words.index("-o") + 1] = str(output)
        if self.objects[file] in words:
            words[words.index(self.objects[file])] = str(replaced)
        else:
            words.insert(words.index("-o"), str(replaced))
        return words


def found_by_static_checks(copy):
    answer = run(["scripts/check_macos.sh", "--one", str(copy)])
    if answer.returncode == 0:
        return None
    if "type check" in answer.stdout:
        return "the type check"
    if "analyzer" in answer.stdout:
        return "the analyzer"
    raise Broken(answer.stdout)


def found_by_tests(recipes, file, copy, folder):
    replaced = (folder / f"{file}.o").absolute()
    compiled = run(recipes.compile(file, copy.absolute(), replaced), cwd=BUILD)
    if compiled.returncode != 0:
        return "the compiler of the tests"
    for program in programs_for(file):
        executable = (folder / program).absolute()
        linked = run(recipes.link(program, file, replaced, executable), cwd=BUILD)
        if linked.returncode != 0:
            raise Broken(f"{program} does not link: {linked.stdout}")
        try:
            tested = run([str(executable)], cwd=folder, timeout=PATIENCE_SECONDS)
        except subprocess.TimeoutExpired:
            return "a test, which hangs"
        finally:
            executable.unlink()
        if tested.returncode < 0:
            return "a test, which crashes"
        if tested.returncode != 0:
            failed = re.search(r"\[  FAILED  \] ([\w./]+)", tested.stdout)
            return f"the test {failed[1]}" if failed else "a test, which ends the program"
    return None


def caught_by(recipes, mistake, folder):
    """What finds the mistake; nothing when it is missed. The tests come first, since they find most."""
    source = (LAYER / mistake.file).read_text()
    if source.count(mistake.text) != 1:
        raise Broken(f"{mistake.file}: “{mistake.text}” stands there {source.count(mistake.text)} times instead of once")
    copy = copy_into(folder, mistake.file, source.replace(mistake.text, mistake.replacement))
    if finder := found_by_tests(recipes, mistake.file, copy, folder):
        return finder
    finder = found_by_static_checks(copy)
    if finder and found_by_static_checks(copy_into(folder / "whole", mistake.file, source)):
        raise Broken(f"{mistake.file} is found fault with before any mistake is made in it, by {finder}")
    return finder


def copy_into(folder, file, source):
    folder.mkdir(parents=True, exist_ok=True)
    copy = folder / file
    copy.write_text(source)
    return copy


def read_mistakes(texts):
    mistakes = [Mistake(file, what, *texts_of_it) for path in sorted(MISTAKES.glob("*.toml"))
                for file, table in tomllib.loads(path.read_text()).items() for what, texts_of_it in table.items()]
    return [each for each in mistakes if not texts or any(text in f"{each.file}: {each.what}" for text in texts)]


def check_copies(recipes, mistakes):
    """The tests must pass with a copy that has no mistake, or every one would count as caught."""
    for suffix in PROGRAMS:
        file = next((mistake.file for mistake in mistakes if mistake.file.endswith(suffix)), None)
        if file is not None:
            folder = WORK / f"whole{suffix}"
            copy = copy_into(folder, file, (LAYER / file).read_text())
            if finder := found_by_tests(recipes, file, copy, folder):
                raise Broken(f"{file} is found fault with before any mistake is made in it, by {finder}")


def main():
    os.chdir(pathlib.Path(__file__).parent.parent)
    mistakes = read_mistakes(sys.argv[1:])
    if not mistakes:
        raise Broken("there is no such mistake to make")
    # What the single checks share.
    prepared = run(["scripts/check_macos.sh", str(LAYER / mistakes[0].file)])
    if prepared.returncode != 0:
        raise Broken(prepared.stdout)
    recipes = Recipes()
    check_copies(recipes, mistakes)
    caught = 0
    surprises = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        try:
            jobs = [workers.submit(caught_by, recipes, mistake, WORK / str(number))
                    for number, mistake in enumerate(mistakes)]
            for mistake, job in zip(mistakes, jobs):
                finder = job.result()
                caught += finder is not None
                verdict = f"caught by {finder}" if finder else "MISSED"
                if finder is None and mistake.uncatchable:
                    verdict = f"missed, as it must be: {mistake.uncatchable}"
                elif finder is None or mistake.uncatchable:
                    surprises += 1
                    verdict += ", though it is said to be uncatchable" if mistake.uncatchable else ""
                print(f"{mistake.file}: {mistake.what}: {verdict}", flush=True)
        finally:
            workers.shutdown(cancel_futures=True)
    print(f"{caught} of {len(mistakes)} mistakes are caught.")
    return 0 if surprises == 0 and caught >= LEAST_CAUGHT * len(mistakes) else 1


if __name__ == "__main__":
    try:
        sys.exit(main())
    except Broken as broken:
        sys.exit(f"FAILED: {broken}")
