// assertion.cpp: the library's assertions in words. Stands on the library's public header, and on
// no library: a program may have none.
#include "host/terminal/assertion.h"

#include "host/terminal/notice.h"

#include "terminal.h"
#include "uti.h"

#include <algorithm>
#include <string>
#include <utility>

extern "C" [[gnu::weak]] ResourceModule *CurrentModule;

namespace uti::host {

constinit bool isLanguageMissing = false;

} // namespace uti::host

namespace {

// By the source path that an assertion names.
constexpr struct {
    std::string_view source, sentence;
} meanings[] = {
    {"Src/utiTLVParser", "a description or a file is no valid tree of nodes, or was not given"},
    {"Src/utiResource", "a resource file, a language of it or a text is missing, or not valid"},
    {"Src/utiDialogs", "a dialog lacks something, or something of it is past a limit"},
    {"Src/utiCodePage", "a text or its buffer was not given"},
    {"Src/utiCodePageManager", "no code page or no font is known for the language"},
    {"Src/utiIni", "an INI file, its section or its key was not given, or cannot be had"},
    {"Src/utiList", "a list, an item or a place in the list does not exist"},
    {"Src/utiStorage", "a storage, a key or a value of that type does not exist"},
    {"Src/utiTraceEx", "a trace record or its file cannot be written or read"},
    {"Src/utiMonitoring", "a monitoring record or its file cannot be written"},
};

// The library cannot say what was wrong with a text, but everybody can see this state of it.
bool slotsAreOut() {
    const ResourceModule *module = &CurrentModule ? CurrentModule : nullptr;
    if (!module || std::ranges::any_of(module->smallStrings, [](const ResourceSmallString &slot) {
            return slot.text[0] == '\0';
        }))
        return false;
    const std::string name(module->name);
    uti::host::notice("short texts of " + name,
                      "release strings: " + std::to_string(RESOURCE_SMALL_SLOTS) +
                          " short texts of `" + name + "` are out, so the next one is empty");
    return true;
}

} // namespace

void Terminal_NoteAssertion(const char *sourcePath, int32_t line) {
    const std::string_view path = sourcePath ? sourcePath : "";
    const bool isNoNews = std::exchange(uti::host::isLanguageMissing, false);
    if (path == "Src/utiResource" && (isNoNews || slotsAreOut()))
        return;
    std::string_view sentence = "the application reports a fault of its own";
    for (const auto &each : meanings)
        if (each.source == path)
            sentence = each.sentence;
    const std::string place = std::string(path) + ':' + std::to_string(line);
    uti::host::notice(place, std::string(sentence) + " (assertion at " + place + ')');
}
