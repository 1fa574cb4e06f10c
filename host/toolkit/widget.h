// widget.h: what all widgets are: an area of a form with colours, a font, a border, and answers to
// keys and pen. Each kind stands in a file of its own, together with its functions of toolkit.h.
#pragma once

#include "host/toolkit/painter.h"
#include "host/toolkit/stage.h"
#include "host/toolkit/text_layout.h"
#include "toolkit.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace uti::host {

class Form;

struct ColorPair {
    Color foreground;
    Color background;
};

enum class PenPhase : uint8_t { down, move, up };

// What a widget shows, for dumps and for scripts that look for texts. Texts are in the terminal's
// code page.
struct Description {
    std::string kind;
    std::vector<std::string> texts; // what a person reads, in order; in the code page
    std::string notes;              // what else can be seen, such as "2 strokes"
};

class Widget {
public:
    Widget(Stage &on, const Rect &place) : stage(on), area(place) {}
    virtual ~Widget() = default;
    Widget(const Widget &) = delete;
    Widget &operator=(const Widget &) = delete;

    virtual int32_t type() const = 0;
    virtual Description describe() const = 0;
    // The text that is not shown whole, the first one of several; none when all of them fit.
    virtual std::optional<Cut> cut() const = 0;

    // Draws the widget; the painter's origin is the left top corner of its area.
    virtual void draw(Painter &painter) const = 0;

    virtual bool takesFocus() const { return false; }
    // Told when the focus comes or goes.
    virtual void focusChanged() {}

    // A key, or a character from a full keyboard. Each returns whether the widget made use of it.
    virtual bool key(uint8_t) { return false; }
    virtual bool character(char) { return false; }
    // Like `key`, for a widget without the focus.
    virtual bool hotKey(uint8_t) { return false; }
    // The key that pressing `key` comes to while this widget has the focus.
    virtual uint8_t meaning(uint8_t key) const { return key; }
    // The pen, relative to the area. Returns the key that the touch comes to, 0 for none.
    virtual uint8_t pen(PenPhase, Point) { return 0; }

    // The name of the letters that its keys give, for the status line; empty without a choice.
    virtual std::string_view letters() const { return {}; }

    // Pixels hidden above (0) or below (1), to which the widget can scroll.
    virtual int hidden(int32_t) const { return 0; }

    // Has the widget drawn again.
    void changed();
    bool hasFocus() const;
    const ColorPair &colors() const { return hasFocus() ? active : passive; }
    Font &textFont() const;
    // A text of the widget in UTF-8, as its font shows it.
    std::string readable(std::string_view text) const { return textFont().codePage().toUtf8(text); }

    Stage &stage;
    int32_t handle = 0;
    Rect area;
    Form *form = nullptr; // null until the widget is added to one
    ColorPair active{0xFFFF, 0x1B17};
    ColorPair passive{0x0000, 0xFFFF};
    uint32_t border = 0;
    uint32_t justify = IG_JUSTIFY_CENTER;
    uint32_t transparency = 0;
    uint16_t font = 1;
    int32_t activeBackImage = 0;
    int32_t passiveBackImage = 0;
    int32_t keyScheme = 0;

protected:
    // Draws background, border and the mark of the focus. Returns a painter for `inside`.
    Painter drawBox(Painter &painter) const {
        return drawBox(painter, colors(), border == 2 ? 5 : 0);
    }
    Painter drawBox(Painter &painter, const ColorPair &colors, int radius) const;
    // The mark of the focus, for a widget that shows it in no other way.
    virtual void drawFocus(Painter &painter, Color background, int radius) const;
    // The area inside the border, relative to the widget.
    Rect inside() const;
    // An image, which may be null, and a text in an area: the image above the text when both fit,
    // else at its left; justified when there is only one of them.
    struct Content {
        Rect room;
        const Image *image;
        std::string_view text;
    };
    void drawContent(Painter &painter, const Content &content) const;
    std::optional<Cut> contentCut(const Content &content) const;

private:
    struct Places {
        Point image;
        Rect text;
    };
    Places layOut(const Content &content) const;
};

// The bar at the right of something that shows `shown` of `total` pixels from `first` on.
constexpr int scrollBarWidth = 5;
void drawScrollBar(Painter &painter, const Rect &area, int first, int shown, int total,
                   Color color);

} // namespace uti::host
