#include <corvale/Corvale.h>

#include <stdio.h>

int main(void) {
    char reason[CORVALE_MESSAGE_WIDTH + 1] = {0}; /* the library writes no terminator */
    double values[CORVALE_MOIC_COUNT];
    if (CorvaleLoadFile("orbit.inp") != CORVALE_OK) {
        GetLastErrMsg(reason);
        puts(reason);
        return CORVALE_FAILED;
    }
    GetMOICData(CORVALE_MOIC_COUNT, values);
    printf("%.10g\n", values[0]);
    return CORVALE_OK;
}
