#!/usr/bin/env python3
"""Fails when docs/architecture.svg is not what scripts/draw_architecture.py draws from the sources now."""

import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))
import draw_architecture  # noqa: E402


class TheScript(unittest.TestCase):
    """Draws small trees that have one header in each folder."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.source = pathlib.Path(folder.name)
        for box in draw_architecture.PLACES:
            is_module = box == draw_architecture.SERVICES_OF_APP
            self.write(box + (".h" if is_module else "/header.h"), "platform/header.h" if box != "core" else None)
        self.write("platform/header.h", "core/header.h")

    def write(self, file, include=None):
        path = self.source / file
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(f'#include "{include}"\n' if include else "", encoding="utf-8")

    def draw(self):
        return draw_architecture.draw(self.source)

    def test_draws_another_picture_for_another_arrow(self):
        before = self.draw()
        self.write("ui/panel/other.cpp", "ui/common/header.h")
        self.assertNotEqual(self.draw(), before)

    def test_draws_the_same_picture_where_a_longer_way_says_it_already(self):
        before = self.draw()
        self.write("ui/panel/other.cpp", "core/header.h")
        self.assertEqual(self.draw(), before)

    def test_refuses_a_circle(self):
        self.write("core/other.cpp", "input/header.h")
        with self.assertRaisesRegex(SystemExit, "include each other"):
            self.draw()

    def test_refuses_a_folder_without_a_place(self):
        for folder in ("sound", "ui/sound", "platform/wayland"):
            with self.subTest(folder):
                self.write(f"{folder}/header.h")
                with self.assertRaisesRegex(SystemExit, f"src/{folder} has no place"):
                    self.draw()
                (self.source / folder / "header.h").unlink()

    def test_refuses_a_place_without_files(self):
        (self.source / "inventory/header.h").unlink()
        with self.assertRaisesRegex(SystemExit, "no files in inventory"):
            self.draw()


class ThePicture(unittest.TestCase):
    def test_is_what_the_script_draws(self):
        drawn = draw_architecture.draw(draw_architecture.ROOT / "src")
        is_current = draw_architecture.PICTURE.read_text(encoding="utf-8") == drawn
        self.assertTrue(is_current, "docs/architecture.svg is old: run scripts/draw_architecture.py")


if __name__ == "__main__":
    unittest.main()
