// show_sheet.h: all dialogs and languages on one labelled picture. Stands on the toolkit's painter.
#pragma once

#include "tools/dialog_pictures.h"

#include <vector>

namespace uti::tool {

// The pictures of a dialog stand side by side, one for each language, below the dialog's name. So
// many dialogs stand in a row that the sheet is about as wide as a screen.
class Sheet {
public:
    // Throws a std::runtime_error when they are too many for one picture.
    explicit Sheet(const std::vector<ShownDialog> &dialogs);

    void add(const Picture &picture);
    const host::Surface &surface() const { return surface_; }

private:
    host::Rect placeOf(const ShownDialog &dialog) const; // of its picture

    std::vector<std::pair<uint16_t, std::size_t>> keys_;
    std::vector<std::string> languages_;
    int columns_ = 1;
    host::Surface surface_;
};

} // namespace uti::tool
