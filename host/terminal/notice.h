// notice.h: what the stand-in has to say to a developer: a picture that is missing, a text that
// does not fit. Everything is said once, on standard error, and nothing under UTI_QUIET=1. Errors
// that end the process are not said here. Stands on the C++ standard library.
#pragma once

#include <string_view>

namespace uti::host {

// Says "uti: `sentence`", unless that was said before about the same `cause`.
void notice(std::string_view cause, std::string_view sentence);

// The same where the sentence is its own cause.
inline void notice(std::string_view sentence) {
    notice(sentence, sentence);
}

} // namespace uti::host
