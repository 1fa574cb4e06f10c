// text_layout.h: where texts stand in their areas: justification, lines, words.
#pragma once

#include "host/toolkit/painter.h"

#include <string>
#include <string_view>
#include <vector>

namespace uti::host {

// The left top corner at which something of that size stands in the area by bits of `IgJustify`.
// What is too large keeps its left top corner.
Point justified(Size size, const Rect &area, uint32_t justify);

enum class Wrap : uint8_t { atLineFeeds, atWords };

// The lines of a text: parted at line feeds and, to fit a width, at words, or inside a word that is
// too wide alone. A text with nothing in it has one line.
std::vector<std::string_view> linesOf(std::string_view text, Font &font, int width, Wrap wrap);

// The text, or as much of its start as fits the width with an ellipsis behind it.
std::string shortened(std::string_view text, Font &font, int width);

// As much of the text's end as fits the width.
std::string_view endOf(std::string_view text, Font &font, int width);

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
