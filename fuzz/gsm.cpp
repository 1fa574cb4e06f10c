// USSD responses and SMS data: texts come back as they were encoded, any other bytes are taken or
// refused, and a small buffer gets the beginning of what a large one gets.
#include "fuzz/harness.h"

#include "tests/state.h"

using namespace fuzz;

namespace {

int32_t parse(bool isUssd, const std::string &text, char *out, int32_t room) {
    const support::ExactBlock bytes(isUssd ? text + 'x' : text);
    const auto length = static_cast<uint32_t>(text.size());
    const int32_t result = isUssd ? UTILS_ParseUSSDResponse(bytes.data(), length, out, room)
                                  : UTILS_ParseSMSData(bytes.data(), length, out, room);
    REQUIRE(!isUssd || bytes.data()[length] == 0);
    return result;
}

} // namespace

void fuzz::run(Input &in) {
    const bool isUssd = in.oneIn(2);
    const support::ExactBlock small(std::string(in.below(700), '#'));
    const std::string plain = in.bytes(128);
    const uint32_t m = in.below(10), dcs = in.below(1000);
    std::string ucs2; // of the characters that come back as they were
    for (const char c : plain) {
        const auto byte = static_cast<uint8_t>(c);
        char code[5];
        snprintf(code, sizeof code, "%04X", byte < 0xC0 ? byte : byte + 0x350u);
        ucs2 += code;
    }
    char out[1024];
    REQUIRE(parse(false, ucs2, out, sizeof out) == static_cast<int32_t>(plain.size()));
    REQUIRE(std::string(out, plain.size()) == plain);
    const std::string &shown = (dcs % 256 & 0xCC) == 0x48 ? plain : ucs2;
    const bool isRefused = m == 4 || m == 5 || dcs % 256 == 0;
    const std::string ussd = in.text(3) + "+CUSD: " + std::to_string(m) + ",\"" + ucs2 + "\", " +
                             std::to_string(dcs) + '\r';
    REQUIRE(parse(true, ussd, out, sizeof out) ==
            (isRefused ? UTI_GSM_FAILED : static_cast<int32_t>(shown.size())));
    REQUIRE(isRefused || std::string(out, shown.size()) == shown);

    const std::string any = in.takeRest();
    const int32_t result = parse(isUssd, any, out, sizeof out);
    REQUIRE(result == UTI_GSM_FAILED ||
            (result >= 0 && result <= static_cast<int32_t>(any.size())));
    const auto room = static_cast<int32_t>(small.size());
    const int32_t copied = std::clamp(result, 0, std::max(room - 1, 0));
    const int32_t again = parse(isUssd, any, small.data(), room);
    REQUIRE(again == result || (!isUssd && again == copied));
    const std::string start(out, static_cast<std::size_t>(copied));
    REQUIRE(std::string(small.data(), small.size()) ==
            start + std::string(small.size() - start.size(), '#'));
}
