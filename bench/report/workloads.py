"""What the page shows: the workloads of each table, the goals, the limits, the growth expected."""
import collections
import math

# One line of a table. `goals` are the least ratios, a peer's time over ours; `limit` is the topic and
# peer of what cannot be undercut, and `limit_goal` the most that our time may be of it.
Row = collections.namedtuple("Row", "label topic own size goals limit limit_goal",
                             defaults=["Corvale", None, {}, None, None])
# `peers` are the columns beside our own; `sizes` those that the summary shows, all where there are none.
Section = collections.namedtuple("Section", "title note peers rows item sizes", defaults=["call", ()])

SIZES = [10, 100, 1000, 10_000, 100_000, 1_000_000, 10_000_000]
PATTERNS = ["Random", "Sorted", "Reversed", "NearlySorted", "Equal", "TwoValues", "Few", "OrganPipe",
            "TwoLists", "Prefix", "LastByte", "Bytes"]
ORDERS = [3, 6, 10, 16, 32, 64, 100, 128, 200, 300, 500, 512, 1000]


def card_rows():
    for percent, gfortran in ((1, 60), (25, 15), (100, 80)):
        topic = f"CardFile {percent} %"
        yield Row(f"{percent} % of the lines are cards", topic,
                  goals={"gfortran": gfortran, "getline+strtod": 6}, limit=(topic, "read() alone"))


NUMBER, CALL = ("Limit", "number"), ("Limit", "call")
READING = [Row("StrToReal, fields of 5 to 20", "RealField", limit=NUMBER,
               goals={"strtod": 3, "from_chars": 1, "fast_float": 1}),
           Row("StrToInt, fields of 5 to 12", "IntegerField", limit=NUMBER,
               goals={"strtol": 2, "atoi": 2, "from_chars": 1})]
CODES = [Row(name, name, goals=goals, limit=CALL) for name, goals in (
    ("NumToAlpha5", {"snprintf": 4}), ("Alpha5ToNum", {"strtol": 5}),
    ("DegToDDMMSSSSS_Str", {"snprintf": 8}), ("DegToHHMMSSS_Str", {"snprintf": 8}))]
VECTORS = [Row(name, name, goals=goals, limit=CALL) for name, goals in (
    ("Mag", {"Eigen": 1}), ("Cross", {"Eigen": 1}), ("Rotate", {"Eigen_AngleAxis": 1.5}))]
# A C library's time over ours: the goals allow for what correct rounding costs.
PROCEDURES = [Row(name, f"Elementary {name}", goals={"glibc": round(1 / most, 2)}, limit=CALL) for name, most in (
    ("RodriguesRot", 1.1), ("AcTan", 1.1), ("Rotate", 1.3), ("CubRt", 1.3), ("AngleOf2Vecs", 1.5), ("SerExp", 1.7),
    ("AcSin", 2.0))]
FUNCTIONS = [Row(name, f"Elementary {name}", limit=CALL) for name in (
    "Sin", "Cos", "ArcTan", "ArcTan2", "ArcCos", "Exp", "CubeRoot")]
SEARCHES = [Row(f"FindRecIdx, {spacing}", f"FindRecIdx_{spacing}", goals=goals, limit=CALL) for spacing, goals in (
    ("even", {"upper_bound": 4, "branchless": 1}), ("jittered", {"branchless": 1}), ("quadratic", {"branchless": 1}),
    ("exponential", {"upper_bound": 0.4, "branchless": 1}))]


def written_rows():
    for label, topic in (("Fx0ToAx, 6 decimals", "FixedSix"), ("Fx0ToAx, 12 decimals", "FixedTwelve"),
                         ("Fx0ToSignAx, 8 decimals", "FixedSignEight")):
        yield Row(label, topic, limit=NUMBER,
                  goals={"snprintf": 6, "to_chars": 2, "fmt": 2, "double-conversion": 2})


def text_rows():
    for name in ("ToUpperCase", "NullToSpace", "BlankToZeroChar", "IsBlankOrNull", "ReplaceString"):
        yield Row(name, f"Text512 {name}", limit=(f"Text512 {name}", "memcpy"), limit_goal=1)
    yield Row("RemSpaceSlashChars", "Text512 RemSpaceSlashChars", goals={"character loop": 20},
              limit=("Text512 ToUpperCase", "memcpy"))


def list_rows():
    for name, goal in (("IDupe", 3), ("ISort", 2)):
        for size in (30, 100, 1000, 10_000, 100_000, 1_000_000):
            yield Row(f"{name}, {size:,} integers", name, size=size, limit=("Limit", "integers"),
                      goals={"std_sort_unique": goal} if size == 1_000_000 else
                      {"vqsort_unique": 1, "ipnsort_dedup": 1.6} if name == "ISort" and size >= 1000 else {})


def solver_goals(order):
    if order <= 10:
        return {"Eigen": 2, "plain": 1.5}
    if order in (32, 64, 100, 128, 200):
        return {"OpenBLAS": 1.5, "Eigen": 2}
    return {300: {"OpenBLAS": 1.05, "LAPACK": 4}, 500: {"OpenBLAS": 1.05, "LAPACK": 4},
            1000: {"OpenBLAS": 1}}.get(order, {})


def inverse_goals(order):
    if order <= 10:
        return {"Eigen": 1.5, "plain": 1.1}
    return {"OpenBLAS": 1.25, "Eigen": 1.3} if order in (32, 64, 100, 128, 200) else solver_goals(order)


def matrix_rows():
    """Flops: n^3 of a Cholesky with its inverse, 2 n^3 of an inverse with pivots."""
    for order in ORDERS:
        yield Row(f"Cholesky, {order}", "Cholesky", size=order, goals=solver_goals(order), limit=order ** 3)
    for order in ORDERS:
        yield Row(f"MtxInv, {order}", "Inverse", size=order, goals=inverse_goals(order), limit=2 * order ** 3)


def other_matrix_rows():
    for order in ORDERS:
        yield Row(f"Cholesky2, {order}", "Cholesky", "Corvale2", order, {"Corvale": 1 / 1.2}, order ** 3)
    for order in ORDERS:
        yield Row(f"MInv, {order}", "Inverse", "CorvaleMInv", order,
                  {name: least for name, least in inverse_goals(order).items() if name in ("OpenBLAS", "Eigen")},
                  2 * order ** 3)


def packed_rows():
    for name, most in (("SqrMtx2Lta", 0.75), ("Lta2SqrMtx", 1.3)):
        for order in (6, 32, 100, 128, 200, 300, 500, 512, 1000):
            yield Row(f"{name}, {order}", "Packed", name, order, limit=("Packed", "memcpy"),
                      limit_goal=most if order >= 100 else None)


def sort_rows():
    for pattern in PATTERNS:
        for size in SIZES:
            goals = {"pdqsort": 1, "pdqsort_branchless": 1}
            if pattern == "Random" and size in (10_000, 1_000_000):
                goals = {"pdqsort": 1.4, "pdqsort_branchless": 1.4, "std_sort": 2}
            yield Row(f"{pattern}, {size:,}", pattern, size=size, goals=goals, limit=("Limit", "pass"))


def log_rows():
    for name in ("TraceLogInfo", "LogMessage"):
        for threads, most in (("", 1.06), (" 8 threads", 1.15)):
            topic = f"LogLine {name}{threads}"
            yield Row(f"{name}{',' if threads else ''}{threads}", topic, limit=(topic, "write() alone"),
                      goals={"spdlog": 1, "fprintf+fflush": 1}, limit_goal=most)


SECTIONS = [
    Section("Card files", "Loading a file of 200,000 lines. The cards are filled to column 512 with numbers of 17 "
            "digits; the other lines are comments, blank lines and cards of other programs. gfortran is a loop with "
            "its list-directed read. The limit is `read()` of the same file.",
            ["gfortran", "getline+strtod"], list(card_rows()), "file"),
    Section("Numbers out of text", "20,000 right-aligned fields; `from_chars` and fast_float after skipping the blanks. "
            "The limit is what an exact conversion cannot do without: 16 characters, two products of 64 bits by 64.",
            ["strtod", "strtol", "atoi", "from_chars", "fast_float", "double-conversion"], READING, "number"),
    Section("Numbers into text", "20,000 values from 0.001 to 1e7 with all digits in use. The limit is the same.",
            ["snprintf", "to_chars", "fmt", "double-conversion"], list(written_rows()), "number"),
    Section("Rows of numbers", "`CompressCsvLine` of rows of 20 fields of 23 characters, against a state "
            "machine that goes from character to character. The limit is a copy of the row.",
            ["machine"], [Row("CompressCsvLine", "CsvLine", goals={"machine": 12}, limit=("Limit", "row"))], "row"),
    Section("Texts of 512 characters", "The limit is a library call of `memcpy` for 512 bytes.",
            ["character loop"], list(text_rows())),
    Section("Codes and degrees", "The limit is a call into the library that does nothing.", ["snprintf", "strtol"],
            CODES),
    Section("Vectors", "Eigen's vectors are called in a shared library, as ours are; `Eigen_inline` shows what a "
            "caller gains who compiles them in. The limit is a call into the library that does nothing.",
            ["Eigen", "Eigen_inline", "Eigen_AngleAxis"], VECTORS),
    Section("Elementary functions", "The procedures that need one, then the functions alone, with typical arguments. "
            "Ours are correctly rounded, without FMA; glibc's, with FMA, and musl's are off by a unit now and then. The "
            "limit is a call into the library that does nothing.",
            ["glibc", "musl"], PROCEDURES + FUNCTIONS),
    Section("Search in a table", "100,000 values, evenly spaced, evenly but for a random part, and with "
            "distances that grow in proportion and exponentially. branchless is a bisection without a branch that "
            "depends on the table, with prefetches. The limit is a call into the library that does nothing.",
            ["upper_bound", "branchless", "plain"],
            SEARCHES),
    Section("Getters of the C API", "The limit is a call into the library that does nothing; the last two fill 128 "
            "characters.", [], [Row(name, name, limit=CALL) for name in ("GetElsetKeyMode", "GetLastErrMsg",
                                                                       "CorvaleGetInfo")]),
    Section("Lists of integers", "Nanoseconds an integer; half of the values occur more than once. vqsort is "
            "Highway's, ipnsort Rust's `sort_unstable`, each with the repeats dropped. The limit is a copy of the list.",
            ["std_sort_unique", "vqsort_unique", "ipnsort_dedup", "plain"], list(list_rows()), "integer", (100, 10_000, 1_000_000)),
    Section("Matrices", "By order. Cholesky is factor, solution and inverse, with dpotrf, dpotrs and dpotri of OpenBLAS "
            "and the reference LAPACK, LLT of Eigen; `MtxInv` is dgetrf with dgetri, PartialPivLU. The limit is the time "
            "of the multiplications and additions (n^3 and 2 n^3 for a peer's way of doing it) with all units of the "
            "core busy, without FMA.",
            ["OpenBLAS", "Eigen", "LAPACK", "plain"], list(matrix_rows()), sizes=(3, 6, 10, 32, 100, 300, 1000)),
    Section("Cholesky2 and MInv", "`Cholesky2` beside `Cholesky`; `MInv` inverts positive definite matrices in "
            "its own way, beside the general inverses of the peers.",
            ["Corvale", "OpenBLAS", "Eigen", "plainMInv"], list(other_matrix_rows()), sizes=(6, 32, 100, 1000)),
    Section("Packed matrices", "The limit is `memcpy` of the square.", [], list(packed_rows()), sizes=(6, 100, 1000)),
    Section("Sorting", "Nanoseconds a key of 32 characters with its companion. The peers sort records of both; "
            "all but qsort compare eight bytes at a time as Corvale does. Plain is a "
            "quicksort with the last key as pivot; ipnsort and driftsort are Rust's, spinsort and flat_stable_sort "
            "Boost's. The limit is a copy of keys and companions.",
            ["pdqsort", "pdqsort_branchless", "spinsort", "flat_stable_sort", "ipnsort", "driftsort", "std_sort", "qsort",
             "plain"], list(sort_rows()), "key", (100, 10_000, 1_000_000)),
    Section("Log lines", "One message of 128 characters to the open log. spdlog flushes each line. Eight threads write "
            "on all cores and are timed by the wall clock. The limit is `write()` of the line.",
            ["spdlog", "fprintf+fflush"], list(log_rows()), "line"),
]

# The short table of the README: (label, topic, size, the peers of whom the fastest is shown).
SUMMARY = [
    ("load a card file, 1 % cards", "CardFile 1 %", None, ["gfortran", "getline+strtod"]),
    ("load a card file, all cards", "CardFile 100 %", None, ["gfortran", "getline+strtod"]),
    ("read a real", "RealField", None, ["strtod", "from_chars", "fast_float", "double-conversion"]),
    ("write a real, 12 decimals", "FixedTwelve", None, ["snprintf", "to_chars", "fmt", "double-conversion"]),
    ("Cholesky with inverse, order 6", "Cholesky", 6, ["OpenBLAS", "Eigen", "LAPACK"]),
    ("Cholesky with inverse, order 100", "Cholesky", 100, ["OpenBLAS", "Eigen", "LAPACK"]),
    ("invert, order 100", "Inverse", 100, ["OpenBLAS", "Eigen", "LAPACK"]),
    ("sort a million random keys, each", "Random", 1_000_000, ["pdqsort", "pdqsort_branchless", "std_sort", "qsort"]),
    ("log a line", "LogLine LogMessage", None, ["spdlog", "fprintf+fflush"]),
]

# How cost should grow with size: (workload, topic, peer, cost in words, cost as a function, and
# whether the measured time is that of an item, to be multiplied by the size).
LINEAR = ("n", lambda n: n)
SQUARE = ("n^2", lambda n: n ** 2)
CUBE = ("n^3", lambda n: n ** 3)
CONSTANT = ("1", lambda n: 1)
LOGARITHM = ("log n", math.log)
N_LOG_N = ("n log n", lambda n: n * math.log(n))
IN_RUNS = ("Sorted", "Reversed", "Equal", "OrganPipe", "TwoLists")  # one pass or two
Growth = collections.namedtuple("Growth", "label topic own cost per_item", defaults=["Corvale", LINEAR, False])
GROWTH = [
    Growth("card file, bytes", "CardFile"), Growth("one line of a card file, bytes", "LongLine"),
    Growth("log, lines", "LogLines"),
    *(Growth(f"{name}, characters", name) for name in ("ToUpperCase", "NullToSpace", "BlankToZeroChar",
                                                       "IsBlankOrNull", "ReplaceString", "RemSpaceSlashChars")),
    Growth("StrToReal, numbers", "StrToReal"), Growth("Fx0ToAx, numbers", "Fx0ToAx"),
    Growth("CompressCsvLine, fields of values", "CompressCsvLine_values"),
    Growth("CompressCsvLine, fields of zeros", "CompressCsvLine_zeros"),
    Growth("Cholesky, order", "Cholesky", cost=CUBE), Growth("Cholesky2, order", "Cholesky", "Corvale2", CUBE),
    Growth("MtxInv, order", "Inverse", cost=CUBE), Growth("MInv, order", "Inverse", "CorvaleMInv", CUBE),
    Growth("SqrMtx2Lta, order", "Packed", "SqrMtx2Lta", SQUARE),
    Growth("Lta2SqrMtx, order", "Packed", "Lta2SqrMtx", SQUARE),
    *(Growth(f"QuickSortIterative, {pattern}, keys", pattern,
             cost=LINEAR if pattern in IN_RUNS else N_LOG_N, per_item=True) for pattern in PATTERNS),
    Growth("IDupe, integers", "IDupe", per_item=True), Growth("ISort, integers", "ISort", per_item=True),
    Growth("FindRecIdx, even table", "FindRecIdx_even", cost=CONSTANT),
    Growth("FindRecIdx, exponential table", "FindRecIdx_exponential", cost=LOGARITHM),
]
