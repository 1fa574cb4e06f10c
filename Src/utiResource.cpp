// utiResource.cpp: resource files and modules: loading, the current module, languages. Stands on
// the TLV parser, the List and the platform's files. Strings, and closing a module with its
// strings, are utiResourceStrings.cpp above it.
#include "Src/utiResource.h"

#include "Src/assertions.h"
#include "Src/heap.h"
#include "Src/platform.h"
#include "Src/text.h"
#include "Src/utiTLVParser.h"

#include <cstdio>

constinit List *ModuleList = nullptr;
constinit ResourceModule *CurrentModule = nullptr;
constinit char CurrentModuleName[13] = {};
constinit char CurrentLanguage[3] = {};
constinit uint8_t SectionType = 0;
constinit uint8_t CheckExternalResources = 0;

namespace uti {

namespace {

constexpr Assertions<"Src/utiResource"> asserts;

constexpr std::size_t languageSize = sizeof CurrentLanguage;

// Sections 3, 4 and 5 fall back to their first language.
constexpr bool fallsBack(int32_t section) {
    return section >= 3 && section <= 5;
}

void freeLanguages(ResourceModule &module) {
    for (List *&languages : module.languages)
        destroyItems<ResourceLanguage>(languages,
                                       [](ResourceLanguage &language) { std::free(&language); });
}

// Appends a language to its section of the current module.
int32_t addLanguage(const ResourceLanguage &language) {
    if (!CurrentModule || SectionType >= RESOURCE_SECTIONS)
        return asserts.fail(UTI_RESOURCE_NOT_LOADED);
    HeapPointer<ResourceLanguage> entry = allocateZeroed<ResourceLanguage>();
    List *&languages = CurrentModule->languages[SectionType];
    if (entry && !languages)
        languages = List_Create();
    if (!entry || !languages || !languages->AddTail(languages, entry.get()))
        return asserts.fail(UTI_RESOURCE_NO_MEMORY);
    *entry.release() = language;
    return UTI_OK;
}

} // namespace

bool isModuleName(const char *module) {
    return module && strnlen(module, RESOURCE_NAME_LENGTH + 1) <= RESOURCE_NAME_LENGTH;
}

bool isModule(const ResourceModule &loaded, const char *module) {
    return isSameName(loaded.name, module);
}

bool prepareModules() {
    if (ModuleList)
        return true;
    const EnvironmentValue external("EXTRES");
    if (external.text().starts_with('1'))
        CheckExternalResources = 1;

    ModuleList = List_Create();
    if (!ModuleList)
        return false;
    CurrentModuleName[0] = 0;
    readDefaultLanguage(CurrentLanguage);
    return true;
}

void readDefaultLanguage(char (&language)[3]) {
    setField(language, "ru");
    const EnvironmentValue value("default_lang");
    if (value.text().size() == 2)
        TextToLowercase(value.text().data(), language, 2);
    else
        asserts.report();
}

void unloadModule(ResourceModule *module) {
    File_Close(module->handle);
    freeLanguages(*module);
    if (findItem<ResourceModule>(ModuleList, [&](ResourceModule &item) { return &item == module; }))
        ModuleList->Remove(ModuleList);
    std::free(module);
}

} // namespace uti

using namespace uti;

int32_t Resource_Initialize(const char *module) {
    if (isCurrentModule(module))
        return UTI_OK;
    if (!isModuleName(module))
        return asserts.fail(UTI_RESOURCE_BAD_NAME);
    if (!prepareModules())
        return asserts.fail(UTI_RESOURCE_NO_MEMORY);

    ResourceModule *loaded = findItem<ResourceModule>(
        ModuleList, [&](ResourceModule &item) { return isModule(item, module); });
    if (loaded) {
        CurrentModule = loaded;
        setField(CurrentModuleName, module);
    } else {
        const int32_t result = Resource_LoadInfo(module);
        if (result != UTI_OK)
            return result;
    }
    Resource_FillLanguageOffsetsForCurrentModule();
    return UTI_OK;
}

int32_t Resource_LoadInfo(const char *module) {
    if (!isModuleName(module))
        return asserts.fail(UTI_RESOURCE_NOT_LOADED);
    if (!prepareModules())
        return asserts.fail(UTI_RESOURCE_NO_MEMORY);

    char path[RESOURCE_NAME_LENGTH + 5];
    snprintf(path, sizeof path, "%s.res", module);
    const int32_t handle = File_Open(path, FILE_MODE_READ);
    if (handle < 0)
        return asserts.fail(UTI_RESOURCE_NOT_LOADED);

    ParserNode root;
    Parser_Initialize(2, 4);
    if (Parser_GetRootNode(handle, &root) != UTI_OK) {
        asserts.report();
        File_Close(handle);
        return UTI_RESOURCE_NOT_LOADED;
    }

    ResourceModule *loaded = allocateZeroed<ResourceModule>().release();
    if (!loaded || !ModuleList->AddTail(ModuleList, loaded)) {
        asserts.report();
        File_Close(handle);
        std::free(loaded);
        return UTI_RESOURCE_NO_MEMORY;
    }
    setField(loaded->name, module);
    loaded->handle = handle;

    ResourceModule *previous = CurrentModule;
    CurrentModule = loaded;
    if (Parser_ParseNode(&root, ParseResources) != UTI_OK || Parser_ReadFailed()) {
        asserts.report();
        unloadModule(loaded);
        CurrentModule = previous;
        return UTI_RESOURCE_NOT_LOADED;
    }
    setField(CurrentModuleName, module);
    return UTI_OK;
}

void Resource_FillLanguageOffsetsForCurrentModule(void) {
    if (!CurrentModule)
        return;
    for (int32_t section = 0; section < RESOURCE_SECTIONS; ++section) {
        uint32_t &offset = CurrentModule->tableOffsets[section];
        offset = 0;
        List *languages = CurrentModule->languages[section];
        const ResourceLanguage *language =
            findItem<ResourceLanguage>(languages, [](ResourceLanguage &item) {
                return std::memcmp(item.code, CurrentLanguage, languageSize) == 0;
            });
        if (language)
            offset = language->tableOffset;
        if (offset == 0 && languages && fallsBack(section))
            offset =
                static_cast<const ResourceLanguage *>(languages->First(languages))->tableOffset;
    }
}

int32_t Resource_IsValid(const char *module, uint16_t version) {
    const int32_t result = Resource_Initialize(module);
    if (result != UTI_OK)
        return asserts.fail(result);
    if (CurrentModule->version != version)
        return asserts.fail(UTI_RESOURCE_OTHER_VERSION);
    return UTI_OK;
}

int32_t Resource_GetLanguages(const char *module, uint32_t section, ResourceLanguageInfo *infos,
                              int32_t capacity) {
    const int32_t result = Resource_Initialize(module);
    if (result != UTI_OK)
        return asserts.fail(result);
    List *languages = section < RESOURCE_SECTIONS ? CurrentModule->languages[section] : nullptr;
    if (!languages)
        return asserts.fail(0);
    const int32_t count = languages->GetCount(languages);
    if (count > capacity || !infos)
        return asserts.fail(UTI_RESOURCE_SMALL_ARRAY);

    findItem<ResourceLanguage>(languages, [&](ResourceLanguage &language) {
        ResourceLanguageInfo &info = *infos++;
        std::memcpy(info.code, language.code, languageSize);
        info.reserved = 0;
        info.info = language.info;
        return false;
    });
    return count;
}

void Resource_SetLanguage(const char *language) {
    if (!language) {
        asserts.report();
        return;
    }
    // A text shorter than the three bytes of a language code ends early, and it may be
    // `CurrentLanguage` itself.
    char code[languageSize] = {};
    std::memcpy(code, language, strnlen(language, languageSize));
    std::memcpy(CurrentLanguage, code, languageSize);
    Resource_FillLanguageOffsetsForCurrentModule();
}

const char *Resource_GetCurrentLanguage(void) {
    return CurrentLanguage;
}

int32_t ParseResources(ParserNode *node) {
    return walkChildren(node, [](ParserNode &child) {
        return child.tag == resource::header ? Parser_ParseNode(&child, ParseHeader)
                                             : skipChild(child);
    });
}

int32_t ParseHeader(ParserNode *node) {
    return walkChildren(node, [](ParserNode &child) {
        if (child.tag == resource::version && CurrentModule) {
            int32_t error;
            CurrentModule->version = Parser_GetParameterWord(&child, &error);
            return error;
        }
        if (child.tag >= resource::firstSection &&
            child.tag < resource::firstSection + resource::sectionsInFile) {
            SectionType = static_cast<uint8_t>(child.tag - resource::firstSection);
            return Parser_ParseNode(&child, ParseSection);
        }
        return skipChild(child);
    });
}

int32_t ParseSection(ParserNode *node) {
    return walkChildren(node, [](ParserNode &child) {
        return child.tag == resource::languageBlock ? Parser_ParseNode(&child, ParseLanguageBlock)
                                                    : skipChild(child);
    });
}

int32_t ParseLanguageBlock(ParserNode *node) {
    ResourceLanguage language{};
    const int32_t result = walkChildren(node, [&](ParserNode &child) {
        int32_t error = UTI_OK;
        switch (child.tag) {
        case resource::languageCode: {
            std::memset(language.code, 0, languageSize);
            const int32_t length = Parser_GetParameterBuffer(&child, language.code, languageSize);
            return length < 0 ? length : UTI_OK;
        }
        case resource::languageInfo:
            language.info = Parser_GetParameterWord(&child, &error);
            return error;
        case resource::tableOffset:
            language.tableOffset = Parser_GetParameterDword(&child, &error);
            return error;
        default:
            return skipChild(child);
        }
    });
    return result == UTI_OK ? addLanguage(language) : result;
}
