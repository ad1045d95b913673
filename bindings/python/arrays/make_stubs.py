"""Prints corvale/_arrays.pyi, the types of the compiled module, from the table in the module itself.

    python make_stubs.py > corvale/_arrays.pyi
"""

from __future__ import annotations

from typing import Any

from corvale import _arrays

HEAD = '''"""The types of the compiled module. Made by make_stubs.py from the module's own table.

A procedure whose operands are all scalars returns a scalar, otherwise an array of the broadcast
shape. Lists and tuples stand for the arrays that NumPy makes of them.
"""

from typing import Any, SupportsIndex, Union, overload

import numpy as np
import numpy.typing as npt

_List = Union[list[Any], tuple[Any, ...]]
_Real = Union[float, np.floating[Any], np.integer[Any]]
_Reals = Union[npt.NDArray[np.floating[Any]], npt.NDArray[np.integer[Any]], npt.NDArray[np.bool_], _List]
_Int = Union[int, np.integer[Any]]
_Ints = Union[npt.NDArray[np.integer[Any]], npt.NDArray[np.bool_], _List]
_Text = Union[bytes, str]
_Texts = Union[npt.NDArray[np.bytes_], npt.NDArray[np.str_], _List]
_Float64s = npt.NDArray[np.float64]
_Int32s = npt.NDArray[np.int32]
_Int64s = npt.NDArray[np.int64]
_Bools = npt.NDArray[np.bool_]
_Bytes = npt.NDArray[np.bytes_]

_TABLE: tuple[dict[str, Any], ...]
__version__: str
'''

LISTS = '''
def idupe(values: _Ints, *, out: _Int32s | None = ...) -> _Int32s: ...
def isort(values: _Ints, order: int = ..., *, out: _Int32s | None = ...) -> _Int32s: ...
def quick_sort(keys: _Texts, companion: _Ints | None = ..., *, out: tuple[_Bytes, _Int64s] | None = ...) -> tuple[_Bytes, _Int64s]: ...
def partition(low: int, high: int, keys: _Bytes, companion: _Int64s) -> int: ...
'''

# Of each type of operand: scalar and array that go in, scalar and array that come out.
TYPES = {
    "float64": ("_Real", "_Reals", "float", "_Float64s"),
    "int32": ("_Int", "_Ints", "int", "_Int32s"),
    "int64": ("_Int", "_Ints", "int", "_Int64s"),
    "bool": ("_Int", "_Ints", "bool", "_Bools"),
    "bytes": ("_Text", "_Texts", "bytes", "_Bytes"),
}


def either(scalar: str, array: str) -> str:
    return f"{scalar} | {array}"


def together(types: list[str]) -> str:
    return types[0] if len(types) == 1 else f"tuple[{', '.join(types)}]"


def signature(row: dict[str, Any], inputs: list[str], out: str, result: str) -> str:
    given = ", ".join(f"{name}: {type_}" for name, type_ in zip(row["arguments"], inputs))
    width = "width: int | None = ..., " if row["free_width"] else ""
    return f"def {row['name']}({given}, *, {width}out: {out} = ..., threads: int = ...) -> {result}: ..."


def array_inputs(row: dict[str, Any], first: int) -> list[str]:
    """Scalars before argument `first`, an array there, anything after it."""
    types = []
    for place, (kind, inner) in enumerate(row["inputs"]):
        scalar, array = TYPES[kind][:2]
        anything = array if inner else either(scalar, array)
        types.append(scalar if place < first else array if place == first else anything)
    if row["most_characters"]:
        types[-1] = "SupportsIndex"
    return types


def signatures(row: dict[str, Any]) -> list[str]:
    arrays = together([TYPES[kind][3] for kind, _ in row["outputs"]])
    out = f"{arrays} | None"
    if any(inner for _, inner in row["inputs"]):
        # Vectors and matrices: whether a number that comes out is one or many is seen in the call.
        shown = arrays if all(inner for _, inner in row["outputs"]) else "Any"
        return [signature(row, array_inputs(row, 0), out, shown)]
    scalars = together([TYPES[kind][2] for kind, _ in row["outputs"]])
    inputs = [TYPES[kind][0] for kind, _ in row["inputs"]]
    places = len(inputs)
    if row["most_characters"]:
        inputs[-1], places = "SupportsIndex", places - 1
    found = [signature(row, inputs, "None", scalars)]
    found += [signature(row, array_inputs(row, place), out, arrays) for place in range(places)]
    return [f"@overload\n{text}" for text in found]


def stub() -> str:
    """The whole text of the stub."""
    names = "".join(f'    "{name}",\n' for name in _arrays.__all__)
    return HEAD + f"__all__ = [\n{names}]\n" + "".join(f"\n{text}" for row in _arrays._TABLE for text in signatures(row)) + LISTS


if __name__ == "__main__":
    print(stub(), end="")
