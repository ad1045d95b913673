/* start_time LIBRARY FUNCTION: loads the library and calls its function once. Prints the nanoseconds of
 * the processor until the result is there, and the bytes by which the process grew: resident, and its
 * share of what is shared (Pss). Nothing is linked in that the library could need. */
#define _POSIX_C_SOURCE 200809L
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>
#include <time.h>

static double Now(void) {
    struct timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return 1e9 * (double)now.tv_sec + (double)now.tv_nsec;
}

/* The kibibytes of one line of smaps_rollup. */
static long Memory(const char* line) {
    char text[200];
    long kib = 0;
    FILE* file = fopen("/proc/self/smaps_rollup", "r");
    if (!file) return 0;
    while (fgets(text, sizeof text, file))
        if (strncmp(text, line, strlen(line)) == 0) sscanf(text + strlen(line), "%ld", &kib);
    fclose(file);
    return kib;
}

int main(int argc, char** argv) {
    int (*function)(void);
    int result = -1;
    long rss, pss;
    double begin, end;
    void* library;
    void* symbol;
    if (argc != 3) return 2;
    rss = Memory("Rss:");
    pss = Memory("Pss:");
    begin = Now();
    library = dlopen(argv[1], RTLD_NOW);
    if (!library) {
        fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    symbol = dlsym(library, argv[2]);
    if (!symbol) return 1;
    memcpy(&function, &symbol, sizeof function);
    result = function();
    end = Now();
    printf("%.0f %ld %ld %d\n", end - begin, 1024 * (Memory("Rss:") - rss),
           1024 * (Memory("Pss:") - pss), result);
    return 0;
}
