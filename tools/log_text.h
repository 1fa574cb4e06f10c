// log_text.h: the texts of log records: put together from wording and arguments as bytes of the
// modules' code page, and spelled out in UTF-8. Stands on the library's text form of a record.
#pragma once

#include "Src/utiTraceArguments.h"
#include "tools/code_page.h"

#include <functional>
#include <string>
#include <string_view>

namespace uti::tool {

// Where a text is to stand: on a line of its own, where nothing may be invisible or steer the
// terminal, or between the quotes of a JSON string.
enum class Form : uint8_t { line, json };

// How each byte of a code page is written in UTF-8. A byte without a character is an escape on a
// line and the replacement character in JSON.
class Spelling {
public:
    Spelling(const CodePage &codePage, Form form);

    void append(std::string &out, std::string_view bytes) const;

    // True when every byte is a character.
    bool isText(std::string_view bytes) const;

private:
    struct Byte {
        bool isCharacter;
        std::string text;
    };
    Byte bytes_[256];
};

// Appends a text that should be UTF-8, for a JSON string.
void appendJson(std::string &out, std::string_view text);

// Appends bytes in upper-case hex, `behind` after each.
void appendHex(std::string &out, std::string_view bytes, std::string_view behind);

// Appends the text of an argument as a text record has it.
void appendArgument(std::string &out, const Argument &argument);

// Appends the message: the wording with its placeholders replaced. `named` is told the number of
// each argument that it names.
void appendMessage(std::string &out, const std::string &wording,
                   std::span<const Argument> arguments,
                   const std::function<void(uint32_t)> &named = {});

} // namespace uti::tool
