// utiDialogsModal.cpp: the modal dialogs. One road leads from the request to the result; an entry
// point adds the steps that are its own. Stands on the form, the events and the toolkit.
#include "Src/assertions.h"
#include "Src/text.h"
#include "Src/utiDialogsEvents.h"
#include "Src/utiDialogsForm.h"
#include "terminal.h"
#include "toolkit.h"

#include <algorithm>
#include <cstring>

namespace uti {
namespace {

constexpr Assertions asserts{"Src/utiDialogs"};

constexpr uint32_t pollMilliseconds = 100;
constexpr uint32_t shortMessageTicks = 1000;
// The image field takes this much of a name with its suffix.
constexpr std::size_t imageNameSize = 128;

// --- the run

// Shows a refreshed value. False when the widget is none that takes one.
bool showValue(const GraphicEditEntry &entry) {
    switch (igWidget_GetType(entry.handle)) {
    case IG_WIDGET_MULTI_LINE:
        igMultiLine_SetValue(entry.handle, entry.valueBuffer);
        return true;
    case IG_WIDGET_INPUT:
    case IG_WIDGET_PATTERN_INPUT:
        igInput_SetValue(entry.handle, entry.valueBuffer);
        return true;
    default:
        return false;
    }
}

void refreshEntries(std::span<GraphicEditEntry> entries) {
    for (GraphicEditEntry &entry : entries) {
        if (entry.name[0] == 0)
            continue;
        for (const LabelValue *each = refLabelData; each && each->name && each->value; ++each) {
            if (std::strcmp(each->name, entry.name) != 0)
                continue;
            setValue(entry.valueBuffer, each->value);
            if (showValue(entry))
                break;
        }
    }
}

// The result of a run whose form ended in a state; `stateRefresh` asks for another run with the
// time that is left, which `allowed` then holds.
int32_t resultOfState(int32_t state, uint32_t &allowed) {
    switch (state) {
    case stateBroken:
        return UTI_DIALOG_BROKEN_OFF;
    case IG_STATE_CANCELLED:
        return UTI_DIALOG_CANCELLED;
    case IG_STATE_TIME_OUT:
        return UTI_DIALOG_TIME_OUT;
    case stateRefresh:
        allowed = currentDialogTimeout + currentStartTime - GetTicks();
        return allowed > currentDialogTimeout ? UTI_DIALOG_TIME_OUT : stateRefresh;
    default:
        return UTI_OK;
    }
}

// True when an Escape was pressed that the form did not end with.
bool escapePressed() {
    const uint8_t key = Keyboard_GetLastKey();
    return key == keyEscape || (key == 0 && EndDialog == UTI_DIALOG_CANCELLED);
}

int32_t Dialogs_RunForm(uint32_t mode) {
    const int32_t display = Display_GetHandle();
    if (display < 0)
        return toolkitFailure(display);
    uint32_t allowed = currentDialogTimeout;
    Keyboard_Reset();
    currentShowType = mode;
    currentStartTime = GetTicks();

    int32_t result = UTI_OK;
    do {
        if (currentShowType != SHOW_UNLIMITED)
            igForm_SetTimeOut(currentForm, allowed);
        if (result == stateRefresh) {
            refreshEntries(entriesOf(currentGraphicLabelParameters));
            refreshEntries(entriesOf(currentGraphicEditParameters));
        }
        const int32_t shown = igUI_ShowExt(display, currentForm, IG_EventCallback);
        if (shown < -1)
            return toolkitFailure(shown);
        if (mode == SHOW_AND_RETURN)
            return UTI_OK;
        while (igUI_IsModal() != 0) {
            Wait(1);
            WaitSleep(pollMilliseconds);
        }

        result = resultOfState(igForm_GetState(currentForm), allowed);
        if (result == UTI_DIALOG_TIME_OUT && mode == SHOW_WITH_TIMEOUT)
            return result;
        if ((mode == SHOW_UNLIMITED || mode == SHOW_WITH_TIMEOUT) && escapePressed())
            return UTI_DIALOG_CANCELLED;
    } while (result == stateRefresh);
    return result;
}

// --- the road of every dialog

void installCallbacks(const DialogRequest &request) {
    if (request.needToBreak)
        NeedToBreakFunction = request.needToBreak;
    if (request.refresh)
        RefreshDialogFunction = request.refresh;
    if (request.keyPostProcessing)
        KeyPostProcessingFunction = request.keyPostProcessing;
}

void clearCallbacks() {
    NeedToBreakFunction = nullptr;
    RefreshDialogFunction = nullptr;
    KeyPostProcessingFunction = nullptr;
    refLabelData = nullptr;
}

// The steps of an entry point that adds nothing to the road. Each that returns a code ends the
// dialog with a negative one.
struct PlainSteps {
    static constexpr bool takesLabels = true;
    static constexpr bool takesCallbacks = true;
    static constexpr bool clearsOnFailure = true;

    int32_t afterDescription() { return UTI_OK; }
    void assignValues() {}
    int32_t afterControls() { return UTI_OK; }
    void afterTimeout() {}
    int32_t run() { return Dialogs_RunForm(SHOW_WITH_TIMEOUT); }
};

// Everything up to the run. Returns 0 or the negative code that ends the dialog.
template <class Steps>
int32_t prepareDialog(const DialogRequest &request, DialogType type, Steps &steps) {
    Dialogs_ResetControls();
    int32_t result = GetDialogParameters(request.module, request.resourceId, type);
    if (result < 0)
        return result;
    result = steps.afterDescription();
    if (result < 0)
        return result;

    Dialogs_OverrideColors(request.colors);
    steps.assignValues();
    if (request.text && currentGraphicEditParameters.count > 0)
        setValue(currentGraphicEditParameters.entries[0].valueBuffer, request.text);
    if (Steps::takesLabels)
        Dialogs_FillLabels(request.labelValues);

    result = IG_CreateForm(request.caption, currentDialogTrasparency, currentDialogPositionType,
                           currentDialogBorder);
    if (result < 0)
        return result;
    IG_CreateControls();
    result = steps.afterControls();
    if (result < 0)
        return result;

    if (request.timeout != 0)
        currentDialogTimeout = request.timeout;
    if (Steps::takesCallbacks)
        installCallbacks(request);
    steps.afterTimeout();

    const int32_t display = Display_GetHandle();
    return display < 0 ? display : igUI_Add(display, currentForm);
}

template <class Steps>
int32_t performDialog(const DialogRequest &request, DialogType type, Steps steps) {
    if (dialogDeactivate != 0)
        return UTI_OK;

    int32_t result = prepareDialog(request, type, steps);
    const bool prepared = result >= 0;
    if (prepared)
        result = steps.run();
    if (prepared || Steps::clearsOnFailure)
        clearCallbacks();
    if (result == UTI_DIALOG_BROKEN_OFF && UserDialogResult < 0)
        result = UserDialogResult;
    UserDialogResult = 0;
    EndDialog = 0; // an Escape of this dialog does not cancel the next
    return result;
}

// --- message

struct MessageSteps : PlainSteps {
    const DialogRequest &request;
    uint32_t mode;

    MessageSteps(const DialogRequest &wanted, uint32_t showMode)
        : request(wanted), mode(showMode) {}

    void assignValues() const {
        char(&image)[DIALOG_TEXT + 1] = currentGraphicStaticTextParameters.entries[0].image;
        if (currentGraphicStaticTextParameters.count > 0)
            IG_GetFullImagePath(request.imageName, image, sizeof image);
    }

    void afterTimeout() {
        if (mode == SHOW_SHORTLY)
            currentDialogTimeout = shortMessageTicks;
        else if (currentDialogTimeout == 0)
            mode = SHOW_AND_RETURN;
    }

    int32_t run() {
        const int32_t result = Dialogs_RunForm(mode);
        return request.needToBreak && request.needToBreak() != 0 ? UTI_DIALOG_BROKEN_OFF : result;
    }
};

// --- confirmation and selection

struct ConfirmationSteps : PlainSteps {
    static constexpr bool clearsOnFailure = false;
    const ConfirmationRequest &request;

    explicit ConfirmationSteps(const ConfirmationRequest &wanted) : request(wanted) {}

    void assignValues() {
        const auto buttons = entriesOf(currentGraphicButtonParameters);
        const char *const texts[] = {request.firstButton, request.secondButton};
        for (std::size_t i = 0; i < std::min(buttons.size(), std::size(texts)); ++i)
            setValue(buttons[i].valueBuffer, texts[i] ? texts[i] : "");
    }
};

void appendSuffix(GraphicButtonEntry &button, const char *suffix) {
    if (!suffix || *suffix == 0)
        return;
    const std::size_t length = strnlen(button.image, imageNameSize - 1);
    const std::size_t room = imageNameSize - 1 - length;
    const std::size_t count = strnlen(suffix, room);
    std::memcpy(button.image + length, suffix, count);
    button.image[length + count] = 0;
    if (suffix[count] != 0)
        asserts.report();
}

struct SelectionSteps : ConfirmationSteps {
    static constexpr bool clearsOnFailure = true;
    static constexpr bool takesLabels = false;
    static constexpr bool takesCallbacks = false;
    const char *const suffixes[2];

    SelectionSteps(const ConfirmationRequest &wanted, const char *first, const char *second)
        : ConfirmationSteps(wanted), suffixes{first, second} {}

    void assignValues() {
        ConfirmationSteps::assignValues();
        const auto buttons = entriesOf(currentGraphicButtonParameters);
        for (std::size_t i = 0; i < std::min(buttons.size(), std::size(suffixes)); ++i)
            appendSuffix(buttons[i], suffixes[i]);
    }
};

// --- signature

struct SignatureSteps : PlainSteps {
    static constexpr bool takesLabels = false;
    const char *fileName;

    explicit SignatureSteps(const char *file) : fileName(file) {}

    static int32_t box() { return currentGraphicSignatureParameters.entries[0].handle; }

    int32_t run() const {
        igSignBox_SetLineWidth(box(), 2);
        const int32_t result = Dialogs_RunForm(SHOW_WITH_TIMEOUT);
        if (result < 0)
            return result;
        const int32_t saved = igSignBox_SaveData(box(), fileName);
        if (saved < 0)
            return toolkitFailure(saved);
        return saved == 0 ? UTI_DIALOG_NOTHING_SAVED : UTI_OK;
    }
};

// --- edit

struct EditSteps : PlainSteps {
    const EditRequest &request;
    std::span<char> buffer;

    EditSteps(const EditRequest &wanted, std::span<char> text) : request(wanted), buffer(text) {}

    // The second edit is the one that is edited.
    static GraphicEditEntry &main() { return currentGraphicEditParameters.entries[1]; }
    static bool hasMain() { return currentGraphicEditParameters.count >= 2; }
    static GraphicIpEditEntry &ip() { return currentGraphicIpEditParameters.entries[0]; }
    static bool hasIp() { return currentGraphicIpEditParameters.count > 0; }

    std::string_view bufferText() const {
        return {buffer.data(), strnlen(buffer.data(), buffer.size())};
    }

    void assignValues() {
        if (buffer.data() && hasMain()) {
            assignMain(main());
        } else if (hasIp()) {
            ip().valueBuffer = buffer.data() ? Dialogs_CopyText(bufferText()) : nullptr;
            keepUntilReset(ip().valueBuffer);
        }
    }

    void assignMain(GraphicEditEntry &entry) const {
        const std::size_t length =
            request.pattern ? strnlen(request.pattern, DIALOG_LONG_TEXT + 1) : 0;
        if (length > 0 && length <= DIALOG_LONG_TEXT)
            setField(entry.pattern, {request.pattern, length});
        if (request.fillSymbol != 0)
            entry.fillSymbol = request.fillSymbol;
        if (const InputLimits *limits = request.limits) {
            entry.maxLength = limits->maxLength;
            entry.secondLength = limits->minLength;
            if (limits->kind >= 1 && limits->kind <= 3)
                entry.inputType = limits->kind - 1;
        }
        setValue(entry.valueBuffer, bufferText());
        if (request.radix != 0)
            entry.radix = request.radix;
        if (request.option == 1)
            entry.inputFlagF = 1;
    }

    int32_t afterControls() const {
        igForm_SetFocused(currentForm, main().handle);
        if (request.keyPressed && igWidget_GetType(main().handle) == IG_WIDGET_INPUT &&
            (main().radix == 0 || main().inputFlagF == 1))
            igInput_SetUserFunc(main().handle, Dialogs_EditKeyHook, 0, 0, 0);
        return UTI_OK;
    }

    void takeText() {
        if (buffer.empty())
            return;
        std::fill(buffer.begin(), buffer.end(), '\0');
        if (!hasMain()) {
            if (hasIp())
                igIPInput_GetIPtext(ip().handle, buffer.data(),
                                    static_cast<uint32_t>(buffer.size()));
            return;
        }
        const bool multiLine = igWidget_GetType(main().handle) == IG_WIDGET_MULTI_LINE;
        const char *text =
            multiLine ? igMultiLine_GetValue(main().handle) : igInput_GetValue(main().handle);
        if (text)
            std::memcpy(buffer.data(), text, strnlen(text, buffer.size() - 1));
    }

    // A buffer too small for the shortest length is long enough when it is full.
    bool isTooShort() const {
        return main().handle > 0 && !buffer.empty() &&
               bufferText().size() < std::min<std::size_t>(main().secondLength, buffer.size() - 1);
    }

    int32_t run() {
        if (request.keyPressed)
            currentKeyPressedCallback = request.keyPressed;
        int32_t result;
        do {
            installCallbacks(request.dialog);
            result = Dialogs_RunForm(SHOW_WITH_TIMEOUT);
            takeText();
        } while (result >= 0 && isTooShort());
        currentKeyPressedCallback = nullptr;
        igUI_SetKeyboard(Display_GetHandle(), IG_KeyPushCallback);
        return result;
    }
};

// --- list

// The key codes that terminals of these types scroll with.
bool scrollsByKey(int32_t terminalType) {
    return terminalType == 23 || terminalType == 24;
}

uint32_t menuStyle(const GraphicMenuEntry &entry) {
    uint32_t style = IG_MENU_CONFIRM | IG_MENU_IMAGES | IG_MENU_WRAP;
    if (entry.style != 0)
        style |= IG_MENU_DIGITS | IG_MENU_SHOW_DIGITS;
    if (entry.styleFlag != 0)
        style |= IG_MENU_SCROLL_BAR;
    return style;
}

struct ListSteps : PlainSteps {
    static constexpr std::size_t mostAccelerators = 9;
    std::span<const ListItem> items;
    int32_t menu = 0;

    explicit ListSteps(std::span<const ListItem> wanted) : items(wanted) {}

    static GraphicMenuEntry &entry() { return currentGraphicMenuParameters.entries[0]; }

    int32_t afterDescription() {
        return currentGraphicMenuParameters.count == 0 ? UTI_DIALOG_NOT_FOUND : UTI_OK;
    }

    int32_t addItems() const {
        for (const ListItem &item : items) {
            char path[imageNameSize] = {};
            IG_GetFullImagePath(item.imageName, path, sizeof path);
            const int32_t image = igImage_CreateFromFile(path);
            const IgMenuItem record{item.word1, item.word2, item.word3, item.flag};
            const int32_t result = igMenuBox_AddItemExt2(menu, &record, image, entry().font);
            if (result < 0)
                return toolkitFailure(result);
        }
        return UTI_OK;
    }

    void dressMenu() const {
        const ColorSet &colors = entry().colors;
        igMenuBox_SetItemsTransparency(menu, entry().transparency);
        igWidget_SetBorder(menu, entry().border);
        setColors(menu, colors, igWidget_SetActiveColor, igWidget_SetPassiveColor);
        setColors(menu, colors, igMenuBox_SetItemsActiveColor, igMenuBox_SetItemsPassiveColor);
        igMenuBox_SetItemsActiveBorder(menu, 1);
    }

    void setKeys() const {
        const uint8_t(&keys)[4] = entry().keys;
        const bool scrolls = scrollsByKey(Terminal_GetType());
        const uint8_t up = keys[2] != 0 ? keys[2] : scrolls ? IG_KEY_UP : 0;
        const uint8_t down = keys[3] != 0 ? keys[3] : scrolls ? IG_KEY_DOWN : 0;
        if (keys[0] != 0 || keys[1] != 0 || up != 0 || down != 0)
            igMenuBox_SetControlCodes(menu, up, down, keys[0], keys[1]);
    }

    void setRows() const {
        const bool narrow =
            entry().style != 0 && entry().accelFontMode == 1 && items.size() <= mostAccelerators;
        if (entry().option == 0)
            igMenuBox_SetRowDelta(menu, narrow ? 4 : 8);
        if (entry().accelFontMode <= 2)
            igMenuBox_SetAccelFont(menu, entry().accelFontMode == 0
                                             ? uint16_t{3}
                                             : static_cast<uint16_t>(entry().accelFontMode));
    }

    static int32_t addElements() {
        for (GraphicMenuElement &element : std::span(entry().elements, entry().elementCount)) {
            const Frame at = frameOf(element.area);
            const int32_t handle = igStatic_Create(at.x, at.y, at.width, at.height, nullptr,
                                                   igImage_CreateFromFile(element.image));
            if (handle < 0)
                return toolkitFailure(handle);
            element.handle = handle;
            igWidget_SetBorder(handle, 0);
            igWidget_SetTransparency(handle, 1);
            const int32_t added = addToForm(handle);
            if (added < 0)
                return added;
        }
        return UTI_OK;
    }

    int32_t afterControls() {
        Rectangle &area = entry().area;
        if (area.left == 0 && area.top == 0 && area.right == 0 && area.bottom == 0) {
            area.right = static_cast<uint16_t>(igForm_GetClientWidth(currentForm));
            area.bottom = static_cast<uint16_t>(igForm_GetClientHeight(currentForm));
        }
        const Frame at = frameOf(area);
        menu = igMenuBox_Create(at.x, at.y, at.width, at.height, entry().option != 0 ? 1 : 0,
                                menuStyle(entry()));
        if (menu < 0)
            return toolkitFailure(menu);
        const int32_t filled = addItems();
        if (filled < 0)
            return filled;
        dressMenu();
        setKeys();
        setRows();
        const int32_t added = addToForm(menu);
        if (added < 0)
            return added;
        const int32_t indicated = addElements();
        if (indicated < 0)
            return indicated;

        entry().handle = menu;
        igForm_Reset(currentForm);
        IG_AdditionalListElements();
        return UTI_OK;
    }

    int32_t run() const {
        const int32_t result = Dialogs_RunForm(SHOW_WITH_TIMEOUT);
        if (result < 0)
            return result;
        const int32_t selected = igMenuBox_GetSelected(menu);
        return selected < 0 ? toolkitFailure(selected) : selected - 1;
    }
};

} // namespace
} // namespace uti

using namespace uti;

int32_t DialogMessage_Show(const DialogRequest *request, uint32_t mode) {
    if (!request)
        return asserts.fail(UTI_DIALOG_NOT_FOUND);
    return performDialog(*request, DIALOG_MESSAGE, MessageSteps(*request, mode));
}

int32_t DialogConfirmation_DoModal(const ConfirmationRequest *request) {
    if (!request)
        return asserts.fail(UTI_DIALOG_NOT_FOUND);
    return performDialog(request->dialog, DIALOG_CONFIRMATION, ConfirmationSteps(*request));
}

int32_t DialogSelect_DoModal_IG(const ConfirmationRequest *request, const char *firstSuffix,
                                const char *secondSuffix) {
    if (!request)
        return asserts.fail(UTI_DIALOG_NOT_FOUND);
    return performDialog(request->dialog, DIALOG_CONFIRMATION,
                         SelectionSteps(*request, firstSuffix, secondSuffix));
}

int32_t DialogEdit_DoModal(const EditRequest *request, char *buffer, uint32_t size) {
    if (!request)
        return asserts.fail(UTI_DIALOG_NOT_FOUND);
    return performDialog(request->dialog, DIALOG_EDIT,
                         EditSteps(*request, {buffer, buffer ? size : 0}));
}

int32_t DialogList_DoModal(const ListRequest *request) {
    if (!request)
        return asserts.fail(UTI_DIALOG_NOT_FOUND);
    const std::size_t count = request->items ? request->itemCount : 0;
    return performDialog(request->dialog, DIALOG_LIST, ListSteps({request->items, count}));
}

int32_t DialogSignature_DoModal(const DialogRequest *request, const char *fileName) {
    if (!request)
        return asserts.fail(UTI_DIALOG_NOT_FOUND);
    return performDialog(*request, DIALOG_SIGNATURE, SignatureSteps(fileName));
}
