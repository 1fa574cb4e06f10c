// utiDialogsFonts.h: the font slots that descriptions name.
#pragma once

#include <cstdint>

namespace uti {

// The slot of a font name; a name that is no slot's is loaded as a font file. One that cannot be
// had is reported and gives FONT_FALLBACK; without a display, its code cut to 16 bits.
uint16_t Dialogs_GetFontIndex(const char *fontName);

} // namespace uti
