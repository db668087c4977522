"""The version of the package, which is that of the library."""

VERSION = "13.0"
