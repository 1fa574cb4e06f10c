// The trace log over its rotation and the monitoring log: what retrieval gives is whole records,
// the newest of those that were promised, in their order; a monitoring log keeps all of them.
#include "fuzz/terminal.h"

#include "tools/log_record.h"

#include <vector>

using namespace fuzz;

namespace {

using Ids = std::vector<uint16_t>;

// The ids of the records of the module m; false when the bytes are not whole records.
bool readAll(std::string_view bytes, uti::LogKind kind, Ids &ids) {
    uint64_t budget = UINT64_MAX;
    while (!bytes.empty()) {
        uti::TraceRecord record;
        const std::span rest(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
        if (uti::readRecord(rest, kind, budget, record) != uti::Reading::whole)
            return false;
        if (record.module == "m")
            ids.push_back(record.messageId);
        bytes.remove_prefix(record.size);
    }
    return true;
}

bool isTail(const Ids &part, const Ids &all) {
    return part.size() <= all.size() && std::equal(part.rbegin(), part.rend(), all.rbegin());
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
    Library library;
    Input in(data, size);
    const uint32_t output = in.oneIn(3) ? TRACE_OUTPUT_BUFFERED : TRACE_OUTPUT_FILE;
    const int32_t most = 256 + 8 * static_cast<int32_t>(in.below(400));
    const bool isMonitorBuffered = in.oneIn(2);
    const auto open = [&] {
        openLog(output, 0, "t", most);
        MonitorExSettings settings{};
        settings.mode = isMonitorBuffered;
        std::strcpy(settings.baseName, "t");
        MonitorExOpen(&settings);
    };
    open();
    armFault(in);

    Ids promised, monitored;
    uint16_t id = 0;
    for (int steps = 0; !in.isOver() && steps < 300 && !fake::faultStruck(); ++steps) {
        const uint32_t operation = in.below(8);
        const support::ExactBlock text(std::string(in.below(120), 'x') + '\0');
        library.terminal.now.time.second = static_cast<uint8_t>(steps % 60);
        library.terminal.now.time.minute = static_cast<uint8_t>(steps / 60);
        if (operation < 4) {
            ++id;
            if (TraceExError("m", id, String, text.data(), 0) == 0)
                promised.push_back(id);
            const TraceWord list[] = {String, reinterpret_cast<uintptr_t>(text.data()), 0};
            const int32_t result = traceMonitorWrite(id, 1, "m", list);
            if (result == 0 || result == UTI_MONITOR_OVER_LIMIT)
                monitored.push_back(id);
        } else if (operation == 4) {
            TraceExFlush();
            MonitorExFlush();
        } else if (operation == 5 && in.oneIn(4)) {
            TraceExClose();
            MonitorExClose();
            open();
        } else {
            const uint32_t room = in.oneIn(2) ? in.below(2000) : 100000;
            const support::ExactBlock log(std::string(room, '#'));
            const int32_t length = TraceExGetLog(log.data(), static_cast<int32_t>(room));
            REQUIRE(length >= 0 && static_cast<uint32_t>(length) <= room);
            Ids found;
            if (room == 100000 && output == TRACE_OUTPUT_FILE && !fake::faultStruck() &&
                std::string_view(log.data(), 14) != "LOG FILE NOT F") {
                REQUIRE(readAll({log.data(), static_cast<std::size_t>(length)}, uti::LogKind::trace,
                                found));
                REQUIRE(isTail(found, promised));
            }
        }
    }
    const bool isExact = !fake::faultStruck();
    fake::disarm();
    TraceExClose();
    MonitorExClose();
    Ids found;
    if (isExact) {
        REQUIRE(readAll(library.terminal.files["t.mlog"], uti::LogKind::monitoring, found));
        REQUIRE(found == monitored);
        for (const auto &[name, bytes] : library.terminal.files)
            REQUIRE(name == "t.mlog" || readAll(bytes, uti::LogKind::trace, found = {}));
    }
    return 0;
}
