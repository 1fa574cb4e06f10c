// utiTraceEx.cpp: the trace log's core: settings, levels, module filter, outputs, rotation and
// binary records. Stands on the platform's files, serial port, printer, clock and environment.
#include "Src/utiTraceEx.h"

#include "Src/assertions.h"
#include "Src/heap.h"
#include "Src/platform.h"
#include "Src/text.h"

#include <cstdio>
#include <utility>

// Whoever runs the library need not have it.
extern "C" [[gnu::weak]] void Terminal_NoteAssertion(const char *sourcePath, int32_t line);

namespace uti {

constinit TraceExContext *traceContext = nullptr;

namespace {

constexpr Assertions<"Src/utiTraceEx"> asserts;

constexpr int32_t smallestMaxSize = 256;
constexpr int32_t defaultMaxSize = 65536;
constexpr uint32_t largestBuffer = 8192;
constexpr std::size_t longestBaseName = 30;
constexpr std::size_t longestFilteredName = 32;

constinit ArgumentTable argumentTable{};

void defaultFileSettings(TraceExSettings &settings, uint32_t mode) {
    settings.output = TRACE_OUTPUT_FILE;
    settings.mode = mode;
    settings.maxSize = defaultMaxSize;
    GetApplicationName(settings.device.baseName, 32);
}

// The settings that the value of EXT_DEBUG stands for.
void environmentSettings(TraceExSettings &settings, const char *value) {
    if (value[0] == 'C') {
        ComPortParameters port{};
        port.port = 1;
        if (value[1] >= '1' && value[1] <= '9')
            port.port = static_cast<uint8_t>(std::strtol(value + 1, nullptr, 10));
        if (value[1] == 'U')
            port.port = 100;
        port.speed = 9;
        port.format = 4;
        settings.output = TRACE_OUTPUT_SERIAL;
        std::memcpy(settings.device.parameters, &port, sizeof port);
    } else if (value[0] == 'P') {
        settings.output = TRACE_OUTPUT_PRINTER;
    } else {
        defaultFileSettings(settings, 3);
    }
    settings.mode = 3;
}

bool writesFiles(const TraceExSettings &settings) {
    return settings.output == TRACE_OUTPUT_FILE || settings.output == TRACE_OUTPUT_BUFFERED;
}

bool settingsAccepted(const TraceExSettings &settings) {
    if (settings.output > TRACE_OUTPUT_BUFFERED)
        return false;
    if (!writesFiles(settings))
        return true;
    const std::size_t length = fieldText(settings.device.baseName).size();
    return settings.maxSize >= smallestMaxSize && length > 0 && length <= longestBaseName;
}

// Opens the newest file of the set, or its first. Returns a negative handle on failure.
int32_t openFileSet(TraceExContext &log) {
    const int32_t newest = findLogFile(FileAge::newest).index;
    log.fileIndex = newest < 0 ? 0 : newest;

    LogFileName name;
    formLogFileName(name, log.fileIndex);
    return newest < 0 ? log.file.open(name) : continueLogFile(name);
}

// Opens the output that the settings name. Returns 0 or the code of the failure.
int32_t openOutput(TraceExContext &log) {
    TraceExSettings &settings = log.settings;
    if (settings.output == TRACE_OUTPUT_SERIAL) {
        log.port = ComPort_Open(&settings.device);
        return log.port < 0 ? log.port : 0;
    }
    if (settings.output == TRACE_OUTPUT_PRINTER)
        return Printer_Open(&settings.device);

    if (settings.output == TRACE_OUTPUT_BUFFERED) {
        log.file.bufferSize = settings.maxSize < defaultMaxSize ? log.fileLimit() : largestBuffer;
        log.file.buffer = allocateBytes(log.file.bufferSize).release();
    }
    const int32_t handle = openFileSet(log);
    return handle < 0 ? handle : 0;
}

void freeContext() {
    std::free(traceContext->file.buffer);
    std::free(traceContext);
    traceContext = nullptr;
}

// Goes on to the next file of the set, which is started anew. Returns 0 or a negative handle; the
// length is then kept, so the next record rotates on.
int32_t rotate() {
    TraceExContext &log = *traceContext;
    TraceExFlush();
    log.file.close();

    log.fileIndex = (log.fileIndex + 1) % logFileCount;
    LogFileName name;
    formLogFileName(name, log.fileIndex);
    File_Delete(name);
    if (log.file.open(name) < 0)
        return log.file.handle;
    log.file.fileLength = 0;
    return UTI_OK;
}

void reportShortFlush(int32_t line) {
    TraceReports &reports = traceContext->reports;
    reports.ofShortFlush = true;
    asserts.report(line);
    reports.ofShortFlush = false;
}

// Writes a report about a record that is given up, whose own failure is not reported again.
template <class Report>
void reportLostRecord(Report report) {
    TraceReports &reports = traceContext->reports;
    if (reports.ofLostRecord)
        return;
    reports.ofLostRecord = true;
    report();
    reports.ofLostRecord = false;
}

// Writes an error record in place of one that does not fit a file.
void reportLargeRecord(const char *module, uint16_t messageId, const RecordItems &items) {
    const uint64_t arguments = items.size() - RecordItems::headerSize - items[4].length;
    char message[1024];
    snprintf(message, sizeof message, "BLOCK SIZE=%ld FROM '%s' ID=%d TOO LARGE",
             static_cast<long>(arguments), module ? module : "", messageId);
    TraceExError("TRACE", 0, String, static_cast<const char *>(message), 0);
}

// Places and writes a record whose items are complete.
int32_t writeItems(const char *module, uint16_t messageId, const RecordItems &items) {
    const TraceExSettings &settings = traceContext->settings;
    const LogFile &file = traceContext->file;
    const uint32_t limit = traceContext->fileLimit();
    if (settings.output == TRACE_OUTPUT_FILE && limit <= items.size()) {
        reportLostRecord([&] { reportLargeRecord(module, messageId, items); });
        return UTI_TRACE_NOT_WRITTEN;
    }
    if (items.size() > INT32_MAX)
        return UTI_TRACE_NOT_WRITTEN;
    if (writesFiles(settings) && file.fileLength + items.size() + file.buffered > limit) {
        const int32_t result = rotate();
        if (result < 0)
            return result;
    }

    if (settings.text || settings.output == TRACE_OUTPUT_PRINTER)
        return traceWriteText(module, messageId, items);
    return writeBinaryRecord<ByteOrder::big>(items, traceContext->file, traceWriteOut);
}

// True when the filter lets records of this module through.
bool traceModuleEnabled(const char *module) {
    if (traceContext->settings.modules[0] == 0)
        return true;

    const std::string_view filter = fieldText(traceContext->settings.modules);
    const std::size_t length = module ? strnlen(module, longestFilteredName + 1) : 0;
    if (length == 0 || length > longestFilteredName)
        return false;
    char entry[longestFilteredName + 1];
    std::memcpy(entry, module, length);
    entry[length] = ',';
    return filter.find(std::string_view(entry, length + 1)) != std::string_view::npos;
}

// The shared body of the writers; the entry point has checked the level.
int32_t traceWriteRecord(uint32_t level, const char *module, uint32_t messageId,
                         VariadicWords &list) {
    if (!traceModuleEnabled(module))
        return UTI_TRACE_NOT_WRITTEN;

    TraceReports &reports = traceContext->reports;
    const auto id = static_cast<uint16_t>(messageId);
    int32_t result = UTI_TRACE_NOT_WRITTEN;
    bool complete;
    {
        RecordItems items(argumentTable);
        complete = items.addHeader(Stamp::now(), level, id, module) && items.addList(list);
        if (complete) {
            ++reports.depth;
            result = writeItems(module, id, items);
            --reports.depth;
        }
    }
    if (!complete)
        reportLostRecord([] { asserts.report(); });

    if (reports.depth == 0 && reports.shortFlushLine != 0)
        reportShortFlush(std::exchange(reports.shortFlushLine, 0));
    return result;
}

} // namespace

int32_t traceWriteThrough(const void *bytes, uint32_t count) {
    if (count < 1)
        return UTI_OK;

    TraceExContext &log = *traceContext;
    switch (log.settings.output) {
    case TRACE_OUTPUT_FILE:
    case TRACE_OUTPUT_BUFFERED:
        return log.file.put(bytes, count, TraceExFlush);
    case TRACE_OUTPUT_SERIAL:
        return ComPort_Write(log.port, bytes, count) < 1 ? UTI_TRACE_NOT_WRITTEN : UTI_OK;
    default:
        return UTI_OK;
    }
}

} // namespace uti

using namespace uti;

int32_t TraceExOpen(const TraceExSettings *settings) {
    if (traceContext)
        return UTI_TRACE_REFUSED;
    HeapPointer<TraceExContext> context = allocateZeroed<TraceExContext>();
    if (!context)
        return asserts.fail(UTI_TRACE_REFUSED);

    const EnvironmentValue debug("EXT_DEBUG");
    if (!debug.text().empty())
        environmentSettings(context->settings, debug.text().data());
    else if (settings)
        context->settings = *settings;
    else
        defaultFileSettings(context->settings, 1);
    if (!settingsAccepted(context->settings))
        return UTI_TRACE_REFUSED;

    traceContext = context.release();
    const int32_t result = openOutput(*traceContext);
    if (result != 0) {
        freeContext();
        return result;
    }

    if (traceContext->settings.output == TRACE_OUTPUT_BUFFERED && !traceContext->file.buffer) {
        traceContext->settings.output = TRACE_OUTPUT_FILE;
        asserts.report();
    }
    return UTI_OK;
}

void TraceExClose(void) {
    if (!traceContext)
        return;

    TraceExFlush();
    switch (traceContext->settings.output) {
    case TRACE_OUTPUT_SERIAL:
        ComPort_Close(traceContext->port);
        break;
    case TRACE_OUTPUT_PRINTER:
        Printer_Close();
        break;
    default:
        traceContext->file.close();
        break;
    }
    freeContext();
}

int32_t TraceExSetMode(int32_t mode) {
    if (!traceContext || mode < 1 || mode > 3)
        return UTI_TRACE_REFUSED;
    traceContext->settings.mode = static_cast<uint32_t>(mode);
    return UTI_OK;
}

int32_t TraceExGetMode(void) {
    return traceContext ? static_cast<int32_t>(traceContext->settings.mode) : 0;
}

void TraceExFlush(void) {
    if (!traceContext || traceContext->settings.output != TRACE_OUTPUT_BUFFERED)
        return;
    TraceReports &reports = traceContext->reports;
    if (traceContext->file.flush() || reports.ofShortFlush)
        return;

    if (reports.depth > 0)
        reports.shortFlushLine = __LINE__;
    else
        reportShortFlush(__LINE__);
}

int32_t TraceExError(const char *module, uint32_t messageId, ...) {
    if (!traceContext)
        return UTI_TRACE_NOT_WRITTEN;
    VariadicWords list;
    va_start(list.list, messageId);
    const int32_t result = traceWriteRecord(1, module, messageId, list);
    va_end(list.list);
    return result;
}

int32_t TraceExSupport(const char *module, uint32_t messageId, ...) {
    if (!traceContext || traceContext->settings.mode < 2)
        return UTI_TRACE_NOT_WRITTEN;
    VariadicWords list;
    va_start(list.list, messageId);
    const int32_t result = traceWriteRecord(2, module, messageId, list);
    va_end(list.list);
    return result;
}

int32_t TraceExDebug(const char *module, uint32_t messageId, ...) {
    if (!traceContext || traceContext->settings.mode != 3)
        return UTI_TRACE_NOT_WRITTEN;
    VariadicWords list;
    va_start(list.list, messageId);
    const int32_t result = traceWriteRecord(3, module, messageId, list);
    va_end(list.list);
    return result;
}

int32_t TraceExAssert(const char *sourcePath, int32_t line) {
    if (Terminal_NoteAssertion)
        Terminal_NoteAssertion(sourcePath, line);
    return TraceExError("ASSERT", 1, String, sourcePath, Long, line, 0);
}
