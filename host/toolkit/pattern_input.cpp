// pattern_input.cpp: inputs that fill the places of a pattern, such as a date's.
#include "host/toolkit/input.h"

#include "host/toolkit/doors.h"
#include "host/toolkit/text_layout.h"

namespace uti::host {

namespace {

constexpr int padding = 5;
constexpr char placeMark = '_';

class PatternInput final : public ValueField {
public:
    PatternInput(Stage &on, const Rect &place, uint32_t style, const char *pattern)
        : ValueField(on, place, style), pattern_(orEmpty(pattern)),
          places_(static_cast<std::size_t>(std::ranges::count(pattern_, placeMark))),
          maxLength_(places_) {}

    int32_t type() const override { return IG_WIDGET_PATTERN_INPUT; }
    Description describe() const override { return {"pattern", {shown()}, ""}; }
    std::optional<Cut> cut() const override {
        return layOutLine(shown(), textFont(), room().size()).cut;
    }
    void draw(Painter &painter) const override;

    void setValue(std::string_view text) override { value_ = std::string(text, 0, maxLength_); }
    const std::string &value() const override { return value_; }
    std::size_t maxLength() const override { return maxLength_; }
    void setMaxLength(std::size_t length) {
        maxLength_ = length > 0 ? std::min(length, places_) : places_;
        setValue(value_);
    }

    char fillSymbol = '.';

private:
    bool append(char accepted) override {
        if (value_.size() >= maxLength_)
            return false;
        value_ += accepted;
        return true;
    }
    bool erase() override {
        if (value_.empty())
            return false;
        value_.pop_back();
        return true;
    }
    void clear() override { value_.clear(); }
    std::string shown() const;
    Rect room() const { return Rect{0, 0, inside().width, inside().height}.inset(padding, 1); }

    const std::string pattern_;
    const std::size_t places_;
    std::size_t maxLength_;
    std::string value_;
};

// The pattern with its places filled.
std::string PatternInput::shown() const {
    std::string text = pattern_;
    std::size_t filled = 0;
    for (char &each : text) {
        if (each != placeMark)
            continue;
        each = filled >= value_.size() ? fillSymbol
               : hideSymbol != 0       ? static_cast<char>(hideSymbol)
                                       : value_[filled];
        ++filled;
    }
    return text;
}

void PatternInput::draw(Painter &painter) const {
    Painter box = drawBox(painter);
    const Rect room = this->room();
    Painter inner = box.within(room);
    Font &face = textFont();
    const std::string text = shown();
    const auto [foreground, background] = patternColors();

    // The place to be filled next stays in sight.
    const Size size{face.width(text), face.height()};
    std::size_t next = 0;
    for (std::size_t filled = 0; next < pattern_.size(); ++next)
        if (pattern_[next] == placeMark && filled++ == value_.size())
            break;
    Point at = justified(size, {0, 0, room.width, room.height},
                         style_ & IG_INPUT_RIGHT ? uint32_t{IG_JUSTIFY_RIGHT} : justify);
    const int before = face.width(std::string_view(text).substr(0, next + 1));
    if (size.width > room.width)
        at.x = std::min(0, room.width - before);

    std::size_t filled = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isFilled = pattern_[i] == placeMark && filled++ < value_.size();
        const Rect cell{at.x, at.y, face.width(text[i]), face.height()};
        Painter one = inner;
        if (!isFilled && transparency == 0 && background != colors().background) {
            one.fill(cell, background);
            one.ground = background;
        }
        one.text(at, {&text[i], 1}, face, isFilled ? colors().foreground : foreground);
        if (i == next && showsCursor())
            inner.fill({cell.x, cell.bottom() - 2, cell.width, 2}, colors().foreground);
        at.x = cell.right();
    }
}

} // namespace
} // namespace uti::host

using namespace uti::host;

int32_t igPatternInput_Create(int16_t x, int16_t y, int16_t width, int16_t height, uint32_t style,
                              const char *pattern) {
    return display().createWidget<PatternInput>(Rect{x, y, width, height}, style, pattern);
}

int32_t igPatternInput_SetMaxLen(int32_t widget, uint16_t maxLength) {
    return withWidget<PatternInput>(widget,
                                    [=](PatternInput &input) { input.setMaxLength(maxLength); });
}

int32_t igPatternInput_SetFillSymbol(int32_t widget, char symbol) {
    return withWidget<PatternInput>(widget,
                                    [=](PatternInput &input) { input.fillSymbol = symbol; });
}

int32_t igPatternInput_SetPatternActiveColor(int32_t widget, uint16_t foreground,
                                             uint16_t background) {
    return withWidget<ValueField>(widget, [=](ValueField &field) {
        field.activePattern = ColorPair{foreground, background};
    });
}

int32_t igPatternInput_SetPatternPassiveColor(int32_t widget, uint16_t foreground,
                                              uint16_t background) {
    return withWidget<ValueField>(widget, [=](ValueField &field) {
        field.passivePattern = ColorPair{foreground, background};
    });
}
