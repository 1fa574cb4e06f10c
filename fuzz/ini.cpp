// INI files against a plain model: set, get, remove, forget and read again; the file on disk is at
// every moment what the model would write.
#include "fuzz/terminal.h"

#include "terminal.h"

#include <optional>
#include <utility>
#include <vector>

using namespace fuzz;

namespace {

std::string trim(std::string text) {
    const auto isBlank = [](char c) { return c >= 1 && c <= 32; };
    while (!text.empty() && isBlank(text.back()))
        text.pop_back();
    while (!text.empty() && isBlank(text.front()))
        text.erase(0, 1);
    const bool isQuoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    return isQuoted ? text.substr(1, text.size() - 2) : text;
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

std::string decode(const std::string &value) {
    std::string out;
    for (std::size_t i = 0; i < value.size();) {
        std::size_t like = 0;
        const auto isLike = [](char c, char pattern) {
            return pattern == '0' ? c >= '0' && c <= '9' : c == pattern;
        };
        while (like < 5 && i + like < value.size() && isLike(value[i + like], "&#00;"[like]))
            ++like;
        if (like == 5) {
            const int code = std::stoi(value.substr(i + 2, 2));
            if (code == 0)
                return out;
            out += static_cast<char>(code);
            i += 5;
        } else if (like > 0 && i + like == value.size()) {
            return out;
        } else {
            out += value.substr(i, like + 1);
            i += like + 1;
        }
    }
    return out;
}

using Keys = std::vector<std::pair<std::string, std::string>>;

// Items by name, in the order of their arrival.
template <class Items>
auto *find(Items &items, const std::string &name) {
    for (auto &item : items)
        if (item.first == name)
            return &item.second;
    return static_cast<decltype(&items[0].second)>(nullptr);
}
template <class Items>
auto &findOrAdd(Items &items, const std::string &name) {
    if (auto *found = find(items, name))
        return *found;
    return items.emplace_back(name, typename Items::value_type::second_type()).second;
}

struct Model {
    std::vector<std::pair<std::string, Keys>> sections;

    explicit Model(const std::string &text) {
        std::string section, line;
        for (const char c : text + '\n') {
            if (c != '\r' && c != '\n') {
                line += c;
                continue;
            }
            read(std::exchange(line, {}).c_str(), section);
        }
    }
    void read(const std::string &line, std::string &section) {
        const std::size_t equals = line.find('=');
        if (line.empty() || line[0] == ';' || line[0] == '#')
            return;
        if (line[0] == '[') {
            section = headerName(line);
            if (!section.empty())
                findOrAdd(sections, section);
        } else if (equals > 0 && equals != line.npos) {
            section = section.empty() ? "NONAME_SECTION" : section;
            Keys &keys = findOrAdd(sections, section);
            const std::string key = equals <= 255 ? nameOf(line.substr(0, equals)) : "";
            if (!key.empty() && line.size() - equals - 1 <= 254)
                findOrAdd(keys, key) = decode(trim(line.substr(equals + 1)));
        }
    }
    bool set(const std::string &section, const std::string &key, const std::string &value) {
        const std::string found =
            find(sections, section) ? section : headerName('[' + section + ']');
        if (!found.empty())
            findOrAdd(findOrAdd(sections, found), key) = value;
        return !found.empty();
    }
    std::string text() const {
        std::string out;
        for (const auto &[section, keys] : sections) {
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

int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
    Library library;
    Input in(data, size);
    auto &files = library.terminal.files;
    const auto disk = [&] { return files.count("f") ? files["f"] : std::string(); };
    files["f"] = in.bytes(in.oneIn(4) ? 2000 : 200);
    armFault(in);
    std::optional<Model> cache;
    std::string before; // on disk, ahead of the call
    const auto load = [&] {
        if (!cache && !before.empty())
            cache.emplace(before);
        return cache.has_value();
    };
    const std::string names[] = {"S", "k", " \"Net\" ", "a]b", "noname_section"};
    const auto name = [&] { return in.oneIn(3) ? in.text(300) : in.pick(names); };

    for (int steps = 0; !in.isOver() && steps < 100 && !fake::faultStruck(); ++steps) {
        const uint32_t operation = in.below(8);
        const std::string section = name(), key = name(), value = in.text(280);
        const bool isNamed = !nameOf(section).empty() && !nameOf(key).empty();
        char out[256];
        before = disk();
        if (operation < 3) {
            const int32_t result = Ini_SetStr("f", section.c_str(), key.c_str(), value.c_str());
            if (fake::faultStruck())
                break;
            bool isSet = isNamed && value.size() < 255;
            if (isSet) {
                const std::optional<Model> unchanged = cache;
                Model changed = load() ? *cache : Model("");
                isSet = changed.set(nameOf(section), nameOf(key), trim(value));
                cache = isSet ? changed : unchanged;
            }
            REQUIRE(result == (isSet ? 0 : UTI_INI_FAILED));
            REQUIRE(!isSet || disk() == cache->text());
        } else if (operation == 3) {
            const int32_t room = 1 + static_cast<int32_t>(in.below(256));
            const int32_t result = Ini_GetStr("f", section.c_str(), key.c_str(), out, room);
            if (fake::faultStruck())
                break;
            int32_t expected = UTI_INI_FAILED;
            if (isNamed && load()) {
                const Keys *keys = find(cache->sections, nameOf(section));
                const std::string *found = keys ? find(*keys, nameOf(key)) : nullptr;
                expected = !keys                                             ? UTI_INI_NO_SECTION
                           : !found                                          ? UTI_INI_NO_KEY
                           : found->size() >= static_cast<std::size_t>(room) ? UTI_INI_SMALL_BUFFER
                                                                             : 0;
                REQUIRE(expected != 0 || out == *found);
            }
            REQUIRE(result == expected);
        } else if (operation == 4) {
            Ini_RemoveFileInfoFromCache("f");
            cache.reset();
        } else if (operation == 5) {
            const std::string wanted = in.oneIn(2) ? section : nameOf(section);
            Ini_RemoveSection("f", wanted.c_str());
            if (fake::faultStruck() || !cache)
                continue;
            std::erase_if(cache->sections, [&](const auto &each) { return each.first == wanted; });
            REQUIRE(disk() == cache->text());
        } else if (operation == 6) {
            const support::ExactBlock lines(std::string(in.below(400), '#'));
            const auto room = static_cast<int32_t>(lines.size());
            REQUIRE(Ini_GetSection("f", section.c_str(), lines.data(), room) <= room);
        } else {
            const int32_t count = Ini_GetSectionCount("f");
            if (fake::faultStruck())
                break;
            REQUIRE(count ==
                    (load() ? static_cast<int32_t>(cache->sections.size()) : UTI_INI_FAILED));
            for (int32_t i = 0; i < count; ++i) {
                REQUIRE(Ini_GetSectionName("f", i, out, sizeof out) == 0);
                REQUIRE(cache->sections[static_cast<std::size_t>(i)].first == out);
            }
        }
    }
    fake::disarm();
    Ini_RemoveFileInfoFromCache("f");
    return 0;
}
