// log_scanner.h: the records of one log, found in bytes that come in pieces and may hold anything.
// What is no record is passed over up to the next place where a whole one stands. Stands on the
// library's record reader.
#pragma once

#include "tools/log_record.h"

#include <vector>

namespace uti::tool {

class LogScanner {
public:
    // What follows the bytes so far.
    enum class Ahead : uint8_t {
        bytes,   // more of them: a record that is not complete waits
        unknown, // perhaps more of them, some day: it waits unless a whole one stands behind it
        nothing
    };

    enum class Kind : uint8_t {
        none,    // nothing more for now
        record,  //
        damaged, // bytes that are no record
        cut      // the beginning of a record, and the end of the log
    };

    // What bytes that are no record look like.
    enum class Look : uint8_t { unknown, linesOfText, otherKind };

    struct Found {
        Kind kind;
        uint64_t offset; // in the log
        uint64_t size;
        Look look = Look::unknown;
        TraceRecord record{}; // its texts and arguments are valid until `append`
    };

    // The bytes begin at `offset` of the log.
    explicit LogScanner(LogKind kind, uint64_t offset = 0)
        : kind_(kind), bufferOffset_(offset), foundEnd_(offset) {}

    void append(std::span<const uint8_t> bytes);

    Found next(Ahead ahead);

    // What has been passed over up to now and is not told yet, since more of it may follow; of kind
    // none when there is nothing.
    Found pending() const;

private:
    enum class Stop : uint8_t { atWhole, atWholeOrCut };

    std::span<const uint8_t> rest() const { return std::span(buffer_).subspan(position_); }
    Reading read(std::span<const uint8_t> bytes) {
        return readRecord(bytes, kind_, budget_, record_);
    }
    std::size_t seek(Stop stop);
    Look look();

    LogKind kind_;
    std::vector<uint8_t> buffer_;
    uint64_t bufferOffset_ = 0; // of its first byte in the log
    std::size_t position_ = 0;  // in the buffer: all before it has been found or passed over
    uint64_t foundEnd_ = 0;     // in the log: behind it bytes have been passed over
    bool cutAtEnd_ = false;     // they begin like a record
    Look look_ = Look::unknown; // of their beginning
    // The search for a record goes over some bytes again and again. This keeps it in proportion to
    // the length of the log, whatever that holds.
    uint64_t budget_ = 1 << 20;
    TraceRecord record_{};
};

} // namespace uti::tool
