// diagnostics.h: what the tools have to say about a file, in the form of a compiler:
// file:line:column, the line itself and a caret. Stands on the standard library alone.
#pragma once

#include <compare>
#include <cstdint>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace uti::tool {

// What some editors put before a text in UTF-8; no part of its first line.
inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// A place in a text, line and column counted from 1, the column in characters. Line 0 stands for
// the file as a whole.
struct Position {
    uint32_t line = 0;
    uint32_t column = 0;
    auto operator<=>(const Position &) const = default;
};

// A number to be written as 0x and at least so many upper-case digits.
struct Hex {
    uint32_t value;
    int digits = 1;
};

std::ostream &operator<<(std::ostream &out, Hex number);

// The parts written one after the other.
template <class... Parts>
std::string concat(const Parts &...parts) {
    std::ostringstream out;
    (out << ... << parts);
    return out.str();
}

enum class Warnings : uint8_t { allowed, areErrors };

// A file and the findings about it. A binary file has no text, and its findings no position.
class Diagnostics {
public:
    explicit Diagnostics(std::string path, std::string text = {},
                         Warnings warnings = Warnings::allowed);

    const std::string &path() const { return path_; }
    const std::string &text() const { return text_; }

    template <class... Parts>
    void error(Position position, const Parts &...parts) {
        add({position, true, concat(parts...)});
    }
    template <class... Parts>
    void warning(Position position, const Parts &...parts) {
        add({position, warnings_ == Warnings::areErrors, concat(parts...)});
    }
    bool hasErrors() const;

    // Where `part` stands first in the text between two positions; `begin` when it does not, since
    // it may be written in another way (a character as an escape, say).
    Position find(std::string_view part, Position begin, Position end) const;

    // Writes the findings in the order of their positions.
    void print(std::ostream &out) const;

private:
    struct Finding {
        Position position;
        bool isError;
        std::string message;
        bool operator==(const Finding &) const = default;
    };

    // What is read once for every language is reported once.
    void add(Finding finding);
    std::string_view line(uint32_t number) const;

    std::string path_;
    std::string text_;
    Warnings warnings_;
    std::vector<Finding> findings_;
};

} // namespace uti::tool
