// log_text.cpp: messages and their spelling.
#include "tools/log_text.h"

#include "Src/utiTraceText.h"
#include "tools/log_record.h"
#include "tools/utf8.h"

#include <algorithm>
#include <cstdio>

namespace uti::tool {

namespace {

// A wording may name a large argument again and again; the message ends when it is this long.
constexpr std::size_t messageLimit = std::size_t{4} * longestRecord;

bool isControl(char32_t character) {
    return character < ' ' || (character >= 0x7F && character < 0xA0);
}

void appendEscape(std::string &out, const char *format, char32_t character) {
    char escape[16];
    snprintf(escape, sizeof escape, format, static_cast<unsigned>(character));
    out += escape;
}

void appendForLine(std::string &out, char32_t character) {
    if (character == '\n')
        out += "\\n";
    else if (character == '\r')
        out += "\\r";
    else if (isControl(character) && character != '\t')
        appendEscape(out, "\\x%02X", character);
    else
        appendCharacter(out, character);
}

void appendForJson(std::string &out, char32_t character) {
    const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
    if (isControl(character)) {
        appendEscape(out, "\\u%04x", character);
        return;
    }
    if (character == '"' || character == '\\')
        out += '\\';
    appendCharacter(out, isSurrogate || character > 0x10FFFF ? replacementCharacter : character);
}

} // namespace

Spelling::Spelling(const CodePage &codePage, Form form) {
    for (std::size_t value = 0; value < std::size(bytes_); ++value) {
        const char byte = static_cast<char>(value);
        const std::optional<std::string> decoded = codePage.decode({&byte, 1});
        auto &[isCharacter, text] = bytes_[value];
        isCharacter = decoded.has_value();
        if (!isCharacter && form == Form::line) {
            appendEscape(text, "\\x%02X", static_cast<char32_t>(value));
            continue;
        }
        std::string_view rest = isCharacter ? *decoded : std::string_view();
        const char32_t character = isCharacter ? takeCharacter(rest) : replacementCharacter;
        form == Form::line ? appendForLine(text, character) : appendForJson(text, character);
    }
}

void Spelling::append(std::string &out, std::string_view bytes) const {
    for (const char byte : bytes)
        out += bytes_[static_cast<unsigned char>(byte)].text;
}

bool Spelling::isText(std::string_view bytes) const {
    return std::ranges::all_of(
        bytes, [&](char byte) { return bytes_[static_cast<unsigned char>(byte)].isCharacter; });
}

void appendJson(std::string &out, std::string_view text) {
    while (!text.empty())
        appendForJson(out, takeCharacter(text));
}

void appendHex(std::string &out, std::string_view bytes, std::string_view behind) {
    constexpr char digits[] = "0123456789ABCDEF";
    for (const char byte : bytes) {
        out += digits[static_cast<unsigned char>(byte) >> 4];
        out += digits[static_cast<unsigned char>(byte) & 0xF];
        out += behind;
    }
}

void appendArgument(std::string &out, const Argument &argument) {
    if (argument.type == String) {
        out.append(argument.data, argument.length);
    } else if (argument.type == ByteArray) {
        appendHex(out, {argument.data, argument.length}, " ");
    } else {
        char text[argumentTextSize];
        out.append(text, formatValue(argument, text));
    }
}

void appendMessage(std::string &out, const std::string &wording,
                   std::span<const Argument> arguments,
                   const std::function<void(uint32_t)> &named) {
    expandMessage(
        wording, static_cast<uint32_t>(arguments.size()),
        [&](std::string_view slice) {
            out += slice;
            return 0;
        },
        [&](uint32_t number) {
            appendArgument(out, arguments[number]);
            if (named)
                named(number);
            return out.size() < messageLimit ? 0 : 1;
        });
}

} // namespace uti::tool
