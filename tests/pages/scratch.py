"""Running the programs and commands of a page."""

import os
import pathlib
import subprocess
import tempfile


def package_settings():
    """What tells npm and apt where packages come from."""
    settings = {name: value for name, value in os.environ.items()
                if name.lower().startswith("npm_config_") or name.lower().endswith("_proxy")}
    own = pathlib.Path.home() / ".npmrc"
    if own.is_file():
        settings.setdefault("npm_config_userconfig", str(own))
    return settings


class Scratch:
    """A folder in which programs run one after the other, with data/ of the project in it."""

    def __init__(self, folder, project, build):
        self.folder = pathlib.Path(folder)
        self.build = build
        (self.folder / "docs" / "images").mkdir(parents=True)
        (self.folder / "data").symlink_to(project / "data")
        path = os.pathsep.join([str(self.evopath.parent), os.environ["PATH"]])
        self.environment = {"PATH": path, "LC_ALL": "C.UTF-8", "HOME": folder, **package_settings()}
        self.status = 0
        self.answering = {}

    @property
    def evopath(self):
        """The command-line tool."""
        return self.build / "tools" / "evopath" / "evopath"

    def run(self, arguments):
        """What a program prints on either stream, and its exit status."""
        done = subprocess.run(
            arguments, cwd=self.folder, check=False, env=self.environment,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
            encoding="utf-8")
        return done.stdout, done.returncode

    def run_command(self, command):
        """What a shell command prints; it finds the exit status of the one before in $?."""
        printed, self.status = self.run(["bash", "-c", f"(exit {self.status}); {command}"])
        return printed

    def answers(self, probe):
        """Whether a command that fetches a package succeeds, in a folder of its own."""
        if probe not in self.answering:
            with tempfile.TemporaryDirectory() as folder:
                done = subprocess.run(["bash", "-c", probe], cwd=folder, check=False, env=self.environment,
                                      stdin=subprocess.DEVNULL, capture_output=True)
            self.answering[probe] = done.returncode == 0
        return self.answering[probe]

    def written(self):
        """The files below docs/ that the commands have written, by their names there."""
        return {str(file.relative_to(self.folder / "docs")): file
                for file in (self.folder / "docs").rglob("*") if file.is_file()}
