// check.h: what is wrong with the meaning of a resource source that compiles (docs/check.md). The
// library reads the bytes that were made; the rules ask its records, and the toolkit's forms.
#pragma once

#include "Src/utiDialogsRecords.h"
#include "tools/resource_source.h"
#include "tools/rules.h"

#include <filesystem>

namespace uti::tool {

// The control that became the entry of that index among those of its kind; the dialog itself when
// the source has none.
const SourceControl &controlOf(const SourceDialog &source, dialog::Tag kind, std::size_t index);

// A dialog in one language, whose records the library has filled.
struct CheckedDialog {
    const ResourceSource &source;
    const SourceDialog &dialog;
    const std::string &language;
    const char *module; // as the library has loaded it

    const CodePage &codePage() const { return source.codePageOf(language); }
    // The control that became the entry of that index among those of its kind; the dialog itself
    // when the source has none.
    const SourceControl &control(dialog::Tag kind, std::size_t index) const {
        return controlOf(dialog, kind, index);
    }
};

// Visits the entries of the records, in the order in which they are drawn: their kind, where the
// source tells them, and themselves.
template <class Visit>
void forEachControl(const SourceDialog &source, Visit visit) {
    const auto visitAll = [&](dialog::Tag kind, auto &record) {
        std::size_t index = 0;
        for (const auto &entry : entriesOf(record))
            visit(kind, controlOf(source, kind, index++), entry);
    };
    visitAll(dialog::tagStaticText, currentGraphicStaticTextParameters);
    visitAll(dialog::tagButton, currentGraphicButtonParameters);
    visitAll(dialog::tagSignature, currentGraphicSignatureParameters);
    visitAll(dialog::tagEdit, currentGraphicEditParameters);
    visitAll(dialog::tagLabel, currentGraphicLabelParameters);
    visitAll(dialog::tagProgressBar, currentGraphicProgressBarParameters);
    visitAll(dialog::tagIpEdit, currentGraphicIpEditParameters);
    visitAll(dialog::tagMenu, currentGraphicMenuParameters);
}

template <class Visit>
void forEachControl(const CheckedDialog &checked, Visit visit) {
    forEachControl(checked.dialog, visit);
}

// Judges a source that was read without errors. Images are looked for from `folder`. Without rules
// for forms what they would find is left out.
void check(const ResourceSource &source, const std::filesystem::path &folder, FormRules formRules,
           Missing missing, Diagnostics &diagnostics);

// The rules of the toolkit of the desktop.
void checkForm(const CheckedDialog &dialog, Diagnostics &diagnostics);

} // namespace uti::tool
