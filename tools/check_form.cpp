// check_form.cpp: the rules that the toolkit of the desktop judges: the library builds each dialog
// with its texts, and the form is asked what is cut and what lies outside of it.
#include "host/terminal/image_path.h"
#include "tools/check.h"
#include "tools/dialog_run.h"
#include "tools/rules.h"

#include <algorithm>
#include <cstdlib>

namespace uti::tool {

namespace {

// --- images

// Whether the file of that name is an image, else what is wrong with it.
std::string wrongWith(const std::string &name) {
    std::error_code error;
    if (!std::filesystem::exists(host::imagePath(name), error))
        return " is not there, nor in UTI_IMAGES";
    return igImage_CreateFromFile(name.c_str()) < 0 ? " is no PNG file of up to 4096 x 4096 pixels"
                                                    : "";
}

// A name to which the application will append: files begin with it.
bool isStem(const std::string &name) {
    const std::filesystem::path path = host::imagePath(name);
    const std::string stem = path.filename().string();
    std::error_code error;
    for (std::filesystem::directory_iterator
             entry(path.has_parent_path() ? path.parent_path() : ".", error),
         end;
         !error && entry != end; entry.increment(error))
        if (entry->path().filename().string().starts_with(stem))
            return true;
    return false;
}

void checkImages(const CheckedDialog &checked, Diagnostics &diagnostics) {
    const auto checkImage = [&](const std::string &name, Place place) {
        const std::string wrong = name.empty() ? "" : wrongWith(name);
        if (!wrong.empty())
            report(diagnostics, rule::image, place, "the image ", checked.codePage().toUtf8(name),
                   wrong);
    };
    const DialogTexts &texts = checked.dialog.texts;
    checkImage(texts.image, texts.place);
    std::size_t index = 0;
    forEachControl(checked, [&](dialog::Tag, const SourceControl &control, const auto &entry) {
        using Entry = std::decay_t<decltype(entry)>;
        if constexpr (std::is_same_v<Entry, GraphicStaticTextEntry>) {
            checkImage(entry.image, control.at("image"));
        } else if constexpr (std::is_same_v<Entry, GraphicButtonEntry>) {
            const std::size_t at = index++;
            checkImage(entry.activeBackImage, control.at("active_back_image"));
            checkImage(entry.passiveBackImage, control.at("passive_back_image"));
            if (at < texts.suffixes.size())
                checkImage(entry.image + texts.suffixes[at], control.at("image"));
            else if (currentDialogType != DIALOG_CONFIRMATION || texts.areNamed() ||
                     !isStem(entry.image))
                checkImage(entry.image, control.at("image"));
        } else if constexpr (std::is_same_v<Entry, GraphicMenuEntry>) {
            const std::size_t count =
                std::min<std::size_t>(entry.elementCount, DIALOG_MENU_ELEMENTS);
            for (const GraphicMenuElement &element : std::span(entry.elements, count))
                checkImage(element.image, control.at("elements"));
        }
    });
}

// --- forms

// The control of a widget; null for one that the library adds.
const SourceControl *controlOf(const CheckedDialog &checked, const host::Widget &widget) {
    const SourceControl *found = nullptr;
    forEachControl(checked, [&](dialog::Tag, const SourceControl &control, const auto &entry) {
        if (static_cast<int32_t>(entry.handle) == widget.handle)
            found = &control;
    });
    return found;
}

void reportCut(const CheckedDialog &checked, Place place, const host::Cut &cut,
               Diagnostics &diagnostics) {
    std::string text = checked.codePage().toUtf8(cut.text);
    std::ranges::replace(text, '\n', ' ');
    const auto cells = [](host::Size size) { return concat(size.width, " x ", size.height); };
    report(diagnostics, rule::fit, place, "in ", checked.language, " \"", text,
           "\" is cut: it needs ", cells(cut.needs), " cells and has ", cells(cut.has));
}

void checkFit(const CheckedDialog &checked, const host::Form &form, Diagnostics &diagnostics) {
    const DialogTexts &texts = checked.dialog.texts;
    if (const auto cut = form.cutCaption())
        reportCut(checked, texts.caption.empty() ? checked.dialog.place : texts.caption[0].place,
                  *cut, diagnostics);
    for (const host::Widget *widget : form.widgets) {
        const SourceControl *control = controlOf(checked, *widget);
        if (const auto cut = widget->cut())
            reportCut(checked, control ? control->place : checked.dialog.place, *cut, diagnostics);
    }
}

// What reaches over the display is told when the source is read.
void checkPlaces(const CheckedDialog &checked, const host::Form &form, Diagnostics &diagnostics) {
    const host::Size room = form.client().size();
    const host::Size all = host::display().size();
    for (const host::Widget *widget : form.widgets) {
        const SourceControl *control = controlOf(checked, *widget);
        const host::Rect &area = widget->area;
        const bool isOutside = area.right() > room.width || area.bottom() > room.height;
        if (control && isOutside && area.right() <= all.width && area.bottom() <= all.height)
            report(diagnostics, rule::outside, control->at("area"), "area reaches to ",
                   area.right(), " x ", area.bottom(), "; the form has ", room.width, " x ",
                   room.height);
    }
}

// The library leaves out a control that the toolkit refuses, and all behind it.
void reportLost(const CheckedDialog &checked, Diagnostics &diagnostics) {
    bool isFound = false;
    forEachControl(checked, [&](dialog::Tag, const SourceControl &control, const auto &entry) {
        if (static_cast<int32_t>(entry.handle) <= 0 && !std::exchange(isFound, true))
            diagnostics.error(control.place, "the toolkit cannot make this control; it and those "
                                             "behind it are left out");
    });
}

} // namespace

void checkForm(const CheckedDialog &checked, Diagnostics &diagnostics) {
    host::display().stage().fonts.use(checked.codePage().name());
    checkImages(checked, diagnostics);
    const SourceDialog &dialog = checked.dialog;
    for (std::size_t variant = 0; variant < variantsOf(dialog.texts); ++variant) {
        ResolvedTexts texts = resolveTexts(dialog.texts, checked.source.file, checked.codePage(),
                                           checked.language, variant);
        // Without a name a caption is short; its line takes room from the form.
        if (!dialog.texts.areNamed() && currentGraphicCaptionParameters.count > 0)
            texts.caption = "-";
        bool isShown = false;
        const auto look = [&](const host::Form &form) {
            isShown = true;
            reportLost(checked, diagnostics);
            if (variant == 0)
                checkPlaces(checked, form, diagnostics);
            checkFit(checked, form, diagnostics);
        };
        const int32_t result = lookAtDialog(checked.module, dialog.id, texts, look);
        // A list without a menu, say, which has a rule of its own.
        if (!isShown && result != UTI_DIALOG_NOT_FOUND)
            diagnostics.error(dialog.place, "the library cannot show it in ", checked.language,
                              ": ", result);
    }
}

} // namespace uti::tool
