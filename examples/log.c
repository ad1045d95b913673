/* The message store and the log: what is kept, and what the file holds in the end. */
#include <corvale/Corvale.h>

#include <stdio.h>
#include <string.h>

/* [print] */
/* Prints a message without the blanks that fill it. */
static void Print(const char* title, void (*get)(char*)) {
    char text[CORVALE_MESSAGE_WIDTH + 1] = {0}; /* the library writes no terminator */
    int length = CORVALE_MESSAGE_WIDTH;
    get(text);
    while (length > 0 && text[length - 1] == ' ') --length;
    printf("%s: %.*s\n", title, length, text);
}
/* [print] */

/* Prints the lines of a file, each with its length. */
static void PrintFile(const char* name) {
    char line[256];
    FILE* file = fopen(name, "r");
    while (file != NULL && fgets(line, sizeof line, file) != NULL) {
        line[strcspn(line, "\n")] = 0;
        printf("%3d %.70s\n", (int)strlen(line), line);
    }
    if (file != NULL) fclose(file);
}

int main(void) {
    /* [log] */
    if (OpenLogFile("run.log") != CORVALE_OK) return CORVALE_FAILED;
    LogMessage("pass 1 of 3");
    if (CorvaleLoadFile("no such file") != CORVALE_OK) Print("last error", GetLastErrMsg);
    if (SetDupKeyMode(2) != CORVALE_OK) Print("last error", GetLastErrMsg);
    SetDupKeyMode(1); /* succeeds, and leaves the message where it is */
    Print("last error", GetLastErrMsg);
    Print("last information", GetLastInfoMsg);
    CloseLogFile();
    Print("after closing", GetLastErrMsg);
    /* [log] */
    PrintFile("run.log");
    return CORVALE_OK;
}
