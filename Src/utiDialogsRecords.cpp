// utiDialogsRecords.cpp: the exported parameter records of dialogs, with their reset, what a
// request overrides in them, and the texts that they own. Stands on the heap alone.
#include "Src/utiDialogsRecords.h"

#include "Src/heap.h"

#include <cstring>

constinit GraphicEditParameters currentGraphicEditParameters = {};
constinit GraphicEditParameters currentGraphicLabelParameters = {};
constinit GraphicStaticTextParameters currentGraphicStaticTextParameters = {};
constinit GraphicButtonParameters currentGraphicButtonParameters = {};
constinit GraphicIpEditParameters currentGraphicIpEditParameters = {};
constinit GraphicBoxParameters currentGraphicSignatureParameters = {};
constinit GraphicBoxParameters currentGraphicProgressBarParameters = {};
constinit GraphicMenuParameters currentGraphicMenuParameters = {};
constinit GraphicCaption currentGraphicCaptionParameters = {};
constinit GraphicDialogParameters currentGraphicDialogParameters = {};

constinit uint32_t currentDialogType = 0;
constinit uint32_t currentDialogTimeout = 0;
constinit uint32_t currentDialogTrasparency = 0;
constinit uint32_t currentDialogPositionType = 0;
constinit uint8_t currentDialogBorder = 0;
constinit Rectangle currentDialogAreaRectangle = {};

constinit EditParameters currentEditParameters = {};
constinit ListBoxParameters currentListBoxParameters = {};
constinit LabelsParameters currentLabelsParameters = {};
constinit CaptionParameters currentCaptionParameters = {};
constinit BorderParameters currentBorderParameters = {};
constinit FrameParameters currentFrameParameters = {};
constinit FooterParameters currentFooterParameters = {};
constinit ImagesParameters currentImagesParameters = {};
constinit StatusParameters currentBatteryParameters = {};
constinit StatusParameters currentSignalParameters = {};
constinit StatusParameters currentEthLinkStatusParameters = {};

constinit char *currentKeyScheme[DIALOG_KEY_SCHEME] = {};
constinit uint32_t currentShowType = 0;

namespace uti {

constinit uint32_t dialogTurn = 0;

namespace {

// At most one pattern for each edit and label, and the text of an IP edit.
constinit char *keptTexts[2 * DIALOG_CONTROLS + 1] = {};
// The texts of the dialog before; its form goes on reading them until it is taken down.
constinit char *lastTexts[std::size_t{4} * DIALOG_CONTROLS + std::size(keptTexts)] = {};
constinit bool firstReset = true;

bool equal(const RgbColor &a, const RgbColor &b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

void overrideColors(ColorSet &colors, const ColorSet &request) {
    if (!equal(request.activeBackground, request.activeForeground)) {
        colors.activeForeground = request.activeForeground;
        colors.activeBackground = request.activeBackground;
    }
    if (!equal(request.passiveBackground, request.passiveForeground)) {
        colors.passiveForeground = request.passiveForeground;
        colors.passiveBackground = request.passiveBackground;
    }
}

// Calls `take` with every text of the records and those that are kept beside them.
template <class Take>
void forEachText(Take take) {
    const auto takeValues = [&](auto &parameters) {
        for (auto &entry : entriesOf(parameters))
            take(entry.valueBuffer);
    };
    takeValues(currentGraphicStaticTextParameters);
    takeValues(currentGraphicButtonParameters);
    takeValues(currentGraphicEditParameters);
    takeValues(currentGraphicLabelParameters);
    for (char *&text : keptTexts)
        take(text);
}

} // namespace

void Dialogs_ResetControls() {
    ++dialogTurn;
    // While texts wait for a form to be taken down, it can read none of those that came later.
    const bool mayBeRead = !lastTexts[0];
    char **waiting = lastTexts;
    if (!firstReset) {
        forEachText([&](char *&text) {
            if (!mayBeRead)
                std::free(text);
            else if (text)
                *waiting++ = text;
            text = nullptr;
        });
    }
    firstReset = false;

    forEachControlRecord([](auto &record) { std::memset(&record, 0, sizeof record); });
    currentGraphicCaptionParameters = {};
    currentShowType = 0;
    std::fill(std::begin(currentKeyScheme), std::end(currentKeyScheme), nullptr);
}

void freeLastTexts() {
    for (char *text : lastTexts)
        std::free(text);
    leaveLastTexts();
}

void leaveLastTexts() {
    std::ranges::fill(lastTexts, nullptr);
}

void Dialogs_OverrideColors(ColorSet colors) {
    forEachControlRecord([&](auto &record) {
        for (auto &entry : entriesOf(record))
            overrideColors(entry.colors, colors);
    });
}

int32_t Dialogs_FillLabels(const LabelValue *values) {
    if (!values)
        return UTI_DIALOG_NULL;
    for (GraphicEditEntry &entry : entriesOf(currentGraphicLabelParameters)) {
        if (entry.name[0] == 0)
            continue;
        for (const LabelValue *each = values; each->name; ++each) {
            if (each->value && std::strcmp(each->name, entry.name) == 0) {
                setValue(entry.valueBuffer, each->value);
                break;
            }
        }
    }
    return UTI_OK;
}

std::size_t replaceLineFeeds(char *text, std::size_t length) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < length; ++i) {
        const bool pair = text[i] == '\\' && i + 1 < length && text[i + 1] == 'n';
        text[kept++] = pair ? '\n' : text[i];
        i += pair ? 1 : 0;
    }
    std::memset(text + kept, 0, length - kept);
    return kept;
}

char *Dialogs_CopyText(std::string_view text) {
    if (text.empty())
        return nullptr;
    char *copy = allocateBytes(text.size() + 1).release();
    if (!copy)
        return nullptr;
    std::memcpy(copy, text.data(), text.size());
    copy[replaceLineFeeds(copy, text.size())] = 0;
    return copy;
}

void setValue(char *&valueBuffer, std::string_view text) {
    std::free(valueBuffer);
    valueBuffer = Dialogs_CopyText(text);
}

void keepText(char *text) {
    char **place = std::ranges::find(keptTexts, nullptr);
    if (place != std::end(keptTexts))
        *place = text;
}

} // namespace uti
