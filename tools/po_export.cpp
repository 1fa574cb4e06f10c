// po_export.cpp: a PO file made of a source.
#include "tools/po.h"

#include <algorithm>
#include <ctime>
#include <set>

namespace uti::tool {

namespace {

// Where a string is shown, by its id.
using Remarks = std::map<uint16_t, std::string>;

std::string told(const Room &room) {
    if (room.columns == 0)
        return "";
    return room.lines > 0 ? concat(": ", room.columns, " x ", room.lines, " cells")
                          : concat(": ", room.columns, " cells in a line");
}

void addRemark(Remarks &remarks, const NamedText &text, const std::string &remark) {
    std::string &all = remarks[text.string.value_or(0)];
    if (text.string && all.find(remark + '\n') == all.npos)
        all += remark + '\n';
}

Remarks remarksFor(const ResourceSource &source, const std::string &language, const Rooms &rooms) {
    Remarks remarks;
    for (std::size_t i = 0; i < source.dialogs.size(); ++i) {
        const SourceDialog &dialog = source.dialogs[i];
        if (std::ranges::count(dialog.languages, language) == 0)
            continue;
        DialogTexts texts = dialog.texts;
        const auto known = rooms.find({i, language});
        std::size_t index = 0;
        for (const TextPlace &place : placesOf(texts)) {
            const std::string where = dialog.name + ", " + place.name;
            const Room room = known == rooms.end() ? Room() : known->second[index];
            ++index;
            for (const TextChoice *choice : place.choices)
                for (const NamedText &text : *choice) {
                    addRemark(remarks, text, where + told(room));
                    for (const NamedText &arg : text.args)
                        addRemark(remarks, arg, where + ", as a part of it");
                }
        }
    }
    return remarks;
}

void fillHeader(PoFile &po, const ResourceSource &source, const std::string &language) {
    char now[32];
    const std::time_t time = std::time(nullptr);
    std::strftime(now, sizeof now, "%Y-%m-%d %H:%M+0000", std::gmtime(&time));
    const auto fill = [&](const char *name, const std::string &value) {
        if (po.field(name).empty())
            po.setField(name, value);
    };
    po.setField("Project-Id-Version", source.file.version
                                          ? concat(source.module, ' ', *source.file.version)
                                          : source.module);
    fill("POT-Creation-Date", now);
    fill("PO-Revision-Date", now);
    fill("Last-Translator", "none");
    fill("Language-Team", "none");
    if (po.field("Language").substr(0, 2) != language)
        po.setField("Language", language);
    po.setField("MIME-Version", "1.0");
    po.setField("Content-Type", "text/plain; charset=UTF-8");
    po.setField("Content-Transfer-Encoding", "8bit");
}

// Gives an entry what the translator had written for the same string.
void keep(PoEntry &entry, const PoEntry &old, const SourceText &source, Diagnostics &diagnostics) {
    entry.comments = old.comments;
    if (old.translation.empty())
        return;
    if (old.original != entry.original || old.isFuzzy) {
        // Made for another text, or not yet sure of itself: to be looked at.
        entry.before = old.original != entry.original ? old.original : old.before;
        entry.translation = old.translation;
        entry.isFuzzy = true;
    } else if (old.translation != entry.translation) {
        diagnostics.error(old.place, *entry.context, " says something else in ", source.path(),
                          "; import this file first, or remove it to have it made anew");
    }
}

} // namespace

std::vector<TextPlace> placesOf(DialogTexts &texts) {
    std::vector<TextPlace> places;
    const auto add = [&](const std::string &name, TextChoice &choice) {
        if (!choice.empty())
            places.push_back({name, {&choice}});
    };
    add("caption", texts.caption);
    add("text", texts.text);
    for (std::size_t i = 0; i < texts.buttons.size(); ++i)
        add(concat("button ", i + 1), texts.buttons[i]);
    for (auto &[name, choice] : texts.labels)
        add("label " + name, choice);
    TextPlace items{"item", {}};
    for (TextChoice &item : texts.items)
        items.choices.push_back(&item);
    if (!items.choices.empty())
        places.push_back(std::move(items));
    return places;
}

PoFile exportPo(const ResourceSource &source, const SourceText &sourceText,
                const std::string &language, const Rooms &rooms, const PoFile &before,
                Diagnostics &diagnostics) {
    PoFile po{before.header, {}};
    fillHeader(po, source, language);
    const Remarks remarks = remarksFor(source, language, rooms);
    std::map<std::string, const PoEntry *> old;
    for (const PoEntry &entry : before.entries)
        if (entry.context && !entry.isObsolete)
            old.emplace(*entry.context, &entry);

    for (const StringName &string : source.names) {
        const std::string original =
            textIn(source, string, source.languages.front().code).value_or("");
        if (original.empty() || !hindrance(source, string, language).empty())
            continue;
        PoEntry entry;
        entry.context = string.name;
        entry.original = original;
        entry.translation = textIn(source, string, language).value_or("");
        entry.file = std::filesystem::path(sourceText.path()).filename();
        entry.line = string.place.line;
        const auto placeholders = placeholdersOf(original);
        entry.isFormat = !placeholders.empty() && placeholders.front().kind != '{';
        if (const auto found = remarks.find(string.id); found != remarks.end())
            entry.remarks = found->second;
        if (const auto found = old.extract(string.name))
            keep(entry, *found.mapped(), sourceText, diagnostics);
        po.entries.push_back(std::move(entry));
    }

    // What translators wrote for strings that are gone stays at the end, as gettext has it.
    std::set<std::pair<std::optional<std::string>, std::string>> present;
    for (const PoEntry &entry : po.entries)
        present.emplace(entry.context, entry.original);
    for (const PoEntry &entry : before.entries) {
        const bool isGone = entry.context && old.contains(*entry.context);
        if (entry.translation.empty() || (!entry.isObsolete && !isGone) ||
            present.contains({entry.context, entry.original}))
            continue;
        PoEntry obsolete = entry;
        obsolete.isObsolete = true;
        obsolete.remarks.clear();
        po.entries.push_back(std::move(obsolete));
    }
    return po;
}

} // namespace uti::tool
