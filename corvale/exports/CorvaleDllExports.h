/* CorvaleDllExports.h: the C API of libCorvale, 20 functions for applications in any language.
 *
 * Texts    A text is a buffer of 512 characters (file names, general text: CORVALE_NAME_WIDTH) or
 *          128 characters (messages: CORVALE_MESSAGE_WIDTH), filled with blanks on the right.
 *          Texts given to the library end earlier at the first byte outside 32 to 127, so a
 *          NUL-terminated string may stand in for a full buffer. The same rule cuts a name at a
 *          tab or at any byte of an accented letter, and longer names at 512: another, shorter
 *          file would be opened. Refuse such names before the call.
 *          Texts written by the library fill their buffer exactly and have no terminator.
 * Status   CORVALE_OK, or CORVALE_FAILED with the reason in GetLastErrMsg. A success does not
 *          clear an earlier message.
 * Null     A null input text counts as blank; a null output is skipped.
 * Start    Nothing has to be called first and nothing has to be released: every call works from the
 *          first static constructor to the last exit handler. No exception leaves and no pointer is
 *          kept. State survives unloading the library.
 * Threads  LogMessage, the Get functions of modes and messages, CorvaleInit, CorvaleGetInfo,
 *          GetInitDllNames and the TestInterface functions: any number of threads at once. Opening
 *          and closing the log, setting modes, loading a file and GetMOICData are for the callers
 *          to serialise. All may be called in handlers of fork and in a forked child; none is a
 *          cancellation point; none may be called from a signal handler.
 * Exactness  the numbers of cards are correctly rounded to nearest, ties to even, in every locale
 *          and whatever the thread's rounding mode; all other results are the same bits everywhere
 *
 * C99, C++11 and later.
 */
#ifndef CORVALE_EXPORTS_CORVALEDLLEXPORTS_H
#define CORVALE_EXPORTS_CORVALEDLLEXPORTS_H

#include <corvale/base/Export.h>

#include <stdint.h>

#define CORVALE_VERSION_MAJOR 9 /* rises when a caller has to be compiled anew */
#define CORVALE_VERSION_MINOR 5 /* rises with what is new */
#define CORVALE_VERSION_PATCH 0 /* rises with what is mended */
#define CORVALE_VERSION "9.5.0" /* the three as a text */

#define CORVALE_OK 0              /* done */
#define CORVALE_FAILED 2          /* not done: the reason is in GetLastErrMsg */
#define CORVALE_NAME_WIDTH 512    /* characters of a file name or general text */
#define CORVALE_MESSAGE_WIDTH 128 /* characters of a message and of the information line */
#define CORVALE_MOIC_COUNT 128    /* reals that QZ_MOIC cards fill */

#ifdef __cplusplus
extern "C" {
#endif

/* Does nothing and returns CORVALE_OK: everything is ready when the library is loaded.
 *
 *     int32_t status = CorvaleInit();
 *     if (status != CORVALE_OK) return 1;
 *     puts("ready");
 */
CORVALE_API int32_t CorvaleInit(void) CORVALE_NOEXCEPT;

/* Tells which library this is: name, version, build date, platform and compiler.
 *
 * info  room for 128 characters; exactly 128 are written, blank-filled, without a terminator
 *
 *     char info[CORVALE_MESSAGE_WIDTH + 1] = {0};
 *     CorvaleGetInfo(info);
 *     puts(info);
 */
CORVALE_API void CorvaleGetInfo(char* info) CORVALE_NOEXCEPT;

/* Names the libraries that have to be initialised first: none, so the list is blank.
 *
 * names  room for 512 characters; exactly 512 blanks are written
 *
 *     char names[CORVALE_NAME_WIDTH + 1] = {0};
 *     GetInitDllNames(names);
 *     puts(names[0] == ' ' ? "none" : names);
 */
CORVALE_API void GetInitDllNames(char* names) CORVALE_NOEXCEPT;

/* Opens the log file, created or emptied; a log that is open is closed first. From then on every
 * message is also a line in the file: "Error-" and the message, or the informational message alone.
 * Other processes may log to the same file: lines stay whole, but whoever opens it empties it. A
 * file that cannot be opened as the log stays as it was.
 *
 * fileName  512 characters or a shorter terminated string; leading and trailing blanks are not part
 *           of the name
 * Returns   CORVALE_FAILED with "OpenLogFile: log file failed to open." when it cannot be opened (a
 *           blank name, a directory, a named pipe that nobody reads); later lines then go nowhere
 * Threads   not while another thread logs: its lines may be lost
 *
 *     if (OpenLogFile("orbit.log") != CORVALE_OK) return 1;
 *     LogMessage("run started");
 *     CloseLogFile();
 */
CORVALE_API int32_t OpenLogFile(const char* fileName) CORVALE_NOEXCEPT;

/* Closes the log file, if one is open, and blanks the last error message.
 *
 * Threads  not while another thread logs: its lines may be lost
 *
 *     OpenLogFile("orbit.log");
 *     LogMessage("run ended");
 *     CloseLogFile();
 */
CORVALE_API void CloseLogFile(void) CORVALE_NOEXCEPT;

/* Stores an informational message and writes it to an open log as a line of 128 characters, which
 * has been handed to the system when the call returns. Where the log is a full pipe or a stopped
 * terminal, the call waits for its reader.
 *
 * message  128 characters or a shorter terminated string; leading blanks are removed
 * Threads  any
 *
 *     char text[CORVALE_MESSAGE_WIDTH + 1] = {0};
 *     LogMessage("pass 1 of 3");
 *     GetLastInfoMsg(text);
 */
CORVALE_API void LogMessage(const char* message) CORVALE_NOEXCEPT;

/* Copies the last error message. It stays until the next error or CloseLogFile.
 *
 * message  room for 128 characters; exactly 128 are written, blank-filled, without a terminator
 * Threads  any; while another thread stores a message the copy may mix the two
 *
 *     char text[CORVALE_MESSAGE_WIDTH + 1] = {0};
 *     if (CorvaleLoadFile("orbit.inp") != CORVALE_OK) GetLastErrMsg(text);
 *     puts(text);
 */
CORVALE_API void GetLastErrMsg(char* message) CORVALE_NOEXCEPT;

/* Copies the last informational message. It stays until the next one.
 *
 * message  room for 128 characters; exactly 128 are written, blank-filled, without a terminator
 * Threads  any; while another thread stores a message the copy may mix the two
 *
 *     char text[CORVALE_MESSAGE_WIDTH + 1] = {0};
 *     GetLastInfoMsg(text);
 *     puts(text);
 */
CORVALE_API void GetLastInfoMsg(char* message) CORVALE_NOEXCEPT;

/* The duplication key mode: 0 until it is set.
 *
 *     int32_t before = GetDupKeyMode();
 *     SetDupKeyMode(1);
 *     SetDupKeyMode(before);
 */
CORVALE_API int32_t GetDupKeyMode(void) CORVALE_NOEXCEPT;

/* Sets the duplication key mode.
 *
 * mode     0 or 1
 * Returns  CORVALE_FAILED for any other mode, with
 *          "SetDupKeyMode: invalid input value for DUPLICATION key mode."; the mode stays as it was
 *
 *     if (SetDupKeyMode(1) != CORVALE_OK) return 1;
 *     printf("%d\n", (int)GetDupKeyMode());
 *     ResetAllKeyMode();
 */
CORVALE_API int32_t SetDupKeyMode(int32_t mode) CORVALE_NOEXCEPT;

/* The all-key mode: 0 until it is set, here or by a card QZ_DMA_ALL_ON.
 *
 *     int32_t before = GetAllKeyMode();
 *     SetAllKeyMode(1);
 *     SetAllKeyMode(before);
 */
CORVALE_API int32_t GetAllKeyMode(void) CORVALE_NOEXCEPT;

/* Sets the all-key mode, and records that it has been chosen.
 *
 * mode     0 or 1
 * Returns  CORVALE_FAILED for any other mode, with
 *          "SetAllKeyMode: invalid input value for elset key mode."; the mode stays as it was
 *
 *     if (SetAllKeyMode(1) != CORVALE_OK) return 1;
 *     printf("%d\n", (int)GetAllKeyMode());
 *     ResetAllKeyMode();
 */
CORVALE_API int32_t SetAllKeyMode(int32_t mode) CORVALE_NOEXCEPT;

/* Sets the all-key mode and the duplication key mode to 0 and forgets that the first was chosen.
 * The element-set key mode is not changed.
 *
 *     SetAllKeyMode(1);
 *     ResetAllKeyMode();
 *     printf("%d\n", (int)GetAllKeyMode());
 */
CORVALE_API void ResetAllKeyMode(void) CORVALE_NOEXCEPT;

/* The element-set key mode: 0 until it is set, here or by a card QZ_DMA_ON.
 *
 *     int32_t before = GetElsetKeyMode();
 *     SetElsetKeyMode(1);
 *     SetElsetKeyMode(before);
 */
CORVALE_API int32_t GetElsetKeyMode(void) CORVALE_NOEXCEPT;

/* Sets the element-set key mode.
 *
 * mode     0 or 1
 * Returns  CORVALE_FAILED for any other mode, with
 *          "SetElsetKeyMode: invalid input value for elset key mode."; the mode stays as it was
 *
 *     if (SetElsetKeyMode(1) != CORVALE_OK) return 1;
 *     printf("%d\n", (int)GetElsetKeyMode());
 *     SetElsetKeyMode(0);
 */
CORVALE_API int32_t SetElsetKeyMode(int32_t mode) CORVALE_NOEXCEPT;

/* Reads the cards QZ_MOIC, QZ_DMA_ON and QZ_DMA_ALL_ON of an input file; all its other lines are
 * passed over. Loading raises modes and overwrites array elements, it never resets any.
 *
 * fileName  512 characters or a shorter terminated string; leading and trailing blanks are not part
 *           of the name, backslashes are taken as slashes
 * Returns   CORVALE_FAILED when the file cannot be opened, with a message of "FileOpen: "; once it
 *           is open CORVALE_OK, whatever its lines hold
 * Threads   one load at a time in the process, and none while GetMOICData runs
 *
 *     double values[CORVALE_MOIC_COUNT];
 *     if (CorvaleLoadFile("orbit.inp") != CORVALE_OK) return 1;
 *     GetMOICData(CORVALE_MOIC_COUNT, values);
 */
CORVALE_API int32_t CorvaleLoadFile(const char* fileName) CORVALE_NOEXCEPT;

/* Copies the first values of the array that QZ_MOIC cards fill.
 *
 * count    how many: 1 to 128; 0 or less writes nothing; more than 128 gives that many zeros
 * values   room for count values
 * Threads  not while a file is loaded
 *
 *     double values[CORVALE_MOIC_COUNT];
 *     GetMOICData(CORVALE_MOIC_COUNT, values);
 *     printf("%g\n", values[0]);
 */
CORVALE_API void GetMOICData(int32_t count, double* values) CORVALE_NOEXCEPT;

/* Proves that a caller passes every kind of argument: each ...Out receives its ...In. Values are
 * passed by value; texts have 512 characters, arrays 3 or 6 elements, at any alignment. An array
 * out may be its own array in.
 *
 * strOut   strIn up to its first byte outside 32 to 127, then blanks; leading blanks stay
 * Threads  any, on distinct arguments
 *
 *     char c, text[CORVALE_NAME_WIDTH];
 *     int32_t i, i3[3] = {1, 2, 3}, i6[6] = {1, 2, 3, 4, 5, 6};
 *     int64_t l, l3[3] = {1, 2, 3}, l6[6] = {1, 2, 3, 4, 5, 6};
 *     double d, d3[3] = {0.1, 0.2, 0.3}, d6[6] = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6};
 *     TestInterface('A', &c, 1, &i, 2, &l, 3.5, &d, "text", text, i3, i3, l3, l3, d3, d3,
 *                   i6, i6, l6, l6, d6, d6);
 */
CORVALE_API void TestInterface(char cIn, char* cOut, int32_t iIn, int32_t* iOut, int64_t lIn,
                               int64_t* lOut, double dIn, double* dOut, const char* strIn,
                               char* strOut, const int32_t* i3In, int32_t* i3Out,
                               const int64_t* l3In, int64_t* l3Out, const double* d3In,
                               double* d3Out, const int32_t* i6In, int32_t* i6Out,
                               const int64_t* l6In, int64_t* l6Out, const double* d6In,
                               double* d6Out) CORVALE_NOEXCEPT;

/* Proves that arguments are changed in place: ch becomes 'Z', i + 1, l + 2, d + 42.123456, i3 + 1,
 * l3 + 1234567890123456789, d3 + 42.0, i6 + 1, l6 + 6, d6 + 7.6; integers wrap.
 *
 * str      512 characters, all overwritten: "It doesn't matter what your string was." and blanks
 * Threads  any, on distinct arguments
 *
 *     char c = 'A', text[CORVALE_NAME_WIDTH];
 *     int32_t i = 0, i3[3] = {0}, i6[6] = {0};
 *     int64_t l = 0, l3[3] = {0}, l6[6] = {0};
 *     double d = 0, d3[3] = {0}, d6[6] = {0};
 *     TestInterface2(&c, &i, &l, &d, text, i3, l3, d3, i6, l6, d6);
 */
CORVALE_API void TestInterface2(char* ch, int32_t* i, int64_t* l, double* d, char* str, int32_t* i3,
                                int64_t* l3, double* d3, int32_t* i6, int64_t* l6,
                                double* d6) CORVALE_NOEXCEPT;

/* Proves that integer arrays arrive: i3Out is 4 times i3In, i6Out 5 times i6In; products wrap. An
 * array out may be its own array in.
 *
 * Threads  any, on distinct arguments
 *
 *     int32_t i3[3] = {1, 2, 3}, i6[6] = {1, 2, 3, 4, 5, 6};
 *     TestInterface3(i3, i3, i6, i6);
 *     printf("%d %d\n", (int)i3[0], (int)i6[0]);
 */
CORVALE_API void TestInterface3(const int32_t* i3In, int32_t* i3Out, const int32_t* i6In,
                                int32_t* i6Out) CORVALE_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
