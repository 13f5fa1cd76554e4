"""What a desktop reads: the entry in its menus, the icon, the file type."""

import unittest
from xml.etree import ElementTree

from pictures import Picture
from stranger import SOURCE, StrangerTest, need

PACKAGING = SOURCE / "Packaging"


class DesktopFiles(StrangerTest):

    @need("desktop-file-validate")
    def test_entryIsValid(self):
        self.assertEqual(self.succeed("desktop-file-validate", PACKAGING / "Linux/velmora.desktop"), "")

    def test_entryOpensTheFileType(self):
        entry = (PACKAGING / "Linux/velmora.desktop").read_text(encoding="utf-8").splitlines()
        namespace = {"mime": "http://www.freedesktop.org/standards/shared-mime-info"}
        types = ElementTree.parse(PACKAGING / "Linux/velmora.xml").getroot().findall("mime:mime-type", namespace)
        self.assertEqual(["MimeType=" + kind.get("type") + ";" for kind in types],
                         [line for line in entry if line.startswith("MimeType=")])
        self.assertIn("Exec=velmora-desktop %f", entry)

    def test_iconsAreAsDrawn(self):
        self.succeed(PACKAGING / "draw-icons", self.folder)
        drawn = sorted(path.name for path in self.folder.iterdir())
        self.assertEqual(drawn, sorted(path.name for path in (PACKAGING / "Icons").glob("*.png")))
        for name in drawn:
            icon = Picture(PACKAGING / "Icons" / name)
            self.assertEqual(icon.rows, Picture(self.folder / name).rows, name)
            size = int(name.removeprefix("velmora-").removesuffix(".png"))
            self.assertEqual((icon.width, icon.height), (size, size))


if __name__ == "__main__":
    unittest.main()
