"""Compares names of code pages as Unicode Technical Standard 22 defines it."""
import re


def key(name):
    """Returns the letters, in lower case, and the digits, without leading zeros: the same as Key in ccsid_names.cpp."""
    return re.sub(r"[^a-z0-9]", "", re.sub(r"(?<!\d)0+(?=\d)", "", name.lower()))
