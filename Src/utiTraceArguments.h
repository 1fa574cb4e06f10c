// utiTraceArguments.h: the argument list of a log record: how its words are read, what bytes it
// takes in a record, and the table that holds it meanwhile. The trace log and the monitoring log
// share it, each with its own table and byte order.
// docs/formats.md draws the records and their items.
#pragma once

#include "Src/utiLogFile.h"
#include "common/bytes.h"
#include "terminal.h"
#include "uti.h"

#include <cstdarg>
#include <span>

namespace uti {

// How the value of a type is taken from the list.
enum class ArgumentShape : uint8_t { word, halves, date, time, text, bytes };

struct ArgumentType {
    const char *name;
    uint8_t valueSize; // in a record, the data of texts and byte arrays not counted
    ArgumentShape shape;
};

inline constexpr ArgumentType argumentTypes[] = {
    {"", 0, ArgumentShape::word},           {"Char", 1, ArgumentShape::word},
    {"Byte", 1, ArgumentShape::word},       {"Bool", 1, ArgumentShape::word},
    {"Short", 2, ArgumentShape::word},      {"Word", 2, ArgumentShape::word},
    {"Long", 4, ArgumentShape::word},       {"DWord", 4, ArgumentShape::word},
    {"Int64", 8, ArgumentShape::halves},    {"UInt64", 8, ArgumentShape::halves},
    {"Double", 8, ArgumentShape::halves},   {"Date", 4, ArgumentShape::date},
    {"Time", 3, ArgumentShape::time},       {"String", 4, ArgumentShape::text},
    {"ByteArray", 4, ArgumentShape::bytes},
};

constexpr bool isArgumentType(uint32_t code) {
    return code >= Char && code <= ByteArray;
}

// The types of the items that every record begins with: its date and time, its level, its message
// id and the name of its module.
inline constexpr uint8_t headerTypes[] = {Date, Time, Byte, Word, String};

struct Argument {
    uint8_t type;
    uint32_t length; // of the data of a text or byte array
    union {
        uint64_t bits; // scalars; 64-bit values and doubles with the high half first
        const char *data;
        TerminalDate date;
        TerminalTime time;
    };
};

// The moment a record is made.
struct Stamp {
    TerminalDate date;
    TerminalTime time;

    static Stamp now() {
        Stamp stamp{};
        GetDateTime(&stamp.date, &stamp.time);
        return stamp;
    }
};

// The words of a variadic call.
struct VariadicWords {
    va_list list;

    uint32_t scalar() { return va_arg(list, unsigned int); }
    const void *address() { return va_arg(list, const void *); }
};

// The words of a list in memory.
struct ListedWords {
    const TraceWord *next;

    uint32_t scalar() { return static_cast<uint32_t>(*next++); }
    const void *address() { return reinterpret_cast<const void *>(*next++); }
};

// Grows 8 entries at a time and is kept from record to record. A record that is written from inside
// another one (a report) takes the entries behind it, so the outer one keeps its arguments.
struct ArgumentTable {
    Argument *entries;
    uint32_t capacity;
    uint32_t used;

    // Makes room for more entries. False when memory is short.
    bool grow();
};

// The items of one record: its five header items, then its arguments.
class RecordItems {
public:
    static constexpr uint32_t headerCount = sizeof headerTypes;
    static constexpr uint32_t headerSize = 19; // without the module name
    static constexpr uint32_t prefixSize = 4;  // the length before the items

    explicit RecordItems(ArgumentTable &table) : table_(table), first_(table.used) {}
    ~RecordItems() { table_.used = first_; }
    RecordItems(const RecordItems &) = delete;
    RecordItems &operator=(const RecordItems &) = delete;

    // Fills the items; false when the table cannot grow.
    bool addHeader(const Stamp &stamp, uint32_t level, uint16_t messageId, const char *module);
    template <class Words>
    bool addList(Words words); // a copy, which registers may hold

    uint32_t count() const { return table_.used - first_; }
    // Their place, until another record is started, which may move the table. Writing may start
    // one.
    std::span<const Argument> all() const { return {table_.entries + first_, count()}; }
    const Argument &operator[](uint32_t index) const { return table_.entries[first_ + index]; }
    // Bytes of the record behind its length prefix.
    uint64_t size() const { return size_; }

private:
    // The next entry, zeroed; null when the table cannot grow.
    [[gnu::always_inline]] Argument *add(uint32_t type) {
        if (table_.used == table_.capacity && !table_.grow())
            return nullptr;
        Argument &argument = table_.entries[table_.used++];
        argument = Argument{.type = static_cast<uint8_t>(type), .length = 0, .bits = 0};
        size_ += 1u + argumentTypes[type].valueSize;
        return &argument;
    }

    void addData(Argument &argument, const char *data, uint64_t length) {
        argument.data = data;
        argument.length = static_cast<uint32_t>(length);
        size_ += length;
    }

    ArgumentTable &table_;
    uint32_t first_;
    uint64_t size_ = 0;
};

template <class Words>
bool RecordItems::addList(Words words) {
    for (uint32_t type = words.scalar(); isArgumentType(type); type = words.scalar()) {
        Argument *argument = add(type);
        if (!argument)
            return false;

        switch (argumentTypes[type].shape) {
        case ArgumentShape::word:
            argument->bits = words.scalar();
            break;
        case ArgumentShape::halves: {
            const uint64_t high = words.scalar();
            argument->bits = high << 32 | words.scalar();
            break;
        }
        case ArgumentShape::date:
            if (const auto *date = static_cast<const TerminalDate *>(words.address()))
                argument->date = *date;
            break;
        case ArgumentShape::time:
            if (const auto *time = static_cast<const TerminalTime *>(words.address()))
                argument->time = *time;
            break;
        case ArgumentShape::text: {
            const auto *text = static_cast<const char *>(words.address());
            addData(*argument, text, text ? std::strlen(text) : 0);
            break;
        }
        case ArgumentShape::bytes: {
            const auto *bytes = static_cast<const char *>(words.address());
            addData(*argument, bytes, bytes ? words.scalar() : 0);
            break;
        }
        }
    }
    return true;
}

// Writes the type byte and the value bytes of an item, at most `longestItem`; the data of a text or
// byte array follows in the record. Returns the address behind them.
inline constexpr std::size_t longestItem = 9;
template <ByteOrder order>
uint8_t *encodeItem(const Argument &argument, uint8_t *at) {
    *at++ = argument.type;
    switch (argumentTypes[argument.type].shape) {
    case ArgumentShape::word:
        switch (argumentTypes[argument.type].valueSize) {
        case 1:
            at = putNumber(at, argument.bits, 1, order);
            break;
        case 2:
            at = putNumber(at, argument.bits, 2, order);
            break;
        default:
            at = putNumber(at, argument.bits, 4, order);
            break;
        }
        break;
    case ArgumentShape::halves:
        at = putNumber(at, argument.bits >> 32, 4, order);
        at = putNumber(at, argument.bits, 4, order);
        break;
    case ArgumentShape::date:
        at = putNumber(at, static_cast<uint16_t>(argument.date.year), 2, ByteOrder::big);
        *at++ = argument.date.month;
        *at++ = argument.date.day;
        break;
    case ArgumentShape::time:
        *at++ = argument.time.hour;
        *at++ = argument.time.minute;
        *at++ = argument.time.second;
        break;
    case ArgumentShape::text:
    case ArgumentShape::bytes:
        at = putNumber(at, argument.length, 4, order);
        break;
    }
    return at;
}

// Reads the value bytes that `encodeItem` writes behind the type byte; the data of a text or byte
// array is left to the caller.
inline Argument decodeItem(uint8_t type, const uint8_t *value, ByteOrder order) {
    const ArgumentType &kind = argumentTypes[type];
    Argument argument{.type = type, .length = 0, .bits = 0};
    switch (kind.shape) {
    case ArgumentShape::word:
        argument.bits = getNumber(value, kind.valueSize, order);
        break;
    case ArgumentShape::halves:
        argument.bits = getNumber(value, 4, order) << 32 | getNumber(value + 4, 4, order);
        break;
    case ArgumentShape::date: {
        const auto year = static_cast<int16_t>(getNumber(value, 2, ByteOrder::big));
        argument.date = {.year = year, .month = value[2], .day = value[3], .reserved = {}};
        break;
    }
    case ArgumentShape::time:
        argument.time = {.hour = value[0], .minute = value[1], .second = value[2]};
        break;
    case ArgumentShape::text:
    case ArgumentShape::bytes:
        argument.data = nullptr;
        argument.length = static_cast<uint32_t>(getNumber(value, 4, order));
        break;
    }
    return argument;
}

// The length of a record and its items, one behind the other; there is room for all of them.
template <ByteOrder order>
void encodeRecord(const RecordItems &items, uint8_t *out) {
    out = putNumber(out, items.size(), RecordItems::prefixSize, order);
    for (const Argument &item : items.all()) {
        out = encodeItem<order>(item, out);
        if (item.length > 0)
            std::memcpy(out, item.data, item.length);
        out += item.length;
    }
}

// Writes a binary record: its length, then each item as one piece and the data of texts and byte
// arrays as a second one. `write` takes a piece and returns 0 or the code that ends the record. A
// record that the buffer of `file` takes whole goes there at once.
template <ByteOrder order, class Write>
int32_t writeBinaryRecord(const RecordItems &items, LogFile &file, Write write) {
    const uint64_t size = RecordItems::prefixSize + items.size();
    if (file.hasRoom(size)) {
        encodeRecord<order>(items,
                            reinterpret_cast<uint8_t *>(file.append(static_cast<uint32_t>(size))));
        return UTI_OK;
    }

    uint8_t piece[longestItem];
    putNumber(piece, items.size(), RecordItems::prefixSize, order);
    int32_t result = write(piece, RecordItems::prefixSize);

    for (uint32_t i = 0; i < items.count() && result == UTI_OK; ++i) {
        const Argument item = items[i];
        result = write(piece, static_cast<uint32_t>(encodeItem<order>(item, piece) - piece));
        if (result == UTI_OK && item.length > 0)
            result = write(item.data, item.length);
    }
    return result;
}

} // namespace uti
