// notice.cpp: saying things once.
#include "host/terminal/notice.h"

#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>

namespace uti::host {

void notice(std::string_view cause, std::string_view sentence) {
    static std::set<std::string, std::less<>> said;
    const char *quiet = std::getenv("UTI_QUIET");
    if ((quiet && std::string_view(quiet) == "1") || said.contains(cause))
        return;
    said.emplace(cause);
    std::fprintf(stderr, "uti: %.*s\n", static_cast<int>(sentence.size()), sentence.data());
}

} // namespace uti::host
