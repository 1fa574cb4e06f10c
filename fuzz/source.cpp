// Resource sources: any text is compiled or refused at a place that it has; what is compiled,
// dumped and compiled again is the same.
#include "fuzz/sources.h"

using namespace uti;
using namespace uti::tool;

void fuzz::run(Input &in) {
    Diagnostics findings("fuzz.toml", in.takeRest());
    const ResourceSource source = readResourceSource(findings);
    const bool saysError = said(findings).find("error: ") != std::string::npos;
    REQUIRE(findings.hasErrors() == saysError ||
            findings.text().find("error: ") != std::string::npos);
    if (findings.hasErrors())
        return;
    const std::string compiled = writeResourceFile(source.file);
    Diagnostics none("fuzz.res");
    const std::optional<ResourceFile> file = readResourceFile(compiled, none);
    REQUIRE(file && writeResourceFile(*file) == compiled);
    requireSame(*file);
}
