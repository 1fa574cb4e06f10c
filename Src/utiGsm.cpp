// utiGsm.cpp: texts of the GSM modem, USSD responses (3GPP TS 27.007, TS 23.038) and SMS in UCS-2,
// as bytes of Windows-1251; the digit test and the library's version. Stands on the C library alone
// and keeps no state.
#include "uti.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <string_view>

namespace uti {
namespace {

using Text = std::span<const char>;

constexpr std::string_view ussdPrefix = "+CUSD:";
constexpr std::size_t numberLimit = 31;
constexpr std::size_t ussdTextLimit = 512;
constexpr std::size_t smsLimit = 649;

enum UssdStatus : uint32_t { ussdNotSupported = 4, ussdTimeout = 5 };

// Values of the upper-case hexadecimal digits. The lower-case ones are digits as well, but no
// UCS-2 text of a modem has them.
constexpr uint8_t lowerCaseDigit = 0x10;
constexpr uint8_t noDigit = 0x20;
constexpr std::array<uint8_t, 256> hexDigits = [] {
    std::array<uint8_t, 256> values{};
    values.fill(noDigit);
    for (uint8_t i = 0; i < 10; ++i)
        values['0' + i] = i;
    for (uint8_t i = 10; i < 16; ++i) {
        values['A' + i - 10] = i;
        values['a' + i - 10] = lowerCaseDigit;
    }
    return values;
}();

constexpr uint8_t hexDigit(char character) {
    return hexDigits[static_cast<uint8_t>(character)];
}

constexpr bool isDecimal(char character) {
    return character >= '0' && character <= '9';
}

// The bytes of the code units: those of one byte are themselves, and of the others only the Russian
// letters have one.
constexpr char unknownCharacter = '?';
constexpr unsigned firstRussian = 0x401;
constexpr std::array<char, 0x452 - firstRussian> russian = [] {
    std::array<char, 0x452 - firstRussian> bytes{};
    bytes.fill(unknownCharacter);
    for (unsigned unit = 0x410; unit <= 0x44F; ++unit)
        bytes[unit - firstRussian] = static_cast<char>(unit - 0x350);
    bytes.front() = static_cast<char>(0xA8);
    bytes.back() = static_cast<char>(0xB8);
    return bytes;
}();

constexpr char windows1251(unsigned unit) {
    if (unit <= 0xFF)
        return static_cast<char>(unit);
    return unit - firstRussian < russian.size() ? russian[unit - firstRussian] : unknownCharacter;
}

// Turns four upper-case hexadecimal digits a character into one byte each, in place, and returns
// the number of characters: 0 when there are none, or when it is no such text, which is then lost
// in part.
std::size_t decodeUcs2Hex(std::span<char> text) {
    if (text.size() % 4 != 0)
        return 0;

    const char *in = text.data();
    const std::size_t count = text.size() / 4;
    for (std::size_t i = 0; i < count; ++i, in += 4) {
        const unsigned a = hexDigit(in[0]), b = hexDigit(in[1]);
        const unsigned c = hexDigit(in[2]), d = hexDigit(in[3]);
        if ((a | b | c | d) > 0xF)
            return 0;
        const unsigned unit = a << 12 | b << 8 | c << 4 | d;
        text[i] = windows1251(unit);
    }
    return count;
}

// Decodes a copy of a text in a work area that holds it; empty when it is no UCS-2 text.
Text decodeCopy(Text text, std::span<char> work) {
    std::memcpy(work.data(), text.data(), text.size());
    return work.first(decodeUcs2Hex(work.first(text.size())));
}

bool isHex(Text text) {
    return std::ranges::none_of(text, [](char digit) { return hexDigit(digit) == noDigit; });
}

// Copies what the caller's buffer takes of a result and returns the number of bytes copied. They
// may lie in the buffer.
int32_t copyResult(Text result, char *out, int32_t outSize) {
    const std::size_t room = outSize > 0 ? static_cast<std::size_t>(outSize) - 1 : 0;
    const std::size_t count = result.size() < room ? result.size() : room;
    std::memmove(out, result.data(), count);
    return static_cast<int32_t>(count);
}

// A line that is cut up from its start. Every cut answers false when the mark is missing.
class Line {
public:
    explicit Line(Text bytes) : rest_(bytes) {}

    bool skipPast(std::string_view mark) {
        return cut(memmem(rest_.data(), rest_.size(), mark.data(), mark.size()), mark.size());
    }
    bool skipPastLast(char mark) { return cut(memrchr(rest_.data(), mark, rest_.size()), 1); }

    // The bytes before the last cut's mark.
    Text skipped() const { return skipped_; }

private:
    bool cut(const void *mark, std::size_t size) {
        if (!mark)
            return false;
        skipped_ =
            rest_.first(static_cast<std::size_t>(static_cast<const char *>(mark) - rest_.data()));
        rest_ = rest_.subspan(skipped_.size() + size);
        return true;
    }

    Text rest_;
    Text skipped_;
};

// The decimal number at the start of a field, behind spaces and perhaps a sign; 0 when there is
// none. One that does not fit keeps its low bits.
uint32_t readNumber(Text field) {
    auto at = field.begin();
    while (at != field.end() && *at == ' ')
        ++at;
    const bool negative = at != field.end() && *at == '-';
    if (negative || (at != field.end() && *at == '+'))
        ++at;
    uint32_t number = 0;
    for (; at != field.end() && isDecimal(*at); ++at)
        number = number * 10 + static_cast<uint32_t>(*at - '0');
    return negative ? 0 - number : number;
}

// Whether a data coding scheme is of the group 01xx with the character set UCS-2. Texts in the
// others are left as the modem gives them; compression and message class change nothing.
constexpr bool isUcs2(uint8_t dcs) {
    return (dcs & 0xCC) == 0x48;
}

} // namespace
} // namespace uti

using namespace uti;

int32_t UTILS_ParseUSSDResponse(char *response, uint32_t length, char *out, int32_t outSize) {
    if (!response)
        return UTI_GSM_FAILED;
    response[length] = 0;
    if (!out)
        return UTI_GSM_FAILED;

    Line line({response, length});
    if (!line.skipPast(ussdPrefix) || !line.skipPast(",") || line.skipped().size() > numberLimit)
        return UTI_GSM_FAILED;
    const uint32_t status = readNumber(line.skipped());
    if (status == ussdNotSupported || status == ussdTimeout)
        return UTI_GSM_FAILED;

    if (!line.skipPast("\"") || !line.skipPastLast('"') || line.skipped().size() > ussdTextLimit)
        return UTI_GSM_FAILED;
    const Text text = line.skipped();

    if (!line.skipPastLast(',') || !line.skipPast("\r") || line.skipped().size() > numberLimit)
        return UTI_GSM_FAILED;
    const uint8_t dcs = static_cast<uint8_t>(readNumber(line.skipped()));
    if (dcs == 0)
        return UTI_GSM_FAILED;

    char work[ussdTextLimit];
    const Text result = isUcs2(dcs) ? decodeCopy(text, work) : text;
    copyResult(result, out, outSize);
    return static_cast<int32_t>(result.size());
}

int32_t UTILS_ParseSMSData(const char *data, uint32_t length, char *out, int32_t outSize) {
    if (!data || !out || length > smsLimit)
        return UTI_GSM_FAILED;
    const Text text(data, length);
    char work[smsLimit];
    const Text decoded = decodeCopy(text, work);
    return copyResult(decoded.empty() && !isHex(text) ? text : decoded, out, outSize);
}

int32_t IsNumeric(const char *text) {
    if (!text)
        return 0;
    while (isDecimal(*text))
        ++text;
    return *text == 0;
}

const char *UTILS_GetVersion(void) {
    return UTI_VERSION;
}
