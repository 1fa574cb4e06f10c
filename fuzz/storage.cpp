// Storage against a plain map and the order of its keys, with export and import.
#include "fuzz/terminal.h"

#include "tests/streams.h"

#include <map>

using namespace fuzz;

namespace {

// Keys that share three buckets.
constexpr uint32_t keys[][3] = {{0, 20, 74}, {8, 151, 417}, {101, 470, 421}, {288, 579, 576}};

struct Model {
    std::map<uint32_t, std::pair<uint32_t, std::string>> values; // type and bytes
    std::vector<uint32_t> order;                                 // by bucket, the newest first

    void put(uint32_t key, uint32_t type, const std::string &bytes) {
        const auto comesFirst = [](uint32_t a, uint32_t b) { return CalcHash(a) < CalcHash(b); };
        if (values.insert_or_assign(key, std::pair(type, bytes)).second)
            order.insert(std::lower_bound(order.begin(), order.end(), key, comesFirst), key);
    }
    void put(const Model &other) {
        for (const uint32_t key : other.order)
            put(key, other.values.at(key).first, other.values.at(key).second);
    }
    std::string block() const {
        std::string out;
        for (const uint32_t key : order) {
            const auto &[type, bytes] = values.at(key);
            for (const std::size_t word : {std::size_t{key}, std::size_t{type}, bytes.size()})
                out += support::number(word, 4);
            out += bytes;
        }
        return out;
    }
};

std::string exported(Storage storage) {
    void *block = nullptr;
    uint32_t size = 0;
    const int32_t result = Storage_Export(storage, &block, &size);
    REQUIRE_UNLESS_STRUCK(result == 1);
    std::string bytes(static_cast<char *>(block), size);
    Storage_MemFree(block);
    return bytes;
}

} // namespace

void fuzz::run(Input &in) {
    Library library;
    Storage storages[] = {Storage_Create(), Storage_Create()};
    Model models[2];
    armFault(in);
    for (int steps = 0; !in.isOver() && steps < 200 && !fake::faultStruck(); ++steps) {
        const uint32_t which = in.below(2), operation = in.below(9);
        const Storage storage = storages[which], other = storages[1 - which];
        Model &model = models[which], &otherModel = models[1 - which];
        const uint32_t key = keys[in.below(4)][in.below(3)];
        int32_t result = 1, expected = 1;
        switch (operation) {
        default: {
            const uint32_t type = in.below(14);
            const std::string bytes = in.bytes(20);
            const auto length = static_cast<uint32_t>(bytes.size());
            result = Storage_Put(storage, key, static_cast<int32_t>(type), bytes.data(), length);
            expected = length > 0;
            if (expected)
                model.put(key, type, bytes);
            break;
        }
        case 3:
            result = Storage_Remove(storage, key);
            expected = static_cast<int32_t>(model.values.erase(key));
            std::erase(model.order, key);
            break;
        case 4: {
            const std::string more = in.bytes(8) + '.';
            const auto length = static_cast<uint32_t>(more.size());
            const auto &[type, bytes] = model.values[key];
            const std::string whole = type == STORAGE_STRING ? bytes + more : more;
            if (bytes.empty())
                model.values.erase(key);
            model.put(key, STORAGE_STRING, whole);
            result = Storage_AppendString(storage, key, more.data(), length);
            break;
        }
        case 5: {
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
                model.put(words[0], words[1], block.substr(at, words[2]));
                at += words[2];
            }
            break;
        }
        case 6:
            result = Storage_Swap(storage, other);
            std::swap(model, otherModel);
            break;
        case 7: {
            Model merged;
            merged.put(model);
            merged.put(otherModel);
            model = merged;
            result = Storage_Merge(storage, other, storage);
            break;
        }
        case 8:
            result = Storage_Compare(storage, other) == 0;
            expected = model.values == otherModel.values;
        }
        REQUIRE_UNLESS_STRUCK(result == expected);
    }
    for (int i = 0; i < 2 && storages[i]; ++i) {
        const bool isSame = exported(storages[i]) == models[i].block(); // which may be struck now
        REQUIRE_UNLESS_STRUCK(isSame);
        Storage_Free(storages[i]);
    }
}
