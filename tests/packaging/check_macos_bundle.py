#!/usr/bin/env python3
"""Fails when the parts of the macOS bundle do not say, or do, what they should.

  check_macos_bundle.py information VERSION INFO.PLIST…   as a build for a Mac has written them
  check_macos_bundle.py scripts SOURCES                   run with stand-ins for the tools that only a Mac has, which
                                                          write down how they were called
"""

import os
import pathlib
import plistlib
import shutil
import subprocess
import sys
import tempfile

TOOLS = ["brew", "cmake", "codesign", "ditto", "iconutil", "macdeployqt", "open", "otool", "rsvg-convert", "uname",
         "xcode-select", "xcrun"]
STAND_IN = '''#!/bin/sh
name=$(basename "$0")
printf "%s" "$name" >>"$CALLS"
printf " %s" "$@" >>"$CALLS"
echo >>"$CALLS"
case $name in
  uname) echo Darwin ;;
  otool) printf '%s\\n' "$LINKED" ;;
esac
'''


def complaints_about_information(path, version):
    """The property list as the build has filled it in."""
    found = plistlib.loads(path.read_bytes())
    expected = {
        "CFBundleName": "Ferrowyn",
        "CFBundleIdentifier": "com.larkmoor.Ferrowyn",
        "CFBundleExecutable": "Ferrowyn",
        "CFBundleIconFile": "Ferrowyn",
        "CFBundlePackageType": "APPL",
        "CFBundleShortVersionString": version,
        "CFBundleVersion": version,
        "LSMinimumSystemVersion": "13.0",
        "LSUIElement": True,
        "NSHumanReadableCopyright": "© 2026 Ferrowyn",
    }
    return [f"{path}: {key} is {found.get(key)!r}, not {value!r}"
            for key, value in expected.items() if found.get(key) != value]


class Workshop:
    """A folder with stand-ins for the tools, and a bundle to work on."""

    def __init__(self, packaging, folder):
        self.packaging = packaging
        self.folder = folder
        self.calls = folder / "calls"
        self.bundle = folder / "Ferrowyn.app"
        frameworks = self.bundle / "Contents/Frameworks"
        (frameworks / "QtCore.framework/Versions/A").mkdir(parents=True)
        (self.bundle / "Contents/PlugIns/platforms").mkdir(parents=True)
        (self.bundle / "Contents/PlugIns/platforms/libqcocoa.dylib").touch()
        tools = folder / "tools"
        tools.mkdir()
        for tool in TOOLS:
            (tools / tool).write_text(STAND_IN, encoding="utf-8")
            (tools / tool).chmod(0o755)

    def run(self, script, *arguments, **variables):
        """The exit status, and how the tools were called."""
        self.calls.write_text("", encoding="utf-8")
        environment = {"PATH": f"{self.folder / 'tools'}:{os.environ['PATH']}", "CALLS": str(self.calls),
                       "LINKED": "\t/usr/lib/libSystem.B.dylib", **variables}
        done = subprocess.run([self.packaging / script, *arguments], env=environment, capture_output=True, check=False)
        return done.returncode, self.calls.read_text(encoding="utf-8").splitlines()


def complaints_about_signing(workshop):
    bundle = str(workshop.bundle)
    found = []
    status, calls = workshop.run("sign.sh", bundle)
    if status == 0 or calls:
        found.append("sign.sh works without an identity")
    status, calls = workshop.run("sign.sh", bundle, FERROWYN_SIGNING_IDENTITY="Developer ID Application: Larkmoor")
    hardened = "codesign --force --sign Developer ID Application: Larkmoor --options runtime --timestamp "
    entitlements = f"--entitlements {workshop.packaging / 'ferrowyn.entitlements'} {bundle}"
    if status != 0 or len(calls) != 4:
        found.append(f"sign.sh ended with {status} after {calls}")
    elif not all(call.startswith(hardened) for call in calls[:3]):
        found.append(f"sign.sh does not harden everything: {calls}")
    elif calls[2] != hardened + entitlements or not calls[3].startswith("codesign --verify"):
        found.append(f"sign.sh does not sign the bundle last and verify it: {calls}")
    _, calls = workshop.run("sign.sh", bundle, FERROWYN_SIGNING_IDENTITY="-")
    if any("runtime" in call or "timestamp" in call for call in calls):
        found.append(f"sign.sh hardens what is for this Mac alone: {calls}")
    return found


def complaints_about_notarising(workshop):
    bundle = str(workshop.bundle)
    found = []
    status, calls = workshop.run("notarise.sh", bundle)
    if status == 0 or calls:
        found.append("notarise.sh works without an account")
    status, calls = workshop.run("notarise.sh", bundle, FERROWYN_NOTARY_PROFILE="maker")
    steps = [call.split()[0:2] for call in calls]
    if status != 0 or steps != [["ditto", "-c"], ["xcrun", "notarytool"], ["xcrun", "stapler"]]:
        found.append(f"notarise.sh ended with {status} after {calls}")
    elif not calls[1].endswith(" --wait --keychain-profile maker"):
        found.append(f"notarise.sh sends without the account: {calls[1]}")
    return found


def complaints_about_bundling(workshop):
    bundle = str(workshop.bundle)
    identity = {"FERROWYN_SIGNING_IDENTITY": "Developer ID Application: Larkmoor"}
    profile = {"FERROWYN_NOTARY_PROFILE": "maker"}
    deployed = ["macdeployqt", "otool"]
    signed = [*deployed, *4 * ["codesign"]]
    found = []
    for variables, expected, succeeds in [
        ({}, signed, True),
        (identity, signed, True),
        ({**identity, **profile}, [*signed, "ditto", "xcrun", "xcrun"], True),
        (profile, [], False),
        ({**identity, **profile, "LINKED": "\t/opt/homebrew/lib/QtCore"}, deployed, False),
    ]:
        status, calls = workshop.run("bundle.sh", bundle, **variables)
        if [call.split()[0] for call in calls] != expected or (status == 0) != succeeds:
            found.append(f"bundle.sh ended with {status} after {calls} given {variables}")
    return found


def complaints_about_running(workshop):
    """./run in a copy of its own, where everything is built already."""
    copy = workshop.folder / "copy"
    source = workshop.packaging.parent.parent
    shutil.copytree(source / "scripts", copy / "scripts")
    shutil.copytree(source / "packaging/macos", copy / "packaging/macos")
    shutil.copy(source / "run", copy)
    program = copy / "build/release/bin/Ferrowyn.app/Contents/MacOS/Ferrowyn"
    program.parent.mkdir(parents=True)
    program.write_text(STAND_IN, encoding="utf-8")
    program.chmod(0o755)
    found = []
    for arguments, expected in [([], "open build/release/bin/Ferrowyn.app"), (["--version"], "Ferrowyn --version")]:
        status, calls = workshop.run(copy / "run", *arguments)
        built = next((index for index, call in enumerate(calls) if call.startswith("cmake --build ")), None)
        signatures = [index for index, call in enumerate(calls) if call.startswith("codesign --force --sign - ")]
        if status != 0 or calls[-1:] != [expected] or built is None or not signatures or signatures[0] < built:
            found.append(f"run {arguments} ended with {status} after {calls}")
    return found


def complaints_about_icon(workshop):
    icon = workshop.folder / "Ferrowyn.icns"
    status, calls = workshop.run("make_icon.sh", "drawing.svg", str(icon))
    sides = {call.split()[2] for call in calls[:-1]}
    if status != 0 or len(calls) != 11 or sides != {"16", "32", "64", "128", "256", "512", "1024"}:
        return [f"make_icon.sh ended with {status} after {calls}"]
    if not calls[-1].startswith(f"iconutil --convert icns --output {icon}"):
        return [f"make_icon.sh makes no icon: {calls[-1]}"]
    return []


def complaints_about_scripts(packaging):
    found = []
    if plistlib.loads((packaging / "ferrowyn.entitlements").read_bytes()) != {}:
        found.append("the entitlements ask for an exception")
    if b"<!--" in (packaging / "ferrowyn.entitlements").read_bytes():
        found.append("the entitlements have a comment, which signing may refuse")
    with tempfile.TemporaryDirectory() as folder:
        workshop = Workshop(packaging, pathlib.Path(folder))
        found += complaints_about_signing(workshop)
        found += complaints_about_notarising(workshop)
        found += complaints_about_bundling(workshop)
        found += complaints_about_icon(workshop)
        found += complaints_about_running(workshop)
    return found


def main():
    if sys.argv[1] == "information":
        version, *paths = sys.argv[2:]
        found = [complaint for path in paths for complaint in complaints_about_information(pathlib.Path(path), version)]
        if not paths:
            found.append("there is no property list to read")
    else:
        found = complaints_about_scripts(pathlib.Path(sys.argv[2]).resolve() / "packaging/macos")
    print("\n".join(found) if found else "the bundle's parts are as they should be")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
