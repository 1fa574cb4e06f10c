/* face.c: a plain C program against the built library: it writes exported variables and the library
   sees it, it reads what the library wrote, and the headers and argument lists work from C. */
#include "terminal.h"
#include "uti.h"

#include <stdio.h>
#include <string.h>

static int failures;

static void expect(int holds, const char *what) {
    if (!holds) {
        fprintf(stderr, "face: %s\n", what);
        ++failures;
    }
}

int main(void) {
    char bytes[2] = "";
    bytesReadInMemory = 3;
    expect(Memory_Read((uintptr_t) "abcde", bytes, 2) == 2 && memcmp(bytes, "de", 2) == 0,
           "the library reads a variable that the program wrote");
    expect(bytesReadInMemory == 5, "the program reads a variable that the library wrote");

    expect(Parser_Initialize(2, 4) == UTI_OK && tagIdSize == 2 && lengthSize == 4, "header sizes");
    Parser_DataRead = Memory_Read;
    bytesReadInMemory = 0;
    TlvHeader header;
    expect(TLV_ReadHeader((uintptr_t) "\1\200\2\0\0", &header) == UTI_OK && header.tag == 0x8001,
           "the library calls a function that the program installed");

    List *list = List_Create();
    expect(list && list->AddTail == AddTail && list->AddTail(list, bytes) != NULL,
           "a function has one address, inside the library and outside");
    List_Destroy(list);

    TerminalDate date;
    TerminalTime time;
    GetDateTime(&date, &time);
    expect(TraceExError("face", 1, Date, &date, Time, &time, String, (const void *)0, 0) ==
               UTI_TRACE_NOT_WRITTEN,
           "a record while the log is closed");
    return failures;
}
