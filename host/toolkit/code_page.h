// code_page.h: the terminal's code page, in which the toolkit's texts are, and UTF-8, in which
// scripts and dumps are written.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace uti::host {

// The Unicode character of a byte; a byte without a character gives U+FFFD.
char32_t toUnicode(char byte);

std::string toUtf8(std::string_view bytes);

// The byte of the character that starts at `position` of a UTF-8 text, and the position behind it;
// without a byte when the character is not in the code page or not well written.
std::optional<char> fromUtf8(std::string_view text, std::size_t &position);

} // namespace uti::host
