"""The macOS bundle's Info.plist and the renderings its icon is made from, checked on any system.

usage: bundle_test.py INFO_PLIST PNG_DIRECTORY APP_ID VERSION MINIMUM_MACOS
"""

import plistlib
import struct
import sys
import unittest
from pathlib import Path

INFO_PLIST, PNGS, APP_ID, VERSION, MINIMUM = sys.argv[1:6]


class InfoPlist(unittest.TestCase):
    def setUp(self):
        with open(INFO_PLIST, "rb") as document:
            self.info = plistlib.load(document)

    def test_an_accessory_application_without_dock_icon_or_menu(self):
        self.assertIs(self.info["LSUIElement"], True)
        self.assertEqual(self.info["CFBundlePackageType"], "APPL")

    def test_names_and_identity(self):
        self.assertEqual(self.info["CFBundleIdentifier"], APP_ID)
        self.assertEqual(self.info["CFBundleExecutable"], "vantrel")
        # The panel stays up in front of the program under either name.
        self.assertEqual(self.info["CFBundleName"], "Vantrel")
        self.assertEqual(self.info["CFBundleDisplayName"], "Vantrel Solvane")
        self.assertEqual(self.info["CFBundleIconFile"], "vantrel.icns")

    def test_version_and_system(self):
        self.assertEqual(self.info["CFBundleShortVersionString"], VERSION)
        self.assertEqual(self.info["CFBundleVersion"], VERSION)
        self.assertEqual(self.info["LSMinimumSystemVersion"], MINIMUM)
        self.assertIs(self.info["NSHighResolutionCapable"], True)


class IconRenderings(unittest.TestCase):
    def test_every_size_of_the_iconset_is_there_at_its_size(self):
        for size in (16, 32, 64, 128, 256, 512, 1024):
            with self.subTest(size=size):
                header = (Path(PNGS) / f"{size}.png").read_bytes()[:24]
                self.assertEqual(header[:8], b"\x89PNG\r\n\x1a\n")
                self.assertEqual(struct.unpack(">II", header[16:24]), (size, size))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
