// utiResourceStrings.cpp: strings by module and id, with their three stores: the transient small
// slots and large-string List of each module, and the lasting store per language and module; and
// closing a module, which takes all of them with it. Stands on utiResource.cpp.
#include "Src/assertions.h"
#include "Src/heap.h"
#include "Src/platform.h"
#include "Src/text.h"
#include "Src/utiResource.h"
#include "Src/utiStorage.h"

#include <bit>
#include <cstdio>

constinit List *ResourceStorageList = nullptr;
constinit char ResourceEmptyStr[1] = {};

namespace uti {

namespace {

constexpr Assertions<"Src/utiResource"> asserts;

constexpr std::size_t languageLength = 2;
constexpr uint32_t storedLimit = 2048;

constexpr bool isLanguageCode(const char *language) {
    return language && language[0] != 0 && language[1] != 0 && language[2] == 0;
}

// Whether the module that overrides this one is to be asked as well. What the environment says of
// that is read before the very first lookup.
bool mayBeOverridden(const char *module) {
    if (!ModuleList && isModuleName(module)) [[unlikely]]
        prepareModules();
    return module && CheckExternalResources == 1;
}

// The names of a module and of the module that overrides it, its own name with "_ext" behind. Both
// are copies where it is to be asked: a caller may pass `CurrentModuleName`, which changes when the
// other module becomes current. A name that is too long stays so in both.
class ModuleNames {
public:
    explicit ModuleNames(const char *module) : plain_(module) {
        if (!mayBeOverridden(module)) [[likely]]
            return;
        setField(plainText_, {module, strnlen(module, sizeof plainText_)});
        plain_ = plainText_;
        external_ = externalText_;
        snprintf(externalText_, sizeof externalText_, "%s_ext", plainText_);
    }
    ModuleNames(const ModuleNames &) = delete;
    ModuleNames &operator=(const ModuleNames &) = delete;

    const char *plain() const { return plain_; }
    // Null when it is not to be asked.
    const char *external() const { return external_; }

private:
    const char *plain_;
    const char *external_ = nullptr;
    char plainText_[RESOURCE_NAME_LENGTH + 2];
    char externalText_[RESOURCE_NAME_LENGTH + 6];
};

std::string_view emptyString() {
    return {ResourceEmptyStr, sizeof ResourceEmptyStr - 1};
}

// The key of an entry of the lasting store, two letters and a name with zeros behind it, in words:
// an entry costs a comparison or two. One of a name that is too long for a key has no zero at its
// end and is equal to none.
class StoreKey {
public:
    [[gnu::always_inline]] StoreKey(const char *language, const char *module)
        : words_{at(language[0], 0) | at(language[1], 1)} {
#pragma GCC unroll 14
        for (unsigned i = languageLength; i < sizeof words_; ++i) {
            if (*module == 0)
                break;
            words_[i / sizeof(Word)] |= at(*module++, i % sizeof(Word));
        }
    }

    [[gnu::always_inline]] bool isThatOf(const ResourceStoredStrings &entry) const {
        static_assert(sizeof entry.key == sizeof words_);
#pragma GCC unroll 4
        for (unsigned i = 0; i < count; ++i) {
            Word word;
            std::memcpy(&word, entry.key + i * sizeof word, sizeof word);
            if (word != words_[i])
                return false;
        }
        return true;
    }

    void write(ResourceStoredStrings &entry) const {
        std::memcpy(entry.key, words_, sizeof words_);
    }

private:
    using Word = std::size_t;
    static constexpr unsigned count = sizeof(ResourceStoredStrings::key) / sizeof(Word);

    // A letter where it lies in the memory of a word.
    static constexpr Word at(char letter, unsigned place) {
        const bool upwards = std::endian::native == std::endian::little;
        return Word{static_cast<uint8_t>(letter)}
               << 8 * (upwards ? place : sizeof(Word) - 1 - place);
    }

    Word words_[count];
};

// The entry of a module and a language, of which two characters count; null when there is none.
[[gnu::always_inline]] inline ResourceStoredStrings *findStoredHere(const char *module,
                                                                    const char *language) {
    const StoreKey key(language, module);
    return findItem<ResourceStoredStrings>(
        ResourceStorageList, [&](ResourceStoredStrings &item) { return key.isThatOf(item); });
}

// The same where a call counts little.
[[gnu::noinline]] ResourceStoredStrings *findStored(const char *module, const char *language) {
    return findStoredHere(module, language);
}

// The same entry, created when there is none; null when memory is short.
ResourceStoredStrings *findOrAddStored(const char *module, const char *language) {
    if (!ResourceStorageList)
        ResourceStorageList = List_Create();
    if (!ResourceStorageList)
        return nullptr;
    if (ResourceStoredStrings *stored = findStored(module, language))
        return stored;

    HeapPointer<ResourceStoredStrings> entry = allocateZeroed<ResourceStoredStrings>();
    if (!entry)
        return asserts.fail(nullptr);
    StoreKey(language, module).write(*entry);
    entry->strings = Storage_Create();
    if (!entry->strings)
        return nullptr;
    if (!ResourceStorageList->AddTail(ResourceStorageList, entry.get())) {
        Storage_Free(entry->strings);
        return nullptr;
    }
    return entry.release();
}

// The stored copy in a language, or in the default one when that is no language code.
[[gnu::noinline]] const StorageEntry *findInLanguage(const char *module, const char *language,
                                                     uint16_t id) {
    if (!module || !ResourceStorageList)
        return nullptr;
    char defaultLanguage[3];
    if (!isLanguageCode(language)) {
        readDefaultLanguage(defaultLanguage);
        language = defaultLanguage;
    }
    const ResourceStoredStrings *stored = findStored(module, language);
    if (!stored)
        return nullptr;
    if (!stored->strings)
        return asserts.fail(nullptr);
    const StorageEntry *entry = findEntry(stored->strings, id);
    return entry && entry->type == STORAGE_STRING ? entry : nullptr;
}

// The stored copy in the current language where no detour leads to it, as nearly every string that
// is asked for is found; null tells nothing.
template <auto find>
[[gnu::always_inline]] inline const StorageEntry *findAtOnce(const char *module, uint32_t id) {
    if (!module || CheckExternalResources == 1 || CurrentLanguage[languageLength] != 0) [[unlikely]]
        return nullptr;
    const ResourceStoredStrings *stored = find(module, CurrentLanguage);
    if (!stored || !isOpen(stored->strings)) [[unlikely]]
        return nullptr;
    const StorageEntry *entry = findAtOnce(tableOf(stored->strings), static_cast<uint16_t>(id));
    return entry && entry->type == STORAGE_STRING ? entry : nullptr;
}

// A stored copy, its terminator not counted.
std::string_view textOf(const StorageEntry &entry) {
    return {static_cast<const char *>(entry.data), entry.length - 1};
}

// Reads the bytes of a string into a free small slot of the current module.
std::string_view readSmallString(const char *module, uint16_t id, uint16_t length) {
    for (ResourceSmallString &slot : CurrentModule->smallStrings) {
        if (slot.text[0] != 0)
            continue;
        // A string that begins with a zero leaves its slot free but not empty.
        slot = {};
        if (File_Read(CurrentModule->handle, slot.text, length) != length) {
            slot = {};
            return asserts.fail(emptyString());
        }
        slot.id = id;
        resource_StoreString(module, id, slot.text, length);
        return {slot.text, length};
    }
    return asserts.fail(emptyString());
}

// Reads the bytes of a string into a new record of the current module's large-string List.
std::string_view readLargeString(const char *module, uint16_t id, uint16_t length) {
    List *&strings = CurrentModule->largeStrings;
    if (!strings)
        strings = List_Create();
    HeapPointer<ResourceLargeString> record = allocateZeroed<ResourceLargeString>();
    HeapPointer<char> text = allocateBytes(length + 1u);
    if (!strings || !record || !text)
        return asserts.fail(emptyString());

    if (File_Read(CurrentModule->handle, text.get(), length) != length)
        return asserts.fail(emptyString());
    text.get()[length] = 0;
    *record = {id, text.get(), length};
    if (!strings->AddTail(strings, record.get()))
        return asserts.fail(emptyString());
    static_cast<void>(record.release()); // the list has it now
    resource_StoreString(module, id, text.get(), length);
    return {text.release(), length};
}

// Reads a string from the module's file. On its own, so that what is stored is found without it.
[[gnu::noinline]] std::string_view readString(const char *module, uint16_t id) {
    if (Resource_Initialize(module) != UTI_OK)
        return asserts.fail(emptyString());

    const uint32_t section = id >> 12;
    const uint32_t table = section < RESOURCE_SECTIONS ? CurrentModule->tableOffsets[section] : 0;
    if (table == 0)
        return asserts.fail(emptyString());

    uint8_t entry[4];
    const uint32_t index = id & 0xFFFu;
    if (!readFileAt(CurrentModule->handle, table + 4 * index, entry, sizeof entry))
        return asserts.fail(emptyString());
    const uint16_t offset = BufferToWord(entry);
    const uint16_t length = BufferToWord(entry + 2);
    // No string lies where the index is: an id past its end has met the bytes of other strings.
    if (length > 0 && offset < sizeof entry * (index + 1))
        return asserts.fail(emptyString());
    if (File_SetPosition(CurrentModule->handle, table + offset) != 0)
        return asserts.fail(emptyString());
    return length <= RESOURCE_SMALL_LENGTH ? readSmallString(module, id, length)
                                           : readLargeString(module, id, length);
}

// `resource_GetString` with the string's length.
[[gnu::noinline]] std::string_view getModuleString(const char *module, uint32_t stringId) {
    const auto id = static_cast<uint16_t>(stringId);
    const StorageEntry *stored = findInLanguage(module, CurrentLanguage, id);
    return stored ? textOf(*stored) : readString(module, id);
}

// The string of the module that overrides this one, if it may be, else its own.
[[gnu::noinline]] std::string_view getString(const char *module, uint32_t id) {
    const ModuleNames names(module);
    if (names.external()) {
        const std::string_view text = getModuleString(names.external(), id);
        if (*text.data() != 0)
            return text;
    }
    return getModuleString(names.plain(), id);
}

// The same for the export, which so has nothing to do behind this call.
[[gnu::noinline]] const char *getAddress(const char *module, uint32_t id) {
    return getString(module, id).data();
}

void freeLargeString(ResourceLargeString &string) {
    std::free(string.text);
    std::free(&string);
}

// Frees the stored strings of a module in every language.
void freeStoredStrings(const char *module) {
    const auto isOfModule = [&](ResourceStoredStrings &item) {
        return isSameName(item.key, module, languageLength);
    };
    List *list = ResourceStorageList;
    while (auto *stored = findItem<ResourceStoredStrings>(list, isOfModule)) {
        Storage_Free(stored->strings);
        list->Remove(list);
        std::free(stored);
    }
}

} // namespace

std::string_view getResourceString(const char *module, uint32_t id) {
    const StorageEntry *stored = findAtOnce<findStored>(module, id);
    return stored ? textOf(*stored) : getString(module, id);
}

} // namespace uti

using namespace uti;

const char *resource_FindStoredString(const char *module, const char *language, uint32_t id) {
    const StorageEntry *stored = findInLanguage(module, language, static_cast<uint16_t>(id));
    return stored ? textOf(*stored).data() : nullptr;
}

int32_t resource_StoreString(const char *module, uint32_t id, const void *bytes, uint32_t length) {
    if (!module || !bytes)
        return 0;
    if (fieldText(CurrentLanguage).size() < languageLength ||
        strnlen(module, RESOURCE_NAME_LENGTH + 1) > RESOURCE_NAME_LENGTH)
        return asserts.fail(0);
    ResourceStoredStrings *stored = findOrAddStored(module, CurrentLanguage);
    if (!stored)
        return 0;
    if (!stored->strings)
        return asserts.fail(0);
    if (length >= storedLimit)
        return 0;
    char text[storedLimit] = {};
    std::memcpy(text, bytes, length);
    return Storage_PutString(stored->strings, static_cast<uint16_t>(id), text, length + 1);
}

const char *resource_GetString(const char *module, uint32_t id) {
    return getModuleString(module, id).data();
}

const char *Resource_GetString(const char *module, uint32_t id) {
    const StorageEntry *stored = findAtOnce<findStoredHere>(module, id);
    return stored ? textOf(*stored).data() : getAddress(module, id);
}

const char *Resource_GetStringEx(const char *module, const char *language, uint32_t id) {
    if (const char *stored = resource_FindStoredString(module, language, id))
        return stored;
    if (Resource_Initialize(module) != UTI_OK)
        return asserts.fail(nullptr);

    char saved[3];
    std::memcpy(saved, CurrentLanguage, sizeof saved);
    Resource_SetLanguage(language && *language ? language : saved);
    const char *text = Resource_GetString(module, id);
    Resource_SetLanguage(saved);
    return text;
}

void resource_Release(const char *module, uint32_t stringId) {
    if (!isCurrentModule(module) && Resource_Initialize(module) != UTI_OK) {
        asserts.report();
        return;
    }
    const auto id = static_cast<uint16_t>(stringId);
#pragma GCC unroll 5
    for (ResourceSmallString &slot : CurrentModule->smallStrings) {
        if (slot.id != id) [[likely]]
            continue;
        // A free slot may bear the same id, above all 0.
        const bool used = slot.text[0] != 0;
        slot = {};
        if (used)
            break;
    }

    List *&strings = CurrentModule->largeStrings;
    if (auto *string = findItem<ResourceLargeString>(
            strings, [&](ResourceLargeString &item) { return item.id == id; })) {
        freeLargeString(*string);
        strings->Remove(strings);
    }
    if (strings && strings->IsEmpty(strings))
        destroyItems<ResourceLargeString>(strings, freeLargeString);
}

void Resource_Release(const char *module, uint32_t id) {
    if (!mayBeOverridden(module)) [[likely]]
        return resource_Release(module, id);
    const ModuleNames names(module);
    resource_Release(names.external(), id);
    resource_Release(names.plain(), id);
}

void resource_ReleaseAll(const char *module) {
    if (Resource_Initialize(module) != UTI_OK) {
        asserts.report();
        return;
    }
    for (ResourceSmallString &slot : CurrentModule->smallStrings)
        slot = {};
    destroyItems<ResourceLargeString>(CurrentModule->largeStrings, freeLargeString);
}

void Resource_ReleaseAll(const char *module) {
    const ModuleNames names(module);
    if (names.external())
        resource_ReleaseAll(names.external());
    resource_ReleaseAll(names.plain());
}

void Resource_Close(const char *module) {
    if (!module || !ModuleList)
        return;
    // The name may be that of the record that is freed.
    char name[RESOURCE_NAME_LENGTH + 2];
    setField(name, {module, strnlen(module, sizeof name)});
    const ModuleNames names(name);
    const auto isMeant = [&](ResourceModule &loaded) {
        return loaded.handle >= 0 && (isModule(loaded, names.plain()) ||
                                      (names.external() && isModule(loaded, names.external())));
    };
    while (auto *loaded = findItem<ResourceModule>(ModuleList, isMeant)) {
        // Of several records with this name it is this one whose strings are to be released.
        CurrentModule = loaded;
        setField(CurrentModuleName, fieldText(loaded->name));
        Resource_ReleaseAll(loaded->name);
        freeStoredStrings(loaded->name);
        if (loaded == CurrentModule) {
            CurrentModuleName[0] = 0;
            CurrentModule = nullptr;
        }
        unloadModule(loaded);
    }
}
