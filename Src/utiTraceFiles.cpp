// utiTraceFiles.cpp: the rotating set of trace log files on disk. Stands on the platform's files.
#include "Src/assertions.h"
#include "Src/platform.h"
#include "Src/utiTraceEx.h"

#include <cstdio>
#include <tuple>

namespace uti {

namespace {

constexpr Assertions<"Src/utiTraceEx"> asserts;

Stamp stampOfFile(const char *name) {
    Stamp stamp{};
    if (File_GetTime(name, &stamp.date, &stamp.time) == 0)
        traceReadFileStamp(name, &stamp.date, &stamp.time);
    return stamp;
}

bool isEarlier(const Stamp &a, const Stamp &b) {
    const auto key = [](const Stamp &stamp) {
        const int32_t seconds = stamp.time.hour * 3600 + stamp.time.minute * 60 + stamp.time.second;
        return std::tuple(stamp.date.year, stamp.date.month, stamp.date.day, seconds);
    };
    return key(a) < key(b);
}

} // namespace

void formLogFileName(LogFileName &name, int32_t index) {
    // No base name is longer than 30 characters, no number longer than one.
    const char *baseName = traceContext->settings.device.baseName;
    if (index == 0)
        snprintf(name, sizeof name, "%.30s.log", baseName);
    else
        snprintf(name, sizeof name, "%.30s%c.log", baseName, static_cast<char>('0' + index));
}

int32_t traceReadFileStamp(const char *name, TerminalDate *date, TerminalTime *time) {
    if (!name || !date || !time)
        return asserts.fail(0);

    const int32_t handle = File_Open(name, FILE_MODE_READ);
    if (handle < 0)
        return 0;

    uint8_t dateBytes[4];
    if (readFileAt(handle, 5, dateBytes, sizeof dateBytes)) {
        date->year = BEBufferToShort(dateBytes);
        date->month = dateBytes[2];
        date->day = dateBytes[3];
    }
    uint8_t timeBytes[3];
    const bool timeRead = readFileAt(handle, 10, timeBytes, sizeof timeBytes);
    if (timeRead)
        *time = {timeBytes[0], timeBytes[1], timeBytes[2]};

    File_Close(handle);
    return timeRead ? 1 : 0;
}

FoundLogFile findLogFile(FileAge age) {
    FoundLogFile found{-1, 0};
    Stamp best{};
    for (; found.count < logFileCount; ++found.count) {
        LogFileName name;
        formLogFileName(name, found.count);
        if (File_IsValid(name) != 1)
            break;

        const Stamp stamp = stampOfFile(name);
        const bool better =
            age == FileAge::newest ? isEarlier(best, stamp) : isEarlier(stamp, best);
        if (found.index < 0 || better) {
            found.index = found.count;
            best = stamp;
        }
    }
    return found;
}

int32_t continueLogFile(const LogFileName &name) {
    LogFile &file = traceContext->file;
    if (file.open(name) >= 0 && !file.goToEnd())
        file.fileLength = UINT32_MAX;
    return file.handle;
}

} // namespace uti
