// utiTraceEx.h: the trace log's context and the internal operations that its files share: the core
// (utiTraceEx.cpp), the log file set (utiTraceFiles.cpp) and text records (utiTraceText.cpp).
// Binary records are drawn in docs/formats.md.
#pragma once

#include "Src/utiLogFile.h"
#include "Src/utiTraceArguments.h"

namespace uti {

inline constexpr int32_t logFileCount = 8;

// What the log has to report about itself. A report must not stand in the middle of a record.
struct TraceReports {
    int32_t depth;          // of records that stand inside one another
    int32_t shortFlushLine; // of a short flush that waits for the outermost record to be complete
    bool ofShortFlush;      // one is being written; what fails meanwhile is not reported again
    bool ofLostRecord;      // the same
};

struct TraceExContext {
    TraceExSettings settings;
    int32_t fileIndex; // 0 to 7
    LogFile file;      // outputs 0 and 3
    int32_t port;      // output 1
    TraceReports reports;

    // Bytes that each file of the set may take.
    uint32_t fileLimit() const { return static_cast<uint32_t>(settings.maxSize / logFileCount); }
};

// The open log, or null.
extern TraceExContext *traceContext;

// --- core

// One piece of output, for which the buffer, if there is one, has no room.
int32_t traceWriteThrough(const void *bytes, uint32_t count);

// One piece of output. Returns 0 or UTI_TRACE_NOT_WRITTEN.
inline int32_t traceWriteOut(const void *bytes, uint32_t count) {
    LogFile &file = traceContext->file;
    if (!file.hasRoom(count))
        return traceWriteThrough(bytes, count);
    std::memcpy(file.append(count), bytes, count);
    return UTI_OK;
}

// --- the log file set

// The name of file `index`: the base name and ".log" for 0, the base name, the digit and ".log" for
// 1 to 7.
void formLogFileName(LogFileName &name, int32_t index);

// Fills the stamp of a log file's first record. Returns 1 when the time could be read, else 0; each
// part is stored only when its own bytes could be read.
int32_t traceReadFileStamp(const char *name, TerminalDate *date, TerminalTime *time);

enum class FileAge { newest, oldest };

struct FoundLogFile {
    int32_t index; // -1 when there is no file
    int32_t count; // files of the set: those from 0 up to the first that does not exist
};

// Finds the newest or the oldest file of the set; of equal stamps the lowest index wins.
FoundLogFile findLogFile(FileAge age);

// Opens a file of the set that exists and goes to its end. A file whose end cannot be reached
// counts as full, so that the next record rotates on instead of overwriting it. Returns the handle
// or its negative code.
int32_t continueLogFile(const LogFileName &name);

// --- text records

// Writes or prints a record as a line of text. Returns 0 or the code of the first failed piece.
int32_t traceWriteText(const char *module, uint16_t messageId, const RecordItems &items);

} // namespace uti
