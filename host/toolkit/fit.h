// fit.h: which texts on the display are cut because they do not fit their widgets, told by the
// widgets themselves. Warnings, dumps and `expect fits` of key scripts all go by this.
#pragma once

#include "host/toolkit/form.h"

#include <string>
#include <vector>

namespace uti::host {

struct Misfit {
    std::string where; // such as: input 8,24 222x28 of "Registration"; UTF-8
    Cut cut;
    Rect area; // in pixels of the display

    std::string sentence() const;
};

// An area as dumps and sentences write it: 8,24 222x28.
std::string written(const Rect &area);

// The texts of a form that are cut, of widgets that reach into `part` of the display.
std::vector<Misfit> misfitsOf(const Form &form, const Rect &part);

} // namespace uti::host
