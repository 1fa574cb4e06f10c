// INI files against a plain model: set, get, remove, forget and read again, written as prescribed
// or safely; the file on disk is at every moment what the model would write.
#include "fuzz/terminal.h"

#include "terminal.h"

#include <optional>
#include <regex>
#include <sstream>
#include <vector>

using namespace fuzz;

namespace {

std::string trim(const std::string &text) {
    const auto isNoBlank = [](char c) { return c < 1 || c > 32; };
    const auto first = std::find_if(text.begin(), text.end(), isNoBlank);
    const auto last = std::find_if(text.rbegin(), std::make_reverse_iterator(first), isNoBlank);
    const std::string inside(first, last.base());
    const bool isQuoted = inside.size() >= 2 && inside.front() == '"' && inside.back() == '"';
    return isQuoted ? inside.substr(1, inside.size() - 2) : inside;
}

// A name as it is compared; empty when it is none.
std::string nameOf(const std::string &text) {
    std::string name = trim(text);
    if (name.size() > 255)
        return {};
    TextToUppercase(name.data(), name.data(), static_cast<uint32_t>(name.size()));
    return name;
}
std::string headerName(const std::string &line) {
    const std::size_t end = line.find(']');
    return end == line.npos || end > 255 ? std::string() : nameOf(line.substr(1, end - 1));
}

// An escape, the beginning of one that ends the value, or what is taken as it stands.
std::string decode(const std::string &value) {
    static const std::regex piece("&#(\\d\\d);|(&(?:#\\d{0,2})?$)|(?:&(?:#\\d{0,2})?)?[\\s\\S]");
    std::string out;
    for (std::sregex_iterator at(value.begin(), value.end(), piece), end; at != end; ++at) {
        const std::string code = (*at)[1];
        if (code == "00" || (*at)[2].matched)
            break;
        out += code.empty() ? at->str() : std::string(1, static_cast<char>(std::stoi(code)));
    }
    return out;
}

// Items by name, in the order of their arrival.
template <class Item>
struct Items : std::vector<std::pair<std::string, Item>> {
    Item *find(const std::string &name) {
        for (auto &[each, item] : *this)
            if (each == name)
                return &item;
        return nullptr;
    }
    Item &findOrAdd(const std::string &name) {
        Item *const found = find(name);
        return found ? *found : this->emplace_back(name, Item()).second;
    }
};

struct Model : Items<Items<std::string>> {
    void read(const std::string &line, std::string &section) {
        const std::size_t equals = line.find('=');
        if (line.empty() || line[0] == ';' || line[0] == '#')
            return;
        if (line[0] == '[') {
            section = headerName(line);
            if (!section.empty())
                findOrAdd(section);
        } else if (equals > 0 && equals != line.npos) {
            section = section.empty() ? "NONAME_SECTION" : section;
            auto &keys = findOrAdd(section);
            const std::string key = equals <= 255 ? nameOf(line.substr(0, equals)) : "";
            if (!key.empty() && line.size() - equals - 1 <= 254)
                keys.findOrAdd(key) = decode(trim(line.substr(equals + 1)));
        }
    }
    static Model of(std::string text) {
        Model model;
        std::string section;
        std::replace(text.begin(), text.end(), '\r', '\n');
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);)
            model.read(line.substr(0, line.find('\0')), section);
        return model;
    }
    std::string text() const {
        std::string out;
        for (const auto &[section, keys] : *this) {
            out += '[' + section + "]\r\n";
            for (const auto &[key, value] : keys) {
                out += key + '=';
                for (const char c : value)
                    out += c == '\r' ? "&#13;" : c == '\n' ? "&#10;" : std::string(1, c);
                out += "\r\n";
            }
            out += "\r\n";
        }
        return out;
    }
};

} // namespace

void fuzz::run(Input &in) {
    Library library;
    std::string &disk = library.terminal.files["f"];
    disk = in.bytes(in.oneIn(4) ? 2000 : 200);
    armFault(in);
    std::optional<Model> cache;
    const std::string names[] = {"S", "k", " \"Net\" ", "a]b", "noname_section"};
    const auto name = [&] { return in.oneIn(3) ? in.text(300) : in.pick(names); };

    for (int steps = 0; !in.isOver() && steps < 100 && !fake::faultStruck(); ++steps) {
        const uint32_t operation = in.below(9);
        const std::string section = name(), key = name(), value = in.text(280);
        const std::string inSection = nameOf(section), ofKey = nameOf(key);
        const bool isNamed = !inSection.empty() && !ofKey.empty();
        char out[256];
        std::optional<Model> loaded = cache;
        if (!loaded && !library.terminal.files["f"].empty())
            loaded = Model::of(library.terminal.files["f"]);
        switch (operation) {
        default: {
            const int32_t result = Ini_SetStr("f", section.c_str(), key.c_str(), value.c_str());
            Model changed = loaded.value_or(Model());
            const std::string header = headerName('[' + inSection + ']');
            const std::string &found = changed.find(inSection) ? inSection : header;
            const bool isSet = isNamed && value.size() < 255 && !found.empty();
            if (isSet) {
                changed.findOrAdd(found).findOrAdd(ofKey) = trim(value);
                cache = changed;
            }
            REQUIRE_UNLESS_STRUCK(result == (isSet ? 0 : UTI_INI_FAILED));
            REQUIRE_UNLESS_STRUCK(!isSet || library.terminal.files["f"] == cache->text());
            break;
        }
        case 3: {
            const int32_t room = 1 + static_cast<int32_t>(in.below(256));
            const int32_t result = Ini_GetStr("f", section.c_str(), key.c_str(), out, room);
            cache = isNamed ? loaded : cache;
            auto *keys = cache ? cache->find(inSection) : nullptr;
            const std::string *found = keys ? keys->find(ofKey) : nullptr;
            REQUIRE_UNLESS_STRUCK(result == (!isNamed || !cache ? UTI_INI_FAILED
                                             : !keys            ? UTI_INI_NO_SECTION
                                             : !found           ? UTI_INI_NO_KEY
                                             : found->size() >= static_cast<std::size_t>(room)
                                                 ? UTI_INI_SMALL_BUFFER
                                                 : 0));
            REQUIRE_UNLESS_STRUCK(result != 0 || out == *found);
            break;
        }
        case 4:
            Ini_RemoveFileInfoFromCache("f");
            cache.reset();
            break;
        case 5: {
            const std::string wanted = in.oneIn(2) ? section : inSection;
            Ini_RemoveSection("f", wanted.c_str());
            if (cache)
                std::erase_if(*cache, [&](const auto &each) { return each.first == wanted; });
            REQUIRE_UNLESS_STRUCK(!cache || library.terminal.files["f"] == cache->text());
            break;
        }
        case 6: {
            const support::ExactBlock lines(std::string(in.below(400), '#'));
            const auto room = static_cast<int32_t>(lines.size());
            REQUIRE(Ini_GetSection("f", section.c_str(), lines.data(), room) <= room);
            break;
        }
        case 7: {
            const int32_t count = Ini_GetSectionCount("f");
            cache = loaded;
            REQUIRE_UNLESS_STRUCK(count ==
                                  (cache ? static_cast<int32_t>(cache->size()) : UTI_INI_FAILED));
            for (int32_t i = 0; i < count && !fake::faultStruck(); ++i) {
                REQUIRE(Ini_GetSectionName("f", i, out, sizeof out) == 0);
                REQUIRE((*cache)[static_cast<std::size_t>(i)].first == out);
            }
            break;
        }
        case 8:
            Ini_SetSafeWrite(in.byte() % 2);
        }
        REQUIRE_UNLESS_STRUCK(library.terminal.files.size() == 1);
    }
    fake::disarm();
    Ini_SetSafeWrite(0);
    Ini_RemoveFileInfoFromCache("f");
}
