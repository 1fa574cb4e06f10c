// rules.h: the rules by which a source is judged beyond its syntax, by the names that findings end
// with and that `allow` takes (docs/check.md).
#pragma once

#include "common/diagnostics.h"

namespace uti::tool {

struct Rule {
    std::string_view name;
    Severity severity = Severity::warning;
};

namespace rule {

inline constexpr Rule buttons{"buttons", Severity::error};
inline constexpr Rule contrast{"contrast"};
inline constexpr Rule emptyNode{"empty-node"};
inline constexpr Rule fit{"fit"};
inline constexpr Rule font{"font"};
inline constexpr Rule image{"image"};
inline constexpr Rule key{"key"};
inline constexpr Rule missing{"missing"};
inline constexpr Rule outside{"outside"};
inline constexpr Rule overlap{"overlap"};
inline constexpr Rule placeholders{"placeholders", Severity::error};
inline constexpr Rule roles{"roles", Severity::error};

} // namespace rule

inline constexpr Rule rules[] = {
    rule::buttons, rule::contrast, rule::emptyNode, rule::fit,          rule::font,    rule::image,
    rule::key,     rule::missing,  rule::outside,   rule::placeholders, rule::overlap, rule::roles,
};

// Reports a finding of a rule; false when it is allowed here.
template <class... Parts>
bool report(Diagnostics &diagnostics, const Rule &rule, Place place, const Parts &...parts) {
    return diagnostics.report(rule.severity, rule.name, place, parts...);
}

// What is said of a string without a text in a language.
inline std::string lackOf(std::string_view string, std::string_view language) {
    return concat(string, " has no text in ", language);
}

struct CheckedDialog;

// What the widget toolkit has to say of a dialog; null in a build without one.
using FormRules = void (*)(const CheckedDialog &dialog, Diagnostics &diagnostics);

} // namespace uti::tool
