// utiTraceArguments.cpp: the items of a log record and the table that holds them.
#include "Src/utiTraceArguments.h"

#include <cstdlib>

namespace uti {

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
    if (table_.capacity - table_.used < headerCount && !table_.grow())
        return false;
    Argument *header = table_.entries + table_.used;
    header[0] = {.type = Date, .length = 0, .date = stamp.date};
    header[1] = {.type = Time, .length = 0, .time = stamp.time};
    header[2] = {.type = Byte, .length = 0, .bits = level};
    header[3] = {.type = Word, .length = 0, .bits = messageId};
    header[4] = {.type = String, .length = 0, .data = nullptr};
    table_.used += headerCount;
    size_ = headerSize;
    addData(header[4], module, module ? std::strlen(module) : 0);
    return true;
}

} // namespace uti
