// manual_documents.cpp: manual pages out of the public header and of Markdown documents, and the
// troff that all pages are written in. Stands on the standard library alone.
#include "tools/manual.h"
#include "uti.h"

namespace uti::tool {

namespace {

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    std::istringstream stream{std::string(text)};
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string upperCase(std::string_view text) {
    std::string upper(text);
    for (char &c : upper)
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    return upper;
}

// The words of a line of prose: `code` and **bold** in bold, [a link](target) by its text.
std::string words(std::string_view text) {
    std::string out;
    bool bold = false, code = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool strong = !code && text.substr(i).starts_with("**");
        if (text[i] == '`' || strong) {
            bool &state = strong ? bold : code;
            state = !state;
            out += bold || code ? "\\fB" : "\\fR";
            i += strong ? 1 : 0;
        } else if (!code && text[i] == '[' && text.find("](", i) < text.find(']', i) + 1) {
            const std::size_t middle = text.find("](", i), end = text.find(')', middle);
            out += words(text.substr(i + 1, middle - i - 1));
            i = end == std::string_view::npos ? text.size() : end;
        } else {
            out += code ? roffLiteral(text.substr(i, 1)) : std::string(text.substr(i, 1));
            if (!code && text[i] == '\\')
                out += 'e';
        }
    }
    return out;
}

// The cells of a table's row. A bar inside of code is written with a backslash.
std::vector<std::string> cellsOf(std::string_view row) {
    std::vector<std::string> cells;
    std::string cell;
    row = trimmed(row).substr(1);
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (row[i] == '\\' && i + 1 < row.size() && row[i + 1] == '|') {
            cell += row[++i];
        } else if (row[i] == '|') {
            cells.emplace_back(trimmed(cell));
            cell.clear();
        } else {
            cell += row[i];
        }
    }
    return cells;
}

// A table for tbl: the last column takes what room there is.
std::string table(const std::vector<std::string> &rows) {
    std::string out = ".PP\n.TS\n";
    const std::size_t columns = cellsOf(rows.front()).size();
    for (const char *font : {"lb", "l"}) {
        for (std::size_t column = 1; column < columns; ++column)
            out += font + std::string(" ");
        out += font + std::string(font == std::string_view("l") ? "x.\n" : "x\n");
    }
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (row == 1)
            continue; // the line below the heads
        std::string cells;
        for (const std::string &cell : cellsOf(rows[row]))
            cells += (cells.empty() ? "T{\n" : "\tT{\n") + words(cell) + "\nT}";
        out += cells + '\n';
    }
    return out + ".TE\n";
}

// A comment of the header without its marks.
std::vector<std::string> commentAt(const std::vector<std::string> &lines, std::size_t first) {
    std::vector<std::string> text;
    for (std::size_t i = first; i < lines.size(); ++i) {
        std::string_view line = lines[i];
        const std::size_t end = line.find("*/");
        line = trimmed(line.substr(0, end));
        for (const std::string_view mark : {"/*", "*"})
            if (line.starts_with(mark))
                line.remove_prefix(mark.size());
        text.emplace_back(line);
        if (end != std::string_view::npos)
            break;
    }
    return text;
}

// Paragraphs and numbered points of a comment.
std::string paragraphs(const std::vector<std::string> &lines) {
    std::string out, prose;
    const auto flush = [&] {
        if (!prose.empty())
            out += roffProse(prose);
        prose.clear();
    };
    for (const std::string &line : lines) {
        const std::string_view text = trimmed(line);
        const std::size_t number = text.find_first_not_of("0123456789");
        if (number != 0 && number != std::string_view::npos &&
            text.substr(number).starts_with(". ")) {
            flush();
            out += ".IP " + std::string(text.substr(0, number + 1)) + " 4\n";
            prose += std::string(text.substr(number + 2)) + '\n';
        } else if (text.empty()) {
            flush();
            out += ".PP\n";
        } else {
            prose += std::string(text) + '\n';
        }
    }
    flush();
    return out;
}

} // namespace

std::string roffTitle(std::string_view name, std::string_view section) {
    return "'\\\" t\n.TH \"" + upperCase(name) + "\" " + std::string(section) + " \"\" \"uti " +
           UTI_VERSION + "\" \"uti\"\n.nh\n.ad l\n";
}

std::string roffLiteral(std::string_view text) {
    std::string out;
    bool first = true;
    for (const char c : text) {
        if (first && (c == '.' || c == '\''))
            out += "\\&";
        first = c == '\n';
        switch (c) {
        case '\\':
            out += "\\e";
            break;
        case '-':
            out += "\\-";
            break;
        case '"':
            out += "\\(dq";
            break;
        case '\'':
            out += "\\(aq";
            break;
        case '`':
            out += "\\(ga";
            break;
        case '^':
            out += "\\(ha";
            break;
        case '~':
            out += "\\(ti";
            break;
        default:
            out += c;
        }
    }
    return out;
}

std::string roffProse(std::string_view text) {
    std::string out;
    for (const std::string &line : linesOf(text)) {
        const std::string_view one = trimmed(line);
        if (one.starts_with('.') || one.starts_with('\''))
            out += "\\&";
        out += words(one) + '\n';
    }
    return out;
}

std::string roffExample(std::string_view text) {
    return ".PP\n.RS 4\n.nf\n" + roffLiteral(text) + ".fi\n.RE\n";
}

std::string headerPage(std::string_view header) {
    std::string page = roffTitle("uti.h", "3");
    const std::vector<std::string> lines = linesOf(header);
    std::string names;
    const auto flush = [&] {
        if (!names.empty())
            page += ".PP\n" + names;
        names.clear();
    };

    std::vector<std::string> top = commentAt(lines, 0);
    page += ".SH NAME\nuti.h \\- application services for small Linux terminals\n"
            ".SH SYNOPSIS\n.B #include <uti.h>\n.PP\nLink with the CMake target\n.BR uti::app ,\n"
            "or with what\n.B pkg\\-config \\-\\-libs uti\nsays.\n.SH DESCRIPTION\n";
    // The first line names the file.
    while (!top.empty() && trimmed(top.front()).find("uti.h:") == std::string_view::npos)
        top.erase(top.begin());
    if (!top.empty())
        top.erase(top.begin());
    for (std::string &line : top)
        if (trimmed(line) == "Conventions")
            line = "**Conventions**";
    page += paragraphs(top);

    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].starts_with("/* ====")) {
            flush();
            std::vector<std::string> section = commentAt(lines, i);
            std::string title = section.front();
            std::erase(title, '=');
            section.erase(section.begin());
            page += ".SH " + roffLiteral(upperCase(trimmed(title))) + '\n' + paragraphs(section);
        } else if (lines[i].starts_with("UTI_API") && lines[i].find('(') != std::string::npos) {
            const std::string_view declared =
                std::string_view(lines[i]).substr(0, lines[i].find('('));
            names +=
                ".BR " + std::string(declared.substr(declared.find_last_of(" *") + 1)) + " ()\n";
        }
    }
    flush();
    return page + ".SH SEE ALSO\n.BR uti (1),\n.BR uti\\-formats (5)\n";
}

std::string markdownPage(std::string_view name, std::string_view title, std::string_view markdown) {
    std::string page = roffTitle(name, "5");
    page += ".SH NAME\n" + roffLiteral(name) + " \\- " + roffLiteral(title) + '\n';

    const std::vector<std::string> lines = linesOf(markdown);
    const auto code = [](std::string_view line) { return line.starts_with("    "); };
    bool described = false;
    for (std::size_t i = 0; i < lines.size();) {
        const std::string &line = lines[i];
        const std::size_t level = line.find_first_not_of('#');
        if (line.empty()) {
            ++i;
        } else if (level != 0 && level != std::string::npos) {
            const std::string_view text = trimmed(std::string_view(line).substr(level));
            if (level == 2)
                page += ".SH " + roffLiteral(upperCase(text)) + '\n';
            else if (level > 2)
                page += ".SS " + roffLiteral(text) + '\n';
            else if (!described)
                page += ".SH DESCRIPTION\n";
            described = true;
            ++i;
        } else if (line.starts_with('|')) {
            std::vector<std::string> rows;
            for (; i < lines.size() && lines[i].starts_with('|'); ++i)
                rows.push_back(lines[i]);
            page += table(rows);
        } else if (line.starts_with("```")) {
            std::string text;
            for (++i; i < lines.size() && !lines[i].starts_with("```"); ++i)
                text += lines[i] + '\n';
            ++i;
            page += roffExample(text);
        } else if (code(line)) {
            std::string text;
            for (; i < lines.size() && code(lines[i]); ++i)
                text += lines[i].substr(4) + '\n';
            page += roffExample(text);
        } else {
            std::string text;
            const bool point = line.starts_with("- ");
            page += point ? ".IP \\(bu 4\n" : ".PP\n";
            do
                text += (point && text.empty() ? lines[i].substr(2) : lines[i]) + '\n';
            while (++i < lines.size() && !lines[i].empty() && !lines[i].starts_with("- ") &&
                   !lines[i].starts_with('|') && !lines[i].starts_with("```"));
            page += roffProse(text);
        }
    }
    return page + ".SH SEE ALSO\n.BR uti (1),\n.BR uti.h (3)\n";
}

} // namespace uti::tool
