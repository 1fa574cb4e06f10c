// diagnostics.cpp: findings collected, sorted and printed.
#include "tools/diagnostics.h"

#include "tools/utf8.h"

#include <algorithm>
#include <cstdio>

namespace uti::tool {

namespace {

// The line as it can be shown on any terminal: other control characters than tabs are replaced.
std::string shown(std::string_view line) {
    std::string text(line);
    for (char &c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte < ' ' && c != '\t') || byte == 0x7F)
            c = '?';
    }
    return text;
}

// The blanks that stand under the characters before `column`; a tab stays a tab.
std::string indent(std::string_view line, uint32_t column) {
    std::string blanks;
    for (uint32_t at = 1; at < column; ++at)
        blanks += !line.empty() && takeCharacter(line) == '\t' ? '\t' : ' ';
    return blanks;
}

} // namespace

std::ostream &operator<<(std::ostream &out, Hex number) {
    char text[12];
    snprintf(text, sizeof text, "0x%0*X", number.digits, static_cast<unsigned>(number.value));
    return out << text;
}

Diagnostics::Diagnostics(std::string path, std::string text, Warnings warnings)
    : path_(std::move(path)), text_(std::move(text)), warnings_(warnings) {}

bool Diagnostics::hasErrors() const {
    return std::ranges::any_of(findings_, &Finding::isError);
}

void Diagnostics::add(Finding finding) {
    if (std::ranges::find(findings_, finding) == findings_.end())
        findings_.push_back(std::move(finding));
}

std::string_view Diagnostics::line(uint32_t number) const {
    std::string_view rest = text_;
    if (rest.starts_with(byteOrderMark))
        rest.remove_prefix(byteOrderMark.size());
    while (--number > 0 && !rest.empty())
        rest.remove_prefix(std::min(rest.find('\n'), rest.size() - 1) + 1);
    rest = rest.substr(0, rest.find('\n'));
    if (rest.ends_with('\r'))
        rest.remove_suffix(1);
    return rest;
}

Position Diagnostics::find(std::string_view part, Position begin, Position end) const {
    for (Position at = begin; at.line <= end.line; ++at.line, at.column = 1) {
        std::string_view rest = line(at.line);
        for (uint32_t column = 1; !rest.empty(); ++column) {
            if (column >= at.column && Position{at.line, column} < end && rest.starts_with(part))
                return {at.line, column};
            takeCharacter(rest);
        }
    }
    return begin;
}

void Diagnostics::print(std::ostream &out) const {
    std::vector<Finding> sorted = findings_;
    std::ranges::stable_sort(sorted, {}, &Finding::position);
    for (const auto &[position, isError, message] : sorted) {
        out << path_ << ':';
        if (position.line > 0)
            out << position.line << ':' << position.column << ':';
        out << (isError ? " error: " : " warning: ") << message << '\n';
        if (position.line == 0)
            continue;
        const std::string_view source = line(position.line);
        out << shown(source) << '\n' << indent(source, position.column) << "^\n";
    }
}

} // namespace uti::tool
