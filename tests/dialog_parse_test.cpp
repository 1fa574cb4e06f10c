// Dialog descriptions into records: which tag fills which field and nothing else, what ends a node,
// and fonts.
#include "tests/dialog_support.h"

using namespace support;
using namespace support::describe;
using fake::Call;

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

// A kind of node: its parser and the record that it fills. Offsets are counted from the area: what
// stands in front of it is the library's, and as wide as a pointer is.
struct Node {
    const char *name;
    ParserCallback parser;
    char *record;
    std::size_t size;
    char *area;
    void *count; // its low byte, or null
};

template <class Record>
Node single(const char *name, ParserCallback parser, Record &record, void *count = nullptr) {
    return {name,
            parser,
            reinterpret_cast<char *>(&record),
            sizeof record,
            reinterpret_cast<char *>(&record.area),
            count};
}
template <class Record>
Node counted(const char *name, ParserCallback parser, Record &record) {
    return single(name, parser, record.entries[0], &record.count);
}

std::vector<Node> everyNode() {
    auto &menu = currentGraphicMenuParameters.entries[0];
    auto &caption = currentGraphicCaptionParameters;
    std::vector<Node> nodes = {
        counted("ip edit", ParseGraphicIpEdit, currentGraphicIpEditParameters),
        counted("progress", ParseGraphicProgressBar, currentGraphicProgressBarParameters),
        counted("signature", ParseGraphicSignature, currentGraphicSignatureParameters),
        counted("static", ParseGraphicStaticText, currentGraphicStaticTextParameters),
        counted("button", ParseGraphicButton, currentGraphicButtonParameters),
        counted("label", ParseGraphicLabel, currentGraphicLabelParameters),
        counted("edit", ParseGraphicEdit, currentGraphicEditParameters),
        counted("menu", ParseGraphicMenu, currentGraphicMenuParameters),
        single("element", ParseGraphicMenuElement, menu.elements[0], &menu.elementCount),
        single("caption", ParseGraphicCaption, caption, &caption.count),
        counted("label record", ParseLabelParameters, currentLabelsParameters),
        counted("image record", ParseImageParameters, currentImagesParameters),
        single("edit record", ParseEditParameters, currentEditParameters),
        single("list record", ParseListBoxParameters, currentListBoxParameters),
        single("caption record", ParseCaptionParameters, currentCaptionParameters),
        single("border record", ParseBorderParameters, currentBorderParameters),
        single("frame record", ParseFrameParameters, currentFrameParameters),
        single("footer record", ParseFooterParameters, currentFooterParameters),
        single("battery record", ParseBatteryParameters, currentBatteryParameters),
        single("signal record", ParseSignalParameters, currentSignalParameters),
        single("link record", ParseEthLinkParameters, currentEthLinkStatusParameters)};
    nodes[9].size = offsetof(GraphicCaption, count);
    return nodes;
}

// What a child does to a record: the result, and the bytes that are not as they were, a run of the
// same in short.
std::string effectOf(const Node &node, uint32_t tag, const std::string &child) {
    const char before = tag == 2 ? 0 : '\xA5'; // the name of a font is read as it is stored
    std::memset(node.record, before, node.size);
    const int32_t result = parse(node.parser, child + byte(0, 1));
    if (auto *count = static_cast<uint8_t *>(node.count)) {
        EXPECT_EQ(std::exchange(*count, uint8_t{0}), result == 0) << node.name << ' ' << tag;
    }
    const std::string bytes(node.record, node.size);
    std::memset(node.record, 0, node.size);
    const std::size_t first = bytes.find_first_not_of(before);
    std::string effect = std::to_string(result);
    if (first == bytes.npos)
        return effect;
    effect += " at " + std::to_string(node.record + first - node.area) + ':';
    for (std::size_t at = first, next; at <= bytes.find_last_not_of(before); at = next) {
        next = std::min(bytes.find_first_not_of(bytes[at], at), bytes.size());
        effect += ' ' + toHex(bytes.substr(at, 1)).substr(0, 2);
        effect += next - at > 1 ? "*" + std::to_string(next - at) : "";
    }
    return effect;
}

// Every tag of every kind of node with values of every kind; a tag that is not listed is skipped.
TEST_F(Parse, EveryTagFillsItsFieldAndNothingElse) {
    toolkit.answers["igUI_SetFileFont"] = -4; // other fonts fall back to slot 1
    std::string seen;
    for (const Node &node : everyNode()) {
        for (uint32_t tag = 1; tag <= 255; ++tag) {
            const auto effect = [&](const std::string &child) {
                return effectOf(node, tag, child);
            };
            const std::string any = effect(group(tag, "\7any")), none = effect(group(tag));
            if ((any == "0" && none == "0") || (tag == 160 && node.parser == ParseGraphicMenu))
                continue;
            seen += std::string(node.name) + ' ' + std::to_string(tag) + "\n  any " + any +
                    "\n  none " + none + '\n';
            std::vector<std::string> children{byte(tag, 129), word(tag, 0xFEDC), group(tag, "\4x"),
                                              group(tag, "\3xx"), group(tag, "\2x")};
            if (tag == 136)
                children = {area(1, 2, 0xFEDC, 4), group(tag, group(135, byte(4, 9)))};
            if (tag == 155)
                children = {colors({0x010203, 0x040506, 0x070809, 0x0A0B0C}),
                            group(tag, group(154, word(1, 9)))};
            for (const std::string &child : children)
                seen += "  " + toHex(child) + "-> " + effect(child) + '\n';
            std::size_t most = 0;
            while (most < 300 && effect(text(tag, std::string(most + 1, 'x')))[0] == '0')
                ++most;
            if (most > 1)
                seen += "  " + std::to_string(most) + " -> " +
                        effect(text(tag, std::string(most, 'x'))) + "\n  more -> " +
                        effect(text(tag, std::string(most + 1, 'x'))) + '\n';
        }
    }
    expectGolden("records.txt", seen);
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
        EXPECT_EQ(isLeftTop, &row == rows) << "until a position is met";
    }

    // The nodes inside alone: without a place to store to they are passed over.
    for (const bool isPlaced : {false, true}) {
        Rectangle rectangle{};
        ColorSet set{};
        RgbColor color{};
        currentAreaRectangle = isPlaced ? &rectangle : nullptr;
        isLeftTop = 1;
        EXPECT_EQ(parse(ParseAreaRectangle, position(1, 2)), 0);
        currentPosition = isPlaced ? &rectangle.right : nullptr;
        EXPECT_EQ(parse(ParseGuiPosition, word(4, 3) + word(5, 4)), 0);
        currentGraphicColors = isPlaced ? &set : nullptr;
        EXPECT_EQ(parse(ParseGraphicColors, green), 0);
        currentRGB = isPlaced ? &color : nullptr;
        EXPECT_EQ(parse(ParseRGB, byte(3, 3)), 0);
        EXPECT_EQ(rectangle.left + 10 * rectangle.top + 100 * rectangle.right +
                      1000 * rectangle.bottom + 10000 * set.activeForeground.green +
                      100000 * color.blue,
                  isPlaced ? 324321 : 0);
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
        SCOPED_TRACE(node.name);
        auto &count = *static_cast<uint32_t *>(node.count);
        auto *entries = node.record;
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

} // namespace
