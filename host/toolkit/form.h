// form.h: a form: its header, its widgets and which of them has the focus, its state and its
// time-out.
#pragma once

#include "host/toolkit/widget.h"

#include <cstdint>
#include <string>
#include <vector>

namespace uti::host {

class Form {
public:
    // A form without an area of its own fills what the status line leaves of the display.
    Form(Stage &on, const char *title, const Rect *area);
    Form(const Form &) = delete;
    Form &operator=(const Form &) = delete;

    // Takes the place that the display has for the form now.
    void layOut();
    const Rect &area() const { return area_; }
    bool fillsDisplay() const { return fillsDisplay_; }
    // All that the form paints: its area and its shadow.
    Rect painted() const;
    Rect header() const; // empty without one
    Rect client() const; // where the widgets stand, in pixels of the display

    void draw(Painter &painter) const;
    // The caption, when its line does not show it whole.
    std::optional<Cut> cutCaption() const;
    // The caption in UTF-8, as its font shows it.
    std::string readableCaption() const {
        return stage.fonts.at(headerFont).codePage().toUtf8(caption);
    }
    void changed() const { changed(painted()); }
    void changed(const Rect &part) const; // in pixels of the display

    // False when the widget belongs to a form already.
    bool add(Widget &widget);
    void focus(Widget *widget);
    void focusFirst();
    Widget *focused() const { return focused_; }
    // The colour by which everything on the form marks the focus.
    Color accent() const { return headerColors.background; }

    // Hands a key to the widget with the focus, to the others' hot keys, or moves the focus.
    // Returns whether anything came of it.
    bool key(uint8_t key);
    bool character(char character);
    // The pen, in pixels of the display. Returns the key that the touch comes to, 0 for none.
    uint8_t pen(PenPhase phase, Point at);

    void end(int32_t with) { state = with; }
    bool running() const { return state == IG_STATE_RUNNING; }

    Stage &stage;
    int32_t handle = 0;
    const std::string caption;
    std::vector<Widget *> widgets; // in the order they were added
    uint32_t options = IG_FORM_HEADER | IG_FORM_CLOSE_MARK | IG_FORM_SHADOW;
    ColorPair colors{0x0000, 0xFFFF};
    ColorPair headerColors{0xFFFF, 0x1B17};
    uint16_t headerFont = 1;
    int headerHeight = 0; // 0: as high as its font needs
    uint32_t headerJustify = IG_JUSTIFY_CENTER;
    int32_t state = IG_STATE_RUNNING;
    uint32_t timeOut = 0; // ticks, 0 for never
    uint32_t started = 0; // ticks when the time-out began
    bool shown = false;

private:
    void moveFocus(int step);
    Rect closeMark() const;
    Rect captionArea() const;
    void drawHeader(Painter &painter) const;

    bool fillsDisplay_;
    Rect area_;
    Widget *focused_ = nullptr;
    Widget *touched_ = nullptr; // holds the pen
};

} // namespace uti::host
