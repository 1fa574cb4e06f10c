// dialog_findings.cpp: from a place in a source to a place on the display.
#include "tools/dialog_findings.h"

#include "host/toolkit/form.h"
#include "tools/check.h"

#include <algorithm>
#include <map>

namespace uti::tool {

namespace {

// The places of a source from which a dialog in one language comes, each with the area of the
// display that shows it.
class PlacesOfDialog {
public:
    PlacesOfDialog(const ShownModule &module, const ShownDialog &dialog, const host::Form *form)
        : module_(module), dialog_(dialog), form_(form) {
        addControls();
        addTexts();
    }

    void collect(const Finding &finding, std::vector<PictureText> &found) const {
        const auto at = std::ranges::find_if(places_, [&](const Shown &each) {
            return each.place == finding.place && (each.only.empty() || each.only == finding.text);
        });
        const std::string_view rule = finding.rule.empty() ? "error" : finding.rule;
        if (at != places_.end())
            found.push_back({at->area, std::string(rule), finding.text});
    }

private:
    struct Shown {
        Place place;
        host::Rect area;
        std::string only; // the finding that counts, where those of other languages stand as well
    };

    void add(Place place, const host::Rect &area) { places_.push_back({place, area, {}}); }

    void addControls() {
        const SourceDialog &source = *dialog_.source;
        const host::Rect whole = form_ ? form_->area() : host::Rect{};
        add(source.place, whole);
        add(source.texts.place, whole);
        for (const SourceControl &control : source.controls)
            if (control.tag == dialog::tagCaption)
                addControl(control, form_ ? form_->header() : host::Rect{});
            else if (control.tag == dialog::tagDialogParameters)
                addControl(control, whole);
        const CodePage &codePage = module_.codePageOf(dialog_.language);
        forEachControl(source,
                       [&](dialog::Tag kind, const SourceControl &control, const auto &entry) {
                           const host::Rect area = areaOf(static_cast<int32_t>(entry.handle));
                           addControl(control, area);
                           widgets_[kind].push_back(area);
                           if constexpr (requires { entry.name; })
                               labels_.emplace(codePage.toUtf8(entry.name), area);
                       });
    }

    void addControl(const SourceControl &control, const host::Rect &area) {
        add(control.place, area);
        for (const auto &[name, place] : control.keys)
            add(place, area);
    }

    host::Rect areaOf(int32_t handle) const {
        if (form_)
            for (const host::Widget *widget : form_->widgets)
                if (widget->handle == handle)
                    return widget->area.moved(form_->client().origin());
        return {};
    }

    void addTexts() {
        const DialogTexts &texts = dialog_.source->texts;
        addText(texts.caption, form_ ? form_->header() : host::Rect{});
        addText(texts.text, widget(dialog::tagEdit, 0));
        for (std::size_t i = 0; i < texts.buttons.size(); ++i)
            addText(texts.buttons[i], widget(dialog::tagButton, i));
        for (const auto &[name, choice] : texts.labels)
            addText(choice, labels_[name]);
        for (const TextChoice &item : texts.items)
            addText(item, widget(dialog::tagMenu, 0));
    }

    host::Rect widget(dialog::Tag kind, std::size_t index) {
        const std::vector<host::Rect> &all = widgets_[kind];
        return index < all.size() ? all[index] : host::Rect{};
    }

    void addText(const TextChoice &choice, const host::Rect &area) {
        if (!choice.empty())
            addText(choice[std::min(dialog_.variant, choice.size() - 1)], area);
    }
    void addText(const NamedText &text, const host::Rect &area) {
        add(text.place, area);
        for (const StringName &string : module_.names)
            if (string.id == text.string) {
                const auto own = string.texts.find(dialog_.language);
                if (own != string.texts.end())
                    add(own->second, area);
                else
                    places_.push_back({string.place, area, lackOf(string.name, dialog_.language)});
            }
        for (const NamedText &argument : text.args)
            addText(argument, area);
    }

    const ShownModule &module_;
    const ShownDialog &dialog_;
    const host::Form *form_;
    std::vector<Shown> places_;
    std::map<dialog::Tag, std::vector<host::Rect>> widgets_;
    std::map<std::string, host::Rect> labels_;
};

} // namespace

std::vector<Finding> findingsOf(std::string path, std::string text,
                                const std::filesystem::path &folder) {
    Diagnostics diagnostics(std::move(path), std::move(text));
    const ResourceSource source = readResourceSource(diagnostics, Missing::named);
    if (!diagnostics.hasErrors())
        check(source, folder, checkForm, Missing::named, diagnostics);
    std::vector<Finding> all;
    for (const Finding *each : diagnostics.findings())
        all.push_back(*each);
    return all;
}

std::vector<PictureText> findingsAbout(const ShownModule &module, const ShownDialog &dialog,
                                       const host::Form *form) {
    std::vector<PictureText> found;
    if (!dialog.source || module.findings.empty())
        return found;
    const PlacesOfDialog places(module, dialog, form);
    for (const Finding &finding : module.findings)
        if (finding.rule != rule::fit.name)
            places.collect(finding, found);
    return found;
}

} // namespace uti::tool
