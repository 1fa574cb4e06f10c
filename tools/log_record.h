// log_record.h: a binary record of the trace log or the monitoring log read back, from bytes
// that may hold anything. The record is drawn in docs/formats.md; its items are described by
// utiTraceArguments.h, which the library writes them with.
#pragma once

#include "Src/utiTraceArguments.h"

#include <string_view>

namespace uti {

enum class LogKind : uint8_t { trace, monitoring };

// What stands at a place of a log.
enum class Reading : uint8_t {
    whole,  // a record
    cut,    // a record as far as the bytes go
    damaged // anything else
};

// A length above this is taken for damage, so that no reader has to hold more, or wait for more,
// than this.
inline constexpr uint32_t longestRecord = 16 << 20;

// The items of a record that have not been taken yet.
struct UnreadItems {
    std::span<const uint8_t> bytes; // those that are there
    uint32_t claimed;               // those that the record has by its length
    ByteOrder order;

    // Takes the first one; `claimed` is not 0. The data of a text or byte array is `bytes`'.
    Reading take(Argument &item);
};

struct TraceRecord {
    Stamp stamp;
    uint8_t level;
    uint16_t messageId;
    std::string_view module; // in the bytes that were read
    UnreadItems arguments;   // of a whole record: each of them can be taken
    uint32_t size;           // with the length prefix
};

// Reads the record at the front of `bytes`. It must be whole to the last item, its stamp must be
// one that a clock gives or that of a clock which is not set, all zero, and in a trace log its
// level 1 to 3. `record` is complete for Reading::whole alone.
//
// Each argument behind the first 16 takes one off `budget`. When it is used up there can be no more
// of them: a log that was made to be read over and over is damaged.
Reading readRecord(std::span<const uint8_t> bytes, LogKind kind, uint64_t &budget,
                   TraceRecord &record);

// The least distance from the front of `bytes` at which a record may begin, by its first item
// alone; the last bytes, too few to tell, always may.
std::size_t findRecord(std::span<const uint8_t> bytes);

} // namespace uti
