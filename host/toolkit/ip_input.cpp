// ip_input.cpp: inputs for an IPv4 address, four fields of up to three digits.
#include "host/terminal/copy_text.h"
#include "host/toolkit/doors.h"
#include "host/toolkit/input.h"
#include "host/toolkit/text_layout.h"

#include <array>
#include <utility>

namespace uti::host {

namespace {

constexpr int gap = 8; // between the fields, with the point in it
constexpr std::size_t longest = 15;

class IpInput final : public ValueField {
public:
    IpInput(Stage &on, const Rect &place, uint32_t style)
        : ValueField(on, place, style | IG_INPUT_DIGITS | IG_INPUT_AMOUNT) {}

    int32_t type() const override { return IG_WIDGET_IP_INPUT; }
    Description describe() const override {
        return {"ip", {value_}, hasFocus() ? "field " + std::to_string(at_ + 1) : ""};
    }
    std::optional<Cut> cut() const override;
    void draw(Painter &painter) const override;
    void focusChanged() override {
        ValueField::focusChanged();
        enter(0);
    }
    bool key(uint8_t key) override;
    uint8_t pen(PenPhase phase, Point at) override;

    void setValue(std::string_view text) override;
    const std::string &value() const override { return value_; }
    std::size_t maxLength() const override { return longest; }

private:
    std::optional<char> accepted(char character) const override {
        return character == '.' ? character : ValueField::accepted(character);
    }
    bool append(char accepted) override;
    bool erase() override;
    void clear() override { setValue(""); }
    Rect fieldArea(std::size_t field) const;
    Rect textArea(std::size_t field) const {
        const Rect whole = fieldArea(field);
        return {whole.x, whole.y, whole.width, whole.height - 3};
    }
    void compose();
    void enter(std::size_t field) {
        at_ = field;
        isEntered_ = true;
    }

    std::array<std::string, 4> fields_; // their digits, empty for none
    std::size_t at_ = 0;                // the field that is typed into
    bool isEntered_ = true;             // nothing was typed there yet: a digit replaces it
    std::string value_;
};

// Empty fields count as 0; an address with nothing in it is an empty text.
void IpInput::compose() {
    value_.clear();
    if (std::ranges::all_of(fields_, &std::string::empty))
        return;
    for (const std::string &field : fields_)
        value_ += (value_.empty() ? "" : ".") + (field.empty() ? "0" : field);
}

void IpInput::setValue(std::string_view text) {
    enter(0);
    fields_ = {};
    for (const char each : std::string(text)) // it may be the value itself
        append(each);
    enter(0);
    compose();
}

bool IpInput::append(char accepted) {
    const auto fits = [](const std::string &digits) {
        return digits.size() <= 3 && std::stoi(digits) <= 255;
    };
    if (accepted == '.') {
        enter(std::min(at_ + 1, fields_.size() - 1));
    } else if (accepted >= '0' && accepted <= '9') {
        if (std::exchange(isEntered_, false))
            fields_[at_].clear();
        if (!fits(fields_[at_] + accepted) && at_ + 1 < fields_.size() && fields_[at_ + 1].empty())
            ++at_;
        const std::string digits = (fields_[at_] == "0" ? "" : fields_[at_]) + accepted;
        if (fits(digits))
            fields_[at_] = digits;
    }
    compose();
    return true;
}

bool IpInput::erase() {
    isEntered_ = false;
    if (fields_[at_].empty() && at_ == 0)
        return false;
    if (fields_[at_].empty())
        --at_;
    if (!fields_[at_].empty())
        fields_[at_].pop_back();
    compose();
    return true;
}

// The arrows go through the fields before they leave the input.
bool IpInput::key(uint8_t key) {
    const bool right = key == IG_KEY_RIGHT && at_ + 1 < fields_.size();
    if (!right && !(key == IG_KEY_LEFT && at_ > 0))
        return ValueField::key(key);
    enter(right ? at_ + 1 : at_ - 1);
    changed();
    return true;
}

uint8_t IpInput::pen(PenPhase phase, Point at) {
    for (std::size_t i = 0; phase == PenPhase::down && i < fields_.size(); ++i)
        if (at.x >= fieldArea(i).x)
            enter(i);
    changed();
    return 0;
}

Rect IpInput::fieldArea(std::size_t field) const {
    const Rect room = inside().inset(4);
    const int width = (room.width - 3 * gap) / 4;
    return {room.x + static_cast<int>(field) * (width + gap), room.y, width, room.height};
}

std::optional<Cut> IpInput::cut() const {
    for (std::size_t i = 0; i < fields_.size(); ++i)
        if (auto cut = layOutLine(fields_[i], textFont(), textArea(i).size()).cut)
            return cut;
    return std::nullopt;
}

void IpInput::draw(Painter &painter) const {
    drawBox(painter);
    Font &face = textFont();
    const Color pattern = patternColors().foreground;
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        const Rect field = fieldArea(i);
        const bool isTyped = hasFocus() && i == at_;
        painter.fill({field.x, field.bottom() - (isTyped ? 3 : 1), field.width, isTyped ? 3 : 1},
                     isTyped ? colors().foreground : soft());
        drawLine(painter, textArea(i), fields_[i], face, colors().foreground, IG_JUSTIFY_CENTER);
        if (i > 0)
            painter.rounded({field.x - gap / 2 - 1, field.bottom() - 6, 3, 3}, 1, pattern);
    }
}

} // namespace
} // namespace uti::host

using namespace uti::host;

int32_t igIPInput_Create(int16_t x, int16_t y, int16_t width, int16_t height, uint32_t style) {
    return display().createWidget<IpInput>(Rect{x, y, width, height}, style);
}

int32_t igIPInput_SetIPtext(int32_t widget, const char *text) {
    return withWidget<IpInput>(widget, [=](IpInput &input) { input.setValue(orEmpty(text)); });
}

int32_t igIPInput_GetIPtext(int32_t widget, char *buffer, uint32_t size) {
    return withWidget<IpInput>(widget,
                               [=](IpInput &input) { copyText(input.value(), buffer, size); });
}
