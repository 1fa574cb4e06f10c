// dialog_pictures.h: the dialogs of a module as the terminal shows them. The library itself loads
// and builds them, the toolkit of the desktop draws them and tells what they show and what is cut.
#pragma once

#include "common/diagnostics.h"
#include "host/toolkit/fit.h"
#include "host/toolkit/surface.h"
#include "tools/resource_source.h"

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace uti::tool {

// A module that the library can load.
struct ShownModule {
    std::string path; // of its file, as the user wrote it
    std::string name;
    ResourceFile file;
    std::string bytes;                     // of the resource file
    std::map<uint16_t, std::string> names; // of strings and dialogs; none when a .res was read
};

// Reads a source (.toml) or a resource file (.res), which must be named after its module; tells on
// standard error what is wrong with it. Throws like `readInput`.
std::optional<ShownModule> readShownModule(const std::filesystem::path &file, std::string path);

// A dialog in one language.
struct ShownDialog {
    uint16_t id;
    std::string name; // as the source calls it, else its id
    std::string language;
};

// The dialogs of a module by id, each in the order of its languages.
std::vector<ShownDialog> dialogsOf(const ShownModule &module);

// What an application puts into a dialog, in the terminal's code page.
struct DialogWords {
    std::string caption;
    std::string text;
    std::string buttons[2];
    std::map<std::string, std::string> labels; // by name
    std::vector<std::string> items;
};

// Something on the display that a person reads, or what is wrong with it; texts are in UTF-8.
struct PictureText {
    host::Rect area; // in pixels of the display
    std::string kind;
    std::string text;
};

// What the display shows of a dialog.
struct Picture {
    ShownDialog dialog;
    std::optional<host::Surface> surface; // none when it cannot be shown
    int32_t result;                       // the library's
    std::string dump;
    std::vector<PictureText> texts;
    std::vector<PictureText> findings; // the kind is the short name of the rule
};

// The module, loaded by the library; the present folder becomes the one to look for images from.
// One of them at a time.
class LoadedModule {
public:
    // Throws a std::runtime_error when the library cannot load it.
    LoadedModule(const ShownModule &module, const std::filesystem::path &images);
    ~LoadedModule();
    LoadedModule(const LoadedModule &) = delete;
    LoadedModule &operator=(const LoadedModule &) = delete;

    // Shows the dialog until a key or the face of the display ends it. Returns the dialog's result.
    int32_t run(const ShownDialog &dialog) const;

    // Takes pictures of dialogs, behind a face of its own, and hands each to `take`.
    void picture(const std::vector<ShownDialog> &dialogs,
                 const std::function<void(const Picture &)> &take) const;

private:
    const ShownModule &module_;
};

} // namespace uti::tool
