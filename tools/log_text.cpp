// log_text.cpp: messages and their spelling.
#include "tools/log_text.h"

#include "Src/utiTraceText.h"
#include "common/utf8.h"
#include "tools/log_record.h"

#include <algorithm>
#include <cstdio>

namespace uti::tool {

namespace {

// A wording may name a large argument again and again; the message ends when it is this long.
constexpr std::size_t messageLimit = std::size_t{4} * longestRecord;

constexpr char digitsOfHex[] = "0123456789ABCDEF";

bool isControl(char32_t character) {
    return character < ' ' || (character >= 0x7F && character < 0xA0);
}

std::string escape(uint8_t byte) {
    return {'\\', 'x', digitsOfHex[byte >> 4], digitsOfHex[byte & 0xF]};
}

std::string onLine(char32_t character) {
    if (character == '\n')
        return "\\n";
    if (character == '\r')
        return "\\r";
    if (isControl(character) && character != '\t')
        return escape(static_cast<uint8_t>(character));
    std::string text;
    appendCharacter(text, character);
    return text;
}

} // namespace

Spelling::Spelling(const CodePage &codePage, Form form) {
    for (std::size_t value = 0; value < std::size(bytes_); ++value) {
        const char byte = static_cast<char>(value);
        const std::optional<std::string> decoded = codePage.decode({&byte, 1});
        std::string text = decoded.value_or("");
        if (!decoded && form == Form::line)
            text = escape(static_cast<uint8_t>(value));
        else if (!decoded)
            appendCharacter(text, replacementCharacter);
        else if (std::string_view rest = *decoded; form == Form::line)
            text = onLine(takeCharacter(rest));

        Byte &spelled = bytes_[value];
        spelled.isCharacter = decoded.has_value();
        spelled.length = static_cast<uint8_t>(text.copy(spelled.text, sizeof spelled.text));
    }
}

void Spelling::append(std::string &out, std::string_view bytes) const {
    const std::size_t begin = out.size();
    out.resize(begin + sizeof Byte::text * bytes.size());
    char *end = out.data() + begin;
    for (const char byte : bytes) {
        const Byte &spelled = bytes_[static_cast<uint8_t>(byte)];
        std::copy_n(spelled.text, sizeof spelled.text, end);
        end += spelled.length;
    }
    out.resize(static_cast<std::size_t>(end - out.data()));
}

bool Spelling::isText(std::string_view bytes) const {
    return std::ranges::all_of(
        bytes, [&](char byte) { return bytes_[static_cast<uint8_t>(byte)].isCharacter; });
}

std::string validUtf8(std::string_view text) {
    std::string valid;
    while (!text.empty()) {
        std::string_view rest = text;
        const char32_t character = takeCharacter(rest);
        std::string encoded;
        appendCharacter(encoded, character);
        const bool isScalar = character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
        const bool isShortest = text.starts_with(encoded);
        if (isScalar && isShortest)
            valid += encoded;
        else
            appendCharacter(valid, replacementCharacter);
        text = rest;
    }
    return valid;
}

void appendPadded(std::string &out, int32_t number, std::size_t digits) {
    char text[12];
    char *begin = std::end(text);
    for (int32_t rest = number < 0 ? 0 : number; rest > 0; rest /= 10)
        *--begin = static_cast<char>('0' + rest % 10);
    while (static_cast<std::size_t>(std::end(text) - begin) < std::min(digits, sizeof text))
        *--begin = '0';
    if (number < 0)
        out += std::to_string(number);
    else
        out.append(begin, std::end(text));
}

void appendHex(std::string &out, std::string_view bytes, std::string_view behind) {
    for (const char byte : bytes) {
        out += digitsOfHex[static_cast<uint8_t>(byte) >> 4];
        out += digitsOfHex[static_cast<uint8_t>(byte) & 0xF];
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

Wording::Wording(const std::string &text, const Spelling &spelling) {
    std::size_t done = 0; // in pieces
    const auto addUpTo = [&](std::size_t end, uint32_t number) {
        if (end > done) {
            Piece &piece = pieces_.emplace_back(Piece{"", number});
            spelling.append(piece.text, std::string_view(text).substr(done, end - done));
        }
        done = std::max(done, end);
    };
    uint32_t number = none;
    const auto placeOf = [&](std::string_view slice) {
        return static_cast<std::size_t>(slice.data() - text.data());
    };
    expandMessage(
        text, none,
        [&](std::string_view slice) {
            addUpTo(placeOf(slice), number);
            number = none;
            addUpTo(placeOf(slice) + slice.size(), none);
            return 0;
        },
        [&](uint32_t named) {
            number = named;
            return 0;
        });
    addUpTo(text.size(), number);
}

void Wording::append(std::string &out, std::span<const Argument> arguments,
                     const Spelling &spelling, std::vector<bool> &named) const {
    const std::size_t most = out.size() + messageLimit;
    std::string argument;
    for (const auto &[text, number] : pieces_) {
        if (number >= arguments.size()) {
            out += text;
            continue;
        }
        argument.clear();
        appendArgument(argument, arguments[number]);
        spelling.append(out, argument);
        named[number] = true;
        if (out.size() >= most)
            return;
    }
}

} // namespace uti::tool
