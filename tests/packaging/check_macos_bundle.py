#!/usr/bin/env python3
"""Fails when the parts of the macOS bundle do not say, or do, what they should.

There is no Mac here: the property lists are read, and the scripts are run with stand-ins for Apple's tools that write
down how they were called.
"""

import os
import pathlib
import plistlib
import subprocess
import sys
import tempfile

TOOLS = ["codesign", "ditto", "iconutil", "rsvg-convert", "xcrun"]
STAND_IN = '#!/bin/sh\nprintf "%s" "$(basename "$0")" >>"$CALLS"\nprintf " %s" "$@" >>"$CALLS"\necho >>"$CALLS"\n'


def information(packaging):
    """The property list as the build fills it in."""
    text = (packaging / "Info.plist.in").read_text(encoding="utf-8")
    for name, value in {
        "FERROWYN_BUNDLE_EXECUTABLE": "Ferrowyn",
        "PROJECT_VERSION": "1.2.3",
        "FERROWYN_MACOS_MINIMUM": "13.0",
    }.items():
        text = text.replace(f"@{name}@", value)
    return plistlib.loads(text.encode())


def complaints_about_information(found):
    expected = {
        "CFBundleName": "Ferrowyn",
        "CFBundleIdentifier": "com.larkmoor.Ferrowyn",
        "CFBundleExecutable": "Ferrowyn",
        "CFBundleIconFile": "Ferrowyn",
        "CFBundlePackageType": "APPL",
        "CFBundleShortVersionString": "1.2.3",
        "LSMinimumSystemVersion": "13.0",
        "LSUIElement": True,
        "NSHumanReadableCopyright": "© 2026 Ferrowyn",
    }
    return [f"{key} is {found.get(key)!r}, not {value!r}" for key, value in expected.items() if found.get(key) != value]


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
        environment = {"PATH": f"{self.folder / 'tools'}:{os.environ['PATH']}", "CALLS": str(self.calls), **variables}
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
    account = {
        "FERROWYN_NOTARY_APPLE_ID": "maker@example.org",
        "FERROWYN_NOTARY_TEAM_ID": "TEAM",
        "FERROWYN_NOTARY_PASSWORD": "word",
    }
    found = []
    for missing in account:
        status, calls = workshop.run("notarise.sh", bundle, **{k: v for k, v in account.items() if k != missing})
        if status == 0 or calls:
            found.append(f"notarise.sh works without {missing}")
    status, calls = workshop.run("notarise.sh", bundle, **account)
    steps = [call.split()[0:2] for call in calls]
    if status != 0 or steps != [["ditto", "-c"], ["xcrun", "notarytool"], ["xcrun", "stapler"]]:
        found.append(f"notarise.sh ended with {status} after {calls}")
    elif "--apple-id maker@example.org --team-id TEAM --password word" not in calls[1]:
        found.append(f"notarise.sh sends without the account: {calls[1]}")
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


def main():
    packaging = pathlib.Path(sys.argv[1]).resolve() / "packaging/macos"
    found = complaints_about_information(information(packaging))
    if plistlib.loads((packaging / "ferrowyn.entitlements").read_bytes()) != {}:
        found.append("the entitlements ask for an exception")
    with tempfile.TemporaryDirectory() as folder:
        workshop = Workshop(packaging, pathlib.Path(folder))
        found += complaints_about_signing(workshop)
        found += complaints_about_notarising(workshop)
        found += complaints_about_icon(workshop)
    print("\n".join(found) if found else "the bundle's parts are as they should be")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
