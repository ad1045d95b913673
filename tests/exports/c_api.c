/* The C API from C99: every function is called once, with results that show that it was.
 *
 *     c_api INPUT-FILE
 */
#include <corvale/Corvale.h>

#include <stdio.h>
#include <string.h>

static int faults = 0;

static void Check(int isRight, const char* what) {
    if (isRight) return;
    fprintf(stderr, "wrong: %s\n", what);
    ++faults;
}

static void CheckState(const char* inputFile) {
    const char* log = "c_api.log";
    char text[CORVALE_NAME_WIDTH + 1] = {0};
    double values[CORVALE_MOIC_COUNT];

    Check(CorvaleInit() == CORVALE_OK, "CorvaleInit");
    CorvaleGetInfo(text);
    Check(strncmp(text, "Arvenit Corvale - Version: v9.4 - Build: ", 41) == 0, "CorvaleGetInfo");
    GetInitDllNames(text);
    Check(strspn(text, " ") == CORVALE_NAME_WIDTH, "GetInitDllNames");

    Check(OpenLogFile(log) == CORVALE_OK, "OpenLogFile");
    LogMessage("from C");
    GetLastInfoMsg(text);
    Check(strncmp(text, "from C ", 7) == 0, "LogMessage, GetLastInfoMsg");
    Check(SetDupKeyMode(7) == CORVALE_FAILED, "SetDupKeyMode of 7");
    GetLastErrMsg(text);
    Check(strncmp(text, "SetDupKeyMode: ", 15) == 0, "GetLastErrMsg");
    CloseLogFile();
    GetLastErrMsg(text);
    Check(strspn(text, " ") >= CORVALE_MESSAGE_WIDTH, "CloseLogFile blanks the message");
    Check(remove(log) == 0, "the log file exists");

    Check(SetDupKeyMode(1) == CORVALE_OK && GetDupKeyMode() == 1, "SetDupKeyMode");
    Check(SetElsetKeyMode(0) == CORVALE_OK && GetElsetKeyMode() == 0, "SetElsetKeyMode");
    Check(SetAllKeyMode(0) == CORVALE_OK && GetAllKeyMode() == 0, "SetAllKeyMode");
    Check(CorvaleLoadFile(inputFile) == CORVALE_OK, "CorvaleLoadFile");
    Check(GetElsetKeyMode() == 1 && GetAllKeyMode() == 1, "the cards set the modes");
    GetMOICData(CORVALE_MOIC_COUNT, values);
    Check(values[0] == 6378.135 && values[127] == 0.0, "GetMOICData");
    ResetAllKeyMode();
    Check(GetAllKeyMode() == 0 && GetDupKeyMode() == 0, "ResetAllKeyMode");
}

static void CheckSelfTests(void) {
    char c = 0, text[CORVALE_NAME_WIDTH];
    int32_t i = 0, i3[3] = {1, 2, 3}, i6[6] = {1, -1, 0, 2, 3, 4};
    int64_t l = 0, l3[3] = {4, 5, 6}, l6[6] = {0};
    double d = 0.0, d3[3] = {0.5, 1.5, 2.5}, d6[6] = {0};

    TestInterface('c', &c, 1, &i, 2, &l, 0.5, &d, "text", text, i3, i3, l3, l3, d3, d3, i6, i6, l6,
                  l6, d6, d6);
    Check(c == 'c' && i == 1 && l == 2 && d == 0.5 && d3[2] == 2.5, "TestInterface");
    Check(memcmp(text, "text ", 5) == 0, "TestInterface: text");
    TestInterface2(&c, &i, &l, &d, text, i3, l3, d3, i6, l6, d6);
    Check(c == 'Z' && i == 2 && l == 4 && d3[2] == 44.5 && l6[5] == 6, "TestInterface2");
    Check(memcmp(text, "It doesn't matter", 17) == 0, "TestInterface2: text");
    TestInterface3(i3, i3, i6, i6);
    Check(i3[0] == 8 && i6[1] == 0 && i6[5] == 25, "TestInterface3");
}

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    CheckState(argv[1]);
    CheckSelfTests();
    return faults == 0 ? 0 : 1;
}
