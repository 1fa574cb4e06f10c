// protocol_bench.cpp: TLV streams, BER-TLV objects and the modem's texts, each against the library
// that one would take instead and a loop written by hand. A case is named "what|who|aim"; bench/run
// makes ratios.
#include "uti.h"

#include <benchmark/benchmark.h>
#include <iconv.h>
#include <libtasn1.h>
#include <pb_decode.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

using benchmark::DoNotOptimize;
using benchmark::State;

// --- TLV

// A root with 60 children, a third each of bytes, words and texts of 12 bytes.
std::string tlvStream() {
    std::string children;
    for (int i = 0; i < 20; ++i) {
        children += std::string("\x03\x02\x00\x03\x07", 5);
        children += std::string("\x04\x03\x00\x04\x34\x12", 6);
        children += std::string("\x01\x0D\x00\x01", 4) + "twelve bytes";
    }
    const auto size = static_cast<uint16_t>(children.size());
    return std::string("\x80", 1) + static_cast<char>(size) + static_cast<char>(size >> 8) +
           children;
}

struct Values {
    uint8_t byte;
    uint16_t word;
    char text[16];
};

int32_t walkWithParser(ParserNode *root, Values &values) {
    ParserNode child;
    while (Parser_GetNextSubNode(root, &child) == 0) {
        int32_t error = 0;
        switch (child.tag) {
        case 3:
            values.byte = Parser_GetParameterByte(&child, &error);
            break;
        case 4:
            values.word = Parser_GetParameterWord(&child, &error);
            break;
        case 1:
            error = std::min(Parser_GetParameterBuffer(&child, values.text, 15), 0);
            break;
        default:
            Parser_GetParameterInsignificant(&child, &error);
            break;
        }
        if (error != 0)
            return error;
    }
    return 0;
}

void tlvParser(State &state) {
    const std::string stream = tlvStream();
    Values values{};
    for (auto _ : state) {
        ParserNode root;
        Parser_Initialize(1, 2);
        Parser_GetRootNodeInBlock(stream.data(), static_cast<uint32_t>(stream.size()), &root);
        DoNotOptimize(walkWithParser(&root, values));
        DoNotOptimize(values);
    }
}

// The same checks by hand: bounds, lengths and type codes.
int walkByHand(const uint8_t *at, std::size_t size, Values &values) {
    if (size < 3 || (at[0] & 0x80) == 0)
        return -1;
    const uint8_t *end = at + size;
    at += 3;
    while (end - at > 3) {
        const uint8_t tag = at[0];
        const auto length = static_cast<std::size_t>(at[1] | at[2] << 8);
        at += 3;
        if (length > static_cast<std::size_t>(end - at))
            return -1;
        if (tag == 3) {
            if (length != 2 || at[0] != 3)
                return -1;
            values.byte = at[1];
        } else if (tag == 4) {
            if (length != 3 || at[0] != 4)
                return -1;
            std::memcpy(&values.word, at + 1, 2);
        } else if (tag == 1) {
            if (length < 1 || length > 16 || (at[0] != 1 && at[0] != 2))
                return -1;
            std::memcpy(values.text, at + 1, length - 1);
        }
        at += length;
    }
    return 0;
}

void tlvByHand(State &state) {
    const std::string stream = tlvStream();
    Values values{};
    for (auto _ : state) {
        DoNotOptimize(
            walkByHand(reinterpret_cast<const uint8_t *>(stream.data()), stream.size(), values));
        DoNotOptimize(values);
    }
}

// The same values as a message, each field twenty times; of equal fields the last one stays.
std::string protobufStream() {
    std::string stream;
    for (int i = 0; i < 20; ++i)
        stream += std::string("\x18\x07\x20\xB4\x24\x0A\x0C", 7) + "twelve bytes";
    return stream;
}

#define Values_FIELDLIST(X, a)                                                                     \
    X(a, STATIC, SINGULAR, STRING, text, 1)                                                        \
    X(a, STATIC, SINGULAR, UINT32, byte, 3)                                                        \
    X(a, STATIC, SINGULAR, UINT32, word, 4)
#define Values_CALLBACK NULL
#define Values_DEFAULT NULL
PB_BIND(Values, Values, AUTO)

void tlvNanopb(State &state) {
    const std::string stream = protobufStream();
    Values values{};
    for (auto _ : state) {
        pb_istream_t input = pb_istream_from_buffer(
            reinterpret_cast<const pb_byte_t *>(stream.data()), stream.size());
        if (!pb_decode(&input, &Values_msg, &values))
            return state.SkipWithError("not decoded");
        DoNotOptimize(values);
    }
}

// --- BER-TLV: a card's answer of 250 bytes, four levels deep, the wanted object the last but one

std::string object(const std::string &tag, const std::string &value) {
    std::string header = tag;
    if (value.size() >= 0x80)
        header += '\x81';
    return header + static_cast<char>(value.size()) + value;
}

std::string berMessage() {
    const auto filler = [](std::size_t size) { return std::string(size, '\x55'); };
    const std::string application =
        object("\x4F", filler(7)) + object("\x50", filler(10)) + object("\x9F\x12", filler(9));
    const std::string entries = object("\x61", application) + object("\x61", application);
    const std::string issuer = object("\xBF\x0C", entries + object("\x9F\x4D", filler(2)));
    const std::string data =
        object("\x5A", filler(8)) + object("\x5F\x24", filler(3)) + object("\x82", filler(2)) +
        object("\xA5", issuer) + object("\x9F\x10", filler(64)) + object("\x57", filler(19)) +
        object("\x8C", filler(43)) + object("\x9F\x02", filler(6)) + object("\x5F\x2A", filler(2));
    return object("\x70", data);
}

constexpr uint32_t wantedTag = 0x9F02;
constexpr uint32_t wantedLength = 6;

// Calls `search(data, size, value)`, which copies the value and gives its length.
template <class Search>
void berSearch(State &state, Search search) {
    const std::string message = berMessage();
    if (message.size() != 250)
        return state.SkipWithError("not 250 bytes");
    const auto *data = reinterpret_cast<const uint8_t *>(message.data());
    const auto size = static_cast<uint32_t>(message.size());
    uint8_t value[64];
    for (auto _ : state) {
        if (search(data, size, value) != wantedLength)
            return state.SkipWithError("not found");
        DoNotOptimize(value);
    }
}

void berUti(State &state) {
    berSearch(state, [](const uint8_t *data, uint32_t size, uint8_t(&value)[64]) {
        uint32_t length = sizeof value;
        return BerTlv_ExtractSingleTag(data, size, wantedTag, &length, value) == 0 ? length : 0;
    });
}

uint32_t findWithTasn1(const uint8_t *data, int size, uint8_t (&value)[64]) {
    while (size > 0) {
        unsigned char tagClass;
        int tagBytes, lengthBytes;
        unsigned long number;
        if (asn1_get_tag_der(data, size, &tagClass, &tagBytes, &number) != ASN1_SUCCESS)
            return 0;
        const long length = asn1_get_length_der(data + tagBytes, size - tagBytes, &lengthBytes);
        const int header = tagBytes + lengthBytes;
        if (length < 0 || length > size - header)
            return 0;
        if ((tagClass & ~ASN1_CLASS_STRUCTURED) == ASN1_CLASS_CONTEXT_SPECIFIC && number == 2 &&
            tagBytes == 2) {
            if (length > static_cast<long>(sizeof value))
                return 0;
            std::memcpy(value, data + header, static_cast<std::size_t>(length));
            return static_cast<uint32_t>(length);
        }
        if ((tagClass & ASN1_CLASS_STRUCTURED) != 0) {
            if (const uint32_t found =
                    findWithTasn1(data + header, static_cast<int>(length), value))
                return found;
        }
        data += header + length;
        size -= header + static_cast<int>(length);
    }
    return 0;
}

void berTasn1(State &state) {
    berSearch(state, [](const uint8_t *data, uint32_t size, uint8_t(&value)[64]) {
        return findWithTasn1(data, static_cast<int>(size), value);
    });
}

// Tags of any length up to four bytes and lengths of up to four bytes, with every bound checked.
uint32_t findByHand(const uint8_t *at, const uint8_t *end, uint8_t (&value)[64]) {
    while (at != end) {
        const bool constructed = (*at & 0x20) != 0;
        uint32_t tag = *at++;
        if ((tag & 0x1F) == 0x1F) {
            do {
                if (at == end || tag > 0xFFFFFF)
                    return 0;
                tag = tag << 8 | *at++;
            } while ((tag & 0x80) != 0);
        }

        if (at == end)
            return 0;
        uint32_t length = *at++;
        if (length >= 0x80) {
            int bytes = static_cast<int>(length & 0x7F);
            if (bytes > 4 || bytes > end - at)
                return 0;
            for (length = 0; bytes > 0; --bytes)
                length = length << 8 | *at++;
        }
        if (length > end - at)
            return 0;

        if (tag == wantedTag) {
            if (length > sizeof value)
                return 0;
            std::memcpy(value, at, length);
            return length;
        }
        if (constructed) {
            if (const uint32_t found = findByHand(at, at + length, value))
                return found;
        }
        at += length;
    }
    return 0;
}

void berByHand(State &state) {
    berSearch(state, [](const uint8_t *data, uint32_t size, uint8_t(&value)[64]) {
        return findByHand(data, data + size, value);
    });
}

// --- texts of the modem

// "Balance 120.50 rub." in Russian, as the modem sends it.
const std::string ucs2Hex = "04110430043B0430043D0441003A0020003100320030002E0035003000200440044304"
                            "31002E0020042104410443043C043C0430";
const std::string ussdLine = "\r\n+CUSD: 0,\"" + ucs2Hex + "\",72\r\n";

unsigned digitOf(char character) {
    return static_cast<unsigned>(character <= '9' ? character - '0' : character - 'A' + 10);
}

// Hexadecimal digits to bytes, and those to Windows-1251. Gives the number of characters.
std::size_t decodeWithIconv(iconv_t converter, const char *hex, std::size_t size, char *out,
                            std::size_t outSize) {
    char units[512];
    for (std::size_t i = 0; i + 1 < size && i / 2 < sizeof units; i += 2)
        units[i / 2] = static_cast<char>(digitOf(hex[i]) << 4 | digitOf(hex[i + 1]));
    char *in = units;
    char *to = out;
    std::size_t left = size / 2, room = outSize;
    return iconv(converter, &in, &left, &to, &room) == 0 ? outSize - room : 0;
}

// Decodes by hand what the text at hand holds: Latin letters, digits and Russian letters.
std::size_t decodeByHand(const char *hex, std::size_t size, char *out, std::size_t outSize) {
    if (size % 4 != 0 || size / 4 > outSize)
        return 0;
    std::size_t count = 0;
    for (; size > 0; size -= 4, hex += 4) {
        unsigned unit = 0;
        for (int i = 0; i < 4; ++i) {
            const char digit = hex[i];
            if (!((digit >= '0' && digit <= '9') || (digit >= 'A' && digit <= 'F')))
                return 0;
            unit = unit << 4 | digitOf(digit);
        }
        const bool russian = unit >= 0x410 && unit <= 0x44F;
        out[count++] = static_cast<char>(unit < 0x80 ? unit : russian ? unit - 0x350 : '?');
    }
    return count;
}

class Iconv {
public:
    Iconv() : converter_(iconv_open("CP1251", "UCS-2BE")) {}
    ~Iconv() { iconv_close(converter_); }

    operator iconv_t() const { return converter_; }

private:
    iconv_t converter_;
};

// Calls `convert(out)`, which gives the number of characters.
template <class Convert>
void intoText(State &state, Convert convert) {
    char out[256];
    for (auto _ : state) {
        if (convert(out) != ucs2Hex.size() / 4)
            return state.SkipWithError("not converted");
        DoNotOptimize(out);
    }
}

void smsUti(State &state) {
    intoText(state, [](char(&out)[256]) {
        return static_cast<std::size_t>(UTILS_ParseSMSData(
            ucs2Hex.data(), static_cast<uint32_t>(ucs2Hex.size()), out, sizeof out));
    });
}

void smsIconv(State &state) {
    const Iconv converter;
    intoText(state, [&](char(&out)[256]) {
        return decodeWithIconv(converter, ucs2Hex.data(), ucs2Hex.size(), out, sizeof out);
    });
}

void smsByHand(State &state) {
    intoText(state, [](char(&out)[256]) {
        return decodeByHand(ucs2Hex.data(), ucs2Hex.size(), out, sizeof out);
    });
}

void ussdUti(State &state) {
    std::string line = ussdLine;
    intoText(state, [&](char(&out)[256]) {
        return static_cast<std::size_t>(UTILS_ParseUSSDResponse(
            line.data(), static_cast<uint32_t>(line.size()), out, sizeof out));
    });
}

void ussdScanf(State &state) {
    const Iconv converter;
    intoText(state, [&](char(&out)[256]) -> std::size_t {
        unsigned status, scheme;
        char text[513];
        const char *start = std::strstr(ussdLine.c_str(), "+CUSD:");
        if (!start ||
            std::sscanf(start, "+CUSD: %u,\"%512[^\"]\",%u", &status, text, &scheme) != 3 ||
            scheme != 72)
            return 0;
        return decodeWithIconv(converter, text, std::strlen(text), out, sizeof out);
    });
}

void ussdByHand(State &state) {
    intoText(state, [](char(&out)[256]) -> std::size_t {
        const char *at = std::strstr(ussdLine.c_str(), "+CUSD:");
        const char *open = at ? std::strchr(at, '"') : nullptr;
        const char *close = open ? std::strrchr(open + 1, '"') : nullptr;
        if (!close || close[1] != ',' || std::strtoul(close + 2, nullptr, 10) != 72)
            return 0;
        return decodeByHand(open + 1, static_cast<std::size_t>(close - open - 1), out, sizeof out);
    });
}

BENCHMARK(tlvParser)->Name("tlv: walk with values copied|uti|3.5");
BENCHMARK(tlvByHand)->Name("tlv: walk with values copied|hand-written walk");
BENCHMARK(tlvNanopb)->Name("tlv: walk with values copied|nanopb|0.5");
BENCHMARK(berUti)->Name("ber-tlv: search in 250 bytes|uti|1");
BENCHMARK(berTasn1)->Name("ber-tlv: search in 250 bytes|libtasn1");
BENCHMARK(berByHand)->Name("ber-tlv: search in 250 bytes|hand-written loop|1.1");
BENCHMARK(smsUti)->Name("sms: UCS-2 digits to text|uti|1");
BENCHMARK(smsIconv)->Name("sms: UCS-2 digits to text|iconv");
BENCHMARK(smsByHand)->Name("sms: UCS-2 digits to text|hand-written loop");
BENCHMARK(ussdUti)->Name("ussd: +CUSD to text|uti|1");
BENCHMARK(ussdScanf)->Name("ussd: +CUSD to text|sscanf and iconv");
BENCHMARK(ussdByHand)->Name("ussd: +CUSD to text|hand-written loop");

} // namespace

BENCHMARK_MAIN();
