// dialog_pictures.cpp: running each dialog once, with a face that looks at its form and has it
// cancelled.
#include "tools/dialog_pictures.h"

#include "Src/utiDialogsRecords.h"
#include "host/toolkit/display.h"
#include "host/toolkit/dump.h"
#include "tools/dialog_findings.h"
#include "tools/dialog_run.h"
#include "tools/dialog_values.h"
#include "tools/files.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <stdexcept>

namespace uti::tool {

namespace {

namespace fs = std::filesystem;

bool isDialog(std::string_view bytes) {
    const auto nodes = splitNodes(bytes);
    return nodes && nodes->size() == 1 && nodes->front().tag >= firstCompoundTag;
}

// The value of a node among its siblings; empty when it is not there.
std::string_view valueOf(std::string_view siblings, uint8_t tag) {
    for (const NodeView &node : splitNodes(siblings).value_or(std::vector<NodeView>()))
        if (node.tag == tag)
            return node.value;
    return {};
}

// The type of a dialog where descriptions have it; the library finds it elsewhere, too.
uint32_t typeOf(std::string_view description) {
    const dialog::Row &row = findField(dialog::nodes[0], "type")->row;
    const auto root = splitNodes(description);
    if (!root || root->empty())
        return DIALOG_MESSAGE;
    const auto values = splitNodes(valueOf(root->front().value, dialog::tagDialogParameters));
    for (const NodeView &node : values.value_or(std::vector<NodeView>()))
        if (node.tag == row.tag)
            return numberIn(row, node).value_or(DIALOG_MESSAGE);
    return DIALOG_MESSAGE;
}

// What the display shows in words.
std::vector<PictureText> textsOn(const host::Display &display) {
    std::vector<PictureText> all;
    for (const host::Form *form : display.visibleForms()) {
        if (!form->header().empty())
            all.push_back({form->header(), "caption", form->readableCaption()});
        for (const host::Widget *widget : form->widgets) {
            const host::Description description = widget->describe();
            for (const std::string &text : description.texts)
                if (!text.empty())
                    all.push_back({widget->area.moved(form->client().origin()), description.kind,
                                   widget->readable(text)});
        }
    }
    return all;
}

// What stands for texts that no source names: labels show what they are called.
ResolvedTexts standIns(const ShownModule &module, const ShownDialog &dialog) {
    ResolvedTexts texts;
    texts.caption = concat(module.name, ' ', Hex{dialog.id, 4});
    texts.text = "Text";
    texts.buttons = {"Yes", "No"};
    for (const auto &entry : entriesOf(currentGraphicLabelParameters))
        if (const std::string name = entry.name; !name.empty())
            texts.labels.emplace_back(name, name);
    texts.items = {"First item", "Second item",  "Third item",  "Fourth item", "Fifth item",
                   "Sixth item", "Seventh item", "Eighth item", "Ninth item"};
    return texts;
}

// The texts of the dialog whose description is loaded.
ResolvedTexts textsOf(const ShownModule &module, const ShownDialog &dialog) {
    const bool areNamed = dialog.source && dialog.source->texts.areNamed();
    return areNamed
               ? resolveTexts(dialog.source->texts, module.file, module.codePageOf(dialog.language),
                              dialog.language, dialog.variant)
               : standIns(module, dialog);
}

// A folder that goes away with its files.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (fs::temp_directory_path() / "uti-XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw std::runtime_error("cannot make a folder in " +
                                     fs::temp_directory_path().string());
        path_ = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    const fs::path &path() const { return path_; }

private:
    fs::path path_;
};

} // namespace

std::optional<ShownModule> readShownModule(const fs::path &file, const std::string &path,
                                           const CodePages &codePages) {
    ShownModule module{path, file.stem().string(), {}, {}, {}, {}, {}, {}};
    module.codePages = codePages;
    const bool isSource = file.extension() == ".toml";
    if (!isSource && (file.extension() != ".res" || !isModuleName(module.name)))
        throw std::runtime_error(path + " is not named after a module, such as shop.res, and no "
                                        "source, such as shop.toml");

    std::string bytes = readInput(file);
    Diagnostics diagnostics(path, isSource ? bytes : "");
    bool isGood = false;
    if (isSource) {
        ResourceSource source = readResourceSource(diagnostics);
        isGood = !diagnostics.hasErrors();
        if (isGood)
            module.bytes = writeResourceFile(source.file);
        module.name = source.module;
        module.file = std::move(source.file);
        module.dialogs = std::move(source.dialogs);
        module.names = std::move(source.names);
        if (source.codePages)
            module.codePages = std::move(source.codePages);
    } else if (auto read = readResourceFile(bytes, diagnostics)) {
        isGood = true;
        module.file = *std::move(read);
        module.bytes = std::move(bytes);
    }
    diagnostics.print(std::cerr);
    return isGood ? std::optional(std::move(module)) : std::nullopt;
}

std::vector<ShownDialog> dialogsOf(const ShownModule &module) {
    std::vector<ShownDialog> found;
    for (const auto &[section, tables] : module.file.sections)
        for (const auto &[language, strings] : tables)
            for (const auto &[index, bytes] : strings) {
                const uint16_t id = stringId(section, index);
                if (!isDialog(bytes))
                    continue;
                const auto source = std::ranges::find_if(
                    module.dialogs, [&, &code = language.code](const SourceDialog &each) {
                        return each.id == id && std::ranges::count(each.languages, code);
                    });
                const SourceDialog *known = source == module.dialogs.end() ? nullptr : &*source;
                const std::size_t variants = known ? variantsOf(known->texts) : 1;
                for (std::size_t variant = 0; variant < variants; ++variant)
                    found.push_back({id, known ? known->name : concat(Hex{id, 4}), variant,
                                     language.code, known});
            }
    std::ranges::stable_sort(found, {}, &ShownDialog::key);
    return found;
}

LoadedModule::LoadedModule(const ShownModule &module, const fs::path &images) : module_(module) {
    // The library finds a module in the present folder by its name, and keeps its file open.
    const TemporaryFolder folder;
    writeFile(folder.path() / (module.name + ".res"), module.bytes);
    fs::current_path(folder.path());
    const int32_t loaded = Resource_Initialize(module.name.c_str());
    fs::current_path(images);
    if (loaded != UTI_OK)
        throw std::runtime_error(concat("the library cannot load ", module.path, ": ", loaded));
}

LoadedModule::~LoadedModule() {
    Resource_Close(module_.name.c_str());
}

int32_t LoadedModule::load(const ShownDialog &dialog) const {
    Resource_SetLanguage(dialog.language.c_str());
    host::display().stage().fonts.use(module_.codePageOf(dialog.language).name());
    Dialogs_ResetControls();
    const std::string_view description = stringIn(module_.file, dialog.language, dialog.id);
    const int32_t known = GetDialogParameters(module_.name.c_str(), dialog.id, typeOf(description));
    return known == UTI_DIALOG_OTHER_TYPE ? UTI_OK : known;
}

int32_t LoadedModule::run(const ShownDialog &dialog) const {
    const int32_t loaded = load(dialog);
    return loaded < 0 ? loaded
                      : runDialog(module_.name.c_str(), dialog.id, textsOf(module_, dialog));
}

Picture LoadedModule::picture(const ShownDialog &dialog) const {
    Picture picture{dialog, std::nullopt, load(dialog), {}, {}, {}, {}};
    const auto take = [&](const host::Form &form) {
        host::Display &display = host::display();
        display.redraw();
        picture.surface = display.surface();
        picture.dump = host::dump(display);
        picture.texts = textsOn(display);
        picture.findings = findingsAbout(module_, dialog, &form);
        for (const host::Misfit &misfit : display.misfits(display.surface().area())) {
            picture.findings.push_back({misfit.area, "fit", misfit.sentence()});
            picture.cuts.push_back(misfit.cut);
        }
    };
    if (picture.result >= 0)
        picture.result =
            lookAtDialog(module_.name.c_str(), dialog.id, textsOf(module_, dialog), take);
    if (!picture.surface)
        picture.findings = findingsAbout(module_, dialog, nullptr);
    return picture;
}

} // namespace uti::tool
