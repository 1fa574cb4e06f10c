// text_layout.h: where texts stand in their areas: justification, lines, words.
#pragma once

#include "host/toolkit/painter.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace uti::host {

// The left top corner at which something of that size stands in the area by bits of `IgJustify`.
// What is too large keeps its left top corner.
Point justified(Size size, const Rect &area, uint32_t justify);

// A text that its place does not show whole: the character cells there are, and those it needs.
struct Cut {
    std::string text; // in the terminal's code page
    Size has, needs;  // columns and lines
};

// What is shown of a text in a place, and whether that is less than all of it. Whoever draws a text
// and whoever asks if it fits go by the same layout.
struct TextLayout {
    std::vector<std::string> lines;
    std::optional<Cut> cut;
};

enum class Wrap : uint8_t { atLineFeeds, atWords };

// The lines of a text: parted at line feeds and, to fit a width, at words, or inside a word that is
// too wide alone. A text with nothing in it has one line.
std::vector<std::string_view> linesOf(std::string_view text, Font &font, int width, Wrap wrap);

// One line: the text, or as much of its start as fits with an ellipsis behind it.
TextLayout layOutLine(std::string_view text, Font &font, Size room);

// One line of which the end is shown when not all of it fits.
TextLayout layOutEnd(std::string_view text, Font &font, Size room);

// Lines wrapped at words, shortened to those that fit.
TextLayout layOutText(std::string_view text, Font &font, Size room);

// What is not to be seen of lines that are drawn as they are.
std::optional<Cut> cutOf(std::string_view text, const std::vector<std::string_view> &lines,
                         Font &font, Size room);

// Draws lines one below the other into an area, of which the painter's clip cuts what does not fit;
// `scrolled` pixels of lines that are higher than the area are above it. Returns where the last
// line ends.
Point drawLines(Painter &painter, const Rect &area, const std::vector<std::string_view> &lines,
                Font &font, Color ink, uint32_t justify, int scrolled = 0);

// Draws a text into an area, wrapped at words and shortened to the lines that fit.
void drawText(Painter &painter, const Rect &area, std::string_view text, Font &font, Color ink,
              uint32_t justify);

// Draws one line of text into an area, shortened to fit.
void drawLine(Painter &painter, const Rect &area, std::string_view text, Font &font, Color ink,
              uint32_t justify);

} // namespace uti::host
