// source_text.h: texts and bytes as a resource source spells them, in both directions. Stands on
// the TOML reader and the code page.
#pragma once

#include "common/code_page.h"
#include "tools/toml_reader.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace uti::tool {

// The text in a code page; reports each character that is not in it. Without a code page, which
// was reported before, nothing.
std::string encodeText(const TomlText &text, const CodePage *codePage, Diagnostics &diagnostics);

// The bytes of pairs of hex digits, up to the first mistake, which is reported.
std::string decodeHex(const TomlText &text, Diagnostics &diagnostics);

// A text in UTF-8 with its quotes; what no reader could see or tell apart is written as an escape.
std::string quote(std::string_view text);

// Bytes in hex as a text of one line, or of several when there are many.
std::string quoteHex(std::string_view bytes);

// Bytes in the code page as UTF-8, or nothing when they are no readable text.
std::optional<std::string> readableText(std::string_view bytes, const CodePage &codePage);

std::string join(const std::vector<std::string> &parts, std::string_view separator);

} // namespace uti::tool
