/*
 * first.c: a first application. It prints texts from its resources in every language they have,
 * and writes a trace log whose wording comes from the same resources.
 *
 *   first [FOLDER]      FOLDER holds first.res and receives first.log; default: the present one
 */
#include "first.h" /* the string ids, made from first.toml */
#include "terminal.h"
#include "uti.h"

#include <iconv.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

enum { MOST_LANGUAGES = 8 };

/* Prints a text of the terminal's code page in UTF-8. */
static void printText(const char *text) {
    char copy[256];
    char utf8[3 * sizeof copy];
    char *from = copy;
    char *to = utf8;
    snprintf(copy, sizeof copy, "%s", text);
    size_t fromLeft = strlen(copy);
    size_t toLeft = sizeof utf8;

    iconv_t converter = iconv_open("UTF-8", "WINDOWS-1251");
    if (converter == (iconv_t)-1)
        return;
    iconv(converter, &from, &fromLeft, &to, &toLeft);
    iconv_close(converter);
    printf("  %.*s\n", (int)(to - utf8), utf8);
}

/* Prints a string of the resources in the current language. A string stays the library's; it is
   given back as soon as it has served. */
static void printString(uint32_t id) {
    printText(Resource_GetString(FIRST_MODULE, id));
    Resource_Release(FIRST_MODULE, id);
}

/* Writes one record of each level. An argument is a type code and a value; a zero ends the list.
   Numbers of 64 bits are passed in two halves, dates, times, texts and bytes by address. */
static void writeRecords(void) {
    static const unsigned char key[] = {0x5A, 0x01, 0xFF};
    const int64_t balance = -1234567890123;
    const uint64_t counter = 9876543210;
    const double rate = 92.5;
    uint64_t rateBits;
    memcpy(&rateBits, &rate, sizeof rateBits);
    TerminalDate date;
    TerminalTime time;
    GetDateTime(&date, &time);

    TraceExSupport(FIRST_MODULE, FIRST_STARTED, Date, &date, Time, &time, String, "first",
                   ByteArray, key, (unsigned)sizeof key, 0);
    TraceExDebug(FIRST_MODULE, FIRST_SMALL_NUMBERS, Char, 'A', Byte, 200, Bool, 1, Short, -300,
                 Word, 400, Long, -50000, DWord, 60000u, 0);
    TraceExDebug(FIRST_MODULE, FIRST_LARGE_NUMBERS, Int64, UTI_TRACE_HALVES(balance), UInt64,
                 UTI_TRACE_HALVES(counter), Double, UTI_TRACE_HALVES(rateBits), 0);
    TraceExError(FIRST_MODULE, FIRST_NO_PAPER, Byte, 1, 0);
}

int main(int argc, char **argv) {
    if (argc > 2 || (argc == 2 && chdir(argv[1]) != 0)) {
        fprintf(stderr, "usage: first [FOLDER]\n");
        return 2;
    }

    /* The first call that names a module loads its file. Results are 0 or a negative code. */
    int32_t result = Resource_IsValid(FIRST_MODULE, FIRST_VERSION);
    if (result != UTI_OK) {
        fprintf(stderr, "first: no first.res of version %d here: %d\n", FIRST_VERSION, (int)result);
        return 1;
    }
    printf("Is first.res of version 1? %d Of version 2? %d\n", (int)result,
           (int)Resource_IsValid(FIRST_MODULE, 2));

    /* Records of all levels, as lines of text, in first.log and up to seven files more. */
    const TraceExSettings settings = {.output = TRACE_OUTPUT_FILE,
                                      .mode = 3,
                                      .text = 1,
                                      .device.baseName = "first",
                                      .maxSize = 65536};
    result = TraceExOpen(&settings);
    if (result != UTI_OK)
        fprintf(stderr, "first: no trace log: %d\n", (int)result);

    /* A language switch reaches every later string, those of the log's wording as well. */
    ResourceLanguageInfo languages[MOST_LANGUAGES];
    const int32_t count = Resource_GetLanguages(FIRST_MODULE, 1, languages, MOST_LANGUAGES);
    for (int32_t i = 0; i < count; ++i) {
        Resource_SetLanguage(languages[i].code);
        printf("%s:\n", Resource_GetCurrentLanguage());
        printString(FIRST_GREETING);
        writeRecords();
        printString(FIRST_FAREWELL);
    }

    /* What should never happen goes to the log with its place in the sources; the program goes on.
       The library does the same: this string does not exist, and reads as an empty one. */
    TraceExAssert("examples/first/first.c", __LINE__);
    printf("A missing string: \"%s\"\n", Resource_GetString(FIRST_MODULE, 0x4001));

    Resource_Close(FIRST_MODULE);
    TraceExClose();
    return 0;
}
