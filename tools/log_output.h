// log_output.h: log records on standard output: as lines, as JSON, or counted.
#pragma once

#include "tools/log_record.h"
#include "tools/log_text.h"

#include <memory>
#include <string>

namespace uti::tool {

// A record with its arguments and where it comes from.
struct LogEntry {
    const TraceRecord &record;
    std::span<const Argument> arguments;
    const Wording *wording;  // null when there is none
    const std::string &file; // in UTF-8
    uint64_t offset;
};

// What was added stands on standard output after `flush`, or some time before.
class LogOutput {
public:
    virtual ~LogOutput() = default;

    void add(const LogEntry &entry);
    // False when standard output cannot be written.
    bool flush();
    virtual bool needsWording() const { return true; }
    // Adds what stands behind the last record.
    virtual void finish() {}

protected:
    virtual void write(const LogEntry &entry) = 0;

    std::string out_;
};

enum class Colours : uint8_t { none, ansi };

// A line is the level and the line of a text record, the year in full. Arguments for which the
// wording has no place stand at its end; without wording the message id and all arguments do.
std::unique_ptr<LogOutput> makeLineOutput(const CodePage &codePage, Colours colours);

// One object a line.
std::unique_ptr<LogOutput> makeJsonOutput(const CodePage &codePage);

// Records and bytes by module and level, as a table or as one object a line, all at the end.
std::unique_ptr<LogOutput> makeStatsOutput(const CodePage &codePage, Form form);

} // namespace uti::tool
