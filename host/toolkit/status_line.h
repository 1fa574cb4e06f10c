// status_line.h: the line at the top of the display: signal, letters of the input at work, battery,
// clock.
#pragma once

#include "host/toolkit/text_layout.h"

#include <optional>
#include <string>

namespace uti::host {

class StatusLine {
public:
    static constexpr int height = 20;

    // Takes over what the line has to show. Returns whether it looks different now.
    bool update(std::string clock, std::string_view letters);

    // Draws the line at the painter's origin.
    void draw(Painter &painter, int width, Font &font) const;

    // What of it a line of that width does not show.
    std::optional<Cut> cut(int width, Font &font) const;

    const std::string &clock() const { return clock_; }
    const std::string &letters() const { return letters_; }

    bool enabled = true;

private:
    struct Places {
        Rect clock, battery, letters;
    };
    Places layOut(int width, Font &font) const;

    std::string clock_;
    std::string letters_;
};

} // namespace uti::host
