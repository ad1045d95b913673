"""Builds the wheel of the package `corvale`: CMake makes the library and the compiled module, this
puts them beside the Python files. It needs nothing but the standard library.

The same sources, compilers and SOURCE_DATE_EPOCH make the same wheel.
"""

from __future__ import annotations

import base64
import hashlib
import os
import pathlib
import re
import subprocess
import sys
import sysconfig
import tarfile
import zipfile
from typing import Any, Dict, Optional

SOURCE = pathlib.Path(__file__).resolve().parents[2]
PACKAGE = SOURCE / "bindings/python/corvale"
NEEDS = ("Building corvale takes CMake 3.23, a C++20 compiler, Python's headers and pybind11 "
         "(Debian: cmake g++ python3-dev pybind11-dev).")

Settings = Optional[Dict[str, Any]]


def build_wheel(wheel_directory: str, config_settings: Settings = None,
                metadata_directory: Optional[str] = None) -> str:
    """Builds and writes the wheel; returns its file name."""
    build = _compiled()
    module = f"_arrays{sysconfig.get_config_var('EXT_SUFFIX')}"
    files = {f"corvale/{file.name}": file.read_bytes() for file in sorted(PACKAGE.iterdir())
             if file.suffix in (".py", ".pyi", ".typed")}
    files[f"corvale/{module}"] = (build / "bindings/python" / module).read_bytes()
    files["corvale/libCorvale.so.9"] = (build / "corvale/libCorvale.so.9").read_bytes()
    return _write_wheel(pathlib.Path(wheel_directory), files)


def prepare_metadata_for_build_wheel(metadata_directory: str,
                                     config_settings: Settings = None) -> str:
    """Writes the metadata without building anything; returns the folder's name."""
    folder = pathlib.Path(metadata_directory) / f"corvale-{_version()}.dist-info"
    folder.mkdir()
    for name, text in _metadata().items():
        (folder / name).write_bytes(text)
    return folder.name


def build_sdist(sdist_directory: str, config_settings: Settings = None) -> str:
    """Packs the files under version control; returns the file name."""
    stem = f"corvale-{_version()}"
    listed = subprocess.run(["git", "ls-files", "-z"], cwd=SOURCE, check=True, capture_output=True)
    with tarfile.open(pathlib.Path(sdist_directory) / f"{stem}.tar.gz", "w:gz") as archive:
        for name in filter(None, listed.stdout.decode().split("\0")):
            archive.add(SOURCE / name, f"{stem}/{name}")
    return f"{stem}.tar.gz"


def _version() -> str:
    """The version of the library is that of the package."""
    found = re.search(r"VERSION (\d+\.\d+\.\d+)", (SOURCE / "CMakeLists.txt").read_text())
    assert found is not None
    return found[1]


def _compiled() -> pathlib.Path:
    """Builds library and module; returns the folder."""
    build = SOURCE / "build" / f"python-{sys.implementation.cache_tag}"
    parts = {"PYTHON": "ON", "TESTS": "OFF", "TOOLS": "OFF", "EXAMPLES": "OFF", "BENCH": "OFF"}
    options = [f"-DCORVALE_BUILD_{part}={value}" for part, value in parts.items()]
    try:
        subprocess.run(["cmake", "-S", SOURCE, "-B", build, "-DCMAKE_BUILD_TYPE=Release",
                        f"-DPython3_EXECUTABLE={sys.executable}", *options], check=True)
        subprocess.run(["cmake", "--build", build, "--target", "_arrays", "--parallel",
                        str(os.cpu_count())], check=True)
    except (OSError, subprocess.CalledProcessError) as error:
        raise SystemExit(f"{error}\n{NEEDS}") from error
    return build


def _tag() -> str:
    """The interpreter and platform that the wheel is for."""
    python = f"cp{sys.version_info[0]}{sys.version_info[1]}"
    return f"{python}-{python}-{re.sub('[^0-9A-Za-z]', '_', sysconfig.get_platform())}"


def _metadata() -> Dict[str, bytes]:
    """What the folder .dist-info holds, but for the list of files."""
    package = ("Metadata-Version: 2.1", "Name: corvale", f"Version: {_version()}",
               "Summary: Foundation library for orbital analysis, over arrays",
               "Requires-Python: >=3.9", "Provides-Extra: arrays",
               'Requires-Dist: numpy; extra == "arrays"')
    wheel = ("Wheel-Version: 1.0", "Generator: corvale", "Root-Is-Purelib: false", f"Tag: {_tag()}")
    return {"METADATA": _lines(package), "WHEEL": _lines(wheel)}


def _lines(lines: Any) -> bytes:
    return "".join(f"{line}\n" for line in lines).encode()


def _write_wheel(folder: pathlib.Path, files: Dict[str, bytes]) -> str:
    info = f"corvale-{_version()}.dist-info"
    files.update({f"{info}/{name}": text for name, text in _metadata().items()})
    record = [f"{name},sha256={_digest(data)},{len(data)}" for name, data in files.items()]
    files[f"{info}/RECORD"] = _lines([*record, f"{info}/RECORD,,"])

    name = f"corvale-{_version()}-{_tag()}.whl"
    with zipfile.ZipFile(folder / name, "w", zipfile.ZIP_DEFLATED) as archive:
        for path, data in files.items():
            entry = zipfile.ZipInfo(path)  # dated 1980: the same wheel every time
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = (0o755 if ".so" in path else 0o644) << 16
            archive.writestr(entry, data)
    return name


def _digest(data: bytes) -> str:
    return base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
