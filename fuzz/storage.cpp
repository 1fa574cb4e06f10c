// Storage against a plain map and the order of its keys, with export and import.
#include "fuzz/terminal.h"

#include <map>
#include <utility>
#include <vector>

using namespace fuzz;

namespace {

struct Value {
    int32_t type;
    std::string bytes;
    bool operator==(const Value &) const = default;
};

// A plain map; the newest key of a bucket stands first.
struct Model {
    std::map<uint32_t, Value> values;
    std::vector<uint32_t> newestFirst;

    void put(uint32_t key, const Value &value) {
        if (!values.count(key))
            newestFirst.insert(newestFirst.begin(), key);
        values[key] = value;
    }
    void remove(uint32_t key) {
        values.erase(key);
        std::erase(newestFirst, key);
    }
    std::vector<uint32_t> keys() const {
        std::vector<uint32_t> sorted = newestFirst;
        std::stable_sort(sorted.begin(), sorted.end(),
                         [](uint32_t a, uint32_t b) { return CalcHash(a) < CalcHash(b); });
        return sorted;
    }
    void copyTo(Model &other) const {
        for (const uint32_t key : keys())
            other.put(key, values.at(key));
    }
    std::string block() const {
        std::string bytes;
        for (const uint32_t key : keys()) {
            const Value &value = values.at(key);
            for (const std::size_t word :
                 {std::size_t{key}, static_cast<std::size_t>(value.type), value.bytes.size()})
                for (int shift = 0; shift < 32; shift += 8)
                    bytes += static_cast<char>(word >> shift);
            bytes += value.bytes;
        }
        return bytes;
    }
};

std::string exported(Storage storage) {
    void *block = nullptr;
    uint32_t size = 0;
    REQUIRE(Storage_Export(storage, &block, &size) == 1);
    const std::string bytes(static_cast<char *>(block), size);
    Storage_MemFree(block);
    return bytes;
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
    Library library;
    Input in(data, size);
    Storage storages[] = {Storage_Create(), Storage_Create()};
    Model models[2];
    armFault(in);
    for (int steps = 0; !in.isOver() && steps < 200; ++steps) {
        const uint32_t which = in.below(2), operation = in.below(9);
        const Storage storage = storages[which], other = storages[1 - which];
        Model &model = models[which], &otherModel = models[1 - which];
        const uint32_t key = in.below(4) * STORAGE_BUCKETS + in.below(3);
        // What a lack of memory left half done is not looked into.
        const auto done = [](int32_t result) {
            REQUIRE(result == 1 || fake::faultStruck());
            return result == 1;
        };
        if (operation < 3) {
            const Value value{static_cast<int32_t>(in.below(14)), in.bytes(20)};
            const auto length = static_cast<uint32_t>(value.bytes.size());
            if (length == 0)
                REQUIRE(Storage_Put(storage, key, value.type, "", 0) == 0);
            else if (done(Storage_Put(storage, key, value.type, value.bytes.data(), length)))
                model.put(key, value);
        } else if (operation == 3) {
            REQUIRE(Storage_Remove(storage, key) == (model.values.count(key) ? 1 : 0));
            model.remove(key);
        } else if (operation == 4) {
            const std::string more = in.bytes(8) + '.';
            const auto found = model.values.find(key);
            const bool appends =
                found != model.values.end() && found->second.type == STORAGE_STRING;
            if (done(Storage_AppendString(storage, key, more.data(),
                                          static_cast<uint32_t>(more.size()))))
                model.put(key, {STORAGE_STRING, appends ? found->second.bytes + more : more});
        } else if (operation == 5) {
            const std::string block = in.oneIn(2) ? in.bytes(60) : otherModel.block();
            const support::ExactBlock exact(block);
            Storage_Import(storage, exact.data(), exact.size());
            // A block may hold anything: what came of it is taken from the entries themselves.
            model = {};
            for (std::size_t at = 0; at + 12 <= block.size();) {
                uint32_t words[3];
                std::memcpy(words, block.data() + at, 12);
                at += 12;
                if (words[2] == 0 || words[2] > block.size() - at || !FindEntry(storage, words[0]))
                    break;
                model.put(words[0], {static_cast<int32_t>(words[1]), block.substr(at, words[2])});
                at += words[2];
            }
        } else if (operation == 6) {
            REQUIRE(Storage_Swap(storage, other) == 1);
            std::swap(model, otherModel);
        } else if (operation == 7) {
            Model merged;
            model.copyTo(merged);
            otherModel.copyTo(merged);
            if (done(Storage_Merge(storage, other, storage)))
                model = merged;
        } else {
            const int32_t compared = Storage_Compare(storage, other);
            REQUIRE(fake::faultStruck() || (compared == 0) == (model.values == otherModel.values));
        }
        if (fake::faultStruck())
            break;
    }
    const bool isExact = !fake::faultStruck();
    fake::disarm();
    for (int i = 0; i < 2 && storages[i]; ++i) {
        REQUIRE(!isExact || exported(storages[i]) == models[i].block());
        Storage_Free(storages[i]);
    }
    return 0;
}
