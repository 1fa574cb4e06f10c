// source_text.cpp: texts and hex read from sources and written to them.
#include "tools/source_text.h"

#include "common/utf8.h"

#include <algorithm>
#include <set>

namespace uti::tool {

namespace {

constexpr std::size_t hexBytesInLine = 32;

int hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    const char letter = static_cast<char>(c | 0x20);
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

// "; the nearest is ..." with what the code page has in place of a character; empty for nothing.
std::string nearestIn(const CodePage &codePage, char32_t character) {
    const std::string nearest = codePage.nearest(character);
    return nearest.empty() ? "" : concat("; the nearest is '", nearest, '\'');
}

// The control characters that make a text unreadable, by their bytes in UTF-8.
bool isControl(char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return (value < ' ' && value != '\n' && value != '\r' && value != '\t') || value == 0x7F;
}

// Characters that a reader could not see or tell from others: C1 controls, special blanks, and the
// marks of joining and direction.
bool isHidden(char32_t character) {
    return (character >= 0x80 && character <= 0xA0) || character == 0xAD ||
           (character >= 0x2000 && character <= 0x200F) ||
           (character >= 0x2028 && character <= 0x202F) ||
           (character >= 0x2060 && character <= 0x206F) || character == 0xFEFF;
}

} // namespace

std::string encodeText(const TomlText &text, const CodePage *codePage, Diagnostics &diagnostics) {
    std::string bytes;
    std::set<char32_t> lacking;
    for (std::string_view rest = text.get(); codePage && !rest.empty();) {
        const std::string_view before = rest;
        const char32_t character = takeCharacter(rest);
        if (const std::optional<char> byte = codePage->encode(character)) {
            bytes += *byte;
        } else if (lacking.insert(character).second) {
            const std::string_view spelled = before.substr(0, before.size() - rest.size());
            diagnostics.error(diagnostics.source().find(spelled, begin(text), end(text)),
                              describe(character), " is not in ", codePage->name(),
                              diagnostics.isCrowded() ? "" : nearestIn(*codePage, character));
        }
    }
    return bytes;
}

std::string decodeHex(const TomlText &text, Diagnostics &diagnostics) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::string &digits = text.get();
    std::string bytes;
    for (std::size_t at = 0; (at = digits.find_first_not_of(blanks, at)) != digits.npos; at += 2) {
        const int high = hexDigit(digits[at]);
        const int low = at + 1 < digits.size() ? hexDigit(digits[at + 1]) : -1;
        if (high < 0 || low < 0) {
            const std::string_view wrong = std::string_view(digits).substr(at, 2);
            diagnostics.error(diagnostics.source().find(wrong, begin(text), end(text)),
                              "a byte is two hex digits");
            break;
        }
        bytes += static_cast<char>(high << 4 | low);
    }
    return bytes;
}

std::string quote(std::string_view text) {
    std::string quoted = "\"";
    while (!text.empty()) {
        const char32_t character = takeCharacter(text);
        if (character == '\n')
            quoted += "\\n";
        else if (character == '\r')
            quoted += "\\r";
        else if (character == '\t')
            quoted += "\\t";
        else if (isHidden(character))
            quoted += "\\u" + concat(Hex{character, 4}).substr(2);
        else {
            if (character == '"' || character == '\\')
                quoted += '\\';
            appendCharacter(quoted, character);
        }
    }
    return quoted + '"';
}

std::string quoteHex(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    const bool isLong = bytes.size() > hexBytesInLine;
    std::string quoted = isLong ? "'''" : "\"";
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const bool startsLine = at % hexBytesInLine == 0;
        if (isLong || !startsLine)
            quoted += startsLine ? '\n' : ' ';
        const auto byte = static_cast<unsigned char>(bytes[at]);
        quoted += digits[byte >> 4];
        quoted += digits[byte & 0xF];
    }
    return quoted + (isLong ? "\n'''" : "\"");
}

std::optional<std::string> readableText(std::string_view bytes, const CodePage &codePage) {
    std::optional<std::string> text = codePage.decode(bytes);
    if (text && std::ranges::any_of(*text, isControl))
        return std::nullopt;
    return text;
}

std::string join(const std::vector<std::string> &parts, std::string_view separator) {
    std::string joined;
    for (const std::string &part : parts)
        joined.append(&part == parts.data() ? "" : separator).append(part);
    return joined;
}

} // namespace uti::tool
