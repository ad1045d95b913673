"""Corvale in Python: the library's procedures over arrays, and its C API in `corvale.capi`.

    import corvale
    corvale.num_to_alpha5(100000)                    # b'A0000'
    corvale.alpha5_to_num(records["satellite"])      # a million codes, int32
    inverse, x = corvale.cholesky(covariances, residuals)

    for finding in corvale.check("orbit.inp"):       # what corvale check finds
        print(finding)

What holds for every procedure over arrays:

Operands  Scalars, arrays, and what NumPy makes an array of: lists, a Series of pandas, whatever has
          `__array__` or a buffer. They are broadcast together as NumPy does; all scalars give a
          scalar. An array of the procedure's own type is walked where it lies, whatever its
          strides; another is converted first. Shapes are written (...) for any axes; those of a
          vector or matrix come last.
Texts     bytes, or str in ASCII; arrays have the type S<width>. An element is a text of that width,
          filled with blanks: the NULs with which NumPy fills it count as blanks. Results are bytes
          as wide as the text given, blank-filled. Positions count from 1.
out       Arrays of the type and shape of the results, a tuple where there are several, to be
          written instead of new ones. An operand may be written over.
Errors    TypeError for an operand of another kind, OverflowError for an integer that does not fit
          the type, ValueError for shapes that do not fit and characters outside ASCII. Values
          never raise: the docstrings say what they give.
Masks     Of masked arrays the results are masked where any of their operands is; a vector or matrix
          with one masked element is masked. `out` has to be a masked array then.
Threads   The interpreter's lock is free while arrays are worked on. Any number of threads at once.
          `threads=4` shares the elements of one call among four; the results are the same.
NumPy     Needed for arrays and lists, not for scalars.

Exact: results are the same to the last bit as those of the C++ procedures that the docstrings name.
"""

import ctypes as _ctypes

from corvale import capi as capi

# One library for both parts: what is loaded first, by whatever path, serves the compiled module too.
_ctypes.CDLL(capi.library_path(), mode=_ctypes.RTLD_LOCAL)

from corvale import _arrays  # noqa: E402
from corvale._arrays import *  # noqa: E402,F403
from corvale._arrays import __version__ as __version__  # noqa: E402
from corvale.findings import Finding as Finding  # noqa: E402
from corvale.findings import check as check  # noqa: E402

__all__ = ["Finding", "capi", "check"]
__all__ += _arrays.__all__
