// show.cpp: `uti show`, the dialogs of a source or a resource file as they look on the terminal: as
// pictures, on one sheet, on a page or in a window, and again whenever the file is saved.
#include "host/faces/window_face.h"
#include "host/terminal/notice.h"
#include "host/toolkit/display.h"
#include "host/toolkit/image.h"
#include "tools/commands.h"
#include "tools/dialog_findings.h"
#include "tools/dialog_pictures.h"
#include "tools/files.h"
#include "tools/show_page.h"
#include "tools/show_sheet.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <thread>

namespace uti::tool {

namespace {

namespace fs = std::filesystem;

struct ShowOptions {
    fs::path file;
    std::string dialog;                 // name or id; all when empty
    std::string language;               // all when empty
    std::vector<std::string> codePages; // of a resource file
    fs::path directory;                 // for pictures and texts
    fs::path sheet;
    fs::path page;       // the folder of the page
    int windowScale = 0; // 0 without a window
    bool isWatched = false;
};

// Whether a file has been saved. A file that is being written has not come to rest.
class FileWatch {
public:
    explicit FileWatch(fs::path path) : path_(std::move(path)), known_(stamp()), last_(known_) {}

    // To be asked every `pause`; true once for each time that the file came to rest anew.
    static constexpr std::chrono::milliseconds pause{50};
    bool wasSaved() {
        const Stamp now = stamp();
        const bool isAtRest = now == std::exchange(last_, now) && now.second > 0;
        return isAtRest && now != std::exchange(known_, now);
    }

private:
    using Stamp = std::pair<fs::file_time_type, std::uintmax_t>;

    Stamp stamp() const {
        std::error_code error;
        const fs::file_time_type time = fs::last_write_time(path_, error);
        const std::uintmax_t size = error ? 0 : fs::file_size(path_, error);
        return error ? Stamp{} : Stamp{time, size};
    }

    fs::path path_;
    Stamp known_, last_;
};

// An id as a source spells it.
std::optional<uint16_t> idIn(std::string_view text) {
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    text.remove_prefix(isHex ? 2 : 0);
    uint16_t id = 0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), id, isHex ? 16 : 10);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(id)
                                                                    : std::nullopt;
}

// What is shown, and again when it has changed.
class Show {
public:
    Show(const ShowOptions &options, CodePages codePages)
        : options_(options), codePages_(std::move(codePages)), file_(fs::absolute(options.file)),
          watch_(file_) {
        for (fs::path *path : {&options_.directory, &options_.sheet, &options_.page})
            if (!path->empty())
                *path = fs::absolute(*path);
        if (options_.directory.empty() && options_.sheet.empty() && options_.page.empty())
            options_.directory = fs::current_path();
        if (const char *images = std::getenv("UTI_IMAGES"); images && *images)
            setenv("UTI_IMAGES", fs::absolute(images).c_str(), 1);
        unsetenv("UTI_WINDOW"); // the options alone say how the display is seen
    }

    int run() {
        bool isGood = refresh();
        while (!loaded_ && options_.isWatched)
            waitForSave();
        if (!loaded_)
            return exitErrors;
        if (options_.windowScale > 0)
            return window();
        isGood = draw() && isGood;
        while (options_.isWatched) {
            waitForSave();
            draw();
        }
        return isGood ? exitDone : exitErrors;
    }

private:
    class WindowFace;

    // A module with at least one dialog that is asked for.
    struct Content {
        ShownModule module;
        std::vector<ShownDialog> dialogs;
    };

    // Reads the file; nothing when something is wrong with it, which is told.
    std::optional<Content> read() const {
        std::optional<ShownModule> module =
            readShownModule(file_, options_.file.string(), codePages_);
        if (!module)
            return std::nullopt;
        std::vector<ShownDialog> dialogs = dialogsOf(*module);
        const std::optional<uint16_t> id = idIn(options_.dialog);
        std::erase_if(dialogs, [&](const ShownDialog &each) {
            const bool isMeant =
                options_.dialog.empty() || each.id == id || each.name == options_.dialog;
            return !isMeant || (!options_.language.empty() && each.language != options_.language);
        });
        if (dialogs.empty()) {
            std::cerr << module->path << ": error: there is no such dialog"
                      << (id || options_.dialog.empty() || !module->dialogs.empty()
                              ? "\n"
                              : "; a resource file knows ids alone\n");
            return std::nullopt;
        }
        if (!options_.page.empty() && !module->dialogs.empty())
            module->findings = findingsOf(module->path, readInput(file_), file_.parent_path());
        return Content{*std::move(module), std::move(dialogs)};
    }

    void adopt(Content content) {
        loaded_.reset();
        content_ = std::move(content);
        loaded_.emplace(content_.module, file_.parent_path());
    }

    // Reads the file and loads it. What was there before stays when that fails.
    bool refresh() {
        return attempt([&] {
            std::optional<Content> content = read();
            if (!content)
                return false;
            adopt(*std::move(content));
            return true;
        });
    }

    void waitForSave() {
        do
            std::this_thread::sleep_for(FileWatch::pause);
        while (!watch_.wasSaved() || !refresh());
    }

    // While the file is watched, the next save may mend what fails.
    template <class Action>
    bool attempt(Action action) try {
        return action();
    } catch (const std::exception &failure) {
        if (!options_.isWatched)
            throw;
        std::cerr << "uti: " << failure.what() << '\n';
        return false;
    }

    // Whoever looks at the file sees the old picture or the new one.
    static void save(const fs::path &path, const host::Surface &surface) {
        fs::path fresh = path;
        fresh += ".new";
        std::error_code failure;
        if (host::saveImage(surface, fresh.string()))
            fs::rename(fresh, path, failure);
        else
            failure = std::make_error_code(std::errc::io_error);
        if (!failure)
            return;
        std::error_code ignored;
        fs::remove(fresh, ignored);
        throw std::runtime_error("cannot write " + path.string());
    }

    // Such as shop-3005-en, or shop-3005-2-en for the second of several choices of texts.
    std::string fileName(const ShownDialog &dialog) const {
        std::ostringstream name;
        name << content_.module.name << '-' << std::hex << std::uppercase << dialog.id << std::dec;
        if (dialog.variant > 0)
            name << '-' << dialog.variant + 1;
        name << '-' << dialog.language;
        return name.str();
    }

    static std::string failed(const ShownDialog &dialog) {
        return concat("the dialog ", dialog.title(), " in ", dialog.language, " cannot be shown: ");
    }

    // Whether it is another picture than the last one of that name; the others' files are left
    // alone.
    bool isNews(const fs::path &path, const Picture &picture) {
        std::string pixels = picture.dump;
        const host::Size size = picture.surface->size();
        for (int y = 0; y < size.height; ++y)
            pixels.append(std::bit_cast<const char *>(picture.surface->row(y)),
                          static_cast<std::size_t>(size.width) * sizeof(host::Color));
        const std::size_t hash = std::hash<std::string>()(pixels);
        return std::exchange(saved_[path], hash) != hash;
    }

    bool draw() {
        return attempt([&] {
            const auto start = std::chrono::steady_clock::now();
            const bool isWhole = drawAll();
            const std::chrono::duration<double, std::milli> taken =
                std::chrono::steady_clock::now() - start;
            if (options_.isWatched)
                std::cout << content_.dialogs.size() << " pictures drawn in "
                          << static_cast<int>(taken.count()) << " ms; watching "
                          << options_.file.string() << std::endl;
            return isWhole;
        });
    }

    // False when a dialog cannot be shown.
    bool drawAll() {
        std::optional<Sheet> sheet;
        std::optional<Page> page;
        if (!options_.sheet.empty())
            sheet.emplace(content_.dialogs);
        if (!options_.page.empty()) {
            fs::create_directories(options_.page);
            page.emplace(content_.module.name, content_.dialogs);
        }

        bool isWhole = true;
        for (const ShownDialog &dialog : content_.dialogs) {
            const Picture picture = loaded_->picture(dialog);
            const std::string file = fileName(picture.dialog);
            if (sheet)
                sheet->add(picture);
            if (page)
                page->add(picture, file + ".png");
            if (!picture.surface) {
                std::cerr << options_.file.string() << ": error: " << failed(picture.dialog)
                          << picture.result << '\n';
                isWhole = false;
                continue;
            }
            if (page && isNews(options_.page / file, picture))
                save(options_.page / (file + ".png"), *picture.surface);
            if (!options_.directory.empty() && isNews(options_.directory / file, picture)) {
                save(options_.directory / (file + ".png"), *picture.surface);
                writeFile(options_.directory / (file + ".txt"), picture.dump);
                std::cout << file << ".png\n" << file << ".txt\n";
            }
        }
        if (sheet)
            save(options_.sheet, sheet->surface());
        if (page)
            writeFile(options_.page / "index.html", page->html());
        return isWhole;
    }

    int window();

    ShowOptions options_;
    CodePages codePages_;
    fs::path file_;
    FileWatch watch_;
    Content content_;
    std::optional<LoadedModule> loaded_; // of the content
    std::map<fs::path, std::size_t> saved_;
};

// A window that has the running dialog cancelled when there is a new one to show.
class Show::WindowFace final : public host::Face {
public:
    WindowFace(Show &show, std::unique_ptr<host::Face> window)
        : show_(show), window_(std::move(window)) {}

    void show(const host::Surface &surface, const host::Rect &changed) override {
        window_->show(surface, changed);
    }
    std::optional<host::Event> next(uint32_t milliseconds) override {
        wasAsked = true;
        if (show_.options_.isWatched && isDue() && show_.watch_.wasSaved())
            show_.attempt([&] { return (fresh = show_.read()).has_value(); });
        if (fresh && host::display().running())
            return host::Event{.kind = host::Event::Kind::close};
        const auto pause = static_cast<uint32_t>(FileWatch::pause.count());
        const auto event = window_->next(std::min(milliseconds, pause));
        isClosed = isClosed || (event && event->kind == host::Event::Kind::close);
        return event;
    }

    std::optional<Content> fresh; // what was saved since
    bool wasAsked = false;        // by a running dialog
    bool isClosed = false;        // by the person

private:
    bool isDue() {
        const auto now = std::chrono::steady_clock::now();
        return now - asked_ >= FileWatch::pause && (asked_ = now, true);
    }

    Show &show_;
    std::unique_ptr<host::Face> window_;
    std::chrono::steady_clock::time_point asked_{};
};

// One dialog after the other; while the file is watched, from the last to the first again.
int Show::window() {
    auto window = host::openWindow(host::display(),
                                   {.scale = options_.windowScale, .record = {}, .pictures = {}});
    if (!window)
        return exitUsage;
    auto owned = std::make_unique<WindowFace>(*this, std::move(window));
    WindowFace &face = *owned;
    host::display().useFace(std::move(owned));

    bool isWhole = true;
    for (std::size_t at = 0; at < content_.dialogs.size() && !face.isClosed;) {
        const ShownDialog &dialog = content_.dialogs[at];
        face.wasAsked = false;
        const int32_t result = loaded_->run(dialog);
        if (!face.wasAsked) {
            host::notice(concat(failed(dialog), result));
            isWhole = false;
            host::display().wait(static_cast<uint32_t>(FileWatch::pause.count()));
        }
        if (face.fresh) {
            const bool isSame = face.fresh->dialogs.size() == content_.dialogs.size();
            adopt(*std::exchange(face.fresh, std::nullopt));
            at = isSame ? at : 0;
        } else if (++at == content_.dialogs.size() && options_.isWatched) {
            at = 0;
        }
    }
    return isWhole ? exitDone : exitErrors;
}

} // namespace

void addShowCommand(CLI::App &app, int &result) {
    CLI::App *command =
        app.add_subcommand("show", "Shows the dialogs of a source or a resource file");
    const auto options = std::make_shared<ShowOptions>();
    command->add_option("FILE", options->file, "Resource source (.toml) or resource file (.res)")
        ->required()
        ->check(CLI::ExistingFile);
    command->add_option("--dialog", options->dialog,
                        "Name or id of the dialog to show (default: all)");
    command->add_option("--lang", options->language, "Language to show (default: all)");
    command
        ->add_option("--code-page", options->codePages,
                     concat("Of a resource file: ", codePageHelp))
        ->allow_extra_args(false);
    CLI::Option *out = command
                           ->add_option("--out", options->directory,
                                        "Folder to write a picture and a text of each to (default: "
                                        "the present one, if nothing else is asked for)")
                           ->check(CLI::ExistingDirectory);
    CLI::Option *sheet =
        command->add_option("--sheet", options->sheet, "Picture (.png) to write with all of them");
    CLI::Option *page = command->add_option(
        "--html", options->page, "Folder to write a page for a browser to, made if missing");
    command
        ->add_flag("--window{1}", options->windowScale,
                   "Show them in a window, each until a key ends it; --window=2 for a larger one")
        ->check(CLI::Range(1, 4))
        ->excludes(out)
        ->excludes(sheet)
        ->excludes(page);
    command->add_flag("--watch", options->isWatched,
                      "Go on, and draw anew whenever the file is saved; Ctrl-C ends it");
    command->footer("Writes a picture and a text for each dialog and language.\n"
                    "Examples:\n  uti show shop.toml --dialog ENTER_PIN --out pictures\n"
                    "  uti show shop.toml --html page --watch\n");
    command->callback([options, &result] {
        if (!options->codePages.empty() && options->file.extension() == ".toml")
            throw CLI::ValidationError("--code-page", "is for resource files; a source says it");
        auto codePages = openCodePages(options->codePages);
        result = codePages ? Show(*options, *std::move(codePages)).run() : exitUsage;
    });
}

} // namespace uti::tool
