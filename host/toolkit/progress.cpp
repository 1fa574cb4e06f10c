// progress.cpp: bars that show how far something has come.
#include "host/toolkit/doors.h"
#include "host/toolkit/text_layout.h"

namespace uti::host {

namespace {

constexpr int padding = 4;

class Progress final : public Widget {
public:
    Progress(Stage &on, const Rect &place) : Widget(on, place) {}

    int32_t type() const override { return IG_WIDGET_PROGRESS; }
    Description describe() const override { return {"progress", {text()}, ""}; }
    std::optional<Cut> cut() const override {
        return layOutLine(text(), textFont(), inside().inset(2 + padding, 2).size()).cut;
    }
    void draw(Painter &painter) const override;

    void setPercent(int percent) { percent_ = std::clamp(percent, 0, 100); }

private:
    std::string text() const { return std::to_string(percent_) + "%"; }

    int percent_ = 0;
};

// The text changes its colour where the bar goes through it.
void Progress::draw(Painter &painter) const {
    drawBox(painter);
    const Rect room = inside().inset(2);
    const int done = room.width * percent_ / 100;
    const bool fits = textFont().height() <= room.height;

    Painter part = painter.within({room.x, room.y, done, room.height});
    part.rounded({0, 0, room.width, room.height}, border == 2 ? 3 : 0, active.background);
    part.ground = active.background;
    if (!fits)
        return;
    const Rect all{0, 0, room.width, room.height};
    Painter left = painter.within({room.x + done, room.y, room.width - done, room.height});
    const Rect line = all.inset(padding, 0);
    drawLine(left, line.moved({-done, 0}), text(), textFont(), passive.foreground, justify);
    drawLine(part, line, text(), textFont(), active.foreground, justify);
}

} // namespace
} // namespace uti::host

using namespace uti::host;

int32_t igProgress_Create(int16_t x, int16_t y, int16_t width, int16_t height) {
    return display().createWidget<Progress>(Rect{x, y, width, height});
}

int32_t igProgress_SetValue(int32_t widget, int32_t percent) {
    const int32_t result =
        withWidget<Progress>(widget, [=](Progress &progress) { progress.setPercent(percent); });
    display().redraw();
    return result;
}
