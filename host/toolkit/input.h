// input.h: inputs of one value, which share igInput_SetValue, igInput_GetValue and the styles of
// `IgInputStyle`: single-line, pattern and IP inputs.
#pragma once

#include "host/toolkit/text_field.h"

namespace uti::host {

class ValueField : public TextField {
public:
    ValueField(Stage &on, const Rect &place, uint32_t style)
        : TextField(on, place, setsFor(style)), style_(style) {}

    bool takesFocus() const override { return !(style_ & IG_INPUT_READ_ONLY); }

    virtual std::size_t maxLength() const = 0;

    uint8_t hideSymbol = 0;
    // Of what an input shows of its pattern besides its value; its own soft colours when none.
    std::optional<ColorPair> activePattern, passivePattern;

protected:
    ColorPair patternColors() const {
        return (hasFocus() ? activePattern : passivePattern)
            .value_or(ColorPair{soft(), colors().background});
    }
    std::optional<char> accepted(char character) const override {
        return acceptedBy(style_, character);
    }
    bool showsCursor() const {
        return hasFocus() && style_ & IG_INPUT_CURSOR && !(style_ & IG_INPUT_READ_ONLY);
    }

    const uint32_t style_;
};

} // namespace uti::host
