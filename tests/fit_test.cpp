// fit_test.cpp: `fit` against the pixels. Each text of the demo and of tests/fit.toml is lengthened
// by one character until it is cut; at every step the finding of `uti check`, the `cut` of a dump
// and the display itself agree. A text is cut when the widget, given more room, shows other pixels
// of it.
#include "host/toolkit/dump.h"
#include "tools/check.h"
#include "tools/dialog_run.h"
#include "tools/files.h"
#include "tools/library_answers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

using namespace uti;
using namespace uti::tool;
using host::Form, host::Painter, host::Rect, host::Size, host::Surface, host::Widget;

namespace {

using Pixels = std::vector<host::Color>;

// The pixels of a widget in an area of a size.
Pixels pixelsOf(Widget &widget, Size size) {
    const Rect before = widget.area;
    widget.area.width = size.width;
    widget.area.height = size.height;
    Surface surface(size);
    Painter painter(surface, surface.area());
    painter.fill(surface.area(), 0x8410); // below a transparent one
    widget.draw(painter);
    widget.area = before;
    return {surface.row(0), surface.row(0) + size.width * size.height};
}

Pixels pixelsOf(const Surface &surface, const Rect &area) {
    Pixels pixels;
    for (int y = area.y; y < area.bottom(); ++y)
        pixels.insert(pixels.end(), surface.row(y) + area.x, surface.row(y) + area.right());
    return pixels;
}

// How many pixels of each color a text adds or covers, wherever it stands; an image may make room.
std::vector<int> inkOf(const Pixels &with, const Pixels &without) {
    std::vector<int> ink(1 << 16);
    for (const host::Color color : with)
        ++ink[color];
    for (const host::Color color : without)
        --ink[color];
    return ink;
}

// What is to be seen of a dialog: each widget as it is and with room, and the caption.
struct Seen {
    std::vector<Pixels> widgets, roomy;
    Pixels caption, captionAlone;
    std::string dump;

    explicit Seen(const Form &form) : dump(host::dump(host::display())) {
        for (Widget *widget : form.widgets) {
            const Size size = widget->area.size();
            // Room below would bring further items into sight.
            const bool isMenu = widget->describe().kind == "menu";
            widgets.push_back(pixelsOf(*widget, size));
            roomy.push_back(
                pixelsOf(*widget, {size.width + 400, size.height + (isMenu ? 0 : 160)}));
        }
        caption = pixelsOf(host::display().surface(), form.header());
        Surface surface({900, std::max(form.header().height, 1)});
        Painter painter(surface, surface.area());
        painter.fill(surface.area(), form.headerColors.background);
        painter.ground = form.headerColors.background;
        painter.text({}, form.caption, form.stage.fonts.at(form.headerFont),
                     form.headerColors.foreground);
        captionAlone = pixelsOf(surface, surface.area());
    }

    bool isCut(const Seen &blank) const {
        for (std::size_t i = 0; i < widgets.size(); ++i)
            if (inkOf(widgets[i], blank.widgets[i]) != inkOf(roomy[i], blank.roomy[i]))
                return true;
        return inkOf(caption, blank.caption) != inkOf(captionAlone, blank.captionAlone);
    }
};

class Fit : public testing::TestWithParam<const char *> {
protected:
    Fit() : diagnostics(GetParam(), readInput(GetParam())) {
        setenv("UTI_QUIET", "1", 1);
        source = readResourceSource(diagnostics);
    }

    // The texts of a dialog, each to be changed.
    static std::vector<NamedText *> textsOf(DialogTexts &texts) {
        std::vector<TextChoice *> choices{&texts.caption, &texts.text};
        for (TextChoice &each : texts.buttons)
            choices.push_back(&each);
        for (auto &[name, choice] : texts.labels)
            choices.push_back(&choice);
        for (TextChoice &each : texts.items)
            choices.push_back(&each);
        std::vector<NamedText *> all;
        for (TextChoice *choice : choices)
            for (NamedText &text : *choice)
                all.push_back(&text);
        return all;
    }

    ResolvedTexts resolved(const DialogTexts &texts, const std::string &language) const {
        return resolveTexts(texts, source.file, source.codePages->of(language), language);
    }
    void load(const SourceDialog &dialog, const std::string &language) const {
        Resource_SetLanguage(language.c_str());
        host::display().stage().fonts.use(source.codePages->of(language).name());
        Dialogs_ResetControls();
        GetDialogParameters(LibraryAnswers::module, dialog.id, DIALOG_MESSAGE);
    }
    std::optional<Seen> look(const SourceDialog &dialog, const std::string &language) const {
        std::optional<Seen> seen;
        load(dialog, language);
        lookAtDialog(LibraryAnswers::module, dialog.id, resolved(dialog.texts, language),
                     [&](const Form &form) {
                         host::display().redraw();
                         seen.emplace(form);
                     });
        return seen;
    }
    bool isFound(const SourceDialog &dialog, const std::string &language) const {
        Diagnostics found("", "");
        load(dialog, language);
        checkForm({source, dialog, language, LibraryAnswers::module}, found);
        return std::ranges::any_of(found.findings(),
                                   [](const Finding *each) { return each->rule == "fit"; });
    }

    // Lengthens one text of a dialog. Returns whether it was cut in the end.
    bool lengthen(SourceDialog dialog, std::size_t which, const std::string &language) const {
        SourceDialog empty = dialog;
        for (NamedText *text : textsOf(empty.texts))
            *text = {std::nullopt, " ", {}, {}};
        const auto blank = look(empty, language);
        NamedText &text = *textsOf(dialog.texts)[which];
        const std::string first = source.codePages->of(language).toUtf8(
            resolveText(text, source.file, source.codePages->of(language), language));
        const char *letter = language == "ru" || language == "uk" ? "ж" : "w";
        std::string longer = first;
        for (int step = 0; step < 120; ++step) {
            text = {std::nullopt, longer, {}, {}};
            const auto seen = look(dialog, language);
            if (!seen || !blank) {
                ADD_FAILURE() << "not shown";
                return true;
            }
            const bool isCut = seen->isCut(*blank);
            const bool isNoted = seen->dump.find(" cut") != std::string::npos;
            const bool isReported = isFound(dialog, language);
            EXPECT_TRUE(isCut == isNoted && isCut == isReported && !(isCut && step == 0))
                << "pixels " << isCut << ", dump " << isNoted << ", uti check " << isReported
                << " of \"" << longer << "\" after " << step << '\n'
                << seen->dump;
            if (isCut || isNoted || isReported)
                return true;
            longer += step % 6 == 4 ? " " : letter;
        }
        return false;
    }

    Diagnostics diagnostics;
    ResourceSource source;
};

TEST_P(Fit, IsWhatTheDisplayShows) {
    ASSERT_FALSE(diagnostics.hasErrors());
    const LibraryAnswers library(writeResourceFile(source.file));
    std::filesystem::current_path(std::filesystem::path(GetParam()).parent_path());
    int texts = 0, cut = 0;
    for (const SourceDialog &dialog : source.dialogs)
        for (const std::string &language : dialog.languages) {
            SourceDialog first = dialog; // of each choice the first text
            for (TextChoice *each : {&first.texts.caption, &first.texts.text})
                each->resize(std::min<std::size_t>(each->size(), 1));
            for (auto &[name, choice] : first.texts.labels)
                choice.resize(1);
            for (std::size_t which = 0; which < textsOf(first.texts).size(); ++which, ++texts) {
                SCOPED_TRACE(concat(dialog.name, " in ", language, ", text ", which));
                cut += lengthen(first, which, language);
            }
        }
    EXPECT_EQ(cut, texts) << "of each text there is a length that does not fit";
}

INSTANTIATE_TEST_SUITE_P(Sources, Fit, testing::Values(UTI_SHOP, UTI_FIT));

} // namespace
