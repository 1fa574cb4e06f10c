// utiIniAccess.cpp: the exported operations on INI files: get, set and remove by section and key.
#include "Src/assertions.h"
#include "Src/utiIni.h"
#include "terminal.h"

#include <cstdio>

namespace uti {
namespace {

constexpr Assertions<"Src/utiIni"> asserts;

bool hasText(const char *text) {
    return text && *text;
}

// Copies a text with a terminator and returns the address behind it.
char *copyText(char *out, std::string_view text) {
    std::memcpy(out, text.data(), text.size());
    out[text.size()] = 0;
    return out + text.size() + 1;
}

// The names of a section and a key as they are compared.
class Names {
public:
    Names(const char *section, const char *key)
        : section_(iniNormalise(section, sectionText_)), key_(iniNormalise(key, keyText_)) {}
    Names(const Names &) = delete;

    bool complete() const { return !section_.empty() && !key_.empty(); }
    std::string_view section() const { return section_; }
    std::string_view key() const { return key_; }

private:
    IniName sectionText_;
    IniName keyText_;
    std::string_view section_;
    std::string_view key_;
};

// Puts a value into the cache, or leaves the cache as it was.
bool storeValue(const char *fileName, const Names &names, std::string_view value) {
    const int16_t filesBefore = iniFiles.count();
    IniFileInfo *file = iniLoadFile(fileName, Unreadable::isEmpty);
    if (!file)
        return false;

    const int16_t sectionsBefore = file->sections.count();
    IniSection *section = file->sections.find(names.section());
    if (!section) {
        char header[longestName + 3];
        snprintf(header, sizeof header, "[%s]", names.section().data());
        iniFindOrAddSection(header, *file, section);
    }
    if (section && iniSetValue(*section, names.key(), value) == Stored::done)
        return true;
    file->sections.truncate(sectionsBefore);
    iniFiles.truncate(filesBefore);
    return false;
}

} // namespace
} // namespace uti

using namespace uti;

int32_t IntiSectionKeyInfo(const char *section, const char *key, SectionKeyInfo *info) {
    if (!info)
        return asserts.fail(0);
    info->key[0] = 0;
    info->section[0] = 0;
    if (!section || !key)
        return asserts.fail(0);
    if (!iniNormalise(key, info->key).empty() && !iniNormalise(section, info->section).empty())
        return 1;
    info->key[0] = 0;
    return asserts.fail(0);
}

int32_t Ini_GetSectionCount(const char *fileName) {
    const IniFileInfo *file = iniLoadFile(fileName);
    if (!file)
        return UTI_INI_FAILED;
    return file->sections.count();
}

int32_t Ini_GetSectionName(const char *fileName, int32_t index, char *out, uint32_t outSize) {
    if (!out)
        return asserts.fail(UTI_INI_FAILED);
    const IniFileInfo *file = iniLoadFile(fileName);
    if (!file)
        return UTI_INI_FAILED;
    if (index < 0 || index >= file->sections.count())
        return asserts.fail(UTI_INI_FAILED);
    const std::string_view name = file->sections.begin()[index].name();
    if (name.size() >= outSize)
        return asserts.fail(UTI_INI_FAILED);
    copyText(out, name);
    return UTI_OK;
}

int32_t Ini_GetStr(const char *fileName, const char *section, const char *key, char *out,
                   int32_t outSize) {
    if (!hasText(fileName) || !hasText(section) || !hasText(key) || !out || outSize <= 0)
        return asserts.fail(UTI_INI_FAILED);
    const Names names(section, key);
    if (!names.complete())
        return asserts.fail(UTI_INI_FAILED);

    *out = 0;
    const IniFileInfo *file = iniLoadFile(fileName);
    if (!file)
        return UTI_INI_FAILED;
    const IniSection *foundSection = file->sections.find(names.section());
    if (!foundSection)
        return UTI_INI_NO_SECTION;
    const IniKey *foundKey = foundSection->keys.find(names.key());
    if (!foundKey)
        return UTI_INI_NO_KEY;
    const std::string_view value = foundKey->value();
    if (value.size() >= static_cast<uint32_t>(outSize))
        return UTI_INI_SMALL_BUFFER;
    copyText(out, value);
    return UTI_OK;
}

int32_t Ini_SetStr(const char *fileName, const char *section, const char *key, const char *value) {
    if (!hasText(fileName) || !hasText(section) || !hasText(key) || !value ||
        strnlen(value, longestValue + 1) > longestValue)
        return asserts.fail(UTI_INI_FAILED);
    const Names names(section, key);
    if (!names.complete())
        return asserts.fail(UTI_INI_FAILED);
    if (!storeValue(fileName, names, iniTrim(value)))
        return UTI_INI_FAILED;
    iniWriteFile(fileName);
    return UTI_OK;
}

int32_t Ini_GetLong(const char *fileName, const char *section, const char *key, int32_t *value) {
    char text[12];
    const int32_t result = Ini_GetStr(fileName, section, key, text, sizeof text);
    if (result != UTI_OK)
        return result;
    if (!value)
        return asserts.fail(UTI_INI_FAILED);
    // A long may be wider here than on the terminal, where strtol itself stops at these bounds.
    *value = static_cast<int32_t>(
        std::clamp<long>(std::strtol(text, nullptr, 10), INT32_MIN, INT32_MAX));
    return UTI_OK;
}

int32_t Ini_SetLong(const char *fileName, const char *section, const char *key, int32_t value) {
    char text[34];
    return Ini_SetStr(fileName, section, key, ltoa(value, text, 10));
}

int32_t Ini_RemoveSection(const char *fileName, const char *section) {
    if (!fileName || !section)
        return asserts.fail(0);
    IniFileInfo *file = iniFiles.find(fileName);
    if (!file)
        return 0;
    if (IniSection *found = file->sections.find(section))
        file->sections.remove(found);
    iniWriteFile(fileName);
    return 0;
}

int32_t Ini_RemoveFileInfoFromCache(const char *fileName) {
    if (!fileName)
        return asserts.fail(0);
    if (IniFileInfo *file = iniFiles.find(fileName))
        iniFiles.remove(file);
    return 0;
}

int32_t Ini_GetSection(const char *fileName, const char *section, char *out, int32_t outSize) {
    if (!section || !out || outSize <= 0)
        return asserts.fail(0);
    IniName wantedText;
    const std::string_view wanted = iniNormalise(section, wantedText);
    if (wanted.empty())
        return asserts.fail(0);
    *out = 0;
    if (!hasText(fileName))
        return asserts.fail(0);
    FileText text;
    if (iniReadFile(fileName, text) != FileRead::done)
        return 0;

    char *end = out;
    const char *const limit = out + outSize;
    bool inside = false;
    IniLines lines(text.view());
    std::string_view line;
    while (lines.next(line)) {
        if (isComment(line))
            continue;
        if (isHeader(line)) {
            IniName nameText;
            const std::string_view name = iniNormalise(iniHeaderName(line), nameText);
            if (!name.empty() && name.size() <= longestSectionName)
                inside = name == wanted;
            continue;
        }
        if (!inside)
            continue;
        // One byte is to spare behind the last terminator.
        if (line.size() + 1 >= static_cast<std::size_t>(limit - end))
            break;
        end = copyText(end, line);
    }
    return static_cast<int32_t>(end - out);
}
