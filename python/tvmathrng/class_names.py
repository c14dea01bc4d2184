"""The names of the bit generators' classes, and their stubs.

    class_names.py GENERATORS.DEF < __init__.pyi    the stubs with a class for each generator
"""

import re
import sys


def class_name(core):
    """Returns the name of the class for a core generator: philox4x32 gives Philox4x32, mrg32k3a MRG32k3a.

    Leading letters with a vowel are a word, others are initials.
    """
    letters = re.match("[a-z]+", core)[0]
    word = any(letter in "aeiou" for letter in letters)
    return (letters.capitalize() if word else letters.upper()) + core[len(letters) :]


if __name__ == "__main__":
    with open(sys.argv[1], encoding="utf-8") as rows:
        cores = re.findall(r"^TFL_GENERATOR\(\w+, (\w+),", rows.read(), re.MULTILINE)
    classes = "".join(f"class {class_name(core)}(BitGenerator): ...\n" for core in cores)
    sys.stdout.write(sys.stdin.read() + "\n" + classes)
