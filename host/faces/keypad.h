// keypad.h: the device around the display: where the display and the keys lie in a window, how they
// look, and which key of a PC presses each of them.
#pragma once

#include "host/toolkit/painter.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace uti::host {

enum class CapStyle : uint8_t { digit, function, cancel, correct, confirm };

// One key of the keypad.
struct Cap {
    uint8_t row;
    uint8_t key;         // code of the toolkit
    const char *label;   // what it is called; empty for the arrows, which are drawn
    int32_t pcKey;       // SDL_Keycode of the key that presses it
    const char *pcLabel; // how that key is called; empty when its name is the label
    CapStyle style;
    Rect area = {}; // pixels of the window
};

class Keypad {
public:
    // `scale` is the number of window pixels for each pixel of the display, in both directions.
    Keypad(Fonts &fonts, Size display, int scale);

    // The size of the whole device, and where the display's pixels lie in it.
    Size size() const { return size_; }
    const Rect &screen() const { return screen_; }

    // The key at a pixel, or that a key of the PC presses; null when there is none.
    const Cap *capAt(Point at) const;
    const Cap *capOf(int32_t pcKey) const;

    void draw(Painter &painter) const;
    void drawCap(Painter &painter, const Cap &cap, bool isPressed) const;

private:
    int scaled(int pixels) const { return pixels * percent_ / 100; }
    void drawArrow(Painter &painter, const Rect &area, uint8_t key) const;
    void drawLetters(Painter &painter, const Rect &area, const Cap &cap) const;

    int percent_; // size of the keys
    Size size_;
    Rect screen_;
    std::vector<Cap> caps_;
    std::unique_ptr<Font> large_, middle_, small_, letters_;
};

} // namespace uti::host
