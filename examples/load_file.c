/* Loads an input file and prints what its cards set.
 *
 *     load_file INPUT-FILE
 */
#include <corvale/Corvale.h>

#include <stdio.h>

int main(int argc, char** argv) {
    char message[CORVALE_MESSAGE_WIDTH + 1] = {0}; /* the library writes no terminator */
    double values[CORVALE_MOIC_COUNT];

    if (argc != 2) {
        fprintf(stderr, "usage: load_file INPUT-FILE\n");
        return CORVALE_FAILED;
    }
    if (CorvaleLoadFile(argv[1]) != CORVALE_OK) {
        GetLastErrMsg(message);
        fprintf(stderr, "%s\n", message);
        return CORVALE_FAILED;
    }

    GetMOICData(CORVALE_MOIC_COUNT, values);
    printf("element-set key mode %d, all-key mode %d\n", (int)GetElsetKeyMode(),
           (int)GetAllKeyMode());
    for (int i = 0; i < CORVALE_MOIC_COUNT; ++i) {
        if (values[i] != 0.0) printf("MOIC(%d) = %.17g\n", i + 1, values[i]);
    }
    return CORVALE_OK;
}
