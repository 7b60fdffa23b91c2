#!/usr/bin/env python3
"""Makes small mistakes in the logic, one at a time, and says after how many simulated sessions each is found.

  scripts/check_simulation.py              all of tests/simulation/mistakes.toml
  scripts/check_simulation.py TEXT…        those whose file or description contains one of the texts

Each mistake is made in a copy of its file, which is compiled and linked into the simulator as the build does it; the
simulator must have been built (preset dev). What it finds is made as short as possible, and carried out once more by
the simulator without the mistake, where every invariant must hold. Fails when a mistake is not found.
"""

import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys
import tomllib

sys.dont_write_bytecode = True
from check_macos_mutations import BUILD, Broken, final_step, ninja, run

MISTAKES = pathlib.Path("tests/simulation/mistakes.toml")
WORK = pathlib.Path("build/simulation-mistakes")
SIMULATOR = "bin/ferrowyn-sim"
SEED = 1
SESSIONS = 40_000
# Far more than the sessions take, even beside other work.
PATIENCE_SECONDS = 300


class Recipes:
    """How the build makes the objects of the logic and the simulator."""

    def __init__(self):
        self.targets = [line.rpartition(": ")[0] for line in ninja("-t", "targets", "all").splitlines()]
        self.link_words = final_step(SIMULATOR, f" -o {SIMULATOR}").split()

    def compile(self, file, source, output):
        folder, name = os.path.split(file)
        built = [target for target in self.targets
                 if re.fullmatch(rf"{re.escape(folder)}/CMakeFiles/\w+\.dir/{re.escape(name)}\.o", target)]
        if len(built) != 1:
            raise Broken(f"{file} is built {len(built)} times")
        original = str(pathlib.Path(file).absolute())
        words = final_step(built[0], f" -c {original}").split()
        for flag in ("-MF", "-MT"):
            if flag in words:
                del words[words.index(flag):words.index(flag) + 2]
        words = [word for word in words if word not in ("-MD", "-Werror")]
        words[words.index(original)] = str(source)
        words[words.index("-o") + 1] = str(output)
        return words

    def link(self, replaced, output):
        """The object comes ahead of the library that has the file's own, which is then not taken from there."""
        words = list(self.link_words)
        words[words.index("-o") + 1] = str(output)
        words.insert(words.index("-o"), str(replaced))
        return words


def must_succeed(answer):
    if answer.returncode != 0:
        raise Broken(answer.stdout)


def simulator_with(recipes, file, text, folder):
    """Builds the simulator with this text in the place of the file's own."""
    folder.mkdir(parents=True, exist_ok=True)
    copy = (folder / pathlib.Path(file).name).absolute()
    copy.write_text(text)
    replaced = copy.with_suffix(".o")
    executable = (folder / "ferrowyn-sim").absolute()
    must_succeed(run(recipes.compile(file, copy, replaced), cwd=BUILD))
    must_succeed(run(recipes.link(replaced, executable), cwd=BUILD))
    return executable


def found(recipes, number, file, what, quoted, replacement):
    """What finds the mistake; None when nothing does."""
    source = pathlib.Path(file).read_text()
    if source.count(quoted) != 1:
        raise Broken(f"{file}: {what}: “{quoted}” stands there {source.count(quoted)} times instead of once")
    folder = WORK / str(number)
    simulator = simulator_with(recipes, file, source.replace(quoted, replacement), folder)
    try:
        answer = run([str(simulator), "--seed", str(SEED), "--sessions", str(SESSIONS), "--minimise"],
                     timeout=PATIENCE_SECONDS)
    except subprocess.TimeoutExpired:
        return "it hangs"
    finally:
        simulator.unlink()
    if answer.returncode == 0:
        return None
    if answer.returncode < 0:
        return "it crashes"
    invariant = re.search(r"^FAILED: ([\w.-]+):", answer.stdout, re.MULTILINE)
    sessions = re.search(r"after (\d+) sessions", answer.stdout)
    script = re.search(r"^# (\d+) steps\n(.*)", answer.stdout, re.MULTILINE | re.DOTALL)
    if not (invariant and sessions and script):
        raise Broken(f"{file}: {what}: the simulator ends without a finding: {answer.stdout}")
    saved = folder / "script.txt"
    saved.write_text(f"# {what}: {invariant[1]}\n{script[2]}")
    again = run([str(BUILD / SIMULATOR), "--replay", str(saved)])
    if again.returncode != 0:
        raise Broken(f"{saved} fails without the mistake too: {again.stdout}")
    return f"{invariant[1]}, after {sessions[1]} sessions, in {script[1]} steps"


def main():
    os.chdir(pathlib.Path(__file__).parent.parent)
    texts = sys.argv[1:]
    mistakes = [(file, what, *quoted) for file, table in tomllib.loads(MISTAKES.read_text()).items()
                for what, quoted in table.items()
                if not texts or any(text in f"{file}: {what}" for text in texts)]
    if not mistakes:
        raise Broken("there is no such mistake to make")
    ninja(SIMULATOR)
    recipes = Recipes()
    missed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        try:
            jobs = [workers.submit(found, recipes, number, *mistake) for number, mistake in enumerate(mistakes)]
            for (file, what, *_), job in zip(mistakes, jobs):
                finding = job.result()
                missed += finding is None
                print(f"{file}: {what}: {finding or 'MISSED'}", flush=True)
        finally:
            workers.shutdown(cancel_futures=True)
    print(f"{len(mistakes) - missed} of {len(mistakes)} mistakes are found within {SESSIONS} sessions.")
    return 1 if missed else 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except Broken as broken:
        sys.exit(f"FAILED: {broken}")
