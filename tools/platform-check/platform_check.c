/*
 * platform_check.c: holds a terminal against the promises of terminal.h and toolkit.h that the
 * library builds on, and tells of each whether it is kept. Stands on the two headers and on POSIX,
 * so that the terminal's own compiler builds it and its own loader binds it.
 */
#define _POSIX_C_SOURCE 200809L

#include "terminal.h"
#include "toolkit.h"

#include <limits.h>
#include <setjmp.h>
#include <signal.h>
#include <stdarg.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

/* A terminal need not have it. */
#pragma weak Terminal_NoteAssertion

enum { KEPT, BROKEN, NOT_TRIED, VERDICTS };

static const char *const verdictNames[VERDICTS] = {"kept", "broken", "not tried"};

/* What the command line says. */
static const char *folder = ".";
static const char *imageName;
static const char *fontName;
static const char *variable; /* NAME=VALUE */
static bool usesPrinter;
static long port;

/* ------------------------------------------------------------- what came of a promise ---- */

static int verdict;
static char detail[512]; /* of the first thing that was not as promised */

static void conclude(int result, const char *format, ...) {
    va_list arguments;
    if (verdict != KEPT)
        return;
    verdict = result;
    va_start(arguments, format);
    vsnprintf(detail, sizeof detail, format, arguments);
    va_end(arguments);
}

static void within(const char *what, long long least, long long most, long long came) {
    if (came >= least && came <= most)
        return;
    if (least == most)
        conclude(BROKEN, "%s: expected %lld, came %lld", what, least, came);
    else if (most == LLONG_MAX)
        conclude(BROKEN, "%s: expected %lld or more, came %lld", what, least, came);
    else if (least == LLONG_MIN)
        conclude(BROKEN, "%s: expected %lld or less, came %lld", what, most, came);
    else
        conclude(BROKEN, "%s: expected %lld to %lld, came %lld", what, least, most, came);
}

#define IS(call, value) within(#call, value, value, (long long)(call))
#define WITHIN(call, least, most) within(#call, least, most, (long long)(call))
#define AT_LEAST(call, least) within(#call, least, LLONG_MAX, (long long)(call))
#define AT_MOST(call, most) within(#call, LLONG_MIN, most, (long long)(call))
#define REFUSED(call) AT_MOST(call, -1)
#define FAILS(call) within(#call " fails", 1, 1, (call) != 0)

static void sameText(const char *what, const char *expected, const char *came) {
    if (!came || strcmp(expected, came) != 0)
        conclude(BROKEN, "%s: expected \"%s\", came %s%s%s", what, expected, came ? "\"" : "",
                 came ? came : "null", came ? "\"" : "");
}

#define TEXT(call, expected) sameText(#call, expected, call)

static void sameBytes(const char *what, const void *expected, const void *came, size_t count) {
    const unsigned char *left = expected, *right = came;
    for (size_t i = 0; i < count; ++i)
        if (left[i] != right[i]) {
            conclude(BROKEN, "%s: expected 0x%02X at byte %zu, came 0x%02X", what, left[i], i,
                     right[i]);
            return;
        }
}

/* A buffer for the platform, and behind the bytes that it may write a guard. */
static char room[96];

static char *clearRoom(void) {
    return memset(room, '~', sizeof room);
}

/* The start of a text, of at most `size` - 1 characters. */
static void cut(const char *text, char *start, size_t size) {
    const size_t length = strnlen(text, size - 1);
    memcpy(start, text, length);
    start[length] = '\0';
}

/* Whether the room holds a text and, from byte `size` on, what was there before. */
static void roomHolds(const char *what, const char *expected, size_t size) {
    char untouched[sizeof room];
    room[sizeof room - 1] = '\0';
    sameText(what, expected, room);
    memset(untouched, '~', sizeof untouched);
    if (memcmp(room + size, untouched, sizeof room - 1 - size) != 0)
        conclude(BROKEN, "%s: wrote past the %zu bytes that it was given", what, size);
}

static long long milliseconds(void) {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000LL + now.tv_nsec / 1000000;
}

/* ------------------------------------------------------------------------------ files ---- */

enum { openAtOnce = 8 };

static char paths[openAtOnce][512];
static char *const path = paths[0];
static int32_t file = -1; /* the one that a promise has open */
static unsigned char bytes[70000];

static void closeFile(void) {
    IS(File_Close(file), 0);
    file = -1;
}

/* Makes the file anew. */
static void fill(const char *text) {
    const uint32_t length = (uint32_t)strlen(text);
    File_Delete(path);
    AT_LEAST(file = File_Open(path, FILE_MODE_CREATE), 0);
    IS(File_Write(file, text, length), length);
    closeFile();
}

static void fileHolds(const char *expected) {
    const size_t length = strlen(expected);
    AT_LEAST(file = File_Open(path, FILE_MODE_READ), 0);
    IS(File_GetLength(file), (long long)length);
    IS(File_Read(file, bytes, (uint32_t)length), (long long)length);
    sameBytes("what the file holds", expected, bytes, length);
    closeFile();
}

static void createMakes(void) {
    File_Delete(path);
    AT_LEAST(file = File_Open(path, FILE_MODE_CREATE), 0);
    closeFile();
    fileHolds("");
}

static void createCuts(void) {
    fill("hello");
    AT_LEAST(file = File_Open(path, FILE_MODE_CREATE), 0);
    closeFile();
    fileHolds("");
}

static void readRefusesMissing(void) {
    File_Delete(path);
    REFUSED(File_Open(path, FILE_MODE_READ));
    REFUSED(File_Open(path, FILE_MODE_READ)); /* the first try has not made it */
}

static void appendMakes(void) {
    File_Delete(path);
    AT_LEAST(file = File_Open(path, FILE_MODE_APPEND), 0);
    IS(File_Write(file, "new", 3), 3);
    closeFile();
    fileHolds("new");
}

static void appendKeeps(void) {
    fill("hello");
    AT_LEAST(file = File_Open(path, FILE_MODE_APPEND), 0);
    IS(File_GetLength(file), 5);
    IS(File_Read(file, bytes, 2), 2);
    sameBytes("the first bytes read", "he", bytes, 2);
    closeFile();
    fileHolds("hello");
}

static void appendWritesAtPosition(void) {
    fill("hello");
    AT_LEAST(file = File_Open(path, FILE_MODE_APPEND), 0);
    IS(File_SetPosition(file, 1), 0);
    IS(File_Write(file, "UT", 2), 2);
    IS(File_SetPosition(file, 5), 0);
    IS(File_Write(file, "!", 1), 1);
    IS(File_GetLength(file), 6);
    closeFile();
    fileHolds("hUTlo!");
}

static void bytesComeBack(void) {
    static unsigned char written[sizeof bytes];
    for (size_t i = 0; i < sizeof written; ++i)
        written[i] = (unsigned char)(i + i / 256);
    fill("");
    AT_LEAST(file = File_Open(path, FILE_MODE_CREATE), 0);
    IS(File_Write(file, written, sizeof written), sizeof written);
    closeFile();
    AT_LEAST(file = File_Open(path, FILE_MODE_READ), 0);
    IS(File_GetLength(file), sizeof written);
    IS(File_Read(file, bytes, sizeof bytes), sizeof bytes);
    sameBytes("what was read", written, bytes, sizeof bytes);
    closeFile();
}

static void readStopsAtEnd(void) {
    fill("hello");
    AT_LEAST(file = File_Open(path, FILE_MODE_READ), 0);
    IS(File_Read(file, bytes, 3), 3);
    IS(File_Read(file, bytes, 64), 2);
    sameBytes("the last bytes", "lo", bytes, 2);
    IS(File_Read(file, bytes, 64), 0);
    if (File_SetPosition(file, 100) == 0)
        IS(File_Read(file, bytes, 64), 0);
}

static void positions(void) {
    static const uint32_t offsets[] = {3, 0, 4, 1};
    fill("01234");
    AT_LEAST(file = File_Open(path, FILE_MODE_READ), 0);
    for (size_t i = 0; i < sizeof offsets / sizeof *offsets; ++i) {
        IS(File_SetPosition(file, offsets[i]), 0);
        IS(File_Read(file, bytes, 1), 1);
        IS(bytes[0], (long long)('0' + offsets[i]));
    }
    IS(File_SetPosition(file, 5), 0);
}

static void manyAreOpen(void) {
    int32_t open[openAtOnce];
    for (int i = 0; i < openAtOnce; ++i) {
        AT_LEAST(open[i] = File_Open(paths[i], FILE_MODE_APPEND), 0);
        IS(File_Write(open[i], &"01234567"[i], 1), 1);
    }
    for (int i = 0; i < openAtOnce; ++i) {
        IS(File_SetPosition(open[i], 0), 0);
        IS(File_Read(open[i], bytes, 1), 1);
        IS(bytes[0], '0' + i);
        IS(File_Close(open[i]), 0);
        File_Delete(paths[i]);
    }
}

static void closedIsRefused(void) {
    fill("hello");
    AT_LEAST(file = File_Open(path, FILE_MODE_APPEND), 0);
    const int32_t closed = file;
    closeFile();
    REFUSED(File_Close(closed));
    REFUSED(File_Read(closed, bytes, 1));
    REFUSED(File_Write(closed, "x", 1));
    FAILS(File_SetPosition(closed, 0));
    REFUSED(File_GetLength(closed));
    REFUSED(File_Close(-1));
    fileHolds("hello");
}

static long long number(const TerminalDate *date, const TerminalTime *time) {
    const long long days = (date->year * 12LL + date->month) * 31 + date->day;
    return ((days * 24 + time->hour) * 60 + time->minute) * 60 + time->second;
}

static void timeOfFile(void) {
    enum { slack = 3 }; /* the medium may count in pairs of seconds */
    TerminalDate date;
    TerminalTime time;
    GetDateTime(&date, &time);
    const long long before = number(&date, &time);
    fill("hello");
    GetDateTime(&date, &time);
    const long long after = number(&date, &time);
    IS(File_GetTime(path, &date, &time), 1);
    within("the seconds from the clock's time to the file's", -slack, after - before + slack,
           number(&date, &time) - before);
}

static void noTimeOfMissing(void) {
    TerminalDate date = {1, 2, 3, {4, 5}};
    TerminalTime time = {6, 7, 8};
    File_Delete(path);
    IS(File_GetTime(path, &date, &time), 0);
    IS(date.year == 1 && date.month == 2 && date.day == 3, 1);
    IS(time.hour == 6 && time.minute == 7 && time.second == 8, 1);
}

static void validity(void) {
    fill("");
    IS(File_IsValid(path), 1);
    File_Delete(path);
    IS(File_IsValid(path), 0);
    IS(File_IsValid(folder), 0);
}

static void deletes(void) {
    fill("hello");
    IS(File_Delete(path), 0);
    REFUSED(File_Open(path, FILE_MODE_READ));
    FAILS(File_Delete(path));
}

/* ------------------------------------------------------------------------------ clock ---- */

static void calendar(void) {
    TerminalDate date = {0};
    TerminalTime time = {0};
    GetDateTime(&date, &time);
    const long long before = number(&date, &time);
    WITHIN(date.year, 1970, 9999);
    WITHIN(date.month, 1, 12);
    WITHIN(date.day, 1, 31);
    AT_MOST(time.hour, 23);
    AT_MOST(time.minute, 59);
    AT_MOST(time.second, 59);
    WaitSleep(1100);
    GetDateTime(&date, &time);
    within("the seconds of a wait of 1100 ms", 1, 60, number(&date, &time) - before);
}

static void ticksCount(void) {
    enum { step = 20 }; /* a clock may go on in steps of so many milliseconds */
    const long long start = milliseconds();
    const uint32_t ticks = GetTicks();
    WaitSleep(300);
    const uint32_t elapsed = GetTicks() - ticks;
    within("the ticks of a wait of 300", 300 - step, milliseconds() - start + step, elapsed);
}

static void ticksWrap(void) {
    enum { patience = 15000 };
    const uint32_t left = UINT32_MAX - GetTicks();
    if (left > patience) {
        conclude(NOT_TRIED, "the clock wraps in %.1f days; start this again then",
                 left / (24 * 3600 * 1000.0));
        return;
    }
    WaitSleep(left + 100);
    AT_MOST(GetTicks(), patience);
}

static void waits(void (*wait)(uint32_t)) {
    const long long start = milliseconds();
    wait(300);
    within("the milliseconds of a wait of 300", 290, 2500, milliseconds() - start);
}

static void waitWaits(void) {
    waits(Wait);
}

static void waitSleepWaits(void) {
    waits(WaitSleep);
}

/* ------------------------------------------------------------------------ environment ---- */

static void environmentValue(void) {
    char name[64] = "UTI_PLATFORM_CHECK";
    const char *value = "0123456789", *const equals = variable ? strchr(variable, '=') : NULL;
    if (equals) {
        snprintf(name, sizeof name, "%.*s", (int)(equals - variable), variable);
        value = equals + 1;
    } else {
        setenv(name, value, 1);
    }
    const int32_t length = (int32_t)strlen(value);
    const int32_t copied = System_GetEnv(name, clearRoom(), sizeof room, 0);
    if (!equals && copied <= 0) {
        conclude(NOT_TRIED, "the terminal keeps its variables elsewhere; name one with --variable");
        return;
    }
    IS(copied, length);
    TEXT(room, value);
    for (int32_t size = 1; size <= length; ++size) {
        char start[sizeof room];
        cut(value, start, (size_t)size);
        IS(System_GetEnv(name, clearRoom(), size, 0), size - 1);
        roomHolds("System_GetEnv", start, (size_t)size);
    }
}

static void environmentMissing(void) {
    AT_MOST(System_GetEnv("UTI_NO_SUCH_NAME", room, sizeof room, 0), 0);
}

static void applicationName(void) {
    char whole[sizeof room], start[sizeof room];
    const int32_t length = GetApplicationName(clearRoom(), 32);
    WITHIN(length, 1, 31);
    room[sizeof room - 1] = '\0';
    memcpy(whole, room, sizeof whole);
    IS((long long)strlen(whole), length);
    cut(whole, start, 4);
    IS(GetApplicationName(clearRoom(), 4), (long long)strlen(start));
    roomHolds("GetApplicationName", start, 4);
}

static void terminalType(void) {
    IS(Terminal_GetType(), Terminal_GetType());
}

static void noteAssertion(void) {
    if (Terminal_NoteAssertion)
        Terminal_NoteAssertion("platform_check", 1);
    else
        conclude(NOT_TRIED, "this terminal has none, and needs none");
}

/* ------------------------------------------------------------- texts and converters ---- */

static void changesCase(void (*change)(const char *, char *, uint32_t), const char *expected) {
    static const char source[] = "aZ09_mN-b";
    change(source, clearRoom(), 8);
    IS(memcmp(room, expected, 8), 0);
    IS(room[8], '~');
    memcpy(room, source, sizeof source);
    change(room, room, 8);
    IS(memcmp(room, expected, 8), 0);
    IS(room[8], 'b');
}

static void lowerCase(void) {
    changesCase(TextToLowercase, "az09_mn-");
}

static void upperCase(void) {
    changesCase(TextToUppercase, "AZ09_MN-");
}

static void longToText(void) {
    static const struct {
        int32_t value, radix;
        const char *text;
    } rows[] = {{0, 10, "0"},
                {-1, 10, "-1"},
                {INT32_MAX, 10, "2147483647"},
                {INT32_MIN, 10, "-2147483648"},
                {INT32_MAX, 2, "1111111111111111111111111111111"},
                {0x1234, 16, "1234"},
                {37, 36, "11"}};
    for (size_t i = 0; i < sizeof rows / sizeof *rows; ++i) {
        IS(ltoa(rows[i].value, clearRoom(), rows[i].radix) == room, 1);
        roomHolds("ltoa", rows[i].text, 34);
    }
}

static void int64ToText(void) {
    IS(Int64ToStr(INT64_MIN, clearRoom(), 21) == room, 1);
    roomHolds("Int64ToStr", "-9223372036854775808", 21);
    TEXT(Int64ToStr(0, room, 21), "0");
    TEXT(Int64ToStr(INT64_MAX, room, 21), "9223372036854775807");
    Int64ToStr(-1234567, clearRoom(), 5);
    roomHolds("Int64ToStr", "-123", 5);
}

static void uint64ToText(void) {
    IS(UInt64ToStr(UINT64_MAX, clearRoom(), 21) == room, 1);
    roomHolds("UInt64ToStr", "18446744073709551615", 21);
    TEXT(UInt64ToStr(0, room, 21), "0");
    UInt64ToStr(1234567, clearRoom(), 5);
    roomHolds("UInt64ToStr", "1234", 5);
}

/* At every address: the fields of a file lie where they lie. */
static void readsNumbers(void) {
    static const unsigned char source[8] = {0x01, 0x82, 0x43, 0xF4, 0x25, 0xA6, 0x67, 0xE8};
    unsigned char memory[16];
    for (int offset = 0; offset < 8; ++offset) {
        const void *at = memcpy(memory + offset, source, sizeof source);
        IS(BufferToWord(at), 0x8201);
        IS(BufferToDword(at), 0xF4438201);
        IS(BEBufferToShort(at), 0x0182);
        IS(BEBufferToShort((const unsigned char *)at + 1), (int16_t)0x8243);
    }
}

static void readsDoubles(void) {
    static const struct {
        double value;
        unsigned char source[8];
    } rows[] = {{0.0, {0}},
                {1.5, {0, 0, 0, 0, 0, 0, 0xF8, 0x3F}},
                {-92.515625, {0, 0, 0, 0, 0, 0x21, 0x57, 0xC0}},
                {123456789.0625, {0, 0, 0x40, 0x54, 0x34, 0x6F, 0x9D, 0x41}}};
    unsigned char memory[16];
    for (size_t i = 0; i < sizeof rows / sizeof *rows; ++i)
        for (int offset = 0; offset < 8; ++offset) {
            memcpy(memory + offset, rows[i].source, 8);
            const double value = BufferToDouble(memory + offset);
            /* The bits are compared, the sign of a zero among them.
               NOLINTNEXTLINE(bugprone-suspicious-memory-comparison) */
            if (memcmp(&value, &rows[i].value, sizeof value) != 0)
                conclude(BROKEN, "BufferToDouble: expected %.17g, came %.17g", rows[i].value,
                         value);
        }
}

static void writesNumbers(void) {
    for (int offset = 0; offset < 4; ++offset) {
        ShortToBEBuffer(-2, clearRoom() + offset);
        sameBytes("ShortToBEBuffer", "\xFF\xFE~", room + offset, 3);
        LongToBEBuffer(0x12345678, clearRoom() + offset);
        sameBytes("LongToBEBuffer", "\x12\x34\x56\x78~", room + offset, 5);
        LongToBEBuffer(INT32_MIN, clearRoom() + offset);
        sameBytes("LongToBEBuffer", "\x80\0\0\0~", room + offset, 5);
    }
}

/* ------------------------------------------------------------------ ports and printer ---- */

static void unknownPorts(void) {
    const ComPortParameters none = {.port = 250, .speed = 9, .format = 4};
    REFUSED(ComPort_Open(&none));
    REFUSED(ComPort_Close(-1));
    AT_MOST(ComPort_Write(-1, "x", 1), 0);
    REFUSED(ComPort_Read(-1, bytes, 1, 0));
}

static void sendsOnPort(void) {
    const ComPortParameters parameters = {.port = (uint8_t)port, .speed = 9, .format = 4};
    static const char text[] = "uti-platform-check\r\n";
    if (port == 0) {
        conclude(NOT_TRIED, "name a port with --port");
        return;
    }
    const int32_t line = ComPort_Open(&parameters);
    AT_LEAST(line, 0);
    IS(ComPort_Write(line, text, sizeof text - 1), sizeof text - 1);
    WITHIN(ComPort_Read(line, bytes, 64, 0), 0, 64);
    IS(ComPort_Close(line), 0);
    REFUSED(ComPort_Close(line));
    AT_MOST(ComPort_Write(line, text, 1), 0);
}

static void closedPrinter(void) {
    FAILS(Printer_PrintString("uti-platform-check\n", 0));
}

static void prints(void) {
    static const uint8_t defaults[36] = {0};
    if (!usesPrinter) {
        conclude(NOT_TRIED, "say --printer");
        return;
    }
    IS(Printer_Open(defaults), 0);
    IS(Printer_PrintString("uti-platform-check\n", 0), 0);
    IS(Printer_Close(), 0);
    closedPrinter();
}

/* ---------------------------------------------------------------------------- display ---- */

static int32_t display;
static int32_t form; /* the one that a promise has, 0 for none */

static void dropForm(void) {
    if (form > 0)
        igUI_Del(display, form);
    form = 0;
}

static void newForm(void) {
    AT_LEAST(form = igForm_Create("uti-platform-check", 0), 1);
    AT_LEAST(igUI_Add(display, form), 0);
}

static void addToForm(int32_t widget) {
    AT_LEAST(igForm_Add(form, widget), 0);
}

static void displaySize(void) {
    WITHIN(igUI_GetWidth(display), 1, INT16_MAX);
    WITHIN(igUI_GetHeight(display), 1, INT16_MAX);
    newForm();
    WITHIN(igForm_GetClientWidth(form), 1, igUI_GetWidth(display));
    WITHIN(igForm_GetClientHeight(form), 1, igUI_GetHeight(display));
}

static void noKey(void) {
    Keyboard_Reset();
    IS(Keyboard_GetLastKey(), 0);
}

static void quietDisplay(void) {
    Display_SetCursorPosition(0, 0);
    IS(Display_CheckEvent(), 0);
}

static void statusLine(void) {
    AT_LEAST(IG_DisableStatusLine(), 0);
    IG_UpdateStatusLine();
    AT_LEAST(IG_EnableStatusLine(), 0);
    IG_UpdateStatusLine();
}

static void keyCallback(void) {
    IS(IG_KeyPushCallback(display, '1'), 0);
    Keyboard_Reset();
}

/* --------------------------------------------------------- the toolkit's operations ---- */

/* Kinds of handles. From STATIC on, operations of one kind refuse widgets of another. */
enum {
    DISPLAY,
    FORM,
    WIDGET,
    STATIC,
    BUTTON,
    INPUT,
    PATTERN,
    IP,
    MULTI_LINE,
    MENU,
    PROGRESS,
    SIGN
};

static int32_t newWidget(int kind) {
    switch (kind) {
    case BUTTON:
        return igButton_Create(8, 8, 100, 30, "button", 0, IG_KEY_ENTER);
    case INPUT:
        return igInput_Create(8, 8, 100, 30, 5, 0);
    case PATTERN:
        return igPatternInput_Create(8, 8, 100, 30, IG_INPUT_PATTERN, "__.__.____");
    case IP:
        return igIPInput_Create(8, 8, 150, 30, 0);
    case MULTI_LINE:
        return igMultiLine_Create(8, 8, 150, 60, IG_MULTI_LINE_WRAP, "two\nlines");
    case MENU:
        return igMenuBox_Create(8, 8, 150, 60, 0, IG_MENU_CONFIRM | IG_MENU_SCROLL_BAR);
    case PROGRESS:
        return igProgress_Create(8, 8, 150, 20);
    case SIGN:
        return igSignBox_Create(8, 8, 150, 60);
    default:
        return igStatic_Create(8, 8, 100, 30, "static", 0);
    }
}

static char *scheme[12] = {".,1"};
static const IgMenuItem menuItem = {(uintptr_t) "item", (uintptr_t) "1.00", 1, 0};

/* clang-format off */
/* The kind of the handle `h`, and a call that is right for it. */
#define CALLS \
    CALL(DISPLAY, igUI_GetWidth, h) \
    CALL(DISPLAY, igUI_GetHeight, h) \
    CALL(DISPLAY, igUI_BlockInput, h, 0) \
    CALL(DISPLAY, igUI_SetBackgroundImage, h, 0) \
    CALL(DISPLAY, igUI_SetKeyboard, h, IG_KeyPushCallback) \
    CALL(DISPLAY, igUI_SetKeyScheme, h, 1, scheme) \
    CALL(FORM, igUI_Add, display, h) \
    CALL(FORM, igUI_Show, display, h) \
    CALL(FORM, igForm_SetOption, h, IG_FORM_FRAMELESS) \
    CALL(FORM, igForm_ClearOption, h, IG_FORM_SHADOW) \
    CALL(FORM, igForm_SetColors, h, 0x0000, 0xFFFF) \
    CALL(FORM, igForm_SetHeaderColors, h, 0xFFFF, 0x001F) \
    CALL(FORM, igForm_SetHeaderFont, h, 0) \
    CALL(FORM, igForm_SetHeaderHeight, h, 30) \
    CALL(FORM, igForm_SetHeaderJustify, h, IG_JUSTIFY_LEFT) \
    CALL(FORM, igForm_Reset, h) \
    CALL(FORM, igForm_SetTimeOut, h, 1000) \
    CALL(FORM, igForm_ResetTime, h) \
    CALL(FORM, igForm_GetClientWidth, h) \
    CALL(FORM, igForm_GetClientHeight, h) \
    CALL(WIDGET, igWidget_GetType, h) \
    CALL(WIDGET, igWidget_SetBorder, h, 1) \
    CALL(WIDGET, igWidget_SetJustify, h, IG_JUSTIFY_RIGHT) \
    CALL(WIDGET, igWidget_SetTransparency, h, 1) \
    CALL(WIDGET, igWidget_SetFont, h, 0) \
    CALL(WIDGET, igWidget_SetActiveColor, h, 0x0000, 0xFFFF) \
    CALL(WIDGET, igWidget_SetPassiveColor, h, 0x0000, 0xFFFF) \
    CALL(WIDGET, igWidget_SetActiveBackImage, h, 0) \
    CALL(WIDGET, igWidget_SetPassiveBackImage, h, 0) \
    CALL(WIDGET, igWidget_SetKeyScheme, h, 0) \
    CALL(STATIC, igStatic_SetImage, h, 0) \
    CALL(BUTTON, igButton_SetOption, h, IG_BUTTON_END) \
    CALL(INPUT, igInput_SetRadix, h, 2) \
    CALL(INPUT, igInput_SetHideSymbol, h, '*') \
    CALL(INPUT, igInput_SetValue, h, "12") \
    CALL(INPUT, igInput_GetMaxLen, h) \
    CALL(INPUT, igInput_SetControlCodes, h, IG_KEY_BACKSPACE, IG_KEY_F1, IG_KEY_F2, 0) \
    CALL(INPUT, igInput_SetUserFunc, h, NULL, 0, 0, 0) \
    CALL(MULTI_LINE, igMultiLine_SetMaxLen, h, 100) \
    CALL(MULTI_LINE, igMultiLine_SetValue, h, "text") \
    CALL(PATTERN, igPatternInput_SetMaxLen, h, 4) \
    CALL(PATTERN, igPatternInput_SetPatternActiveColor, h, 0x0000, 0xFFFF) \
    CALL(PATTERN, igPatternInput_SetPatternPassiveColor, h, 0x0000, 0xFFFF) \
    CALL(PATTERN, igPatternInput_SetFillSymbol, h, '.') \
    CALL(IP, igIPInput_SetIPtext, h, "192.168.0.1") \
    CALL(IP, igIPInput_GetIPtext, h, room, sizeof room) \
    CALL(MENU, igMenuBox_AddItemExt2, h, &menuItem, 0, 0) \
    CALL(MENU, igMenuBox_SetItemsTransparency, h, 1) \
    CALL(MENU, igMenuBox_SetItemsActiveColor, h, 0xFFFF, 0x001F) \
    CALL(MENU, igMenuBox_SetItemsPassiveColor, h, 0x0000, 0xFFFF) \
    CALL(MENU, igMenuBox_SetItemsActiveBorder, h, 1) \
    CALL(MENU, igMenuBox_SetControlCodes, h, IG_KEY_UP, IG_KEY_DOWN, 0, 0) \
    CALL(MENU, igMenuBox_SetRowDelta, h, 4) \
    CALL(MENU, igMenuBox_SetAccelFont, h, 0) \
    CALL(PROGRESS, igProgress_SetValue, h, 50) \
    CALL(SIGN, igSignBox_SetLineWidth, h, 2) \
    CALL(SIGN, igSignBox_SaveData, h, path)
/* clang-format on */

#define CALL(kind, name, ...)                                                                      \
    static int32_t call_##name(int32_t h) {                                                        \
        return name(__VA_ARGS__);                                                                  \
    }
CALLS
#undef CALL

typedef struct Call {
    int kind;
    const char *name;
    int32_t (*on)(int32_t handle);
} Call;

#define CALL(kind, name, ...) {kind, #name, call_##name},
static const Call calls[] = {CALLS};
#undef CALL

static void refuses(const Call *call, const char *why, int32_t handle) {
    const int32_t result = call->on(handle);
    if (result >= 0)
        conclude(BROKEN, "%s with %s, %d: expected a negative number, came %d", call->name, why,
                 (int)handle, (int)result);
}

static void takesItsHandle(const Call *call) {
    newForm();
    const int32_t widget = newWidget(call->kind),
                  other = newWidget(call->kind == STATIC ? INPUT : STATIC);
    const int32_t handle = call->kind == DISPLAY ? display : call->kind == FORM ? form : widget;
    addToForm(widget);
    addToForm(other);
    within(call->name, 0, LLONG_MAX, call->on(handle));

    if (call->kind >= STATIC)
        refuses(call, "a widget of another kind", other);
    dropForm();
    if (call->kind != DISPLAY) {
        refuses(call, "a deleted handle", handle);
        refuses(call, "none", 0);
    }
    refuses(call, "a negative handle", -1);
    refuses(call, "an unknown handle", INT32_MAX);
}

static void widgetTypes(void) {
    static const struct {
        int kind;
        int32_t type;
    } rows[] = {{STATIC, IG_WIDGET_STATIC},         {BUTTON, IG_WIDGET_BUTTON},
                {INPUT, IG_WIDGET_INPUT},           {PATTERN, IG_WIDGET_PATTERN_INPUT},
                {IP, IG_WIDGET_IP_INPUT},           {MENU, IG_WIDGET_MENU_BOX},
                {MULTI_LINE, IG_WIDGET_MULTI_LINE}, {PROGRESS, IG_WIDGET_PROGRESS},
                {SIGN, IG_WIDGET_SIGN_BOX}};
    newForm();
    for (size_t i = 0; i < sizeof rows / sizeof *rows; ++i) {
        const int32_t widget = newWidget(rows[i].kind);
        AT_LEAST(widget, 1);
        IS(igWidget_GetType(widget), rows[i].type);
        addToForm(widget);
    }
}

static void childForm(void) {
    AT_LEAST(form = igChildForm_Create(20, 40, 120, 90, "child", 0), 1);
    AT_LEAST(igUI_Add(display, form), 0);
    AT_LEAST(igUI_Show(display, form), 0);
    WITHIN(igForm_GetClientWidth(form), 1, 120);
    WITHIN(igForm_GetClientHeight(form), 1, 90);
}

static void formTakesWidgets(void) {
    newForm();
    const int32_t input = newWidget(INPUT);
    addToForm(input);
    AT_LEAST(igForm_Reset(form), 0);
    AT_LEAST(igForm_SetFocused(form, input), 0);
    REFUSED(igForm_Add(form, 0));
    REFUSED(igForm_Add(form, INT32_MAX));
    REFUSED(igForm_SetFocused(form, INT32_MAX));
    const int32_t gone = form;
    dropForm();
    REFUSED(igForm_Add(gone, input));
    REFUSED(igForm_SetFocused(gone, input));
}

static void formIsDeleted(void) {
    newForm();
    const int32_t widget = newWidget(STATIC), gone = form;
    addToForm(widget);
    form = 0;
    AT_LEAST(igUI_Del(display, gone), 0);
    REFUSED(igUI_Del(display, gone));
    REFUSED(igWidget_GetType(widget));
}

static void inputValues(void) {
    newForm();
    const int32_t input = newWidget(INPUT), longest = igInput_Create(8, 50, 100, 30, 0, 0);
    addToForm(input);
    addToForm(longest);
    TEXT(igInput_GetValue(input), "");
    igInput_SetValue(input, "abc");
    TEXT(igInput_GetValue(input), "abc");
    igInput_SetValue(input, "abcdefgh");
    TEXT(igInput_GetValue(input), "abcde");
    igInput_SetValue(input, NULL);
    TEXT(igInput_GetValue(input), "");
    IS(igInput_GetMaxLen(input), 5);
    IS(igInput_GetMaxLen(longest), 255);
    TEXT(igInput_GetValue(INT32_MAX), "");
}

static void patternValues(void) {
    newForm();
    const int32_t input = newWidget(PATTERN);
    addToForm(input);
    IS(igInput_GetMaxLen(input), 8);
    igInput_SetValue(input, "31122026");
    TEXT(igInput_GetValue(input), "31122026");
    igPatternInput_SetMaxLen(input, 4);
    IS(igInput_GetMaxLen(input), 4);
}

static void multiLineValues(void) {
    newForm();
    const int32_t input = newWidget(MULTI_LINE);
    addToForm(input);
    TEXT(igMultiLine_GetValue(input), "two\nlines");
    igMultiLine_SetValue(input, "one");
    TEXT(igMultiLine_GetValue(input), "one");
    igMultiLine_SetValue(input, NULL);
    TEXT(igMultiLine_GetValue(input), "");
    TEXT(igMultiLine_GetValue(INT32_MAX), "");
}

static void ipValues(void) {
    newForm();
    const int32_t input = newWidget(IP);
    addToForm(input);
    igIPInput_GetIPtext(input, clearRoom(), 16);
    roomHolds("igIPInput_GetIPtext", "", 16);
    igIPInput_SetIPtext(input, "192.168.0.1");
    igIPInput_GetIPtext(input, clearRoom(), 16);
    roomHolds("igIPInput_GetIPtext", "192.168.0.1", 16);
    igIPInput_GetIPtext(input, clearRoom(), 5);
    roomHolds("igIPInput_GetIPtext", "192.", 5);
}

static void menuChoice(void) {
    const IgMenuItem chosen = {(uintptr_t) "chosen", 0, 0, 1};
    newForm();
    const int32_t menu = newWidget(MENU);
    addToForm(menu);
    REFUSED(igMenuBox_GetSelected(menu));
    AT_LEAST(igMenuBox_AddItemExt2(menu, &menuItem, 0, 0), 0);
    IS(igMenuBox_GetSelected(menu), 1);
    AT_LEAST(igMenuBox_AddItemExt2(menu, &chosen, 0, 0), 0);
    AT_LEAST(igMenuBox_AddItemExt2(menu, &chosen, 0, 0), 0);
    IS(igMenuBox_GetSelected(menu), 2);
    REFUSED(igMenuBox_GetSelected(INT32_MAX));
}

static void scrolling(void) {
    newForm();
    const int32_t menu = newWidget(MENU), text = newWidget(STATIC);
    addToForm(menu);
    addToForm(text);
    for (int i = 0; i < 30; ++i)
        igMenuBox_AddItemExt2(menu, &menuItem, 0, 0);
    AT_LEAST(igForm_Reset(form), 0);
    AT_LEAST(igUI_Show(display, form), 0);
    IS(igWidget_GetDeltaY(menu, 0), 0);
    FAILS(igWidget_GetDeltaY(menu, 1)); /* to be 0 */
    IS(igWidget_GetDeltaY(text, 0), 0);
    IS(igWidget_GetDeltaY(text, 1), 0);
    IS(igWidget_GetDeltaY(INT32_MAX, 1), 0);
}

static void nothingSigned(void) {
    newForm();
    const int32_t box = newWidget(SIGN);
    addToForm(box);
    AT_LEAST(igUI_Show(display, form), 0);
    IS(igSignBox_SaveData(box, path), 0);
}

static void missingImages(void) {
    File_Delete(path);
    IS(igImage_CreateFromFile(NULL), 0);
    IS(igImage_CreateFromFile(""), 0);
    REFUSED(igImage_CreateFromFile(path));
}

static void loadsImage(void) {
    if (!imageName) {
        conclude(NOT_TRIED, "name an image with --image");
        return;
    }
    AT_LEAST(igImage_CreateFromFile(imageName), 1);
    const int32_t image = igImage_CreateFromFile(imageName);
    newForm();
    const int32_t widget = newWidget(STATIC);
    addToForm(widget);
    AT_LEAST(igStatic_SetImage(widget, image), 0);
    AT_LEAST(igUI_SetBackgroundImage(display, image), 0);
    AT_LEAST(igUI_Show(display, form), 0);
    AT_LEAST(igUI_SetBackgroundImage(display, 0), 0);
}

static void imagePaths(void) {
    IS(IG_GetFullImagePath(NULL, clearRoom(), 8), 0);
    IS(IG_GetFullImagePath("", room, 8), 0);
    IS(room[0], '~');
    IS(IG_GetFullImagePath("a-long-name-of-an-image.png", clearRoom(), 8), 0);
    room[sizeof room - 1] = '\0';
    AT_MOST((long long)strlen(room), 7);
    IS(room[8], '~');
}

static void missingFont(void) {
    File_Delete(path);
    FAILS(igUI_SetFileFont(display, 11, path));
}

static void loadsFont(void) {
    if (fontName)
        IS(igUI_SetFileFont(display, 11, fontName), 0);
    else
        conclude(NOT_TRIED, "name a font with --font");
}

/* ------------------------------------------------------------------------- modal runs ---- */

static int eventsSeen, eventsBefore; /* how many come before the callback ends the form */
static int32_t endState;

static int32_t onEvent(uint8_t *key) {
    if (!key)
        conclude(BROKEN, "IgEventCallback: the address of the key is null");
    return ++eventsSeen > eventsBefore ? endState : 0;
}

/* Starts a run in which the callback ends the form with `state` after so many events. */
static void startRun(int32_t state, int after) {
    eventsSeen = 0;
    eventsBefore = after;
    endState = state;
    AT_LEAST(igUI_ShowExt(display, form, onEvent), -1);
    FAILS(igUI_IsModal()); /* to be 0 */
    IS(igForm_GetState(form), IG_STATE_RUNNING);
}

/* Waits like the library. Returns how long the form has run, at most `most` milliseconds. */
static long long run(long long most) {
    const long long start = milliseconds();
    while (igUI_IsModal() && milliseconds() - start < most) {
        Wait(1);
        WaitSleep(20);
    }
    return milliseconds() - start;
}

static void timeOutEnds(void) {
    newForm();
    AT_LEAST(igForm_SetTimeOut(form, 300), 0);
    startRun(0, 0);
    within("the milliseconds of a time-out of 300", 280, 4000, run(5000));
    IS(igUI_IsModal(), 0);
    IS(igForm_GetState(form), IG_STATE_TIME_OUT);
}

static void timeStartsAnew(void) {
    newForm();
    AT_LEAST(igForm_SetTimeOut(form, 800), 0);
    startRun(0, 0);
    run(400);
    AT_LEAST(igForm_ResetTime(form), 0);
    within("the milliseconds of a time-out of 800, started anew", 780, 4000, run(5000));
}

static void callbackEnds(void) {
    newForm();
    AT_LEAST(igForm_SetTimeOut(form, 8000), 0);
    startRun(101, 3);
    within("the milliseconds until the third event has passed", 0, 2000, run(5000));
    IS(igUI_IsModal(), 0);
    IS(igForm_GetState(form), 101);
}

static void callbackIsAsked(void) {
    newForm();
    AT_LEAST(igForm_SetTimeOut(form, 1000), 0);
    startRun(0, 0);
    run(5000);
    within("the events in 1000 ticks", 8, LLONG_MAX, eventsSeen);
}

static void runsAgain(void) {
    newForm();
    AT_LEAST(igForm_SetTimeOut(form, 8000), 0);
    startRun(102, 1);
    run(5000);
    startRun(101, 1);
    run(5000);
    IS(igForm_GetState(form), 101);
}

static void deletionEndsRun(void) {
    newForm();
    AT_LEAST(igForm_SetTimeOut(form, 8000), 0);
    startRun(0, 0);
    const int32_t gone = form;
    dropForm();
    IS(igUI_IsModal(), 0);
    IS(igForm_GetState(gone), IG_STATE_CANCELLED);
}

static void unknownForms(void) {
    AT_MOST(igUI_ShowExt(display, INT32_MAX, onEvent), -2);
    IS(igUI_IsModal(), 0);
    IS(igForm_GetState(INT32_MAX), IG_STATE_CANCELLED);
}

/* ----------------------------------------------------------------------- the promises ---- */

typedef struct Promise {
    const char *part;
    const char *sentence;
    void (*hold)(void);
} Promise;

static const Promise promises[] = {
    {"files", "FILE_MODE_CREATE creates a file", createMakes},
    {"files", "FILE_MODE_CREATE cuts an existing file to nothing", createCuts},
    {"files", "FILE_MODE_READ refuses a missing file and does not create it", readRefusesMissing},
    {"files", "FILE_MODE_APPEND creates a missing file", appendMakes},
    {"files", "FILE_MODE_APPEND keeps an existing file and opens it at 0", appendKeeps},
    {"files", "FILE_MODE_APPEND writes at the position", appendWritesAtPosition},
    {"files", "bytes come back as they were written, all values, 70,000 at once", bytesComeBack},
    {"files", "File_Read stops at the end of the file, and gives 0 there and behind",
     readStopsAtEnd},
    {"files", "File_SetPosition goes to every offset up to the end", positions},
    {"files", "eight files are open at a time, each at its position", manyAreOpen},
    {"files", "a handle that is not open is refused", closedIsRefused},
    {"files", "File_GetTime gives the local time of the last change", timeOfFile},
    {"files", "File_GetTime gives 0 for a missing file and leaves the records", noTimeOfMissing},
    {"files", "File_IsValid gives 1 for a file, 0 for none and for a folder", validity},
    {"files", "File_Delete deletes a file and gives 0, anything else for a missing one", deletes},

    {"clock", "GetDateTime gives a date and a time that go on", calendar},
    {"clock", "GetTicks counts milliseconds", ticksCount},
    {"clock", "GetTicks wraps around at 2^32", ticksWrap},
    {"clock", "Wait waits", waitWaits},
    {"clock", "WaitSleep waits", waitSleepWaits},

    {"environment", "System_GetEnv copies a value, cut to the buffer", environmentValue},
    {"environment", "System_GetEnv gives 0 or less for a missing variable", environmentMissing},
    {"environment", "GetApplicationName copies a name, cut to the buffer", applicationName},
    {"environment", "Terminal_GetType gives one number", terminalType},
    {"environment", "Terminal_NoteAssertion, where there is one, returns", noteAssertion},

    {"texts", "TextToLowercase changes letters, `count` characters, in place too", lowerCase},
    {"texts", "TextToUppercase changes letters, `count` characters, in place too", upperCase},
    {"texts", "ltoa writes in every radix and gives its buffer", longToText},
    {"texts", "Int64ToStr writes signed decimal, cut to the buffer", int64ToText},
    {"texts", "UInt64ToStr writes unsigned decimal, cut to the buffer", uint64ToText},

    {"converters", "BufferToWord, BufferToDword, BEBufferToShort read at every address",
     readsNumbers},
    {"converters", "BufferToDouble reads 8 little-endian bytes, to the bit", readsDoubles},
    {"converters", "ShortToBEBuffer, LongToBEBuffer write at every address", writesNumbers},

    {"ports", "a port that is missing or not open is refused", unknownPorts},
    {"ports", "a port opens, sends, receives nothing without waiting, and closes", sendsOnPort},

    {"printer", "Printer_PrintString fails while the printer is closed", closedPrinter},
    {"printer", "the printer opens, prints and closes", prints},

    {"display", "the display has a size, and forms fit it", displaySize},
    {"display", "Keyboard_GetLastKey gives 0 after Keyboard_Reset", noKey},
    {"display", "Display_CheckEvent gives 0 while nothing happens", quietDisplay},
    {"display", "the status line is hidden and shown", statusLine},
    {"display", "IG_KeyPushCallback gives 0", keyCallback},

    {"toolkit", "each kind of widget is created and tells its type", widgetTypes},
    {"toolkit", "a child form is created, smaller than its area", childForm},
    {"toolkit", "igForm_Add and igForm_SetFocused take widgets and refuse none", formTakesWidgets},
    {"toolkit", "igUI_Del deletes a form with its widgets, once", formIsDeleted},
    {"toolkit", "an input keeps its text, cut to the maximum length", inputValues},
    {"toolkit", "a pattern input has as many characters as places", patternValues},
    {"toolkit", "a multi-line input keeps its text", multiLineValues},
    {"toolkit", "an IP input keeps its address; reading it is cut to the buffer", ipValues},
    {"toolkit", "igMenuBox_GetSelected gives the first chosen item from 1, negative for none",
     menuChoice},
    {"toolkit", "igWidget_GetDeltaY tells where a menu box can scroll", scrolling},
    {"toolkit", "igSignBox_SaveData gives 0 when nothing was drawn", nothingSigned},
    {"toolkit", "igImage_CreateFromFile gives 0 for no name and refuses a missing file",
     missingImages},
    {"toolkit", "an image is loaded and shown", loadsImage},
    {"toolkit", "IG_GetFullImagePath leaves the buffer for no name, and cuts to it", imagePaths},
    {"toolkit", "igUI_SetFileFont fails for a missing file", missingFont},
    {"toolkit", "igUI_SetFileFont loads a font", loadsFont},

    {"modal", "a form ends by its time-out, with IG_STATE_TIME_OUT", timeOutEnds},
    {"modal", "igForm_ResetTime starts the time-out anew", timeStartsAnew},
    {"modal", "what the event callback returns ends the form and becomes its state", callbackEnds},
    {"modal", "the event callback is asked at least every 100 ticks", callbackIsAsked},
    {"modal", "a form that has ended runs again", runsAgain},
    {"modal", "igUI_Del ends the run of a form", deletionEndsRun},
    {"modal", "an unknown form does not run and counts as cancelled", unknownForms},
};

static sigjmp_buf beforePromise;

static void onSignal(int number) {
    siglongjmp(beforePromise, number);
}

static void leaveNothing(void) {
    if (file >= 0)
        File_Close(file);
    file = -1;
    File_Delete(path);
    dropForm();
}

static int counts[VERDICTS];

/* Holds the terminal to a promise, of the table or about a call, and prints its line. */
static void check(const char *part, const char *sentence, void (*hold)(void), const Call *call) {
    enum { patience = 20 }; /* in seconds */
    const bool needsDisplay = call || strcmp(part, "display") == 0 || strcmp(part, "modal") == 0 ||
                              strcmp(part, "toolkit") == 0;
    verdict = KEPT;
    const int number = sigsetjmp(beforePromise, 1);
    if (number != 0) {
        /* Whoever failed like this is not asked to tidy up. */
        file = -1;
        form = 0;
        if (number == SIGALRM)
            conclude(BROKEN, "no answer within %d s", patience);
        else
            conclude(BROKEN, "it ends the program by signal %d, %s", number, strsignal(number));
    } else if (needsDisplay && display < 0) {
        conclude(NOT_TRIED, "no display, Display_GetHandle gives %d", (int)display);
    } else {
        alarm(patience);
        if (call)
            takesItsHandle(call);
        else
            hold();
        leaveNothing();
    }
    alarm(0);

    for (char *at = detail; *at; ++at)
        if ((unsigned char)*at < ' ')
            *at = ' ';
    ++counts[verdict];
    printf("%-9s  %-11s  %s%s%s\n", verdictNames[verdict], part, sentence,
           verdict == KEPT ? "" : ": ", verdict == KEPT ? "" : detail);
}

/* ------------------------------------------------------------------- the command line ---- */

static const char usage[] =
    "usage: uti-platform-check [OPTION]...\n"
    "Holds this terminal against the promises of terminal.h and toolkit.h, and prints of each\n"
    "whether it is kept, broken (what was expected, what came) or not tried.\n"
    "\n"
    "  --only PART            try this part alone; may be repeated: files, clock, environment,\n"
    "                         texts, converters, ports, printer, display, toolkit, modal\n"
    "  --folder FOLDER        where to write its files; else where it was started\n"
    "  --port NUMBER          send a line on this serial port; 100 is the USB port\n"
    "  --printer              print a line\n"
    "  --image FILE           load this image and show it\n"
    "  --font FILE            load this font\n"
    "  --variable NAME=VALUE  an environment variable that the terminal has\n"
    "  --help                 this text\n"
    "\n"
    "Exit status: 0 nothing is broken, 1 something is, 2 wrong usage.\n"
    "Example: uti-platform-check --folder /tmp --only files --only clock\n";

static const char *only[16];
static size_t onlyCount;

static bool isWanted(const char *part) {
    for (size_t i = 0; i < onlyCount; ++i)
        if (strcmp(only[i], part) == 0)
            return true;
    return onlyCount == 0;
}

static bool isPart(const char *name) {
    for (size_t i = 0; i < sizeof promises / sizeof *promises; ++i)
        if (strcmp(promises[i].part, name) == 0)
            return true;
    return false;
}

/* Takes an option with its value. Returns whether they are right. */
static bool take(const char *option, const char *value) {
    if (strcmp(option, "--only") == 0 && isPart(value) && onlyCount < sizeof only / sizeof *only)
        only[onlyCount++] = value;
    else if (strcmp(option, "--folder") == 0 && strlen(value) < sizeof paths[0] - 32)
        folder = value;
    else if (strcmp(option, "--port") == 0 && (port = strtol(value, NULL, 10)) > 0 && port < 256)
        return true;
    else if (strcmp(option, "--image") == 0)
        imageName = value;
    else if (strcmp(option, "--font") == 0)
        fontName = value;
    else if (strcmp(option, "--variable") == 0 && strchr(value, '=') && strlen(value) < 64)
        variable = value;
    else
        return false;
    return true;
}

int main(int argc, char **argv) {
    static const int signals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGALRM};
    for (int i = 1; i < argc; ++i) {
        if (strcmp(argv[i], "--help") == 0) {
            fputs(usage, stdout);
            return 0;
        }
        if (strcmp(argv[i], "--printer") == 0) {
            usesPrinter = true;
        } else if (i + 1 < argc && take(argv[i], argv[i + 1])) {
            ++i;
        } else {
            fprintf(stderr, "uti-platform-check: what to do with %s? See --help.\n", argv[i]);
            return 2;
        }
    }
    for (int i = 0; i < openAtOnce; ++i)
        snprintf(paths[i], sizeof paths[i], "%s/uti_chk%d.tmp", folder, i);
    setvbuf(stdout, NULL, _IOLBF, 0);
    display =
        isWanted("display") || isWanted("toolkit") || isWanted("modal") ? Display_GetHandle() : -1;
    for (size_t i = 0; i < sizeof signals / sizeof *signals; ++i)
        sigaction(signals[i], &(struct sigaction){.sa_handler = onSignal}, NULL);

    for (size_t i = 0; i < sizeof promises / sizeof *promises; ++i)
        if (isWanted(promises[i].part))
            check(promises[i].part, promises[i].sentence, promises[i].hold, NULL);
    for (size_t i = 0; i < sizeof calls / sizeof *calls && isWanted("toolkit"); ++i) {
        char sentence[96];
        snprintf(sentence, sizeof sentence, "%s takes its handle and refuses others",
                 calls[i].name);
        check("toolkit", sentence, NULL, &calls[i]);
    }
    printf("%d kept, %d broken, %d not tried\n", counts[KEPT], counts[BROKEN], counts[NOT_TRIED]);
    return counts[BROKEN] > 0 ? 1 : 0;
}
