// utf8.h: UTF-8 texts character by character. Stands on the standard library alone.
#pragma once

#include <string>
#include <string_view>

namespace uti::tool {

inline constexpr char32_t replacementCharacter = 0xFFFD;

// Takes the first character off `text`, which must not be empty. A byte that begins no complete
// sequence is taken alone and counts as the replacement character.
char32_t takeCharacter(std::string_view &text);

void appendCharacter(std::string &text, char32_t character);

// "U+20AC" and the character itself, unless it would be invisible.
std::string describe(char32_t character);

} // namespace uti::tool
