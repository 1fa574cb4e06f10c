// The trace log over its rotation and the monitoring log: what retrieval gives is whole records,
// the newest of those that were promised, in their order; a monitoring log keeps all of them.
#include "fuzz/terminal.h"

#include "tools/log_record.h"

#include <vector>

using namespace fuzz;

namespace {

using Ids = std::vector<uint16_t>;

// The ids of the records of the module m, where the bytes are whole records.
Ids readAll(std::string_view bytes, uti::LogKind kind) {
    Ids ids;
    uint64_t budget = UINT64_MAX;
    for (uti::TraceRecord record; !bytes.empty(); bytes.remove_prefix(record.size)) {
        const std::span rest(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
        REQUIRE(uti::readRecord(rest, kind, budget, record) == uti::Reading::whole);
        if (record.module == "m")
            ids.push_back(record.messageId);
    }
    return ids;
}

} // namespace

void fuzz::run(Input &in) {
    Library library;
    const uint32_t output = in.oneIn(3) ? TRACE_OUTPUT_BUFFERED : TRACE_OUTPUT_FILE;
    const int32_t most = 256 + 8 * static_cast<int32_t>(in.below(400));
    const MonitorExSettings monitor{in.oneIn(2), "t", 0};
    openLog(output, 0, "t", most);
    MonitorExOpen(&monitor);
    armFault(in);

    Ids promised, monitored;
    uint16_t id = 0;
    for (int steps = 0; !in.isOver() && steps < 300 && !fake::faultStruck(); ++steps) {
        const uint32_t operation = in.below(8);
        const support::ExactBlock text(std::string(in.below(120), 'x') + '\0');
        library.terminal.now.time.second = static_cast<uint8_t>(steps % 60);
        library.terminal.now.time.minute = static_cast<uint8_t>(steps / 60);
        if (operation < 4) {
            if (TraceExError("m", ++id, String, text.data(), 0) == 0)
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
            openLog(output, 0, "t", most);
            MonitorExOpen(&monitor);
        } else {
            const uint32_t room = in.oneIn(2) ? in.below(2000) : 100000;
            const support::ExactBlock log(std::string(room, '#'));
            const int32_t length = TraceExGetLog(log.data(), static_cast<int32_t>(room));
            REQUIRE(length >= 0 && static_cast<uint32_t>(length) <= room);
            const std::string_view bytes(log.data(), static_cast<std::size_t>(length));
            if (room < 100000 || output != TRACE_OUTPUT_FILE || fake::faultStruck() ||
                bytes.starts_with("LOG FILE NOT F"))
                continue;
            const Ids found = readAll(bytes, uti::LogKind::trace);
            REQUIRE(found.size() <= promised.size());
            REQUIRE(std::equal(found.rbegin(), found.rend(), promised.rbegin()));
        }
    }
    TraceExClose();
    MonitorExClose();
    if (fake::faultStruck())
        return;
    for (const auto &[name, bytes] : library.terminal.files)
        if (name != "t.mlog")
            readAll(bytes, uti::LogKind::trace);
    REQUIRE(readAll(library.terminal.files["t.mlog"], uti::LogKind::monitoring) == monitored);
}
