// text_field.h: what all inputs share: control codes, characters from the keypad and from a full
// keyboard, the application's function, and which characters a style takes.
#pragma once

#include "host/toolkit/key_schemes.h"
#include "host/toolkit/widget.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace uti::host {

class TextField : public Widget {
public:
    // `sets` are the sets of letters that its keys can give, the first one at first.
    TextField(Stage &on, const Rect &place, std::span<const Letters> sets)
        : Widget(on, place), sets_(sets) {}

    bool takesFocus() const override { return true; }
    void focusChanged() override { repeated_ = 0; }
    bool key(uint8_t key) override;
    bool character(char character) override;
    std::string_view letters() const override;

    // Key codes, 0 for none, beside IG_KEY_BACKSPACE, IG_KEY_CLEAR, IG_KEY_LAYOUT and Enter.
    uint8_t eraseKey = 0;
    uint8_t clearKey = 0;
    uint8_t layoutKey = 0;
    uint8_t confirmKey = 0;
    IgInputFunction function = nullptr;

    virtual void setValue(std::string_view text) = 0;
    virtual const std::string &value() const = 0;

protected:
    // The character that the application's function is asked about, 0 for none. It may set it as
    // part of the value.
    char asked() const { return asked_; }

    // The character as the field takes it, perhaps as a capital; nothing when it does not.
    virtual std::optional<char> accepted(char character) const = 0;
    // False when it is full.
    virtual bool append(char accepted) = 0;
    // False when there is nothing to take away.
    virtual bool erase() = 0;
    virtual void clear() = 0;

    Color soft() const { return mix(colors().foreground, colors().background, 128); }

private:
    bool take(char accepted);
    std::string offered(uint8_t key) const;

    std::span<const Letters> sets_;
    std::size_t set_ = 0;
    uint8_t repeated_ = 0;    // the key that goes on to its next character when pressed again
    uint32_t repeatedAt_ = 0; // ticks of its last press
    std::size_t step_ = 0;    // its character
    char asked_ = 0;
};

// The sets of letters for bits of `IgInputStyle`.
std::span<const Letters> setsFor(uint32_t style);

// The character as an input of that style takes it, decimal points aside.
std::optional<char> acceptedBy(uint32_t style, char character);

} // namespace uti::host
