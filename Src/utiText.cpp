// utiText.cpp: counting and laying out text whose characters may take more than one byte. Stands on
// the display's cursor alone.
#include "terminal.h"
#include "uti.h"

#include <algorithm>
#include <cstring>

namespace uti {
namespace {

constinit TextCharacterFunction characterFunction = nullptr;

// Walks over at most `most` whole characters of the text. Returns how many there are and their
// bytes.
struct Walked {
    int32_t characters;
    int32_t bytes;
};

Walked walk(const char *text, int32_t length, int32_t most) {
    Walked walked{0, 0};
    while (walked.characters < most && walked.bytes < length) {
        const int32_t left = length - walked.bytes;
        const int32_t size = characterFunction(text + walked.bytes, left);
        if (size <= 0 || size > left)
            break;
        ++walked.characters;
        walked.bytes += size;
    }
    return walked;
}

} // namespace
} // namespace uti

using namespace uti;

void Text_SetCallBack(const TextCharacterFunction *callbackHolder) {
    if (callbackHolder)
        characterFunction = *callbackHolder;
}

int32_t Text_GetStringLen(const char *text, int32_t length) {
    if (!text || !characterFunction)
        return length;
    return walk(text, length, INT32_MAX).characters;
}

int32_t Text_GetStringLenByte(const char *text, int32_t length, int32_t characters) {
    if (!text || !characterFunction)
        return characters;
    return walk(text, length, characters).bytes;
}

int32_t Text_LayoutLine(char line[TEXT_LINE], const char *text, int32_t length, int32_t justify,
                        int32_t left, int32_t right) {
    std::memset(line, ' ', TEXT_LINE);
    if (!text || length <= 0)
        return 0;

    const int64_t columns = int64_t{right} - left;
    const int64_t width = std::clamp<int64_t>(columns, 0, TEXT_LINE);
    const int64_t free = columns - Text_GetStringLen(text, length);
    int64_t offset = justify == TEXT_RIGHT ? free : justify == TEXT_CENTER ? free / 2 : 0;
    if (offset < 0) {
        const auto dropped = static_cast<int32_t>(std::min<int64_t>(-offset, length));
        const int32_t bytes = std::min(Text_GetStringLenByte(text, length, dropped), length);
        text += bytes;
        length -= bytes;
        offset = 0;
    }

    // Columns may take several bytes; the line has room for no more than it has columns.
    int32_t bytes = 0;
    for (auto room = static_cast<int32_t>(width - std::min(offset, width)); room > 0; --room) {
        bytes = std::min(Text_GetStringLenByte(text, length, room), length);
        if (bytes <= TEXT_LINE - offset)
            break;
        bytes = 0;
    }
    std::memcpy(line + std::min<int64_t>(offset, TEXT_LINE), text, static_cast<std::size_t>(bytes));
    return bytes;
}

void Text_DrawString(const char *text, int32_t length, int32_t justify, int32_t row, int32_t left,
                     int32_t right, int32_t maxColumn, int32_t maxRow) {
    if (left < 0 || right > maxColumn || row < 0 || row > maxRow)
        return;
    Display_SetCursorPosition(static_cast<uint8_t>(left), static_cast<uint8_t>(row));
    char line[TEXT_LINE];
    Text_LayoutLine(line, text, length, justify, left, right);
}
