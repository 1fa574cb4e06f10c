// utiDialogsForm.cpp: builds the form of a dialog and its controls from the parameter records.
// Stands on the widget toolkit.
#include "Src/utiDialogsForm.h"

#include "Src/assertions.h"
#include "Src/utiDialogsRecords.h"
#include "Src/utiDialogsTerminal.h"
#include "terminal.h"
#include "toolkit.h"

#include <algorithm>
#include <cstring>

namespace uti {

constinit int32_t currentForm = -1;

namespace {

constexpr Assertions<"Src/utiDialogs"> asserts;

constexpr int32_t lineOfUnknownInput = 637;
constexpr int32_t lineOfUnknownJustify = 1000;

constexpr uint16_t black = 0x0000;
constexpr uint16_t white = 0xFFFF;

// The toolkit's colour of a colour of the description.
uint16_t rgb565(const RgbColor &color) {
    return static_cast<uint16_t>(((color.red & 0xF8) << 8) + ((color.green & 0xFC) << 3) +
                                 (color.blue >> 3));
}

enum class Justified : bool { no, yes };

// What every widget gets but its colours.
template <class Entry>
void dressShape(const Entry &entry, Justified justified = Justified::yes) {
    igWidget_SetBorder(entry.handle, entry.border);
    if (justified == Justified::yes)
        igWidget_SetJustify(entry.handle, IG_GetJustify(entry.justify));
    igWidget_SetTransparency(entry.handle, entry.transparency);
    igWidget_SetFont(entry.handle, entry.font);
}

template <class Entry>
void dressColors(const Entry &entry) {
    setColors(entry.handle, entry.colors, igWidget_SetActiveColor, igWidget_SetPassiveColor);
}

template <class Entry>
void dressPatternColors(const Entry &entry) {
    setColors(entry.handle, entry.colors, igPatternInput_SetPatternActiveColor,
              igPatternInput_SetPatternPassiveColor);
}

bool isInput(int32_t handle) {
    const int32_t type = igWidget_GetType(handle);
    return type == IG_WIDGET_INPUT || type == IG_WIDGET_PATTERN_INPUT;
}

// Splits the text in place at its pairs of backslash and n.
void splitKeyScheme(char *text) {
    std::fill(std::begin(currentKeyScheme), std::end(currentKeyScheme), nullptr);
    currentKeyScheme[0] = text;
    int slot = 0;
    while (char *separator = std::strstr(text, "\\n")) {
        *separator = 0;
        text = separator + 2;
        if (*text == 0 || slot == DIALOG_KEY_SCHEME - 1)
            break;
        currentKeyScheme[++slot] = text;
    }
}

// The style bits of a single-line, pattern or multi-line input.
uint16_t IG_GetInputStyle(const GraphicEditEntry &entry) {
    static constexpr uint16_t types[] = {IG_INPUT_NO_LETTERS | IG_INPUT_DIGITS, 0,
                                         IG_INPUT_DIGITS | IG_INPUT_AMOUNT};
    uint32_t type = 0;
    if (entry.inputType < std::size(types))
        type = types[entry.inputType];
    else
        asserts.report(lineOfUnknownInput);

    const auto bitsIf = [](bool condition, uint32_t bits) { return condition ? bits : 0; };
    uint32_t style = 0;
    if (entry.multiLine == 0) {
        style = type | IG_INPUT_CURSOR |
                bitsIf(entry.inputType == 0 && entry.inputFlagE != 0, IG_INPUT_UPPER_CASE) |
                bitsIf(entry.inputFlagB != 0, IG_INPUT_RIGHT) |
                bitsIf(entry.inputFlagF == 1, IG_INPUT_FRACTION) |
                bitsIf(entry.inputFlagA != 0, IG_INPUT_READ_ONLY);
    } else {
        const bool plain = entry.multiLine == 1;
        style = bitsIf(plain && entry.inputFlagD == 0, IG_MULTI_LINE_WRAP) |
                bitsIf(plain && entry.inputFlagC != 0, IG_MULTI_LINE_SCROLL_BAR) |
                bitsIf(entry.inputFlagA != 0, IG_MULTI_LINE_READ_ONLY);
    }
    return static_cast<uint16_t>(style);
}

// Creates the widget that an edit or label asks for. Returns its handle or a negative code.
int32_t createInputWidget(const GraphicEditEntry &entry) {
    const Frame at = frameOf(entry.area);
    const uint16_t style = IG_GetInputStyle(entry);
    if (entry.multiLine != 0) {
        const int32_t handle =
            igMultiLine_Create(at.x, at.y, at.width, at.height, style, entry.valueBuffer);
        igMultiLine_SetMaxLen(handle, entry.maxLength);
        return handle;
    }
    if (entry.pattern[0] != 0) {
        char *pattern = Dialogs_CopyText(entry.pattern);
        keepText(pattern);
        const int32_t handle = igPatternInput_Create(at.x, at.y, at.width, at.height,
                                                     style | IG_INPUT_PATTERN, pattern);
        igPatternInput_SetMaxLen(handle, entry.maxLength);
        return handle;
    }
    const int32_t handle = igInput_Create(at.x, at.y, at.width, at.height, entry.maxLength, style);
    if (handle >= 0)
        igInput_SetRadix(handle, entry.radix);
    return handle;
}

// Creates the input of an edit or label; `keyScheme` numbers the edits from 1, labels have 0.
int32_t IG_CreateInput(GraphicEditEntry *entry, int32_t keyScheme) {
    if (!entry)
        return UTI_DIALOG_NULL;
    const int32_t handle = createInputWidget(*entry);
    if (handle < 0)
        return toolkitFailure(handle);
    entry->handle = handle;

    if (entry->multiLine == 0 && entry->hideInput != 0)
        igInput_SetHideSymbol(handle, entry->hideInput);
    if (keyScheme != 0 && entry->keySchemeText[0] != 0) {
        splitKeyScheme(entry->keySchemeText);
        igUI_SetKeyScheme(Display_GetHandle(), keyScheme, currentKeyScheme);
        igWidget_SetKeyScheme(handle, keyScheme);
    }
    dressShape(*entry);
    if (igWidget_GetType(handle) == IG_WIDGET_PATTERN_INPUT) {
        dressPatternColors(*entry);
        igPatternInput_SetFillSymbol(
            handle, entry->fillSymbol ? static_cast<char>(entry->fillSymbol) : '.');
    }
    dressColors(*entry);
    return addToForm(entry->handle);
}

// Dresses the widget that was created for an entry and adds it to the form. Returns 0 or a negative
// code.
template <class Entry>
int32_t placeWidget(Entry &entry, int32_t handle, Justified justified = Justified::yes) {
    if (handle < 0)
        return handle;
    entry.handle = handle;
    dressShape(entry, justified);
    dressColors(entry);
    return addToForm(handle);
}

int32_t createStaticText(GraphicStaticTextEntry &entry) {
    const Frame at = frameOf(entry.area);
    const int32_t image = igImage_CreateFromFile(entry.image);
    return placeWidget(entry,
                       igStatic_Create(at.x, at.y, at.width, at.height, entry.valueBuffer, image));
}

int32_t createButton(GraphicButtonEntry &entry) {
    const Frame at = frameOf(entry.area);
    const int32_t image = igImage_CreateFromFile(entry.image);
    const int32_t handle =
        igButton_Create(at.x, at.y, at.width, at.height, entry.valueBuffer, image, entry.key);
    if (handle < 0)
        return handle;
    igWidget_SetActiveBackImage(handle, igImage_CreateFromFile(entry.activeBackImage));
    igWidget_SetPassiveBackImage(handle, igImage_CreateFromFile(entry.passiveBackImage));
    if (entry.option == 0)
        igButton_SetOption(handle, IG_BUTTON_END);
    return placeWidget(entry, handle);
}

int32_t createSignatureBox(GraphicBoxEntry &entry) {
    const Frame at = frameOf(entry.area);
    return placeWidget(entry, igSignBox_Create(at.x, at.y, at.width, at.height), Justified::no);
}

int32_t createProgressBar(GraphicBoxEntry &entry) {
    const Frame at = frameOf(entry.area);
    return placeWidget(entry, igProgress_Create(at.x, at.y, at.width, at.height));
}

int32_t createIpEdit(GraphicIpEditEntry &entry) {
    const Frame at = frameOf(entry.area);
    const int32_t handle = igIPInput_Create(at.x, at.y, at.width, at.height, IG_INPUT_PATTERN);
    if (handle < 0)
        return handle;
    entry.handle = handle;
    dressShape(entry);
    dressColors(entry);
    dressPatternColors(entry);
    return addToForm(entry.handle);
}

// Creates the widgets of a record in its order. False at the first that fails.
template <class Parameters, class Create>
bool createAll(Parameters &parameters, Create create) {
    return std::ranges::all_of(entriesOf(parameters),
                               [&](auto &entry) { return create(entry) >= 0; });
}

bool createWidgets() {
    int32_t keyScheme = 0;
    return createAll(currentGraphicStaticTextParameters, createStaticText) &&
           createAll(currentGraphicButtonParameters, createButton) &&
           createAll(currentGraphicSignatureParameters, createSignatureBox) &&
           createAll(
               currentGraphicEditParameters,
               [&](GraphicEditEntry &entry) { return IG_CreateInput(&entry, ++keyScheme); }) &&
           createAll(currentGraphicLabelParameters,
                     [](GraphicEditEntry &entry) { return IG_CreateInput(&entry, 0); }) &&
           createAll(currentGraphicProgressBarParameters, createProgressBar) &&
           createAll(currentGraphicIpEditParameters, createIpEdit);
}

void fillEdit(const GraphicEditEntry &entry) {
    if (entry.handle <= 0 || !isInput(entry.handle))
        return;
    const TerminalTraits terminal = traitsOf(Terminal_GetType());
    if (entry.valueBuffer)
        igInput_SetValue(entry.handle, entry.valueBuffer);
    if (entry.editValue == 0 && !terminal.setsControlKeys)
        return;
    const auto confirm = static_cast<uint8_t>(IG_GetIGKeyCode(entry.editValue));
    const uint8_t clear = terminal.hasOtherKeys ? IG_KEY_F1 : IG_KEY_CLEAR;
    const uint8_t layout = terminal.hasOtherKeys ? IG_KEY_F1 : IG_KEY_LAYOUT;
    igInput_SetControlCodes(entry.handle, clear, clear, layout, confirm);
}

void fillLabel(const GraphicEditEntry &entry) {
    if (entry.valueBuffer && entry.handle > 0 && isInput(entry.handle))
        igInput_SetValue(entry.handle, entry.valueBuffer);
}

void fillIpEdit(const GraphicIpEditEntry &entry) {
    if (!entry.valueBuffer || entry.handle <= 0 ||
        igWidget_GetType(entry.handle) != IG_WIDGET_IP_INPUT)
        return;
    if (traitsOf(Terminal_GetType()).hasOtherKeys)
        igInput_SetControlCodes(entry.handle, IG_KEY_F1, IG_KEY_F1, IG_KEY_F1, 0);
    igIPInput_SetIPtext(entry.handle, entry.valueBuffer);
}

void dressHeader(const GraphicCaption &caption) {
    static constexpr ColorSet noColors{};
    const ColorSet &colors = caption.colors;
    if (std::memcmp(&colors, &noColors, sizeof colors) != 0)
        igForm_SetHeaderColors(currentForm, rgb565(colors.activeForeground),
                               rgb565(colors.activeBackground));
    igForm_SetHeaderFont(currentForm, caption.font);
    const int16_t height = frameOf(caption.area).height;
    if (height > 0)
        igForm_SetHeaderHeight(currentForm, height);
    igForm_SetHeaderJustify(currentForm, IG_GetJustify(caption.justify));
}

void setFormTransparency(uint32_t transparency) {
    switch (transparency) {
    case 0:
        igForm_ClearOption(currentForm, IG_FORM_TRANSPARENT);
        igForm_SetOption(currentForm, IG_FORM_OPAQUE);
        break;
    case 1:
        igForm_ClearOption(currentForm, IG_FORM_TRANSPARENT);
        igForm_ClearOption(currentForm, IG_FORM_OPAQUE);
        break;
    case 2:
        igForm_SetOption(currentForm, IG_FORM_TRANSPARENT);
        igForm_ClearOption(currentForm, IG_FORM_OPAQUE);
        break;
    default:
        break;
    }
}

} // namespace

Frame frameOf(const Rectangle &area) {
    return {static_cast<int16_t>(area.left), static_cast<int16_t>(area.top),
            static_cast<int16_t>(area.right - area.left),
            static_cast<int16_t>(area.bottom - area.top)};
}

void setColors(int32_t handle, const ColorSet &colors, SetColors setActive, SetColors setPassive) {
    setActive(handle, rgb565(colors.activeForeground), rgb565(colors.activeBackground));
    setPassive(handle, rgb565(colors.passiveForeground), rgb565(colors.passiveBackground));
}

int32_t addToForm(int32_t handle) {
    const int32_t result = igForm_Add(currentForm, handle);
    return result < 0 ? toolkitFailure(result) : UTI_OK;
}

void removeForm(int32_t display) {
    bool isGone = true;
    if (currentForm > 0) {
        isGone = igUI_Del(display, currentForm) >= 0;
        currentForm = -1;
        ++dialogTurn;
    }
    if (isGone)
        freeLastTexts();
    else
        leaveLastTexts();
}

int32_t IG_CreateForm(const char *caption, uint32_t transparency, uint32_t positionType,
                      uint32_t border) {
    const int32_t display = Display_GetHandle();
    if (display < 0)
        return display;
    removeForm(display);
    IG_UpdateStatusLine();

    const bool child = positionType == 1;
    const Frame at = frameOf(currentDialogAreaRectangle);
    currentForm = child ? igChildForm_Create(at.x, at.y, at.width, at.height, caption, 0)
                        : igForm_Create(caption, 0);
    const int32_t result =
        currentForm < 0 ? toolkitFailure(currentForm) : IG_SetDefaultFormStyle(currentForm);
    if (child)
        igForm_ClearOption(currentForm, IG_FORM_HEADER);
    if (currentGraphicCaptionParameters.count > 0)
        dressHeader(currentGraphicCaptionParameters);
    setFormTransparency(transparency);
    if (border == 0)
        igForm_SetOption(currentForm, IG_FORM_FRAMELESS);
    return result;
}

int32_t IG_CreateControls() {
    createWidgets();
    igForm_Reset(currentForm);
    for (const GraphicEditEntry &entry : entriesOf(currentGraphicEditParameters))
        fillEdit(entry);
    for (const GraphicEditEntry &entry : entriesOf(currentGraphicLabelParameters))
        fillLabel(entry);
    for (const GraphicIpEditEntry &entry : entriesOf(currentGraphicIpEditParameters))
        fillIpEdit(entry);
    return UTI_OK;
}

} // namespace uti

using namespace uti;

int32_t IG_SetDefaultFormStyle(int32_t form) {
    igForm_ClearOption(form, IG_FORM_CLOSE_MARK | IG_FORM_SHADOW);
    igForm_SetOption(form, IG_FORM_TRANSPARENT);
    igForm_SetHeaderColors(form, headerForeground, headerBackground);
    igForm_SetColors(form, black, white);
    return 0;
}

uint32_t IG_GetJustify(uint32_t code) {
    static constexpr uint8_t justifies[] = {
        IG_JUSTIFY_LEFT,
        IG_JUSTIFY_RIGHT,
        IG_JUSTIFY_CENTER,
        IG_JUSTIFY_TOP,
        IG_JUSTIFY_BOTTOM,
        IG_JUSTIFY_LEFT | IG_JUSTIFY_TOP,
        IG_JUSTIFY_LEFT | IG_JUSTIFY_BOTTOM,
        IG_JUSTIFY_RIGHT | IG_JUSTIFY_TOP,
        IG_JUSTIFY_RIGHT | IG_JUSTIFY_BOTTOM,
    };
    if (code < std::size(justifies))
        return justifies[code];
    asserts.report(lineOfUnknownJustify);
    return 0;
}
