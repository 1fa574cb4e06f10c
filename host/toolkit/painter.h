// painter.h: what everything on the display is drawn with. A painter has an origin, to which all
// its coordinates are relative, and a clip, outside which it changes nothing. Shapes and characters
// are kept as coverages once made, so that drawing again is copying.
#pragma once

#include "host/toolkit/fonts.h"
#include "host/toolkit/image.h"
#include "host/toolkit/surface.h"

#include <optional>
#include <string_view>

namespace uti::host {

class Painter {
public:
    Painter(Surface &surface, const Rect &clip)
        : surface_(surface), clip_(clip.intersected(surface.area())) {}

    // A painter for a part of this one's area: its origin is the part's left top corner, and
    // nothing outside the part is drawn.
    Painter within(const Rect &part) const;

    // Whether anything of `part` can be seen.
    bool reaches(const Rect &part) const { return !part.moved(origin_).intersected(clip_).empty(); }

    void fill(const Rect &area, Color color);
    // Lays a colour over what is there, with a coverage of 0 to 255.
    void shade(const Rect &area, Color color, unsigned coverage);
    void rounded(const Rect &area, int radius, Color color);
    // Lines of `thickness` pixels, inside the area.
    void outline(const Rect &area, int radius, int thickness, Color color);
    void line(Point from, Point to, int thickness, Color color);

    // Draws one line of text from its left top corner.
    void text(Point at, std::string_view text, Font &font, Color ink);
    void image(Point at, const Image &image);
    // Draws a colour through a block of coverages.
    void mask(const Rect &area, const uint8_t *coverage, Color color);

    // The one colour that lies under everything drawn next, when there is one: texts are then
    // copied and not mixed. Whoever fills an area sets it for what stands on it.
    std::optional<Color> ground;

private:
    void copy(const Rect &area, const Color *pixels);
    void corners(const Rect &area, int radius, int thickness, Color color);
    // Calls `each` with the row of the surface, the column and row inside `area`, and the number of
    // pixels, for every row that can be seen.
    template <class Each>
    void forEachRow(const Rect &area, Each each);

    Surface &surface_;
    Rect clip_;
    Point origin_;
};

} // namespace uti::host
