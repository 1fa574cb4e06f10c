// utiStorage.cpp: the hash table from 32-bit keys to typed values, with an index beside its
// buckets.
#include "Src/utiStorage.h"
#include "Src/assertions.h"
#include "Src/heap.h"
#include "terminal.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace uti {
namespace {

constexpr Assertions<"Src/utiStorage"> asserts;

// The hash of a key.
constexpr uint32_t bucketOf(uint32_t key) {
    uint32_t hash = key + ~(key << 9);
    hash ^= std::rotr(hash, 14);
    hash *= 17;
    hash ^= std::rotr(hash, 10);
    return hash % STORAGE_BUCKETS;
}

void freeEntry(StorageEntry *entry) {
    std::free(entry->data);
    std::free(entry);
}

void freeAllEntries(Storage storage) {
    Table &table = tableOf(storage);
    for (StorageEntry *&bucket : table.buckets) {
        while (StorageEntry *entry = bucket) {
            bucket = entry->next;
            freeEntry(entry);
        }
    }
    table.count = 0;
    table.totalSize = 0;
    table.dropIndex();
}

// Takes a new entry into the index, which grows with the table.
void addToIndex(Storage storage, StorageEntry *entry) {
    Table &table = tableOf(storage);
    if (table.count <= table.lastSlot() / 2) {
        table.slots[table.find(entry->key)] = entry;
        return;
    }
    table.dropIndex();
    uint32_t shift = table.shift - 1;
    while (table.count > (UINT32_MAX >> shift) / 2)
        --shift;
    const std::size_t size = ((std::size_t{UINT32_MAX} >> shift) + 1) * sizeof(StorageEntry *);
    auto **slots = static_cast<StorageEntry **>(std::malloc(size));
    if (!slots)
        return;
    table.slots = static_cast<StorageEntry **>(std::memset(slots, 0, size));
    table.shift = shift;
    forEachEntry(storage, [&](StorageEntry &each) {
        table.slots[table.find(each.key)] = &each;
        return true;
    });
}

// Takes an entry out of the index: those behind it that it kept from their place move up.
void removeFromIndex(Table &table, uint32_t key) {
    if (!table.hasIndex())
        return;
    uint32_t hole = table.find(key);
    for (uint32_t slot = table.next(hole); table.slots[slot]; slot = table.next(slot)) {
        const uint32_t away = slot - table.slotOf(table.slots[slot]->key);
        if ((away & table.lastSlot()) >= ((slot - hole) & table.lastSlot())) {
            table.slots[hole] = table.slots[slot];
            hole = slot;
        }
    }
    table.slots[hole] = nullptr;
}

// Replaces a value's bytes; the block now belongs to the entry.
void replaceData(StorageTable &table, StorageEntry &entry, HeapPointer<char> data,
                 uint32_t length) {
    std::free(entry.data);
    entry.data = data.release();
    table.totalSize += length - entry.length;
    entry.length = length;
}

template <class Value>
int32_t putScalar(Storage storage, uint32_t key, StorageType type, Value value) {
    return Storage_Put(storage, key, type, &value, sizeof value);
}

// The entry of a key that holds at least `size` bytes of this type, or null.
[[gnu::always_inline]] inline const StorageEntry *findValue(Storage storage, uint32_t key,
                                                            int32_t type, uint32_t size) {
    const StorageEntry *entry = findEntry(storage, key);
    return entry && entry->type == type && entry->length >= size ? entry : nullptr;
}

// Once for all types of a size.
template <std::size_t size>
[[gnu::noinline]] int32_t getScalar(Storage storage, uint32_t key, StorageType type, void *value) {
    const StorageEntry *entry = findValue(storage, key, type, size);
    if (!entry || !value)
        return 0;
    std::memcpy(value, entry->data, size);
    return 1;
}

} // namespace

constinit StorageEntry *Table::none[2] = {};

[[gnu::noinline]] StorageEntry *findAnywhere(const Table &table, uint32_t key) {
    if (table.hasIndex())
        return table.slots[table.find(key)];
    StorageEntry *entry = table.buckets[bucketOf(key)];
    while (entry && entry->key != key)
        entry = entry->next;
    return entry;
}

} // namespace uti

using namespace uti;

uint32_t CalcHash(uint32_t key) {
    return bucketOf(key);
}

StorageEntry *FindEntry(Storage storage, uint32_t key) {
    return findEntry(storage, key);
}

Storage Storage_Create(void) {
    HeapPointer<StorageTable *> cell = allocateZeroed<StorageTable *>();
    if (!cell)
        return asserts.fail(Storage{nullptr});
    return Storage_Constructor(cell.get()) ? cell.release() : nullptr;
}

int32_t Storage_Free(Storage storage) {
    if (!storage)
        return 0;
    Storage_Destructor(storage);
    std::free(storage);
    return 1;
}

int32_t Storage_Clear(Storage storage) {
    if (!isOpen(storage))
        return 0;
    freeAllEntries(storage);
    return 1;
}

int32_t Storage_Constructor(Storage cell) {
    if (!cell)
        return 0;
    Table *table = allocateZeroed<Table>().release();
    *cell = table;
    if (!table)
        return asserts.fail(0);
    table->seed =
        static_cast<uint32_t>(reinterpret_cast<uintptr_t>(table) * 0x9E3779B97F4A7C15u >> 32);
    table->startWithoutIndex();
    return 1;
}

void Storage_Destructor(Storage cell) {
    if (!isOpen(cell))
        return;
    freeAllEntries(cell);
    std::free(&tableOf(cell));
    *cell = nullptr;
}

int32_t Storage_Put(Storage storage, uint32_t key, int32_t type, const void *bytes,
                    uint32_t length) {
    if (!isOpen(storage) || !bytes || length == 0)
        return 0;

    StorageTable &table = **storage;
    StorageEntry *const old = FindEntry(storage, key);
    const uint64_t replaced = old ? uint64_t{entryHeaderSize} + old->length : 0;
    if (table.totalSize - replaced + entryHeaderSize + length > UINT32_MAX)
        return 0;

    HeapPointer<char> data = copyBytes(bytes, length);
    if (!data)
        return asserts.fail(0);
    if (old) {
        replaceData(table, *old, std::move(data), length);
        old->type = type;
        return 1;
    }

    StorageEntry *entry = allocateZeroed<StorageEntry>().release();
    if (!entry)
        return asserts.fail(0);
    StorageEntry *&bucket = table.buckets[bucketOf(key)];
    *entry = {key, type, data.release(), length, bucket};
    bucket = entry;
    ++table.count;
    table.totalSize += entryHeaderSize + length;
    addToIndex(storage, entry);
    return 1;
}

int32_t Storage_PutChar(Storage storage, uint32_t key, char value) {
    return putScalar(storage, key, STORAGE_CHAR, value);
}

int32_t Storage_PutByte(Storage storage, uint32_t key, uint8_t value) {
    return putScalar(storage, key, STORAGE_BYTE, value);
}

int32_t Storage_PutShort(Storage storage, uint32_t key, int16_t value) {
    return putScalar(storage, key, STORAGE_SHORT, value);
}

int32_t Storage_PutWord(Storage storage, uint32_t key, uint16_t value) {
    return putScalar(storage, key, STORAGE_WORD, value);
}

int32_t Storage_PutLong(Storage storage, uint32_t key, int32_t value) {
    return putScalar(storage, key, STORAGE_LONG, value);
}

int32_t Storage_PutDWord(Storage storage, uint32_t key, uint32_t value) {
    return putScalar(storage, key, STORAGE_DWORD, value);
}

int32_t Storage_PutInt64(Storage storage, uint32_t key, int64_t value) {
    return putScalar(storage, key, STORAGE_INT64, value);
}

int32_t Storage_PutUInt64(Storage storage, uint32_t key, uint64_t value) {
    return putScalar(storage, key, STORAGE_UINT64, value);
}

int32_t Storage_PutBool(Storage storage, uint32_t key, uint8_t value) {
    return putScalar(storage, key, STORAGE_BOOL, value);
}

int32_t Storage_PutDouble(Storage storage, uint32_t key, double value) {
    return putScalar(storage, key, STORAGE_DOUBLE, value);
}

int32_t Storage_PutString(Storage storage, uint32_t key, const char *text, uint32_t length) {
    return Storage_Put(storage, key, STORAGE_STRING, text, length);
}

int32_t Storage_PutByteArray(Storage storage, uint32_t key, const void *bytes, uint32_t length) {
    return Storage_Put(storage, key, STORAGE_STRING, bytes, length);
}

int32_t Storage_PutDate(Storage storage, uint32_t key, const TerminalDate *date) {
    return Storage_Put(storage, key, STORAGE_DATE, date, sizeof *date);
}

int32_t Storage_PutTime(Storage storage, uint32_t key, const TerminalTime *time) {
    return Storage_Put(storage, key, STORAGE_TIME, time, sizeof *time);
}

int32_t Storage_Get(Storage storage, uint32_t key, int32_t type, void *destination,
                    uint32_t count) {
    const uint32_t needed = type == STORAGE_STRING ? 0 : count;
    const StorageEntry *entry = findValue(storage, key, type, needed);
    if (!entry || !destination)
        return 0;
    if (type == STORAGE_STRING) {
        const StorageBytes bytes{entry->data, entry->length};
        std::memcpy(destination, &bytes, sizeof bytes);
    } else {
        std::memcpy(destination, entry->data, count);
    }
    return 1;
}

int32_t Storage_GetChar(Storage storage, uint32_t key, char *value) {
    return getScalar<sizeof *value>(storage, key, STORAGE_CHAR, value);
}

int32_t Storage_GetByte(Storage storage, uint32_t key, uint8_t *value) {
    return getScalar<sizeof *value>(storage, key, STORAGE_BYTE, value);
}

int32_t Storage_GetShort(Storage storage, uint32_t key, int16_t *value) {
    return getScalar<sizeof *value>(storage, key, STORAGE_SHORT, value);
}

int32_t Storage_GetWord(Storage storage, uint32_t key, uint16_t *value) {
    return getScalar<sizeof *value>(storage, key, STORAGE_WORD, value);
}

int32_t Storage_GetLong(Storage storage, uint32_t key, int32_t *value) {
    return getScalar<sizeof *value>(storage, key, STORAGE_LONG, value);
}

int32_t Storage_GetDWord(Storage storage, uint32_t key, uint32_t *value) {
    return getScalar<sizeof *value>(storage, key, STORAGE_DWORD, value);
}

int32_t Storage_GetInt64(Storage storage, uint32_t key, int64_t *value) {
    return getScalar<sizeof *value>(storage, key, STORAGE_INT64, value);
}

int32_t Storage_GetUInt64(Storage storage, uint32_t key, uint64_t *value) {
    return getScalar<sizeof *value>(storage, key, STORAGE_UINT64, value);
}

int32_t Storage_GetBool(Storage storage, uint32_t key, uint8_t *value) {
    return getScalar<sizeof *value>(storage, key, STORAGE_BOOL, value);
}

int32_t Storage_GetDouble(Storage storage, uint32_t key, double *value) {
    return getScalar<sizeof *value>(storage, key, STORAGE_DOUBLE, value);
}

int32_t Storage_GetString(Storage storage, uint32_t key, char **text, uint32_t *length) {
    StorageBytes bytes;
    if (!Storage_Get(storage, key, STORAGE_STRING, &bytes, sizeof bytes))
        return 0;
    if (text)
        *text = static_cast<char *>(bytes.data);
    if (length)
        *length = bytes.length;
    return 1;
}

int32_t Storage_GetByteArray(Storage storage, uint32_t key, uint8_t **bytes, uint32_t *length) {
    char *text;
    if (!Storage_GetString(storage, key, &text, length))
        return 0;
    if (bytes)
        *bytes = reinterpret_cast<uint8_t *>(text);
    return 1;
}

int32_t Storage_GetDate(Storage storage, uint32_t key, TerminalDate *date) {
    return getScalar<sizeof *date>(storage, key, STORAGE_DATE, date);
}

int32_t Storage_GetTime(Storage storage, uint32_t key, TerminalTime *time) {
    return getScalar<sizeof *time>(storage, key, STORAGE_TIME, time);
}

int32_t Storage_GetStringCopy(Storage storage, uint32_t key, char *buffer, uint32_t size) {
    char *text;
    uint32_t length;
    if (!Storage_GetString(storage, key, &text, &length))
        return 0;
    if (size == 0)
        return 1;
    if (!buffer)
        return 0;
    const uint32_t count = std::min(size - 1, length);
    std::memcpy(buffer, text, count);
    buffer[count] = 0;
    return 1;
}

int32_t Storage_AppendString(Storage storage, uint32_t key, const char *text, uint32_t length) {
    StorageEntry *entry = FindEntry(storage, key);
    if (!text || length == 0 || !entry || entry->type != STORAGE_STRING)
        return Storage_PutString(storage, key, text, length);

    StorageTable &table = **storage;
    if (length > UINT32_MAX - table.totalSize)
        return 0;
    // Not a realloc: `text` may be the stored string itself.
    HeapPointer<char> data = allocateBytes(std::size_t{entry->length} + length);
    if (!data)
        return asserts.fail(0);
    std::memcpy(data.get(), entry->data, entry->length);
    std::memcpy(data.get() + entry->length, text, length);
    replaceData(table, *entry, std::move(data), entry->length + length);
    return 1;
}

int32_t Storage_GetType(Storage storage, uint32_t key) {
    const StorageEntry *entry = FindEntry(storage, key);
    return entry ? entry->type : -1;
}

int32_t Storage_Remove(Storage storage, uint32_t key) {
    StorageEntry *entry = FindEntry(storage, key);
    if (!entry)
        return 0;
    Table &table = tableOf(storage);
    removeFromIndex(table, key);
    StorageEntry **link = &table.buckets[bucketOf(key)];
    while (*link != entry)
        link = &(*link)->next;
    *link = entry->next;
    --table.count;
    table.totalSize -= entryHeaderSize + entry->length;
    freeEntry(entry);
    return 1;
}

int32_t Storage_MemFree(void *block) {
    std::free(block);
    return 1;
}

Storage Storage_Trace(Storage storage) {
    return storage;
}
