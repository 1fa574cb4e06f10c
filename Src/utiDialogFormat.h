// utiDialogFormat.h: the format of dialog descriptions, once: which tags a node has, how each value
// is read, which field of its record it fills, and how it is named and spelled in a resource
// source. The library's parsers, `uti compile` and `uti dump` all work from these tables.
//
// A description is a TLV stream with 1-byte tag ids and 2-byte lengths:
//
//   root (any compound tag)
//     81 (129) dialog parameters     94 (148) button          95 (149) progress bar
//     96 (150) edit                  97 (151) static text     98 (152) signature box
//     99 (153) menu                  9C (156) IP edit         9D (157) label
//     9F (159) caption
//
//   inside these: 88 (136) area, of 87 (135) positions: the first the left top corner, each later
//   one the right bottom corner; 9B (155) colours, of up to four 9A (154) colours: active
//   foreground, passive foreground, active background, passive background; A0 (160) menu element
#pragma once

#include "uti.h"

#include <array>
#include <cstddef>
#include <span>

namespace uti::dialog {

enum Tag : uint8_t {
    tagDialogParameters = 129,
    tagPosition = 135,
    tagArea = 136,
    tagButton = 148,
    tagProgressBar = 149,
    tagEdit = 150,
    tagStaticText = 151,
    tagSignature = 152,
    tagMenu = 153,
    tagColor = 154,
    tagColors = 155,
    tagIpEdit = 156,
    tagLabel = 157,
    tagCaption = 159,
    tagMenuElement = 160
};

// How a child is read and stored.
enum class Kind : uint8_t {
    byte,  // a byte
    wide,  // a byte in a 32-bit field
    word,  // 16 bits
    dword, // 32 bits
    text,  // at most `limit` bytes
    lines, // a text whose pairs of backslash and n become line feeds
    key,   // a terminal key code, stored as the toolkit's
    font,  // a text, the name of a font; fills the font index behind it too
    area,  // a Rectangle
    colors // a ColorSet
};

struct Row {
    uint8_t tag;
    Kind kind;
    uint16_t offset; // of the field in its record
    uint16_t limit;  // of a text, in bytes
};

// How a value is spelled in a resource source, where a number or a text alone would say too little.
enum class Spelling : uint8_t {
    plain,
    flag,    // true is 1
    without, // false is 1
    dialogType,
    placement,
    justify,
    border,
    transparency,     // of a widget
    formTransparency, // of the whole form
    inputType,
    digitFont,
    keyCode,   // of the terminal
    character, // in the code page
    pieces     // a text, or several that a backslash and an n separate
};

// A row with its name in a resource source.
struct Field {
    Row row;
    const char *name;
    Spelling spelling = Spelling::plain;
};

// A node of a description with its name in a resource source.
struct Node {
    Tag tag;
    const char *name;
    std::span<const Field> fields;
};

// The rows alone: what the parsers keep.
template <std::size_t count>
consteval std::array<Row, count> rowsOf(const Field (&fields)[count]) {
    std::array<Row, count> rows{};
    for (std::size_t i = 0; i < count; ++i)
        rows[i] = fields[i].row;
    return rows;
}

// A record's font index stands right behind its font name.
inline constexpr std::size_t fontIndexDistance = DIALOG_TEXT + 2;

#define UTI_ROW(tag, kind, record, field)                                                          \
    { tag, Kind::kind, offsetof(record, field), 0 }
// A text whose field has room for a terminator, and one whose field has none.
#define UTI_TEXT(tag, kind, record, field)                                                         \
    { tag, Kind::kind, offsetof(record, field), sizeof(record::field) - 1 }
#define UTI_BYTES(tag, kind, record, field)                                                        \
    { tag, Kind::kind, offsetof(record, field), sizeof(record::field) }

// The values for the whole dialog; exported as variables of their own.
struct DialogValues {
    uint32_t type;
    uint32_t timeout;
    uint32_t transparency;
    uint32_t positionType;
    uint8_t border;
    Rectangle area;
};

inline constexpr Field positionFields[] = {
    {{4, Kind::word, 0, 0}, "x"},
    {{5, Kind::word, sizeof(uint16_t), 0}, "y"},
};

inline constexpr Field colorFields[] = {
    {UTI_ROW(1, byte, RgbColor, red), "red"},
    {UTI_ROW(2, byte, RgbColor, green), "green"},
    {UTI_ROW(3, byte, RgbColor, blue), "blue"},
};

inline constexpr Field dialogFields[] = {
    {UTI_ROW(17, wide, DialogValues, type), "type", Spelling::dialogType},
    {UTI_ROW(18, dword, DialogValues, timeout), "timeout"},
    {UTI_ROW(22, wide, DialogValues, transparency), "transparency", Spelling::formTransparency},
    {UTI_ROW(23, wide, DialogValues, positionType), "placement", Spelling::placement},
    {UTI_ROW(24, byte, DialogValues, border), "border", Spelling::flag},
    {UTI_ROW(tagArea, area, DialogValues, area), "area"},
};

inline constexpr Field captionFields[] = {
    {UTI_ROW(1, wide, GraphicCaption, justify), "justify", Spelling::justify},
    {UTI_TEXT(2, font, GraphicCaption, fontName), "font"},
    {UTI_ROW(tagArea, area, GraphicCaption, area), "area"},
    {UTI_ROW(tagColors, colors, GraphicCaption, colors), "colors"},
};

// What every control has.
#define UTI_CONTROL_FIELDS(record)                                                                 \
    {UTI_ROW(1, wide, record, justify), "justify", Spelling::justify},                             \
        {UTI_TEXT(2, font, record, fontName), "font"},                                             \
        {UTI_ROW(8, byte, record, border), "border", Spelling::border},                            \
        {UTI_ROW(9, byte, record, transparency), "transparency", Spelling::transparency},          \
        {UTI_ROW(tagArea, area, record, area), "area"}, {                                          \
        UTI_ROW(tagColors, colors, record, colors), "colors"                                       \
    }

inline constexpr Field boxFields[] = {UTI_CONTROL_FIELDS(GraphicBoxEntry)};
inline constexpr Field ipEditFields[] = {UTI_CONTROL_FIELDS(GraphicIpEditEntry)};

inline constexpr Field staticTextFields[] = {
    UTI_CONTROL_FIELDS(GraphicStaticTextEntry),
    {UTI_TEXT(11, text, GraphicStaticTextEntry, name), "name"},
    {UTI_TEXT(117, text, GraphicStaticTextEntry, image), "image"},
};

inline constexpr Field buttonFields[] = {
    UTI_CONTROL_FIELDS(GraphicButtonEntry),
    {UTI_ROW(53, key, GraphicButtonEntry, key), "key", Spelling::keyCode},
    {UTI_ROW(54, byte, GraphicButtonEntry, option), "confirms", Spelling::without},
    {UTI_TEXT(55, text, GraphicButtonEntry, passiveBackImage), "passive_back_image"},
    {UTI_TEXT(56, text, GraphicButtonEntry, activeBackImage), "active_back_image"},
    {UTI_TEXT(117, text, GraphicButtonEntry, image), "image"},
};

// What edits and labels share.
#define UTI_INPUT_FIELDS                                                                           \
    UTI_CONTROL_FIELDS(GraphicEditEntry), {UTI_TEXT(11, text, GraphicEditEntry, name), "name"},    \
        {UTI_ROW(65, wide, GraphicEditEntry, inputType), "input", Spelling::inputType},            \
        {UTI_ROW(68, byte, GraphicEditEntry, inputFlagD), "wrap", Spelling::without},              \
        {UTI_TEXT(75, text, GraphicEditEntry, keySchemeText), "key_scheme", Spelling::pieces},     \
        {UTI_ROW(78, byte, GraphicEditEntry, hideInput), "hide", Spelling::character},             \
        {UTI_ROW(79, word, GraphicEditEntry, maxLength), "max_length"},                            \
        {UTI_ROW(80, word, GraphicEditEntry, secondLength), "min_length"},                         \
        {UTI_TEXT(81, text, GraphicEditEntry, pattern), "pattern"},                                \
        {UTI_ROW(86, byte, GraphicEditEntry, inputFlagC), "scroll_bar", Spelling::flag},           \
        {UTI_ROW(87, wide, GraphicEditEntry, multiLine), "multi_line", Spelling::flag},            \
        {UTI_ROW(88, byte, GraphicEditEntry, inputFlagA), "read_only", Spelling::flag},            \
        {UTI_ROW(89, byte, GraphicEditEntry, inputFlagB), "right_aligned", Spelling::flag}, {      \
        UTI_ROW(90, byte, GraphicEditEntry, inputFlagE), "upper_case", Spelling::flag              \
    }

inline constexpr Field editFields[] = {
    UTI_INPUT_FIELDS,
    {UTI_ROW(73, wide, GraphicEditEntry, editValue), "confirm_key", Spelling::keyCode},
    {UTI_ROW(76, byte, GraphicEditEntry, fillSymbol), "fill_symbol", Spelling::character},
};

inline constexpr Field labelFields[] = {
    UTI_INPUT_FIELDS,
    {UTI_ROW(122, wide, GraphicEditEntry, labelValue), "value"},
};

inline constexpr Field menuFields[] = {
    UTI_CONTROL_FIELDS(GraphicMenuEntry),
    {UTI_ROW(96, key, GraphicMenuEntry, keys[0]), "page_up_key", Spelling::keyCode},
    {UTI_ROW(97, key, GraphicMenuEntry, keys[1]), "page_down_key", Spelling::keyCode},
    {UTI_ROW(98, key, GraphicMenuEntry, keys[2]), "up_key", Spelling::keyCode},
    {UTI_ROW(99, key, GraphicMenuEntry, keys[3]), "down_key", Spelling::keyCode},
    {UTI_ROW(103, wide, GraphicMenuEntry, option), "tiles", Spelling::flag},
    {UTI_TEXT(104, text, GraphicMenuEntry, text), "text"},
    {UTI_ROW(105, byte, GraphicMenuEntry, style), "digits", Spelling::flag},
    {UTI_ROW(106, byte, GraphicMenuEntry, styleFlag), "scroll_bar", Spelling::flag},
    {UTI_ROW(107, wide, GraphicMenuEntry, accelFontMode), "digit_font", Spelling::digitFont},
};

inline constexpr Field menuElementFields[] = {
    {UTI_TEXT(117, text, GraphicMenuElement, image), "image"},
    {UTI_ROW(123, byte, GraphicMenuElement, value), "enabled", Spelling::flag},
    {UTI_ROW(tagArea, area, GraphicMenuElement, area), "area"},
};

// The children of the root, as many of each as they may be; the order among controls of a kind is
// that of the record's entries.
inline constexpr Node nodes[] = {
    {tagDialogParameters, "parameters", dialogFields},
    {tagCaption, "caption", captionFields},
    {tagStaticText, "static_text", staticTextFields},
    {tagLabel, "label", labelFields},
    {tagEdit, "edit", editFields},
    {tagIpEdit, "ip_edit", ipEditFields},
    {tagButton, "button", buttonFields},
    {tagMenu, "menu", menuFields},
    {tagProgressBar, "progress_bar", boxFields},
    {tagSignature, "signature", boxFields},
};

inline constexpr Node menuElement = {tagMenuElement, "element", menuElementFields};

// --- nodes that applications parse themselves

inline constexpr Row editRecordRows[] = {
    UTI_ROW(tagArea, area, EditParameters, area), UTI_BYTES(6, text, EditParameters, shortName),
    UTI_ROW(1, wide, EditParameters, justify),    UTI_ROW(64, byte, EditParameters, value64),
    UTI_ROW(65, wide, EditParameters, value65),   UTI_ROW(66, wide, EditParameters, value66),
    UTI_ROW(67, wide, EditParameters, value67),   UTI_ROW(69, wide, EditParameters, value69),
    UTI_ROW(70, wide, EditParameters, value70),   UTI_ROW(71, wide, EditParameters, value71),
    UTI_ROW(72, wide, EditParameters, value72),   UTI_ROW(73, wide, EditParameters, value73),
    UTI_ROW(74, wide, EditParameters, value74),   UTI_BYTES(75, lines, EditParameters, text),
    UTI_ROW(76, byte, EditParameters, value76),   UTI_BYTES(77, text, EditParameters, value77),
    UTI_ROW(78, byte, EditParameters, value78),   UTI_ROW(79, word, EditParameters, value79),
    UTI_ROW(80, word, EditParameters, value80),   UTI_TEXT(81, text, EditParameters, pattern),
    UTI_ROW(82, byte, EditParameters, value82),   UTI_ROW(83, byte, EditParameters, value83),
    UTI_ROW(84, byte, EditParameters, value84),   UTI_ROW(85, byte, EditParameters, value85),
    UTI_ROW(86, byte, EditParameters, value86),   UTI_ROW(91, byte, EditParameters, value91),
};

inline constexpr Row listBoxRecordRows[] = {
    UTI_ROW(tagArea, area, ListBoxParameters, area),
    UTI_BYTES(6, text, ListBoxParameters, shortName),
    UTI_ROW(1, wide, ListBoxParameters, justify),
    UTI_ROW(96, wide, ListBoxParameters, value96),
    UTI_ROW(97, wide, ListBoxParameters, value97),
    UTI_ROW(98, wide, ListBoxParameters, value98),
    UTI_ROW(99, wide, ListBoxParameters, value99),
    UTI_ROW(100, wide, ListBoxParameters, value100),
    UTI_ROW(101, byte, ListBoxParameters, value101),
    UTI_ROW(102, byte, ListBoxParameters, value102),
    UTI_ROW(103, wide, ListBoxParameters, value103),
};

inline constexpr Row labelRecordRows[] = {
    UTI_ROW(tagArea, area, LabelEntry, area),  UTI_BYTES(118, text, LabelEntry, text),
    UTI_BYTES(6, text, LabelEntry, shortName), UTI_ROW(1, wide, LabelEntry, justify),
    UTI_ROW(7, wide, LabelEntry, value7),      UTI_ROW(10, wide, LabelEntry, value10),
    UTI_ROW(122, wide, LabelEntry, value122),
};

inline constexpr Row captionRecordRows[] = {
    UTI_ROW(tagArea, area, CaptionParameters, area),
    UTI_BYTES(6, text, CaptionParameters, shortName),
    UTI_ROW(32, wide, CaptionParameters, value32),
    UTI_ROW(1, wide, CaptionParameters, justify),
};

inline constexpr Row borderRecordRows[] = {
    UTI_ROW(tagArea, area, BorderParameters, area),
    UTI_BYTES(6, text, BorderParameters, shortName),
    UTI_ROW(48, wide, BorderParameters, value48),
};

inline constexpr Row frameRecordRows[] = {
    UTI_ROW(tagArea, area, FrameParameters, area),
    UTI_ROW(48, wide, FrameParameters, value48),
};

inline constexpr Row footerRecordRows[] = {
    UTI_ROW(tagArea, area, FooterParameters, area), UTI_BYTES(6, text, FooterParameters, shortName),
    UTI_ROW(112, wide, FooterParameters, value112), UTI_ROW(1, wide, FooterParameters, justify),
    UTI_ROW(7, wide, FooterParameters, value7),
};

inline constexpr Row imageRecordRows[] = {
    UTI_ROW(tagArea, area, ImageEntry, area),
    UTI_BYTES(117, text, ImageEntry, image),
};

// Battery, signal and Ethernet link differ in the tag of their value.
#define UTI_STATUS_ROWS(tag)                                                                       \
    UTI_ROW(tagArea, area, StatusParameters, area),                                                \
        UTI_BYTES(6, text, StatusParameters, shortName),                                           \
        UTI_ROW(tag, wide, StatusParameters, value)

inline constexpr Row batteryRecordRows[] = {UTI_STATUS_ROWS(119)};
inline constexpr Row signalRecordRows[] = {UTI_STATUS_ROWS(120)};
inline constexpr Row ethLinkRecordRows[] = {UTI_STATUS_ROWS(121)};

} // namespace uti::dialog
