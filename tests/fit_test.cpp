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
#include <map>

using namespace uti;
using namespace uti::tool;
using host::Rect, host::Size, host::Surface;

namespace {

// How many pixels there are of each color: where a text stands does not matter.
using Ink = std::map<host::Color, int>;

void count(const Surface &surface, const Rect &area, Ink &ink, int by) {
    for (int y = area.y; y < area.bottom(); ++y)
        for (int x = area.x, first = x; x < area.right(); first = x) {
            const host::Color color = surface.row(y)[x];
            while (x < area.right() && surface.row(y)[x] == color)
                ++x;
            if ((ink[color] += by * (x - first)) == 0)
                ink.erase(color);
        }
}

template <class Draw>
void countDrawn(Size size, host::Color ground, Draw draw, Ink &ink, int by) {
    Surface surface(size);
    host::Painter painter(surface, surface.area());
    painter.fill(surface.area(), ground);
    draw(painter);
    count(surface, surface.area(), ink, by);
}

// What the caption and each widget of a form show, and what they show with more room.
struct Seen {
    std::vector<Ink> shown, whole;
    std::string dump;

    void look(const host::Form &form, int by) {
        shown.resize(form.widgets.size() + 1);
        whole.resize(shown.size());
        host::display().redraw();
        dump = host::dump(host::display());
        count(host::display().surface(), form.header(), shown[0], by);
        countDrawn(
            {900, 60}, form.headerColors.background,
            [&](host::Painter &painter) {
                painter.text({}, form.caption, form.stage.fonts.at(form.headerFont),
                             form.headerColors.foreground);
            },
            whole[0], by);
        for (std::size_t i = 1; i < shown.size(); ++i) {
            host::Widget &widget = *form.widgets[i - 1];
            const auto draw = [&](host::Painter &painter) { widget.draw(painter); };
            const Rect area = widget.area;
            countDrawn(area.size(), 0x8410, draw, shown[i], by);
            widget.area.width += 400;
            widget.area.height +=
                widget.describe().kind == "menu" ? 0 : 160; // or items come into sight
            countDrawn(widget.area.size(), 0x8410, draw, whole[i], by);
            widget.area = area;
        }
    }
};

std::vector<NamedText *> textsOf(DialogTexts &texts) {
    std::vector<TextChoice *> choices{&texts.caption, &texts.text};
    for (auto *each : {&texts.buttons, &texts.items})
        for (TextChoice &choice : *each)
            choices.push_back(&choice);
    for (auto &[name, choice] : texts.labels)
        choices.push_back(&choice);
    std::erase_if(choices, [](const TextChoice *each) { return each->empty(); });
    std::vector<NamedText *> first;
    for (TextChoice *each : choices)
        each->resize(1), first.push_back(&each->front());
    return first;
}

// Lengthens one text of a dialog until it is cut.
void lengthen(const ResourceSource &source, SourceDialog dialog, std::size_t which,
              const std::string &language) {
    const CodePage &codePage = source.codePageOf(language);
    host::display().stage().fonts.use(codePage.name());
    const auto load = [&] {
        Resource_SetLanguage(language.c_str());
        Dialogs_ResetControls();
        GetDialogParameters(LibraryAnswers::module, dialog.id, DIALOG_MESSAGE);
    };
    const auto look = [&](const DialogTexts &texts, int by, Seen &seen) {
        load();
        lookAtDialog(LibraryAnswers::module, dialog.id,
                     resolveTexts(texts, source.file, codePage, language),
                     [&](const host::Form &form) { seen.look(form, by); });
    };
    DialogTexts blank = dialog.texts;
    for (NamedText *text : textsOf(blank))
        *text = {std::nullopt, " ", {}, {}};
    Seen without;
    look(blank, -1, without);

    NamedText &text = *textsOf(dialog.texts)[which];
    std::string longer = codePage.toUtf8(resolveText(text, source.file, codePage, language));
    for (int step = 0; step < 120; ++step) {
        text = {std::nullopt, longer, {}, {}};
        Seen seen = without;
        look(dialog.texts, 1, seen);
        const bool isCut = seen.shown != seen.whole;
        const bool isNoted = seen.dump.find(" cut") != std::string::npos;
        Diagnostics found("", "");
        load();
        checkForm({source, dialog, language, LibraryAnswers::module}, found);
        ASSERT_EQ(isNoted, isCut) << seen.dump;
        ASSERT_EQ(!found.isEmpty(), isCut) << longer;
        ASSERT_FALSE(isCut && step == 0) << "a false alarm: " << longer;
        if (isCut)
            return;
        longer += step % 6 == 4 ? " " : language == "ru" || language == "uk" ? "ж" : "w";
    }
    FAIL() << "it fits at any length: " << longer;
}

TEST(Fit, IsWhatTheDisplayShows) {
    setenv("UTI_QUIET", "1", 1);
    for (const std::filesystem::path path : {UTI_SHOP, UTI_FIT}) {
        Diagnostics diagnostics(path, readInput(path));
        const ResourceSource source = readResourceSource(diagnostics);
        ASSERT_FALSE(diagnostics.hasErrors());
        const LibraryAnswers library(writeResourceFile(source.file));
        std::filesystem::current_path(path.parent_path());
        for (SourceDialog dialog : source.dialogs)
            for (const std::string &language : dialog.languages)
                for (std::size_t which = 0; which < textsOf(dialog.texts).size(); ++which) {
                    SCOPED_TRACE(concat(dialog.name, " in ", language, ", text ", which));
                    lengthen(source, dialog, which, language);
                }
    }
}

} // namespace
