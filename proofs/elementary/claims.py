"""What the proofs of the fast phases share: reading constants and tables of the library, running Gappa."""
import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys

source = pathlib.Path(sys.argv[1]) / "corvale/numeric/elementary"
# Above 1 it makes every bound that much too small: a proof must then fail.
factor = float(sys.argv[2]) if len(sys.argv) > 2 else 1.0


def text_of(name):
    return (source / name).read_text()


def constant(name, symbol):
    return float.fromhex(re.search(rf"\b{symbol} = (\S+);", text_of(name))[1])


def bound(name, symbol):
    """The error that a rounding test allows for."""
    return constant(name, symbol) / factor


def table(name, symbol):
    text = text_of(name)
    return re.search(rf"\b{symbol}\[\] = \{{(.*?)\}};", text, re.S)[1]


def exact(x):
    return x.hex()


def check_coefficients(name, function, end, text):
    """The polynomials are repeated in the scripts: they must be those of the code."""
    code = text_of(name)
    code = code[code.index(function):]
    for coefficient in re.findall(r"-?0x[0-9a-f.]+p-\d+", code[:code.index(end)]):
        if coefficient.lstrip("-") not in text:
            sys.exit(f"{name}: {coefficient} is not what is proved")


def run(job):
    name, text = job
    try:
        result = subprocess.run(["gappa"], input=text, capture_output=True, text=True, timeout=60)
    except subprocess.TimeoutExpired:
        return name, False, "no proof in a minute"
    return name, result.returncode == 0, result.stderr


def prove(kinds):
    """Ends with 1 at the first claim that is not proved."""
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for kind, scripts in kinds.items():
            count = 0
            for name, holds, errors in pool.map(run, scripts()):
                if not holds:
                    pool.shutdown(wait=False, cancel_futures=True)
                    print(f"{kind}, {name}: the error of the fast phase is not proved\n{errors[-300:]}")
                    sys.exit(1)
                count += 1
            print(f"{kind}: error of the fast phase: {count} claims hold", flush=True)
