"""What pages name in the project: files, tests and headings."""

import fnmatch
import functools
import json
import os
import pathlib
import re
import subprocess
import tempfile


class Project:
    """The sources, and a build of them."""

    def __init__(self, folder, build):
        self.folder = pathlib.Path(folder)
        self.build = pathlib.Path(build)

    @functools.cached_property
    def files(self):
        """All files and folders but those of builds, by their paths in the project."""
        found = set()
        for folder, folders, files in os.walk(self.folder):
            folders[:] = set(folders) - {".git", "build", "__pycache__"}
            found |= {os.path.relpath(os.path.join(folder, name), self.folder)
                      for name in folders + files}
        return found

    @functools.cached_property
    def tests(self):
        """The names of all tests of the build. They are listed from another folder, where ctest may
        leave its log: that of the build is in use."""
        with tempfile.TemporaryDirectory() as folder:
            pathlib.Path(folder, "CTestTestfile.cmake").write_text(
                f'subdirs("{self.build}")\n', encoding="utf-8")
            listing = subprocess.run(
                ["ctest", "--test-dir", folder, "-N"], check=True, stdout=subprocess.PIPE,
                encoding="utf-8").stdout
        return re.findall(r"^ *Test +#\d+: (\S+)", listing, re.MULTILINE)

    @functools.cached_property
    def presets(self):
        """The names of the presets that can be built."""
        presets = json.loads((self.folder / "CMakePresets.json").read_text(encoding="utf-8"))
        return {preset["name"] for preset in presets["buildPresets"]}

    def has(self, name):
        """Whether there is a file of that path or, without folders, of that name anywhere. NAME,
        COMPONENT and PRESET stand for any other words, and build/PRESET/ for the build."""
        if name.startswith("build/"):
            return (self.build / "/".join(name.split("/")[2:])).exists()
        name = name.rstrip("/")
        pattern = re.sub(r"NAME|COMPONENT|PRESET", "*", name)
        paths = self.files if "/" in name else {pathlib.PurePath(file).name for file in self.files}
        return any(fnmatch.filter(paths, pattern))

    def finds_tests(self, command):
        """Whether a ctest command selects any test by its expression."""
        expression = re.search(r"(?:-R|--tests-regex) '?([^ ']+)", command)
        return not expression or any(re.search(expression[1], test) for test in self.tests)


def anchors(page):
    """The anchors of a page's headings, as they are on the web."""
    headings = re.findall(r"^#+ +(.*)$", page, re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}
