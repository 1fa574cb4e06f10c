// check.cpp: the rules that need no toolkit: strings against those of the first language, and the
// records that the library fills from each description.
#include "tools/check.h"

#include "toolkit.h"
#include "tools/dialog_values.h"
#include "tools/library_answers.h"

#include <algorithm>
#include <cstdlib>
#include <set>

namespace uti::tool {

namespace {

namespace fs = std::filesystem;

// --- strings

// A word that a translator would translate: no number, no file name, no lone sign.
bool hasWord(std::string_view utf8) {
    if (utf8.find(' ') == utf8.npos && utf8.find_first_of("./_") != utf8.npos)
        return false;
    std::size_t letters = 0;
    std::size_t most = 0;
    while (!utf8.empty()) {
        const char32_t character = takeCharacter(utf8);
        const bool isLetter = (character | 0x20) - 'a' < 26u || character >= 0xC0;
        letters = isLetter ? letters + 1 : 0;
        most = std::max(most, letters);
    }
    return most >= 3;
}

void checkPlaceholders(const StringName &string, std::string_view first, std::string_view other,
                       const std::string &firstLanguage, const std::string &language,
                       Diagnostics &diagnostics) {
    const auto wanted = signatureOf(first);
    const auto found = signatureOf(other);
    const Place place = string.texts.at(language);
    if (wanted != found && report(diagnostics, rule::placeholders, place, string.name, " has in ",
                                  language, " the placeholders ", spelledOut(found), " and in ",
                                  firstLanguage, ' ', spelledOut(wanted)))
        diagnostics.note(string.texts.at(firstLanguage), firstLanguage, " is here");
}

// Holds every text against the one in the first language of the source that has it.
void checkStrings(const ResourceSource &source, Missing missing, Diagnostics &diagnostics) {
    struct Same {
        const StringName *string;
        const std::string *first;
    };
    std::map<std::string, std::vector<Same>> same;
    for (const StringName &string : source.names) {
        const AllowedHere allowed(diagnostics, string.allowed);
        const std::string *first = nullptr;
        for (const Language &language : source.languages) {
            if (!string.texts.contains(language.code))
                continue;
            if (!first) {
                first = &language.code;
                continue;
            }
            const std::string_view one = stringIn(source.file, *first, string.id);
            const std::string_view other = stringIn(source.file, language.code, string.id);
            checkPlaceholders(string, one, other, *first, language.code, diagnostics);
            const std::string text = source.codePageOf(*first).toUtf8(one);
            if (text == source.codePageOf(language.code).toUtf8(other) && hasWord(text) &&
                !diagnostics.allowed().contains(rule::missing.name))
                same[language.code].push_back({&string, first});
        }
    }
    for (const auto &[language, strings] : same) {
        const std::size_t more = missing == Missing::named ? 0 : strings.size() - 1;
        for (const auto &[string, first] : strings) {
            const std::string others =
                more == 0 ? "" : concat(" and ", more, more == 1 ? " other" : " others");
            report(diagnostics, rule::missing, string->texts.at(language), string->name, others,
                   more == 0 ? " says" : " say", " the same in ", language, " as in ", *first);
            if (missing == Missing::counted)
                break;
        }
    }
}

// --- dialogs

// The library stops at the first node that it refuses; each is given to it alone to find that one.
void reportRefusal(const CheckedDialog &checked, int32_t result, Diagnostics &diagnostics) {
    const SourceDialog &dialog = checked.dialog;
    const std::string_view description = stringIn(checked.source.file, checked.language, dialog.id);
    const auto root = splitNodes(description);
    const auto nodes = root && root->size() == 1 ? splitNodes(root->front().value) : std::nullopt;
    Place place = dialog.place;
    for (std::size_t i = 0; nodes && nodes->size() == dialog.controls.size() && i < nodes->size();
         ++i) {
        const std::string alone = nodeBytes(root->front().tag, (*nodes)[i].whole);
        ParserNode node;
        Dialogs_ResetControls();
        Parser_Initialize(1, 2);
        const int32_t read =
            Parser_GetRootNodeInBlock(alone.data(), static_cast<uint32_t>(alone.size()), &node);
        if (read == UTI_OK && Parser_ParseNode(&node, ParseDialog) < 0) {
            place = dialog.controls[i].place;
            break;
        }
    }
    diagnostics.error(place, "the library refuses this with ", result);
}

// A control of a dialog with a key of its own.
struct KeyUse {
    uint8_t key;
    Place place;
};

std::vector<KeyUse> keysIn(const CheckedDialog &checked) {
    std::vector<KeyUse> uses;
    std::size_t index = 0;
    for (const GraphicButtonEntry &button : entriesOf(currentGraphicButtonParameters))
        uses.push_back({button.key, checked.control(dialog::tagButton, index++).at("key")});
    index = 0;
    for (const GraphicEditEntry &edit : entriesOf(currentGraphicEditParameters))
        uses.push_back({static_cast<uint8_t>(IG_GetIGKeyCode(edit.editValue)),
                        checked.control(dialog::tagEdit, index++).at("confirm_key")});
    index = 0;
    for (const GraphicMenuEntry &menu : entriesOf(currentGraphicMenuParameters)) {
        constexpr std::string_view names[] = {"page_up_key", "page_down_key", "up_key", "down_key"};
        const SourceControl &control = checked.control(dialog::tagMenu, index++);
        for (std::size_t i = 0; i < std::size(names); ++i)
            uses.push_back({menu.keys[i], control.at(names[i])});
    }
    std::erase_if(uses, [](const KeyUse &use) { return use.key == 0; });
    return uses;
}

void checkButtons(const CheckedDialog &checked, Diagnostics &diagnostics) {
    const std::vector<KeyUse> uses = keysIn(checked);
    for (std::size_t i = 0; i < uses.size(); ++i) {
        const auto before = std::ranges::find(uses, uses[i].key, &KeyUse::key);
        if (before->place != uses[i].place &&
            report(diagnostics, rule::buttons, uses[i].place, "another control has this key"))
            diagnostics.note(before->place, "it is here");
    }
    if (currentDialogType != DIALOG_CONFIRMATION)
        return;

    const auto buttons = entriesOf(currentGraphicButtonParameters);
    const Place place = checked.dialog.place;
    // Two that cancel have one key, and a button that does not end the form is the application's.
    const bool mayCancel = std::ranges::any_of(buttons, [](const GraphicButtonEntry &button) {
        return button.option != 0 || button.key == IG_KEY_ESCAPE;
    });
    if (buttons.empty())
        report(diagnostics, rule::buttons, place, "a confirmation needs buttons");
    else if (!mayCancel)
        report(diagnostics, rule::buttons,
               checked.control(dialog::tagButton, buttons.size() - 1).place,
               buttons.size() == 1 ? "the only button" : "every button",
               " of this confirmation answers yes; one that cancels has key = \"ESCAPE\"");
}

void checkRoles(const CheckedDialog &checked, Diagnostics &diagnostics) {
    const SourceDialog &dialog = checked.dialog;
    const auto edits = entriesOf(currentGraphicEditParameters).size();
    const auto buttons = entriesOf(currentGraphicButtonParameters).size();
    const auto labels = entriesOf(currentGraphicLabelParameters).size();
    const auto find = [&](const Place &place, const auto &...parts) {
        report(diagnostics, rule::roles, place, parts...);
    };
    if (currentDialogType == DIALOG_EDIT && edits < 2 && currentGraphicIpEditParameters.count == 0)
        find(dialog.place, "an edit dialog edits its second edit, or an ip_edit; it has neither");
    if (currentDialogType == DIALOG_LIST && currentGraphicMenuParameters.count == 0)
        find(dialog.place, "a list needs a menu");
    if (currentDialogType == DIALOG_SIGNATURE && currentGraphicSignatureParameters.count == 0)
        find(dialog.place, "a signature needs a signature control to sign in");
    if (currentDialogType == DIALOG_MESSAGE && edits + labels == 0)
        find(dialog.place, "a message shows its text in its first edit; it has neither an edit "
                           "nor a label");

    const DialogTexts &texts = dialog.texts;
    if (!texts.text.empty() && edits == 0)
        find(texts.text.front().place, "the dialog has no edit to show its text");
    if (texts.buttons.size() > buttons && !texts.buttons.back().empty())
        find(texts.buttons.back().front().place, "the dialog has ", buttons, " buttons");
    if (currentDialogType != DIALOG_LIST && !texts.items.empty())
        find(texts.place, "a list alone shows items");
    if (currentDialogType != DIALOG_CONFIRMATION && !texts.buttons.empty())
        find(texts.place, "an application gives texts to the buttons of a confirmation alone");
}

// How far apart two colors are in the part that differs most.
int distance(const RgbColor &one, const RgbColor &other) {
    return std::max({std::abs(one.red - other.red), std::abs(one.green - other.green),
                     std::abs(one.blue - other.blue)});
}

constexpr int nearColors = 32; // no person reads the one on the other

void checkColors(const CheckedDialog &checked, Diagnostics &diagnostics) {
    const auto checkPair = [&](const SourceControl &control, const RgbColor &text,
                               const RgbColor &ground, std::string_view which) {
        if (const int apart = distance(text, ground); apart < nearColors)
            report(diagnostics, rule::contrast, control.at("colors"), "the ", which, " text has ",
                   apart == 0 ? "" : "nearly ", "the color of its background");
    };
    forEachControl(checked, [&](dialog::Tag kind, const SourceControl &control, const auto &entry) {
        const ColorSet &colors = entry.colors;
        const bool takesFocus = kind != dialog::tagStaticText && kind != dialog::tagLabel;
        checkPair(control, colors.passiveForeground, colors.passiveBackground, "passive");
        if (takesFocus)
            checkPair(control, colors.activeForeground, colors.activeBackground, "active");
        // A progress bar is filled with the active background.
        if (kind == dialog::tagProgressBar &&
            distance(colors.activeBackground, colors.passiveBackground) < nearColors)
            report(diagnostics, rule::contrast, control.at("colors"),
                   "the bar, of the active background, is not to be seen on the passive one");
    });
}

struct Placed {
    Rectangle area;
    const SourceControl *control;
    bool isBackdrop; // a picture or frame on which others may stand
};

void checkOverlaps(const CheckedDialog &checked, Diagnostics &diagnostics) {
    std::vector<Placed> all;
    forEachControl(checked, [&](dialog::Tag kind, const SourceControl &control, const auto &entry) {
        all.push_back({entry.area, &control, kind == dialog::tagStaticText});
    });

    const auto cover = [](const Rectangle &one, const Rectangle &other) {
        return std::max(one.left, other.left) < std::min(one.right, other.right) &&
               std::max(one.top, other.top) < std::min(one.bottom, other.bottom);
    };
    const auto holds = [](const Rectangle &outer, const Rectangle &inner) {
        return outer.left <= inner.left && outer.top <= inner.top && outer.right >= inner.right &&
               outer.bottom >= inner.bottom;
    };
    for (auto one = all.begin(); one != all.end(); ++one)
        for (auto other = one + 1; other != all.end(); ++other)
            if (cover(one->area, other->area) &&
                !(one->isBackdrop && holds(one->area, other->area)) &&
                report(diagnostics, rule::overlap, other->control->at("area"),
                       "this control and another one cover each other"))
                diagnostics.note(one->control->at("area"), "the other one is here");
}

void checkFonts(const CheckedDialog &checked, Diagnostics &diagnostics) {
    const auto checkFont = [&](const SourceControl &control, const char *name, uint16_t font) {
        if (*name && font == FONT_FALLBACK && std::string_view(name) != fontTable[FONT_FALLBACK])
            report(diagnostics, rule::font, control.at("font"), '"',
                   checked.codePage().toUtf8(name),
                   "\" gives no font: there is no such file, or six others are in use");
    };
    forEachControl(checked, [&](dialog::Tag, const SourceControl &control, const auto &entry) {
        checkFont(control, entry.fontName, entry.font);
    });
    if (currentGraphicCaptionParameters.count > 0)
        checkFont(checked.control(dialog::tagCaption, 0), currentGraphicCaptionParameters.fontName,
                  currentGraphicCaptionParameters.font);
}

void checkDialog(const CheckedDialog &checked, FormRules formRules, Diagnostics &diagnostics) {
    Resource_SetLanguage(checked.language.c_str());
    Dialogs_ResetControls();
    const int32_t result = GetDialogParameters(checked.module, checked.dialog.id, DIALOG_MESSAGE);
    if (result < 0 && result != UTI_DIALOG_OTHER_TYPE)
        return reportRefusal(checked, result, diagnostics);
    checkButtons(checked, diagnostics);
    checkRoles(checked, diagnostics);
    checkColors(checked, diagnostics);
    checkOverlaps(checked, diagnostics);
    if (formRules) {
        checkFonts(checked, diagnostics);
        formRules(checked, diagnostics);
    }
}

// What the stand-in would notice is found here.
class Silence {
public:
    Silence() {
        if (const char *value = std::getenv("UTI_QUIET"))
            before_ = value;
        setenv("UTI_QUIET", "1", 1);
    }
    ~Silence() { before_ ? setenv("UTI_QUIET", before_->c_str(), 1) : unsetenv("UTI_QUIET"); }
    Silence(const Silence &) = delete;
    Silence &operator=(const Silence &) = delete;

private:
    std::optional<std::string> before_;
};

} // namespace

const SourceControl &controlOf(const SourceDialog &source, dialog::Tag kind, std::size_t index) {
    for (const SourceControl &each : source.controls)
        if (each.tag == kind && index-- == 0)
            return each;
    return source.controls.front();
}

void check(const ResourceSource &source, const fs::path &folder, FormRules formRules,
           Missing missing, Diagnostics &diagnostics) {
    checkStrings(source, missing, diagnostics);
    const Silence silence;
    const LibraryAnswers library(writeResourceFile(source.file));
    if (library.result() != UTI_OK) {
        diagnostics.error({}, "the library cannot load the file: ", library.result());
        return;
    }
    fs::current_path(folder);
    for (const SourceDialog &dialog : source.dialogs) {
        const AllowedHere allowed(diagnostics, dialog.allowed);
        for (const std::string &language : dialog.languages)
            checkDialog({source, dialog, language, LibraryAnswers::module}, formRules, diagnostics);
    }
}

} // namespace uti::tool
