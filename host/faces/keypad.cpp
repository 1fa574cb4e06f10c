// keypad.cpp: the table of keys, and drawing them with the toolkit's own painter and fonts.
#include "host/faces/keypad.h"

#include "host/toolkit/key_schemes.h"
#include "host/toolkit/text_layout.h"
#include "toolkit.h"

#include <SDL_keycode.h>

#include <string>

namespace uti::host {

namespace {

// The keys of a row share its width.
constexpr Cap table[] = {
    {0, IG_KEY_F1, "F1", SDLK_F1, "", CapStyle::function},
    {0, IG_KEY_MENU, "Menu", SDLK_F3, "F3", CapStyle::function},
    {0, IG_KEY_LAYOUT, "Abc", SDLK_F4, "F4", CapStyle::function},
    {0, IG_KEY_TAB, "Next", SDLK_TAB, "Tab", CapStyle::function},
    {0, IG_KEY_F2, "F2", SDLK_F2, "", CapStyle::function},
    {1, IG_KEY_LEFT, "", SDLK_LEFT, "", CapStyle::function},
    {1, IG_KEY_UP, "", SDLK_UP, "", CapStyle::function},
    {1, IG_KEY_DOWN, "", SDLK_DOWN, "", CapStyle::function},
    {1, IG_KEY_RIGHT, "", SDLK_RIGHT, "", CapStyle::function},
    {2, '1', "1", SDLK_1, "", CapStyle::digit},
    {2, '2', "2", SDLK_2, "", CapStyle::digit},
    {2, '3', "3", SDLK_3, "", CapStyle::digit},
    {2, IG_KEY_ESCAPE, "Cancel", SDLK_ESCAPE, "Esc", CapStyle::cancel},
    {3, '4', "4", SDLK_4, "", CapStyle::digit},
    {3, '5', "5", SDLK_5, "", CapStyle::digit},
    {3, '6', "6", SDLK_6, "", CapStyle::digit},
    {3, IG_KEY_CLEAR, "Clear", SDLK_DELETE, "Del", CapStyle::correct},
    {4, '7', "7", SDLK_7, "", CapStyle::digit},
    {4, '8', "8", SDLK_8, "", CapStyle::digit},
    {4, '9', "9", SDLK_9, "", CapStyle::digit},
    {4, IG_KEY_BACKSPACE, "Back", SDLK_BACKSPACE, "Backsp.", CapStyle::correct},
    {5, '*', "*", SDLK_ASTERISK, "", CapStyle::digit},
    {5, '0', "0", SDLK_0, "", CapStyle::digit},
    {5, '#', "#", SDLK_HASH, "", CapStyle::digit},
    {5, IG_KEY_ENTER, "OK", SDLK_RETURN, "Enter", CapStyle::confirm},
};
constexpr int rowHeights[] = {30, 24, 38, 38, 38, 38};

struct Colors {
    Color face, edge, ink;
};
constexpr Colors colors[] = {
    {rgb(240, 242, 245), rgb(150, 156, 166), rgb(30, 34, 42)}, // digit
    {rgb(96, 104, 118), rgb(26, 30, 36), rgb(246, 248, 250)},  // function
    {rgb(206, 62, 58), rgb(112, 22, 24), rgb(255, 255, 255)},  // cancel
    {rgb(240, 190, 48), rgb(140, 100, 10), rgb(48, 36, 4)},    // correct
    {rgb(44, 158, 90), rgb(12, 82, 44), rgb(255, 255, 255)},   // confirm
};
constexpr Color ground = rgb(206, 212, 220); // what the device lies on
constexpr Color body = rgb(52, 58, 68), bodyEdge = rgb(28, 32, 38), bodyLight = rgb(84, 92, 104);
constexpr Color bezel = rgb(8, 10, 12);

constexpr int margin = 8;  // around the device
constexpr int border = 14; // from its edge to the display and the keys
constexpr int frame = 6;   // of the display
constexpr int gap = 6;     // between keys
constexpr int travel = 2;  // how far a key goes down

const Colors &colorsOf(const Cap &cap) {
    return colors[static_cast<std::size_t>(cap.style)];
}

} // namespace

// Keys grow slower than the display, or the window would be higher than a screen.
Keypad::Keypad(Fonts &fonts, Size display, int scale)
    : percent_(75 + 25 * scale), large_(fonts.label(scaled(24))), middle_(fonts.label(scaled(14))),
      small_(fonts.label(scaled(11))), letters_(fonts.label(scaled(10))) {
    constexpr int leastKeys = 240;
    const int inset = margin + border;
    const int width = std::max(display.width * scale + 2 * frame, scaled(leastKeys));
    screen_ = {inset + (width - display.width * scale) / 2, inset + frame, display.width * scale,
               display.height * scale};

    Rect row{inset, screen_.bottom() + frame + 2 * gap, width, 0};
    for (int number = 0; const int rowHeight : rowHeights) {
        row.height = scaled(rowHeight);
        const int count = static_cast<int>(std::ranges::count(table, number, &Cap::row));
        int nth = 0;
        for (Cap cap : table) {
            if (cap.row != number)
                continue;
            const int left = nth * (width + gap) / count;
            const int next = ++nth * (width + gap) / count;
            cap.area = {row.x + left, row.y, next - gap - left, row.height};
            caps_.push_back(cap);
        }
        row.y += row.height + gap;
        ++number;
    }
    size_ = {width + 2 * inset, row.y - gap + inset};
}

const Cap *Keypad::capAt(Point at) const {
    const auto found =
        std::ranges::find_if(caps_, [at](const Cap &c) { return c.area.contains(at); });
    return found == caps_.end() ? nullptr : &*found;
}

const Cap *Keypad::capOf(int32_t pcKey) const {
    const auto found = std::ranges::find(caps_, pcKey, &Cap::pcKey);
    return found == caps_.end() ? nullptr : &*found;
}

void Keypad::draw(Painter &painter) const {
    const Rect device = Rect{0, 0, size_.width, size_.height}.inset(margin);
    painter.fill({0, 0, size_.width, size_.height}, ground);
    painter.rounded(device, 2 * margin, bodyEdge);
    painter.rounded({device.x, device.y, device.width, device.height - 3}, 2 * margin, bodyLight);
    painter.rounded({device.x, device.y + 1, device.width, device.height - 4}, 2 * margin, body);
    painter.rounded(screen_.inset(-frame), frame, bezel);
    for (const Cap &cap : caps_)
        drawCap(painter, cap, false);
}

void Keypad::drawCap(Painter &painter, const Cap &cap, bool isPressed) const {
    const auto &[face, edge, ink] = colorsOf(cap);
    const int radius = scaled(6);
    const int down = isPressed ? travel : 0;
    Painter own = painter.within(cap.area);
    own.fill({0, 0, cap.area.width, cap.area.height}, body);
    const Rect top{0, down, cap.area.width, cap.area.height - travel};
    own.rounded({0, travel, top.width, top.height}, radius, edge);
    own.rounded(top, radius, isPressed ? mix(edge, face, 90) : face);

    if (cap.style == CapStyle::digit)
        return drawLetters(own, top, cap);
    if (!*cap.label)
        return drawArrow(own, top, cap.key);
    Rect text = top;
    if (*cap.pcLabel) {
        const int lines = middle_->height() + small_->height();
        text = {0, top.y + (top.height - lines) / 2, top.width, middle_->height()};
        drawLine(own, {0, text.bottom(), top.width, small_->height()}, cap.pcLabel, *small_,
                 mix(ink, face, 190), IG_JUSTIFY_CENTER);
    }
    drawLine(own, text, cap.label, *middle_, ink, IG_JUSTIFY_CENTER);
}

// The digit, and beside it the letters that it gives.
void Keypad::drawLetters(Painter &painter, const Rect &area, const Cap &cap) const {
    const Colors &look = colorsOf(cap);
    const KeySchemes schemes;
    const auto lettersOf = [&](Letters letters) {
        std::string_view all = schemes.characters(0, letters, cap.key);
        const bool isLetter = cap.key >= '2' && cap.key <= '9';
        return isLetter ? all.substr(0, all.size() - 1) : std::string_view();
    };
    Rect left = area, right = area;
    left.width = area.width / 3;
    right.x = left.right();
    right.width = area.width - left.width;
    if (lettersOf(Letters::capital).empty())
        left = area;
    drawLine(painter, left, cap.label, *large_, look.ink, IG_JUSTIFY_CENTER);

    right.y += (area.height - 2 * letters_->height()) / 2;
    right.height = letters_->height();
    const Color ink = mix(look.ink, look.face, 170);
    drawLine(painter, right, lettersOf(Letters::capital), *letters_, ink, IG_JUSTIFY_LEFT);
    right.y += right.height;
    drawLine(painter, right, lettersOf(Letters::capitalCyrillic), *letters_, ink, IG_JUSTIFY_LEFT);
}

void Keypad::drawArrow(Painter &painter, const Rect &area, uint8_t key) const {
    const int reach = scaled(4), thickness = std::max(scaled(2), 2);
    const Point tip{area.x + area.width / 2, area.y + area.height / 2};
    const bool isUpright = key == IG_KEY_UP || key == IG_KEY_DOWN;
    const int back = key == IG_KEY_UP || key == IG_KEY_LEFT ? reach : -reach;
    for (const int side : {-reach, reach}) {
        const Point from = isUpright ? Point{tip.x + side, tip.y + back / 2}
                                     : Point{tip.x + back / 2, tip.y + side};
        const Point to =
            isUpright ? Point{tip.x, tip.y - back / 2} : Point{tip.x - back / 2, tip.y};
        painter.line(from, to, thickness, colors[1].ink);
    }
}

} // namespace uti::host
