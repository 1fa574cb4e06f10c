// check_form.cpp: the rules that the toolkit of the desktop judges: the library builds each dialog
// with its texts, and the form is asked what is cut and what lies outside of it.
#include "host/terminal/clock.h"
#include "host/terminal/image_path.h"
#include "host/toolkit/display.h"
#include "tools/check.h"
#include "tools/rules.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <functional>
#include <memory>

namespace uti::tool {

namespace {

// Looks at each form once and has it cancelled.
class Examiner final : public host::Face {
public:
    using Look = std::function<void(const host::Form &)>;

    void show(const host::Surface &, const host::Rect &) override {}
    std::optional<host::Event> next(uint32_t milliseconds) override {
        const host::Form *form = host::display().running();
        if (!form) {
            host::pass(milliseconds);
            return std::nullopt;
        }
        if (const Look look = std::exchange(look_, nullptr))
            look(*form);
        return host::Event{.kind = host::Event::Kind::close};
    }

    void expect(Look look) { look_ = std::move(look); }

private:
    Look look_;
};

// The one behind the display, on a clock that does not wait.
Examiner &examiner() {
    static Examiner *const one = [] {
        host::useVirtualClock();
        auto owned = std::make_unique<Examiner>();
        Examiner *const made = owned.get();
        host::display().useFace(std::move(owned));
        return made;
    }();
    return *one;
}

// Runs a dialog, whose records are filled, with its texts.
int32_t run(const CheckedDialog &checked, const ResolvedTexts &texts) {
    constexpr uint32_t day = 24 * 60 * 60 * 1000; // or a message would not wait at all
    // Without a name a caption is short; its line takes room from the form.
    const std::string caption = texts.caption.value_or(
        checked.dialog.texts.areNamed() || currentGraphicCaptionParameters.count == 0 ? "" : "-");
    std::vector<LabelValue> labels;
    for (const auto &[name, text] : texts.labels)
        labels.push_back({name.c_str(), text.c_str()});
    labels.push_back({});
    DialogRequest request{};
    request.resourceId = checked.dialog.id;
    request.module = checked.module;
    request.caption = caption.empty() ? nullptr : caption.c_str();
    request.text = texts.text ? texts.text->c_str() : nullptr;
    request.imageName = texts.image.empty() ? nullptr : texts.image.c_str();
    request.labelValues = labels.data();
    request.timeout = day;

    const auto textOf = [](const std::vector<std::string> &all, std::size_t index) {
        return index < all.size() ? all[index].c_str() : nullptr;
    };
    switch (currentDialogType) {
    case DIALOG_MESSAGE:
        return DialogMessage_Show(&request, SHOW_UNLIMITED);
    case DIALOG_CONFIRMATION: {
        const ConfirmationRequest question{request, textOf(texts.buttons, 1),
                                           textOf(texts.buttons, 0)};
        if (texts.suffixes.size() >= 2)
            return DialogSelect_DoModal_IG(&question, texts.suffixes[0].c_str(),
                                           texts.suffixes[1].c_str());
        return DialogConfirmation_DoModal(&question);
    }
    case DIALOG_EDIT: {
        EditRequest edit{};
        edit.dialog = request;
        char buffer[DIALOG_LONG_TEXT + 1] = "";
        return DialogEdit_DoModal(&edit, buffer, sizeof buffer);
    }
    case DIALOG_LIST: {
        std::vector<ListItem> items(texts.items.size());
        for (std::size_t i = 0; i < items.size(); ++i)
            items[i].word1 = std::bit_cast<uintptr_t>(texts.items[i].c_str());
        const ListRequest list{request, items.data(), static_cast<uint16_t>(items.size())};
        return DialogList_DoModal(&list);
    }
    default:
        return DialogSignature_DoModal(&request, "/dev/null");
    }
}

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
            report(diagnostics, rule::image, place, "the image ",
                   checked.codePage().toUtf8(name), wrong);
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
    Examiner &person = examiner();
    host::display().stage().fonts.use(checked.codePage().name());
    checkImages(checked, diagnostics);
    const SourceDialog &dialog = checked.dialog;
    for (std::size_t variant = 0; variant < variantsOf(dialog.texts); ++variant) {
        bool isShown = false;
        person.expect([&](const host::Form &form) {
            isShown = true;
            reportLost(checked, diagnostics);
            if (variant == 0)
                checkPlaces(checked, form, diagnostics);
            checkFit(checked, form, diagnostics);
        });
        const int32_t result =
            run(checked, resolveTexts(dialog.texts, checked.source.file, checked.codePage(),
                                      checked.language, variant));
        person.expect(nullptr);
        // A list without a menu, say, which has a rule of its own.
        if (!isShown && result != UTI_DIALOG_NOT_FOUND)
            diagnostics.error(dialog.place, "the library cannot show it in ", checked.language,
                              ": ", result);
    }
}

} // namespace uti::tool
