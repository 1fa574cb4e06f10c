// Code pages and their fonts, text in columns, key codes, pictures.
#include "tests/dialog_support.h"

using namespace support;
using namespace support::describe;
using fake::Call;

namespace {

using Tools = support::Dialogs;

TEST_F(Tools, KeyCodes) {
    std::map<uint32_t, int32_t> expected{{26, 69},   {129, 59},  {130, 60},  {188, 139},
                                         {189, 103}, {190, 108}, {191, 103}, {192, 108}};
    for (const int32_t same : {8,   13,  27,  35,  42,  90,  91,  92,  93,  94,  128,
                               131, 132, 133, 134, 135, 136, 177, 178, 193, 194, 195})
        expected[static_cast<uint32_t>(same)] = same;
    for (uint32_t code = 0; code < 300; ++code)
        EXPECT_EQ(IG_GetIGKeyCode(code), expected.contains(code) ? expected[code] : 0) << code;
    EXPECT_EQ(IG_GetIGKeyCode(UINT32_MAX), 0);
    EXPECT_EQ(IG_GetIGKeyCode(256 + 13), 0);
}

TEST_F(Tools, Iso8859Text) {
    openLog();
    std::string all;
    for (int byte = 1; byte < 256; ++byte)
        all += static_cast<char>(byte);
    for (const uint32_t codePage : {5u, 0u, 1u, 261u}) {
        std::string expected = all;
        for (char &c : expected) {
            const auto byte = static_cast<uint8_t>(c);
            if (byte < 0x20 || byte == 0x81 || byte == 0x8D || byte == 0x8F || byte == 0x90 ||
                byte == 0x9D || (byte == 0x7F && codePage != 5))
                c = ' ';
            else if (codePage == 5 && byte >= 0xB0 && byte <= 0xEF)
                c = static_cast<char>(byte + 0x10);
            else if (codePage == 5 && (byte == 0xA1 || byte == 0xF1))
                c = byte == 0xA1 ? '\xA8' : '\xB8';
        }
        std::string text = all;
        EXPECT_EQ(ISO8859ToOEM(codePage, text.c_str(), text.data()), text.data());
        EXPECT_EQ(toHex(text), toHex(expected));
    }
    char none[] = "x";
    EXPECT_EQ(ISO8859ToOEM(5, "", none), none);
    EXPECT_EQ(none[0], 'x');
    EXPECT_EQ(ISO8859ToOEM(5, "\xB0\xD0", none), none);
    EXPECT_EQ(none[0], '\xC0') << "no terminator is written";
    EXPECT_EQ(none[1], '\xE0');
    EXPECT_EQ(reports("Src/utiCodePage "), 0);
    EXPECT_EQ(ISO8859ToOEM(5, nullptr, none), none);
    EXPECT_EQ(ISO8859ToOEM(5, "a", nullptr), nullptr);
    EXPECT_EQ(reports("Src/utiCodePage "), 2);
}

TEST_F(Tools, CodePageOfALanguage) {
    openLog();
    auto &environment = terminal.environment;
    environment = {{"cp_ru", "1251"}, {"cp_de", "65536"}, {"cp_fr", "7x"}, {"cp_xx", "65535"}};
    EXPECT_EQ(CodePageManager_GetCodePage("xx"), 0xFFFF); // as if none had been asked for
    EXPECT_EQ(CodePageManager_GetCodePage(nullptr), 0xFFFF);
    EXPECT_EQ(CodePageManager_GetCodePage("rus"), 1251);
    environment["cp_ru"] = "866";
    EXPECT_EQ(CodePageManager_GetCodePage("ru"), 1251);
    EXPECT_EQ(CodePageManager_GetCodePage(nullptr), 1251);
    EXPECT_EQ(CodePageManager_GetCodePage(""), 1251);
    EXPECT_EQ(CodePageManager_GetCodePage("de"), 0);
    EXPECT_EQ(CodePageManager_GetCodePage("fr"), 7);
    EXPECT_EQ(reports("Src/utiCodePageManager "), 0);
    EXPECT_EQ(CodePageManager_GetCodePage("en"), 0);
    EXPECT_EQ(CodePageManager_GetCodePage("en"), 0);
    EXPECT_EQ(reports("Src/utiCodePageManager "), 1) << "asked for once";
    EXPECT_EQ(CodePageManager_GetCodePage("ru"), 866);
    EXPECT_EQ(CodePageManager_GetCodePage("xx"), 0xFFFF);
    environment["cp_xx"] = "1";
    EXPECT_EQ(CodePageManager_GetCodePage("xx"), 1) << "0xFFFF is none to keep";
}

TEST_F(Tools, FontFilesOfALanguage) {
    openLog();
    auto &environment = terminal.environment;
    environment = {{"cp_ru", "5"}, {"cp_fr", std::string(20, '1')}, {"cp_de", "1"}};
    const auto font = [](const char *language, const char *name) {
        const char *file = CodePageManager_GetFontName(language, name);
        return std::string(file ? file : "null");
    };
    EXPECT_EQ(font("ru", "dig6x8"), "cp5_dig6x8.fon");
    environment["cp_ru"] = "6";
    EXPECT_EQ(font("ru", "dig6x8"), "cp5_dig6x8.fon");
    EXPECT_EQ(font("ru", "6x8"), "cp6_6x8.fon") << "names are compared whole";
    EXPECT_EQ(font("de", "6x8"), "cp1_6x8.fon");
    EXPECT_STREQ(CodePageManager_GetNegativeFontName("ru", "12x16"), "ncp6_12x16.fon");
    EXPECT_EQ(CodePageManager_GetNegativeFontName("rus", "12x16"), nullptr);
    for (const auto &[language, name] :
         {std::pair("rus", "6x8"), {"r", "6x8"}, {"", "6x8"}, {nullptr, "6x8"}, {"ru", ""}})
        EXPECT_EQ(font(language, name), "null");
    EXPECT_EQ(CodePageManager_GetFontName("ru", nullptr), nullptr);
    EXPECT_EQ(reports("Src/utiCodePageManager "), 0);

    EXPECT_EQ(font("en", "6x8"), "null");
    environment["cp_en"] = "9";
    EXPECT_EQ(font("en", "6x8"), "null");
    EXPECT_EQ(reports("Src/utiCodePageManager "), 1) << "the missing variable is remembered";
    EXPECT_EQ(font("en", "12x16"), "cp9_12x16.fon");

    const std::string most = "123456789012345678901234"; // with "cp9_" and ".fon" 32 characters
    EXPECT_EQ(font("en", most.c_str()), "null");
    EXPECT_EQ(font("en", most.c_str()), "null");
    EXPECT_EQ(reports("Src/utiCodePageManager "), 2);
    EXPECT_EQ(font("en", most.c_str() + 1), "cp9_" + most.substr(1) + ".fon");
    EXPECT_EQ(CodePageManager_GetNegativeFontName("en", most.c_str() + 1), nullptr);
    EXPECT_EQ(reports("Src/utiCodePageManager "), 1);
    EXPECT_STREQ(CodePageManager_GetNegativeFontName("en", most.c_str() + 2),
                 ("ncp9_" + most.substr(2) + ".fon").c_str());
    EXPECT_EQ(font("fr", "16x24"), "null") << "22 + 11 characters";
}

TEST_F(Tools, DefaultFonts) {
    terminal.environment = {{"cp_en", "1252"}};
    for (const char *russian : {"ru", "RU", "Rus"})
        EXPECT_EQ(Dialogs_SetDefaultFonts(russian), 0);
    EXPECT_EQ(Dialogs_SetDefaultFonts("it"), 0) << "no code page";
    EXPECT_EQ(toolkit.take(), "");
    toolkit.answers = {{"igUI_SetFileFont 1 \"cp1252_12x16.fon\"", -3}, {"igUI_SetFileFont", 4}};
    EXPECT_EQ(Dialogs_SetDefaultFonts("EN"), 4);
    EXPECT_EQ(toolkit.take(), "igUI_SetFileFont 0 \"cp1252_6x8.fon\"\n"
                              "igUI_SetFileFont 1 \"cp1252_12x16.fon\"\n"
                              "igUI_SetFileFont 2 \"cp1252_16x24.fon\"\n");
    EXPECT_STREQ(fontTable[1], "12x16");
    EXPECT_EQ(Dialogs_SetDefaultFonts(nullptr), 0);
    EXPECT_EQ(Dialogs_SetDefaultFonts("e"), 0);
    EXPECT_EQ(toolkit.take(), "");
    fake::failCall(Call::display, 1);
    EXPECT_EQ(Dialogs_SetDefaultFonts("en"), -9);
}

// UTF-8 of up to two bytes; '#' is no character.
int32_t utf8(const char *text, int32_t left) {
    if (left < 1 || *text == '#')
        return 0;
    return static_cast<uint8_t>(*text) >= 0xC0 ? 2 : 1;
}

class Columns : public Tools {
protected:
    Columns() { count(utf8); }
    ~Columns() override { count(nullptr); }
    static void count(TextCharacterFunction function) { Text_SetCallBack(&function); }
};

TEST_F(Columns, CharactersOfAText) {
    const struct {
        const char *text;
        int32_t length, characters, most, bytes;
    } rows[] = {
        {"\xD0\x90", 2, 1, 1, 2},     {"\xD0\x90", 1, 0, 1, 0}, {"a\xD0\x90z", 4, 3, 2, 3},
        {"abc", 2, 2, 9, 2},          {"ab#d", 4, 2, 3, 2},     {"abc", 0, 0, 2, 0},
        {"abc", -1, 0, 2, 0},         {"abc", 3, 3, 0, 0},      {"abc", 3, 3, -5, 0},
        {"\xD0\x90\xD0", 3, 1, 2, 2},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(Text_GetStringLen(row.text, row.length), row.characters);
        EXPECT_EQ(Text_GetStringLenByte(row.text, row.length, row.most), row.bytes);
    }
    EXPECT_EQ(Text_GetStringLen(nullptr, 7), 7);
    EXPECT_EQ(Text_GetStringLenByte(nullptr, 7, 9), 9);
    Text_SetCallBack(nullptr);
    EXPECT_EQ(Text_GetStringLen("\xD0\x90", 2), 1) << "null changes nothing";
    count(nullptr);
    EXPECT_EQ(Text_GetStringLen("\xD0\x90", 2), 2);
    EXPECT_EQ(Text_GetStringLen("", -4), -4);
    EXPECT_EQ(Text_GetStringLenByte("\xD0\x90", 2, 9), 9);
}

TEST_F(Columns, LinesOfText) {
    const std::string wide = std::string(20, 'w') + std::string(90, 'v');
    std::string cyrillic; // characters that take two bytes stand in the line whole or not at all
    for (int i = 0; i < 63; ++i)
        cyrillic += "\xD0\x90";
    const struct {
        std::string text;
        int32_t justify, left, right;
        std::string line; // its blanks at the end are left out
        int32_t bytes;
    } rows[] = {
        {"abc", TEXT_LEFT, 0, 10, "abc", 3},
        {"abc", TEXT_RIGHT, 0, 10, "       abc", 3},
        {"abc", TEXT_CENTER, 0, 10, "   abc", 3},
        {"abc", 7, 4, 6, "ab", 2},
        {"abc", TEXT_RIGHT, 4, 6, "bc", 2},
        {"abcdef", TEXT_CENTER, 0, 3, "bcd", 3},
        {"\xD0\x90\xD0\x91z", TEXT_RIGHT, 0, 2, "\xD0\x91z", 3},
        {"\xD0\x90\xD0\x91", TEXT_RIGHT, 0, 3, " \xD0\x90\xD0\x91", 4},
        {"\xD0\x90\xD0\x91z", TEXT_CENTER, 0, 1, "\xD0\x91", 2},
        {"abc", TEXT_LEFT, 5, 5, "", 0},
        {"abc", TEXT_RIGHT, 9, 5, "", 0},
        {wide, TEXT_LEFT, 0, 200, wide.substr(0, 64), 64},
        {wide, TEXT_RIGHT, 0, 100, wide.substr(10, 64), 64},
        {wide, TEXT_RIGHT, 0, 130, std::string(20, ' ') + wide.substr(0, 44), 44},
        {"abc", TEXT_RIGHT, 0, 65, std::string(62, ' ') + "ab", 2},
        {"abc", TEXT_RIGHT, 0, 100, "", 0},
        {"abc", TEXT_RIGHT, INT32_MIN, INT32_MAX, "", 0},
        {"", TEXT_RIGHT, 0, 10, "", 0},
        {'x' + cyrillic, TEXT_LEFT, 0, 64, 'x' + cyrillic.substr(0, 62), 63},
        {cyrillic, TEXT_RIGHT, 0, 70, std::string(7, ' ') + cyrillic.substr(0, 56), 56},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.text + " in " + std::to_string(row.right - int64_t{row.left}));
        const ExactBlock line(std::string(TEXT_LINE, '?')), text(row.text);
        EXPECT_EQ(Text_LayoutLine(line.data(), text.data(), static_cast<int32_t>(text.size()),
                                  row.justify, row.left, row.right),
                  row.bytes);
        std::string expected = row.line;
        expected.resize(TEXT_LINE, ' ');
        EXPECT_EQ(std::string(line.data(), TEXT_LINE), expected);
    }
    const ExactBlock line(std::string(TEXT_LINE, '?'));
    EXPECT_EQ(Text_LayoutLine(line.data(), nullptr, 5, TEXT_LEFT, 0, 64), 0);
    EXPECT_EQ(Text_LayoutLine(line.data(), "abc", -1, TEXT_LEFT, 0, 64), 0);
}

TEST_F(Columns, CursorOfADrawnText) {
    const struct {
        int32_t row, left, right;
        const char *cursor;
    } rows[] = {
        {0, 0, 20, "0 0"}, {10, 3, 5, "3 10"}, {11, 0, 20, ""},       {-1, 0, 20, ""},
        {0, -1, 20, ""},   {0, 0, 21, ""},     {1, 0x105, 20, "5 1"}, {1, 7, -30, "7 1"},
    };
    for (const auto &row : rows) {
        terminal.cursor = "";
        Text_DrawString("text", 4, TEXT_CENTER, row.row, row.left, row.right, 20, 10);
        EXPECT_EQ(terminal.cursor, row.cursor);
    }
    Text_DrawString(nullptr, 4, TEXT_RIGHT, 0x10F, 0, 20, 20, 0x200);
    EXPECT_EQ(terminal.cursor, "0 15");
}

TEST_F(Tools, Pictures) {
    terminal.files["p.png"] = "";
    EXPECT_EQ(DrawImage_IG(0, 0, "p.png", nullptr), 0);
    EXPECT_EQ(toolkit.take(), "igForm_Create null 0 = form1\nigForm_ClearOption form1 0x7\n"
                              "igForm_SetOption form1 0x50\n"
                              "igStatic_Create 0 0 240 320 null p.png = static3\n"
                              "igWidget_SetBorder static3 0\nigWidget_SetTransparency static3 1\n"
                              "igWidget_SetJustify static3 5\nigForm_Add form1 static3\n"
                              "igForm_Reset form1\nigUI_Add form1\nIG_DisableStatusLine\n"
                              "igUI_Show form1\nIG_EnableStatusLine\n");
    EXPECT_EQ(DrawImage_IG(10, -20, "p.png", "title"), 0);
    const std::string second = toolkit.take();
    EXPECT_EQ(second.substr(0, second.find("igWidget")),
              "igUI_Del form1\nigForm_Create \"title\" 0 = form4\nigForm_ClearOption form4 0x7\n"
              "igForm_SetHeaderColors form4 0xF79E 0x2DBD\nigForm_SetOption form4 0x51\n"
              "igStatic_Create 10 -20 230 340 null p.png = static6\n");
    EXPECT_EQ(DrawImage_IG(0, 0, "missing", nullptr), -2253);
    EXPECT_EQ(DrawImage_IG(0, 0, nullptr, nullptr), -2253);
    EXPECT_EQ(uti::currentForm, -1);
    EXPECT_EQ(toolkit.take({"igUI_", "igForm_"}), "igUI_Del form4\n");
    fake::failCall(Call::display, 1);
    EXPECT_EQ(DrawImage_IG(0, 0, "p.png", nullptr), -5009);

    for (const std::string function :
         {"igForm_Create", "igUI_GetWidth", "igUI_GetHeight", "igImage_CreateFromFile",
          "igStatic_Create", "igWidget_SetBorder", "igWidget_SetTransparency",
          "igWidget_SetJustify", "igForm_Add", "igForm_Reset", "igUI_Add", "igUI_Show"}) {
        for (const int32_t code : {-3, -2253, -2102}) {
            SCOPED_TRACE(function);
            toolkit.take();
            toolkit.answers = {{function, code}};
            const bool passed = code != -3 && function != "igForm_Create";
            EXPECT_EQ(DrawImage_IG(0, 0, "p.png", nullptr), passed ? code : code - 5000);
            EXPECT_EQ(toolkit.take({"IG_E"}),
                      function == "igUI_Show" ? "IG_EnableStatusLine\n" : "");
        }
    }
    toolkit.answers = {{"igUI_SetBackgroundImage", 7}};
    toolkit.take();
    EXPECT_EQ(SetBackgroundImage_IG("p.png"), 7);
    EXPECT_EQ(toolkit.take(), "igUI_SetBackgroundImage p.png\n");
    fake::failCall(Call::display, 1);
    EXPECT_EQ(SetBackgroundImage_IG("p.png"), -9);
    EXPECT_EQ(Icons_Show(), -3205);
    EXPECT_EQ(toolkit.take(), "");
}

TEST_F(Tools, PlaceOfTheSignal) {
    const LabelValue labels[] = {{"l", "read by the form"}, {nullptr, nullptr}};
    request.labelValues = labels;
    std::string controls = group(159);
    for (int i = 0; i < 10; ++i)
        controls += group(157, text(11, "l") + byte(87, 1));
    serve(dialog(0, controls));
    EXPECT_EQ(DialogMessage_Show(&request, SHOW_AND_RETURN), 0);
    const GraphicEditEntry label = currentGraphicLabelParameters.entries[0];
    toolkit.take();

    currentSignalParameters.area.left = 0xFFFE;
    const std::string element = group(160, byte(123, 1));
    for (const char *font : {"dig12x16", "6x8"}) { // shorter than the one before
        serve(dialog(0, group(157, text(2, font)) + group(159, text(2, font)) +
                            group(153, element + element)));
        for (int i = 0; i < 12; ++i)
            EXPECT_EQ(GetSignalPosition(&request), -2) << "call " << i;
    }
    EXPECT_EQ(toolkit.take(), "") << "no font file is asked for";
    EXPECT_EQ(currentGraphicLabelParameters.count, 10u) << "the records are the shown dialog's";
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): the padding is as it was, too
    EXPECT_EQ(std::memcmp(&currentGraphicLabelParameters.entries[0], &label, sizeof label), 0);
    EXPECT_EQ(currentGraphicCaptionParameters.count, 1u);
    EXPECT_EQ(currentGraphicMenuParameters.count, 0u);

    EXPECT_EQ(GetSignalPosition(nullptr), -1);
    fake::failCall(Call::malloc, 1);
    EXPECT_EQ(GetSignalPosition(&request), -1);
    serve(dialog(1, ""));
    EXPECT_EQ(GetSignalPosition(&request), -1);
    currentSignalParameters = {};
}

} // namespace
