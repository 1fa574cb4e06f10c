// Resource modules, with and without "_ext": every string is that of the file, and one that was
// fetched keeps its bytes until it is released or its module closed.
#include "fuzz/terminal.h"

#include "tests/streams.h"

using namespace fuzz;

namespace {

constexpr const char *languages[] = {"en", "ru", "de"};
using Sections = std::vector<std::pair<int, std::vector<support::Language>>>;

Sections readSections(Input &in) {
    Sections sections;
    for (const int number : {0, 1, 3, 5}) {
        std::vector<support::Language> blocks;
        for (uint32_t count = in.below(3), i = 0; i < count; ++i) {
            support::Language block{languages[i], static_cast<uint16_t>(i), {}};
            for (uint32_t strings = in.below(26); strings > 0; --strings)
                block.strings.push_back(in.oneIn(8) ? std::string(in.below(2100), 'x')
                                                    : in.text(40));
            blocks.push_back(block);
        }
        if (!blocks.empty())
            sections.emplace_back(number, blocks);
    }
    return sections;
}

// The string of a file, or null when it is beyond what the file has.
const std::string *find(const Sections &sections, const std::string &language, uint32_t id) {
    static const std::string none;
    for (const auto &[number, blocks] : sections) {
        const support::Language *found = number >= 3 ? &blocks.front() : nullptr;
        for (const support::Language &block : blocks)
            found = block.code == language ? &block : found;
        if (found && number == static_cast<int>(id >> 12))
            return (id & 0xFFF) < found->strings.size() ? &found->strings[id & 0xFFF] : nullptr;
    }
    return &none;
}

bool someModuleIsFull() {
    const auto isTaken = [](const ResourceSmallString &slot) { return slot.text[0] != 0; };
    for (void *each = ModuleList->First(ModuleList); each; each = ModuleList->Next(ModuleList))
        if (std::ranges::all_of(static_cast<ResourceModule *>(each)->smallStrings, isTaken))
            return true;
    return false;
}

struct Held {
    const char *text;
    std::string bytes;
    uint32_t id;

    bool isStored() const {
        for (const char *module : {"m", "m_ext"})
            for (const char *language : languages)
                if (ResourceStorageList && resource_FindStoredString(module, language, id) == text)
                    return true;
        return false;
    }
};

} // namespace

void fuzz::run(Input &in) {
    Library library;
    if (in.oneIn(2))
        openLog(TRACE_OUTPUT_SERIAL, 1);
    library.terminal.environment = {{"default_lang", "en"}, {"EXTRES", in.oneIn(2) ? "1" : "0"}};
    const Sections plain = readSections(in), external = readSections(in);
    std::string &file = library.terminal.files["m.res"];
    file = support::resourceFile(7, plain);
    library.terminal.files["m_ext.res"] = support::resourceFile(7, external);
    const uint32_t flips = in.oneIn(4) ? in.below(8) : 0;
    in.damage(file, flips);
    armFault(in);

    std::vector<Held> held;
    for (int steps = 0; !in.isOver() && steps < 200; ++steps) {
        const uint32_t operation = in.below(12), section = in.below(6);
        const uint32_t id = section << 12 | in.below(26);
        const std::string language = in.pick(languages);
        const char *module = in.oneIn(8) ? "m_ext" : "m";
        switch (operation) {
        default: {
            const bool isOther = operation == 6;
            const char *text = isOther ? Resource_GetStringEx(module, language.c_str(), id)
                                       : Resource_GetString(module, id);
            REQUIRE(text || isOther);
            if (!text)
                break;
            // The slot of an empty string counts as free, and the next string may come there.
            if (*text)
                held.push_back({text, text, id});
            const std::string asked = isOther ? language : CurrentLanguage;
            const std::string *expected = find(external, asked, id);
            if (module[1] == 0 && (!CheckExternalResources || (expected && expected->empty())))
                expected = find(plain, asked, id);
            if (expected && flips == 0 && *expected != text)
                REQUIRE_UNLESS_STRUCK(*text == 0 && someModuleIsFull());
            break;
        }
        case 7:
        case 8:
            if (operation == 7)
                Resource_Release(module, id);
            else
                Resource_ReleaseAll(module);
            std::erase_if(held, [&](const Held &each) {
                return (operation == 8 || each.id == id) && !each.isStored();
            });
            break;
        case 9:
            if (Resource_Initialize(module) == UTI_OK)
                Resource_SetLanguage(language.c_str());
            break;
        case 10: {
            ResourceLanguageInfo infos[2];
            REQUIRE(Resource_GetLanguages(module, in.below(20), infos, 2) <= 2);
            Resource_IsValid(module, static_cast<uint16_t>(in.below(9)));
            break;
        }
        case 11:
            if (in.oneIn(3)) {
                Resource_Close(module);
                held.clear();
            }
        }
        for (const Held &each : held)
            REQUIRE(each.bytes == each.text);
    }
}
