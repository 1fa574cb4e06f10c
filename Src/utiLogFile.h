// utiLogFile.h: a log file that records are appended to, with a write buffer if there is one. The
// trace log and the monitoring log stand on it. It stands on the platform's files alone and reports
// nothing itself.
#pragma once

#include "terminal.h"
#include "uti.h"

#include <cstring>

namespace uti {

// Room for the name of a log file: base name, number, extension and terminator.
using LogFileName = char[36];

struct LogFile {
    int32_t handle;          // negative when the file is not open
    uint32_t fileLength;     // bytes in the file, those in the buffer not counted
    LogFileName currentName; // empty when opening the file failed
    char *buffer;            // null: every piece is written at once
    uint32_t buffered;
    uint32_t bufferSize;

    // Opens `name` for appending. Returns the handle or its negative code; the file then has no
    // current name.
    int32_t open(const LogFileName &name);

    // Goes to the end of the open file and takes its length. False when that failed.
    bool goToEnd();

    void close();

    // Whether the buffer takes so many bytes without being filled.
    bool hasRoom(uint64_t count) const { return buffer && count < bufferSize - buffered; }

    // Where bytes for which there is room are to be put.
    char *append(uint32_t count) {
        char *at = buffer + buffered;
        buffered += count;
        return at;
    }

    // Takes a piece: into the buffer, which `flushNow` empties when the piece would fill it, or
    // straight to the file when there is none or the piece is as long as it. Returns 0 or
    // UTI_TRACE_NOT_WRITTEN.
    int32_t put(const void *bytes, uint32_t count, void (*flushNow)()) {
        if (buffer && bufferSize - buffered <= count)
            flushNow();
        if (!buffer || count >= bufferSize)
            return write(bytes, count);
        std::memcpy(append(count), bytes, count);
        return UTI_OK;
    }

    // Writes what is buffered. The bytes count as written in any case; false when some were not.
    bool flush();

private:
    int32_t write(const void *bytes, uint32_t count);
};

} // namespace uti
