// log_text.h: the texts of log records: put together from wording and arguments, each in a code
// page of its own, and spelled out in UTF-8. Stands on the library's text form of a record.
#pragma once

#include "Src/utiTraceArguments.h"
#include "common/code_page.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace uti::tool {

// Where a text is to stand: on a line of its own, where nothing may be invisible or steer the
// terminal, or in JSON, whose writer makes its own escapes.
enum class Form : uint8_t { line, json };

// How each byte of a code page is written in UTF-8, always valid. A byte without a character is an
// escape on a line and the replacement character in JSON.
class Spelling {
public:
    Spelling(const CodePage &codePage, Form form);

    void append(std::string &out, std::string_view bytes) const;

    // True when every byte is a character.
    bool isText(std::string_view bytes) const;

private:
    struct Byte {
        bool isCharacter;
        uint8_t length;
        char text[4];
    };
    Byte bytes_[256];
};

// The bytes of a text that may not be UTF-8 as UTF-8.
std::string validUtf8(std::string_view text);

// Appends a number of at least so many digits.
void appendPadded(std::string &out, int32_t number, std::size_t digits);

// Appends bytes in upper-case hex, `behind` after each.
void appendHex(std::string &out, std::string_view bytes, std::string_view behind);

// Appends the text of an argument as a text record has it.
void appendArgument(std::string &out, const Argument &argument);

// A wording taken apart, once for all records that have it.
class Wording {
public:
    // `spelling` is that of the language.
    Wording(const std::string &text, const Spelling &spelling);

    // Appends the message in UTF-8: the text with its placeholders replaced, those without an
    // argument as they stand. `named`, which has a place for each argument, gets true for those
    // that are named. `spelling` is that of arguments.
    void append(std::string &out, std::span<const Argument> arguments, const Spelling &spelling,
                std::vector<bool> &named) const;

private:
    static constexpr uint32_t none = UINT32_MAX;

    struct Piece {
        std::string text; // in UTF-8: a placeholder with its braces, or what stands between two
        uint32_t number;  // of the argument
    };
    std::vector<Piece> pieces_;
};

} // namespace uti::tool
