// utiIniSafeWrite.cpp: writing an INI file so that no loss of power loses a setting: a copy beside
// it, which stands as long as the file may be half written. Stands on utiIni.h and the platform's
// files; nothing here happens before `Ini_SetSafeWrite`.
//
// A copy is what the file is to hold, and a mark of 20 bytes, a comment should the copy be read as
// an INI file:
//
//   ";"  length, 8 hex digits  " "  CRC-32 (ISO 3309), 8 hex digits  CR LF
#include "Src/assertions.h"
#include "Src/utiIni.h"
#include "terminal.h"

#include <cstdio>

namespace uti {

namespace {

constexpr Assertions<"Src/utiIni"> asserts;

constexpr std::size_t markSize = 20;

constinit bool safeWrite = false;

// The file name of a copy, or null when memory is short.
HeapPointer<char> copyName(std::string_view fileName) {
    HeapPointer<char> name = allocateBytes(fileName.size() + 2);
    if (name) {
        std::memcpy(name.get(), fileName.data(), fileName.size());
        std::memcpy(name.get() + fileName.size(), "~", 2);
    }
    return name;
}

// What a mark tells of the bytes before it.
class Mark {
public:
    void add(std::string_view bytes) {
        length_ += static_cast<uint32_t>(bytes.size());
        for (const char c : bytes) {
            crc_ ^= static_cast<uint8_t>(c);
            for (int bit = 0; bit < 8; ++bit)
                crc_ = crc_ >> 1 ^ (crc_ & 1 ? 0xEDB88320u : 0);
        }
    }
    void print(char (&out)[markSize + 1]) const {
        snprintf(out, sizeof out, ";%08X %08X\r\n", static_cast<unsigned>(length_),
                 static_cast<unsigned>(~crc_));
    }

private:
    uint32_t length_ = 0;
    uint32_t crc_ = 0xFFFFFFFF;
};

bool writeAll(int32_t handle, std::string_view bytes) {
    return File_Write(handle, bytes.data(), static_cast<uint32_t>(bytes.size())) ==
           static_cast<int32_t>(bytes.size());
}

void deleteFile(const char *name) {
    if (File_Delete(name) != 0)
        asserts.report();
}

// What a copy holds, without its mark; empty when it is not complete. That of an empty file need
// not be told from it: such a file is never half written.
std::string_view contentOf(std::string_view copy) {
    if (copy.size() <= markSize)
        return {};
    const std::string_view content(copy.data(), copy.size() - markSize);
    Mark mark;
    mark.add(content);
    char text[markSize + 1];
    mark.print(text);
    return std::memcmp(copy.data() + content.size(), text, markSize) == 0 ? content
                                                                          : std::string_view{};
}

// Reads a file that exists. False when that fails; an empty one is read as no bytes.
bool readFile(const char *name, FileText &text) {
    const int32_t handle = File_Open(name, FILE_MODE_READ);
    if (handle < 0)
        return false;
    const int32_t length = File_GetLength(handle);
    bool isRead = length >= 0;
    if (length > 0) {
        text.length = static_cast<std::size_t>(length);
        text.bytes = allocateBytes(text.length);
        isRead = text.bytes &&
                 File_Read(handle, text.bytes.get(), static_cast<uint32_t>(length)) == length;
    }
    File_Close(handle);
    return isRead;
}

bool writeWhole(const char *fileName, std::string_view content) {
    const int32_t handle = File_Open(fileName, FILE_MODE_CREATE);
    if (handle < 0)
        return false;
    const bool isWritten = writeAll(handle, content);
    return File_Close(handle) == 0 && isWritten;
}

} // namespace

bool iniBringHome(const char *fileName) {
    if (!safeWrite)
        return true;
    const HeapPointer<char> copy = copyName(fileName);
    if (!copy)
        return asserts.fail(false);
    // Only when it neither opens nor is known there is none: a call that fails hides no copy.
    FileText text;
    if (!readFile(copy.get(), text))
        return File_IsValid(copy.get()) != 1 || asserts.fail(false);
    const std::string_view content = contentOf(text.view());
    if (!content.empty() && !writeWhole(fileName, content))
        return asserts.fail(false);
    deleteFile(copy.get());
    return true;
}

bool iniMayReplace(const char *fileName) {
    FileText text;
    return !safeWrite || File_IsValid(fileName) != 1 ||
           (readFile(fileName, text) && text.length == 0);
}

bool iniKeepCopy(const char *fileName, const IniFileInfo &file) {
    if (!safeWrite)
        return true;
    // A copy that an earlier change has left may be all there is of the file.
    if (!iniBringHome(fileName))
        return false;
    const HeapPointer<char> copy = copyName(fileName);
    if (!copy)
        return asserts.fail(false);
    const int32_t handle = File_Open(copy.get(), FILE_MODE_CREATE);
    if (handle < 0)
        return asserts.fail(false);

    Mark mark;
    bool isWritten = true;
    iniForEachPiece(file, [&](std::string_view piece) {
        mark.add(piece);
        isWritten = isWritten && writeAll(handle, piece);
    });
    char text[markSize + 1];
    mark.print(text);
    isWritten = isWritten && writeAll(handle, {text, markSize});
    if (File_Close(handle) == 0 && isWritten)
        return true;
    deleteFile(copy.get());
    return asserts.fail(false);
}

void iniDropCopy(const char *fileName, bool isWritten) {
    if (!safeWrite)
        return;
    const HeapPointer<char> copy = copyName(fileName);
    if (!isWritten || !copy) {
        asserts.report();
        return;
    }
    deleteFile(copy.get());
}

} // namespace uti

using namespace uti;

int32_t Ini_SetSafeWrite(int32_t on) {
    safeWrite = on != 0;
    return 0;
}
