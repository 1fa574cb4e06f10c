// utiStorageWhole.cpp: operations on whole Storages: their keys, comparing, copying, merging, and
// the export block, which is drawn in docs/formats.md. Stands on utiStorage.cpp.
#include "Src/assertions.h"
#include "Src/heap.h"
#include "Src/utiStorage.h"
#include "common/bytes.h"
#include "terminal.h"

#include <utility>

namespace uti {
namespace {

constexpr Assertions<"Src/utiStorage"> asserts;

// Bytes of a value by type code; strings have their own length.
constexpr uint8_t scalarSizes[] = {
    1, 1, 2, 2, 4, 4, 8, 8, 1, 8, 0, sizeof(TerminalDate), sizeof(TerminalTime)};
static_assert(sizeof(TerminalDate) == 6 && sizeof(TerminalTime) == 3);

} // namespace
} // namespace uti

using namespace uti;

int32_t Storage_GetKeys(Storage storage, uint32_t **keys, uint32_t *count) {
    if (!isOpen(storage) || !keys || !count)
        return 0;
    *keys = nullptr;
    *count = (*storage)->count;
    if (*count == 0)
        return 1;

    *keys = static_cast<uint32_t *>(std::malloc(*count * sizeof(uint32_t)));
    if (!*keys)
        return asserts.fail(0);
    uint32_t *key = *keys;
    forEachEntry(storage, [&](const StorageEntry &entry) {
        *key++ = entry.key;
        return true;
    });
    return 1;
}

int32_t Storage_CreateKeysArray(Storage storage, uint32_t **keys, uint32_t *count) {
    return Storage_GetKeys(storage, keys, count);
}

int32_t Storage_CompareCell(Storage a, uint32_t keyA, Storage b, uint32_t keyB) {
    if (!isOpen(a) || !isOpen(b))
        return 0;
    const StorageEntry *entryA = FindEntry(a, keyA);
    const StorageEntry *entryB = FindEntry(b, keyB);
    if (!entryA)
        return 0;
    if (!entryB)
        return -1;
    if (entryA->type != entryB->type)
        return entryA->type < entryB->type ? -1 : 1;
    if (entryA->length != entryB->length)
        return entryA->length < entryB->length ? -1 : 1;
    return std::memcmp(entryA->data, entryB->data, entryA->length);
}

int32_t Storage_Compare(Storage a, Storage b) {
    if (!a || !b)
        return a == b ? 0 : 1;
    if (!*a || !*b)
        return *a == *b ? 0 : *a ? 1 : -1;

    uint32_t *keys;
    uint32_t count;
    if (!Storage_GetKeys(a, &keys, &count))
        return -1;
    const HeapPointer<uint32_t> keysA(keys);
    uint32_t *otherKeys;
    uint32_t otherCount;
    if (!Storage_GetKeys(b, &otherKeys, &otherCount))
        return 1;
    const HeapPointer<uint32_t> keysB(otherKeys);

    if (count != otherCount)
        return count > otherCount ? 1 : -1;
    for (uint32_t i = 0; i < count; ++i) {
        if (!FindEntry(b, keys[i]))
            return 1;
    }
    for (uint32_t i = 0; i < count; ++i) {
        if (const int32_t result = Storage_CompareCell(a, keys[i], b, keys[i]))
            return result;
    }
    return 0;
}

int32_t Storage_Copy(Storage source, Storage destination) {
    if (!isOpen(source) || !isOpen(destination))
        return 0;
    return forEachEntry(source, [&](const StorageEntry &entry) {
        return Storage_Put(destination, entry.key, entry.type, entry.data, entry.length) == 1;
    });
}

int32_t Storage_Merge(Storage a, Storage b, Storage result) {
    if (!isOpen(a) || !isOpen(b) || !isOpen(result))
        return 0;
    const Storage merged = Storage_Create();
    const bool done = merged && Storage_Copy(a, merged) && Storage_Copy(b, merged) &&
                      Storage_Swap(merged, result);
    Storage_Free(merged);
    return done ? 1 : 0;
}

int32_t Storage_Swap(Storage a, Storage b) {
    if (!isOpen(a) || !isOpen(b))
        return 0;
    std::swap(*a, *b);
    return 1;
}

int32_t Storage_CopyField(Storage source, Storage destination, uint32_t sourceKey,
                          uint32_t destinationKey) {
    const StorageEntry *entry = FindEntry(source, sourceKey);
    if (!entry)
        return 0;
    if (entry->type < STORAGE_CHAR || entry->type > STORAGE_TIME)
        return asserts.fail(0);
    const uint32_t size = entry->type == STORAGE_STRING ? entry->length : scalarSizes[entry->type];
    if (size > entry->length)
        return 0;
    return Storage_Put(destination, destinationKey, entry->type, entry->data, size);
}

int32_t Storage_Export(Storage storage, void **block, uint32_t *size) {
    if (!isOpen(storage) || !block)
        return 0;
    const uint32_t total = (*storage)->totalSize;
    *block = nullptr;
    if (size)
        *size = 0;
    if (total < 1)
        return 1;

    *block = std::malloc(total);
    if (!*block)
        return asserts.fail(0);
    if (size)
        *size = total;
    auto *at = static_cast<uint8_t *>(*block);
    forEachEntry(storage, [&](const StorageEntry &entry) {
        at = putNumber(at, entry.key, 4, ByteOrder::little);
        at = putNumber(at, static_cast<uint32_t>(entry.type), 4, ByteOrder::little);
        at = putNumber(at, entry.length, 4, ByteOrder::little);
        std::memcpy(at, entry.data, entry.length);
        at += entry.length;
        return true;
    });
    return 1;
}

int32_t Storage_Import(Storage storage, const void *block, uint32_t size) {
    if (!isOpen(storage) || !block)
        return 0;
    Storage_Clear(storage);

    const auto *at = static_cast<const uint8_t *>(block);
    uint32_t left = size;
    while (left > 0) {
        if (left < entryHeaderSize)
            return 0;
        const auto field = [&](uint32_t offset) {
            return static_cast<uint32_t>(getNumber(at + offset, 4, ByteOrder::little));
        };
        const uint32_t length = field(8);
        if (length > left - entryHeaderSize)
            return 0;
        if (!Storage_Put(storage, field(0), static_cast<int32_t>(field(4)), at + entryHeaderSize,
                         length))
            return 0;
        at += entryHeaderSize + length;
        left -= entryHeaderSize + length;
    }
    return 1;
}
