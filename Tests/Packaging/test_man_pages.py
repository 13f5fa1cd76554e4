"""Man pages are read without a complaint."""

import unittest

from stranger import BUILD, PROGRAMS, StrangerTest, need, run


class ManPages(StrangerTest):

    def pages(self):
        return [BUILD / f"Packaging/{name}.1" for name in PROGRAMS]

    @need("man")
    def test_manHasNoWarnings(self):
        for page in self.pages():
            result = run("man", "--warnings", "-E", "UTF-8", "-l", page, cwd=self.folder,
                         env={"PATH": "/usr/bin:/bin", "MANWIDTH": "80", "LC_ALL": "C.UTF-8", "HOME": str(self.folder)})
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            self.assertIn("EXIT STATUS", result.stdout)

    @need("mandoc")
    def test_mandocHasNoWarnings(self):
        for page in self.pages():
            result = run("mandoc", "-Tlint", "-Wwarning", page)
            self.assertEqual((result.returncode, result.stdout), (0, ""))


if __name__ == "__main__":
    unittest.main()
