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
constexpr int batteryWidth = 20;

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

StatusLine::Places StatusLine::layOut(int width, Font &font) const {
    const Rect whole = Rect{0, 0, width, height}.inset(margin, 0);
    const int batteryAt = whole.right() - font.width(clock_) - margin - batteryWidth;
    const int lettersEnd = batteryAt - margin;
    const int wanted = font.width(letters_) + 8;
    return {whole,
            {batteryAt, 0, batteryWidth, height},
            Rect{lettersEnd - wanted, 3, wanted, height - 6}.intersected(whole)};
}

std::optional<Cut> StatusLine::cut(int width, Font &font) const {
    const Places places = layOut(width, font);
    auto cut = layOutLine(clock_, font, places.clock.size()).cut;
    if (!cut && !letters_.empty())
        cut = layOutLine(letters_, font, {places.letters.width - 8, places.letters.height}).cut;
    return cut;
}

void StatusLine::draw(Painter &painter, int width, Font &font) const {
    const Rect area{0, 0, width, height};
    if (!painter.reaches(area))
        return;
    painter.fill(area, background);
    painter.ground = background;
    drawSignal(painter, margin);
    const Places places = layOut(width, font);
    drawLine(painter, places.clock, clock_, font, foreground, IG_JUSTIFY_RIGHT);
    drawBattery(painter, places.battery.x);
    if (!letters_.empty()) {
        painter.rounded(places.letters, 3, letterGround);
        painter.ground = letterGround;
        drawLine(painter, places.letters, letters_, font, foreground, IG_JUSTIFY_CENTER);
    }
    painter.ground.reset();
}

} // namespace uti::host
