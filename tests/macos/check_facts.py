#!/usr/bin/env python3
"""Compares our declarations of macOS (tests/macos/sdk) with what is known of the system's interfaces (facts.txt beside
this file): functions, methods, superclasses, the fields of structures, constants and their values.

  check_facts.py CLANG              says what is declared otherwise than it is known, and what nothing is known about
  check_facts.py CLANG --declared   prints the declarations in the table's form

A line of the table is a name and what it is, in kinds rather than types: any object is "object", any block "block", and
"?" stands after what may be null. A "~" before the line marks what is known from the documentation alone: two
descriptions of the interfaces that were made independently confirm every other line. What is declared otherwise on
purpose has "; declared as" with that and the reason behind it.
"""

import json
import pathlib
import re
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
HEADERS = ["AppKit/AppKit.h", "ApplicationServices/ApplicationServices.h", "Carbon/Carbon.h",
           "ServiceManagement/ServiceManagement.h", "UniformTypeIdentifiers/UniformTypeIdentifiers.h"]
# What belongs to the compiler, to the C library and to macros of the declarations themselves.
OURS = re.compile(r"AX|CF|CG|NS|SM|UT|kAX|kCF|kCG|Is")
BASIC = {"_Bool": "bool", "BOOL": "bool", "Boolean": "bool", "pid_t": "int", "int32_t": "int", "uint32_t": "unsigned"}


def syntax_tree(clang):
    machine = subprocess.run(["g++", "-dumpmachine"], capture_output=True, text=True, check=True).stdout.strip()
    version = subprocess.run(["g++", "-dumpversion"], capture_output=True, text=True, check=True).stdout.strip()
    source = "".join(f"#include <{header}>\n" for header in HEADERS)
    command = [clang, "-target", "x86_64-apple-macos13", "-U__nonnull", "-D_GNU_SOURCE", "-isystem", str(HERE / "sdk"),
               "-nostdinc++", "-isystem", f"/usr/include/c++/{version}", "-isystem", f"/usr/include/{machine}/c++/{version}",
               "-isystem", f"/usr/include/{machine}", "-std=c++20", "-fobjc-arc", "-fblocks", "-fsyntax-only",
               "-Xclang", "-ast-dump=json", "-x", "objective-c++", "-"]
    return json.loads(subprocess.run(command, input=source, capture_output=True, text=True, check=True).stdout)


def kind_of(type_):
    written = re.sub(r"\b(__strong|__autoreleasing|__unsafe_unretained|const|__kindof|enum)\b", "", type_["qualType"])
    meant = type_.get("desugaredQualType", type_["qualType"])
    mark = "?" if "_Nullable" in written or "_Null_unspecified" in written else ""
    name = re.sub(r"\b(_Nullable|_Nonnull|_Null_unspecified)\b", "", written).strip()
    if "(^" in meant:
        return "block" + mark
    if name == "SEL":
        return "selector" + mark
    if name in ("id", "instancetype", "Class") or name.endswith("Ref") or name.startswith("id<"):
        return "object" + mark
    bare = re.sub(r"\b(__strong|__autoreleasing|__unsafe_unretained|const|struct|__kindof|_Nullable|_Nonnull)\b", "", meant)
    bare = bare.replace(" ", "")
    # "__CFString *" is what a CFStringRef is.
    if re.fullmatch(r"id(<.*>)?|(__|NS|SM|UT)\w+(<.*>)?\*", bare) and bare != "NSFastEnumerationState*":
        return "object" + mark
    if name.endswith("CallBack") or name.endswith("Callback"):
        return name
    if "*" in bare:
        return "pointer"
    return BASIC.get(name, name)


def literal(node):
    """The number that a constant is given in its declaration."""
    for inner in node.get("inner", []):
        if inner["kind"] in ("IntegerLiteral", "FloatingLiteral"):
            return inner["value"]
        value = literal(inner) if inner["kind"] != "InitListExpr" else None
        if value:
            return "-" + value if inner.get("opcode") == "-" else value
    return None


def evaluated(node):
    """The value of an enumeration's constant, which the compiler leaves out where it follows from the one before."""
    for inner in node.get("inner", []):
        if inner["kind"] == "ConstantExpr" and "value" in inner:
            return int(inner["value"])
        found = evaluated(inner)
        if found is not None:
            return found
    return None


def declared(clang):
    found = {}
    parents = {}
    records = {}

    def method(owner, node):
        sign = "-" if node.get("instance") else "+"
        arguments = [kind_of(each["type"]) for each in node.get("inner", []) if each["kind"] == "ParmVarDecl"]
        found[f"{owner} {sign}{node['name']}"] = f"{kind_of(node['returnType'])} ({' '.join(arguments)})"

    def visit(node):
        kind, name = node["kind"], node.get("name", "")
        if kind == "LinkageSpecDecl":
            for inner in node.get("inner", []):
                visit(inner)
        elif kind in ("ObjCInterfaceDecl", "ObjCProtocolDecl", "ObjCCategoryDecl") and "inner" in node:
            owner = name or node.get("interface", {}).get("name", "")
            if not OURS.match(owner):
                return
            if "name" in node.get("super", {}):
                parents[owner] = node["super"]["name"]
            for inner in node["inner"]:
                if inner["kind"] == "ObjCMethodDecl":
                    method(owner, inner)
        elif kind == "EnumDecl":
            previous = -1
            for inner in node.get("inner", []):
                if inner["kind"] == "EnumConstantDecl":
                    value = evaluated(inner)
                    previous = previous + 1 if value is None else value
                    if OURS.match(inner["name"]):
                        found[inner["name"]] = str(previous)
        elif kind == "CXXRecordDecl":
            records[node["id"]] = [each["name"] for each in node.get("inner", [])
                                   if each["kind"] == "FieldDecl" and "name" in each]
        elif kind == "TypedefDecl" and OURS.match(name):
            tag = next((inner["ownedTagDecl"]["id"] for inner in node.get("inner", []) if "ownedTagDecl" in inner), None)
            if records.get(tag):
                found[f"{name}, its fields"] = " ".join(records[tag])
        elif kind == "FunctionDecl" and OURS.match(name):
            arguments = [kind_of(each["type"]) for each in node.get("inner", []) if each["kind"] == "ParmVarDecl"]
            result = node["type"]["qualType"].split("(")[0].strip()
            meant = {"qualType": result}
            found[name] = f"{kind_of(meant)} ({' '.join(arguments)})"
        elif kind == "VarDecl" and OURS.match(name):
            found[name] = literal(node) or kind_of(node["type"]).rstrip("?")

    for node in syntax_tree(clang)["inner"]:
        visit(node)
    # The names of attributes and actions are macros.
    for header in sorted((HERE / "sdk").rglob("*.h")):
        for name, text in re.findall(r'#define (k\w+) CFSTR\("(\w+)"\)', header.read_text()):
            found[name] = f'"{text}"'
    return found | {
        f"{name}, a kind of": parent for name, parent in parents.items()}


def known():
    table = {}
    for number, line in enumerate((HERE / "facts.txt").read_text().splitlines(), 1):
        if not line or line.startswith("#"):
            continue
        name, separator, what = line.removeprefix("~ ").partition(" = ")
        if not separator or name in table:
            sys.exit(f"facts.txt:{number}: “{line}” is no fact, or stands there twice")
        table[name] = re.sub(r"^.*; declared as ([^:]*): .*$", r"\1", what)
    return table


def main():
    ours = declared(sys.argv[1])
    if sys.argv[2:] == ["--declared"]:
        print("\n".join(f"{name} = {what}" for name, what in sorted(ours.items())))
        return 0
    facts = known()
    complaints = [f"{name} is declared as “{what}” and known as “{facts[name]}”" if name in facts else
                  f"nothing is known about {name}, which is declared as “{what}”"
                  for name, what in sorted(ours.items()) if facts.get(name) != what]
    complaints += [f"{name} is known and not declared" for name in sorted(facts.keys() - ours.keys())]
    print("\n".join(complaints) or f"{len(ours)} declarations are as they are known.")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
