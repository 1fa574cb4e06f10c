// dialog_pictures.cpp: running each dialog once, with a face that looks at its form and has it
// cancelled.
#include "tools/dialog_pictures.h"

#include "Src/utiDialogsRecords.h"
#include "host/terminal/clock.h"
#include "host/toolkit/code_page.h"
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

// What the display shows in words.
std::vector<PictureText> textsOn(const host::Display &display) {
    std::vector<PictureText> all;
    for (const host::Form *form : display.visibleForms()) {
        if (!form->header().empty())
            all.push_back({form->header(), "caption", host::toUtf8(form->caption)});
        for (const host::Widget *widget : form->widgets) {
            const host::Description description = widget->describe();
            for (const std::string &text : description.texts)
                if (!text.empty())
                    all.push_back({widget->area.moved(form->client().origin()), description.kind,
                                   host::toUtf8(text)});
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
        for (const host::Misfit &misfit : display_.misfits(display_.surface().area()))
            picture_->findings.push_back({misfit.area, "fit", misfit.sentence()});
    }

    host::Display &display_;
    Picture *picture_ = nullptr;
    bool isTaken_ = true; // of the dialog that was aimed at
};

// Labels, which get their texts from the application, show what they are called.
std::map<std::string, std::string> labelsOfDescription() {
    std::map<std::string, std::string> labels;
    for (const auto &entry : entriesOf(currentGraphicLabelParameters))
        labels.emplace(entry.name, entry.name);
    labels.erase("");
    return labels;
}

// The words for the dialog whose description is loaded.
DialogWords wordsOf(const ShownModule &module, const ShownDialog &dialog) {
    return {concat(module.name, ' ', Hex{dialog.id, 4}),
            "Text",
            {"Yes", "No"},
            labelsOfDescription(),
            {"First item", "Second item", "Third item", "Fourth item", "Fifth item", "Sixth item",
             "Seventh item", "Eighth item", "Ninth item"}};
}

int32_t runWith(const DialogWords &words, DialogRequest &request) {
    request.caption = words.caption.c_str();
    request.text = words.text.c_str();
    std::vector<LabelValue> labels;
    for (const auto &[name, text] : words.labels)
        labels.push_back({name.c_str(), text.c_str()});
    labels.push_back({});
    request.labelValues = labels.data();

    switch (currentDialogType) {
    case DIALOG_MESSAGE:
        return DialogMessage_Show(&request, SHOW_UNLIMITED);
    case DIALOG_CONFIRMATION: {
        const ConfirmationRequest question{request, words.buttons[1].c_str(),
                                           words.buttons[0].c_str()};
        return DialogConfirmation_DoModal(&question);
    }
    case DIALOG_EDIT: {
        EditRequest edit{};
        edit.dialog = request;
        char buffer[DIALOG_LONG_TEXT + 1] = "";
        return DialogEdit_DoModal(&edit, buffer, sizeof buffer);
    }
    case DIALOG_LIST: {
        std::vector<ListItem> items(words.items.size());
        for (std::size_t i = 0; i < items.size(); ++i)
            items[i].word1 = std::bit_cast<uintptr_t>(words.items[i].c_str());
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

std::optional<ShownModule> readShownModule(const fs::path &file, std::string path) {
    ShownModule module{path, file.stem().string(), {}, {}, {}};
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
        for (StringName &each : source.names)
            module.names.emplace(each.id, std::move(each.name));
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
                const auto name = module.names.find(id);
                found.push_back({id, name == module.names.end() ? concat(Hex{id, 4}) : name->second,
                                 language.code});
            }
    std::ranges::stable_sort(found, {}, &ShownDialog::id);
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
    Dialogs_ResetControls();
    const int32_t known = GetDialogParameters(module_.name.c_str(), dialog.id, DIALOG_MESSAGE);
    if (known < 0 && known != UTI_DIALOG_OTHER_TYPE)
        return known;

    constexpr uint32_t day = 24 * 60 * 60 * 1000; // or a message would not wait at all
    DialogRequest request{};
    request.resourceId = dialog.id;
    request.module = module_.name.c_str();
    request.timeout = day;
    return runWith(wordsOf(module_, dialog), request);
}

void LoadedModule::picture(const std::vector<ShownDialog> &dialogs,
                           const std::function<void(const Picture &)> &take) const {
    host::useVirtualClock();
    auto owned = std::make_unique<Camera>(host::display());
    Camera &camera = *owned;
    host::display().useFace(std::move(owned));
    for (const ShownDialog &dialog : dialogs) {
        Picture picture{dialog, std::nullopt, 0, {}, {}, {}};
        camera.aim(picture);
        picture.result = run(dialog);
        take(picture);
    }
}

} // namespace uti::tool
