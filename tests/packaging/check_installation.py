#!/usr/bin/env python3
"""Installs the built program into a folder of its own and fails where a desktop would not find its way around in it.

Usage: check_installation.py <cmake> <build folder>
"""

import configparser
import pathlib
import subprocess
import sys
import tempfile

ID = "com.larkmoor.ferrowyn"
ACTIONS = {"show": "Open Switcher", "settings": "Settings", "setup": "Setup Guide", "quit": "Quit"}
FILES = [
    "bin/ferrowyn",
    f"share/applications/{ID}.desktop",
    f"share/metainfo/{ID}.metainfo.xml",
    f"share/icons/hicolor/scalable/apps/{ID}.svg",
    f"share/dbus-1/services/{ID}.service",
]


def read(path):
    parser = configparser.ConfigParser(interpolation=None)
    parser.optionxform = str
    parser.read_string(path.read_text(encoding="utf-8"))
    return parser


def run(*command):
    done = subprocess.run([str(part) for part in command], capture_output=True, text=True, check=False)
    return done.returncode, done.stdout + done.stderr


def complaints_about_desktop_file(path, help_text):
    found = []
    status, said = run("desktop-file-validate", path)
    if status != 0 or said:
        found.append(f"desktop-file-validate: {said}")
    entry = read(path)
    main = entry["Desktop Entry"]
    if main["Icon"] != ID or main["DBusActivatable"] != "true":
        found.append("the desktop file names another icon, or cannot be activated over the bus")
    if main["Actions"].strip(";").split(";") != list(ACTIONS):
        found.append(f"the actions are {main['Actions']}")
    for action, name in ACTIONS.items():
        group = entry[f"Desktop Action {action}"]
        if group["Name"] != name or group["Exec"] != f"ferrowyn --{action}" or f"--{action} " not in help_text:
            found.append(f"the action {action} is {dict(group)}")
    return found


def complaints_about(prefix):
    found = [f"{name} is missing" for name in FILES if not (prefix / name).is_file()]
    if found:
        return found
    program = prefix / "bin/ferrowyn"
    status, help_text = run(program, "--help")
    if status != 0:
        found.append(f"the installed program does not run: {help_text}")
    found += complaints_about_desktop_file(prefix / f"share/applications/{ID}.desktop", help_text)
    service = read(prefix / f"share/dbus-1/services/{ID}.service")["D-BUS Service"]
    if service["Name"] != ID or service["Exec"] != f"{program} --dbus-service":
        found.append(f"the bus would start {dict(service)}")
    status, said = run("appstreamcli", "validate", "--no-net", prefix / f"share/metainfo/{ID}.metainfo.xml")
    if status != 0:
        found.append(f"appstreamcli: {said}")
    return found


def main():
    cmake, build = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        prefix = pathlib.Path(folder) / "prefix"
        status, said = run(cmake, "--install", build, "--prefix", prefix)
        found = [f"cmake --install: {said}"] if status != 0 else complaints_about(prefix)
    print("\n".join(found) if found else f"{len(FILES)} files, all of them in order")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
