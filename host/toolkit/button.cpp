// button.cpp: buttons with a text, an image or both.
#include "host/toolkit/doors.h"

namespace uti::host {

namespace {

constexpr int radius = 6;

class Button final : public Widget {
public:
    Button(Stage &on, const Rect &place, const char *text, int32_t image, uint8_t key)
        : Widget(on, place), image_(image), text_(orEmpty(text)), key_(key) {}

    int32_t type() const override { return IG_WIDGET_BUTTON; }
    Description describe() const override { return {"button", {text_}, stage.images.name(image_)}; }
    std::optional<Cut> cut() const override { return contentCut(content()); }
    void draw(Painter &painter) const override {
        Painter inner = drawBox(painter, colors(), radius);
        drawContent(inner, content());
    }

    bool takesFocus() const override { return true; }
    bool key(uint8_t key) override { return key == IG_KEY_ENTER ? press() : hotKey(key); }
    bool hotKey(uint8_t key) override { return key_ != 0 && key == key_ && press(); }
    // Pressing a button types its own key, so that the application sees the same either way.
    uint8_t meaning(uint8_t key) const override {
        return key == IG_KEY_ENTER && key_ != 0 ? key_ : key;
    }
    uint8_t pen(PenPhase phase, Point at) override {
        const bool pressed =
            phase == PenPhase::up && Rect{0, 0, area.width, area.height}.contains(at);
        return pressed ? meaning(IG_KEY_ENTER) : uint8_t{0};
    }

    uint32_t options = 0;

private:
    bool press();
    Content content() const {
        return {{3, 2, inside().width - 6, inside().height - 4}, stage.images.find(image_), text_};
    }

    const int32_t image_;
    const std::string text_;
    const uint8_t key_;
};

// A button on the Escape key cancels. One that does not end the form leaves what it does to the
// application, whose callback has seen the key.
bool Button::press() {
    if (options & IG_BUTTON_END)
        form->end(key_ == IG_KEY_ESCAPE ? IG_STATE_CANCELLED : IG_STATE_CONFIRMED);
    return true;
}

} // namespace
} // namespace uti::host

using namespace uti::host;

int32_t igButton_Create(int16_t x, int16_t y, int16_t width, int16_t height, const char *text,
                        int32_t image, uint8_t key) {
    return display().createWidget<Button>(Rect{x, y, width, height}, text, image, key);
}

int32_t igButton_SetOption(int32_t widget, uint32_t options) {
    return withWidget<Button>(widget, [=](Button &button) { button.options = options; });
}
