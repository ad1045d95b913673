# Answers the cases of tests/bindings/check.py with this binding.

library(corvale)
suppressMessages(library(bit64))

bytes <- function(hex) as.raw(strtoi(substring(hex, seq(1L, nchar(hex), 2L), seq(2L, nchar(hex), 2L)), 16L))

# R has no name for the least integers but NA.
decode_integers <- function(digits) {
    values <- as.numeric(digits)
    if (all(abs(values) < 2^31 | values == -2^31)) suppressWarnings(as.integer(digits)) else values
}
decode <- list(
    i = decode_integers,
    l = function(digits) suppressWarnings(as.integer64(digits)),
    r = function(bits) vapply(bits, function(one) readBin(bytes(one), "double", endian = "big"), 0, USE.NAMES = FALSE),
    c = function(code) rawToChar(as.raw(as.integer(code))),
    x = function(texts) {
        vapply(texts, function(text) if (nchar(text) == 0L) "" else rawToChar(bytes(text)), "", USE.NAMES = FALSE)
    },
    n = function(none) NA
)
decoded <- function(token) {
    elements <- strsplit(token, ",")[[1L]]
    decode[[substr(token, 1L, 1L)]](substring(elements, 2L))
}

hex <- function(raws) paste(raws, collapse = "")
encoded <- function(value) {
    if (is.list(value)) return(paste(vapply(value, encoded, ""), collapse = " "))
    said <- if (is.null(value)) ""
    else if (is.integer64(value)) ifelse(is.na(value), "-9223372036854775808", as.character(value))
    else if (is.integer(value)) ifelse(is.na(value), "-2147483648", as.character(value))
    else if (is.character(value)) paste0("x", hex(charToRaw(value)))
    else vapply(value, function(real) paste0("r", hex(writeBin(real, raw(), endian = "big"))), "")
    paste(said, collapse = " ")
}

with_fields <- function(call) {
    function(...) call(setNames(list(...), c("ch", "i", "l", "d", "text", "i3", "l3", "d3", "i6", "l6", "d6")))
}
calls <- list(
    Open = corvale_open,
    CorvaleInit = corvale_init,
    CorvaleGetInfo = corvale_info,
    GetInitDllNames = corvale_init_dll_names,
    OpenLogFile = corvale_open_log_file,
    CloseLogFile = corvale_close_log_file,
    LogMessage = corvale_log_message,
    GetLastErrMsg = corvale_last_err_msg,
    GetLastInfoMsg = corvale_last_info_msg,
    GetDupKeyMode = corvale_dup_key_mode,
    SetDupKeyMode = corvale_set_dup_key_mode,
    GetAllKeyMode = corvale_all_key_mode,
    SetAllKeyMode = corvale_set_all_key_mode,
    ResetAllKeyMode = corvale_reset_all_key_mode,
    GetElsetKeyMode = corvale_elset_key_mode,
    SetElsetKeyMode = corvale_set_elset_key_mode,
    CorvaleLoadFile = corvale_load_file,
    GetMOICData = corvale_moic_data,
    TestInterface = with_fields(corvale_test_interface),
    TestInterface2 = with_fields(corvale_test_interface2),
    TestInterface3 = corvale_test_interface3
)

for (line in strsplit(readLines("stdin"), " ")) {
    given <- lapply(line[-1L], decoded)
    cat(tryCatch(paste("ok", encoded(do.call(calls[[line[1L]]], given))),
        corvale_error = function(failure) paste("failed", encoded(conditionMessage(failure))),
        error = function(reason) {
            if (line[1L] == "Open") paste("unloaded", encoded(conditionMessage(reason))) else "refused"
        }
    ), "\n", sep = "")
}
