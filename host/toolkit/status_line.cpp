// status_line.cpp: drawing the status line. A PC has no modem and no battery, so both are full.
#include "host/toolkit/status_line.h"

#include "host/toolkit/text_layout.h"
#include "toolkit.h"

namespace uti::host {

namespace {

constexpr Color background = rgb(32, 40, 52);
constexpr Color foreground = rgb(236, 240, 244);
constexpr Color letterGround = rgb(70, 84, 104);
constexpr int margin = 6;

void drawSignal(Painter &painter, int x) {
    for (int bar = 0; bar < 4; ++bar)
        painter.fill({x + 4 * bar, 14 - 3 * (bar + 1), 3, 3 * (bar + 1)}, foreground);
}

void drawBattery(Painter &painter, int x) {
    painter.outline({x, 5, 18, 10}, 2, 1, foreground);
    painter.fill({x + 18, 8, 2, 4}, foreground);
    painter.fill({x + 2, 7, 14, 6}, foreground);
}

} // namespace

bool StatusLine::update(std::string clock, std::string_view letters) {
    if (clock == clock_ && letters == letters_)
        return false;
    clock_ = std::move(clock);
    letters_ = letters;
    return true;
}

void StatusLine::draw(Painter &painter, int width, Font &font) const {
    const Rect area{0, 0, width, height};
    if (!painter.reaches(area))
        return;
    painter.fill(area, background);
    painter.ground = background;
    drawSignal(painter, margin);

    Rect rest = area.inset(margin, 0);
    drawLine(painter, rest, clock_, font, foreground, IG_JUSTIFY_RIGHT);
    rest.width -= font.width(clock_) + margin + 20;
    drawBattery(painter, rest.right());
    rest.width -= margin;

    const int letterWidth = font.width(letters_) + 8;
    if (!letters_.empty()) {
        const Rect box{rest.right() - letterWidth, 3, letterWidth, height - 6};
        painter.rounded(box, 3, letterGround);
        painter.ground = letterGround;
        drawLine(painter, box, letters_, font, foreground, IG_JUSTIFY_CENTER);
    }
    painter.ground.reset();
}

} // namespace uti::host
