// utiCodePageManager.cpp: the code page of a language from the environment, and the font files that
// belong to it. Stands on the platform's environment and the toolkit's fonts.
#include "Src/assertions.h"
#include "Src/platform.h"
#include "Src/text.h"
#include "toolkit.h"
#include "uti.h"

#include <cstdio>
#include <cstdlib>

namespace uti {
namespace {

constexpr Assertions<"Src/utiCodePageManager"> asserts;

constexpr uint16_t noCodePage = 0xFFFF;
constexpr std::size_t languageLength = 2;

struct CodePageCache {
    char language[languageLength];
    uint16_t codePage;
};
constinit CodePageCache codePageCache{{}, noCodePage};

struct FontCache {
    char language[languageLength];
    char fontName[32];
    char fileName[32]; // empty: nothing is cached
    bool found;        // the language has a code page
};
constinit FontCache fontCache{};
constinit char negativeFontName[32] = {};

// The environment variable of a language's code page.
EnvironmentValue codePageVariable(const char (&language)[languageLength]) {
    const char name[] = {'c', 'p', '_', language[0], language[1], 0};
    return EnvironmentValue(name);
}

// Builds the cached file name; false when it does not fit.
bool buildFileName(std::string_view codePage, const char *fontName) {
    const int length = snprintf(fontCache.fileName, sizeof fontCache.fileName, "cp%.*s_%s.fon",
                                static_cast<int>(codePage.size()), codePage.data(), fontName);
    if (length < static_cast<int>(sizeof fontCache.fileName)) {
        setField(fontCache.fontName, fontName);
        return true;
    }
    fontCache.fileName[0] = 0;
    return false;
}

} // namespace
} // namespace uti

using namespace uti;

uint16_t CodePageManager_GetCodePage(const char *language) {
    CodePageCache &cache = codePageCache;
    if (!language || *language == 0)
        return cache.codePage;
    if (cache.codePage < noCodePage && strncmp(cache.language, language, languageLength) == 0)
        return cache.codePage;

    std::memcpy(cache.language, language, languageLength);
    const EnvironmentValue value = codePageVariable(cache.language);
    cache.codePage = static_cast<uint16_t>(strtol(value.text().data(), nullptr, 10));
    return value.text().empty() ? asserts.fail(cache.codePage) : cache.codePage;
}

const char *CodePageManager_GetFontName(const char *language, const char *fontName) {
    if (!fontName || *fontName == 0 || !language ||
        strnlen(language, languageLength + 1) != languageLength)
        return nullptr;
    FontCache &cache = fontCache;
    if (cache.fileName[0] != 0 && std::strcmp(cache.fontName, fontName) == 0 &&
        std::memcmp(cache.language, language, languageLength) == 0)
        return cache.found ? cache.fileName : nullptr;

    std::memcpy(cache.language, language, languageLength);
    const EnvironmentValue value = codePageVariable(cache.language);
    cache.found = !value.text().empty();
    if (!cache.found)
        asserts.report();
    const std::string_view codePage =
        cache.found ? value.text() : std::string_view(cache.language, languageLength);
    if (!buildFileName(codePage, fontName))
        return asserts.fail(nullptr);
    return cache.found ? cache.fileName : nullptr;
}

const char *CodePageManager_GetNegativeFontName(const char *language, const char *fontName) {
    const char *fileName = CodePageManager_GetFontName(language, fontName);
    if (!fileName)
        return nullptr;
    const int length = snprintf(negativeFontName, sizeof negativeFontName, "n%.31s", fileName);
    return length < static_cast<int>(sizeof negativeFontName) ? negativeFontName
                                                              : asserts.fail(nullptr);
}

int32_t Dialogs_SetDefaultFonts(const char *language) {
    const int32_t display = Display_GetHandle();
    if (display < 0)
        return display;
    if (!language || strnlen(language, languageLength) < languageLength)
        return asserts.fail(0);
    char letters[languageLength + 1] = {};
    TextToLowercase(language, letters, languageLength);
    if (std::strcmp(letters, "ru") == 0)
        return 0;

    int32_t result = 0;
    for (int32_t slot = 0; slot < 3; ++slot) {
        const char *fileName = CodePageManager_GetFontName(letters, fontTable[slot]);
        if (fileName && *fileName != 0)
            result = igUI_SetFileFont(display, slot, fileName);
    }
    return result;
}
