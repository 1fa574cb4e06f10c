// Resource sources: any text is compiled or refused at a place that it has; what is compiled,
// dumped and compiled again is the same.
#include "fuzz/harness.h"

#include "tools/resource_source.h"

#include <sstream>

using namespace fuzz;
using namespace uti;
using namespace uti::tool;

int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
    static const auto opened = CodePage::open(defaultCodePage);
    Diagnostics findings("fuzz.toml", std::string(reinterpret_cast<const char *>(data), size));
    const ResourceSource source = readResourceSource(findings);
    std::ostringstream said;
    findings.print(said);
    REQUIRE(findings.hasErrors() == (said.str().find("error: ") != std::string::npos) ||
            findings.text().find("error: ") != std::string::npos);
    if (findings.hasErrors())
        return 0;

    const std::string compiled = writeResourceFile(source.file);
    Diagnostics none("fuzz.res");
    const std::optional<ResourceFile> file = readResourceFile(compiled, none);
    REQUIRE(file && writeResourceFile(*file) == compiled);
    Diagnostics dumped("dumped.toml",
                       writeResourceSource(*file, source.module, std::get<CodePage>(opened)));
    const ResourceSource again = readResourceSource(dumped);
    REQUIRE(!dumped.hasErrors());
    REQUIRE(writeResourceFile(again.file) == compiled);
    return 0;
}
