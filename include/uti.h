/*
 * uti.h: application services for small Linux terminals.
 *
 * One shared library, libuti.so; this header is its whole face and is valid C11 and C++20. The
 * terminal's own system API (platform/terminal.h) is supplied by the host process.
 *
 * Conventions
 *
 *  1. Every function has C linkage, runs on the caller's thread, returns, and never throws. The
 *     library owns no thread, no timer and no main loop, and nothing runs when it is loaded.
 *  2. All state is process-wide and unlocked: use the library from one thread at a time.
 *  3. Results are 0 for success and the negative codes of `enum UtiResult` for failure, except
 *     where a block says otherwise (List and Storage answer 1 for success and 0 for failure;
 *     the string calls answer an address).
 *  4. Texts are zero-terminated bytes in the terminal's code page. Sizes are in bytes. A pointer
 *     may be null only where its description says so; a null where none is allowed, and any other
 *     broken precondition, is reported with `TraceExAssert` and answered with the failure value.
 *  5. Memory comes from `malloc`. Nothing that a function hands out is freed by the caller, unless
 *     its description names the function that frees it.
 *  6. Exported variables are the library's to write and the application's to read, unless their
 *     description says that applications may set them.
 *  7. Input may hold anything: resource files, descriptions, blocks and logs that are damaged or
 *     hostile give an error and never a fault.
 *  8. The terminal is a machine of 32-bit words, where a handle, an address and an argument word
 *     are alike. On a 64-bit machine the fields and parameters that can hold an address are
 *     `uintptr_t` wide; everything else keeps its width.
 *
 * Contents, in this order; each block begins with what its functions share. The formats of all
 * files and blocks are drawn in docs/formats.md, which is installed with the documentation.
 *
 *  Result codes                 `enum UtiResult`
 *  Trace log                    TraceEx...
 *  Monitoring log               MonitorEx..., traceMonitorWrite
 *  TLV parser                   Parser_..., TLV_ReadHeader, Memory_...
 *  List                         List_... and the operations of its table
 *  Storage                      Storage_..., CalcHash, FindEntry
 *  Resources                    Resource_..., resource_..., the walk callbacks of a resource file
 *  INI files                    Ini_..., IntiSectionKeyInfo
 *  BER-TLV                      BerTlv_...
 *  USSD and SMS                 UTILS_Parse..., IsNumeric, UTILS_GetVersion
 *  Dialogs                      records, requests, Dialog..._DoModal, callbacks, pictures
 *  Code pages, fonts and text   ISO8859ToOEM, CodePageManager_..., Text_...
 */
#ifndef UTI_H
#define UTI_H

#include <stdint.h>

/** Version of the library; the build takes its own from here. */
#define UTI_VERSION "1.1.25.4"

#define UTI_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

struct TerminalDate; /* platform/terminal.h */
struct TerminalTime;

/** Result codes. */
enum UtiResult {
    UTI_OK = 0,

    UTI_PARSER_NO_NODE = -3000,      /**< no further child; parent not compound or empty; null */
    UTI_PARSER_BAD_VALUE = -3001,    /**< null or compound node, buffer too small, short read */
    UTI_PARSER_BAD_TYPE = -3002,     /**< wrong length or type code for the value asked for */
    UTI_PARSER_NULL_NODE = -3003,    /**< null node or callback */
    UTI_PARSER_SHORT_HEADER = -3004, /**< the stream ends inside a node header */
    UTI_PARSER_BAD_SIZES = -3005,    /**< a header size other than 1, 2 or 4 */

    UTI_RESOURCE_SMALL_ARRAY = -3051,   /**< the caller's array has too few places */
    UTI_RESOURCE_NOT_LOADED = -3052,    /**< the file is missing, or is no resource file */
    UTI_RESOURCE_OTHER_VERSION = -3054, /**< the module has another version */
    UTI_RESOURCE_BAD_NAME = -3055,      /**< module name null or longer than 12 characters */
    UTI_RESOURCE_NO_MEMORY = -3056,     /**< out of memory while loading */

    UTI_TRACE_REFUSED = -3100,     /**< open or mode refused */
    UTI_TRACE_NOT_WRITTEN = -3102, /**< record not written, or written in part */

    UTI_MONITOR_REFUSED = -3105,    /**< open refused */
    UTI_MONITOR_CLOSED = -3106,     /**< no monitoring log is open */
    UTI_MONITOR_OVER_LIMIT = -3108, /**< written, but the file has passed its limit */

    UTI_DIALOG_NOT_FOUND = -3200,     /**< no such description, or a list without a menu */
    UTI_DIALOG_TIME_OUT = -3201,      /**< the allowed time has passed */
    UTI_DIALOG_CANCELLED = -3202,     /**< Escape, or a callback showed something else */
    UTI_DIALOG_BROKEN_OFF = -3203,    /**< broken off by the request's function */
    UTI_DIALOG_NO_ICONS = -3205,      /**< icons are not supported */
    UTI_DIALOG_OTHER_TYPE = -3206,    /**< a description of another type */
    UTI_DIALOG_TOO_MANY = -3208,      /**< an eleventh control of a kind, a third menu element */
    UTI_DIALOG_NOTHING_SAVED = -3209, /**< nothing was drawn in the signature box */
    UTI_DIALOG_NULL = -5500,          /**< null given to the form builder */
    UTI_IMAGE_NOT_VALID = -2253,      /**< no such image file */

    UTI_GSM_FAILED = -3452, /**< no USSD response or SMS data, or one that means failure */

    UTI_INI_FAILED = -3500,      /**< bad argument, file not loadable, or out of memory */
    UTI_INI_NO_SECTION = -3502,  /**< the file has no section of that name */
    UTI_INI_NO_KEY = -3503,      /**< the section has no key of that name */
    UTI_INI_SMALL_BUFFER = -3505 /**< the value does not fit the caller's buffer */
};

/* ============================================================================ trace log ====
 *
 * One log per process. Records carry a date and time, a level, a module name, a 16-bit message id
 * and typed arguments. They go to a set of eight rotating files, the same through a buffer, a
 * serial port, or the printer; as binary records (drawn in docs/formats.md) or as lines of text
 * whose wording is the string `messageId` of the resource module `module`.
 *
 * While the log is closed, records and assertions cost a pointer test and are dropped.
 */

/** Type codes of a trace argument list: each argument is a type code followed by its value.
 *  A code outside 1 to 14 ends the list; write 0.
 *
 *  Scalars are passed as 32-bit words (`int` or `unsigned int`), 64-bit values and doubles as two
 *  of them, the high half first (see `UTI_TRACE_HALVES`). Addresses are passed as addresses: on a
 *  64-bit machine write `(const void *)0` for a null one, a plain 0 is only a scalar there. */
enum TraceArgument {
    Char = 1,      /**< low byte; text form 'c' in single quotes */
    Byte = 2,      /**< low byte, 0 to 255 */
    Bool = 3,      /**< low byte; nonzero is true */
    Short = 4,     /**< low 16 bits, signed */
    Word = 5,      /**< low 16 bits; printed as if signed */
    Long = 6,      /**< 32 bits, signed */
    DWord = 7,     /**< 32 bits; printed as if signed */
    Int64 = 8,     /**< two words, high half first */
    UInt64 = 9,    /**< two words, high half first */
    Double = 10,   /**< two words, high half of the IEEE 754 double first */
    Date = 11,     /**< address of a `TerminalDate`; null reads as all zero */
    Time = 12,     /**< address of a `TerminalTime`; null reads as all zero */
    String = 13,   /**< address of a zero-terminated text; may be null */
    ByteArray = 14 /**< address, then length in bytes; a null address takes no length */
};

/** The two list words of a 64-bit integer `value`, for example
 *  `TraceExDebug("app", 7, Int64, UTI_TRACE_HALVES(total), 0)`. */
#define UTI_TRACE_HALVES(value) (uint32_t)((uint64_t)(value) >> 32), (uint32_t)((uint64_t)(value))

/** One word of an argument list in memory: wide enough for a scalar or an address. */
typedef uintptr_t TraceWord;

/** Outputs of the trace log. */
enum TraceExOutput {
    TRACE_OUTPUT_FILE = 0,    /**< a set of eight rotating files */
    TRACE_OUTPUT_SERIAL = 1,  /**< a serial port */
    TRACE_OUTPUT_PRINTER = 2, /**< the printer, always as text */
    TRACE_OUTPUT_BUFFERED = 3 /**< like 0, through a buffer that `TraceExFlush` empties */
};

/** Where the records of an output go: 36 bytes. */
typedef union TraceExDevice {
    char baseName[33];      /**< outputs 0 and 3: base of the file names, 1 to 30 characters */
    uint8_t parameters[36]; /**< outputs 1 and 2: handed to `ComPort_Open`, `Printer_Open` */
    uint32_t alignment;
} TraceExDevice;

/** Settings of `TraceExOpen`. */
typedef struct TraceExSettings {
    uint32_t output;      /**< `enum TraceExOutput` */
    uint32_t mode;        /**< highest level written: 1 errors, 2 and support, 3 and debug */
    char modules[128];    /**< module names, each followed by a comma; empty enables all. A name
                               is enabled when it occurs with its comma anywhere in this text, so
                               "GUI," enables the module UI as well */
    uint8_t text;         /**< 0: binary records, anything else: lines of text */
    TraceExDevice device; /**< by `output` */
    int32_t maxSize;      /**< outputs 0 and 3: bytes of the whole set, at least 256; each of the
                               eight files takes an eighth */
} TraceExSettings;

/** Opens the trace log. Continues the newest file of the set, or starts its first.
 *
 *  The environment variable EXT_DEBUG, when set, replaces `settings`: "C" and a number for that
 *  serial port, "CU" for port 100, "P" for the printer, anything else for files named after the
 *  application; all of them binary, in mode 3.
 *  `settings` is copied; null selects error records in files named after the application,
 *  65536 bytes in all.
 *
 *  Returns 0; UTI_TRACE_REFUSED when the log is open already, memory is short, the output is
 *  unknown, `maxSize` is below 256, or `baseName` is empty or longer than 30 characters; the
 *  negative code of `ComPort_Open` or `File_Open`; the nonzero result of `Printer_Open`. */
UTI_API int32_t TraceExOpen(const TraceExSettings *settings);

/** Writes what is buffered, closes the output and the log. Nothing happens when it is closed. A
 * write that fails here is reported nowhere, since the log that would take the report is closing:
 * call `TraceExFlush` first where that matters. */
UTI_API void TraceExClose(void);

/** Sets the highest level written. Returns 0; UTI_TRACE_REFUSED when the log is closed or `mode`
 *  is not 1, 2 or 3 (the mode is then unchanged). */
UTI_API int32_t TraceExSetMode(int32_t mode);

/** Returns the mode, 0 when the log is closed. */
UTI_API int32_t TraceExGetMode(void);

/** Output 3: writes the buffer to the current file. A short write counts as written and is
 *  reported with `TraceExAssert`; when it happens inside a record, right behind that record. */
UTI_API void TraceExFlush(void);

/** Writes a record of level 1. `module` names the module and the resources with the wording;
 *  null reads as an empty name. Of `messageId` the low 16 bits count. Then the argument list.
 *
 *  Returns 0; UTI_TRACE_NOT_WRITTEN when the log is closed, the level is above the mode, the
 *  module is filtered out, memory is short, the record is too large or a write fails; the
 *  negative code of `File_Open` when the next log file cannot be opened.
 *
 *  Output 0 refuses a record of `maxSize` / 8 bytes or more and writes an error record of the
 *  module "TRACE" with its size instead. */
UTI_API int32_t TraceExError(const char *module, uint32_t messageId, ...);

/** Writes a record of level 2, in modes 2 and 3. Otherwise like `TraceExError`. */
UTI_API int32_t TraceExSupport(const char *module, uint32_t messageId, ...);

/** Writes a record of level 3, in mode 3. Otherwise like `TraceExError`. */
UTI_API int32_t TraceExDebug(const char *module, uint32_t messageId, ...);

/** Reports a broken precondition: `TraceExError("ASSERT", 1, String, sourcePath, Long, line, 0)`
 *  and its result. Its text is "ASSERT File: {0}  Line: {1}", always. */
UTI_API int32_t TraceExAssert(const char *sourcePath, int32_t line);

/** Copies the contents of the log files to `out`, oldest file first, as they were written and
 * without a terminator. The log goes on afterwards.
 *
 *  Returns the number of bytes placed; 0 for a null `out`, a `size` of 0 or less, a closed log or
 *  an output other than 0. In place of the log stands, cut to `size`, one of the texts
 *  "LOG FILE NOT FOUND"; "LOG FILE '%s' NOT OPEN" (the files behind it follow); or, when the files
 *  do not fit, "SIZE %ld TOO SMALL" and a line "%s(%ld) [%ld]" for each file met: its name, its
 *  length and the space that would remain. */
UTI_API int32_t TraceExGetLog(char *out, int32_t size);

/* ======================================================================= monitoring log ====
 *
 * One log of events per process, beside the trace log and independent of it: binary records like
 * those of the trace log but with little-endian numbers (drawn in docs/formats.md), in a file
 * "%s.mlog" that grows. Once the file "%s_1.mlog" exists, every open starts a new one with the next
 * free number.
 */

enum {
    MONITOR_MODE_DIRECT = 0,  /**< every piece of a record is written at once */
    MONITOR_MODE_BUFFERED = 1 /**< through a buffer of 8192 bytes */
};

/** Settings of `MonitorExOpen`. */
typedef struct MonitorExSettings {
    uint32_t mode;     /**< MONITOR_MODE_BUFFERED, or anything else for direct writing */
    char baseName[33]; /**< base of the file names, 1 to 28 characters */
    int32_t maxSize;   /**< bytes of the file above which records report it; at least 65536 */
} MonitorExSettings;

/** Opens the monitoring log; `settings` is copied. When no buffer can be had it writes directly.
 *  Returns 0; UTI_MONITOR_REFUSED when a log is open, memory is short, `baseName` is empty or too
 *  long for its number, or the end of an existing file cannot be reached; the negative code of
 *  `File_Open`. */
UTI_API int32_t MonitorExOpen(const MonitorExSettings *settings);

/** Writes a record of level 2 of the module "Monitor" with an argument list as the trace log takes
 *  it. Returns 0; UTI_MONITOR_CLOSED; UTI_MONITOR_OVER_LIMIT when the record was written but the
 *  file has passed `maxSize`; UTI_TRACE_NOT_WRITTEN when memory is short or a write failed. */
UTI_API int32_t MonitorExWrite(uint32_t messageId, ...);

/** Writes a record with a level and a module name of the caller's (null reads as an empty name).
 *  `list` holds the argument words and may be null for none. Results as `MonitorExWrite`. */
UTI_API int32_t traceMonitorWrite(uint32_t messageId, uint32_t level, const char *module,
                                  const TraceWord *list);

/** Writes what is buffered. A short write counts as written and is reported. */
UTI_API void MonitorExFlush(void);

/** Flushes and closes the log. Nothing happens when it is closed. */
UTI_API void MonitorExClose(void);

/* =========================================================================== TLV parser ====
 *
 * Reads one tag-length-value stream at a time, from an open file or from memory, forward only.
 * The stream is drawn in docs/formats.md. A reader calls `Parser_Initialize`, then one root-node
 * call, then `Parser_ParseNode` with a callback that takes the node's children with
 * `Parser_GetNextSubNode` and, before it asks for the next, consumes each one: reads it with the
 * getter of its type, hands it to a nested callback, or skips it with
 * `Parser_GetParameterInsignificant`.
 */

/** A node as its header describes it; the caller owns the record. */
typedef struct ParserNode {
    uint16_t tag;         /**< tag id; the top bit of the stored tag marks a compound node */
    uintptr_t source;     /**< file handle, or address of the stream's first byte */
    uint32_t valueOffset; /**< offset of the value from the start of the stream */
    uint32_t length;      /**< bytes of the value */
} ParserNode;

/** What `TLV_ReadHeader` fills. */
typedef struct TlvHeader {
    uint32_t tag;
    uint32_t length;
} TlvHeader;

/** Reads `count` bytes of a source; returns the number read. */
typedef uint32_t (*ParserReadFunction)(uintptr_t source, void *destination, uint32_t count);

/** Moves a source to an absolute offset; returns 0 on success. */
typedef int32_t (*ParserSeekFunction)(uintptr_t source, uint32_t offset);

/** A walk callback: 0 goes on, anything else ends the walk and is its result. */
typedef int32_t (*ParserCallback)(ParserNode *node);

/** A walk callback with a word of the caller's. */
typedef int32_t (*ParserCallbackEx)(ParserNode *node, uintptr_t word);

UTI_API extern uint8_t tagIdSize;          /**< bytes of a tag id; 0 before `Parser_Initialize` */
UTI_API extern uint8_t lengthSize;         /**< bytes of a length; 0 before `Parser_Initialize` */
UTI_API extern uint32_t bytesRead;         /**< offset of the next byte that the parser reads */
UTI_API extern uint32_t bytesReadInMemory; /**< the memory source's own position */
UTI_API extern ParserReadFunction Parser_DataRead;    /**< read operation of the source */
UTI_API extern ParserSeekFunction Parser_SetPosition; /**< seek operation of the source */

/** Sets the bytes of a tag id and of a length, each 1, 2 or 4. With 4-byte tag ids a node keeps
 *  the low 16 bits and no node is compound. Returns 0; UTI_PARSER_BAD_SIZES, nothing changed. */
UTI_API int32_t Parser_Initialize(uint8_t tagSize, uint8_t sizeOfLength);

/** Reads a header at the position. Returns 0; UTI_PARSER_SHORT_HEADER (`bytesRead` unchanged). */
UTI_API int32_t TLV_ReadHeader(uintptr_t source, TlvHeader *header);

/** Selects the open file `handle`, goes to its start and fills `node` with its root. The handle
 *  stays the caller's. Returns 0; UTI_PARSER_NO_NODE, UTI_PARSER_SHORT_HEADER. */
UTI_API int32_t Parser_GetRootNode(int32_t handle, ParserNode *node);

/** Selects the stream at `address` and fills `node` with its root. The memory stays the caller's
 *  and must outlive the walk. Its size is not known: reads are bounded only by the lengths in the
 *  stream, so prefer `Parser_GetRootNodeInBlock`. Results as `Parser_GetRootNode`. */
UTI_API int32_t Parser_GetRootNodeInMemory(const void *address, ParserNode *node);

/** Like `Parser_GetRootNodeInMemory` for a block of `size` bytes: a read past its end is a short
 *  read and a seek past its end fails, so nothing outside the block is touched. */
UTI_API int32_t Parser_GetRootNodeInBlock(const void *address, uint32_t size, ParserNode *node);

/** Fills `child` from the header at the position; `parent` supplies the source and must be a
 *  compound node that is not empty. Returns 0; UTI_PARSER_NO_NODE, UTI_PARSER_SHORT_HEADER. */
UTI_API int32_t Parser_GetNextCompoundNode(const ParserNode *parent, ParserNode *child);

/** Fills `child` with the next child of `parent`. Returns 0; UTI_PARSER_NO_NODE when no more than
 *  a header's worth of bytes is left in the parent; UTI_PARSER_SHORT_HEADER. */
UTI_API int32_t Parser_GetNextSubNode(const ParserNode *parent, ParserNode *child);

/** Copies the data of a primitive node of type 1 or 2. No terminating zero is written. Returns the
 *  number of bytes copied, 0 for an empty node; UTI_PARSER_BAD_VALUE when the data is longer than
 *  `size` (nothing is read) or ends early; UTI_PARSER_BAD_TYPE. */
UTI_API int32_t Parser_GetParameterBuffer(const ParserNode *node, void *buffer, uint32_t size);

/** Reads a byte (type 3). `error`, always written, becomes 0, UTI_PARSER_BAD_VALUE (null or
 *  compound node, short read) or UTI_PARSER_BAD_TYPE (wrong length or type code); the result is 0
 *  whenever it is not 0. An empty node reads as 0 without error. */
UTI_API uint8_t Parser_GetParameterByte(const ParserNode *node, int32_t *error);

/** Reads a 16-bit number (type 4). Errors as `Parser_GetParameterByte`. */
UTI_API uint16_t Parser_GetParameterWord(const ParserNode *node, int32_t *error);

/** Reads a 32-bit number (type 5). Errors as `Parser_GetParameterByte`. */
UTI_API uint32_t Parser_GetParameterDword(const ParserNode *node, int32_t *error);

/** Reads an IEEE 754 double (type 6). Errors as `Parser_GetParameterByte`. */
UTI_API double Parser_GetParameterDouble(const ParserNode *node, int32_t *error);

/** Skips the value of a node, compound or primitive, that is still unread. `error` becomes 0, or
 *  UTI_PARSER_BAD_VALUE for a null node or a failed seek. */
UTI_API void Parser_GetParameterInsignificant(const ParserNode *node, int32_t *error);

/** Calls `callback` with the node and returns its result; UTI_PARSER_NULL_NODE for a null node or
 *  callback. */
UTI_API int32_t Parser_ParseNode(ParserNode *node, ParserCallback callback);

/** Like `Parser_ParseNode`, the callback getting `word` as well. */
UTI_API int32_t Parser_ParseNodeEx(ParserNode *node, ParserCallbackEx callback, uintptr_t word);

/** The memory source's read: copies `count` bytes from `source` + `bytesReadInMemory`. Returns
 *  `count`; 0 for a null source. */
UTI_API uint32_t Memory_Read(uintptr_t source, void *destination, uint32_t count);

/** The memory source's seek: sets `bytesReadInMemory`. Returns 0. */
UTI_API int32_t Memory_SetPosition(uintptr_t source, uint32_t offset);

/* ================================================================================= List ====
 *
 * A doubly linked list of item pointers with one cursor. The object carries its operations as a
 * table; call them through it, the List itself first: `list->AddTail(list, item)`. The List owns
 * its nodes and never owns, copies or frees the items. No list argument may be null but that of
 * `List_Destroy`.
 *
 * The cursor is a node and an index kept beside it. `First` and `Last` set both, `Next` and `Prev`
 * move both; an insert makes the new node current and adds 1 to the index without looking where it
 * went, a removal subtracts 1. `IsDone` judges by the index alone, so position the cursor anew
 * after a change. Removing the current node leaves the cursor without a node.
 */

typedef struct List List;

typedef struct ListNode {
    struct ListNode *next;
    struct ListNode *prev;
    void *data; /**< the item, never null */
} ListNode;

struct List {
    int32_t (*GetCount)(List *list);
    int32_t (*IsEmpty)(List *list);
    int32_t (*IsDone)(List *list);
    void *(*First)(List *list);
    void *(*Last)(List *list);
    void *(*Current)(List *list);
    void *(*Next)(List *list);
    void *(*Prev)(List *list);
    void *(*GetDataInPosition)(List *list, int32_t position);
    void (*UpDate)(List *list, void *item);
    ListNode *(*AddHead)(List *list, void *item);
    ListNode *(*AddTail)(List *list, void *item);
    ListNode *(*InsertAfter)(List *list, void *item);
    ListNode *(*InsertBefore)(List *list, void *item);
    void (*Remove)(List *list);
    void (*RemoveAll)(List *list);
    ListNode *(*NewListNode)(List *list, ListNode *prev, ListNode *next, void *item);
    void (*FreeListNode)(List *list, ListNode *node);
    ListNode *(*GetListNode)(List *list);
    int32_t count;
    ListNode *head;
    ListNode *tail;
    ListNode *current; /**< the cursor's node, may be null */
    int32_t index;     /**< the cursor's index */
};

/** Returns a new empty List, or null when memory is short. Free with `List_Destroy`. */
UTI_API List *List_Create(void);

/** Fills a List object in place: empty, the cursor without a node at index 0. */
UTI_API void List_Intitialize(List *list);

/** Removes every node and frees the List object, not the items. A null list is ignored. */
UTI_API void List_Destroy(List *list);

/** Returns the number of nodes. */
UTI_API int32_t GetCount(List *list);
/** Returns 1 when there is no node, else 0. */
UTI_API int32_t IsEmpty(List *list);
/** Returns 1 when the index is below 0 or not below the count, else 0. */
UTI_API int32_t IsDone(List *list);
/** Goes to the head, index 0. Returns its item or null. */
UTI_API void *First(List *list);
/** Goes to the tail, index count - 1. Returns its item or null. */
UTI_API void *Last(List *list);
/** Returns the current node's item or null. */
UTI_API void *Current(List *list);
/** Goes one on; does nothing when the index is not below the count. Returns the new current item or
 *  null. */
UTI_API void *Next(List *list);
/** Goes one back; does nothing when the index is below 0. Returns the new current item or null. */
UTI_API void *Prev(List *list);

/** Goes to `position` (0 or less is the head) by walking from the head. Returns its item, or null
 *  when the list ends before it. */
UTI_API void *GetDataInPosition(List *list, int32_t position);

/** Replaces the current node's item; the old one is not freed. A null item, or no current node,
 *  changes nothing. */
UTI_API void UpDate(List *list, void *item);

/** Insert before the head, after the tail, after and before the current node. The new node becomes
 *  current and is returned. A null item, an insert relative to no current node, or a lack of memory
 *  inserts nothing, returns null and leaves no current node. */
UTI_API ListNode *AddHead(List *list, void *item);
UTI_API ListNode *AddTail(List *list, void *item);
UTI_API ListNode *InsertAfter(List *list, void *item);
UTI_API ListNode *InsertBefore(List *list, void *item);

/** Frees the current node, which leaves none current. */
UTI_API void Remove(List *list);
/** Frees every node. */
UTI_API void RemoveAll(List *list);

/** Internal: allocates a node and links it between `prev` and `next`, either of them null at an
 *  end. Returns the node, or null for a null item or when memory is short. */
UTI_API ListNode *NewListNode(List *list, ListNode *prev, ListNode *next, void *item);

/** Internal: unlinks and frees a node of this list, not its item; null changes nothing. */
UTI_API void FreeListNode(List *list, ListNode *node);

/** Internal: returns the current node or null. */
UTI_API ListNode *GetListNode(List *list);

/* ============================================================================== Storage ====
 *
 * A hash table from 32-bit keys to typed values. Every value is copied in and owned by the
 * Storage. A key occurs once, whatever its type; putting it again replaces value and type.
 * Results are 1 for success and 0 for failure; a null handle, or one without a table, is a
 * failure. The export block is drawn in docs/formats.md.
 */

/** Type codes of stored values (they differ from those of trace arguments). */
enum StorageType {
    STORAGE_CHAR = 0,
    STORAGE_BYTE = 1,
    STORAGE_SHORT = 2,
    STORAGE_WORD = 3,
    STORAGE_LONG = 4,
    STORAGE_DWORD = 5,
    STORAGE_INT64 = 6,
    STORAGE_UINT64 = 7,
    STORAGE_BOOL = 8,
    STORAGE_DOUBLE = 9,
    STORAGE_STRING = 10, /**< strings and byte arrays alike */
    STORAGE_DATE = 11,
    STORAGE_TIME = 12
};

enum { STORAGE_BUCKETS = 97 };

/** One stored value. */
typedef struct StorageEntry {
    uint32_t key;
    int32_t type;              /**< `enum StorageType` */
    void *data;                /**< the value's own copy, never null */
    uint32_t length;           /**< bytes of data */
    struct StorageEntry *next; /**< next entry of the bucket, the older one */
} StorageEntry;

typedef struct StorageTable {
    uint32_t count;     /**< entries */
    uint32_t totalSize; /**< sum of 12 + length over all entries: bytes of the export block */
    StorageEntry *buckets[STORAGE_BUCKETS];
} StorageTable;

/** A Storage: the address of a cell that holds the address of the table. */
typedef StorageTable **Storage;

/** What `Storage_Get` writes for `STORAGE_STRING`: the stored bytes themselves, not a copy. */
typedef struct StorageBytes {
    void *data;
    uint32_t length;
} StorageBytes;

/** Returns a new empty Storage, or null when memory is short. Free with `Storage_Free`. */
UTI_API Storage Storage_Create(void);
/** Frees the Storage with all its values. Returns 1; 0 for null. */
UTI_API int32_t Storage_Free(Storage storage);
/** Removes all values. Returns 1 or 0. */
UTI_API int32_t Storage_Clear(Storage storage);
/** Gives a cell of the caller's a new empty table. Returns 1; 0 for null or short memory. */
UTI_API int32_t Storage_Constructor(Storage cell);
/** Frees the table of a cell of the caller's and empties the cell. */
UTI_API void Storage_Destructor(Storage cell);

/** Stores a copy of `length` bytes as `type` under `key`. Returns 1; 0 for null `bytes`, length 0,
 *  a total size past 32 bits or short memory (the old value is then kept). */
UTI_API int32_t Storage_Put(Storage storage, uint32_t key, int32_t type, const void *bytes,
                            uint32_t length);
UTI_API int32_t Storage_PutChar(Storage storage, uint32_t key, char value);
UTI_API int32_t Storage_PutByte(Storage storage, uint32_t key, uint8_t value);
UTI_API int32_t Storage_PutShort(Storage storage, uint32_t key, int16_t value);
UTI_API int32_t Storage_PutWord(Storage storage, uint32_t key, uint16_t value);
UTI_API int32_t Storage_PutLong(Storage storage, uint32_t key, int32_t value);
UTI_API int32_t Storage_PutDWord(Storage storage, uint32_t key, uint32_t value);
UTI_API int32_t Storage_PutInt64(Storage storage, uint32_t key, int64_t value);
UTI_API int32_t Storage_PutUInt64(Storage storage, uint32_t key, uint64_t value);
UTI_API int32_t Storage_PutBool(Storage storage, uint32_t key, uint8_t value);
UTI_API int32_t Storage_PutDouble(Storage storage, uint32_t key, double value);
/** Stores exactly `length` bytes; pass the text's length + 1 to store its terminator too. */
UTI_API int32_t Storage_PutString(Storage storage, uint32_t key, const char *text, uint32_t length);
UTI_API int32_t Storage_PutByteArray(Storage storage, uint32_t key, const void *bytes,
                                     uint32_t length);
/** Stores the 6 bytes of a date record. */
UTI_API int32_t Storage_PutDate(Storage storage, uint32_t key, const struct TerminalDate *date);
/** Stores the 3 bytes of a time record. */
UTI_API int32_t Storage_PutTime(Storage storage, uint32_t key, const struct TerminalTime *time);

/** Copies the first `count` bytes of the value to `destination`; for `STORAGE_STRING` fills a
 *  `StorageBytes` instead. Returns 1; 0 when the key is absent, its type is another one, or fewer
 *  than `count` bytes are stored (an imported block can hold such). */
UTI_API int32_t Storage_Get(Storage storage, uint32_t key, int32_t type, void *destination,
                            uint32_t count);
UTI_API int32_t Storage_GetChar(Storage storage, uint32_t key, char *value);
UTI_API int32_t Storage_GetByte(Storage storage, uint32_t key, uint8_t *value);
UTI_API int32_t Storage_GetShort(Storage storage, uint32_t key, int16_t *value);
UTI_API int32_t Storage_GetWord(Storage storage, uint32_t key, uint16_t *value);
UTI_API int32_t Storage_GetLong(Storage storage, uint32_t key, int32_t *value);
UTI_API int32_t Storage_GetDWord(Storage storage, uint32_t key, uint32_t *value);
UTI_API int32_t Storage_GetInt64(Storage storage, uint32_t key, int64_t *value);
UTI_API int32_t Storage_GetUInt64(Storage storage, uint32_t key, uint64_t *value);
UTI_API int32_t Storage_GetBool(Storage storage, uint32_t key, uint8_t *value);
UTI_API int32_t Storage_GetDouble(Storage storage, uint32_t key, double *value);
/** Gives the address and the length of the stored bytes. They stay valid until the key is put,
 *  appended to or removed, or the Storage cleared or freed. Either out-pointer may be null. */
UTI_API int32_t Storage_GetString(Storage storage, uint32_t key, char **text, uint32_t *length);
UTI_API int32_t Storage_GetByteArray(Storage storage, uint32_t key, uint8_t **bytes,
                                     uint32_t *length);
UTI_API int32_t Storage_GetDate(Storage storage, uint32_t key, struct TerminalDate *date);
UTI_API int32_t Storage_GetTime(Storage storage, uint32_t key, struct TerminalTime *time);

/** Copies at most `size` - 1 bytes of a string and a terminating zero; a size of 0 writes nothing.
 *  Returns 1; 0 when the key is absent or of another type. */
UTI_API int32_t Storage_GetStringCopy(Storage storage, uint32_t key, char *buffer, uint32_t size);
/** Adds `length` bytes behind a stored string (behind its terminator, when that was stored); with
 *  no string under `key` it is `Storage_PutString`. Returns 1 or 0. */
UTI_API int32_t Storage_AppendString(Storage storage, uint32_t key, const char *text,
                                     uint32_t length);
/** Returns the type code of the value under `key`, -1 when there is none. */
UTI_API int32_t Storage_GetType(Storage storage, uint32_t key);
/** Removes a value. Returns 1; 0 when the key is absent. */
UTI_API int32_t Storage_Remove(Storage storage, uint32_t key);
/** Gives a new array of all keys (null when there are none) and their number, by bucket, the
 *  newest first in each. Free with `Storage_MemFree`. Returns 1 or 0. */
UTI_API int32_t Storage_GetKeys(Storage storage, uint32_t **keys, uint32_t *count);
/** The same as `Storage_GetKeys`. */
UTI_API int32_t Storage_CreateKeysArray(Storage storage, uint32_t **keys, uint32_t *count);

/** Compares two values by type, then length, then bytes. Returns a negative number, 0 or a positive
 *  one; 0 when a Storage is missing or `keyA` is absent, -1 when only `keyB` is. */
UTI_API int32_t Storage_CompareCell(Storage a, uint32_t keyA, Storage b, uint32_t keyB);
/** Compares two Storages: missing ones, then the number of values, then the keys, then value by
 *  value in A's key order. Returns 0 when they are equal, else -1, 1 or the result of
 *  `Storage_CompareCell` for the first values that differ. */
UTI_API int32_t Storage_Compare(Storage a, Storage b);
/** Puts every value of `source` into `destination`; on failure those put already stay. */
UTI_API int32_t Storage_Copy(Storage source, Storage destination);
/** Makes `result` hold the values of A and of B, B's where both have a key; on failure `result` is
 *  unchanged. `result` may be A or B. */
UTI_API int32_t Storage_Merge(Storage a, Storage b, Storage result);
/** Exchanges the contents of two Storages. */
UTI_API int32_t Storage_Swap(Storage a, Storage b);
/** Copies one value with its type. Returns 1; 0 when it is absent or has no known type. */
UTI_API int32_t Storage_CopyField(Storage source, Storage destination, uint32_t sourceKey,
                                  uint32_t destinationKey);
/** Gives a new block with all values (null and size 0 when there are none). Free with
 *  `Storage_MemFree`. `size` may be null. Returns 1 or 0. */
UTI_API int32_t Storage_Export(Storage storage, void **block, uint32_t *size);
/** Clears the Storage and fills it from an export block. Returns 1; 0 for null arguments or a block
 *  that is cut or holds an empty value (the values before the fault stay). */
UTI_API int32_t Storage_Import(Storage storage, const void *block, uint32_t size);
/** Frees a block of `Storage_Export` or `Storage_GetKeys`; null is ignored. Returns 1. */
UTI_API int32_t Storage_MemFree(void *block);
/** Returns its argument. */
UTI_API Storage Storage_Trace(Storage storage);
/** Returns the bucket of a key, 0 to 96. */
UTI_API uint32_t CalcHash(uint32_t key);
/** Returns the entry of a key, or null. It is the Storage's own; do not change or free it. */
UTI_API StorageEntry *FindEntry(Storage storage, uint32_t key);

/* ============================================================================ resources ====
 *
 * A module is a file, its name with ".res" appended (drawn in docs/formats.md), with sections of
 * numbered strings, each with one string table per language. A string id holds the section in bits
 * 15 to 12 and the index in the section's table in bits 11 to 0; sections 0 to 5 exist in files.
 * Modules are loaded by the first call that names them and stay loaded until `Resource_Close`.
 *
 * The environment variable default_lang (two letters) sets the first language, else it is "ru".
 * With EXTRES starting with '1', strings of the module name + "_ext" take precedence.
 *
 * Loading a module uses the TLV parser, so it must not happen in the middle of another walk: fetch
 * what is needed first, then start the walk with `Parser_Initialize`.
 */

enum {
    RESOURCE_NAME_LENGTH = 12,
    RESOURCE_SECTIONS = 15,
    RESOURCE_SMALL_SLOTS = 20,
    RESOURCE_SMALL_LENGTH = 32 /**< longest string of a small slot */
};

/** A language of a section. */
typedef struct ResourceLanguage {
    char code[3];         /**< two letters and a zero */
    uint16_t info;        /**< kept for the application, not used by the library */
    uint32_t tableOffset; /**< file offset of the string table */
} ResourceLanguage;

/** A transient copy of a string of up to 32 bytes; free when `text` is empty. */
typedef struct ResourceSmallString {
    uint16_t id;
    char text[34];
} ResourceSmallString;

/** A transient copy of a longer string. */
typedef struct ResourceLargeString {
    uint16_t id;
    char *text; /**< `length` bytes and a zero */
    uint16_t length;
} ResourceLargeString;

/** A loaded module. */
typedef struct ResourceModule {
    char name[13];
    int32_t handle;                           /**< its open file */
    uint16_t version;                         /**< 0 when the file has none */
    List *languages[RESOURCE_SECTIONS];       /**< of `ResourceLanguage`; null without languages */
    uint32_t tableOffsets[RESOURCE_SECTIONS]; /**< in the current language; 0 is none */
    ResourceSmallString smallStrings[RESOURCE_SMALL_SLOTS];
    List *largeStrings; /**< of `ResourceLargeString`, or null */
} ResourceModule;

/** The strings of one language and module that were read already. */
typedef struct ResourceStoredStrings {
    char key[16];    /**< two letters, the module name and zeros */
    Storage strings; /**< string id to bytes and a zero */
} ResourceStoredStrings;

/** What `Resource_GetLanguages` writes: 6 bytes. */
typedef struct ResourceLanguageInfo {
    char code[3];     /**< two letters and a zero */
    uint8_t reserved; /**< 0 */
    uint16_t info;
} ResourceLanguageInfo;

UTI_API extern List *ModuleList;               /**< of `ResourceModule`, in load order; or null */
UTI_API extern ResourceModule *CurrentModule;  /**< the current module, or null */
UTI_API extern char CurrentModuleName[13];     /**< its name, or empty; may be given as a name */
UTI_API extern char CurrentLanguage[3];        /**< two letters and a zero */
UTI_API extern uint8_t SectionType;            /**< section being parsed */
UTI_API extern uint8_t CheckExternalResources; /**< 1 when "_ext" modules are enabled */
UTI_API extern List *ResourceStorageList;      /**< of `ResourceStoredStrings`, or null */
UTI_API extern char ResourceEmptyStr[1];       /**< the empty string, the answer on failure */

/** Makes a module current and loads it when it is not. The very first call reads default_lang into
 *  `CurrentLanguage`, so call it (or fetch a string) before `Resource_SetLanguage`.
 *  Returns 0; UTI_RESOURCE_BAD_NAME, UTI_RESOURCE_NOT_LOADED, UTI_RESOURCE_NO_MEMORY (the current
 *  module is then unchanged). */
UTI_API int32_t Resource_Initialize(const char *module);

/** Loads a module file as a new module and makes it current; `Resource_Initialize` calls it when
 *  needed. Returns 0; UTI_RESOURCE_NOT_LOADED, UTI_RESOURCE_NO_MEMORY (nothing is then changed). */
UTI_API int32_t Resource_LoadInfo(const char *module);

/** Points every section of the current module at its table in `CurrentLanguage`; sections 3, 4 and
 *  5 fall back to their first language, the others to none. */
UTI_API void Resource_FillLanguageOffsetsForCurrentModule(void);

/** Compares the module's version. Returns 0; an error of `Resource_Initialize`;
 *  UTI_RESOURCE_OTHER_VERSION. */
UTI_API int32_t Resource_IsValid(const char *module, uint16_t version);

/** Writes one record per language of a section, in file order. Returns their number, 0 when the
 *  section has none; an error of `Resource_Initialize`; UTI_RESOURCE_SMALL_ARRAY (nothing is then
 *  written). */
UTI_API int32_t Resource_GetLanguages(const char *module, uint32_t section,
                                      ResourceLanguageInfo *languages, int32_t capacity);

/** Sets the current language for all modules: two lower-case letters and a zero, copied as given.
 *  Strings fetched in another language stay valid. */
UTI_API void Resource_SetLanguage(const char *language);

/** Returns the address of `CurrentLanguage`. */
UTI_API const char *Resource_GetCurrentLanguage(void);

/** Unloads a module (and its "_ext" module when those are enabled): closes its file and frees its
 *  strings of every language. Nothing happens when it is not loaded. */
UTI_API void Resource_Close(const char *module);

/** Walk callbacks of a resource file, for `Parser_ParseNode`; they fill `CurrentModule`. Return 0
 * or the first error met. */
UTI_API int32_t ParseResources(ParserNode *node);
UTI_API int32_t ParseHeader(ParserNode *node);
UTI_API int32_t ParseSection(ParserNode *node);
UTI_API int32_t ParseLanguageBlock(ParserNode *node);

/** Returns string `id` of a module in the current language, zero-terminated; it may hold binary
 *  data. Never null: `ResourceEmptyStr` when the module, the section's table or the string cannot
 *  be read, when memory is short, or when all 20 small slots of the module hold strings that were
 *  not released. A table does not tell its length: an id past its end mostly reads as no string,
 *  but may read as bytes of others, so keep the ids and the file of one build together
 *  (`Resource_IsValid`).
 *
 *  The first fetch gives a transient copy, which `Resource_Release` frees; later fetches give the
 *  stored copy, which stays valid until `Resource_Close`. Strings of 2048 bytes or more are never
 *  stored. So: release each string after use, and do not keep the address. */
UTI_API const char *Resource_GetString(const char *module, uint32_t id);

/** `Resource_GetString` without the "_ext" module. */
UTI_API const char *resource_GetString(const char *module, uint32_t id);

/** Returns string `id` in the given language and leaves the current language as it was; a null or
 *  empty language means the current one. `ResourceEmptyStr` when it is not found; null when the
 *  module cannot be loaded. */
UTI_API const char *Resource_GetStringEx(const char *module, const char *language, uint32_t id);

/** Frees the transient copy of a string, in the "_ext" module too when those are enabled. */
UTI_API void Resource_Release(const char *module, uint32_t id);

/** `Resource_Release` without the "_ext" module. */
UTI_API void resource_Release(const char *module, uint32_t id);

/** Frees all transient copies of a module, and of its "_ext" module when those are enabled. */
UTI_API void Resource_ReleaseAll(const char *module);

/** `Resource_ReleaseAll` without the "_ext" module. */
UTI_API void resource_ReleaseAll(const char *module);

/** Returns the stored copy of a string, or null. A language that is not two characters long (or
 *  null) means that of the environment variable default_lang, else "ru". */
UTI_API const char *resource_FindStoredString(const char *module, const char *language,
                                              uint32_t id);

/** Stores a string of the current language, `length` bytes and a zero. Returns 1; 0 for null
 *  arguments, a module name of more than 12 characters, 2048 bytes or more, or short memory. */
UTI_API int32_t resource_StoreString(const char *module, uint32_t id, const void *bytes,
                                     uint32_t length);

/* ============================================================================ INI files ====
 *
 * Text files of sections, each a line with its name in brackets, and lines of `key=value` below it;
 * lines that begin with ';' or '#' are comments. A file is read on its first use and kept in a
 * cache; reads are answered from there and every change rewrites the whole file, without its
 * comments. What others change in the file is not seen until `Ini_RemoveFileInfoFromCache`, and the
 * next change through the library overwrites it.
 *
 * A file name is used exactly as given: two spellings are two files. Names of sections and keys
 * are trimmed and compared in upper case, but for `Ini_RemoveSection`; the upper case is that of
 * the terminal's code page (`TextToUppercase`), whatever the encoding of the file. Trimming takes
 * the characters 1 to 32 off both ends, then one pair of double quotes around the rest. A section
 * name has 1 to 254 characters, a key name 1 to 255, a value up to 254; longer ones are refused,
 * and skipped in a file. Keys ahead of the first section, or behind a malformed header, belong to
 * the section "NONAME_SECTION". Of equal keys in a section the place of the first and the value of
 * the last count.
 *
 * In a file "&#dd;" stands in a value for the character with the decimal code dd; code 00 ends the
 * value, a sequence that is begun and then different stands as it is, and one that is cut by the
 * end of the value is lost. Line breaks in values are written that way, and nothing else is. So the
 * file does not give back as they were: names with '=', ']' or line breaks, keys that begin with
 * ';', '#' or '[', outer blanks and quotes of names and values, "&#" in values and a '&' that ends
 * one. A value whose line passes 254 characters behind the '=', each line break counting five, is
 * written but not read back: its key is missing after the next start.
 *
 * A byte-order mark makes the first line of a file an ordinary one: a header in it is no header,
 * and the keys below go to NONAME_SECTION. Save such files without it.
 *
 * There can be 32767 files, sections in a file and keys in a section; more are refused, and
 * skipped in a file, a section with its keys. When memory is short nothing is changed, neither in
 * the cache nor on disk.
 */

/** The names of a section and a key as they are compared: 512 bytes. */
typedef struct SectionKeyInfo {
    char key[256];     /**< trimmed, upper-case, zero-terminated */
    char section[256]; /**< the same */
} SectionKeyInfo;

/** Fills `info` with both names. Returns 1; 0, both halves of `info` empty, when a name is null,
 *  longer than 255 characters or nothing but what trimming takes away. */
UTI_API int32_t IntiSectionKeyInfo(const char *section, const char *key, SectionKeyInfo *info);

/** Returns the number of sections in the file; UTI_INI_FAILED for a null or empty name, a file that
 *  is missing, empty or unreadable, and short memory. */
UTI_API int32_t Ini_GetSectionCount(const char *fileName);

/** Copies the upper-case name of section `index`, from 0 in file order, with its terminator into
 *  `out` of `outSize` bytes. Returns 0; UTI_INI_FAILED, `out` unchanged, for a null or empty
 *  argument, a file that cannot be loaded, an index that no section has, a name that does not fit,
 *  and short memory. */
UTI_API int32_t Ini_GetSectionName(const char *fileName, int32_t index, char *out,
                                   uint32_t outSize);

/** Copies the value of a key with its terminator into `out` of `outSize` bytes. Returns 0;
 *  UTI_INI_FAILED for a null or empty argument, a name that trims to nothing or is too long, an
 *  `outSize` below 1, a file that cannot be loaded, and short memory; UTI_INI_NO_SECTION;
 *  UTI_INI_NO_KEY; UTI_INI_SMALL_BUFFER when the value's length is not below `outSize`. After a
 *  failure `out` is empty, or unchanged when it was for an argument. */
UTI_API int32_t Ini_GetStr(const char *fileName, const char *section, const char *key, char *out,
                           int32_t outSize);

/** Sets the value of a key, trimmed, and rewrites the file; adds section and key at the end when
 *  they are missing, and starts the file afresh when it is missing, empty or unreadable. `value`
 *  may be empty; "&#dd;" in it stands as it is until the file is read again. The name of a section
 *  that is added is read as a header line is, so what is left of it after trimming is trimmed
 *  again: a ']' ends it, and quotes inside quotes, or blanks inside them, are gone. The value is
 *  then found under the shorter name alone.
 *
 *  Returns 0, whether or not the file could be written; UTI_INI_FAILED, with nothing changed, for a
 *  null argument, an empty name, one that trims to nothing or is too long, a value of 255
 *  characters or more, one file, section or key too many, and short memory. */
UTI_API int32_t Ini_SetStr(const char *fileName, const char *section, const char *key,
                           const char *value);

/** Reads a value of up to 11 characters as a decimal number into `value`: 0 when it is empty or
 *  begins with none, what follows the number is ignored, and a number outside 32 bits becomes the
 *  nearest inside. Returns 0; an error of `Ini_GetStr`, for longer values UTI_INI_SMALL_BUFFER;
 *  UTI_INI_FAILED for a null `value`. */
UTI_API int32_t Ini_GetLong(const char *fileName, const char *section, const char *key,
                            int32_t *value);

/** `Ini_SetStr` of the decimal text of `value`. */
UTI_API int32_t Ini_SetLong(const char *fileName, const char *section, const char *key,
                            int32_t value);

/** Removes a section with its keys and rewrites the file, also when there is no such section; but
 *  nothing happens to a file that is not in the cache. The name is compared as given, so it must be
 *  in upper case. Returns 0. */
UTI_API int32_t Ini_RemoveSection(const char *fileName, const char *section);

/** Forgets a file, so that its next use reads it again; the file itself stays as it is. Nothing
 *  happens to a file that is not in the cache. Returns 0. */
UTI_API int32_t Ini_RemoveFileInfoFromCache(const char *fileName);

/** Reads the file on disk, not the cache, and copies the lines of a section, other than comments
 *  and headers, as they stand into `out` of `outSize` bytes, each with a terminator. Copying ends
 *  at the first line that would not leave a byte of `out` free behind it. A section that occurs
 *  twice gives the lines of both places.
 *
 *  Returns the number of bytes copied; 0, `out` empty, when there are none or the file cannot be
 *  read; 0 for a null argument, an empty name and an `outSize` below 1. */
UTI_API int32_t Ini_GetSection(const char *fileName, const char *section, char *out,
                               int32_t outSize);

/* ============================================================================== BER-TLV ====
 *
 * Objects in the encoding of ISO/IEC 8825-1: a tag of one to three bytes, a length field of one to
 * five, a value. A tag is the number that its bytes make in their order: 9F 02 is 0x9F02. It is
 * constructed, which means that its value is made of objects, when bit 0x20 of its first byte is
 * set, else primitive. A length field is one byte below 0x80, or 0x80 + n and n bytes, the most
 * significant first; n is 0 to 4, and 0 stands for the length 0.
 *
 * These functions touch their arguments alone, report nothing and may run on any thread.
 */

/** Results of the BER-TLV functions that are not 0. */
enum BerTlvResult {
    UTI_BERTLV_BAD_OBJECT = -1, /**< null argument, no whole tag and length, no room */
    UTI_BERTLV_NOT_FOUND = -2,  /**< no object has the tag */
    UTI_BERTLV_BAD_DATA = -3,   /**< malformed data, null argument, value larger than the buffer */
    UTI_BERTLV_CUT_VALUE = -4   /**< the value is not all inside the bytes left */
};

/** Reads the object at `*cursor` and moves behind it. `*remaining` is the number of bytes from the
 *  cursor on. `*value` becomes the address of the value in the caller's data; do not free. A length
 *  of 0 leaves it as it was. No argument and no `*cursor` may be null.
 *
 *  Returns 0; UTI_BERTLV_BAD_OBJECT for a null, no byte left, a tag that is cut, of four bytes or
 *  the last byte, and a length field that is cut or has n above 4 (nothing is then written);
 *  UTI_BERTLV_CUT_VALUE when the value runs past the bytes left: tag, length and value are written
 *  (a null value when no byte is left), the cursor stays. */
UTI_API int32_t BerTlv_GetTag(const uint8_t **cursor, uint32_t *remaining, uint32_t *tag,
                              uint32_t *length, const uint8_t **value);

/** Copies the value of the first object with tag `wantedTag` among `dataLength` bytes at `data` to
 *  `value`. An object comes before those inside it; the search goes down five levels below the top
 *  one and skips constructed objects under those whole. `*valueLength` is the size of the buffer
 *  at `value`, then the length of the value. The two memories may overlap. Nothing may be null.
 *
 *  Returns 0; UTI_BERTLV_NOT_FOUND; UTI_BERTLV_BAD_DATA for a null, no data, a buffer of 0 bytes,
 *  a value longer than the buffer, and when the search comes to an object that is malformed, runs
 *  past the data of its level or is constructed and empty. On failure nothing is written. */
UTI_API int32_t BerTlv_ExtractSingleTag(const uint8_t *data, uint32_t dataLength,
                                        uint32_t wantedTag, uint32_t *valueLength, uint8_t *value);

/** Returns 1 when a tag of `tagLength` bytes is primitive, 0 when it is constructed. With a length
 *  of 0, or above the 4 bytes that the number holds, it counts as primitive. */
UTI_API int32_t BerTlv_TagIsPrimitive(uint32_t tag, uint32_t tagLength);

/** Writes an object of `length` bytes at `value` to the start of `buffer`, the tag without leading
 *  zero bytes (tag 0 is the one byte 00), the length in its shortest form. `*size` is the size of
 *  the buffer, then the number of bytes written. `value` may lie in the buffer, anywhere.
 *
 *  Returns 0; UTI_BERTLV_BAD_OBJECT, nothing written, for a null, a `length` of 0, a buffer below
 *  4 bytes and an object that does not fit. */
UTI_API int32_t BerTlv_AppendTag(uint32_t tag, uint32_t length, const uint8_t *value,
                                 uint8_t *buffer, uint32_t *size);

/* ========================================================================= USSD and SMS ====
 *
 * Texts of a GSM modem as bytes of Windows-1251. A UCS-2 text comes as four upper-case hexadecimal
 * digits a character; a character that has no byte (other than U+0000 to U+00FF, which keep their
 * value, U+0410 to U+044F, U+0401 and U+0451) becomes a question mark.
 *
 * These functions touch their arguments alone, report nothing and may run on any thread. A buffer
 * `out` of `outSize` bytes gets at most `outSize` - 1 of them, none for a size of 1 or less, and no
 * terminating zero; it may overlap the input.
 */

/** Takes the text out of a USSD response (3GPP TS 27.007), `+CUSD: m,"str",dcs` and a carriage
 *  return, by its data coding scheme (3GPP TS 23.038): UCS-2 in the groups 01xx is decoded, str is
 *  taken as it stands for every other dcs. Of the response's `length` bytes count the first
 *  "+CUSD:", the quote characters farthest apart behind m, the last comma behind those, and the
 *  carriage return after it. Writes a zero at `response[length]`: the memory must have that byte.
 *  m and dcs are decimal, behind any spaces and perhaps with a sign, 0 when there are no digits;
 * dcs counts modulo 256, so -12 is F4.
 *
 *  Returns the length of the text, of which `out` may hold less, 0 when str is no UCS-2 text;
 *  UTI_GSM_FAILED, `out` unchanged, for a null, a missing part, m or dcs of more than 31
 *  characters, str of more than 512 bytes, m 4 (not supported) or 5 (time-out) and dcs 0. */
UTI_API int32_t UTILS_ParseUSSDResponse(char *response, uint32_t length, char *out,
                                        int32_t outSize);

/** Takes the text out of `length` bytes of SMS data, at most 649: as they stand when one of them is
 *  no hexadecimal digit, else as UCS-2, of which lower-case digits or a length that is no multiple
 *  of 4 give an empty text. Returns the number of bytes copied to `out`; UTI_GSM_FAILED, `out`
 *  unchanged, for a null or longer data. */
UTI_API int32_t UTILS_ParseSMSData(const char *data, uint32_t length, char *out, int32_t outSize);

/** Returns 1 when every character of a text is a decimal digit, and for an empty one; else 0, and
 *  for null. */
UTI_API int32_t IsNumeric(const char *text);

/** Returns the `UTI_VERSION` that the library was built as. Do not free. */
UTI_API const char *UTILS_GetVersion(void);

/* ============================================================================== dialogs ====
 *
 * A dialog is described by a small TLV tree, a binary string of a resource module (drawn in
 * docs/formats.md, made by `uti compile`). A dialog call loads the description into the parameter
 * records below, lets the request override texts, colours and callbacks, builds a form with its
 * controls on the widget toolkit (platform/toolkit.h), runs it until the user or a callback ends
 * it, and returns one result. One dialog runs at a time; its records stay readable until the next
 * one.
 *
 * A result is 0 or one of the negative codes of `enum UtiResult`; a failed toolkit operation gives
 * the toolkit's negative code minus 5000.
 *
 * What ends a dialog. Enter confirms it, on whichever control it is pressed, and so does a button
 * that ends the form; a button whose key is Escape, and Escape itself, give UTI_DIALOG_CANCELLED.
 * Of two buttons give one the key Escape, so that the result tells them apart.
 *
 * A dialog call or `DrawImage_IG` from a callback of a running dialog takes that dialog's place:
 * the new one runs as ever, whether it can be shown or not, and the one below it is over. It ends
 * with UTI_DIALOG_CANCELLED, whatever the callback returns, and is reported; it never counts as
 * confirmed, the buffer of an edit is left as it was, and its functions are not called again. To
 * ask something, return nonzero from `needToBreak` and ask after the call.
 *
 * Ticks are the milliseconds of `GetTicks`. A time-out stays from one dialog to the next, until a
 * description, a request or a message of SHOW_SHORTLY sets another: give every description or
 * request its own.
 *
 * Images: a name in a request (`imageName` of a message and of list items) goes through the
 * toolkit's `IG_GetFullImagePath`; a name in a description goes to the toolkit as it stands. On a
 * PC both are looked for from the present folder and then in UTI_IMAGES. One that cannot be loaded
 * leaves its place empty.
 */

enum {
    DIALOG_CONTROLS = 10,     /**< most controls of one kind */
    DIALOG_MENU_ELEMENTS = 2, /**< most elements of a menu */
    DIALOG_TEXT = 128,        /**< most bytes of names and file names */
    DIALOG_LONG_TEXT = 256,   /**< most bytes of key schemes and patterns */
    DIALOG_KEY_SCHEME = 12,   /**< most pieces of a key scheme */
    DIALOG_TOOLKIT_OFFSET = 5000
};

/** A description's kind, and the call that loads it. */
enum DialogType {
    DIALOG_MESSAGE = 0,      /**< `DialogMessage_Show`, `GetSignalPosition` */
    DIALOG_EDIT = 1,         /**< `DialogEdit_DoModal` */
    DIALOG_LIST = 2,         /**< `DialogList_DoModal` */
    DIALOG_CONFIRMATION = 3, /**< `DialogConfirmation_DoModal`, `DialogSelect_DoModal_IG` */
    DIALOG_SIGNATURE = 4     /**< `DialogSignature_DoModal` */
};

/** Pixels; a widget stands at (`left`, `top`) and is `right` - `left` wide. */
typedef struct Rectangle {
    uint16_t left;
    uint16_t top;
    uint16_t right;
    uint16_t bottom;
} Rectangle;

typedef struct RgbColor {
    uint8_t red;
    uint8_t green;
    uint8_t blue;
} RgbColor;

/** Colours without the focus (passive) and with it (active). */
typedef struct ColorSet {
    RgbColor passiveForeground;
    RgbColor passiveBackground;
    RgbColor activeForeground;
    RgbColor activeBackground;
} ColorSet;

/** An edit or a label. */
typedef struct GraphicEditEntry {
    int32_t handle;    /**< widget, 0 before it is created */
    char *valueBuffer; /**< text that is shown first or was refreshed last, or null; the library's,
                            until the next dialog */
    Rectangle area;
    uint32_t justify; /**< alignment code 0 to 8, see `IG_GetJustify` */
    char fontName[DIALOG_TEXT + 1];
    uint16_t font; /**< slot of `fontTable` that the name stands for */
    uint8_t border;
    uint8_t transparency;
    uint32_t multiLine;    /**< nonzero: several lines */
    uint16_t maxLength;    /**< most characters */
    uint16_t secondLength; /**< fewest characters: the edit dialog runs again below them */
    uint8_t inputFlagA;    /**< nonzero: read only */
    uint32_t inputType;    /**< 0 digits, 1 any text, 2 an amount */
    uint8_t inputFlagB;    /**< nonzero: the text stands at the right */
    uint8_t inputFlagC;    /**< several lines, nonzero: a scroll bar */
    uint8_t inputFlagD;    /**< several lines, 0: long lines are wrapped */
    uint8_t hideInput;     /**< character shown in place of those typed, or 0 */
    char keySchemeText[DIALOG_LONG_TEXT + 1]; /**< pieces separated by backslash and n */
    char pattern[DIALOG_LONG_TEXT + 1];       /**< not empty: a pattern, see `EditRequest` */
    ColorSet colors;
    uint8_t radix;              /**< digits behind the decimal point; set by the edit dialog */
    uint8_t inputFlagF;         /**< 1: filled up from the right; set by the edit dialog */
    uint8_t inputFlagE;         /**< digits, nonzero: letters become capitals */
    uint32_t editValue;         /**< terminal key code that confirms the input, or 0; edits alone */
    uint32_t labelValue;        /**< kept for the application; labels alone */
    uint8_t fillSymbol;         /**< character in the empty places of a pattern, 0 for "." */
    char name[DIALOG_TEXT + 1]; /**< by which `LabelValue` finds it */
} GraphicEditEntry;

typedef struct GraphicStaticTextEntry {
    int32_t handle;
    char *valueBuffer;
    Rectangle area;
    uint32_t justify;
    char fontName[DIALOG_TEXT + 1];
    uint16_t font;
    char image[DIALOG_TEXT + 1]; /**< image file */
    char name[DIALOG_TEXT + 1];
    uint8_t border;
    uint8_t transparency;
    ColorSet colors;
} GraphicStaticTextEntry;

typedef struct GraphicButtonEntry {
    int32_t handle;
    char *valueBuffer;
    Rectangle area;
    uint32_t justify;
    char fontName[DIALOG_TEXT + 1];
    uint16_t font;
    char image[DIALOG_TEXT + 1];
    char activeBackImage[DIALOG_TEXT + 1];
    char passiveBackImage[DIALOG_TEXT + 1];
    uint8_t border;
    uint8_t option; /**< 0: pressing it confirms the dialog */
    uint8_t transparency;
    uint8_t key; /**< toolkit key code that presses it, or 0 */
    ColorSet colors;
} GraphicButtonEntry;

typedef struct GraphicIpEditEntry {
    int32_t handle;
    char *valueBuffer; /**< address shown at first */
    Rectangle area;
    uint32_t justify;
    char fontName[DIALOG_TEXT + 1];
    uint16_t font;
    uint8_t border;
    uint8_t transparency;
    ColorSet colors;
} GraphicIpEditEntry;

/** A signature box or a progress bar. */
typedef struct GraphicBoxEntry {
    int32_t handle;
    Rectangle area;
    uint32_t justify;
    char fontName[DIALOG_TEXT + 1];
    uint16_t font;
    uint8_t border;
    uint8_t transparency;
    ColorSet colors;
} GraphicBoxEntry;

/** A scroll indicator of a menu. */
typedef struct GraphicMenuElement {
    int32_t handle; /**< its static widget, made by the list dialog */
    Rectangle area;
    uint8_t value; /**< nonzero: it is in use */
    char image[DIALOG_TEXT + 1];
    uint32_t notFirst; /**< 0: shows that the list scrolls up, 1: down */
} GraphicMenuElement;

typedef struct GraphicMenuEntry {
    int32_t handle;
    Rectangle area; /**< all zero: the form's client area */
    uint32_t justify;
    char fontName[DIALOG_TEXT + 1];
    uint16_t font;
    char text[DIALOG_TEXT + 1]; /**< kept for the application */
    uint8_t border;
    uint8_t transparency;
    uint8_t style;          /**< nonzero: digits choose items */
    uint32_t accelFontMode; /**< 0, 1 or 2: the digits' font */
    uint32_t option;        /**< nonzero: tiles in place of a list */
    ColorSet colors;
    uint8_t keys[4];   /**< toolkit key codes: page up, page down, up, down; 0 for none */
    uint8_t styleFlag; /**< nonzero: a scroll bar */
    GraphicMenuElement elements[DIALOG_MENU_ELEMENTS];
    uint32_t elementCount;
} GraphicMenuEntry;

/** The header of the form. */
typedef struct GraphicCaption {
    Rectangle area; /**< its height is the header's, when above 0 */
    uint32_t justify;
    char fontName[DIALOG_TEXT + 1];
    uint16_t font;
    ColorSet colors;
    uint32_t count; /**< above 0: the description has a header */
} GraphicCaption;

typedef struct GraphicEditParameters {
    GraphicEditEntry entries[DIALOG_CONTROLS];
    uint32_t count; /**< entries in use */
} GraphicEditParameters;

typedef struct GraphicStaticTextParameters {
    GraphicStaticTextEntry entries[DIALOG_CONTROLS];
    uint32_t count;
} GraphicStaticTextParameters;

typedef struct GraphicButtonParameters {
    GraphicButtonEntry entries[DIALOG_CONTROLS];
    uint32_t count;
} GraphicButtonParameters;

typedef struct GraphicIpEditParameters {
    GraphicIpEditEntry entries[DIALOG_CONTROLS];
    uint32_t count;
} GraphicIpEditParameters;

typedef struct GraphicBoxParameters {
    GraphicBoxEntry entries[DIALOG_CONTROLS];
    uint32_t count;
} GraphicBoxParameters;

typedef struct GraphicMenuParameters {
    GraphicMenuEntry entries[DIALOG_CONTROLS];
    uint32_t count;
} GraphicMenuParameters;

/** Reserved; the library neither fills nor reads it. */
typedef struct GraphicDialogParameters {
    uint32_t reserved[4];
} GraphicDialogParameters;

/** The description's controls and header; cleared by the next dialog call. */
UTI_API extern GraphicEditParameters currentGraphicEditParameters;
UTI_API extern GraphicEditParameters currentGraphicLabelParameters;
UTI_API extern GraphicStaticTextParameters currentGraphicStaticTextParameters;
UTI_API extern GraphicButtonParameters currentGraphicButtonParameters;
UTI_API extern GraphicIpEditParameters currentGraphicIpEditParameters;
UTI_API extern GraphicBoxParameters currentGraphicSignatureParameters;
UTI_API extern GraphicBoxParameters currentGraphicProgressBarParameters;
UTI_API extern GraphicMenuParameters currentGraphicMenuParameters;
UTI_API extern GraphicCaption currentGraphicCaptionParameters;
UTI_API extern GraphicDialogParameters currentGraphicDialogParameters;

/** The description's values for the whole dialog. */
UTI_API extern uint32_t currentDialogType;    /**< `enum DialogType`; kept until it is set */
UTI_API extern uint32_t currentDialogTimeout; /**< ticks, 0 for none; kept from dialog to dialog */
UTI_API extern uint32_t currentDialogTrasparency;  /**< 0 opaque, 1 half, 2 transparent (default) */
UTI_API extern uint32_t currentDialogPositionType; /**< 1: a child form in the area; default 0 */
UTI_API extern uint8_t currentDialogBorder;        /**< 0: no frame; default 1 */
UTI_API extern Rectangle currentDialogAreaRectangle; /**< of a child form; kept until it is set */

/** Loads a description into the records, which the caller has cleared, and checks its type. Returns
 *  0; UTI_DIALOG_NOT_FOUND, UTI_DIALOG_OTHER_TYPE, UTI_DIALOG_TOO_MANY, a code of the TLV parser.
 *  The records then hold what was read before the failure. */
UTI_API int32_t GetDialogParameters(const char *module, uint32_t id, uint32_t expectedType);

/** Walk callbacks of a dialog description, for `Parser_ParseNode`; each fills its record or the
 * next entry of it. They return 0; UTI_DIALOG_TOO_MANY for an eleventh control of a kind or a third
 * menu element, which is not read; the code of the TLV parser for the first child that cannot be
 * read. */
UTI_API int32_t ParseDialog(ParserNode *node); /**< the root */
UTI_API int32_t ParseDialogParameters(ParserNode *node);
UTI_API int32_t ParseGraphicButton(ParserNode *node);
UTI_API int32_t ParseGraphicProgressBar(ParserNode *node);
UTI_API int32_t ParseGraphicEdit(ParserNode *node);
UTI_API int32_t ParseGraphicStaticText(ParserNode *node);
UTI_API int32_t ParseGraphicSignature(ParserNode *node);
UTI_API int32_t ParseGraphicMenu(ParserNode *node);
UTI_API int32_t ParseGraphicMenuElement(ParserNode *node);
UTI_API int32_t ParseGraphicIpEdit(ParserNode *node);
UTI_API int32_t ParseGraphicLabel(ParserNode *node);
UTI_API int32_t ParseGraphicCaption(ParserNode *node);

/** Where the callbacks of nested nodes store; set just before the nested node is parsed. */
UTI_API extern Rectangle *currentAreaRectangle; /**< of `ParseAreaRectangle` */
UTI_API extern uint8_t isLeftTop;               /**< 1: the next position is the left top corner */
UTI_API extern uint16_t *currentPosition;       /**< of `ParseGuiPosition`: x, then y */
UTI_API extern ColorSet *currentGraphicColors;  /**< of `ParseGraphicColors` */
UTI_API extern RgbColor *currentRGB;            /**< of `ParseRGB`, or null */

UTI_API int32_t ParseAreaRectangle(ParserNode *node);
UTI_API int32_t ParseGuiPosition(ParserNode *node);
UTI_API int32_t ParseGraphicColors(ParserNode *node);
UTI_API int32_t ParseRGB(ParserNode *node);

/* --- records of nodes that applications parse themselves: the library calls none of these parsers
       and clears none of these records. The tags are drawn in docs/formats.md; a value is named
       after its tag. The texts `shortName`, `text`, `value77` and `image` have no terminator when
       they fill their field: read them with `strnlen` or "%.*s". */

typedef struct EditParameters {
    Rectangle area;
    char shortName[8];
    uint32_t justify;
    uint32_t value69;
    uint32_t value70;
    uint32_t value71;
    uint32_t value72;
    uint32_t value73;
    uint32_t value74;
    uint32_t value66;
    char text[DIALOG_LONG_TEXT]; /**< its pairs of backslash and n become line feeds */
    uint8_t value76;
    char value77[4];
    uint32_t value65;
    uint32_t value67;
    uint8_t value78;
    uint16_t value79;
    uint16_t value80;
    char pattern[DIALOG_TEXT + 1];
    uint8_t value64;
    uint8_t value82;
    uint8_t value83;
    uint8_t value84;
    uint8_t value85;
    uint8_t value86;
    uint8_t value91;
} EditParameters;

typedef struct ListBoxParameters {
    Rectangle area;
    char shortName[8];
    uint32_t justify;
    uint32_t value96;
    uint32_t value97;
    uint32_t value98;
    uint32_t value99;
    uint32_t value100;
    uint8_t value101;
    uint8_t value102;
    uint32_t value103;
} ListBoxParameters;

typedef struct LabelEntry {
    char text[32];
    Rectangle area;
    char shortName[8];
    uint32_t justify;
    uint32_t value7;
    uint32_t value10;
    uint32_t value122;
} LabelEntry;

typedef struct LabelsParameters {
    LabelEntry entries[10];
    uint8_t count; /**< label nodes met, stays at 255; only the first 10 are stored */
} LabelsParameters;

typedef struct CaptionParameters {
    Rectangle area;
    char shortName[8];
    uint32_t value32;
    uint32_t justify;
} CaptionParameters;

typedef struct BorderParameters {
    Rectangle area;
    uint32_t value48;
    char shortName[8];
} BorderParameters;

typedef struct FrameParameters {
    Rectangle area;
    uint32_t value48;
} FrameParameters;

typedef struct FooterParameters {
    Rectangle area;
    char shortName[8];
    uint32_t value112;
    uint32_t justify;
    uint32_t value7;
} FooterParameters;

typedef struct ImageEntry {
    Rectangle area;
    char image[33];
} ImageEntry;

typedef struct ImagesParameters {
    ImageEntry entries[2];
    uint8_t count; /**< image nodes met, stays at 255; only the first 2 are stored */
} ImagesParameters;

/** Battery, signal strength or Ethernet link status. */
typedef struct StatusParameters {
    Rectangle area;
    char shortName[8];
    uint32_t value; /**< tag 119, 120 or 121 */
} StatusParameters;

UTI_API extern EditParameters currentEditParameters;
UTI_API extern ListBoxParameters currentListBoxParameters;
UTI_API extern LabelsParameters currentLabelsParameters;
UTI_API extern CaptionParameters currentCaptionParameters;
UTI_API extern BorderParameters currentBorderParameters;
UTI_API extern FrameParameters currentFrameParameters;
UTI_API extern FooterParameters currentFooterParameters;
UTI_API extern ImagesParameters currentImagesParameters;
UTI_API extern StatusParameters currentBatteryParameters;
UTI_API extern StatusParameters currentSignalParameters;
UTI_API extern StatusParameters currentEthLinkStatusParameters;

/** Fill the record of the same name; return 0 or the code of the TLV parser. */
UTI_API int32_t ParseEditParameters(ParserNode *node);
UTI_API int32_t ParseListBoxParameters(ParserNode *node);
UTI_API int32_t ParseLabelParameters(ParserNode *node);
UTI_API int32_t ParseCaptionParameters(ParserNode *node);
UTI_API int32_t ParseBorderParameters(ParserNode *node);
UTI_API int32_t ParseFrameParameters(ParserNode *node);
UTI_API int32_t ParseFooterParameters(ParserNode *node);
UTI_API int32_t ParseImageParameters(ParserNode *node);
UTI_API int32_t ParseBatteryParameters(ParserNode *node);
UTI_API int32_t ParseSignalParameters(ParserNode *node);
UTI_API int32_t ParseEthLinkParameters(ParserNode *node);

/* --- fonts, keys, form helpers */

enum { FONT_SLOTS = 12, FONT_FALLBACK = 1 };

/** Font names by slot: 0 to 5 are "6x8", "12x16", "16x24", "dig6x8", "dig12x16" and "dig16x24"; 6
 * to 11 take the names of font files as descriptions ask for them. */
UTI_API extern const char *fontTable[FONT_SLOTS];

/** Returns the toolkit's key code of a terminal key code, 0 when it has none. */
UTI_API int32_t IG_GetIGKeyCode(uint32_t code);

/** Gives a form the library's options and colours. Returns 0. */
UTI_API int32_t IG_SetDefaultFormStyle(int32_t form);

/** Returns the toolkit's justification of an alignment code: 0 left, 1 right, 2 centre, 3 top, 4
 *  bottom, 5 left top, 6 left bottom, 7 right top, 8 right bottom. Any other is reported and 0. */
UTI_API uint32_t IG_GetJustify(uint32_t code);

/** The pieces of the key scheme set last; the rest null. */
UTI_API extern char *currentKeyScheme[DIALOG_KEY_SCHEME];

/* --- requests and calls */

/** A text for the label or edit of that name; an array of them ends at a null name. */
typedef struct LabelValue {
    const char *name;
    const char *value;
} LabelValue;

/** Returns nonzero to break the dialog off. */
typedef int32_t (*DialogBreakFunction)(void);
/** Sets `*labels` to an array with new texts, which ends at a null name or value, and returns
 * nonzero to have them shown. Return nonzero only when a text has changed: each time the form is
 * shown anew and what is typed into a refreshed input is replaced, and a function that always asks
 * keeps the dialog busy. The time that is left stays the same. */
typedef int32_t (*DialogRefreshFunction)(const LabelValue **labels);
/** Takes a terminal key code that was pressed (`terminal.h`); a negative result ends the dialog and
 *  is its own, but for Escape, which cancels it. */
typedef int32_t (*DialogKeyFunction)(uint8_t key);
/** Takes a key typed into the main edit with the text after it, which it may change: `text` has
 *  room for 128 characters and a zero, the edit takes `maxLength`. Returns nonzero to have the text
 *  taken over. */
typedef int32_t (*DialogKeyPressedFunction)(int32_t key, char *text, int32_t maxLength);

/** What every dialog call takes. The library reads it during the call and keeps nothing of it. Null
 *  pointers leave what the description says. */
typedef struct DialogRequest {
    uint16_t resourceId;           /**< string id of the description */
    const char *module;            /**< its resource module */
    const char *caption;           /**< title of the form */
    const char *text;              /**< text of the first edit; backslash and n is a line feed */
    const LabelValue *labelValues; /**< texts of labels; not for selection and signature */
    uintptr_t reserved1;
    DialogBreakFunction needToBreak; /**< called at every event; not for the selection */
    uintptr_t reserved2;
    uint32_t
        timeout; /**< ticks without a key; 0: the description's, or that of the dialog before */
    DialogRefreshFunction refresh;       /**< called at every event; not for the selection */
    DialogKeyFunction keyPostProcessing; /**< called at every key; not for the selection */
    const char *imageName;               /**< message alone: image of the first static text */
    ColorSet colors; /**< of all controls; a pair of equal colours leaves the description's */
} DialogRequest;

/** Confirmation and selection. */
typedef struct ConfirmationRequest {
    DialogRequest dialog;
    const char *secondButton; /**< text of the second button */
    const char *firstButton;  /**< text of the first button */
} ConfirmationRequest;

/** An item of a list; the words and the flag go to the toolkit as its `IgMenuItem`. The texts must
 *  live as long as the list is on the display. */
typedef struct ListItem {
    uintptr_t word1;       /**< address of its text (`const char *`), or 0 */
    uintptr_t word2;       /**< address of a second text, shown at the right, or 0 */
    uint8_t flag;          /**< nonzero: chosen at first; the first such item counts */
    uintptr_t word3;       /**< the application's own */
    const char *imageName; /**< or null */
} ListItem;

typedef struct ListRequest {
    DialogRequest dialog;
    const ListItem *items;
    uint16_t itemCount;
} ListRequest;

/** Lengths in characters. */
typedef struct InputLimits {
    uint16_t maxLength;
    uint16_t minLength;
    uint32_t kind; /**< 1 digits, 2 any text, 3 an amount; others leave the description's */
} InputLimits;

/** The text of an edit is what the toolkit gives:
 *
 *  - of a pattern such as "__.__.____", in which every underscore is a place to fill, the
 * characters in the places alone ("31122026"), and so is the text that is shown at first;
 *  - of an amount, digits with a point, without blanks or a sign: "12", "12.3", "12.30" as they
 * were typed, with at most `radix` digits behind the point; with `option` 1 and a radix every digit
 *    moves the others to the left, so that typing 5 gives "0.05" and all `radix` digits are there;
 *    empty when nothing was entered. */
typedef struct EditRequest {
    DialogRequest dialog;
    uint8_t radix;       /**< digits behind the decimal point, 0: none */
    uint8_t option;      /**< 1: an amount is filled up from the right */
    const char *pattern; /**< up to 256 characters; empty or longer: the description's */
    uint8_t fillSymbol;  /**< 0: the description's */
    const InputLimits *limits;
    DialogKeyPressedFunction keyPressed;
} EditRequest;

/** How a message is shown. */
enum ShowMode {
    SHOW_AND_RETURN = 0,   /**< at once; the form stays on the display */
    SHOW_UNLIMITED = 1,    /**< until Enter or Escape */
    SHOW_WITH_TIMEOUT = 2, /**< until Enter, Escape or the time-out, which every key starts anew */
    SHOW_SHORTLY = 3       /**< likewise, with a time-out of 1000 ticks */
};

/** Shows a description of type 0. Without a time-out (`currentDialogTimeout` is 0, nothing having
 * set it) modes 1 and 2 show it and return at once. Results of this and the next five calls: 0 for
 * confirmed, for shown without waiting, and while dialogs are deactivated; UTI_DIALOG_TIME_OUT,
 * UTI_DIALOG_CANCELLED, UTI_DIALOG_BROKEN_OFF; a negative result of the key function; a toolkit
 * code minus 5000; a code of `GetDialogParameters`; the negative display handle or result of
 * `igUI_Add` as it is. */
UTI_API int32_t DialogMessage_Show(const DialogRequest *request, uint32_t mode);

/** Asks for a confirmation with a description of type 3. 0 for Enter and for every button that ends
 *  the form, UTI_DIALOG_CANCELLED for Escape and a button whose key is Escape. When it fails before
 *  it is shown, the request's functions stay installed until the next dialog ends. */
UTI_API int32_t DialogConfirmation_DoModal(const ConfirmationRequest *request);

/** Like a confirmation between two image buttons: each of the two buttons gets its suffix appended
 *  to the name of its image (name and suffix up to 127 characters; the rest is cut off and
 *  reported). Of the callbacks and labels nothing is used. */
UTI_API int32_t DialogSelect_DoModal_IG(const ConfirmationRequest *request, const char *firstSuffix,
                                        const char *secondSuffix);

/** Has a text edited with a description of type 1: its second edit, or its IP edit when it has
 * fewer than two edits. `buffer` holds the text shown at first, zero-terminated and shown whole
 *  whatever `size` is, and receives the text entered, however the dialog ended, up to `size` - 1
 *  characters and a zero; the dialog runs again while it is confirmed with fewer characters than
 * the shortest length. Size 0 returns no text and leaves the buffer alone; with a null buffer
 *  the edit is empty at first and the request's pattern, limits and the like are not used. */
UTI_API int32_t DialogEdit_DoModal(const EditRequest *request, char *buffer, uint32_t size);

/** Has an item chosen with a description of type 2. Returns its index from 0; UTI_DIALOG_NOT_FOUND
 *  when the description has no menu. */
UTI_API int32_t DialogList_DoModal(const ListRequest *request);

/** Has a signature drawn with a description of type 4 and saves it to a file, which the toolkit
 *  writes: on a PC a PNG picture of the size of the box, black on white. Returns
 *  UTI_DIALOG_NOTHING_SAVED when nothing was drawn; no file is then written. */
UTI_API int32_t DialogSignature_DoModal(const DialogRequest *request, const char *fileName);

/** The running dialog. Applications may set the four callbacks before a call; the call clears the
 *  first three. */
UTI_API extern DialogBreakFunction NeedToBreakFunction;
UTI_API extern DialogRefreshFunction RefreshDialogFunction;
UTI_API extern DialogKeyFunction KeyPostProcessingFunction;
UTI_API extern DialogKeyPressedFunction currentKeyPressedCallback;
UTI_API extern const LabelValue *refLabelData; /**< set by the refresh function */
UTI_API extern int32_t UserDialogResult;       /**< last result of the key function */
UTI_API extern int32_t EndDialog; /**< UTI_DIALOG_CANCELLED after an Escape of the key function */
UTI_API extern uint32_t currentStartTime; /**< ticks at the start or at the last key */
UTI_API extern uint32_t currentShowType;  /**< `enum ShowMode` of the run; 0: none is running */
UTI_API extern uint32_t dialogDeactivate; /**< nonzero while dialogs are deactivated */

/** Called by the toolkit for every event of a running dialog. Returns the state that ends the form,
 * or 0. */
UTI_API int32_t IG_EventCallback(uint8_t *key);

/** Hands a key on to the toolkit's own handler and returns its result. */
UTI_API int32_t IG_KeyPressedCallback(int32_t display, int32_t key);

/** Shows which way the list dialog's menu can scroll in the elements of its description. */
UTI_API void IG_AdditionalListElements(void);

/** Stops all input of the display (nonzero) or lets it through again. Returns 0. */
UTI_API int32_t Dialogs_Lock(int32_t block);

/** Lets dialogs be shown again, with the status line. Returns 0 or more; the toolkit's negative
 * code when the status line could not be shown, nothing is then changed. */
UTI_API int32_t Dialogs_Activate(void);

/** Hides the status line and makes every dialog call and `DrawImage_IG` return 0 at once. Results
 * as `Dialogs_Activate`. */
UTI_API int32_t Dialogs_Deactivate(void);

/* --- pictures */

/** Shows an image file from (x, y) to the right lower corner of the display, with a header when
 *  `caption` is not null, in place of the present form. Returns 0, also while dialogs are
 *  deactivated; UTI_IMAGE_NOT_VALID; a toolkit or display code minus 5000, but -2102 as it is. */
UTI_API int32_t DrawImage_IG(int16_t x, int16_t y, const char *fileName, const char *caption);

/** Sets the picture behind all forms; a null or empty name takes it away. Returns the result of the
 *  toolkit, negative when the file cannot be loaded and the picture stays, or the negative display
 *  handle. */
UTI_API int32_t SetBackgroundImage_IG(const char *fileName);

/** Returns the left edge of the signal indicator, as `ParseSignalParameters` left it, after loading
 *  the request's description (type 0); -1 when that fails or `request` is null. */
UTI_API int32_t GetSignalPosition(const DialogRequest *request);

/** Returns UTI_DIALOG_NO_ICONS: icons are not supported. */
UTI_API int32_t Icons_Show(void);

/* ======================================================= code pages, fonts and text =======
 *
 * The code page of a language is the number in the environment variable "cp_" and its two letters.
 * The names handed out point into buffers that the next call overwrites.
 */

/** Converts the bytes of a zero-terminated text of ISO 8859-5 (code page 5), or of any other code
 *  page, into the terminal's; control characters become blanks. No terminating zero is written;
 *  the two may be the same buffer. Returns `destination`. */
UTI_API char *ISO8859ToOEM(uint32_t codePage, const char *source, char *destination);

/** Returns the code page of a language (its first two letters), 0 when it has none; a null or empty
 *  language asks for the one found last, 0xFFFF when there is none. */
UTI_API uint16_t CodePageManager_GetCodePage(const char *language);

/** Returns the font file of a language for a font name, "cp" and the code page, "_", the name and
 *  ".fon", such as "cp5_12x16.fon". Null for a null or empty name, a language that is not two
 *  letters long or has no code page, and a file name of more than 31 characters (reported). */
UTI_API const char *CodePageManager_GetFontName(const char *language, const char *fontName);

/** Returns "n" and the name of `CodePageManager_GetFontName`; null when that is null, or when the
 *  result has more than 31 characters (reported). */
UTI_API const char *CodePageManager_GetNegativeFontName(const char *language, const char *fontName);

/** Loads the code page's font files of a language into the slots 0, 1 and 2; the names in
 * `fontTable` stay. For Russian nothing is loaded. Returns the result of the last load, 0 without
 * any; the negative display handle. */
UTI_API int32_t Dialogs_SetDefaultFonts(const char *language);

/** Returns the bytes of the character at `text`, of which `left` bytes are left; 0 or less when
 * there is none. */
typedef int32_t (*TextCharacterFunction)(const char *text, int32_t left);

/** Installs the function at `*callbackHolder`, null for one byte a character. A null argument
 * changes nothing. */
UTI_API void Text_SetCallBack(const TextCharacterFunction *callbackHolder);

/** Returns the number of characters in the first `length` bytes; `length` for a null text or
 *  without a function. */
UTI_API int32_t Text_GetStringLen(const char *text, int32_t length);

/** Returns the number of bytes of the first `characters` characters, at most `length`; `characters`
 *  for a null text or without a function. */
UTI_API int32_t Text_GetStringLenByte(const char *text, int32_t length, int32_t characters);

enum { TEXT_LINE = 64, TEXT_LEFT = 0, TEXT_RIGHT = 1, TEXT_CENTER = 2 };

/** Lays a text out in a line of `TEXT_LINE` columns filled with blanks: from column 0, at the right
 *  or in the middle of `right` - `left` columns; what does not fit is cut off at the side where it
 *  leaves the line. Returns the number of bytes of the text that stand in the line. */
UTI_API int32_t Text_LayoutLine(char line[TEXT_LINE], const char *text, int32_t length,
                                int32_t justify, int32_t left, int32_t right);

/** Places the display's cursor at column `left` of a row when the line lies on the display: `left`
 * 0 or more, `right` up to `maxColumn`, `row` 0 to `maxRow`. Otherwise nothing happens. What stands
 * in the line is `Text_LayoutLine`'s matter; nothing is drawn. */
UTI_API void Text_DrawString(const char *text, int32_t length, int32_t justify, int32_t row,
                             int32_t left, int32_t right, int32_t maxColumn, int32_t maxRow);

/* ============================================================================ extensions ====
 *
 * Operations of our own beside those that every terminal's library has. All of them are off until
 * they are asked for, and without them nothing here changes what the others do. A program that uses
 * one runs only with this library.
 */

/** Switches safe writing of INI files on (nonzero) or off. A file is otherwise rewritten in place,
 *  and power that goes while this happens loses settings. Switched on, what the file is to hold
 *  goes to a copy first, its name with a "~" behind it, ended by a mark with its length and a
 *  checksum; then the file is rewritten and the copy deleted. The next use of the file takes a copy
 *  that is complete and drops one that is not, so that each change is there wholly or not at all.
 *
 *  Switch it on before the first use of a file, in every program that uses the file, and leave it
 *  on: a copy is looked for only then. The medium must hold what was written once a file is closed.
 *
 *  A change of which no copy can be written, and one behind a copy that cannot be brought home, is
 *  reported and stays in the cache alone; a file whose copy cannot be brought home, or
 *  that has content and cannot be read, is not loaded and not replaced (UTI_INI_FAILED).
 *  Returns 0. */
UTI_API int32_t Ini_SetSafeWrite(int32_t on);

#ifdef __cplusplus
}
#endif

#endif /* UTI_H */
