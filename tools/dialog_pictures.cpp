// dialog_pictures.cpp: running each dialog once, with a face that looks at its form and has it
// cancelled.
#include "tools/dialog_pictures.h"

#include "Src/utiDialogsRecords.h"
#include "host/terminal/clock.h"
#include "host/toolkit/display.h"
#include "host/toolkit/dump.h"
#include "tools/dialog_values.h"
#include "tools/files.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <iostream>
#include <memory>
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

class Camera final : public host::Face {
public:
    explicit Camera(host::Display &display) : display_(display) {}

    void aim(Picture &picture) {
        picture_ = &picture;
        isTaken_ = false;
    }

    void show(const host::Surface &, const host::Rect &) override {}
    std::optional<host::Event> next(uint32_t milliseconds) override {
        if (!display_.running()) {
            host::pass(milliseconds);
            return std::nullopt;
        }
        if (!std::exchange(isTaken_, true))
            take();
        return host::Event{.kind = host::Event::Kind::close};
    }

private:
    void take() {
        display_.redraw();
        picture_->surface = display_.surface();
        picture_->dump = host::dump(display_);
        picture_->texts = textsOn(display_);
        for (const host::Misfit &misfit : display_.misfits(display_.surface().area())) {
            picture_->findings.push_back({misfit.area, "fit", misfit.sentence()});
            picture_->cuts.push_back(misfit.cut);
        }
    }

    host::Display &display_;
    Picture *picture_ = nullptr;
    bool isTaken_ = true; // of the dialog that was aimed at
};

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
    return areNamed ? resolveTexts(dialog.source->texts, module.file,
                                   module.codePageOf(dialog.language), dialog.language,
                                   dialog.variant)
                    : standIns(module, dialog);
}

const char *orNull(const std::optional<std::string> &text) {
    return text ? text->c_str() : nullptr;
}

// The first or second of a confirmation's texts or suffixes.
const char *orNull(const std::vector<std::string> &texts, std::size_t at) {
    return at < texts.size() ? texts[at].c_str() : nullptr;
}

int32_t runWith(const ResolvedTexts &texts, DialogRequest &request) {
    request.caption = orNull(texts.caption);
    request.text = orNull(texts.text);
    request.imageName = texts.image.empty() ? nullptr : texts.image.c_str();
    std::vector<LabelValue> labels;
    for (const auto &[name, text] : texts.labels)
        labels.push_back({name.c_str(), text.c_str()});
    labels.push_back({});
    request.labelValues = labels.data();

    switch (currentDialogType) {
    case DIALOG_MESSAGE:
        return DialogMessage_Show(&request, SHOW_UNLIMITED);
    case DIALOG_CONFIRMATION: {
        const ConfirmationRequest question{request, orNull(texts.buttons, 1),
                                           orNull(texts.buttons, 0)};
        return texts.suffixes.size() == 2
                   ? DialogSelect_DoModal_IG(&question, orNull(texts.suffixes, 0),
                                             orNull(texts.suffixes, 1))
                   : DialogConfirmation_DoModal(&question);
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

std::optional<ShownModule> readShownModule(const fs::path &file, std::string path,
                                           const CodePages &codePages) {
    ShownModule module{path, file.stem().string(), {}, {}, {}, {}};
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
                const auto source =
                    std::ranges::find_if(module.dialogs, [&](const SourceDialog &each) {
                        return each.id == id && std::ranges::count(each.languages, language.code);
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

int32_t LoadedModule::run(const ShownDialog &dialog) const {
    Resource_SetLanguage(dialog.language.c_str());
    host::display().stage().fonts.use(module_.codePageOf(dialog.language).name());
    Dialogs_ResetControls();
    const std::string_view description = stringIn(module_.file, dialog.language, dialog.id);
    const int32_t known = GetDialogParameters(module_.name.c_str(), dialog.id, typeOf(description));
    if (known < 0 && known != UTI_DIALOG_OTHER_TYPE)
        return known;

    constexpr uint32_t day = 24 * 60 * 60 * 1000; // or a message would not wait at all
    DialogRequest request{};
    request.resourceId = dialog.id;
    request.module = module_.name.c_str();
    request.timeout = day;
    return runWith(textsOf(module_, dialog), request);
}

void LoadedModule::picture(const std::vector<ShownDialog> &dialogs,
                           const std::function<void(const Picture &)> &take) const {
    host::useVirtualClock();
    auto owned = std::make_unique<Camera>(host::display());
    Camera &camera = *owned;
    host::display().useFace(std::move(owned));
    for (const ShownDialog &dialog : dialogs) {
        Picture picture{dialog, std::nullopt, 0, {}, {}, {}, {}};
        camera.aim(picture);
        picture.result = run(dialog);
        take(picture);
    }
}

} // namespace uti::tool
