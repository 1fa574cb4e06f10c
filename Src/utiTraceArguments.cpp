// utiTraceArguments.cpp: the items of a log record and the table that holds them.
#include "utiTraceArguments.h"

#include <cstdlib>

namespace uti {

Stamp Stamp::now() {
    Stamp stamp{};
    GetDateTime(&stamp.date, &stamp.time);
    return stamp;
}

Argument *RecordItems::add(uint32_t type) {
    if (table_.used == table_.capacity) {
        const uint32_t capacity = table_.capacity + 8;
        void *grown = std::realloc(table_.entries, capacity * sizeof(Argument));
        if (!grown)
            return nullptr;
        table_.entries = static_cast<Argument *>(grown);
        table_.capacity = capacity;
    }

    Argument &argument = table_.entries[table_.used++];
    argument = Argument{.type = static_cast<uint8_t>(type), .length = 0, .bits = 0};
    size_ += 1u + argumentTypes[type].valueSize;
    return &argument;
}

void RecordItems::addData(Argument &argument, const char *data, uint64_t length) {
    argument.data = data;
    argument.length = static_cast<uint32_t>(length);
    size_ += length;
}

bool RecordItems::addHeader(const Stamp &stamp, uint32_t level, uint16_t messageId,
                            const char *module) {
    const auto address = [](const void *pointer) { return reinterpret_cast<TraceWord>(pointer); };
    const TraceWord values[] = {address(&stamp.date), address(&stamp.time), level, messageId,
                                address(module)};
    TraceWord header[2 * headerCount + 1] = {};
    for (uint32_t i = 0; i < headerCount; ++i) {
        header[2 * i] = headerTypes[i];
        header[2 * i + 1] = values[i];
    }
    ListedWords words{header};
    return addList(words);
}

} // namespace uti
