// BER-TLV: the search finds what reading object by object finds, and what is read, appended anew
// and read again is the same.
#include "fuzz/harness.h"

#include "tests/state.h"

#include <vector>

using namespace fuzz;

namespace {

// The search by hand: result, and the value found.
int32_t find(const uint8_t *at, uint32_t left, uint32_t wanted, uint32_t room, int depth,
             std::string &found) {
    while (left > 0) {
        const uint8_t *value = nullptr, *again = nullptr, *const begin = at;
        uint32_t tag, length, tagAgain, lengthAgain;
        if (BerTlv_GetTag(&at, &left, &tag, &length, &value) != 0)
            return UTI_BERTLV_BAD_DATA;
        REQUIRE(length == 0 || value + length == at);
        std::vector<uint8_t> copy(length + 9);
        auto size = static_cast<uint32_t>(copy.size());
        if (BerTlv_AppendTag(tag, length, value, copy.data(), &size) == 0) {
            const uint8_t *cursor = copy.data();
            REQUIRE(BerTlv_GetTag(&cursor, &size, &tagAgain, &lengthAgain, &again) == 0);
            REQUIRE(size == 0 && tagAgain == tag && lengthAgain == length);
            REQUIRE(std::equal(value, at, again));
        } else
            REQUIRE(length == 0);
        if (tag == wanted) {
            found.assign(reinterpret_cast<const char *>(value), length);
            return length > room ? UTI_BERTLV_BAD_DATA : 0;
        }
        if (!(*begin & 0x20) || depth == 0)
            continue;
        const int32_t inside =
            length == 0 ? UTI_BERTLV_BAD_DATA : find(value, length, wanted, room, depth - 1, found);
        if (inside != UTI_BERTLV_NOT_FOUND)
            return inside;
    }
    return UTI_BERTLV_NOT_FOUND;
}

} // namespace

void fuzz::run(Input &in) {
    const uint32_t wanted = in.oneIn(2) ? in.byte() : in.number() >> 8 * in.below(4);
    const uint32_t room = in.below(300);
    const support::ExactBlock block(in.takeRest()), out(std::string(room, '#'));
    const auto *bytes = reinterpret_cast<const uint8_t *>(block.data());

    std::string value;
    const int32_t expected = block.size() == 0 || room == 0
                                 ? UTI_BERTLV_BAD_DATA
                                 : find(bytes, block.size(), wanted, room, 5, value);
    uint32_t length = room;
    REQUIRE(BerTlv_ExtractSingleTag(bytes, block.size(), wanted, &length,
                                    reinterpret_cast<uint8_t *>(out.data())) == expected);
    value.resize(expected == 0 ? value.size() : 0);
    REQUIRE(length == (expected == 0 ? value.size() : room));
    REQUIRE(std::string(out.data(), room) == value + std::string(room - value.size(), '#'));
}
