// The List with its cursor rules, and the Storage with its buckets and its export block.
#include "tests/support.h"

#include <algorithm>

using namespace support;
using fake::Call;
using fake::Persistence;

namespace {

class ListTest : public support::Terminal {
protected:
    ~ListTest() override { List_Destroy(list); }

    // The items from head to tail, then the cursor: the current item and the index.
    std::string state() const {
        std::string text;
        for (const ListNode *node = list->head; node; node = node->next) {
            EXPECT_EQ(node->prev ? node->prev->next : list->head, node);
            text += static_cast<const char *>(node->data);
        }
        EXPECT_EQ(list->GetCount(list), static_cast<int32_t>(text.size()));
        text += list->current ? " "s + static_cast<const char *>(list->current->data) : " -";
        return text + std::to_string(list->index);
    }

    // Runs one operation by its letter or position.
    void operate(char letter, char *item) {
        static constexpr std::string_view moves = "FLNP", inserts = "htab";
        void *(*const move[])(List *) = {list->First, list->Last, list->Next, list->Prev};
        ListNode *(*const insert[])(List *, void *) = {list->AddHead, list->AddTail,
                                                       list->InsertAfter, list->InsertBefore};
        if (letter == 'u')
            list->UpDate(list, item);
        else if (std::isdigit(letter))
            list->GetDataInPosition(list, letter - '0');
        else if (const auto at = moves.find(letter); at < moves.size())
            move[at](list);
        else if (const auto to = inserts.find(letter); to < inserts.size())
            insert[to](list, item);
        else
            (letter == 'R' ? list->Remove : list->RemoveAll)(list);
    }

    List *list = List_Create();
    char items[10][2] = {"A", "B", "C", "D", "E", "F", "G", "H", "I", "J"};
};

TEST_F(ListTest, CursorFollowsItsRules) {
    const struct {
        const char *operations; // lower-case ones take the next item
        const char *expected;
        int32_t done;
    } rows[] = {
        {"F", " -0", 1},        {"L", " --1", 1},        {"t", "A A1", 1},
        {"tF", "A A0", 0},      {"th", "BA B2", 1},      {"ttFN", "AB B1", 0},
        {"ttFNN", "AB -2", 1},  {"ttFNNN", "AB -2", 1},  {"ttFP", "AB --1", 1},
        {"ttFPP", "AB --1", 1}, {"ttLP", "AB A0", 0},    {"ttFa", "ACB C1", 0},
        {"ttFb", "CAB C1", 0},  {"a", " -0", 1},         {"b", " -0", 1},
        {"tR", " -0", 1},       {"ttFR", "B --1", 1},    {"ttFRa", "B --1", 1},
        {"ttFRN", "B -0", 0},   {"tttF1u", "ADC D1", 0}, {"ttA", " -0", 1},
        {"ttt2", "ABC C2", 0},  {"ttt0", "ABC A0", 0},   {"tt9", "AB -2", 1},
        {"0", " -0", 1},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.operations);
        list->RemoveAll(list);
        List_Intitialize(list);
        int next = 0;
        for (const char *at = row.operations; *at; ++at)
            operate(*at, std::islower(*at) ? items[next++] : nullptr);
        EXPECT_EQ(state(), row.expected);
        EXPECT_EQ(list->IsDone(list), row.done);
    }
}

TEST_F(ListTest, FailedInsertLeavesNoCurrentNode) {
    operate('t', items[0]);
    for (const char operation : {'h', 't', 'a', 'b'}) {
        operate('F', nullptr);
        operate(operation, nullptr);
        EXPECT_EQ(state(), "A -0");
        operate('F', nullptr);
        fake::failCall(Call::malloc, 1, Persistence::once);
        operate(operation, items[1]);
        EXPECT_EQ(state(), "A -0");
    }
    operate('F', nullptr);
    operate('u', nullptr);
    EXPECT_EQ(state(), "A A0") << "a null item replaces nothing";
    fake::failCall(Call::malloc, 1, Persistence::once);
    EXPECT_EQ(List_Create(), nullptr);
    List_Destroy(nullptr);
}

TEST_F(ListTest, OperationsCallOneAnotherThroughTheTable) {
    operate('t', items[0]);
    list->IsDone = nullptr; // which none of them calls
    EXPECT_EQ(list->GetDataInPosition(list, 9), nullptr);
    list->Current = [](List *) -> void * { return const_cast<char *>("mine"); };
    EXPECT_EQ(list->First(list), items[0]);
    EXPECT_EQ(list->Last(list), items[0]);
    EXPECT_STREQ(static_cast<char *>(list->Prev(list)), "mine");
    EXPECT_STREQ(static_cast<char *>(GetDataInPosition(list, 1)), "mine");

    static int made, freed;
    made = freed = 0;
    list->NewListNode = [](List *of, ListNode *prev, ListNode *next, void *item) {
        ++made;
        return NewListNode(of, prev, next, item);
    };
    list->FreeListNode = [](List *of, ListNode *node) {
        ++freed;
        FreeListNode(of, node);
    };
    operate('t', items[1]);
    list->RemoveAll(list);
    EXPECT_EQ(made, 1);
    EXPECT_EQ(freed, 2);
    EXPECT_EQ(list->GetCount(list), 0);
}

class StorageTest : public support::Terminal {
protected:
    ~StorageTest() override {
        Storage_Free(storage);
        Storage_Free(other);
    }

    std::string exported(Storage from) {
        void *block = nullptr;
        uint32_t size = 0;
        EXPECT_EQ(Storage_Export(from, &block, &size), 1);
        std::string bytes(static_cast<char *>(block), size);
        Storage_MemFree(block);
        return bytes;
    }

    // One value of each type under the keys 0 to 12.
    static void fill(Storage into) {
        const TerminalDate date{2026, 11, 22, {7, 8}};
        const TerminalTime time{1, 2, 3};
        Storage_PutChar(into, 0, 'c');
        Storage_PutByte(into, 1, 0xFE);
        Storage_PutShort(into, 2, -2);
        Storage_PutWord(into, 3, 0xFFFE);
        Storage_PutLong(into, 4, -4);
        Storage_PutDWord(into, 5, 0xFFFFFFFEu);
        Storage_PutInt64(into, 6, -6);
        Storage_PutUInt64(into, 7, 0xFFFFFFFFFFFFFFFEu);
        Storage_PutBool(into, 8, 1);
        Storage_PutDouble(into, 9, 1.5);
        Storage_PutString(into, 10, "text", 5);
        Storage_PutDate(into, 11, &date);
        Storage_PutTime(into, 12, &time);
    }

    Storage storage = Storage_Create();
    Storage other = Storage_Create();
};

TEST_F(StorageTest, EveryTypeRoundTripsAndMatchesExactly) {
    fill(storage);
    const auto got = [&]<class Value>(int32_t (*get)(Storage, uint32_t, Value *), uint32_t key) {
        Value value{};
        EXPECT_EQ(get(storage, key, &value), 1) << key;
        return value;
    };
    EXPECT_EQ(got(Storage_GetChar, 0), 'c');
    EXPECT_EQ(got(Storage_GetByte, 1), 0xFE);
    EXPECT_EQ(got(Storage_GetShort, 2), -2);
    EXPECT_EQ(got(Storage_GetWord, 3), 0xFFFE);
    EXPECT_EQ(got(Storage_GetLong, 4), -4);
    EXPECT_EQ(got(Storage_GetDWord, 5), 0xFFFFFFFEu);
    EXPECT_EQ(got(Storage_GetInt64, 6), -6);
    EXPECT_EQ(got(Storage_GetUInt64, 7), 0xFFFFFFFFFFFFFFFEu);
    EXPECT_EQ(got(Storage_GetBool, 8), 1);
    EXPECT_EQ(got(Storage_GetDouble, 9), 1.5);
    EXPECT_EQ(got(Storage_GetDate, 11).reserved[1], 8);
    EXPECT_EQ(got(Storage_GetTime, 12).second, 3);
    char *text;
    uint32_t length;
    EXPECT_TRUE(Storage_GetString(storage, 10, &text, &length) && length == 5 && text == "text"s);
    for (uint32_t key = 0; key < 13; ++key) {
        EXPECT_EQ(Storage_GetType(storage, key), static_cast<int32_t>(key));
        EXPECT_EQ(Storage_CopyField(storage, other, key, key + 100), 1);
        EXPECT_EQ(Storage_CompareCell(storage, key, other, key + 100), 0);
        for (int32_t type = 0; type < 13; ++type) {
            StorageBytes value;
            EXPECT_EQ(Storage_Get(storage, key, type, &value, 1),
                      type == static_cast<int32_t>(key));
        }
    }
    EXPECT_EQ(Storage_PutLong(storage, 0, 7), 1) << "another type under the same key";
    EXPECT_EQ(Storage_GetType(storage, 0), STORAGE_LONG);
    EXPECT_EQ((*storage)->count, 13u);
    for (const auto &[key, bucket] : {std::pair(0u, 0u), {1, 91}, {2, 74}, {3, 15}, {255, 48}})
        EXPECT_EQ(CalcHash(key), bucket);
}

TEST_F(StorageTest, ImportTakesBackAndRefusesCutBlocks) {
    fill(storage);
    const std::string good = exported(storage);
    forEachTruncation(good, [&](const ExactBlock &block) {
        const int32_t result = Storage_Import(other, block.data(), block.size());
        const std::size_t kept = exported(other).size();
        EXPECT_EQ(result == 1, kept == block.size());
        EXPECT_LT(block.size() - kept, 12u + 8u) << "every whole value before the cut stays";
        for (uint32_t key = 0; key < 13; ++key)
            EXPECT_EQ(Storage_CompareCell(other, key, storage, key), 0);
    });
    EXPECT_EQ(Storage_Compare(storage, other), 0);
    const struct {
        const char *name, *block;
        int32_t expected;
    } rows[] = {
        {"length past the end", "01000000 0A000000 FFFFFFFF 41", 0},
        {"length whose sum wraps", "01000000 0A000000 F4FFFFFF 41", 0},
        {"empty value", "01000000 0A000000 00000000", 0},
        {"unknown type", "01000000 63000000 01000000 41", 1},
        {"a Long of one byte", "01000000 04000000 01000000 41", 1},
        {"nothing", "", 1},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const ExactBlock block(hex(row.block));
        EXPECT_EQ(Storage_Import(other, block.data(), block.size()), row.expected);
        int32_t value = 77;
        EXPECT_EQ(Storage_GetLong(other, 1, &value), 0);
        EXPECT_EQ(Storage_CopyField(other, storage, 1, 1), 0);
    }
}

TEST_F(StorageTest, StringsCopyAppendAndAlias) {
    char *text;
    uint32_t length;
    char buffer[8] = "zzzzzzz";
    EXPECT_EQ(Storage_AppendString(storage, 1, "ab", 2), 1) << "nothing there: a put";
    ASSERT_EQ(Storage_GetString(storage, 1, &text, &length), 1);
    EXPECT_EQ(Storage_AppendString(storage, 1, text, length), 1) << "appended to itself";
    ASSERT_EQ(Storage_GetString(storage, 1, &text, nullptr), 1);
    EXPECT_EQ(Storage_PutString(storage, 1, text + 1, 3), 1) << "put under itself";
    for (const auto &[size, expected] :
         {std::pair(0u, "zzzzzzz"), {1u, ""}, {3u, "ba"}, {4u, "bab"}, {8u, "bab"}}) {
        EXPECT_EQ(Storage_GetStringCopy(storage, 1, buffer, size), 1);
        EXPECT_STREQ(buffer, expected);
    }
    EXPECT_EQ(Storage_Put(storage, 2, STORAGE_BYTE, "x", 0), 0);
    EXPECT_EQ(Storage_GetType(storage, 2), -1);
    EXPECT_EQ(Storage_AppendString(storage, 1, nullptr, 4), 0);
    Storage_PutByte(storage, 3, 1);
    EXPECT_EQ(Storage_PutString(storage, 3, "s", 1), 1) << "another type is replaced";
    (*storage)->totalSize = UINT32_MAX - 12; // as if there were many values
    EXPECT_EQ(Storage_AppendString(storage, 3, "thirteen more", 13), 0);
    EXPECT_EQ(Storage_PutByte(storage, 4, 1), 0);
}

TEST_F(StorageTest, ComparesCopiesMergesSwaps) {
    EXPECT_EQ(Storage_Compare(storage, other), 0);
    Storage_PutByte(storage, 1, 5);
    EXPECT_EQ(Storage_Compare(storage, other), 1);
    EXPECT_EQ(Storage_Compare(other, storage), -1);
    Storage_PutByte(other, 2, 5);
    EXPECT_EQ(Storage_Compare(storage, other), 1) << "a key that the other lacks";
    EXPECT_EQ(Storage_CompareCell(storage, 1, other, 1), -1);
    EXPECT_EQ(Storage_CompareCell(other, 1, storage, 1), 0);
    EXPECT_EQ(Storage_Compare(nullptr, nullptr), 0);
    EXPECT_EQ(Storage_Compare(nullptr, other), 1);

    Storage_PutByte(other, 1, 6);
    EXPECT_EQ(Storage_Merge(storage, other, storage), 1);
    Storage_PutShort(other, 1, 6);
    EXPECT_EQ(Storage_Compare(storage, other), -1) << "the smaller type code";
    EXPECT_EQ(Storage_Copy(storage, storage), 1);

    Storage_Clear(storage);
    uint32_t count = 9, *keys = &count;
    EXPECT_EQ(Storage_GetKeys(storage, &keys, &count), 1);
    EXPECT_TRUE(keys == nullptr && count == 0);
    EXPECT_EQ(Storage_Free(nullptr), 0);
    EXPECT_EQ(Storage_Put(nullptr, 1, 1, "x", 1), 0);
    StorageTable *cell = nullptr;
    EXPECT_EQ(Storage_PutByte(&cell, 1, 1), 0) << "a handle without a table";
    EXPECT_EQ(Storage_Remove(&cell, 1), 0);
    EXPECT_EQ(Storage_Trace(storage), storage);
}

// With and without the index that many values have, which may also be missing for want of memory.
TEST_F(StorageTest, ManyKeysAreFoundAndKeepTheirOrder) {
    for (const auto &[crowded, losses] : {std::pair(false, false), {true, false}, {true, true}}) {
        SCOPED_TRACE(testing::Message() << crowded << losses);
        Storage_Clear(storage);
        std::vector<uint32_t> order; // by bucket, the newest first
        for (uint32_t key = 0; order.size() < 600; ++key) {
            if (crowded && CalcHash(key) != 5)
                continue;
            order.insert(
                std::find_if(order.begin(), order.end(),
                             [&](uint32_t each) { return CalcHash(each) >= CalcHash(key); }),
                key);
            if (losses) // of value, entry and index, if there is to be one
                fake::failCall(Call::malloc, 3);
            EXPECT_EQ(Storage_PutDWord(storage, key, ~key), 1);
            fake::disarm();
        }
        for (std::size_t i = 0; i < order.size(); i += 2) {
            EXPECT_EQ(Storage_Remove(storage, order[i]), 1);
            EXPECT_EQ(Storage_Remove(storage, order[i]), 0);
            order.erase(order.begin() + static_cast<std::ptrdiff_t>(i));
        }
        for (const uint32_t key : order) {
            uint32_t value = 0;
            EXPECT_TRUE(Storage_GetDWord(storage, key, &value) && value == ~key) << key;
        }
        uint32_t count, *keys;
        ASSERT_EQ(Storage_GetKeys(storage, &keys, &count), 1);
        EXPECT_EQ(std::vector(keys, keys + count), order);
        Storage_MemFree(keys);
    }
}

} // namespace
