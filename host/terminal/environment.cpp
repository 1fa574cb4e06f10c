// environment.cpp: the process environment and the name of the program. Stands on the C library.
#include "host/terminal/assertion.h"
#include "host/terminal/copy_text.h"
#include "terminal.h"

#include <cstdint>
#include <cstdlib>
#include <sys/auxv.h>

using namespace uti::host;

namespace {

int32_t give(std::string_view text, char *buffer, int32_t size) {
    return size > 0 ? static_cast<int32_t>(copyText(text, buffer, static_cast<uint32_t>(size))) : 0;
}

} // namespace

// A missing variable reads like an empty one: the buffer is then an empty text, the result 0. The
// flags have no meaning here.
int32_t System_GetEnv(const char *name, char *buffer, int32_t size, int32_t) {
    const char *value = name ? std::getenv(name) : nullptr;
    isLanguageMissing = !value && name && std::string_view(name) == "default_lang";
    return give(value ? value : "", buffer, size);
}

// The base name of the file that was started, whatever its argument 0 says.
int32_t GetApplicationName(char *buffer, int32_t size) {
    const auto *started = reinterpret_cast<const char *>(getauxval(AT_EXECFN));
    const std::string_view path = started ? started : "";
    return give(path.substr(path.rfind('/') + 1), buffer, size);
}

// The number in the environment variable UTI_TERMINAL_TYPE; without one an ordinary terminal, 21.
int32_t Terminal_GetType(void) {
    const char *value = std::getenv("UTI_TERMINAL_TYPE");
    return value && *value ? static_cast<int32_t>(std::strtol(value, nullptr, 10)) : 21;
}
