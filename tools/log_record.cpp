// log_record.cpp: binary records read back.
#include "tools/log_record.h"

#include <algorithm>

namespace uti {

namespace {

constexpr uint32_t prefixSize = 4;

// So many arguments of a record are no charge on the budget.
constexpr uint32_t freeArguments = 16;

bool isPlausible(const TraceRecord &record, LogKind kind) {
    const auto &[date, time] = record.stamp;
    return date.month <= 12 && date.day <= 31 && time.hour <= 23 && time.minute <= 59 &&
           time.second <= 59 &&
           (kind == LogKind::monitoring || (record.level >= 1 && record.level <= 3));
}

} // namespace

Reading UnreadItems::take(Argument &item) {
    if (bytes.empty())
        return Reading::cut;
    if (!isArgumentType(bytes[0]))
        return Reading::damaged;

    const ArgumentType &type = argumentTypes[bytes[0]];
    uint32_t size = 1u + type.valueSize;
    if (size > claimed)
        return Reading::damaged;
    if (size > bytes.size())
        return Reading::cut;
    item = decodeItem(bytes[0], &bytes[1], order);

    if (item.length > claimed - size)
        return Reading::damaged;
    if (item.length > bytes.size() - size)
        return Reading::cut;
    if (type.shape == ArgumentShape::text || type.shape == ArgumentShape::bytes)
        item.data = reinterpret_cast<const char *>(bytes.data()) + size;

    size += item.length;
    bytes = bytes.subspan(size);
    claimed -= size;
    return Reading::whole;
}

Reading readRecord(std::span<const uint8_t> bytes, LogKind kind, uint64_t &budget,
                   TraceRecord &record) {
    const ByteOrder order = kind == LogKind::trace ? ByteOrder::big : ByteOrder::little;
    if (bytes.size() < prefixSize)
        return Reading::cut;
    const auto size = static_cast<uint32_t>(getNumber(bytes.data(), prefixSize, order));
    if (size < RecordItems::headerSize || size > longestRecord)
        return Reading::damaged;

    bytes = bytes.subspan(prefixSize);
    UnreadItems items{bytes.first(std::min<std::size_t>(size, bytes.size())), size, order};
    Argument header[RecordItems::headerCount];
    for (uint32_t i = 0; i < RecordItems::headerCount; ++i) {
        if (!items.bytes.empty() && items.bytes[0] != headerTypes[i])
            return Reading::damaged;
        const Reading reading = items.take(header[i]);
        if (reading != Reading::whole)
            return reading;
    }

    record = {.stamp = {header[0].date, header[1].time},
              .level = static_cast<uint8_t>(header[2].bits),
              .messageId = static_cast<uint16_t>(header[3].bits),
              .module = {header[4].data, header[4].length},
              .arguments = items,
              .size = prefixSize + size};
    if (!isPlausible(record, kind))
        return Reading::damaged;

    Argument argument;
    for (uint32_t count = 1; items.claimed > 0; ++count) {
        if (count > freeArguments) {
            if (budget == 0)
                return Reading::damaged;
            --budget;
        }
        const Reading reading = items.take(argument);
        if (reading != Reading::whole)
            return reading;
    }
    return Reading::whole;
}

std::size_t findRecord(std::span<const uint8_t> bytes) {
    if (bytes.size() <= prefixSize)
        return 0;
    const std::size_t last = bytes.size() - prefixSize;
    const void *found = std::memchr(bytes.data() + prefixSize, headerTypes[0], last);
    return found ? static_cast<std::size_t>(static_cast<const uint8_t *>(found) - bytes.data()) -
                       prefixSize
                 : last;
}

} // namespace uti
