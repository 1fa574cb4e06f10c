/*
 * terminal.h: the terminal's system API, as the uti library calls it.
 *
 * On the terminal these functions belong to the host process. On a PC libuti-host.so supplies
 * them (host/terminal/), and the tests supply a controllable set of their own (tests/fakes/).
 *
 * Conventions
 *
 *  1. Every function has C linkage, runs on the caller's thread and never throws.
 *  2. Texts are zero-terminated bytes in the terminal's code page. No pointer may be null unless
 *     its description says so.
 *  3. A handle is a signed 32-bit number; a negative number is a failure and its own error code.
 *  4. Counts and sizes are in bytes, offsets count from the start of the file.
 *  5. Functions that take a buffer from the caller never write past the size they are given.
 *  6. What a function hands out stays the platform's; nothing here is freed by the caller.
 *  7. Memory that is read or written as bytes may have any address.
 *
 * uti-platform-check (docs/platform-check.md) holds a terminal to what a program sees of this.
 */
#ifndef UTI_PLATFORM_TERMINAL_H
#define UTI_PLATFORM_TERMINAL_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------ date, time, clock ---- */

/** A date as the clock gives it: 6 bytes. */
typedef struct TerminalDate {
    int16_t year;        /**< full year, such as 2026 */
    uint8_t month;       /**< 1 to 12 */
    uint8_t day;         /**< 1 to 31 */
    uint8_t reserved[2]; /**< the platform's own; nobody else reads or writes it */
} TerminalDate;

/** A time of day as the clock gives it: 3 bytes. */
typedef struct TerminalTime {
    uint8_t hour;   /**< 0 to 23 */
    uint8_t minute; /**< 0 to 59 */
    uint8_t second; /**< 0 to 59 */
} TerminalTime;

/** Fills the present local date and time. */
void GetDateTime(TerminalDate *date, TerminalTime *time);

/** Milliseconds since some fixed moment; wraps around at 2^32. */
uint32_t GetTicks(void);

/** Lets the platform work off its pending events and waits for `milliseconds`. */
void Wait(uint32_t milliseconds);

/** Like `Wait`, and allows the terminal to save power meanwhile. */
void WaitSleep(uint32_t milliseconds);

/* ------------------------------------------------------------------------------ files ---- */

enum {
    FILE_MODE_CREATE = 0, /**< write; the file is created, or cut to nothing when it exists */
    FILE_MODE_READ = 1,   /**< read an existing file */
    FILE_MODE_APPEND = 2  /**< read and write; the file is created when missing, kept when not;
                               the position is 0 after opening */
};

/** Opens `path` in a mode of the list above. Returns a handle of 0 or more, negative on failure. At
 *  least eight files can be open at a time: the library keeps one for each resource module and each
 *  log. Bytes are stored as they are, whatever their values. */
int32_t File_Open(const char *path, int32_t mode);

/** Closes a handle of `File_Open`. Returns 0, negative for a handle that is not open. */
int32_t File_Close(int32_t handle);

/** Reads up to `count` bytes at the position and moves it. Returns the number of bytes read, which
 *  is smaller at the end of the file and 0 there and behind; negative on failure. */
int32_t File_Read(int32_t handle, void *buffer, uint32_t count);

/** Writes `count` bytes at the position and moves it. Returns the number of bytes written, which
 *  is smaller when the medium is full; negative on failure. */
int32_t File_Write(int32_t handle, const void *buffer, uint32_t count);

/** Sets the position to `offset`, which may be the end of the file. Returns 0, anything else on
 *  failure. An offset behind the end may be a failure. */
int32_t File_SetPosition(int32_t handle, uint32_t offset);

/** Returns the length of an open file, negative on failure. */
int32_t File_GetLength(int32_t handle);

/** Fills the local date and time of the file's last change. Returns 1, or 0 when they cannot be
 *  had (both records are then untouched). */
int32_t File_GetTime(const char *path, TerminalDate *date, TerminalTime *time);

/** Returns 1, and no other number, when `path` names an existing file that can be read; 0 for a
 *  missing one and for a folder. */
int32_t File_IsValid(const char *path);

/** Deletes a file. Returns 0, anything else on failure, such as a missing file. */
int32_t File_Delete(const char *path);

/* --------------------------------------------------------------------- serial, printer ---- */

/** What `ComPort_Open` reads: 12 bytes. */
typedef struct ComPortParameters {
    uint8_t port; /**< number of the port, 1 and up; 100 is the USB port */
    uint8_t reserved[3];
    uint32_t speed;  /**< the platform's code of the line speed; 9 stands for 115200 baud */
    uint32_t format; /**< the platform's code of the frame; 4 stands for 8 data bits, no parity */
} ComPortParameters;

/** Opens a serial port by its parameters (at least 12 readable bytes). Returns a handle of 0 or
 *  more, negative on failure. */
int32_t ComPort_Open(const void *parameters);

/** Sends `count` bytes. Returns the number of bytes sent, 0 or less on failure, such as a port that
 *  is not open. */
int32_t ComPort_Write(int32_t handle, const void *buffer, uint32_t count);

/** Receives up to `count` bytes, waiting up to `milliseconds` for the first of them; 0 takes what
 *  has come. Returns the number of bytes received, 0 when none came in time, negative on failure.
 *  For applications; the library itself only sends. */
int32_t ComPort_Read(int32_t handle, void *buffer, uint32_t count, uint32_t milliseconds);

/** Closes the port. Returns 0, negative for a handle that is not open. */
int32_t ComPort_Close(int32_t handle);

/** Opens the printer; `parameters` are the platform's own (zeros select its defaults). Returns 0,
 *  anything else on failure. */
int32_t Printer_Open(const void *parameters);

/** Prints a text; `style` 0 is the normal font. Returns 0, anything else on failure, such as a
 *  printer that is not open. */
int32_t Printer_PrintString(const char *text, int32_t style);

/** Closes the printer. Returns 0. */
int32_t Printer_Close(void);

/* ------------------------------------------------------------------ display, keyboard ---- */

/** Returns the display's handle, negative when there is no display. */
int32_t Display_GetHandle(void);

/** Returns nonzero when an event of the display other than a key waits to be seen to, such as its
 *  being closed. */
int32_t Display_CheckEvent(void);

/** Places the text cursor, counting from 0. */
void Display_SetCursorPosition(uint8_t column, uint8_t row);

/** Codes of the terminal's keys. Digits and letters are their characters, as are '*' and '#'; keys
 *  of one terminal or another have other codes between 90 and 195. */
enum TerminalKey {
    TERMINAL_KEY_BACKSPACE = 8,
    TERMINAL_KEY_ENTER = 13,
    TERMINAL_KEY_LAYOUT = 26, /**< goes on to the next set of letters */
    TERMINAL_KEY_ESCAPE = 27,
    TERMINAL_KEY_F1 = 129,
    TERMINAL_KEY_F2 = 130,
    TERMINAL_KEY_MENU = 188,
    TERMINAL_KEY_UP = 189,
    TERMINAL_KEY_DOWN = 190,
    TERMINAL_KEY_UP_2 = 191, /**< a second pair of arrow keys */
    TERMINAL_KEY_DOWN_2 = 192
};

/** Takes the code of the last key that was pressed, `TerminalKey`; 0 when there is none since it
 *  was taken. */
uint8_t Keyboard_GetLastKey(void);

/** Forgets the keys that were pressed. */
void Keyboard_Reset(void);

/* ------------------------------------------------------------ environment and identity ---- */

/** Returns the number of the terminal's type. */
int32_t Terminal_GetType(void);

/** Copies the value of the environment variable `name` into `buffer`, at most `size` - 1
 *  characters and a terminating zero; `flags` is 0. Returns the number of characters copied, 0 or
 *  less when the variable is missing or empty. */
int32_t System_GetEnv(const char *name, char *buffer, int32_t size, int32_t flags);

/** Copies the name of the running application into `buffer`, at most `size` - 1 characters and a
 *  terminating zero. Returns the number of characters copied. */
int32_t GetApplicationName(char *buffer, int32_t size);

/** Told of every assertion of the library, whether or not the trace log is open: the source that it
 *  names, and the line. Optional: on a terminal that lacks it nobody is told. */
void Terminal_NoteAssertion(const char *sourcePath, int32_t line);

/* --------------------------------------------------------------------- text and numbers ---- */

/** Copies `count` characters from `source` to `destination` as lower-case letters; the two may be
 *  the same. No terminating zero is added. */
void TextToLowercase(const char *source, char *destination, uint32_t count);

/** Copies `count` characters as upper-case letters; otherwise like `TextToLowercase`. */
void TextToUppercase(const char *source, char *destination, uint32_t count);

/** Writes `value` in `radix` 2 to 36 with a terminating zero into `out` (34 bytes are always
 *  enough). Returns `out`. */
char *ltoa(int32_t value, char *out, int32_t radix);

/** Writes `value` in signed decimal into `out`, cut to `size` - 1 characters. Returns `out`. */
char *Int64ToStr(int64_t value, char *out, uint32_t size);

/** Writes `value` in unsigned decimal into `out`, cut to `size` - 1 characters. Returns `out`. */
char *UInt64ToStr(uint64_t value, char *out, uint32_t size);

/* ------------------------------------------------------------- byte-order converters ---- */

/** The 2 little-endian bytes at `buffer` as a number. */
uint16_t BufferToWord(const void *buffer);

/** The 4 little-endian bytes at `buffer` as a number. */
uint32_t BufferToDword(const void *buffer);

/** The 8 little-endian bytes of an IEEE 754 double at `buffer` as a number. */
double BufferToDouble(const void *buffer);

/** The 2 big-endian bytes at `buffer` as a signed number. */
int16_t BEBufferToShort(const void *buffer);

/** Writes `value` as 2 big-endian bytes. */
void ShortToBEBuffer(int16_t value, void *buffer);

/** Writes `value` as 4 big-endian bytes. */
void LongToBEBuffer(int32_t value, void *buffer);

#ifdef __cplusplus
}
#endif

#endif /* UTI_PLATFORM_TERMINAL_H */
