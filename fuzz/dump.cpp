// Resource files back into source: it compiles to the same content, and to the same bytes when the
// file is laid out as the compiler does it. A file that is changed anywhere is read or refused.
#include "fuzz/dialogs.h"
#include "fuzz/sources.h"

using namespace fuzz;
using namespace uti;
using namespace uti::tool;

namespace {

std::string makeFile(Input &in) {
    std::vector<std::pair<int, std::vector<support::Language>>> sections;
    for (const int number : {0, 1, 3}) {
        std::vector<support::Language> blocks;
        for (uint32_t count = in.below(3), i = 0; i < count; ++i) {
            support::Language block{i ? "ru" : "en", static_cast<uint16_t>(in.below(400)), {}};
            for (uint32_t strings = in.below(5); strings > 0; --strings)
                block.strings.push_back(number == 3 ? describeDialog(in, in.below(5))
                                                    : in.bytes(40));
            blocks.push_back(block);
        }
        sections.emplace_back(number, blocks);
    }
    return support::resourceFile(static_cast<uint16_t>(in.below(3)), sections);
}

} // namespace

void fuzz::run(Input &in) {
    std::string bytes = in.oneIn(4) ? in.takeRest() : makeFile(in);
    if (in.oneIn(4))
        in.damage(bytes, in.below(4));
    Diagnostics findings("fuzz.res");
    const std::optional<ResourceFile> file = readResourceFile(bytes, findings);
    REQUIRE(file.has_value() != findings.hasErrors());
    REQUIRE(file || !said(findings).empty());
    if (file)
        requireSame(*file);
}
