// diagnostics.h: what there is to say about a file: findings, each with its place and a sentence,
// printed in the form of a compiler. Tools and the key scripts of the desktop use it; it stands on
// the standard library alone.
#pragma once

#include "common/utf8.h"

#include <algorithm>
#include <compare>
#include <cstdint>
#include <cstdio>
#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace uti {

// A place in a text: line and column counted from 1 and the length, both in characters. Line 0
// stands for the file as a whole.
struct Place {
    uint32_t line = 0;
    uint32_t column = 0;
    uint32_t length = 1;
    auto operator<=>(const Place &) const = default;
};

// A number to be written as 0x and at least so many upper-case digits.
struct Hex {
    uint32_t value;
    int digits = 1;
};

inline std::ostream &operator<<(std::ostream &out, Hex number) {
    char text[12];
    std::snprintf(text, sizeof text, "0x%0*X", number.digits, static_cast<unsigned>(number.value));
    return out << text;
}

// The parts written one after the other.
template <class... Parts>
std::string concat(const Parts &...parts) {
    std::ostringstream out;
    (out << ... << parts);
    return out.str();
}

enum class Severity : uint8_t { error, warning };

struct Finding {
    // Another place of the file that belongs to the finding.
    struct Note {
        Place place;
        std::string text;
    };

    Severity severity;
    std::string_view rule; // short name of what may be switched off; empty for a plain mistake
    Place place;
    std::string text;
    std::vector<Note> notes{};
};

// A text by its lines and columns. A place is found in the time that a few hundred characters take,
// wherever it is.
class SourceText {
public:
    explicit SourceText(std::string path, std::string text = {})
        : path_(std::move(path)), text_(std::move(text)) {
        index();
    }

    const std::string &path() const { return path_; }
    const std::string &text() const { return text_; }
    uint32_t lineCount() const { return marks_.back().place.line; }

    // The rest of a line from a column on, without the line's end.
    std::string_view lineFrom(uint32_t line, uint32_t column) const {
        const auto after = std::ranges::upper_bound(marks_, Place{line, column}, {}, &Mark::place);
        Mark at = after[-1];
        std::string_view rest(text_);
        rest.remove_prefix(at.offset);
        if (at.place.line != line)
            return {};
        for (; at.place.column < column && !rest.empty() && rest[0] != '\n'; ++at.place.column)
            takeCharacter(rest);
        rest = rest.substr(0, rest.find('\n'));
        return rest.substr(0, rest.size() - (rest.ends_with('\r') ? 1 : 0));
    }

    // Where `part` stands first from `begin` on and before `end`; `begin` when it does not, since
    // it may be written in another way (a character as an escape, say).
    Place find(std::string_view part, Place begin, Place end) const {
        for (Place at{begin.line, begin.column}; at.line <= end.line; ++at.line, at.column = 1) {
            std::string_view rest = lineFrom(at.line, at.column);
            for (; !rest.empty() && std::pair(at.line, at.column) < std::pair(end.line, end.column);
                 ++at.column) {
                if (rest.starts_with(part))
                    return {at.line, at.column, static_cast<uint32_t>(countCharacters(part))};
                takeCharacter(rest);
            }
        }
        return begin;
    }

private:
    static constexpr uint32_t stride = 256;

    // The start of a line, or every so many characters in it.
    struct Mark {
        Place place;
        std::size_t offset;
    };

    void index() {
        std::string_view rest(text_);
        if (rest.starts_with(byteOrderMark))
            rest.remove_prefix(byteOrderMark.size());
        marks_ = {{{0, 0}, 0}};
        for (Place at{1, 1}; marks_.size() == 1 || !rest.empty();) {
            if (at.column % stride == 1)
                marks_.push_back({{at.line, at.column, 0}, text_.size() - rest.size()});
            const char first = rest.empty() ? '\n' : rest[0];
            if (!rest.empty())
                takeCharacter(rest);
            at = first == '\n' ? Place{at.line + 1, 1} : Place{at.line, at.column + 1};
        }
    }

    std::string path_;
    std::string text_;
    std::vector<Mark> marks_;
};

// Prints findings: file, place and sentence, the line and what is meant in it.
class FindingPrinter {
public:
    FindingPrinter(const SourceText &source, std::ostream &out) : source_(source), out_(out) {}

    void print(const Finding &finding) const {
        const char *severity = finding.severity == Severity::error ? "error" : "warning";
        const std::string rule = finding.rule.empty() ? "" : " [" + std::string(finding.rule) + ']';
        printOne(severity, finding.place, shown(finding.text, longestText) + rule);
        for (const auto &[place, text] : finding.notes)
            printOne("note", place, shown(text, longestText));
    }

private:
    static constexpr std::size_t longestText = 400; // in characters, as the others
    static constexpr uint32_t longestLine = 100;
    static constexpr uint32_t before = 40; // of a line that is cut
    static constexpr const char *cutMark = "...";

    // The text as it can be shown on any terminal: other control characters than tabs are replaced.
    static std::string shown(std::string_view text, std::size_t most) {
        std::string line;
        for (; !text.empty() && most > 0; --most) {
            const char32_t character = takeCharacter(text);
            const bool isControl =
                (character < ' ' && character != '\t') || (character >= 0x7F && character < 0xA0);
            appendCharacter(line, isControl ? '?' : character);
        }
        return text.empty() ? line : line + cutMark;
    }

    void printOne(const char *severity, Place place, const std::string &text) const {
        out_ << source_.path() << ':';
        if (place.line > 0)
            out_ << place.line << ':' << place.column << ':';
        out_ << ' ' << severity << ": " << text << '\n';
        if (place.line > 0)
            printLine(place);
    }

    // The line, around the place when it is long, and a caret with a tail under what is meant. A
    // tab stands under a tab.
    void printLine(Place place) const {
        const bool isCut = place.column > longestLine - before;
        const uint32_t first = isCut ? place.column - before : 1;
        const std::string line =
            (isCut ? cutMark : "") + shown(source_.lineFrom(place.line, first), longestLine);
        const std::size_t from = place.column - first + (isCut ? 3 : 0);
        const std::size_t behind = from + std::max<uint32_t>(place.length, 1);
        std::string marks;
        std::string_view rest(line);
        for (std::size_t at = 0; at < behind && (at <= from || !rest.empty()); ++at) {
            const char32_t above = rest.empty() ? ' ' : takeCharacter(rest);
            marks += at == from ? '^' : at > from ? '~' : above == '\t' ? '\t' : ' ';
        }
        out_ << line << '\n' << marks << '\n';
    }

    const SourceText &source_;
    std::ostream &out_;
};

enum class Warnings : uint8_t { allowed, areErrors };

// A file and the findings about it. A binary file has no text, and its findings no line.
class Diagnostics {
public:
    static constexpr std::size_t mostPrinted = 100;

    explicit Diagnostics(std::string path, std::string text = {},
                         Warnings warnings = Warnings::allowed)
        : source_(std::move(path), std::move(text)), warnings_(warnings) {}

    const SourceText &source() const { return source_; }
    const std::string &path() const { return source_.path(); }
    const std::string &text() const { return source_.text(); }

    template <class... Parts>
    void error(Place place, const Parts &...parts) {
        findings_.push_back({Severity::error, "", place, concat(parts...)});
        hasErrors_ = true;
    }
    // `rule` must outlive the findings. Returns false when it is allowed and nothing was added.
    template <class... Parts>
    bool report(Severity severity, std::string_view rule, Place place, const Parts &...parts) {
        if (allowed_.contains(rule))
            return false;
        const bool isError = severity == Severity::error || warnings_ == Warnings::areErrors;
        findings_.push_back(
            {isError ? Severity::error : Severity::warning, rule, place, concat(parts...)});
        hasErrors_ = hasErrors_ || isError;
        return true;
    }
    template <class... Parts>
    bool warning(std::string_view rule, Place place, const Parts &...parts) {
        return report(Severity::warning, rule, place, parts...);
    }
    // Adds to the last finding what stands elsewhere.
    template <class... Parts>
    void note(Place place, const Parts &...parts) {
        findings_.back().notes.push_back({place, concat(parts...)});
    }
    // The rules of which nothing is to be found at present.
    using Rules = std::set<std::string, std::less<>>;
    const Rules &allowed() const { return allowed_; }
    void setAllowed(Rules rules) { allowed_ = std::move(rules); }

    bool hasErrors() const { return hasErrors_; }
    bool isEmpty() const { return findings_.empty(); }

    // True when there are more than will be printed; what takes time is then left out.
    bool isCrowded() const { return findings_.size() > mostPrinted; }

    // The findings in the order of their places. What was read once for every language was found as
    // often, and counts once.
    std::vector<const Finding *> findings() const {
        std::vector<const Finding *> sorted;
        std::set<std::pair<Place, std::string_view>> known;
        for (const Finding &each : findings_) {
            if (known.emplace(each.place, each.text).second)
                sorted.push_back(&each);
        }
        std::ranges::stable_sort(sorted, {}, &Finding::place);
        return sorted;
    }

    // Writes the first of the findings, errors before warnings, and how many more there are.
    void print(std::ostream &out) const {
        std::vector<const Finding *> all = findings();
        std::ranges::stable_sort(all, {}, &Finding::severity);
        const std::size_t count = std::min(all.size(), mostPrinted);
        const auto rest = all.begin() + static_cast<std::ptrdiff_t>(count);
        const std::size_t left = all.size() - count;
        const auto isError = [](const Finding *each) { return each->severity == Severity::error; };
        const auto errors = static_cast<std::size_t>(std::count_if(rest, all.end(), isError));

        std::stable_sort(all.begin(), rest, [](const Finding *one, const Finding *other) {
            return one->place < other->place;
        });
        const FindingPrinter printer(source_, out);
        std::for_each(all.begin(), rest, [&](const Finding *each) { printer.print(*each); });
        if (left > 0)
            out << path() << ": " << errors << " more errors, " << left - errors
                << " more warnings\n";
    }

private:
    SourceText source_;
    Warnings warnings_;
    std::vector<Finding> findings_;
    Rules allowed_;
    bool hasErrors_ = false;
};

// Allows further rules as long as it lives.
class AllowedHere {
public:
    AllowedHere(Diagnostics &diagnostics, const Diagnostics::Rules &more)
        : diagnostics_(diagnostics), before_(diagnostics.allowed()) {
        Diagnostics::Rules all = before_;
        all.insert(more.begin(), more.end());
        diagnostics.setAllowed(std::move(all));
    }
    ~AllowedHere() { diagnostics_.setAllowed(std::move(before_)); }
    AllowedHere(const AllowedHere &) = delete;
    AllowedHere &operator=(const AllowedHere &) = delete;

private:
    Diagnostics &diagnostics_;
    Diagnostics::Rules before_;
};

} // namespace uti
