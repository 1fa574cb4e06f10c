// utiTraceArguments.cpp: the items of a log record and the table that holds them.
#include "Src/utiTraceArguments.h"

#include <cstdlib>

namespace uti {

Stamp Stamp::now() {
    Stamp stamp{};
    GetDateTime(&stamp.date, &stamp.time);
    return stamp;
}

bool ArgumentTable::grow() {
    const uint32_t newCapacity = capacity + 8;
    void *grown = std::realloc(entries, newCapacity * sizeof(Argument));
    if (!grown)
        return false;
    entries = static_cast<Argument *>(grown);
    capacity = newCapacity;
    return true;
}

bool RecordItems::addHeader(const Stamp &stamp, uint32_t level, uint16_t messageId,
                            const char *module) {
    for (const uint8_t type : headerTypes) {
        if (!add(type))
            return false;
    }
    Argument *header = table_.entries + first_;
    header[0].date = stamp.date;
    header[1].time = stamp.time;
    header[2].bits = level;
    header[3].bits = messageId;
    addData(header[4], module, module ? std::strlen(module) : 0);
    return true;
}

} // namespace uti
