// text_field.cpp: typing, and the functions of toolkit.h that all inputs have.
#include "host/toolkit/text_field.h"

#include "host/terminal/clock.h"
#include "host/toolkit/doors.h"
#include "terminal.h"

namespace uti::host {

namespace {

// A key pressed again within this time goes on to its next character.
constexpr uint32_t repeatTime = 1000;

constexpr Letters everything[] = {Letters::small, Letters::capital, Letters::smallCyrillic,
                                  Letters::capitalCyrillic, Letters::digits};
constexpr Letters capitals[] = {Letters::capital, Letters::capitalCyrillic, Letters::digits};
constexpr Letters digitsFirst[] = {Letters::digits, Letters::small, Letters::capital,
                                   Letters::smallCyrillic, Letters::capitalCyrillic};
constexpr Letters digitsAndCapitals[] = {Letters::digits, Letters::capital,
                                         Letters::capitalCyrillic};
constexpr Letters digitsAlone[] = {Letters::digits};

char upperCase(char character) {
    char upper;
    TextToUppercase(&character, &upper, 1);
    return upper;
}

bool isLetter(char character) {
    char lower;
    TextToLowercase(&character, &lower, 1);
    return upperCase(character) != lower;
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

} // namespace

std::span<const Letters> setsFor(uint32_t style) {
    if (!(style & IG_INPUT_DIGITS))
        return style & IG_INPUT_UPPER_CASE ? std::span<const Letters>(capitals) : everything;
    if (style & IG_INPUT_AMOUNT)
        return digitsAlone;
    if (style & IG_INPUT_UPPER_CASE)
        return digitsAndCapitals;
    return style & IG_INPUT_NO_LETTERS ? std::span<const Letters>(digitsAlone) : digitsFirst;
}

std::optional<char> acceptedBy(uint32_t style, char character) {
    if (static_cast<unsigned char>(character) < ' ')
        return std::nullopt;
    if (style & IG_INPUT_DIGITS && !isDigit(character)) {
        const bool digitsOnly = style & IG_INPUT_AMOUNT ||
                                (style & IG_INPUT_NO_LETTERS && !(style & IG_INPUT_UPPER_CASE));
        if (digitsOnly || !isLetter(character))
            return std::nullopt;
    }
    return style & IG_INPUT_UPPER_CASE ? upperCase(character) : character;
}

bool TextField::key(uint8_t key) {
    const auto is = [key](uint8_t own, uint8_t general) {
        return key == general || (own != 0 && key == own);
    };
    if (confirmKey != 0 && key == confirmKey) {
        form->end(IG_STATE_CONFIRMED);
        return true;
    }
    // One code may stand for several: it changes the letters when nothing is left to erase.
    const uint8_t typed = std::exchange(repeated_, 0);
    if (is(eraseKey, IG_KEY_BACKSPACE) && erase())
        return changed(), true;
    if (is(clearKey, IG_KEY_CLEAR))
        clear();
    if (is(layoutKey, IG_KEY_LAYOUT))
        set_ = (set_ + 1) % sets_.size();
    if (is(eraseKey, IG_KEY_BACKSPACE) || is(clearKey, IG_KEY_CLEAR) ||
        is(layoutKey, IG_KEY_LAYOUT))
        return changed(), true;

    const bool again = key == typed && ticks() - repeatedAt_ < repeatTime;
    const std::string before = value();
    if (again)
        erase();
    const std::string rest = value(), characters = offered(key);
    if (characters.empty())
        return false;
    step_ = again ? (step_ + 1) % characters.size() : 0;
    const bool isTaken = take(characters[step_]);
    if (again && !isTaken && value() == rest)
        setValue(before); // the application refused the next character, not the one before
    if ((isTaken || again) && characters.size() > 1)
        repeated_ = key;
    repeatedAt_ = ticks();
    return true;
}

bool TextField::character(char character) {
    repeated_ = 0;
    const std::optional<char> taken = accepted(character);
    if (taken)
        take(*taken);
    return taken.has_value();
}

// What the key gives in the present letters, without what the field does not take.
std::string TextField::offered(uint8_t key) const {
    std::string characters;
    for (const char each : stage.keySchemes.characters(keyScheme, sets_[set_], key))
        if (const std::optional<char> taken = accepted(each))
            characters += *taken;
    return characters;
}

// Returns whether the character became the last one of the text, perhaps by the application's hand,
// which may have made another one of it.
bool TextField::take(char accepted) {
    if (function) {
        const std::string before = value();
        asked_ = accepted;
        const bool isSeenTo = function(handle, static_cast<unsigned char>(accepted)) == 0;
        asked_ = 0;
        if (isSeenTo)
            return value().size() == before.size() + 1 && value().starts_with(before);
    }
    const bool appended = append(accepted);
    changed();
    return appended;
}

std::string_view TextField::letters() const {
    return sets_.size() > 1 ? nameOf(sets_[set_]) : "";
}

} // namespace uti::host

using namespace uti::host;

int32_t igInput_SetControlCodes(int32_t widget, uint8_t erase, uint8_t clear, uint8_t layout,
                                uint8_t confirm) {
    return withWidget<TextField>(widget, [=](TextField &field) {
        field.eraseKey = erase;
        field.clearKey = clear;
        field.layoutKey = layout;
        field.confirmKey = confirm;
    });
}

int32_t igInput_SetUserFunc(int32_t widget, IgInputFunction function, int32_t, int32_t, int32_t) {
    return withWidget<TextField>(widget, [=](TextField &field) { field.function = function; });
}
