// code_page.h: the code pages in which the toolkit's texts are; scripts and dumps are in UTF-8.
#pragma once

#include "common/code_page.h"

namespace uti::host {

// The code page that the terminal has by itself.
const CodePage &terminalCodePage();

// The code page of a number, such as 1252 or, up to 16, a part of ISO 8859, or of a name; null when
// there is none of one byte to a character. It stays for good.
const CodePage *findCodePage(std::string_view numberOrName);

} // namespace uti::host
