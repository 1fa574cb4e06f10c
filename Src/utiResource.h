// utiResource.h: the tags of a resource file (drawn in docs/formats.md), what the module files give
// to the strings above them, and the string call for readers inside the library that must know
// where a string ends.
#pragma once

#include "uti.h"

#include <span>
#include <string_view>

namespace uti {

namespace resource {

enum Tag : uint16_t {
    version = 0x0001,
    languageCode = 0x0021,
    languageInfo = 0x0022,
    tableOffset = 0x0023,
    header = 0x8002,
    languageBlock = 0x8020,
    firstSection = 0x8100
};

inline constexpr uint16_t sectionsInFile = 6;

} // namespace resource

// The first item of a list that `matches` takes, the list's cursor on it; null when there is none,
// with the cursor past the end, and for a null list.
template <class Item, class Matches>
[[gnu::always_inline]] inline Item *findItem(List *list, Matches matches) {
    if (!list)
        return nullptr;
    int32_t index = 0;
    for (ListNode *node = list->head; node; node = node->next) {
        auto *item = static_cast<Item *>(node->data);
        if (matches(*item)) {
            list->current = node;
            list->index = index;
            return item;
        }
        ++index;
    }
    list->current = nullptr;
    list->index = index;
    return nullptr;
}

// Destroys a list, if there is one, with its items.
template <class Item, class FreeItem>
void destroyItems(List *&list, FreeItem freeItem) {
    findItem<Item>(list, [&](Item &item) {
        freeItem(item);
        return false;
    });
    List_Destroy(list);
    list = nullptr;
}

// --- files and modules

bool isModuleName(const char *module);

// Whether a field holds this name, behind what it holds before it. Every string that is asked for
// comes by here, and names are so short that a call would take longer.
template <std::size_t size>
[[gnu::always_inline]] inline bool isSameName(const char (&field)[size], const char *name,
                                              std::size_t before = 0) {
#pragma GCC unroll 14
    for (std::size_t i = before; i < size; ++i) {
        if (field[i] != *name)
            return false;
        if (*name++ == 0)
            return true;
    }
    return false;
}

// Whether a record is that of a module; once, where nothing hangs on its speed.
bool isModule(const ResourceModule &loaded, const char *module);

// Reads EXTRES and default_lang and makes the module list on first use. False when memory is short.
bool prepareModules();

// Whether a module is the current one, so that it need not be made that.
inline bool isCurrentModule(const char *module) {
    return CurrentModule && ModuleList && module && isSameName(CurrentModuleName, module);
}

// The two-letter language of the environment variable default_lang in lower case, else "ru".
void readDefaultLanguage(char (&language)[3]);

// Takes a module whose strings are released out of the list and frees it with its file and
// languages.
void unloadModule(ResourceModule *module);

// --- strings

// A string of the resources with its terminator not counted; on failure it is empty and its
// address is `ResourceEmptyStr`. Binary strings (dialog descriptions) may hold zeros.
std::string_view getResourceString(const char *module, uint32_t id);

} // namespace uti
