// Texts of the modem: USSD responses and SMS at every size of the buffer, whole, cut and hostile.
#include "tests/support.h"

#include <optional>

using namespace support;

namespace {

using Expected = std::optional<std::string>; // none is a failure

constexpr std::string_view hexText = "0412043004480020043104300431";
const std::string text = "\xC2\xE0\xF8 \xE1\xE0\xE1";

std::string ussd(const std::string &m, std::string_view str, const std::string &dcs) {
    return "+CUSD:" + m + ",\"" + std::string(str) + "\"," + dcs + "\r";
}

// Parses into buffers of every size; nothing behind the copied bytes may change.
template <class Parse>
void expectText(const Expected &expected, Parse parse) {
    const std::string whole = expected.value_or("");
    const int length = static_cast<int>(whole.size());
    for (int i = -2; i <= length + 2; ++i) {
        const int size = i == -2 ? INT32_MIN : i;
        SCOPED_TRACE("buffer of " + std::to_string(size));
        const std::string copied = whole.substr(0, static_cast<std::size_t>(std::max(size, 1) - 1));
        const std::string guard(static_cast<std::size_t>(length) + 3 - copied.size(), '#');
        const ExactBlock out(std::string(copied.size(), '#') + guard);
        parse(out.data(), size, expected ? static_cast<int>(copied.size()) : UTI_GSM_FAILED);
        EXPECT_EQ(std::string(out.data(), out.size()), copied + guard);
    }
}

void expectUssd(const Expected &expected, const std::string &line) {
    SCOPED_TRACE(line);
    expectText(expected, [&](char *out, int size, int) {
        const ExactBlock response(line + "x");
        EXPECT_EQ(UTILS_ParseUSSDResponse(response.data(), response.size() - 1, out, size),
                  expected ? static_cast<int>(expected->size()) : UTI_GSM_FAILED);
        EXPECT_EQ(response.data()[line.size()], 0);
    });
}

void expectSms(const Expected &expected, std::string_view data) {
    const ExactBlock block(data);
    expectText(expected, [&](char *out, int size, int result) {
        EXPECT_EQ(UTILS_ParseSMSData(block.data(), block.size(), out, size), result) << data;
    });
}

TEST(Gsm, UssdResponse) {
    const std::string spaces(30, ' '), full(512, 'a');
    for (const char *dcs : {"72", " 72;", "328", "91", "104"})
        expectUssd(text, ussd(" 0", hexText, dcs));
    for (const char *dcs : {"244", "240", "-12", " +15", "68", "64", "76", "15", "17", "200"})
        expectUssd("0041", ussd("", "0041", dcs));
    for (const char *broken : {"00e9", "00:1", "00 1", "004", ""})
        expectUssd("", ussd("0", broken, "72"));
    expectUssd("\xA8\xB8\xC0\xFF\xFF", ussd("0", "040104510410044F00FF", "72"));
    expectUssd("????????", ussd("0", "040F0450010004020452FFFF20AC003F", "72"));
    expectUssd("Hi", "\r\n1,\"++CU" + ussd("0", "Hi", "15") + "\n");
    expectUssd("a\"b\",c", ussd("0", "a\"b\",c", "15"));
    expectUssd(full, ussd(spaces + "0", full, spaces + "1"));
    for (const std::string &line :
         {ussd(spaces + " 0", full, "15"), ussd("0", full + "a", "15"),
          ussd("0", full, spaces + " 1"), ussd("4", "Hi", "15"), ussd(" 5", "Hi", "15"),
          ussd("0", "Hi", "0"), ussd("0", "Hi", "256"), ussd("0", "Hi", ""), ussd("0", "Hi", "-"),
          ussd("0", "Hi", "15") + "\n+X: 1,0\r", ussd("0", "Hi", "15,\r\n9"), "CUSD:0,\"Hi\",15\r"s,
          "+CUSD:\"Hi\"15\r"s, "+CUSD:0,Hi\",15\r"s, "+CUSD:0,\"Hi\"15\r"s})
        expectUssd(std::nullopt, line);

    std::string line = ussd("0", hexText, "72");
    for (std::size_t size = 0; size < line.size(); ++size)
        expectUssd(std::nullopt, line.substr(0, size));

    line = ussd("0", hexText, "15");
    const auto length = static_cast<uint32_t>(line.size());
    EXPECT_EQ(UTILS_ParseUSSDResponse(nullptr, 0, line.data(), 9), UTI_GSM_FAILED);
    EXPECT_EQ(UTILS_ParseUSSDResponse(line.data(), length, nullptr, 9), UTI_GSM_FAILED);
    EXPECT_EQ(UTILS_ParseUSSDResponse(line.data(), length, line.data(), 29), 28);
    EXPECT_EQ(line.substr(0, 28), hexText) << "in place";
}

TEST(Gsm, SmsData) {
    for (const std::string &plain :
         {"Hello"s, "0048 "s, "0048004g"s, "\0\xFF"s, ""s, std::string(649, 'z')})
        expectSms(plain, plain);
    expectSms("\xE9?H", "00E920AC0048");
    expectSms("", "00e9");
    expectSms(std::string(162, '\0'), std::string(648, '0'));
    expectSms(std::nullopt, std::string(650, 'z'));
    forEachTruncation(hexText, [](const ExactBlock &cut) {
        expectSms(cut.size() % 4 ? "" : text.substr(0, cut.size() / 4), {cut.data(), cut.size()});
    });
    char out[8];
    EXPECT_EQ(UTILS_ParseSMSData(nullptr, 4, out, 8), UTI_GSM_FAILED);
    EXPECT_EQ(UTILS_ParseSMSData("0048", 4, nullptr, 8), UTI_GSM_FAILED);
}

TEST(Gsm, NumbersAndVersion) {
    for (const char *digits : {"", "0123456789"})
        EXPECT_EQ(IsNumeric(digits), 1) << digits;
    for (const char *other : {"12a", "-1", "1 ", "/", ":"})
        EXPECT_EQ(IsNumeric(other), 0) << other;
    EXPECT_EQ(IsNumeric(nullptr), 0);
    EXPECT_STREQ(UTILS_GetVersion(), "1.1.25.4");
}

} // namespace
