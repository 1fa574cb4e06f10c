// geometry.h: points, sizes and rectangles of the display, in pixels.
#pragma once

#include <algorithm>
#include <cstddef>

namespace uti::host {

struct Point {
    int x = 0;
    int y = 0;
    constexpr bool operator==(const Point &) const = default;
};

struct Size {
    int width = 0;
    int height = 0;

    // How many pixels it has.
    constexpr std::size_t area() const { return index(0, height); }
    // Where a pixel is among those that are stored row by row.
    constexpr std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
               static_cast<std::size_t>(x);
    }
};

// A width or height of 0 or less makes a rectangle empty.
struct Rect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    constexpr bool operator==(const Rect &) const = default;
    constexpr int right() const { return x + width; }
    constexpr int bottom() const { return y + height; }
    constexpr Point origin() const { return {x, y}; }
    constexpr Size size() const { return {width, height}; }
    constexpr bool empty() const { return width <= 0 || height <= 0; }

    constexpr bool contains(Point point) const {
        return point.x >= x && point.x < right() && point.y >= y && point.y < bottom();
    }
    constexpr bool covers(const Rect &other) const { return other.intersected(*this) == other; }
    constexpr Rect moved(Point by) const { return {x + by.x, y + by.y, width, height}; }
    // Smaller by so much at each side; a negative number makes it larger.
    constexpr Rect inset(int horizontal, int vertical) const {
        return {x + horizontal, y + vertical, width - 2 * horizontal, height - 2 * vertical};
    }
    constexpr Rect inset(int by) const { return inset(by, by); }

    constexpr Rect intersected(const Rect &other) const {
        const int left = std::max(x, other.x);
        const int top = std::max(y, other.y);
        return {left, top, std::min(right(), other.right()) - left,
                std::min(bottom(), other.bottom()) - top};
    }
    // The smallest rectangle around both; an empty one adds nothing.
    constexpr Rect united(const Rect &other) const {
        if (empty() || other.empty())
            return empty() ? other : *this;
        const int left = std::min(x, other.x);
        const int top = std::min(y, other.y);
        return {left, top, std::max(right(), other.right()) - left,
                std::max(bottom(), other.bottom()) - top};
    }
};

} // namespace uti::host
