// code_pages.h: the code pages of a module's languages: one for all, and others for some of them.
#pragma once

#include "common/code_page.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace uti::tool {

class CodePages {
public:
    CodePages(CodePage common) : common_(std::move(common)) {}

    void set(std::string_view language, CodePage page) {
        own_.insert_or_assign(std::string(language), std::move(page));
    }

    const CodePage &common() const { return common_; }
    // The code page of a language.
    const CodePage &of(std::string_view language) const {
        const auto own = own_.find(language);
        return own == own_.end() ? common_ : own->second;
    }

private:
    CodePage common_;
    std::map<std::string, CodePage, std::less<>> own_;
};

// What is wrong with the name of a code page, and the name that was probably meant.
std::string wrongCodePage(const std::string &name, const std::string &fault);

// An option that says in which code pages the texts of a file are that does not say so itself.
inline constexpr const char *codePageHelp =
    "Code page of the texts, or xx=NAME for those of one language; may be repeated (default: "
    "windows-1251)";

// The code pages that such an option gives, or nothing and a message.
std::optional<CodePages> openCodePages(const std::vector<std::string> &options);

} // namespace uti::tool
