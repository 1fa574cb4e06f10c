// multi_line.cpp: inputs of several lines, and texts that scroll.
#include "host/toolkit/doors.h"
#include "host/toolkit/text_field.h"
#include "host/toolkit/text_layout.h"

namespace uti::host {

namespace {

constexpr int padding = 4;
constexpr std::size_t longest = 65535; // of an input that is given no maximum length

class MultiLine final : public TextField {
public:
    MultiLine(Stage &on, const Rect &place, uint32_t style, const char *text)
        : TextField(on, place, setsFor(0)), style_(style), value_(orEmpty(text)) {}

    int32_t type() const override { return IG_WIDGET_MULTI_LINE; }
    Description describe() const override { return {"multiline", {value_}, ""}; }
    std::optional<Cut> cut() const override;
    void draw(Painter &painter) const override;
    // A text that is only read needs the focus to be scrolled.
    bool takesFocus() const override { return !isReadOnly() || lastTop() > 0; }
    bool key(uint8_t key) override;
    std::string_view letters() const override { return isReadOnly() ? "" : TextField::letters(); }
    bool character(char character) override {
        return !isReadOnly() && TextField::character(character);
    }
    uint8_t pen(PenPhase phase, Point at) override;
    int hidden(int32_t direction) const override {
        return direction == 0 ? top() : lastTop() - top();
    }

    void setMaxLength(std::size_t length) {
        maxLength_ = length > 0 ? length : longest;
        setValue(value_);
    }
    void setValue(std::string_view text) override {
        value_ = std::string(text, 0, maxLength_);
        top_ = 0;
    }
    const std::string &value() const override { return value_; }

private:
    bool isReadOnly() const { return style_ & IG_MULTI_LINE_READ_ONLY; }
    std::optional<char> accepted(char character) const override { return acceptedBy(0, character); }
    bool append(char accepted) override {
        const bool fits = value_.size() < maxLength_;
        if (fits)
            value_ += accepted;
        top_ = lastTop();
        return fits;
    }
    bool erase() override {
        if (value_.empty())
            return false;
        value_.pop_back();
        top_ = lastTop();
        return true;
    }
    void clear() override { setValue(""); }

    // Whole lines only, as many as fit.
    Rect room() const {
        Rect room = inside().inset(padding, 2);
        const int rest = room.height > textFont().height() ? room.height % textFont().height() : 0;
        room.y += rest / 2;
        room.height -= rest;
        if (style_ & IG_MULTI_LINE_SCROLL_BAR)
            room.width -= scrollBarWidth + 2;
        return room;
    }
    std::vector<std::string_view> lines() const {
        return linesOf(value_, textFont(), room().width,
                       style_ & IG_MULTI_LINE_WRAP ? Wrap::atWords : Wrap::atLineFeeds);
    }
    int textHeight() const { return static_cast<int>(lines().size()) * textFont().height(); }
    // The first pixel row of the text that is shown, and where the text ends with its last line.
    int top() const { return std::min(top_, lastTop()); }
    int lastTop() const { return std::max(textHeight() - room().height, 0); }
    void scroll(int pixels) {
        top_ = std::clamp(top() + pixels, 0, lastTop());
        changed();
    }

    const uint32_t style_;
    std::size_t maxLength_ = longest;
    std::string value_;
    int top_ = 0;
    int penY_ = 0;
};

bool MultiLine::key(uint8_t key) {
    const int direction = key == IG_KEY_UP ? 0 : key == IG_KEY_DOWN ? 1 : -1;
    if (direction >= 0 && hidden(direction) > 0) {
        scroll((direction == 0 ? -1 : 1) * textFont().height());
        return true;
    }
    return !isReadOnly() && TextField::key(key);
}

uint8_t MultiLine::pen(PenPhase phase, Point at) {
    if (phase == PenPhase::move)
        scroll(penY_ - at.y);
    penY_ = at.y;
    return 0;
}

// What a scroll bar leads to is not lost. Without one nobody sees that there is more.
std::optional<Cut> MultiLine::cut() const {
    const auto all = lines();
    Size size = room().size();
    if (style_ & IG_MULTI_LINE_SCROLL_BAR && size.height >= textFont().height())
        size.height = std::max(size.height, textHeight());
    return cutOf(value_, all, textFont(), size);
}

void MultiLine::draw(Painter &painter) const {
    drawBox(painter);
    const Rect room = this->room();
    Painter inner = painter.within(room);
    Font &face = textFont();
    const auto lines = this->lines();
    const Rect text{0, 0, room.width, room.height};
    const Point end = drawLines(inner, text, lines, face, colors().foreground, justify, top());
    if (hasFocus() && !isReadOnly())
        inner.fill({std::min(end.x, room.width - 2), end.y, 2, face.height()}, colors().foreground);
    if (style_ & IG_MULTI_LINE_SCROLL_BAR)
        drawScrollBar(painter, inside().inset(2), top(), room.height,
                      static_cast<int>(lines.size()) * face.height(), soft());
}

} // namespace
} // namespace uti::host

using namespace uti::host;

int32_t igMultiLine_Create(int16_t x, int16_t y, int16_t width, int16_t height, uint32_t style,
                           const char *text) {
    return display().createWidget<MultiLine>(Rect{x, y, width, height}, style, text);
}

int32_t igMultiLine_SetMaxLen(int32_t widget, uint16_t maxLength) {
    return withWidget<MultiLine>(widget, [=](MultiLine &input) { input.setMaxLength(maxLength); });
}

int32_t igMultiLine_SetValue(int32_t widget, const char *text) {
    return withWidget<MultiLine>(widget, [=](MultiLine &input) { input.setValue(orEmpty(text)); });
}

const char *igMultiLine_GetValue(int32_t widget) {
    const auto *input = dynamic_cast<const MultiLine *>(display().widget(widget));
    return input ? input->value().c_str() : "";
}
