// USSD responses and SMS data: what the parts of a response say is known from the start, any other
// bytes are taken or refused, and a small buffer gets the beginning of what a large one gets.
#include "fuzz/harness.h"

#include "tests/state.h"

using namespace fuzz;

namespace {

using Parse = int32_t (*)(std::string text, char *out, int32_t room);

int32_t parseUssd(std::string text, char *out, int32_t room) {
    const auto length = static_cast<uint32_t>(text.size());
    const support::ExactBlock response(text + 'x');
    const int32_t result = UTILS_ParseUSSDResponse(response.data(), length, out, room);
    REQUIRE(response.data()[length] == 0);
    return result;
}
int32_t parseSms(std::string text, char *out, int32_t room) {
    const support::ExactBlock exact(text);
    return UTILS_ParseSMSData(exact.data(), exact.size(), out, room);
}

// A text in Windows-1251 as UCS-2, of the characters that come back as they were.
std::string encode(const std::string &text) {
    std::string digits;
    for (const char c : text) {
        const auto byte = static_cast<uint8_t>(c);
        char code[5];
        snprintf(code, sizeof code, "%04X", byte < 0xC0 ? byte : byte + 0x350u);
        digits += code;
    }
    return digits;
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
    Input in(data, size);
    const Parse parse = in.oneIn(2) ? parseUssd : parseSms;
    const support::ExactBlock small(std::string(in.below(700), '#'));
    const std::string plain = in.bytes(128);
    const uint32_t m = in.below(10), dcs = in.below(1000);
    const bool isUcs2 = (dcs % 256 & 0xCC) == 0x48;
    const std::string ucs2 = encode(plain), ussd = "+CUSD: " + std::to_string(m) + ",\"" + ucs2 +
                                                   "\", " + std::to_string(dcs) + '\r';
    char out[1024];
    REQUIRE(parseSms(ucs2, out, sizeof out) == static_cast<int32_t>(plain.size()));
    REQUIRE(std::string(out, plain.size()) == plain);
    const std::string &shown = isUcs2 ? plain : ucs2;
    const bool isRefused = m == 4 || m == 5 || dcs % 256 == 0;
    REQUIRE(parseUssd(in.text(3) + ussd, out, sizeof out) ==
            (isRefused ? UTI_GSM_FAILED : static_cast<int32_t>(shown.size())));
    REQUIRE(isRefused || std::string(out, shown.size()) == shown);

    const std::string any = in.takeRest();
    const int32_t result = parse(any, out, sizeof out);
    REQUIRE(result == UTI_GSM_FAILED ||
            (result >= 0 && result <= static_cast<int32_t>(any.size())));
    const auto room = static_cast<int32_t>(small.size());
    const int32_t again = parse(any, small.data(), room);
    const auto copied = static_cast<uint32_t>(std::clamp(result, 0, std::max(room - 1, 0)));
    REQUIRE(again == result || (parse == parseSms && again == static_cast<int32_t>(copied)));
    REQUIRE(std::string(small.data(), small.size()) ==
            std::string(out, copied) + std::string(small.size() - copied, '#'));
    return 0;
}
