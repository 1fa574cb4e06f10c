// damage.h: the parts of the display that have to be drawn again.
#pragma once

#include "host/toolkit/geometry.h"

#include <utility>
#include <vector>

namespace uti::host {

class Damage {
public:
    void add(Rect part) {
        for (std::size_t i = 0; i < parts_.size();) {
            if (parts_[i].intersected(part).empty() && parts_.size() < mostParts) {
                ++i;
                continue;
            }
            part = part.united(parts_[i]); // it may now meet those that were passed by
            parts_.erase(parts_.begin() + static_cast<std::ptrdiff_t>(i));
            i = 0;
        }
        if (!part.empty())
            parts_.push_back(part);
    }

    // Parts that do not overlap; none is left.
    std::vector<Rect> take() { return std::exchange(parts_, {}); }

private:
    static constexpr std::size_t mostParts = 8;
    std::vector<Rect> parts_;
};

} // namespace uti::host
