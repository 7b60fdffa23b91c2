#!/usr/bin/env python3
"""Draws docs/architecture.svg: the folders below src/ and which includes which, read from the #include lines.

Stops with an error when a folder has no place in PLACES, when a place has no files, and when folders include each other
in a circle. A test fails while the picture is not what this draws.
"""

import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "tests/architecture"))
from check_includes import INCLUDE  # noqa: E402

PICTURE = ROOT / "docs/architecture.svg"

# Two targets share src/app: the services, which the menu reads, and the delegate, which stands above the menu.
SERVICES_OF_APP = "app/app_services"

# What each box says, its colour and where it stands: the column of its left side and how many columns it is wide.
# Its row follows from the arrows.
PLACES = {
    "main": ("main", "entry, command line, doctor", "program", 0, 8),
    "app": ("app", "AppDelegate: launch, requests", "program", 1, 2),
    SERVICES_OF_APP: ("app/app_services", "makes and owns the services", "program", 0, 2),
    "ui/menu": ("ui/menu", "status item", "ui", 2, 1),
    "ui/panel": ("ui/panel", "the switcher", "ui", 3, 1),
    "ui/windows": ("ui/windows", "settings, setup", "ui", 4, 1),
    "ui/common": ("ui/common", "theme, text", "ui", 3, 1),
    "input": ("input", "keys, one session, activation", "logic", 0, 2),
    "inventory": ("inventory", "which windows", "logic", 0, 1),
    "services": ("services", "settings, icons", "logic", 1, 1),
    "platform/simulated": ("platform/simulated", "virtual clock", "adapter", 5, 1),
    "platform/x11": ("platform/x11", "xcb; keyboard/", "adapter", 6, 1),
    "platform/linux": ("platform/linux", "D-Bus, files", "adapter", 6, 1),
    "platform/macos": ("platform/macos", "AppKit", "adapter", 7, 1),
    "platform/qt": ("platform/qt", "loop, HTTPS", "adapter", 6, 1),
    "platform": ("platform/*.h", "the interfaces", "base", 0, 8),
    "core": ("core", "values and rules: windows, rows, matching, texts", "base", 0, 8),
}
# Fill and border of each kind of box.
COLOURS = {
    "program": ("#ece6fa", "#7a5fc0"),
    "ui": ("#e0f3e8", "#3c9467"),
    "logic": ("#deebfb", "#3f74bd"),
    "adapter": ("#fdecd8", "#c07f2c"),
    "base": ("#e9edf2", "#6b7c90"),
}
COLUMN, ROW, BOX_WIDTH, BOX_HEIGHT, MARGIN = 138, 92, 128, 46, 24


def box_of(path):
    """The box of a path below src/: the deepest folder with a place, or the one module that has a box alone."""
    if path.startswith(SERVICES_OF_APP + "."):
        return SERVICES_OF_APP
    parts = pathlib.PurePosixPath(path).parts[:-1]
    for depth in range(len(parts), 0, -1):
        if "/".join(parts[:depth]) in PLACES and (depth == len(parts) or depth > 1):
            return "/".join(parts[:depth])
    raise SystemExit(f"src/{'/'.join(parts)} has no place in the picture: give it one in PLACES")


def read_arrows(source):
    """For each box, the boxes that its files include."""
    arrows = {}
    for file in sorted(path for path in source.rglob("*") if path.suffix in (".h", ".cpp", ".mm")):
        box = box_of(file.relative_to(source).as_posix())
        arrows.setdefault(box, set())
        for match in map(INCLUDE.match, file.read_text(encoding="utf-8").splitlines()):
            if match and (source / match.group(2)).is_file():
                arrows[box].add(box_of(match.group(2)))
    return {box: targets - {box} for box, targets in arrows.items()}


def heights(arrows):
    """How many arrows the longest way down from each box has."""
    known = {}

    def height(box, above):
        if box in above:
            raise SystemExit("these include each other: " + " -> ".join([*above[above.index(box):], box]))
        if box not in known:
            known[box] = 1 + max((height(target, [*above, box]) for target in sorted(arrows[box])), default=-1)
        return known[box]

    for box in sorted(arrows):
        height(box, [])
    return known


def without_detours(arrows):
    """The arrows less those that a longer way of arrows tells already."""

    def reachable(box):
        return set().union(*({target} | reachable(target) for target in arrows[box]))

    return {box: {target for target in targets if not any(target in reachable(other) for other in targets)}
            for box, targets in arrows.items()}


def frame_of(box, row, top_row):
    """Left, top, width and height of a box."""
    _, _, _, column, columns = PLACES[box]
    return (MARGIN + column * COLUMN, MARGIN + (top_row - row) * ROW,
            (columns - 1) * COLUMN + BOX_WIDTH, BOX_HEIGHT)


def draw_box(box, frame):
    name, note, kind, _, _ = PLACES[box]
    fill, border = COLOURS[kind]
    left, top, width, height = frame
    middle = left + width / 2
    return [f'<rect x="{left}" y="{top}" width="{width}" height="{height}" rx="7" fill="{fill}" stroke="{border}"/>',
            f'<text x="{middle:g}" y="{top + 20}" font-size="12.5" font-weight="600" fill="#1c2733">{name}</text>',
            f'<text x="{middle:g}" y="{top + 36}" font-size="11" fill="#4a5866">{note}</text>']


def places_on_edge(frames, arrows):
    """Where each arrow leaves and arrives: spread along the edges of narrow boxes, straight where a box is wide."""

    def middle(box):
        return frames[box][0] + frames[box][2] / 2

    def is_wide(box):
        return PLACES[box][4] == max(place[4] for place in PLACES.values())

    def spread(box, others):
        others = sorted(others, key=lambda other: (middle(other), other))
        left, _, width, _ = frames[box]
        return {other: left + width * (at + 1) / (len(others) + 1) for at, other in enumerate(others)}

    starts, ends = {}, {}
    for box in arrows:
        starts.update({(box, other): x for other, x in spread(box, arrows[box]).items()})
        into = [other for other in arrows if box in arrows[other]]
        ends.update({(other, box): x for other, x in spread(box, into).items()})
    for arrow in starts:
        if is_wide(arrow[0]) and is_wide(arrow[1]):
            starts[arrow] = ends[arrow] = middle(arrow[1])
        elif is_wide(arrow[0]):
            starts[arrow] = ends[arrow]
        elif is_wide(arrow[1]):
            ends[arrow] = starts[arrow]
    return starts, ends


def draw_arrows(frames, arrows):
    starts, ends = places_on_edge(frames, arrows)
    drawn = []
    for box, target in sorted(starts):
        x, y = starts[box, target], frames[box][1] + BOX_HEIGHT
        end_x, end_y = ends[box, target], frames[target][1] - 3
        # Straight down first, and over to the other column in the last row.
        bend = max(y, end_y - (ROW - BOX_HEIGHT) - 6)
        colour = COLOURS[PLACES[box][2]][1]
        drawn.append(f'<path d="M{x:g} {y}V{bend}C{x:g} {bend + 30} {end_x:g} {end_y - 32} {end_x:g} {end_y}" '
                     f'stroke="{colour}"/>')
        drawn.append(f'<path d="M{end_x - 4:g} {end_y - 7}h8l-4 8z" fill="{colour}"/>')
    return drawn


def draw(source):
    """The whole picture, as the text of an SVG file."""
    arrows = read_arrows(source)
    if arrows.keys() != PLACES.keys():
        raise SystemExit(f"no files in {', '.join(PLACES.keys() - arrows.keys())}: remove it from PLACES")
    rows = heights(arrows)
    frames = {box: frame_of(box, row, max(rows.values())) for box, row in rows.items()}
    width = 2 * MARGIN + 7 * COLUMN + BOX_WIDTH
    height = 2 * MARGIN + max(rows.values()) * ROW + BOX_HEIGHT
    lines = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" height="{height}">',
             "<title>The folders of src and which includes which</title>",
             # A background, so that the picture reads the same on a dark page.
             f'<rect width="{width}" height="{height}" rx="12" fill="#fbfcfe" stroke="#d5dce4"/>']
    lines += ['<g fill="none" stroke-width="1.4">', *draw_arrows(frames, without_detours(arrows)), "</g>",
              """<g text-anchor="middle" font-family="Inter, 'Segoe UI', Helvetica, Arial, 'DejaVu Sans', sans-serif">"""]
    for box in sorted(frames):
        lines += draw_box(box, frames[box])
    return "\n".join([*lines, "</g>", "</svg>"]) + "\n"


if __name__ == "__main__":
    PICTURE.write_text(draw(ROOT / "src"), encoding="utf-8")
