# The C API of libCorvale: messages and log, key modes, input-file cards, interface self-tests.
#
#     corvale_open()
#     corvale_load_file("orbit.inp")
#     values <- corvale_moic_data(128)
#
# The library has one state for the whole process. A call that it answers with status 2 stops with a
# condition of class corvale_error, whose message is the library's. What it would take otherwise than
# given stops with an error before the call. Texts come back without the blanks that fill their buffers;
# bytes are Latin-1.

NAME_WIDTH <- 512L
MESSAGE_WIDTH <- 128L

# The one way into the library: the routine of that name.
call_api <- function(name, ...) .Call(get(paste0("C_", name)), ...)

# The bytes of a text in a buffer; refused when the library would not see all of it.
filled <- function(text, width) {
    if (!is.character(text) || length(text) != 1L || is.na(text)) stop("not one text", call. = FALSE)
    bytes <- charToRaw(text)
    if (any(bytes < as.raw(32L) | bytes > as.raw(126L)))
        stop(encodeString(text, quote = "\""), ": not printable ASCII", call. = FALSE)
    if (length(bytes) > width)
        stop("\"", text, "\": ", length(bytes), " characters, ", width, " fit", call. = FALSE)
    c(bytes, rep(as.raw(32L), width - length(bytes)))
}

# A name or message; also refused when it begins with a blank, which the library drops.
filled_unindented <- function(text, width) {
    if (is.character(text) && any(startsWith(text, " "), na.rm = TRUE))
        stop("\"", text, "\": begins with a blank", call. = FALSE)
    filled(text, width)
}

# What a buffer holds, without the blanks that fill it.
trimmed <- function(bytes) {
    text <- rawToChar(bytes[seq_len(max(0L, which(bytes != as.raw(32L))))])
    iconv(text, "latin1", "UTF-8")
}

# A vector of integers of 32 bits. NA is the least of them.
int32 <- function(name, values, length) {
    whole <- suppressWarnings(as.integer(values))
    if (!is.numeric(values) || is.integer64(values) || length(values) != length ||
        !identical(as.double(whole), as.double(values)))
        stop(name, ": not ", length, " of 32 bits", call. = FALSE)
    whole
}

int64 <- function(name, values, length) {
    if (!is.integer64(values) || length(values) != length)
        stop(name, ": not ", length, " integer64", call. = FALSE)
    values
}

real64 <- function(name, values, length) {
    if (!is.numeric(values) || is.integer64(values) || length(values) != length)
        stop(name, ": not ", length, " reals", call. = FALSE)
    as.double(values)
}

succeed <- function(status) {
    if (status != 0L)
        stop(errorCondition(corvale_last_err_msg(), class = "corvale_error"))
    invisible()
}

#' Loads a library by its path, or by its name from where the system looks, with local scope, to the end
#' of the process. Without one it is what CORVALE_LIBRARY names, or else libCorvale.so.9. Stops with the
#' loader's reason.
corvale_open <- function(path = Sys.getenv("CORVALE_LIBRARY", "libCorvale.so.9")) {
    stopifnot(is.character(path), length(path) == 1L, !is.na(path))
    invisible(call_api("Open", path.expand(path)))
}

#' CorvaleInit. Does nothing: the library is ready once it is loaded.
corvale_init <- function() succeed(call_api("CorvaleInit"))

#' CorvaleGetInfo. Name, version, build date, platform and compiler.
corvale_info <- function() trimmed(call_api("CorvaleGetInfo"))

#' GetInitDllNames. The libraries that have to be initialised first: none.
corvale_init_dll_names <- function() trimmed(call_api("GetInitDllNames"))

#' OpenLogFile. Opens the log, created or emptied; every message is from then on also a line of it.
corvale_open_log_file <- function(name) succeed(call_api("OpenLogFile", filled_unindented(name, NAME_WIDTH)))

#' CloseLogFile. Closes the log, if one is open, and blanks the last error message.
corvale_close_log_file <- function() invisible(call_api("CloseLogFile"))

#' LogMessage. Stores a message of at most 128 characters and writes it to an open log.
corvale_log_message <- function(message) {
    invisible(call_api("LogMessage", filled_unindented(message, MESSAGE_WIDTH)))
}

#' GetLastErrMsg. The last error message; it stays until the next error or corvale_close_log_file.
corvale_last_err_msg <- function() trimmed(call_api("GetLastErrMsg"))

#' GetLastInfoMsg. The last informational message.
corvale_last_info_msg <- function() trimmed(call_api("GetLastInfoMsg"))

#' GetDupKeyMode. The duplication key mode, 0 or 1.
corvale_dup_key_mode <- function() call_api("GetDupKeyMode")

#' SetDupKeyMode. A mode other than 0 and 1 stops and changes nothing.
corvale_set_dup_key_mode <- function(mode) succeed(call_api("SetDupKeyMode", int32("mode", mode, 1L)))

#' GetAllKeyMode. The all-key mode, 0 or 1.
corvale_all_key_mode <- function() call_api("GetAllKeyMode")

#' SetAllKeyMode. A mode other than 0 and 1 stops and changes nothing.
corvale_set_all_key_mode <- function(mode) succeed(call_api("SetAllKeyMode", int32("mode", mode, 1L)))

#' ResetAllKeyMode. Sets the all-key and the duplication key mode back to 0.
corvale_reset_all_key_mode <- function() invisible(call_api("ResetAllKeyMode"))

#' GetElsetKeyMode. The element-set key mode, 0 or 1.
corvale_elset_key_mode <- function() call_api("GetElsetKeyMode")

#' SetElsetKeyMode. A mode other than 0 and 1 stops and changes nothing.
corvale_set_elset_key_mode <- function(mode) succeed(call_api("SetElsetKeyMode", int32("mode", mode, 1L)))

#' CorvaleLoadFile. Reads the cards of a file. Stops if it cannot be opened, never for what it holds.
corvale_load_file <- function(name) succeed(call_api("CorvaleLoadFile", filled_unindented(name, NAME_WIDTH)))

#' GetMOICData. The first values of the array that QZ_MOIC cards fill; for more than 128 the library
#' gives zeros.
corvale_moic_data <- function(count) {
    count <- int32("count", count, 1L)
    if (is.na(count) || count < 0L) stop("count: negative", call. = FALSE)
    call_api("GetMOICData", count)
}

# The fields of a list in the order of the interface tests, as C takes them.
packed <- function(v) {
    ch <- filled(v$ch, 1L)
    list(ch, int32("i", v$i, 1L), int64("l", v$l, 1L), real64("d", v$d, 1L), filled(v$text, NAME_WIDTH),
         int32("i3", v$i3, 3L), int64("l3", v$l3, 3L), real64("d3", v$d3, 3L),
         int32("i6", v$i6, 6L), int64("l6", v$l6, 6L), real64("d6", v$d6, 6L))
}

unpacked <- function(fields) {
    names(fields) <- c("ch", "i", "l", "d", "text", "i3", "l3", "d3", "i6", "l6", "d6")
    for (wide in c("l", "l3", "l6")) class(fields[[wide]]) <- "integer64"
    fields$ch <- rawToChar(fields$ch)
    fields$text <- trimmed(fields$text)
    fields
}

#' TestInterface. A list of every value as it arrived in the library: ch a character, i an integer, l an
#' integer64, d a real, text at most 512 characters, i3, l3, d3, i6, l6, d6 three and six of these.
corvale_test_interface <- function(values) unpacked(call_api("TestInterface", packed(values)))

#' TestInterface2. The same values, each changed by a fixed amount; integers wrap.
corvale_test_interface2 <- function(values) unpacked(call_api("TestInterface2", packed(values)))

#' TestInterface3. A list of 4 times three integers and 5 times six; products wrap.
corvale_test_interface3 <- function(i3, i6) {
    products <- call_api("TestInterface3", int32("i3", i3, 3L), int32("i6", i6, 6L))
    list(i3 = products[[1L]], i6 = products[[2L]])
}
