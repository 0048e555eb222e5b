"""Says that the wheel holds compiled code; all else stands in pyproject.toml."""

import setuptools


class Compiled(setuptools.Distribution):
    """A distribution whose extension module was compiled before."""

    def has_ext_modules(self) -> bool:
        return True


setuptools.setup(distclass=Compiled)
