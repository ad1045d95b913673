"""Loads an input file and prints what its cards set.

    load_file.py INPUT-FILE
"""

import sys

from corvale.capi import Corvale, CorvaleError


def main(name: str) -> None:
    corvale = Corvale()
    corvale.load_file(name)
    print(f"element-set key mode {corvale.elset_key_mode}, all-key mode {corvale.all_key_mode}")
    for place, value in enumerate(corvale.moic_data(), 1):
        if value != 0.0:
            print(f"MOIC({place}) = {value!r}")


if len(sys.argv) != 2:
    sys.exit("usage: load_file.py INPUT-FILE")
try:
    main(sys.argv[1])
except (CorvaleError, ValueError, OSError) as failure:
    sys.exit(f"load_file.py: {failure}")
