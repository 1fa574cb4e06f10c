// log_filter.h: which records of a log are asked for: by level, module and time.
#pragma once

#include "tools/log_record.h"

#include <optional>
#include <string>
#include <vector>

namespace uti::tool {

// The levels of the trace log by their number less 1. Monitoring records may have others.
inline constexpr const char *levelNames[] = {"error", "support", "debug"};

// A moment of the command line. Without a day it is that time of every day.
struct Moment {
    std::optional<int32_t> day; // ordered like the days, not counted
    int32_t second;             // of the day
};

// The parts that a moment does not name are its first or its last.
enum class Edge : uint8_t { since, until };

// Reads "YYYY-MM-DD", "HH:MM", or both with a blank or a T between them, the time perhaps with
// ":SS".
std::optional<Moment> parseMoment(std::string_view text, Edge edge);

struct LogFilter {
    uint8_t mostLevel = UINT8_MAX;
    std::vector<std::string> modules; // in the code page of the records; none: all
    std::optional<Moment> since;
    std::optional<Moment> until;

    bool passes(const TraceRecord &record) const;
};

} // namespace uti::tool
