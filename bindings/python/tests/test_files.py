"""What the error of a file that cannot be opened tells: the message of the library, name and errno."""

from __future__ import annotations

import errno
import pickle
import tempfile

from corvale.capi import Corvale, CorvaleFileError

corvale = Corvale()
with tempfile.TemporaryDirectory() as folder:
    for call, name, reason in (
        (corvale.load_file, f"{folder}/none", errno.ENOENT),
        (corvale.load_file, folder, errno.EISDIR),
        (corvale.load_file, "", errno.ENOENT),
        (corvale.load_file, f"{folder}\\none", errno.ENOENT),
        (corvale.open_log_file, folder, None),
    ):
        try:
            call(name)
        except OSError as failure:
            assert isinstance(failure, CorvaleFileError) and str(failure) == corvale.last_error_message()
            assert (failure.errno, failure.filename) == (reason, name), failure.errno
            copy = pickle.loads(pickle.dumps(failure))
            assert (str(copy), copy.errno, copy.filename) == (str(failure), reason, name)
        else:
            raise AssertionError(f"opened: {name}")
