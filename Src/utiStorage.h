// utiStorage.h: the table behind a Storage and the way to a key's entry in it, for readers inside
// the library.
#pragma once

#include "uti.h"

#include <concepts>
#include <cstdlib>

namespace uti {

// Bytes of an entry in the export block, without its value.
inline constexpr uint32_t entryHeaderSize = 12;

inline bool isOpen(Storage storage) {
    return storage && *storage;
}

// A table as it is allocated. The buckets, whose number and order are fixed, hold every entry; an
// index of them all finds each in a few steps, also when all keys share a bucket. It is probed
// linearly and at most half full. While there is none, for want of entries or of memory, the
// bucket's chain is walked.
struct Table : StorageTable {
    StorageEntry **slots; // `none` while there is no index
    uint32_t seed;        // of the index's hash: no set of keys collides in every table
    uint32_t shift;       // the index has 1 << (32 - shift) slots

    bool hasIndex() const { return slots != none; }

    uint32_t lastSlot() const { return UINT32_MAX >> shift; }
    uint32_t slotOf(uint32_t key) const { return (key ^ seed) * 0x9E3779B1 >> shift; }
    uint32_t next(uint32_t slot) const { return (slot + 1) & lastSlot(); }

    // The slot that holds the key's entry, or the empty one where it belongs.
    uint32_t find(uint32_t key) const {
        uint32_t slot = slotOf(key);
        while (slots[slot] && slots[slot]->key != key)
            slot = next(slot);
        return slot;
    }

    void startWithoutIndex() {
        slots = none;
        shift = 31;
    }

    void dropIndex() {
        if (hasIndex())
            std::free(slots);
        startWithoutIndex();
    }

private:
    static StorageEntry *none[2]; // nothing is ever put in
};

inline Table &tableOf(Storage storage) {
    return static_cast<Table &>(**storage);
}

// The key's entry, or null, wherever it is.
StorageEntry *findAnywhere(const Table &table, uint32_t key);

// The same in an open Storage where nearly all stand; null tells nothing.
[[gnu::always_inline]] inline StorageEntry *findAtOnce(const Table &table, uint32_t key) {
    StorageEntry *entry = table.slots[table.slotOf(key)];
    return entry && entry->key == key ? entry : nullptr;
}

// The key's entry, or null; `FindEntry` for those that need not be fast.
[[gnu::always_inline]] inline StorageEntry *findEntry(Storage storage, uint32_t key) {
    if (!isOpen(storage))
        return nullptr;
    const Table &table = tableOf(storage);
    if (StorageEntry *entry = findAtOnce(table, key)) [[likely]]
        return entry;
    return findAnywhere(table, key);
}

// Calls `visit` for every entry by bucket and chain, as long as it returns true.
template <std::predicate<StorageEntry &> Visit>
bool forEachEntry(Storage storage, Visit visit) {
    for (StorageEntry *bucket : (*storage)->buckets) {
        for (StorageEntry *entry = bucket; entry; entry = entry->next) {
            if (!visit(*entry))
                return false;
        }
    }
    return true;
}

} // namespace uti
