// utiDialogsModal.cpp: the run of a modal dialog, the road of every kind of dialog, and the kinds
// that need no room of their own. Stands on the records, the form, the events and the toolkit.
#include "Src/utiDialogsModal.h"

#include "Src/utiDialogsEvents.h"
#include "Src/utiDialogsForm.h"
#include "Src/utiDialogsRecords.h"
#include "terminal.h"
#include "toolkit.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace uti {
namespace {

constexpr Assertions<"Src/utiDialogs"> asserts;

constexpr uint32_t pollMilliseconds = 100;
constexpr uint32_t shortMessageTicks = 1000;
// The image field takes this much of a name with its suffix.
constexpr std::size_t imageNameSize = 128;

constexpr DialogKind message{.type = DIALOG_MESSAGE};
constexpr DialogKind confirmation{.type = DIALOG_CONFIRMATION, .clearsOnFailure = false};
constexpr DialogKind selection{.type = DIALOG_CONFIRMATION, .labels = false, .callbacks = false};
constexpr DialogKind signature{.type = DIALOG_SIGNATURE, .labels = false};

// --- the run

// A form waits for its end; what is called now is called from its callbacks.
constinit bool isWaiting = false;

using SetText = int32_t (*)(int32_t widget, const char *text);

// The operation that gives a widget another text, or null when it has none.
SetText setterOf(int32_t widget) {
    switch (igWidget_GetType(widget)) {
    case IG_WIDGET_MULTI_LINE:
        return igMultiLine_SetValue;
    case IG_WIDGET_INPUT:
    case IG_WIDGET_PATTERN_INPUT:
        return igInput_SetValue;
    default:
        return nullptr;
    }
}

void refreshEntries(std::span<GraphicEditEntry> entries) {
    for (GraphicEditEntry &entry : entries) {
        if (entry.name[0] == 0)
            continue;
        for (const LabelValue *each = refLabelData; each && each->name && each->value; ++each) {
            if (std::strcmp(each->name, entry.name) != 0)
                continue;
            // A widget may go on reading the text that it has until it has taken another.
            char *text = Dialogs_CopyText(each->value);
            const SetText setText = setterOf(entry.handle);
            const bool taken = setText ? setText(entry.handle, text) >= 0 : entry.handle == 0;
            std::free(taken ? std::exchange(entry.valueBuffer, text) : text);
            if (setText)
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

} // namespace

int32_t Dialogs_RunForm(uint32_t mode) {
    const int32_t display = Display_GetHandle();
    if (display < 0)
        return toolkitFailure(display);
    const uint32_t turn = dialogTurn;
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
        const bool wasWaiting = std::exchange(isWaiting, true);
        while (dialogTurn == turn && igUI_IsModal() != 0) {
            Wait(1);
            WaitSleep(pollMilliseconds);
        }
        isWaiting = wasWaiting;
        // A callback has shown something else in place of this dialog: no state is its own now.
        if (dialogTurn != turn)
            return asserts.fail(UTI_DIALOG_CANCELLED);

        result = resultOfState(igForm_GetState(currentForm), allowed);
        if (result == UTI_DIALOG_TIME_OUT && mode == SHOW_WITH_TIMEOUT)
            return result;
        if ((mode == SHOW_UNLIMITED || mode == SHOW_WITH_TIMEOUT) && escapePressed())
            return UTI_DIALOG_CANCELLED;
    } while (result == stateRefresh);
    return result;
}

// --- the road of every dialog

namespace {

// Everything up to the run. Returns 0 or the negative code that ends the dialog.
int32_t prepareDialog(const DialogRequest &request, const DialogKind &kind, DialogSteps &steps) {
    Dialogs_ResetControls();
    int32_t result = GetDialogParameters(request.module, request.resourceId, kind.type);
    if (result < 0)
        return result;
    result = steps.afterDescription();
    if (result < 0)
        return result;

    Dialogs_OverrideColors(request.colors);
    steps.assignValues();
    if (request.text && currentGraphicEditParameters.count > 0)
        setValue(currentGraphicEditParameters.entries[0].valueBuffer, request.text);
    if (kind.labels)
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
    if (kind.callbacks)
        installCallbacks(request);
    steps.afterTimeout();

    const int32_t display = Display_GetHandle();
    return display < 0 ? display : igUI_Add(display, currentForm);
}

} // namespace

int32_t performDialog(const DialogRequest &request, const DialogKind &kind, DialogSteps &steps) {
    if (dialogDeactivate != 0)
        return UTI_OK;

    if (isWaiting) // the functions of the dialog below would be asked, and might show this one
                   // again
        clearCallbacks();
    int32_t result = prepareDialog(request, kind, steps);
    const bool prepared = result >= 0;
    if (prepared)
        result = steps.run();
    if (prepared || kind.clearsOnFailure)
        clearCallbacks();
    if (result == UTI_DIALOG_BROKEN_OFF && UserDialogResult < 0)
        result = UserDialogResult;
    UserDialogResult = 0;
    EndDialog = 0; // an Escape of this dialog does not cancel the next
    return result;
}

// --- message

namespace {

struct MessageSteps final : DialogSteps {
    const DialogRequest &request;
    uint32_t mode;

    MessageSteps(const DialogRequest &wanted, uint32_t showMode)
        : request(wanted), mode(showMode) {}

    void assignValues() override {
        char(&image)[DIALOG_TEXT + 1] = currentGraphicStaticTextParameters.entries[0].image;
        if (currentGraphicStaticTextParameters.count > 0)
            IG_GetFullImagePath(request.imageName, image, sizeof image);
    }

    void afterTimeout() override {
        if (mode == SHOW_SHORTLY)
            currentDialogTimeout = shortMessageTicks;
        else if (currentDialogTimeout == 0)
            mode = SHOW_AND_RETURN;
    }

    int32_t run() override {
        const uint32_t turn = dialogTurn;
        const int32_t result = Dialogs_RunForm(mode);
        if (dialogTurn != turn)
            return result;
        return request.needToBreak && request.needToBreak() != 0 ? UTI_DIALOG_BROKEN_OFF : result;
    }
};

// --- confirmation and selection

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

struct ButtonSteps final : DialogSteps {
    const ConfirmationRequest &request;
    const std::array<const char *, 2> suffixes; // of the buttons' images; null for none

    ButtonSteps(const ConfirmationRequest &wanted, std::array<const char *, 2> endings)
        : request(wanted), suffixes(endings) {}

    void assignValues() override {
        const auto buttons = entriesOf(currentGraphicButtonParameters);
        const char *const texts[] = {request.firstButton, request.secondButton};
        for (std::size_t i = 0; i < std::min(buttons.size(), suffixes.size()); ++i) {
            setValue(buttons[i].valueBuffer, texts[i] ? texts[i] : "");
            appendSuffix(buttons[i], suffixes[i]);
        }
    }
};

// --- signature

struct SignatureSteps final : DialogSteps {
    const char *fileName;

    explicit SignatureSteps(const char *file) : fileName(file) {}

    static int32_t box() { return currentGraphicSignatureParameters.entries[0].handle; }

    int32_t run() override {
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

} // namespace
} // namespace uti

using namespace uti;

int32_t DialogMessage_Show(const DialogRequest *request, uint32_t mode) {
    if (!request)
        return asserts.fail(UTI_DIALOG_NOT_FOUND);
    MessageSteps steps(*request, mode);
    return performDialog(*request, message, steps);
}

int32_t DialogConfirmation_DoModal(const ConfirmationRequest *request) {
    if (!request)
        return asserts.fail(UTI_DIALOG_NOT_FOUND);
    ButtonSteps steps(*request, {});
    return performDialog(request->dialog, confirmation, steps);
}

int32_t DialogSelect_DoModal_IG(const ConfirmationRequest *request, const char *firstSuffix,
                                const char *secondSuffix) {
    if (!request)
        return asserts.fail(UTI_DIALOG_NOT_FOUND);
    ButtonSteps steps(*request, {firstSuffix, secondSuffix});
    return performDialog(request->dialog, selection, steps);
}

int32_t DialogSignature_DoModal(const DialogRequest *request, const char *fileName) {
    if (!request)
        return asserts.fail(UTI_DIALOG_NOT_FOUND);
    SignatureSteps steps(fileName);
    return performDialog(*request, signature, steps);
}
