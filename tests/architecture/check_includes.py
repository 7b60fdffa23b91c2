#!/usr/bin/env python3
"""Fails on an #include or #import that turns an arrow of the architecture round.

Which folder may include which is said once, in ALLOWED; whatever is not said is forbidden. Toolkit and system headers
belong to the adapters, the user interface and the program; the logic is plain C++ (and ICU in core).
"""

import pathlib
import re
import sys

ADAPTERS = {"platform/simulated", "platform/qt", "platform/linux", "platform/x11", "platform/macos"}
ALLOWED = {
    "core": {"core"},
    "platform": {"core", "platform"},
    "services": {"core", "platform", "services"},
    "inventory": {"core", "platform", "inventory"},
    "input": {"core", "platform", "services", "inventory", "input"},
    "ui": {"core", "platform", "services", "inventory", "input", "ui"},
    "app": {"core", "platform", "services", "inventory", "input", "ui", "app"},
    "main": {"core", "platform", "services", "inventory", "input", "ui", "app", "main"} | ADAPTERS,
    "platform/simulated": {"core", "platform", "platform/simulated"},
    "platform/qt": {"core", "platform", "platform/qt"},
    "platform/linux": {"core", "platform", "platform/qt", "platform/linux"},
    "platform/x11": {"core", "platform", "platform/qt", "platform/linux", "platform/x11"},
    "platform/macos": {"core", "platform", "platform/qt", "platform/macos"},
}
OWN_FOLDERS = {folder.split("/")[0] for folder in ALLOWED}
# The user interface is handed the services whole.
EXCEPTIONS = {("ui", "app/app_services.h")}
MAY_USE_TOOLKIT = {"ui", "main", "platform/qt", "platform/linux", "platform/x11", "platform/macos"}
MAY_USE_ICU = {"core"}
TOOLKIT_OR_SYSTEM = re.compile(
    r"^(Q[A-Z]|Qt[A-Z]|curl/|xcb/|X11/|xkbcommon/|systemd/|sys/|unistd\.h|fcntl\.h|poll\.h|pthread\.h|signal\.h|dlfcn\.h|sched\.h|"
    r"dirent\.h|spawn\.h|syslog\.h|pwd\.h|termios\.h|"
    r"AppKit/|Application|Carbon/|CoreFoundation/|CoreGraphics/|Foundation/|HIServices/|ServiceManagement/|"
    r"UniformTypeIdentifiers/|objc/|os/|dispatch/)"
)
ICU = re.compile(r"^unicode/")
INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s*([<"])([^>"]+)[>"]')
PLATFORM_TEST = re.compile(r"^\s*#\s*(if|ifdef|ifndef|elif)\b.*__(APPLE|linux)__")
MAY_TEST_PLATFORM = MAY_USE_TOOLKIT - {"ui"}


def folder_of(path):
    """The folder of the architecture that a path below src/ lies in."""
    parts = pathlib.PurePosixPath(path).parts
    return "/".join(parts[:2]) if parts[0] == "platform" and len(parts) > 2 else parts[0]


# The parts of the user interface share this folder, and know nothing of each other.
SHARED_BY_PARTS = "ui/common"


def part_of(path):
    """The part of the user interface that a path below src/ lies in; None for any other path."""
    parts = pathlib.PurePosixPath(path).parts
    return "/".join(parts[:2]) if parts[0] == "ui" and len(parts) > 2 else None


def complaints_about(path, text):
    """What is wrong in one file; `path` is relative to src/."""
    folder = folder_of(path)
    found = []
    for number, line in enumerate(text.splitlines(), 1):
        if PLATFORM_TEST.match(line) and folder not in MAY_TEST_PLATFORM:
            found.append(f"{path}:{number}: only adapters and the program ask which system this is")
        match = INCLUDE.match(line)
        if not match:
            continue
        kind, header = match.groups()
        if header == pathlib.PurePosixPath(path).stem + ".moc":
            continue  # what Qt's compiler makes of this very file
        if kind == '"' or header.split("/")[0] in OWN_FOLDERS:
            target = folder_of(header)
            if target not in ALLOWED.get(folder, set()) and (folder, header) not in EXCEPTIONS:
                found.append(f"{path}:{number}: {folder} must not include {header}")
            elif part_of(header) not in (None, part_of(path), SHARED_BY_PARTS) and folder == "ui":
                found.append(f"{path}:{number}: {part_of(path) or folder} must not include {header}")
        elif TOOLKIT_OR_SYSTEM.match(header) and folder not in MAY_USE_TOOLKIT:
            found.append(f"{path}:{number}: {folder} must not include <{header}>")
        elif ICU.match(header) and folder not in MAY_USE_ICU:
            found.append(f"{path}:{number}: {folder} must not include <{header}>")
    return found


def self_test():
    """The check must be able to fail: each of these is one forbidden line, or an allowed one."""
    forbidden = [
        ("core/a.h", '#include "platform/log.h"'),
        ("core/a.h", "#include <QString>"),
        ("services/a.h", '#include "inventory/window_index.h"'),
        ("inventory/a.h", "#include <unicode/uchar.h>"),
        ("inventory/a.h", '#include "services/preferences.h"'),
        ("input/a.cpp", '#include "ui/switcher_view.h"'),
        ("input/a.cpp", "#include <xcb/xcb.h>"),
        ("services/a.cpp", "#include <curl/curl.h>"),
        ("platform/linux/a.cpp", '#include "b.moc"'),
        ("input/a.cpp", '#include "app/app_services.h"'),
        ("platform/log.h", "#include <sys/types.h>"),
        ("platform/log.h", '#include "platform/x11/x11_log.h"'),
        ("platform/linux/a.h", '#include "platform/x11/x11_log.h"'),
        ("platform/x11/a.h", '#include "services/preferences.h"'),
        ("ui/a.cpp", '#include "platform/x11/x11_panel.h"'),
        ("ui/a.cpp", '#include "app/main_window.h"'),
        ("app/a.cpp", '#include "main/command_line.h"'),
        ("app/a.cpp", '#include "platform/x11/x11_platform.h"'),
        ("app/a.cpp", "#include <QWidget>"),
        ("ui/a.cpp", "#ifdef __linux__"),
        ("input/a.cpp", "#if defined(__APPLE__)"),
        ("core/a.cpp", "#include <ui/switcher_view.h>"),
        ("ui/panel/a.cpp", '#include "ui/windows/utility_theme.h"'),
        ("ui/common/a.h", '#include "ui/panel/panel_scene.h"'),
        ("input/a.cpp", "#include <sched.h>"),
        ("ui/a.mm", '#import "platform/macos/mac_panel.h"'),
        ("services/a.mm", "#import <AppKit/AppKit.h>"),
        ("services/a.mm", "  # import <Foundation/Foundation.h>"),
        ("input/a.cpp", "#include <HIServices/AXError.h>"),
        ("platform/a.h", "#include <UniformTypeIdentifiers/UTType.h>"),
        ("inventory/a.cpp", "#include <objc/runtime.h>"),
        ("elsewhere/a.cpp", '#include "core/text.h"'),
    ]
    allowed = [
        ("ui/menu/a.cpp", '#include "ui/common/theme.h"'),
        ("ui/menu/a.cpp", '#include "ui/menu/menu_geometry.h"'),
        ("core/a.h", "#include <vector>"),
        ("core/a.h", "#include <unicode/uchar.h>"),
        ("ui/a.cpp", '#include "app/app_services.h"'),
        ("ui/a.cpp", "#include <QWidget>"),
        ("main/main.cpp", '#include "platform/x11/x11_platform.h"'),
        ("platform/x11/a.cpp", "#include <xcb/xcb.h>"),
        ("platform/linux/a.cpp", '#include "a.moc"'),
        ("platform/qt/a.cpp", "#ifdef __linux__"),
        ("platform/macos/a.mm", "#import <AppKit/AppKit.h>"),
        ("platform/macos/a.mm", '#import "platform/screens.h"'),
    ]
    wrong = [case for case in forbidden if not complaints_about(*case)]
    wrong += [case for case in allowed if complaints_about(*case)]
    return [f"the check misjudges {line!r} in {path}" for path, line in wrong]


def main():
    source = pathlib.Path(sys.argv[1])
    found = self_test()
    files = sorted([*source.rglob("*.h"), *source.rglob("*.cpp"), *source.rglob("*.mm")])
    if not files:
        found.append(f"no source file below {source}")
    for file in files:
        found += complaints_about(file.relative_to(source).as_posix(), file.read_text(encoding="utf-8"))
    print("\n".join(found) if found else f"{len(files)} files, every arrow points the right way")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
