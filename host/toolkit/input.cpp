// input.cpp: single-line inputs: texts, digits, amounts with a decimal point that is typed or
// fixed.
#include "host/toolkit/input.h"

#include "host/toolkit/doors.h"
#include "host/toolkit/text_layout.h"

namespace uti::host {

namespace {

constexpr int padding = 5;
constexpr std::size_t longest = 255; // of an input that is given no maximum length

class Input final : public ValueField {
public:
    Input(Stage &on, const Rect &place, uint16_t maxLength, uint32_t style)
        : ValueField(on, place, style), maxLength_(maxLength > 0 ? maxLength : longest) {}

    int32_t type() const override { return IG_WIDGET_INPUT; }
    Description describe() const override { return {"input", {shown()}, ""}; }
    std::optional<Cut> cut() const override;
    void draw(Painter &painter) const override;

    void setValue(std::string_view text) override;
    const std::string &value() const override { return value_; }
    std::size_t maxLength() const override { return maxLength_; }
    void setRadix(uint8_t radix) {
        radix_ = std::min<uint8_t>(radix, 9);
        setValue(value_); // which may have a fixed point from now on
    }

private:
    bool isFixed() const { return style_ & IG_INPUT_FRACTION && radix_ > 0; }
    std::optional<char> accepted(char character) const override;
    bool append(char accepted) override;
    bool erase() override;
    void clear() override { value_.clear(); }
    std::string digits() const;
    bool setDigits(std::string digits);
    std::string shown() const;
    bool isLabel() const { return style_ & IG_INPUT_READ_ONLY; }
    Rect room() const {
        return Rect{0, 0, inside().width, inside().height}.inset(
            isLabel() && border == 0 ? 0 : padding, 1);
    }
    // Of a text that is too long the end is shown, since that is where it grows.
    TextLayout layOut() const {
        const Size size{room().width - cursorWidth(), room().height};
        return layOutEnd(shown(), textFont(), size);
    }
    int cursorWidth() const { return showsCursor() ? 2 : 0; }

    const std::size_t maxLength_;
    uint8_t radix_ = 0;
    std::string value_;
};

std::optional<char> Input::accepted(char character) const {
    if (!(style_ & IG_INPUT_AMOUNT))
        return ValueField::accepted(character);
    const std::size_t point = value_.find('.');
    if (character == '.' || character == ',') {
        const bool fits = radix_ > 0 && !isFixed() && point == std::string::npos && !value_.empty();
        return fits ? std::optional('.') : std::nullopt;
    }
    const bool full = !isFixed() && point != std::string::npos && value_.size() - point > radix_;
    return full ? std::nullopt : ValueField::accepted(character);
}

bool Input::append(char accepted) {
    if (isFixed())
        return setDigits(digits() + accepted);
    if (value_.size() >= maxLength_)
        return false;
    value_ += accepted;
    return true;
}

bool Input::erase() {
    if (value_.empty())
        return false;
    if (isFixed()) {
        std::string rest = digits();
        rest.pop_back();
        setDigits(rest);
    } else {
        value_.pop_back();
    }
    return true;
}

// The digits around a fixed decimal point, without zeros in front.
std::string Input::digits() const {
    std::string digits = value_;
    std::erase(digits, '.');
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
    return digits;
}

// False, with the value unchanged, when there are too many of them.
bool Input::setDigits(std::string digits) {
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
    if (digits.empty())
        return value_.clear(), true;
    if (digits.size() <= radix_)
        digits.insert(0, radix_ + 1 - digits.size(), '0');
    digits.insert(digits.size() - radix_, 1, '.');
    if (digits.size() > maxLength_)
        return false;
    value_ = digits;
    return true;
}

// Digits behind a fixed point that are too many move those before them to the left, as typing does.
// What the application's function makes of one more character is that character typed.
void Input::setValue(std::string_view text) {
    const std::string given(text); // it may be the value itself
    if (!isFixed()) {
        value_ = given.substr(0, maxLength_);
        return;
    }
    if (asked() != 0 && given == value_ + asked()) {
        setDigits(digits() + asked());
        return;
    }
    const auto digitsOf = [](std::string part) {
        std::erase_if(part, [](char digit) { return digit < '0' || digit > '9'; });
        return part;
    };
    const std::size_t point = std::min(given.find_first_of(".,"), given.size());
    std::string behind = digitsOf(given.substr(point));
    behind.resize(std::max<std::size_t>(behind.size(), radix_), '0');
    if (asked() == 0)
        value_.clear();
    setDigits(digitsOf(given.substr(0, point)) + behind);
}

std::string Input::shown() const {
    if (hideSymbol != 0)
        return std::string(value_.size(), static_cast<char>(hideSymbol));
    if (isFixed() && value_.empty())
        return "0." + std::string(radix_, '0');
    return value_;
}

std::optional<Cut> Input::cut() const {
    return isLabel() ? layOutText(shown(), textFont(), room().size()).cut : layOut().cut;
}

// An input that cannot be changed is a label, which may have several lines.
void Input::draw(Painter &painter) const {
    Painter inner = drawBox(painter);
    Font &face = textFont();
    const uint32_t side = style_ & IG_INPUT_RIGHT ? uint32_t{IG_JUSTIFY_RIGHT} : justify;
    if (isLabel())
        return drawText(inner, room(), shown(), face, colors().foreground, side);

    const std::string text = layOut().lines[0];
    const int cursor = cursorWidth();
    const Size size{face.width(text) + cursor, face.height()};
    const Point at = justified(size, room(), side);
    inner.text(at, text, face, value_.empty() ? soft() : colors().foreground);
    if (cursor > 0)
        inner.fill({at.x + size.width - cursor, at.y + 1, cursor, size.height - 2},
                   colors().foreground);
}

} // namespace
} // namespace uti::host

using namespace uti::host;

int32_t igInput_Create(int16_t x, int16_t y, int16_t width, int16_t height, uint16_t maxLength,
                       uint32_t style) {
    return display().createWidget<Input>(Rect{x, y, width, height}, maxLength, style);
}

int32_t igInput_SetRadix(int32_t widget, uint8_t radix) {
    return withWidget<Input>(widget, [=](Input &input) { input.setRadix(radix); });
}

int32_t igInput_SetHideSymbol(int32_t widget, uint8_t symbol) {
    return withWidget<ValueField>(widget, [=](ValueField &field) { field.hideSymbol = symbol; });
}

int32_t igInput_SetValue(int32_t widget, const char *text) {
    return withWidget<ValueField>(widget,
                                  [=](ValueField &field) { field.setValue(orEmpty(text)); });
}

const char *igInput_GetValue(int32_t widget) {
    const auto *field = dynamic_cast<const ValueField *>(display().widget(widget));
    return field ? field->value().c_str() : "";
}

int32_t igInput_GetMaxLen(int32_t widget) {
    const auto *field = dynamic_cast<const ValueField *>(display().widget(widget));
    return field ? static_cast<int32_t>(field->maxLength()) : int32_t{IG_ERROR_HANDLE};
}
