// sign_box.cpp: boxes to sign in with the pen. The strokes are drawn by cairo into coverages as
// they come, so that showing them is only mixing.
#include "host/toolkit/doors.h"
#include "host/toolkit/text_layout.h"

#include <cairo.h>

namespace uti::host {

namespace {

constexpr int margin = 10; // of the line to sign on

class SignBox final : public Widget {
public:
    SignBox(Stage &on, const Rect &place);

    int32_t type() const override { return IG_WIDGET_SIGN_BOX; }
    Description describe() const override {
        return {"signature", {}, std::to_string(strokes_) + " strokes"};
    }
    std::optional<Cut> cut() const override { return std::nullopt; }
    void draw(Painter &painter) const override;

    bool takesFocus() const override { return true; }
    bool key(uint8_t key) override;
    uint8_t pen(PenPhase phase, Point at) override;

    int32_t save(const char *fileName) const;
    void setLineWidth(int pixels) { lineWidth_ = std::clamp(pixels, 1, 32); }

private:
    void stroke(Point from, Point to);

    Size size_; // of the coverages; 0 when the area is empty
    int stride_;
    std::vector<uint8_t> coverage_;
    int lineWidth_ = 2;
    int strokes_ = 0;
    Point last_;
};

SignBox::SignBox(Stage &on, const Rect &place)
    : Widget(on, place),
      size_(area.empty() ? Size{} : area.intersected({area.x, area.y, 2048, 2048}).size()),
      stride_(cairo_format_stride_for_width(CAIRO_FORMAT_A8, size_.width)),
      coverage_(static_cast<std::size_t>(stride_) * static_cast<std::size_t>(size_.height)) {}

void SignBox::stroke(Point from, Point to) {
    cairo_surface_t *surface = cairo_image_surface_create_for_data(
        coverage_.data(), CAIRO_FORMAT_A8, size_.width, size_.height, stride_);
    cairo_t *context = cairo_create(surface);
    cairo_set_line_width(context, lineWidth_);
    cairo_set_line_cap(context, CAIRO_LINE_CAP_ROUND);
    cairo_move_to(context, from.x + 0.5, from.y + 0.5);
    cairo_line_to(context, to.x + 0.5, to.y + 0.5);
    cairo_stroke(context);
    cairo_destroy(context);
    cairo_surface_finish(surface);
    cairo_surface_destroy(surface);

    // Only the surroundings of the new line are drawn again.
    const Rect line{std::min(from.x, to.x), std::min(from.y, to.y), std::abs(from.x - to.x) + 1,
                    std::abs(from.y - to.y) + 1};
    form->changed(line.inset(-lineWidth_ - 1).moved(area.origin()).moved(form->client().origin()));
}

uint8_t SignBox::pen(PenPhase phase, Point at) {
    if (coverage_.empty() || phase == PenPhase::up)
        return 0;
    if (phase == PenPhase::down) {
        ++strokes_;
        last_ = at;
    }
    stroke(std::exchange(last_, at), at);
    return 0;
}

bool SignBox::key(uint8_t key) {
    if (key != IG_KEY_CLEAR && key != IG_KEY_BACKSPACE)
        return false;
    std::ranges::fill(coverage_, uint8_t{0});
    strokes_ = 0;
    changed();
    return true;
}

void SignBox::draw(Painter &painter) const {
    drawBox(painter);
    const Color soft = mix(colors().foreground, colors().background, 90);
    const int line = area.height - area.height / 4;
    painter.fill({margin + 12, line, area.width - 2 * margin - 12, 1}, soft);
    for (const int direction : {1, -1}) // a cross, where signing begins
        painter.line({margin, line - 4 - 4 * direction}, {margin + 8, line - 4 + 4 * direction}, 1,
                     soft);
    Painter inner = painter.within({0, 0, size_.width, size_.height});
    if (!coverage_.empty())
        inner.mask({0, 0, stride_, size_.height}, coverage_.data(), colors().foreground);
}

int32_t SignBox::save(const char *fileName) const {
    if (strokes_ == 0)
        return 0;
    std::vector<uint8_t> tight;
    for (int y = 0; y < size_.height; ++y)
        tight.insert(tight.end(), coverage_.begin() + std::ptrdiff_t{y} * stride_,
                     coverage_.begin() + std::ptrdiff_t{y} * stride_ + size_.width);
    return saveCoverage(tight, size_, fileName) ? 1 : int32_t{IG_ERROR_FILE};
}

} // namespace
} // namespace uti::host

using namespace uti::host;

int32_t igSignBox_Create(int16_t x, int16_t y, int16_t width, int16_t height) {
    return display().createWidget<SignBox>(Rect{x, y, width, height});
}

int32_t igSignBox_SetLineWidth(int32_t widget, int32_t pixels) {
    return withWidget<SignBox>(widget, [=](SignBox &box) { box.setLineWidth(pixels); });
}

int32_t igSignBox_SaveData(int32_t widget, const char *fileName) {
    const auto *box = dynamic_cast<const SignBox *>(display().widget(widget));
    if (!box)
        return IG_ERROR_HANDLE;
    return fileName && *fileName ? box->save(fileName) : int32_t{IG_ERROR_ARGUMENT};
}
