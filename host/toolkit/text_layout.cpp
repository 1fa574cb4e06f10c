// text_layout.cpp: measuring texts by the cells of their fonts.
#include "host/toolkit/text_layout.h"

#include "toolkit.h"

namespace uti::host {

namespace {

constexpr char ellipsis = '\x85';

// How many of the text's first characters fit the width, at least one of any.
std::size_t countFitting(std::string_view text, Font &font, int width) {
    std::size_t count = 0;
    for (int used = 0; count < text.size(); ++count) {
        used += font.width(text[count]);
        if (used > width && count > 0)
            break;
    }
    return count;
}

} // namespace

Point justified(Size size, const Rect &area, uint32_t justify) {
    const auto place = [justify](int room, uint32_t start, uint32_t end) {
        if (justify & start || room < 0)
            return 0;
        return justify & end ? room : room / 2;
    };
    return {area.x + place(area.width - size.width, IG_JUSTIFY_LEFT, IG_JUSTIFY_RIGHT),
            area.y + place(area.height - size.height, IG_JUSTIFY_TOP, IG_JUSTIFY_BOTTOM)};
}

std::vector<std::string_view> linesOf(std::string_view text, Font &font, int width, Wrap wrap) {
    std::vector<std::string_view> lines;
    for (bool more = true; more;) {
        const std::size_t feed = text.find('\n');
        std::string_view line = text.substr(0, feed);
        more = feed != std::string_view::npos;
        text.remove_prefix(more ? feed + 1 : text.size());

        const bool isEmpty = line.empty();
        for (std::size_t fitting;
             wrap == Wrap::atWords && (fitting = countFitting(line, font, width)) < line.size();) {
            const std::size_t space = line.rfind(' ', fitting);
            const bool atSpace = space != std::string_view::npos && space > 0;
            lines.push_back(line.substr(0, atSpace ? space : fitting));
            line.remove_prefix(atSpace ? space + 1 : fitting);
        }
        if (isEmpty || !line.empty()) // a blank at the end of a full line makes no further one
            lines.push_back(line);
    }
    return lines;
}

// A line that is a little higher than its place loses nothing when no ink is there. A lost row of
// pixels is no lost text.
std::optional<Cut> cutOf(std::string_view text, const std::vector<std::string_view> &lines,
                         Font &font, Size room) {
    const std::string_view longest = *std::ranges::max_element(
        lines, {}, [&](std::string_view line) { return font.width(line); });
    const int columns = static_cast<int>(longest.size()), rows = static_cast<int>(lines.size());
    const int fitting = room.height / font.height();
    const bool isLow = rows > std::max(fitting, 1) ||
                       (rows > fitting && font.inkHeight(longest) > room.height + 1);
    const bool isNarrow = font.width(longest) > room.width;
    if (!isLow && !isNarrow)
        return std::nullopt;
    const int shown = font.width(longest.substr(0, 1)) > room.width
                          ? 0
                          : static_cast<int>(countFitting(longest, font, room.width));
    return Cut{std::string(text), {shown, isLow ? fitting : rows}, {columns, rows}};
}

TextLayout layOutLine(std::string_view text, Font &font, Size room) {
    TextLayout layout{{std::string(text)}, cutOf(text, {text}, font, room)};
    if (font.width(text) > room.width) {
        const std::size_t count = countFitting(text, font, room.width - font.width(ellipsis));
        layout.lines[0] = std::string(text.substr(0, count)) + ellipsis;
    }
    return layout;
}

TextLayout layOutEnd(std::string_view text, Font &font, Size room) {
    std::size_t first = text.size();
    for (int used = 0; first > 0; --first) {
        used += font.width(text[first - 1]);
        if (used > room.width)
            break;
    }
    return {{std::string(text.substr(first))}, cutOf(text, {text}, font, room)};
}

TextLayout layOutText(std::string_view text, Font &font, Size room) {
    const auto lines = linesOf(text, font, room.width, Wrap::atWords);
    TextLayout layout{{lines.begin(), lines.end()}, cutOf(text, lines, font, room)};
    const auto fitting = static_cast<std::size_t>(std::max(room.height / font.height(), 1));
    if (lines.size() > fitting) {
        layout.lines.resize(fitting);
        std::string &last = layout.lines.back();
        last += {' ', ellipsis};
        while (font.width(last) > room.width && last.size() > 1)
            last.erase(last.size() - 2, 1);
    }
    return layout;
}

Point drawLines(Painter &painter, const Rect &area, const std::vector<std::string_view> &lines,
                Font &font, Color ink, uint32_t justify, int scrolled) {
    const int height = static_cast<int>(lines.size()) * font.height();
    Rect row{area.x, justified({0, height}, area, justify).y - scrolled, area.width, font.height()};
    Point end = row.origin();
    for (const std::string_view line : lines) {
        end = justified({font.width(line), row.height}, row, justify);
        painter.text(end, line, font, ink);
        end.x += font.width(line);
        row.y += row.height;
    }
    return end;
}

void drawText(Painter &painter, const Rect &area, std::string_view text, Font &font, Color ink,
              uint32_t justify) {
    const TextLayout layout = layOutText(text, font, area.size());
    drawLines(painter, area, {layout.lines.begin(), layout.lines.end()}, font, ink, justify);
}

void drawLine(Painter &painter, const Rect &area, std::string_view text, Font &font, Color ink,
              uint32_t justify) {
    const std::string shown = layOutLine(text, font, area.size()).lines[0];
    const Size size{font.width(shown), font.height()};
    painter.within(area).text(justified(size, {0, 0, area.width, area.height}, justify), shown,
                              font, ink);
}

} // namespace uti::host
