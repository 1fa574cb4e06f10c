// Dialog descriptions into records: which tag fills which field and nothing else, what ends a node,
// fonts, and descriptions of every damage.
#include "dialog_support.h"
#include "utiDialogFormat.h"

using namespace support;
using namespace support::describe;
using fake::Call;
using uti::dialog::Field;
using uti::dialog::Kind;
using uti::dialog::Row;

namespace {

using Parse = support::Dialogs;

// Parses a node's children from a block of their exact size.
int32_t parse(ParserCallback parser, const std::string &children) {
    const ExactBlock block(group(0x80, children));
    EXPECT_EQ(Parser_Initialize(1, 2), 0);
    ParserNode root{};
    EXPECT_EQ(Parser_GetRootNodeInBlock(block.data(), block.size(), &root), 0);
    return Parser_ParseNode(&root, parser);
}

// A kind of node: its parser, the record that it fills, its count, and the rows of its tags.
struct Node {
    ParserCallback parser;
    void *record;
    std::size_t size;
    void *count; // its low byte, or null
    std::vector<Row> rows;
};

const Row &rowOf(const Field &field) {
    return field.row;
}
const Row &rowOf(const Row &row) {
    return row;
}

// An array's first entry, or a record without entries.
template <class Record, class Table>
Node entry(ParserCallback parser, Record &record, void *count, const Table &table) {
    std::vector<Row> rows;
    for (const auto &each : table)
        rows.push_back(rowOf(each));
    return {parser, &record, sizeof record, count, rows};
}
template <class Record, class Table>
Node counted(ParserCallback parser, Record &record, const Table &table) {
    return entry(parser, record.entries[0], &record.count, table);
}
template <class Record, class Table>
Node single(ParserCallback parser, Record &record, const Table &table) {
    return entry(parser, record, nullptr, table);
}

std::vector<Node> everyNode() {
    using namespace uti::dialog;
    auto &menu = currentGraphicMenuParameters.entries[0];
    return {
        counted(ParseGraphicIpEdit, currentGraphicIpEditParameters, ipEditFields),
        counted(ParseGraphicProgressBar, currentGraphicProgressBarParameters, boxFields),
        counted(ParseGraphicSignature, currentGraphicSignatureParameters, boxFields),
        counted(ParseGraphicStaticText, currentGraphicStaticTextParameters, staticTextFields),
        counted(ParseGraphicButton, currentGraphicButtonParameters, buttonFields),
        counted(ParseGraphicLabel, currentGraphicLabelParameters, labelFields),
        counted(ParseGraphicEdit, currentGraphicEditParameters, editFields),
        counted(ParseGraphicMenu, currentGraphicMenuParameters, menuFields),
        entry(ParseGraphicMenuElement, menu.elements[0], &menu.elementCount, menuElementFields),
        counted(ParseLabelParameters, currentLabelsParameters, labelRecordRows),
        counted(ParseImageParameters, currentImagesParameters, imageRecordRows),
        single(ParseEditParameters, currentEditParameters, editRecordRows),
        single(ParseListBoxParameters, currentListBoxParameters, listBoxRecordRows),
        single(ParseCaptionParameters, currentCaptionParameters, captionRecordRows),
        single(ParseBorderParameters, currentBorderParameters, borderRecordRows),
        single(ParseFrameParameters, currentFrameParameters, frameRecordRows),
        single(ParseFooterParameters, currentFooterParameters, footerRecordRows),
        single(ParseBatteryParameters, currentBatteryParameters, batteryRecordRows),
        single(ParseSignalParameters, currentSignalParameters, signalRecordRows),
        single(ParseEthLinkParameters, currentEthLinkStatusParameters, ethLinkRecordRows),
    };
}

// A child of a row's tag, the result, and the bytes of the field afterwards.
struct Case {
    std::string child;
    int32_t result;
    std::string field = {};
    uint16_t font = 0;
};

std::vector<Case> casesOf(const Row &row) {
    const std::string full(row.limit, 'x');
    const Case empty{group(row.tag), 0};
    switch (row.kind) {
    case Kind::area:
        return {{area(1, 2, 0xFEDC, 4), 0, hex("0100 0200 DCFE 0400")},
                empty,
                {group(136, group(135, byte(4, 9))), -3002, "\0\0"s}};
    case Kind::colors:
        return {{colors({0x010203, 0x040506, 0x070809, 0x0A0B0C}), 0,
                 hex("040506 0A0B0C 010203 070809")},
                empty,
                {group(155, group(154, word(1, 9))), -3002, hex("A5A5A5 A5A5A5 00")}};
    case Kind::font:
        return {{text(2, "dig12x16"), 0, "dig12x16", 4},
                {text(2, full), 0, full, 1},
                {group(2), 0, "", 1},
                {text(2, full + "x"), -3001},
                {group(2, "\3" + full), -3002}};
    case Kind::text:
    case Kind::lines:
        return {{text(row.tag, full), 0, full},
                {group(row.tag, "\2" + full), 0, full},
                empty,
                {text(row.tag, full + "x"), -3001},
                {group(row.tag, "\3x"), -3002}};
    case Kind::word:
        return {{word(row.tag, 0xFEDC), 0, "\xDC\xFE"},
                {group(row.tag), 0, "\0\0"s},
                {byte(row.tag, 1), -3002, "\0\0"s},
                {group(row.tag, "\3xx"), -3002, "\0\0"s}};
    default:
        const std::string wide(row.kind == Kind::wide ? 3 : 0, 0);
        return {{byte(row.tag, 129), 0, (row.kind == Kind::key ? "\x3B" : "\x81") + wide},
                {group(row.tag), 0, "\0"s + wide},
                {word(row.tag, 1), -3002, "\0"s + wide},
                {group(row.tag, "\4x"), -3002, "\0"s + wide}};
    }
}

// Every tag of every kind of node, those that it does not know included: the result, the field that
// is filled to its last byte, and no other byte of the record.
TEST_F(Parse, EveryTagFillsItsFieldAndNothingElse) {
    toolkit.answers["igUI_SetFileFont"] = -4; // other fonts fall back to slot 1
    for (const Node &node : everyNode()) {
        auto *record = static_cast<char *>(node.record);
        for (uint32_t tag = 1; tag <= 255; ++tag) {
            if (tag == 160 && node.parser == ParseGraphicMenu)
                continue;
            const auto row = std::find_if(node.rows.begin(), node.rows.end(),
                                          [&](const Row &each) { return each.tag == tag; });
            const bool known = row != node.rows.end();
            const std::vector<Case> skipped{{group(tag, "\7any"), 0}, {group(tag), 0}};
            for (const Case &each : known ? casesOf(*row) : skipped) {
                SCOPED_TRACE(std::to_string(node.rows.size()) + " rows: " + toHex(each.child));
                std::memset(record, 0xA5, node.size);
                if (known && row->limit > 0)
                    std::memset(record + row->offset, 0, row->limit + (row->kind == Kind::font));
                std::string expected(record, node.size);
                if (known)
                    expected.replace(row->offset, each.field.size(), each.field);
                if (each.font != 0)
                    expected.replace(row->offset + DIALOG_TEXT + 2u, 2, number(each.font, 2));
                EXPECT_EQ(parse(node.parser, each.child + byte(0, 1)), each.result);
                EXPECT_EQ(std::string_view(record, node.size), expected);
                std::memset(record, 0, node.size);
                if (auto *count = static_cast<uint8_t *>(node.count)) {
                    EXPECT_EQ(std::exchange(*count, uint8_t{0}), each.result == 0);
                }
            }
        }
    }
}

TEST_F(Parse, ValuesForTheWholeDialog) {
    const auto values = [] {
        const Rectangle &at = currentDialogAreaRectangle;
        std::string line;
        for (const uint32_t value :
             {currentDialogType, currentDialogTimeout, currentDialogTrasparency,
              currentDialogPositionType, uint32_t{currentDialogBorder}, uint32_t{at.left},
              uint32_t{at.top}, uint32_t{at.right}, uint32_t{at.bottom}})
            line += std::to_string(value) + ' ';
        return line;
    };
    const struct {
        std::string children;
        int32_t result;
        const char *values;
    } rows[] = {
        {"", 0, "9 9 2 0 1 9 9 9 9 "},
        {byte(17, 3) + dword(18, 0x12345678) + byte(22, 0) + byte(23, 1) + byte(24, 5) +
             text(99, "other") + area(1, 2, 3, 4),
         0, "3 305419896 0 1 5 1 2 3 4 "},
        {group(17) + group(18) + group(22) + group(24) + byte(0, 1), 0, "0 0 0 0 0 9 9 9 9 "},
        {byte(23, 1) + word(22, 1) + byte(24, 0), -3002, "9 9 0 1 1 9 9 9 9 "},
        {byte(24, 7) + byte(18, 1) + byte(23, 1), -3002, "9 0 2 0 7 9 9 9 9 "},
        {byte(23, 1) + group(136, group(135, byte(4, 1))) + byte(24, 7), -3002,
         "9 9 2 1 1 0 9 9 9 "},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(&row - rows);
        currentDialogType = currentDialogTimeout = currentDialogTrasparency = 9;
        currentDialogPositionType = currentDialogBorder = 9;
        currentDialogAreaRectangle = {9, 9, 9, 9};
        EXPECT_EQ(parse(ParseDialogParameters, row.children), row.result);
        EXPECT_EQ(values(), row.values);
    }
    const std::string first = group(129, byte(17, 1) + byte(22, 1) + byte(23, 1) + byte(24, 0));
    EXPECT_EQ(parse(ParseDialog, first + group(129, dword(18, 5))), 0);
    EXPECT_EQ(values(), "1 5 2 0 1 0 9 9 9 ") << "a second node starts from the defaults";
}

TEST_F(Parse, AreasAndColours) {
    const std::string red = group(154, byte(1, 1)), green = group(154, byte(2, 2));
    const std::string other = byte(99, 1);
    const struct {
        std::string children;
        const char *area, *colors; // left, top, right, bottom; passive, active
    } rows[] = {
        {group(136, other), "0909 0909 0909 0909", ""},
        {group(136, group(135, word(5, 7))), "0909 0700 0909 0909", ""},
        {group(136, other + position(1, 2) + other), "0100 0200 0909 0909", ""},
        {area(1, 2, 3, 4) + group(136, group(135, other + word(4, 8))), "0800 0200 0300 0400", ""},
        {group(136, position(1, 2) + position(3, 4) + position(5, 6)), "0100 0200 0500 0600", ""},
        {colors({0x010203, 0x040506}), "", "040506 000000 010203 000000"},
        {group(155, other + red + other + green), "", "000200 000000 010000 000000"},
        {group(155, red + red + red + red + green + group(154, group(1, "\3any")) + other), "",
         "010000 010000 010000 010000"},
        {group(155, group(154, other + byte(3, 3) + other)), "", "000000 000000 000003 000000"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(&row - rows);
        GraphicCaption &caption = currentGraphicCaptionParameters = {};
        std::memset(&caption.area, 9, sizeof caption.area);
        EXPECT_EQ(parse(ParseGraphicCaption, row.children + byte(1, 6)), 0);
        const std::string rectangle(reinterpret_cast<char *>(&caption.area), 8);
        const std::string set(reinterpret_cast<char *>(&caption.colors), 12);
        EXPECT_EQ(toHex(rectangle), toHex(*row.area ? hex(row.area) : std::string(8, 9)));
        EXPECT_EQ(toHex(set), toHex(*row.colors ? hex(row.colors) : std::string(12, 0)));
        EXPECT_EQ(caption.justify, 6u) << "the walk went on behind it";
    }
}

TEST_F(Parse, LineFeedsOfTheEditRecord) {
    const std::string most(254, 'x');
    for (const auto &[given, expected] :
         std::vector<std::pair<std::string, std::string>>{{"A\\nB\\N", "A\nB\\N"},
                                                          {"\\n\\n", "\n\n"},
                                                          {"a\\", "a\\"},
                                                          {"\\\\n\\", "\\\n\\"},
                                                          {most + "\\n", most + "\n"},
                                                          {most + "y\\", most + "y\\"}}) {
        SCOPED_TRACE(given);
        currentEditParameters = {};
        currentEditParameters.value76 = 'n'; // the byte behind a full text
        EXPECT_EQ(parse(ParseEditParameters, text(75, given)), 0);
        EXPECT_EQ(std::string(currentEditParameters.text, 256),
                  expected + std::string(256 - expected.size(), 0));
        EXPECT_EQ(currentEditParameters.value76, 'n');
    }
    currentEditParameters = {};
}

TEST_F(Parse, LabelAndImageNodesAreCountedPastTheirRecords) {
    openLog();
    const std::string tooLong = text(118, std::string(33, 'x')) + text(117, std::string(34, 'x'));
    const auto check = [&](ParserCallback parser, auto &record) {
        const std::size_t capacity = std::size(record.entries);
        for (uint32_t i = 0; i < capacity; ++i)
            EXPECT_EQ(parse(parser, area(i + 1, 2, 3, 4)), 0);
        EXPECT_EQ(record.count, capacity);
        EXPECT_EQ(record.entries[capacity - 1].area.left, capacity);
        const auto full = record;
        for (std::size_t i = capacity; i < 300; ++i)
            EXPECT_EQ(parse(parser, area(99, 2, 3, 4) + tooLong), 0) << "read past";
        EXPECT_EQ(record.count, 255);
        EXPECT_EQ(std::memcmp(&record, &full, sizeof record.entries), 0);
        EXPECT_EQ(reports("Src/utiDialogs "), 0);
        record.count = 1;
        EXPECT_EQ(parse(parser, tooLong), -3001);
        EXPECT_EQ(record.count, 1);
        EXPECT_EQ(reports("Src/utiDialogs "), 1);
        record = {};
    };
    check(ParseLabelParameters, currentLabelsParameters);
    check(ParseImageParameters, currentImagesParameters);
}

TEST_F(Parse, TenControlsOfAKind) {
    const std::vector<Node> nodes = everyNode();
    for (const Node &node : std::span(nodes).first(8)) {
        SCOPED_TRACE(std::to_string(node.rows.size()) + " tags");
        auto &count = *static_cast<uint32_t *>(node.count);
        auto *entries = static_cast<char *>(node.record);
        for (uint32_t i = 0; i < 10; ++i) {
            EXPECT_EQ(parse(node.parser, i % 2 ? byte(1, i) : ""), 0);
            EXPECT_EQ(count, i + 1);
        }
        const std::string before(entries, 10 * node.size);
        const std::string empty(node.size, 0);
        EXPECT_EQ(before.substr(8 * node.size, node.size), empty) << "an empty node counts";
        EXPECT_NE(before.substr(9 * node.size, node.size), empty);
        EXPECT_EQ(parse(node.parser, byte(1, 7)), -3208);
        EXPECT_EQ(std::string(entries, before.size()), before);
        EXPECT_EQ(count, 10u);
    }
    EXPECT_EQ(parse(ParseGraphicMenuElement, byte(123, 1)), -3208) << "of an eleventh menu";
    EXPECT_EQ(parse(ParseGraphicCaption, byte(1, 4)), 0);
    EXPECT_EQ(parse(ParseGraphicCaption, text(2, "6x8")), 0);
    EXPECT_EQ(currentGraphicCaptionParameters.count, 2u);
    EXPECT_EQ(currentGraphicCaptionParameters.justify, 4u) << "the same record again";
}

TEST_F(Parse, MenuElements) {
    const auto element = [](uint32_t value) { return group(160, byte(123, value)); };
    auto &menus = currentGraphicMenuParameters;
    const auto elements = [&](int menu) {
        std::string line;
        for (const GraphicMenuElement &each : menus.entries[menu].elements)
            line += std::to_string(each.value) + ' ' + std::to_string(each.notFirst) + ' ';
        return line + std::to_string(menus.entries[menu].elementCount);
    };
    EXPECT_EQ(parse(ParseGraphicMenu, element(5) + byte(105, 1) + element(6) + byte(96, 189)), 0);
    EXPECT_EQ(parse(ParseGraphicMenu, element(7) + group(160, word(123, 1)) + element(9)), -3002);
    EXPECT_EQ(menus.count, 1u);
    EXPECT_EQ(elements(0), "5 0 6 1 2");
    EXPECT_EQ(elements(1), "7 0 0 1 1") << "a failed element is not counted, but marked";
    EXPECT_EQ(menus.entries[0].keys[0], 103) << "read behind the elements";
    menus = {};
    EXPECT_EQ(parse(ParseGraphicMenu, element(1) + element(2) + element(3) + byte(105, 1)), -3208);
    EXPECT_EQ(menus.count, 0u);
    EXPECT_EQ(elements(0), "1 0 2 1 2");
    EXPECT_EQ(menus.entries[0].style, 0) << "nothing behind the third element was read";
}

TEST_F(Parse, FontsByName) {
    const auto font = [](const std::string &name) {
        currentGraphicCaptionParameters = {};
        EXPECT_EQ(parse(ParseGraphicCaption, text(2, name)), 0);
        return currentGraphicCaptionParameters.font;
    };
    openLog();
    const char *const names[] = {"6x8", "12x16", "16x24", "dig6x8", "dig12x16", "dig16x24"};
    for (uint16_t slot = 0; slot < 6; ++slot)
        EXPECT_EQ(font(names[slot]), slot);
    EXPECT_EQ(font(""), 1);
    EXPECT_EQ(font("big.fnt"), 6);
    EXPECT_EQ(font("big.fnt"), 6);
    EXPECT_EQ(font("BIG.FNT"), 7);
    EXPECT_EQ(toolkit.take(), "igUI_SetFileFont 6 \"big.fnt\"\nigUI_SetFileFont 7 \"BIG.FNT\"\n");

    toolkit.answers["igUI_SetFileFont"] = 3;
    EXPECT_EQ(font("bad"), 1);
    toolkit.answers.clear();
    fake::failCall(Call::malloc, 1);
    EXPECT_EQ(font("no memory"), 1);
    EXPECT_EQ(reports("File: Src/utiDialogs "), 1);
    for (uint16_t slot = 8; slot < 12; ++slot)
        EXPECT_EQ(font("font " + std::to_string(slot)), slot) << "the failures took no slot";
    EXPECT_EQ(font("one more"), 1);
    EXPECT_EQ(font("font 11"), 11);
    for (const char *name : {"6x8", ""}) {
        fake::failCall(Call::display, 1);
        EXPECT_EQ(font(name), 0xFFF7) << "the display is asked first";
    }
}

// The wording of a font's report comes from the resources, in the middle of the walk.
TEST_F(Parse, FontReportsLeaveTheWalkAlone) {
    serve(dialog(0, group(151, text(2, "bad") + text(11, "title")) +
                        group(157, byte(1, 3) + text(2, "worse") + byte(8, 7))));
    terminal.files["utils_rc.res"] =
        resourceFile(1, {{3, {{"en", 0, {"", "", "", "no {1}: {0}", "full: {0}"}}}}});
    openLog();
    toolkit.answers["igUI_SetFileFont"] = -4;
    ASSERT_EQ(GetDialogParameters("m", 1, 0), 0);
    EXPECT_STREQ(currentGraphicStaticTextParameters.entries[0].name, "title");
    EXPECT_EQ(currentGraphicLabelParameters.entries[0].border, 7);
    EXPECT_EQ(reports("[utils_rc] no bad: -4\r\n"), 1);
    toolkit.answers.clear();
    for (const char *name : {"a", "b", "c", "d", "e", "f"})
        EXPECT_EQ(parse(ParseGraphicCaption, text(2, name)), 0);
    uti::Dialogs_ResetControls();
    EXPECT_EQ(GetDialogParameters("m", 1, 0), 0);
    EXPECT_EQ(currentGraphicLabelParameters.entries[0].border, 7);
    EXPECT_EQ(reports("[utils_rc] full: worse"), 1);
}

TEST_F(Parse, DescriptionsFromTheResources) {
    const std::string label = group(157, text(11, "l"));
    const struct {
        std::string description;
        uint32_t expectedType;
        int32_t result;
        uint32_t labels;
    } rows[] = {
        {dialog(3, label + label), 3, 0, 2},
        {dialog(3, label), 1, -3206, 1},
        {dialog(3, std::string(2100, 0)), 1, -3206, 0}, // too long to be stored
        {group(0xFF, group(130, label) + text(5, "t") + label), 4, 0, 1},
        {dialog(0, group(157, word(1, 1)) + label), 0, -3002, 0},
        {dialog(0, label).substr(0, 14), 0, 0, 1}, // a header that is cut off ends the walk
        {dialog(0, label).substr(0, 18), 0, -3001, 0},
        {group(0x7F, label), 0, -3206, 0},
        {"\x81\1", 0, -3004, 0},
    };
    openLog();
    for (const auto &row : rows) {
        SCOPED_TRACE(&row - rows);
        serve(row.description);
        uti::Dialogs_ResetControls();
        currentDialogType = 4;
        reports("");
        EXPECT_EQ(GetDialogParameters("m", 1, row.expectedType), row.result);
        EXPECT_EQ(currentGraphicLabelParameters.count, row.labels);
        EXPECT_EQ(reports("File: Src/utiDialogs "), row.result != 0);
        ASSERT_EQ(Resource_Initialize("m"), 0);
        EXPECT_EQ(CurrentModule->largeStrings, nullptr);
        EXPECT_EQ(CurrentModule->smallStrings[0].text[0], 0) << "the string was released";
    }
    for (const char *module : {"m", "n"}) {
        EXPECT_EQ(GetDialogParameters(module, 0x9000, 0), -3200);
        EXPECT_EQ(reports("File: Src/utiDialogs "), 1);
    }
    EXPECT_EQ(GetDialogParameters(nullptr, 1, 0), -3200);
}

enum class Then { nothing, form };

// Loads a description from a block of its exact size and, when it is sound, builds its form.
bool load(const std::string &description, Then then) {
    const ExactBlock block(description);
    ParserNode root{};
    uti::Dialogs_ResetControls();
    Parser_Initialize(1, 2);
    if (Parser_GetRootNodeInBlock(block.data(), block.size(), &root) != 0 ||
        Parser_ParseNode(&root, ParseDialog) != 0)
        return false;
    if (then == Then::form) {
        fake::resetToolkit();
        uti::currentForm = -1;
        uti::IG_CreateForm("", currentDialogTrasparency, currentDialogPositionType, 0);
        uti::IG_CreateControls();
    }
    return true;
}

// Every truncation and every other value of each byte of three rich descriptions.
TEST_F(Parse, DamagedDescriptionsAreReadOrRefused) {
    const std::string shape = area(10, 20, 110, 60) + text(2, "dig6x8") + byte(1, 2) +
                              colors({0xFF0000, 0xFF00, 0xFF, 0x808080});
    const std::string one = byte(8, 1) + byte(9, 1);
    const std::string descriptions[] = {
        dialog(0,
               group(159, shape) + group(151, shape + text(11, "title") + text(117, "a.png")) +
                   group(148, one + byte(53, 13) + text(56, "b.png") + byte(54, 1)) +
                   group(149, shape) + group(157, text(11, "l") + byte(87, 1) + byte(86, 1)),
               byte(22, 1) + byte(23, 1) + area(0, 0, 200, 100) + dword(18, 500)),
        dialog(1, group(150, shape + text(75, "abc\\ndef\\n") + word(79, 20) + byte(73, 13)) +
                      group(150, one + text(81, "__.__") + byte(76, '_') + byte(65, 2)) +
                      group(156, shape + one)),
        dialog(2, group(153, shape + byte(96, 189) + byte(105, 1) + text(104, "m") +
                                 group(160, byte(123, 1) + text(117, "up.png")) +
                                 group(160, area(1, 2, 3, 4))) +
                      group(152, one) + text(77, "skipped")),
    };
    for (const std::string &description : descriptions) {
        EXPECT_TRUE(load(description, Then::form));
        for (std::size_t size = 0; size < description.size(); ++size)
            load(description.substr(0, size), Then::form);
        for (std::size_t at = 0; at < description.size(); ++at) {
            std::string damaged = description;
            for (int value = 1; value < 256; ++value) {
                ++damaged[at];
                const bool oneBit = (value & (value - 1)) == 0;
                load(damaged, oneBit ? Then::form : Then::nothing);
            }
        }
    }
}

} // namespace
