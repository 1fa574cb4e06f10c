// assertion.h: what the environment tells about the library's assertions.
#pragma once

namespace uti::host {

// The library was told that no default language is set, which is so on most PCs. It makes an
// assertion of it at once, and that one is no news.
extern bool isLanguageMissing;

} // namespace uti::host
