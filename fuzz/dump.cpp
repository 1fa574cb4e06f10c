// Resource files back into source: it compiles to the same content, and to the same bytes when the
// file is laid out as the compiler does it. A file that is changed anywhere is read or refused.
#include "fuzz/dialogs.h"

#include "tools/resource_source.h"

#include <sstream>

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

int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
    static const auto opened = CodePage::open(defaultCodePage);
    const CodePage &codePage = std::get<CodePage>(opened);
    Input in(data, size);
    std::string bytes = in.oneIn(4) ? in.takeRest() : makeFile(in);
    for (uint32_t flips = in.oneIn(4) ? in.below(4) : 0; flips > 0; --flips) {
        const std::size_t at = in.below(65535) % bytes.size();
        bytes[at] = static_cast<char>(in.byte());
    }

    Diagnostics findings("fuzz.res");
    const std::optional<ResourceFile> file = readResourceFile(bytes, findings);
    std::ostringstream said;
    findings.print(said);
    REQUIRE(file.has_value() != findings.hasErrors());
    REQUIRE(file || !said.str().empty());
    if (!file)
        return 0;
    Diagnostics again("fuzz.toml", writeResourceSource(*file, "fuzz", codePage));
    const ResourceSource source = readResourceSource(again);
    // What a source cannot tell, a table beyond the limit say, it refuses.
    again.print(said);
    if (again.hasErrors())
        puts(again.text().c_str()), puts(said.str().c_str());
    REQUIRE(!again.hasErrors());
    REQUIRE(source.file == *file);
    const std::string compiled = writeResourceFile(*file);
    REQUIRE(writeResourceFile(source.file) == compiled);
    Diagnostics none("compiled.res");
    const std::optional<ResourceFile> compiledFile = readResourceFile(compiled, none);
    REQUIRE(compiledFile && *compiledFile == *file);
    return 0;
}
