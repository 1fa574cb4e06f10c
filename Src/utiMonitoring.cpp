// utiMonitoring.cpp: the monitoring log: records of events in a file of its own that grows and does
// not rotate. Its records (docs/formats.md) have the items of a trace record with little-endian
// numbers. Stands on the platform's files and clock.
#include "Src/assertions.h"
#include "Src/heap.h"
#include "Src/text.h"
#include "Src/utiLogFile.h"
#include "Src/utiTraceArguments.h"

#include <algorithm>
#include <cstdio>

namespace uti {
namespace {

constexpr Assertions<"Src/utiMonitoring"> asserts;

constexpr int32_t smallestMaxSize = 65536;
constexpr uint32_t bufferSize = 8192;
constexpr uint32_t eventLevel = 2;
// A name with a number of one digit takes 8 bytes more than its base, terminator included.
constexpr std::size_t longestBaseName = sizeof(LogFileName) - 8;

struct MonitorExContext {
    uint32_t mode;
    char baseName[33];
    int32_t maxSize;
    LogFile file;
};

constinit MonitorExContext *monitorContext = nullptr;
constinit ArgumentTable argumentTable{};

// Forms the name of file `index`. False when it does not fit.
bool formName(LogFileName &name, const char *baseName, int32_t index) {
    const int length = index == 0 ? snprintf(name, sizeof name, "%s.mlog", baseName)
                                  : snprintf(name, sizeof name, "%s_%d.mlog", baseName, index);
    return length < static_cast<int>(sizeof name);
}

// Forms the name of the file to write: the first one while there is no second, else the first that
// is missing. False when a name does not fit.
bool chooseFile(LogFileName &name, const char *baseName) {
    int32_t missing = 0;
    for (;; ++missing) {
        if (missing == INT32_MAX || !formName(name, baseName, missing))
            return false;
        if (File_IsValid(name) != 1)
            break;
    }
    return formName(name, baseName, missing <= 1 ? 0 : missing);
}

void freeContext() {
    std::free(monitorContext->file.buffer);
    std::free(monitorContext);
    monitorContext = nullptr;
}

int32_t writeOut(const void *bytes, uint32_t count) {
    return monitorContext->file.put(bytes, count, MonitorExFlush);
}

template <class Words>
int32_t writeRecord(uint32_t messageId, uint32_t level, const char *module, Words &list) {
    if (!monitorContext)
        return UTI_MONITOR_CLOSED;
    RecordItems items(argumentTable);
    if (!items.addHeader(Stamp::now(), level, static_cast<uint16_t>(messageId), module) ||
        !items.addList(list))
        return asserts.fail(UTI_TRACE_NOT_WRITTEN);
    if (items.size() > INT32_MAX)
        return UTI_TRACE_NOT_WRITTEN;

    const int32_t result =
        writeBinaryRecord<ByteOrder::little>(items, monitorContext->file, writeOut);
    const int64_t size = static_cast<int64_t>(items.size());
    const int64_t left = monitorContext->maxSize - int64_t{monitorContext->file.fileLength} - size;
    return left < 0 ? UTI_MONITOR_OVER_LIMIT : result;
}

} // namespace
} // namespace uti

using namespace uti;

int32_t MonitorExOpen(const MonitorExSettings *settings) {
    if (!settings)
        return asserts.fail(UTI_MONITOR_REFUSED);
    if (monitorContext)
        return UTI_MONITOR_REFUSED;
    HeapPointer<MonitorExContext> context = allocateZeroed<MonitorExContext>();
    if (!context)
        return asserts.fail(UTI_MONITOR_REFUSED);

    const std::string_view baseName = fieldText(settings->baseName);
    LogFileName name;
    if (baseName.empty() || baseName.size() > longestBaseName)
        return UTI_MONITOR_REFUSED;
    context->mode = settings->mode;
    setField(context->baseName, baseName);
    context->maxSize = std::max(settings->maxSize, smallestMaxSize);
    if (!chooseFile(name, context->baseName))
        return UTI_MONITOR_REFUSED;

    LogFile &file = context->file;
    if (context->mode == MONITOR_MODE_BUFFERED) {
        file.bufferSize = bufferSize;
        file.buffer = allocateBytes(bufferSize).release();
        if (!file.buffer)
            asserts.report();
    }
    const int32_t handle = file.open(name);
    const bool ready = handle >= 0 && file.goToEnd();
    monitorContext = context.release();
    if (ready)
        return UTI_OK;

    file.close();
    freeContext();
    return handle < 0 ? handle : UTI_MONITOR_REFUSED;
}

int32_t MonitorExWrite(uint32_t messageId, ...) {
    VariadicWords list;
    va_start(list.list, messageId);
    const int32_t result = writeRecord(messageId, eventLevel, "Monitor", list);
    va_end(list.list);
    return result;
}

int32_t traceMonitorWrite(uint32_t messageId, uint32_t level, const char *module,
                          const TraceWord *list) {
    static constexpr TraceWord noArguments = 0;
    ListedWords words{list ? list : &noArguments};
    return writeRecord(messageId, level, module, words);
}

void MonitorExFlush(void) {
    if (monitorContext && !monitorContext->file.flush())
        asserts.report();
}

void MonitorExClose(void) {
    if (!monitorContext)
        return;
    MonitorExFlush();
    monitorContext->file.close();
    freeContext();
}
