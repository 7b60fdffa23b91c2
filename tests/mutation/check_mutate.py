#!/usr/bin/env python3
"""Lets tests/mutation/mutate.py loose on a small project whose test is weak, and compares what it finds.

    check_mutate.py MUTATE-SCRIPT
"""

import contextlib
import importlib.util
import io
import pathlib
import re
import sys
import tempfile

SOURCE = """\
template <int Size>
struct Box;
template <>
struct Box<3> {
    static constexpr int room = 4;
};

int calls = 0;

bool fits(int count) {
    ++calls;
    return count <= Box<3>::room;
}

int powerAbove(int limit) {
    int power = 1;
    while (power < limit) {
        power += power;
    }
    return power;
}
"""
# Looks at no border.
WEAK_TEST = """\
bool fits(int count);
int powerAbove(int limit);
int main() {
    return fits(3) && !fits(5) && powerAbove(5) == 8 ? 0 : 1;
}
"""
PROJECT = """\
cmake_minimum_required(VERSION 3.25)
project(small CXX)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
add_executable(services_test src/services/limits.cpp tests/limits_test.cpp)
add_executable(ferrowyn_app_services_tests tests/nothing_test.cpp)
"""
PRESETS = """\
{"version": 3, "configurePresets": [{"name": "dev", "generator": "Ninja", "binaryDir": "${sourceDir}/build/dev",
                                     "cacheVariables": {"CMAKE_BUILD_TYPE": "Debug"}}]}
"""

# Each line with what may be done to it; what merely looks as if it could be changed is there too.
LISTED = """\
#define LIMIT (3 < 4)
// a < b
template <typename T, bool isFlag = true>
class Row final : public Base<T> {
    Row(int columns);
    virtual int size() const = 0;
    void swap(Row&& other) { std::swap(text_, other.text_); }
    bool isEmpty_ = false;
    std::map<int, int> counts_;
};
static_assert(sizeof(int) == 4);
int f(const Row& row, std::string name) {
    const std::vector<int> list{0x1F, 1'000};
    auto value = call("a < b", '<');
    assert(value > 0);
    if (!row.isReady() && value >= 0.25) {
        name = "x";
        ++value;
    }
    row.each([&](int each) { total += each; });
    static_cast<void>(row.icon());
    (*self).load();
    rows.reserve(9);
    switch (value) {
        case 2:
            reset();
            break;
    }
    return value ? one() : two();
}
"""
EXPECTED_LIST = [
    (3, "true to false"),
    (7, "deleted"),
    (8, "false to true"),
    (13, "0x1F to 0x20"), (13, "1'000 to 1001"),
    (16, "! dropped"), (16, "&& to ||"), (16, ">= to >"), (16, "0.25 to 1.25"),
    (17, "deleted"),
    (18, "deleted"),
    (20, "deleted"), (20, "deleted (2)"),
    (21, "deleted"),
    (22, "deleted"),
    (23, "9 to 10"),
    (25, "2 to 3"),
    (26, "deleted"),
]


def expect(what, actual, expected):
    if actual != expected:
        sys.exit(f"{what}: expected\n{expected}, got\n{actual}")


def write(root, file, text):
    path = root / file
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text, encoding="utf-8")


def equivalent(line, mutation, behind=""):
    return (f"[[equivalent]]\nfile = 'src/services/limits.cpp'\nline = '{line}'\nmutation = '{mutation}'\nbehind = '{behind}'\n"
            "reason = 'so it is'\n")


def run(mutate, root, *arguments):
    """The exit code and what each mutation came to."""
    with contextlib.redirect_stdout(io.StringIO()) as printed:
        code = mutate.main(["--root", str(root), *arguments])
    found = re.findall(r"^src/services/limits\.cpp:(\d+): (.*?): .*: (.*)$", printed.getvalue().split("\n\n")[0], re.MULTILINE)
    return code, sorted((int(line), mutation, verdict) for line, mutation, verdict in found)


def check_a_run(mutate, root):
    mutate.LEAST_SECONDS = 1
    write(root, "CMakeLists.txt", PROJECT)
    write(root, "CMakePresets.json", PRESETS)
    write(root, "src/services/limits.cpp", SOURCE)
    write(root, "tests/limits_test.cpp", WEAK_TEST)
    write(root, "tests/nothing_test.cpp", "int main() {}\n")
    verdicts = [
        (4, "3 to 4", "does not compile"),
        (5, "4 to 5", "caught by services_test, which fails"),
        (8, "0 to 1", "SURVIVES"),
        (11, "deleted", "SURVIVES"),
        (12, "3 to 4", "does not compile"),
        (12, "<= to <", "SURVIVES"),
        (16, "1 to 2", "SURVIVES"),
        (17, "< to <=", "SURVIVES"),
        (18, "deleted", "caught by services_test, which hangs"),
    ]
    expect("a weak test", run(mutate, root), (1, verdicts))
    expect("the source afterwards", (root / "src/services/limits.cpp").read_text("utf-8"), SOURCE)

    # A better test, and a reason for what it cannot see.
    write(root, "tests/limits_test.cpp", WEAK_TEST.replace("fits(3)", "fits(4)"))
    named = equivalent("++calls;", "deleted", behind="bool fits(int count) {")
    write(root, "tests/mutation/equivalent.toml", named)
    lines = ("src/services/limits.cpp:11", "src/services/limits.cpp:12")
    expect("a better test", run(mutate, root, "--files", *lines), (0, [
        (11, "deleted", "so it is"),
        (12, "3 to 4", "does not compile"),
        (12, "<= to <", "caught by services_test, which fails"),
    ]))
    write(root, "tests/mutation/equivalent.toml", equivalent("return count <= Box<3>::room;", "<= to <"))
    expect("a name for a mistake that is caught", run(mutate, root, "--files", lines[1])[0], 1)
    for stale in (equivalent("++calls();", "deleted"), equivalent("++calls;", "deleted", behind="while (true) {")):
        write(root, "tests/mutation/equivalent.toml", stale)
        try:
            run(mutate, root, "--list")
        except mutate.Broken as broken:
            if "fits no line any more" not in str(broken):
                raise
        else:
            sys.exit("a name for a line that is not there: expected a failure, got none")


def check_choices(mutate):
    possible = mutate.mutants_of("src/core/row.cpp", LISTED)
    expect("the list of mistakes", [(mutant.line, mutant.mutation) for mutant in possible], EXPECTED_LIST)
    chosen = mutate.chosen_mutants(possible, [], 5, 1)
    expect("the number of those chosen", len(chosen), 5)
    expect("the same seed", mutate.chosen_mutants(possible, [], 5, 1), chosen)
    if all(mutate.chosen_mutants(possible, [], 5, seed) == chosen for seed in range(2, 9)):
        sys.exit("other seeds: expected other mistakes, got the same")


def main():
    specification = importlib.util.spec_from_file_location("mutate", sys.argv[1])
    mutate = importlib.util.module_from_spec(specification)
    sys.modules["mutate"] = mutate
    specification.loader.exec_module(mutate)
    check_choices(mutate)
    with tempfile.TemporaryDirectory() as folder:
        check_a_run(mutate, pathlib.Path(folder).resolve())


if __name__ == "__main__":
    main()
