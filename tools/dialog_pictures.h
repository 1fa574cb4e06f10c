// dialog_pictures.h: the dialogs of a module as the terminal shows them. The library itself loads
// and builds them, the toolkit of the desktop draws them and tells what they show and what is cut.
#pragma once

#include "common/diagnostics.h"
#include "host/toolkit/fit.h"
#include "host/toolkit/surface.h"
#include "tools/resource_source.h"

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace uti::tool {

// A module that the library can load. Only a source says what its dialogs and strings are called,
// and which texts the dialogs get.
struct ShownModule {
    std::string path; // of its file, as the user wrote it
    std::string name;
    ResourceFile file;
    std::string bytes; // of the resource file
    std::vector<SourceDialog> dialogs;
    std::vector<StringName> names;
    std::vector<Finding> findings; // where somebody has looked for them (tools/dialog_findings.h)
    std::optional<CodePages> codePages; // always there once it was read

    const CodePage &codePageOf(std::string_view language) const { return codePages->of(language); }
};

// Reads a source (.toml) or a resource file (.res), which must be named after its module and whose
// texts are in `codePages`; tells on standard error what is wrong with it. Throws like `readInput`.
std::optional<ShownModule> readShownModule(const std::filesystem::path &file,
                                           const std::string &path, const CodePages &codePages);

// A dialog in one language, with one of its choices of texts.
struct ShownDialog {
    uint16_t id;
    std::string name; // as the source calls it, else its id
    std::size_t variant;
    std::string language;
    const SourceDialog *source; // of the module; null when a resource file was read

    std::string title() const { return variant == 0 ? name : concat(name, " (", variant + 1, ')'); }
    // The same for all languages of a dialog.
    std::pair<uint16_t, std::size_t> key() const { return {id, variant}; }
};

// The dialogs of a module by id, each in the order of its languages, and once for each choice of
// texts that its source names.
std::vector<ShownDialog> dialogsOf(const ShownModule &module);

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
    std::vector<host::Cut> cuts;       // texts that do not fit
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

    // What a person sees who looks at the dialog.
    Picture picture(const ShownDialog &dialog) const;

private:
    int32_t load(const ShownDialog &dialog) const;

    const ShownModule &module_;
};

} // namespace uti::tool
