# Walks the table of the C API and proves that this binding declares and calls all of it.

library(corvale)
suppressMessages(library(bit64))

# Reals are compared by their bits.
expect <- function(got, wanted) {
    if (!identical(got, wanted, num.eq = FALSE, single.NA = FALSE)) stop("got ", deparse1(got), ", wanted ", deparse1(wanted))
}

# That a call fails with this message of the library, or is refused where there is none.
fails <- function(call, message = NULL) {
    reason <- tryCatch({ call; NULL }, error = identity)
    if (is.null(reason)) stop("no failure of ", deparse1(substitute(call)))
    expect(if (inherits(reason, "corvale_error")) conditionMessage(reason), message)
}

# How api.h has to declare an argument of the table.
declared <- function(name, kind, width, way) {
    types <- c(text = "char", char = "char", int32 = "int32_t", int64 = "int64_t", real64 = "double")
    text <- paste(types[[kind]], name)
    if (width == "1" && way == "in") return(text)
    paste0(if (way == "in") "const ", text, "[", sub("count", "", width), "]")
}

functions <- character()
arguments <- list()
for (line in strsplit(readLines(Sys.getenv("CORVALE_INTERFACE")), " ")) {
    if (identical(line[1L], "function")) {
        functions[line[2L]] <- sub("int32", "int32_t", line[3L])
        arguments[[line[2L]]] <- character()
    } else if (identical(line[1L], "argument")) {
        name <- names(functions)[length(functions)]
        arguments[[name]] <- c(arguments[[name]], do.call(declared, as.list(line[2:5])))
    }
}
wanted <- vapply(names(functions), function(name) {
    taken <- if (length(arguments[[name]]) == 0L) "void" else paste(arguments[[name]], collapse = ", ")
    sprintf("F(%s, %s, (%s))", functions[[name]], name, taken)
}, "")
header <- gsub("[\\\\ \n]+", " ", paste(readLines("src/api.h"), collapse = "\n"))
have <- regmatches(header, gregexpr("F\\(\\w+, \\w+, \\([^)]+\\)\\)", header))[[1L]]
expect(have, unname(wanted))

# Every call of the library is remembered.
called <- character()
call_api <- corvale:::call_api
assignInNamespace("call_api", function(name, ...) {
    called <<- union(called, name)
    call_api(name, ...)
}, "corvale")

fails(corvale_info())  # not loaded yet
for (path in c("no-such.so", "libc.so.6")) fails(corvale_open(path))
corvale_open()
corvale_init()
expect(startsWith(corvale_info(), "Arvenit Corvale - Version: v9.4 - Build: "), TRUE)
expect(corvale_init_dll_names(), "")

modes <- function() c(corvale_dup_key_mode(), corvale_all_key_mode(), corvale_elset_key_mode())
corvale_set_dup_key_mode(1)
corvale_set_all_key_mode(1L)
expect(modes(), c(1L, 1L, 0L))
corvale_set_elset_key_mode(1)
corvale_reset_all_key_mode()
expect(modes(), c(0L, 0L, 1L))
corvale_set_elset_key_mode(0)
reason <- "SetDupKeyMode: invalid input value for DUPLICATION key mode."
fails(corvale_set_dup_key_mode(2), reason)
expect(corvale_last_err_msg(), reason)

log <- tempfile()
reason <- "FileOpen: Unable to open file \"no such file\" for reading."
corvale_open_log_file(log)
corvale_log_message("pass 1 of 3")
fails(corvale_load_file("no such file"), reason)
corvale_close_log_file()
expect(c(corvale_last_info_msg(), corvale_last_err_msg()), c("pass 1 of 3", ""))
expect(readLines(log), c(sprintf("%-128s", "pass 1 of 3"), paste0("Error-", reason)))
fails(corvale_open_log_file(tempdir()), "OpenLogFile: log file failed to open.")
corvale_close_log_file()

corvale_load_file(Sys.getenv("CORVALE_INPUT"))
expect(modes(), c(0L, 1L, 1L))
values <- corvale_moic_data(9)
expect(values[c(1:3, 7:9)], c(6378.135, 398600.8, 1.0826158e-3, 0.25, 0, 1e-12))
expect(corvale_moic_data(129), numeric(129))
expect(corvale_moic_data(0), numeric())

# R has no name for the least integers but NA.
imax <- .Machine$integer.max
lmax <- as.integer64("9223372036854775807")
wide <- function(...) as.integer64(c(...))
given <- list(
    ch = "A", i = imax, l = lmax, d = 0.1, text = "  text", i3 = c(imax, 2L, -3L),
    l3 = wide("9223372036854775807", "5", "-6"), d3 = c(-0.0, 5e-324, 1e308), i6 = c(NA, 8:11, imax),
    l6 = wide(NA, "14", "15", "16", "17", "9223372036854775807"), d6 = c(0.2, 0.3, 0.4, 0.5, 0.6, 0.7))

expect(corvale_test_interface(given), given)
expect(corvale_test_interface2(given), list(
    ch = "Z", i = NA_integer_, l = wide("-9223372036854775807"), d = 0.1 + 42.123456,
    text = "It doesn't matter what your string was.", i3 = c(NA, 3L, -2L),
    l3 = wide("-7988804146731319020", "1234567890123456794", "1234567890123456783"), d3 = given$d3 + 42,
    i6 = c(-imax, 9:12, NA), l6 = wide("-9223372036854775802", "20", "21", "22", "23", "-9223372036854775803"),
    d6 = given$d6 + 7.6))
expect(corvale_test_interface3(given$i3, given$i6),
       list(i3 = c(-4L, 8L, -12L), i6 = c(NA, 40L, 45L, 50L, 55L, imax - 4L)))

fits <- strrep("n", 512)
for (text in list(" blank", "tab\t", "\u00e9t\u00e9", "del\x7f", "line\n", paste0(fits, "n"), NA_character_, 7, c("a", "b"))) {
    fails(corvale_load_file(text))
    fails(corvale_open_log_file(text))
    fails(corvale_log_message(text))
}
fails(corvale_log_message(strrep("n", 129)))
wrong <- list(ch = "AB", i = 2^31, l = 1L, d = "1", text = "\t", i3 = 1:2, l6 = wide(1:7), d3 = c("1", "2", "3"), i6 = 1:6 + 0.5)
for (field in names(wrong)) {
    changed <- replace(given, field, wrong[field])
    fails(corvale_test_interface(changed))
    fails(corvale_test_interface2(changed))
}
for (count in list(-1, 1.5, 2^31, NA, "1")) fails(corvale_moic_data(count))
fails(corvale_load_file(""), "FileOpen: File name is empty.")
fails(corvale_load_file(fits), paste0("FileOpen: Unable to open file \"", strrep("n", 97)))

called <- setdiff(called, "Open")
expect(sort(called), sort(names(functions)))
cat(sprintf("R: %d of 20 functions called, %d arguments checked, ok\n", length(called), length(unlist(arguments))))
