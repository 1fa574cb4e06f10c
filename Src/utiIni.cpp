// utiIni.cpp: INI files in memory: reading one into the cache, its grammar, and writing it back.
// Stands on the platform's files and letter case.
#include "Src/utiIni.h"

#include "Src/assertions.h"
#include "terminal.h"

namespace uti {

constinit NamedArray<IniFileInfo> iniFiles;

namespace {

constexpr Assertions<"Src/utiIni"> asserts;

constexpr std::string_view lineEnd = "\r\n";
constexpr std::string_view escapePattern = "&#00;"; // 0 stands for any digit

bool isBlank(char c) {
    return c >= 1 && c <= 32;
}

bool isLike(char c, char pattern) {
    return pattern == '0' ? c >= '0' && c <= '9' : c == pattern;
}

bool isLineBreak(char c) {
    return c == '\r' || c == '\n';
}

// Takes what stands before the first separator, all when there is none, and the separator off the
// text.
std::string_view takeUntil(std::string_view &text, char separator) {
    const std::size_t length = std::min(text.find(separator), text.size());
    const std::string_view taken(text.data(), length);
    text.remove_prefix(std::min(length + 1, text.size()));
    return taken;
}

char *put(char *out, std::string_view text) {
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

// Writes a value with its escapes replaced, which never makes it longer; returns its length. What
// begins like an escape and goes on differently stands as it is, up to the character that differs;
// a begun escape at the end is lost, and a character of code 0 ends the value.
std::size_t decode(std::string_view value, char *out) {
    const char *const begin = out;
    for (;;) {
        const std::size_t plain = std::min(value.find('&'), value.size());
        out = put(out, {value.data(), plain});
        value.remove_prefix(plain);

        std::size_t matched = 0;
        while (matched < std::min(value.size(), escapePattern.size()) &&
               isLike(value[matched], escapePattern[matched]))
            ++matched;
        if (matched == escapePattern.size()) {
            const int code = 10 * (value[2] - '0') + (value[3] - '0');
            if (code == 0)
                break;
            *out++ = static_cast<char>(code);
            value.remove_prefix(matched);
            continue;
        }
        if (matched == value.size())
            break;
        out = put(out, {value.data(), matched + 1});
        value.remove_prefix(matched + 1);
    }
    return static_cast<std::size_t>(out - begin);
}

IniKey makeKey(std::string_view name, std::string_view value) {
    const auto breaks =
        static_cast<std::size_t>(std::count_if(value.begin(), value.end(), isLineBreak));
    const std::size_t valueAt = name.size() + 1;
    const std::size_t lineAt = breaks > 0 ? valueAt + value.size() : valueAt;
    const std::size_t lineLength =
        value.size() + breaks * (escapePattern.size() - 1) + lineEnd.size();
    const IniKey key{allocateBytes(lineAt + lineLength).release(),
                     static_cast<uint16_t>(name.size()), static_cast<uint16_t>(value.size()),
                     static_cast<uint16_t>(lineAt), static_cast<uint16_t>(lineLength)};
    if (!key.text)
        return key;

    char *out = put(put(key.text, name), "=");
    out = put(out, value);
    if (breaks > 0) {
        for (const char &c : value)
            out = put(out, c == '\r' ? "&#13;" : c == '\n' ? "&#10;" : std::string_view(&c, 1));
    }
    put(out, lineEnd);
    return key;
}

IniSection makeSection(std::string_view name) {
    const IniSection section{
        allocateBytes(name.size() + 4).release(), static_cast<uint16_t>(name.size()), {}};
    if (section.text)
        put(put(put(section.text, "["), name), "]\r\n");
    return section;
}

// Reads a key line into a section.
Stored readKey(std::string_view name, std::string_view value, IniSection &section) {
    if (name.size() > longestName || value.size() > longestValue)
        return Stored::refused;
    IniName buffer;
    const std::string_view normalised = iniNormalise(name, buffer);
    if (normalised.empty())
        return Stored::refused;
    char decoded[longestValue];
    return iniSetValue(section, normalised, {decoded, decode(iniTrim(value), decoded)});
}

// Reads the lines of a file into its empty record. False when memory is short.
bool readLines(std::string_view text, IniFileInfo &file) {
    IniSection *section = nullptr;
    bool dropped = false; // the section is one too many: its keys go with it
    IniLines lines(text);
    std::string_view line;
    while (lines.next(line)) {
        if (isComment(line))
            continue;
        if (isHeader(line)) {
            const Stored result = iniFindOrAddSection(line, file, section);
            if (result == Stored::noMemory)
                return false;
            dropped = result == Stored::full;
            continue;
        }
        if (dropped)
            continue;

        std::string_view value = line;
        const std::string_view name = takeUntil(value, '=');
        if (name.empty() || name.size() == line.size())
            continue;
        if (!section && iniFindOrAddSection("[NONAME_SECTION]", file, section) == Stored::noMemory)
            return false;
        if (section && readKey(name, value, *section) == Stored::noMemory)
            return false;
    }
    return true;
}

FileRead readOpenFile(int32_t handle, FileText &text) {
    const int32_t length = File_GetLength(handle);
    if (length < 1)
        return FileRead::unreadable;
    text.length = static_cast<std::size_t>(length);
    text.bytes = allocateBytes(text.length);
    if (!text.bytes)
        return asserts.fail(FileRead::noMemory);
    if (File_Read(handle, text.bytes.get(), static_cast<uint32_t>(length)) != length)
        return asserts.fail(FileRead::unreadable);
    return FileRead::done;
}

// False when less was written.
bool writePiece(int32_t handle, std::string_view piece) {
    return File_Write(handle, piece.data(), static_cast<uint32_t>(piece.size())) ==
           static_cast<int32_t>(piece.size());
}

} // namespace

std::string_view iniTrim(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
        text.remove_prefix(1);
        text.remove_suffix(1);
    }
    return text;
}

std::string_view iniNormalise(std::string_view name, IniName &out) {
    const std::string_view kept = iniTrim(name);
    if (kept.empty() || kept.size() > longestName)
        return {};
    TextToUppercase(kept.data(), out, static_cast<uint32_t>(kept.size()));
    out[kept.size()] = 0;
    return {out, kept.size()};
}

std::string_view iniHeaderName(std::string_view line) {
    const std::size_t end = line.find(']');
    if (end == std::string_view::npos)
        return {};
    return {line.data() + 1, end - 1};
}

bool IniLines::next(std::string_view &line) {
    do {
        if (block_.empty()) {
            if (text_.empty())
                return false;
            block_ = takeUntil(text_, '\n');
        }
        std::string_view whole = takeUntil(block_, '\r');
        line = takeUntil(whole, '\0');
    } while (line.empty());
    return true;
}

FileRead iniReadFile(const char *fileName, FileText &text) {
    if (!iniBringHome(fileName))
        return FileRead::blocked;
    const int32_t handle = File_Open(fileName, FILE_MODE_READ);
    FileRead result = FileRead::unreadable;
    if (handle >= 0) {
        result = readOpenFile(handle, text);
        File_Close(handle);
    }
    return result == FileRead::unreadable && !iniMayReplace(fileName) ? FileRead::blocked : result;
}

IniFileInfo *iniLoadFile(const char *fileName, Unreadable unreadable) {
    if (!fileName || !*fileName)
        return asserts.fail(nullptr);
    if (IniFileInfo *cached = iniFiles.find(fileName))
        return cached;

    FileText text;
    const FileRead read = iniReadFile(fileName, text);
    if (read == FileRead::noMemory || read == FileRead::blocked)
        return nullptr;
    if (read == FileRead::unreadable && unreadable == Unreadable::isError)
        return nullptr;

    const std::size_t nameLength = std::strlen(fileName);
    IniFileInfo file{copyBytes(fileName, nameLength).release(), nameLength, {}};
    if (read == FileRead::done && !readLines(text.view(), file)) {
        release(file);
        return nullptr;
    }
    if (iniFiles.put(file) != Stored::done)
        return asserts.fail(nullptr);
    return iniFiles.end() - 1;
}

Stored iniFindOrAddSection(std::string_view headerLine, IniFileInfo &file, IniSection *&section) {
    section = nullptr;
    const std::string_view raw = iniHeaderName(headerLine);
    if (raw.size() > longestSectionName)
        return asserts.fail(Stored::refused);
    IniName buffer;
    const std::string_view name = iniNormalise(raw, buffer);
    if (name.empty())
        return asserts.fail(Stored::refused);

    section = file.sections.find(name);
    if (section)
        return Stored::done;
    const Stored result = file.sections.put(makeSection(name));
    if (result != Stored::done)
        return asserts.fail(result);
    section = file.sections.end() - 1;
    return Stored::done;
}

Stored iniSetValue(IniSection &section, std::string_view name, std::string_view value) {
    const Stored result = section.keys.put(makeKey(name, value));
    return result == Stored::done ? result : asserts.fail(result);
}

void iniWriteFile(const char *fileName) {
    const IniFileInfo *file = iniFiles.find(fileName);
    if (!file || !iniKeepCopy(fileName, *file))
        return;
    if (File_IsValid(fileName) == 1 && File_Delete(fileName) != 0)
        asserts.report();
    const int32_t handle = File_Open(fileName, FILE_MODE_CREATE);
    if (handle < 0) {
        asserts.report();
        return;
    }

    bool isWritten = true;
    iniForEachPiece(
        *file, [&](std::string_view piece) { isWritten = writePiece(handle, piece) && isWritten; });
    isWritten = File_Close(handle) == 0 && isWritten;
    iniDropCopy(fileName, isWritten);
}

} // namespace uti
