// utiDialogsEdit.cpp: the dialog in which a text or an IP address is edited. Stands on the road of
// all dialogs.
#include "Src/text.h"
#include "Src/utiDialogsEvents.h"
#include "Src/utiDialogsForm.h"
#include "Src/utiDialogsModal.h"
#include "Src/utiDialogsRecords.h"
#include "terminal.h"
#include "toolkit.h"

#include <algorithm>
#include <cstring>

namespace uti {
namespace {

constexpr Assertions<"Src/utiDialogs"> asserts;

constexpr DialogKind edit{.type = DIALOG_EDIT};

struct EditSteps final : DialogSteps {
    const EditRequest &request;
    const char *const shown;      // at first, or null
    const std::span<char> buffer; // for the text entered

    EditSteps(const EditRequest &wanted, char *text, std::size_t size)
        : request(wanted), shown(text), buffer(text, text ? size : 0) {}

    // The second edit is the one that is edited.
    static GraphicEditEntry &main() { return currentGraphicEditParameters.entries[1]; }
    static bool hasMain() { return currentGraphicEditParameters.count >= 2; }
    static GraphicIpEditEntry &ip() { return currentGraphicIpEditParameters.entries[0]; }
    static bool hasIp() { return currentGraphicIpEditParameters.count > 0; }

    void assignValues() override {
        if (shown && hasMain()) {
            assignMain(main());
        } else if (hasIp()) {
            ip().valueBuffer = shown ? Dialogs_CopyText(shown) : nullptr;
            keepText(ip().valueBuffer);
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
        setValue(entry.valueBuffer, shown);
        if (request.radix != 0)
            entry.radix = request.radix;
        if (request.option == 1)
            entry.inputFlagF = 1;
    }

    int32_t afterControls() override {
        igForm_SetFocused(currentForm, main().handle);
        if (request.keyPressed && igWidget_GetType(main().handle) == IG_WIDGET_INPUT &&
            (main().radix == 0 || main().inputFlagF == 1))
            igInput_SetUserFunc(main().handle, Dialogs_EditKeyHook, 0, 0, 0);
        return UTI_OK;
    }

    void takeText() const {
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
               strnlen(buffer.data(), buffer.size()) <
                   std::min<std::size_t>(main().secondLength, buffer.size() - 1);
    }

    int32_t run() override {
        if (request.keyPressed)
            currentKeyPressedCallback = request.keyPressed;
        const uint32_t turn = dialogTurn;
        int32_t result;
        do {
            installCallbacks(request.dialog);
            result = Dialogs_RunForm(SHOW_WITH_TIMEOUT);
            if (dialogTurn == turn) // else the records are another dialog's
                takeText();
        } while (result >= 0 && isTooShort());
        currentKeyPressedCallback = nullptr;
        igUI_SetKeyboard(Display_GetHandle(), IG_KeyPushCallback);
        return result;
    }
};

} // namespace
} // namespace uti

using namespace uti;

int32_t DialogEdit_DoModal(const EditRequest *request, char *buffer, uint32_t size) {
    if (!request)
        return asserts.fail(UTI_DIALOG_NOT_FOUND);
    EditSteps steps(*request, buffer, size);
    return performDialog(request->dialog, edit, steps);
}
