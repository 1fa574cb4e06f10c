// sources.h: resource files and their sources say the same.
#pragma once

#include "fuzz/harness.h"

#include "tools/resource_source.h"

#include <sstream>

namespace fuzz {

inline std::string said(const uti::Diagnostics &findings) {
    std::ostringstream out;
    findings.print(out);
    return out.str();
}

inline void requireSame(const uti::tool::ResourceFile &file) {
    using namespace uti;
    using namespace uti::tool;
    static const auto opened = CodePage::open(defaultCodePage);
    Diagnostics dumped("dumped.toml",
                       writeResourceSource(file, "fuzz", std::get<CodePage>(opened)));
    const ResourceSource source = readResourceSource(dumped);
    if (dumped.hasErrors())
        printf("%s%s", dumped.text().c_str(), said(dumped).c_str());
    REQUIRE(!dumped.hasErrors() && source.file == file);
    const std::string compiled = writeResourceFile(file);
    Diagnostics none("compiled.res");
    const std::optional<ResourceFile> again = readResourceFile(compiled, none);
    REQUIRE(again && *again == file && writeResourceFile(*again) == compiled);
}

} // namespace fuzz
