// show.cpp: `uti show`, the dialogs of a resource file as they look on the terminal. The library
// itself loads and builds them, on the toolkit of the desktop.
#include "Src/utiDialogsRecords.h"
#include "host/faces/window_face.h"
#include "host/terminal/clock.h"
#include "host/toolkit/display.h"
#include "host/toolkit/dump.h"
#include "host/toolkit/image.h"
#include "tools/commands.h"
#include "tools/dialog_values.h"
#include "tools/files.h"
#include "tools/resource_source.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <iostream>
#include <memory>

namespace uti::tool {

namespace {

namespace fs = std::filesystem;

struct ShowOptions {
    fs::path file;
    std::optional<uint16_t> dialog; // all without one
    std::string language;           // all when empty
    fs::path directory = ".";
    int windowScale = 0; // 0 without a window
};

// A dialog in one language.
struct Shown {
    uint16_t id;
    std::string language;
};

// Looks at each form once, saves it and has it cancelled.
class Camera final : public host::Face {
public:
    explicit Camera(host::Display &display) : display_(display) {}

    void aim(fs::path path) {
        path_ = std::move(path);
        isTaken = isSaved = false;
    }

    void show(const host::Surface &, const host::Rect &) override {}
    std::optional<host::Event> next(uint32_t milliseconds) override {
        if (!display_.running()) {
            host::pass(milliseconds);
            return std::nullopt;
        }
        if (!std::exchange(isTaken, true)) {
            display_.redraw();
            isSaved = host::saveImage(display_.surface(), path_.string() + ".png") &&
                      host::saveDump(display_, path_.string() + ".txt");
        }
        return host::Event{.kind = host::Event::Kind::close};
    }

    bool isTaken = false; // of the form that was aimed at
    bool isSaved = false;

private:
    host::Display &display_;
    fs::path path_;
};

bool isDialog(std::string_view bytes) {
    const auto nodes = splitNodes(bytes);
    return nodes && nodes->size() == 1 && nodes->front().tag >= firstCompoundTag;
}

// The dialogs that are asked for, by id and in the order of the languages.
std::vector<Shown> dialogsOf(const ResourceFile &file, const ShowOptions &options) {
    std::vector<Shown> found;
    for (const auto &[section, tables] : file.sections)
        for (const auto &[language, strings] : tables)
            for (const auto &[index, bytes] : strings) {
                const uint16_t id = stringId(section, index);
                if (options.dialog.value_or(id) == id && isDialog(bytes) &&
                    (options.language.empty() || options.language == language.code))
                    found.push_back({id, language.code});
            }
    std::ranges::stable_sort(found, {}, &Shown::id);
    return found;
}

// Labels, which get their texts from the application, show what they are called.
std::vector<LabelValue> labelsOf(std::vector<std::string> &names) {
    for (const auto &entry : entriesOf(currentGraphicLabelParameters))
        names.emplace_back(entry.name);
    std::erase(names, "");
    std::vector<LabelValue> labels;
    for (const std::string &name : names)
        labels.push_back({name.c_str(), name.c_str()});
    labels.push_back({});
    return labels;
}

int32_t runList(const DialogRequest &request) {
    static constexpr const char *texts[] = {"First item",   "Second item", "Third item",
                                            "Fourth item",  "Fifth item",  "Sixth item",
                                            "Seventh item", "Eighth item", "Ninth item"};
    std::array<ListItem, std::size(texts)> items{};
    for (std::size_t i = 0; i < items.size(); ++i)
        items[i].word1 = std::bit_cast<uintptr_t>(texts[i]);
    const ListRequest list{request, items.data(), static_cast<uint16_t>(items.size())};
    return DialogList_DoModal(&list);
}

// Returns the dialog's result; UTI_OK or a code of how it ended when it was shown.
int32_t run(const std::string &module, uint16_t id) {
    Dialogs_ResetControls();
    const int32_t known = GetDialogParameters(module.c_str(), id, DIALOG_MESSAGE);
    if (known < 0 && known != UTI_DIALOG_OTHER_TYPE)
        return known;

    constexpr uint32_t day = 24 * 60 * 60 * 1000; // or a message would not wait at all
    const std::string caption = concat(module, ' ', Hex{id, 4});
    std::vector<std::string> names;
    const std::vector<LabelValue> labels = labelsOf(names);
    DialogRequest request{};
    request.resourceId = id;
    request.module = module.c_str();
    request.caption = caption.c_str();
    request.text = "Text";
    request.labelValues = labels.data();
    request.timeout = day;

    switch (currentDialogType) {
    case DIALOG_MESSAGE:
        return DialogMessage_Show(&request, SHOW_UNLIMITED);
    case DIALOG_CONFIRMATION: {
        const ConfirmationRequest question{request, "No", "Yes"};
        return DialogConfirmation_DoModal(&question);
    }
    case DIALOG_EDIT: {
        EditRequest edit{};
        edit.dialog = request;
        char buffer[DIALOG_LONG_TEXT + 1] = "";
        return DialogEdit_DoModal(&edit, buffer, sizeof buffer);
    }
    case DIALOG_LIST:
        return runList(request);
    default:
        return DialogSignature_DoModal(&request, "/dev/null");
    }
}

// The library finds a module in the present folder by its name.
std::optional<std::string> enterFolderOf(const fs::path &file) {
    const std::string module = file.stem().string();
    if (file.extension() != ".res" || !isModuleName(module)) {
        std::cerr << "uti: " << file.string() << " is not named after a module, such as shop.res\n";
        return std::nullopt;
    }
    fs::current_path(fs::absolute(file).parent_path());
    return module;
}

int showInWindow(const std::string &module, const std::vector<Shown> &dialogs, int scale) {
    auto window = host::openWindow(host::display(), {.scale = scale, .record = {}, .pictures = {}});
    if (!window)
        return exitUsage;
    host::display().useFace(std::move(window));
    for (const auto &[id, language] : dialogs) {
        Resource_SetLanguage(language.c_str());
        run(module, id);
    }
    return exitDone;
}

int saveAll(const std::string &module, const std::vector<Shown> &dialogs, const fs::path &directory,
            const std::string &path) {
    host::useVirtualClock();
    auto owned = std::make_unique<Camera>(host::display());
    Camera &camera = *owned;
    host::display().useFace(std::move(owned));

    int result = exitDone;
    for (const auto &[id, language] : dialogs) {
        std::ostringstream digits;
        digits << std::hex << std::uppercase << id;
        const std::string name = concat(module, '-', digits.str(), '-', language);
        camera.aim(directory / name);
        Resource_SetLanguage(language.c_str());
        const int32_t shown = run(module, id);
        if (camera.isSaved) {
            std::cout << name << ".png\n" << name << ".txt\n";
            continue;
        }
        if (camera.isTaken) {
            std::cerr << "uti: cannot write " << (directory / name).string() << ".png and .txt\n";
            return exitUsage;
        }
        std::cerr << path << ": error: the dialog " << Hex{id, 4} << " in " << language
                  << " cannot be shown: " << shown << '\n';
        result = exitErrors;
    }
    return result;
}

int show(const ShowOptions &options) {
    const std::string path = options.file.string();
    const std::string bytes = readInput(options.file);
    Diagnostics diagnostics(path);
    const std::optional<ResourceFile> file = readResourceFile(bytes, diagnostics);
    diagnostics.print(std::cerr);
    if (!file)
        return exitErrors;
    const std::vector<Shown> dialogs = dialogsOf(*file, options);
    if (dialogs.empty()) {
        std::cerr << path << ": error: there is no such dialog\n";
        return exitErrors;
    }

    unsetenv("UTI_WINDOW"); // the options alone say how the display is seen
    const fs::path directory = fs::absolute(options.directory);
    const std::optional<std::string> module = enterFolderOf(options.file);
    if (!module)
        return exitUsage;
    if (const int32_t loaded = Resource_Initialize(module->c_str()); loaded != UTI_OK) {
        std::cerr << path << ": error: the library cannot load it: " << loaded << '\n';
        return exitErrors;
    }
    return options.windowScale > 0 ? showInWindow(*module, dialogs, options.windowScale)
                                   : saveAll(*module, dialogs, directory, path);
}

} // namespace

void addShowCommand(CLI::App &app, int &result) {
    CLI::App *command = app.add_subcommand("show", "Shows the dialogs of a resource file");
    const auto options = std::make_shared<ShowOptions>();
    command->add_option("FILE", options->file, "Resource file")
        ->required()
        ->check(CLI::ExistingFile);
    command->add_option("--dialog", options->dialog, "Id of the dialog to show (default: all)");
    command->add_option("--lang", options->language, "Language to show (default: all)");
    command->add_option("--out", options->directory, "Folder to write to")
        ->check(CLI::ExistingDirectory)
        ->capture_default_str();
    command
        ->add_flag("--window{1}", options->windowScale,
                   "Show them in a window, each until a key ends it; --window=2 for a larger one")
        ->check(CLI::Range(1, 4));
    command->footer("Writes a picture and a text for each dialog and language.\n"
                    "Example:\n  uti show shop.res --dialog 0x3001 --out pictures\n");
    command->callback([options, &result] { result = show(*options); });
}

} // namespace uti::tool
