"""Property lists made and told by Python's plistlib, for comparison.

plistlib_lists.py make SEED COUNT FOLDER   writes N.xml, N.binary and N.txt, what they hold
plistlib_lists.py tell FILE...             prints one line for each file: what it holds
"""

import datetime
import math
import plistlib
import random
import sys

REFERENCE = datetime.datetime(2001, 1, 1)


def units(text):
    return text.encode("utf-16-be", "surrogatepass")


def tell_string(text):
    data = units(text)
    told = ""
    for index in range(0, len(data), 2):
        unit = data[index] << 8 | data[index + 1]
        is_plain = 0x20 <= unit < 0x7F and chr(unit) not in '"\\'
        told += chr(unit) if is_plain else "\\u%04x" % unit
    return '"' + told + '"'


def tell(value):
    if isinstance(value, dict):
        keys = sorted(value, key=units)
        return "{" + ",".join(tell_string(key) + ":" + tell(value[key]) for key in keys) + "}"
    if isinstance(value, list):
        return "[" + ",".join(map(tell, value)) + "]"
    if isinstance(value, bool):
        return "true" if value else "false"
    if isinstance(value, int):
        return "i%d" % value
    if isinstance(value, float):
        return "rnan" if math.isnan(value) else "r%.17g" % value
    if isinstance(value, datetime.datetime):
        return "d%.17g" % (value - REFERENCE).total_seconds()
    if isinstance(value, bytes):
        return "<" + value.hex() + ">"
    return tell_string(value)


def make_string(source):
    alphabets = ["abcXYZ 09_", "<>&\"'\n\t]\\;={}()", "\u00e9\u00df\u20ac\u4e2d\ufeff\u2028\u0085", "\U0001f600\U00010000"]
    alphabet = "".join(source.sample(alphabets, source.randint(1, len(alphabets))))
    return "".join(source.choice(alphabet) for _ in range(source.choice([0, 1, 3, 14, 15, 16, 40, 300])))


def make_leaf(source):
    kind = source.randrange(7)
    if kind == 0:
        return make_string(source)
    if kind == 1:
        return source.randrange(-(2 ** source.randint(0, 63)), 2 ** source.randint(0, 64))
    if kind == 2:
        # Not 0.0 as well: equal numbers become one object, which then has the sign of the first.
        return source.choice([-0.0, 1.0, 0.1, math.inf, -math.inf, math.nan, 5e-324, source.uniform(-1e9, 1e9),
                              source.uniform(-1, 1) * 10.0 ** source.randint(-300, 300)])
    if kind == 3:
        return source.random() < 0.5
    if kind == 4:
        return REFERENCE + datetime.timedelta(seconds=source.randrange(-63_000_000_000, 252_000_000_000))
    if kind == 5:
        return source.randbytes(source.choice([0, 1, 2, 3, 15, 57, 200]))
    return source.choice([0, 255, 256, 65535, 65536, 2**32 - 1, 2**32, 2**63 - 1, 2**63, 2**64 - 1, -1, -(2**63)])


def make(source, depth=0):
    if depth == 5 or source.random() < 0.3 + 0.1 * depth:
        return make_leaf(source)
    count = source.choice([0, 1, 2, 5, 14, 15, 20]) if depth < 3 else source.randrange(4)
    if source.random() < 0.5:
        return [make(source, depth + 1) for _ in range(count)]
    return {make_string(source): make(source, depth + 1) for _ in range(count)}


def write_lists(seed, count, folder):
    source = random.Random(seed)
    for index in range(count):
        value = make(source)
        for name, fmt in (("xml", plistlib.FMT_XML), ("binary", plistlib.FMT_BINARY)):
            with open(f"{folder}/{index}.{name}", "wb") as file:
                plistlib.dump(value, file, fmt=fmt)
        with open(f"{folder}/{index}.txt", "w", encoding="ascii") as file:
            file.write(tell(value))


def tell_files(paths):
    for path in paths:
        with open(path, "rb") as file:
            print(tell(plistlib.load(file)))


if __name__ == "__main__":
    if sys.argv[1] == "make":
        write_lists(int(sys.argv[2]), int(sys.argv[3]), sys.argv[4])
    else:
        tell_files(sys.argv[2:])
