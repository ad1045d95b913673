# Loads an input file and prints what its cards set: Rscript load_file.R INPUT-FILE

library(corvale)

show <- function(name) {
    corvale_open()
    corvale_load_file(name)
    cat(sprintf("element-set key mode %d, all-key mode %d\n", corvale_elset_key_mode(), corvale_all_key_mode()))
    values <- corvale_moic_data(128)
    for (k in which(values != 0)) cat(sprintf("MOIC(%d) = %.17g\n", k, values[k]))
}

arguments <- commandArgs(trailingOnly = TRUE)
tryCatch({
    if (length(arguments) != 1L) stop("usage: Rscript load_file.R INPUT-FILE")
    show(arguments)
}, error = function(reason) {
    message(conditionMessage(reason))
    quit(status = 2L)
})
