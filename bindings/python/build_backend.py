"""Builds the package `corvale`: CMake makes the library, the compiled module and the program, this puts
them beside the Python files. From Python 3.11 on it needs nothing but the standard library.

The same sources, compilers and SOURCE_DATE_EPOCH make the same wheel.
"""

from __future__ import annotations

import base64
import hashlib
import io
import os
import pathlib
import re
import stat
import subprocess
import sys
import sysconfig
import tarfile
import zipfile
from typing import Any, Dict, Iterable, List, Optional

if sys.version_info >= (3, 11):
    import tomllib
else:
    import tomli as tomllib

SOURCE = pathlib.Path(__file__).resolve().parents[2]
PACKAGE = SOURCE / "bindings/python/corvale"
LIBRARY = "libCorvale.so.9"
MODULE = f"_arrays{sysconfig.get_config_var('EXT_SUFFIX')}"
NEEDS = ("Building corvale takes CMake 3.23, a C++20 compiler, Python's headers, pybind11, CLI11 and nlohmann-json "
         "(Debian: cmake g++ python3-dev pybind11-dev libcli11-dev nlohmann-json3-dev).")

Settings = Optional[Dict[str, Any]]


def build_wheel(wheel_directory: str, config_settings: Settings = None,
                metadata_directory: Optional[str] = None) -> str:
    """Builds and writes the wheel; returns its file name."""
    files = {f"corvale/{file.name}": file.read_bytes() for file in _sources()}
    files.update({f"corvale/{name}": file.read_bytes() for name, file in _compiled().items()})
    return _write_wheel(pathlib.Path(wheel_directory), files)


def build_editable(wheel_directory: str, config_settings: Settings = None,
                   metadata_directory: Optional[str] = None) -> str:
    """Builds and writes a wheel that only points to a folder of links to the sources and to what was
    built: a change of a Python file is seen at once, one of C++ after `cmake --build`."""
    compiled = _compiled()
    package = _build_folder() / "editable/corvale"
    package.mkdir(parents=True, exist_ok=True)
    for old in package.iterdir():
        if old.is_symlink():
            old.unlink()
    for name, file in [*((file.name, file) for file in _sources()), *compiled.items()]:
        (package / name).symlink_to(file)
    return _write_wheel(pathlib.Path(wheel_directory), {"corvale.pth": f"{package.parent}\n".encode()})


def prepare_metadata_for_build_wheel(metadata_directory: str, config_settings: Settings = None) -> str:
    """Writes the metadata without building anything; returns the folder's name."""
    folder = pathlib.Path(metadata_directory) / f"{_stem()}.dist-info"
    folder.mkdir()
    for name, text in _metadata().items():
        (folder / name).write_bytes(text)
    return folder.name


prepare_metadata_for_build_editable = prepare_metadata_for_build_wheel


def build_sdist(sdist_directory: str, config_settings: Settings = None) -> str:
    """Packs the files under version control, or all of an unpacked sdist; returns the file name."""
    stem = _stem()
    with tarfile.open(pathlib.Path(sdist_directory) / f"{stem}.tar.gz", "w:gz") as archive:
        for name in _files_to_pack():
            archive.add(SOURCE / name, f"{stem}/{name}", recursive=False)
        information = tarfile.TarInfo(f"{stem}/PKG-INFO")
        text = _metadata()["METADATA"]
        information.size = len(text)
        archive.addfile(information, io.BytesIO(text))
    return f"{stem}.tar.gz"


def _files_to_pack() -> List[str]:
    if (SOURCE / ".git").exists():
        listed = subprocess.run(["git", "ls-files", "-z"], cwd=SOURCE, check=True, capture_output=True)
        return list(filter(None, listed.stdout.decode().split("\0")))
    left_out = {"build", "__pycache__", "PKG-INFO"}
    found = (file.relative_to(SOURCE) for file in sorted(SOURCE.rglob("*")) if not file.is_dir())
    return [str(file) for file in found if not left_out.intersection(file.parts)]


def _project() -> Dict[str, Any]:
    with open(SOURCE / "pyproject.toml", "rb") as file:
        project: Dict[str, Any] = tomllib.load(file)["project"]
    return project


def _version() -> str:
    """The version of the library is that of the package."""
    found = re.search(r"VERSION (\d+\.\d+\.\d+)", (SOURCE / "CMakeLists.txt").read_text())
    assert found is not None
    return found[1]


def _stem() -> str:
    return f"{_project()['name']}-{_version()}"


def _sources() -> Iterable[pathlib.Path]:
    return (file for file in sorted(PACKAGE.iterdir()) if file.suffix in (".py", ".pyi", ".typed"))


def _build_folder() -> pathlib.Path:
    return SOURCE / "build" / f"python-{sys.implementation.cache_tag}"


def _compiled() -> Dict[str, pathlib.Path]:
    """Builds library, module and program; returns where they are, by their names in the package."""
    build = _build_folder()
    parts = {"PYTHON": "ON", "TOOLS": "ON", "TESTS": "OFF", "EXAMPLES": "OFF", "BENCH": "OFF"}
    options = [f"-DCORVALE_BUILD_{part}={value}" for part, value in parts.items()]
    try:
        subprocess.run(["cmake", "-S", SOURCE, "-B", build, "-DCMAKE_BUILD_TYPE=Release",
                        "-DCMAKE_BUILD_RPATH=$ORIGIN", f"-DPython3_EXECUTABLE={sys.executable}", *options], check=True)
        subprocess.run(["cmake", "--build", build, "--target", "_arrays", "corvale_program", "--parallel",
                        str(os.cpu_count())], check=True)
    except (OSError, subprocess.CalledProcessError) as error:
        raise SystemExit(f"{error}\n{NEEDS}") from error
    return {MODULE: build / "bindings/python" / MODULE, LIBRARY: build / "corvale" / LIBRARY,
            "corvale": build / "tools/corvale"}


def _tag() -> str:
    """The interpreter and platform that the wheel is for."""
    python = f"cp{sys.version_info[0]}{sys.version_info[1]}"
    return f"{python}-{python}-{re.sub('[^0-9A-Za-z]', '_', sysconfig.get_platform())}"


def _metadata() -> Dict[str, bytes]:
    """What the folder .dist-info holds, but for the list of files."""
    project = _project()
    package = ["Metadata-Version: 2.1", f"Name: {project['name']}", f"Version: {_version()}",
               f"Summary: {project['description']}", f"Requires-Python: {project['requires-python']}"]
    for extra, requirements in project["optional-dependencies"].items():
        package += [f"Provides-Extra: {extra}",
                    *(f'Requires-Dist: {requirement}; extra == "{extra}"' for requirement in requirements)]
    scripts = ["[console_scripts]", *(f"{name} = {where}" for name, where in project["scripts"].items())]
    wheel = ["Wheel-Version: 1.0", "Generator: corvale", "Root-Is-Purelib: false", f"Tag: {_tag()}"]
    return {"METADATA": _lines(package), "WHEEL": _lines(wheel), "entry_points.txt": _lines(scripts)}


def _lines(lines: Iterable[str]) -> bytes:
    return "".join(f"{line}\n" for line in lines).encode()


def _write_wheel(folder: pathlib.Path, files: Dict[str, bytes]) -> str:
    info = f"{_stem()}.dist-info"
    files.update({f"{info}/{name}": text for name, text in _metadata().items()})
    record = [f"{name},sha256={_digest(data)},{len(data)}" for name, data in files.items()]
    files[f"{info}/RECORD"] = _lines([*record, f"{info}/RECORD,,"])

    name = f"{_stem()}-{_tag()}.whl"
    with zipfile.ZipFile(folder / name, "w", zipfile.ZIP_DEFLATED) as archive:
        for path, data in files.items():
            entry = zipfile.ZipInfo(path)  # dated 1980: the same wheel every time
            entry.compress_type = zipfile.ZIP_DEFLATED
            runs = ".so" in path or path == "corvale/corvale"
            entry.external_attr = (stat.S_IFREG | (0o755 if runs else 0o644)) << 16
            archive.writestr(entry, data)
    return name


def _digest(data: bytes) -> str:
    return base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
