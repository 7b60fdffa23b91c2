#!/usr/bin/env python3
"""Fails when a release build would leave out what makes a fault hard to exploit.

  check_hardening.py program FILE            its ELF headers and its code, as the system's tools read them
  check_hardening.py sample FILE             the same, and what only hardened_sample.cpp is sure to have
  check_hardening.py release CMAKE SOURCES   what a release build would compile and link the program with
"""

import json
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile


def run(*command):
    done = subprocess.run([str(part) for part in command], capture_output=True, text=True, check=False)
    if done.returncode != 0:
        raise SystemExit(f"{shlex.join(str(part) for part in command)}: {done.stdout}{done.stderr}")
    return done.stdout


def complaints_about_program(file):
    headers = run("readelf", "--wide", "--file-header", "--program-headers", "--dynamic", "--dyn-syms", file)
    expected = {
        "its addresses differ from run to run": r"FLAGS_1\)\s+Flags:.*\bPIE\b",
        "its tables of addresses become read-only": r"\bGNU_RELRO\b",
        "all of them, for they are filled in at the start": r"FLAGS_1\)\s+Flags:.*\bNOW\b",
        "its stack cannot be executed": r"GNU_STACK(\s+0x[0-9a-f]+)+\s+RW\s",
        "its functions check that their stack is whole": r"UND __stack_chk_fail\b",
        "its copies check that they fit": r"UND __\w+_chk\b(?<!__stack_chk)",
    }
    found = [f"not so: {what}" for what, pattern in expected.items() if not re.search(pattern, headers)]
    if run("uname", "-m").strip() == "x86_64":
        main = run("objdump", "--disassemble=main", "--no-show-raw-insn", file)
        if not re.search(r"<main>:\n\s*[0-9a-f]+:\s+endbr64", main):
            found.append("not so: its functions are marked as targets of indirect calls")
    return found


def complaints_about_sample(file):
    found = complaints_about_program(file)
    if run("uname", "-m").strip() == "x86_64" and not re.search(r"\bor[ql]\s+\$0x0,", run("objdump", "-d", file)):
        found.append("not so: a large frame touches each of its pages")
    return found


def complaints_about_release(cmake, sources):
    compiled_with = ["-O2", "-D_FORTIFY_SOURCE=3", "-fstack-protector-strong", "-fstack-clash-protection"]
    if run("uname", "-m").strip() == "x86_64":
        compiled_with.append("-fcf-protection=full")
    linked_with = ["-pie", "-Wl,-z,relro,-z,now,-z,noexecstack"]
    found = []
    with tempfile.TemporaryDirectory() as folder:
        run(cmake, "-S", sources, "--preset", "release", "-B", folder, "-DFERROWYN_BUILD_TESTS=OFF")
        commands = json.loads((pathlib.Path(folder) / "compile_commands.json").read_text(encoding="utf-8"))
        own = [entry for entry in commands if entry["file"].startswith(f"{sources}/src/")]
        if len(own) < 100:
            found.append(f"only {len(own)} files would be compiled")
        for entry in own:
            missing = set(compiled_with) - set(shlex.split(entry["command"]))
            if missing:
                found.append(f"{entry['file']} would be compiled without {sorted(missing)}")
        link = run("ninja", "-C", folder, "-t", "commands", "bin/ferrowyn").splitlines()[-1]
        missing = set(linked_with) - set(shlex.split(link))
        if missing:
            found.append(f"the program would be linked without {sorted(missing)}")
    return found


def main():
    kind, *arguments = sys.argv[1:]
    checks = {"program": complaints_about_program, "sample": complaints_about_sample,
              "release": complaints_about_release}
    found = checks[kind](*arguments)
    print("\n".join(found) if found else "hardened")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
