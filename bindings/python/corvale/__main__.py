"""The program `corvale`, which lies beside this file: `python -m corvale`, and what pip puts on the path."""

import os
import pathlib
import sys


def main() -> None:
    """Becomes the program, with the arguments of this process."""
    program = pathlib.Path(__file__).with_name("corvale")
    os.execv(program, [str(program), *sys.argv[1:]])


if __name__ == "__main__":
    main()
