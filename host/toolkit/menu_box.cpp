// menu_box.cpp: lists and tiles to choose from.
#include "host/toolkit/doors.h"
#include "host/toolkit/text_layout.h"

#include <optional>

namespace uti::host {

namespace {

constexpr int padding = 6;
constexpr int gap = 6; // between the parts of an item
constexpr int badgePadding = 4;
constexpr std::size_t digits = 9; // items that a digit can choose

struct Item {
    std::string text;
    std::string detail;
    int32_t image;
    uint16_t font;
};

class MenuBox final : public Widget {
public:
    MenuBox(Stage &on, const Rect &place, uint32_t columns, uint32_t style)
        : Widget(on, place), columns_(columns != 0 ? 2 : 1), style_(style) {}

    int32_t type() const override { return IG_WIDGET_MENU_BOX; }
    Description describe() const override;
    std::optional<Cut> cut() const override;
    void draw(Painter &painter) const override;

    bool takesFocus() const override { return !items_.empty(); }
    bool key(uint8_t key) override;
    uint8_t pen(PenPhase phase, Point at) override;
    int hidden(int32_t direction) const override {
        return direction == 0 ? top() : lastTop() - top();
    }

    void add(const IgMenuItem &item, int32_t image, uint16_t itemFont);
    // From 0; nothing while there is no item.
    std::optional<std::size_t> selected() const {
        return items_.empty() ? std::nullopt : std::optional(selected_);
    }

    ColorPair itemsActive{active}, itemsPassive{passive};
    uint32_t itemsActiveBorder = 0;
    uint8_t upKey = 0, downKey = 0, pageUpKey = 0, pageDownKey = 0;
    int rowDelta = 8;
    uint16_t accelFont = 3;

private:
    void drawFocus(Painter &, Color, int) const override {} // the chosen item shows it
    void drawItem(Painter &painter, std::size_t index) const;
    void drawTile(Painter &painter, const Rect &cell, const Item &item, Color ink) const;
    void drawRow(Painter &painter, const Rect &cell, std::size_t index, Color ink) const;
    Rect tileText(const Rect &cell, const Item &item) const;
    // The parts of a row from the left; empty ones are not there.
    struct RowPlaces {
        Rect badge, image, text, detail;
    };
    RowPlaces layOutRow(const Rect &cell, const Item &item) const;

    Size cellSize() const;
    // The place of an item, relative to the inside of the box, as if nothing was scrolled.
    Rect cell(std::size_t index) const;
    int totalHeight() const { return items_.empty() ? 0 : cell(items_.size() - 1).bottom(); }
    int top() const { return std::clamp(top_, 0, lastTop()); }
    int lastTop() const {
        const int row = cellSize().height;
        return std::max(totalHeight() - rowsInSight() * row, 0);
    }
    int count() const { return static_cast<int>(items_.size()); }
    int rowsInSight() const { return std::max(inside().height / cellSize().height, 1); }
    // The items that can be seen.
    std::size_t firstInSight() const {
        return static_cast<std::size_t>(top() / cellSize().height * columns_);
    }
    std::size_t endOfSight() const {
        const int most = rowsInSight() * columns_;
        return std::min(firstInSight() + static_cast<std::size_t>(most), items_.size());
    }
    const Image *imageOf(const Item &item) const {
        return style_ & IG_MENU_IMAGES ? stage.images.find(item.image) : nullptr;
    }
    void select(int index);
    void step(int by);
    bool confirm();

    const int columns_;
    const uint32_t style_;
    std::vector<Item> items_;
    Size imageSize_; // of the largest image
    int fontHeight_ = 0;
    std::size_t selected_ = 0;
    bool chosenAtFirst_ = false;
    int top_ = 0; // pixels scrolled away
    Point touched_;
    int touchedTop_ = 0;
};

Description MenuBox::describe() const {
    Description description{"menu", {}, ""};
    for (std::size_t i = firstInSight(); i < endOfSight(); ++i) {
        description.texts.push_back(items_[i].text);
        if (!items_[i].detail.empty())
            description.texts.push_back(items_[i].detail);
    }
    description.notes = "item " + std::to_string(items_.empty() ? 0 : selected_ + 1) + " of " +
                        std::to_string(items_.size());
    return description;
}

void MenuBox::add(const IgMenuItem &item, int32_t image, uint16_t itemFont) {
    const auto text = [](uintptr_t address) {
        return orEmpty(reinterpret_cast<const char *>(address));
    };
    items_.push_back({text(item.text), text(item.detail), image, itemFont});
    fontHeight_ = std::max(fontHeight_, stage.fonts.at(itemFont).height());
    if (const Image *picture = imageOf(items_.back()))
        imageSize_ = {std::max(imageSize_.width, picture->size.width),
                      std::max(imageSize_.height, picture->size.height)};
    if (item.selected == 0 || chosenAtFirst_)
        return;
    chosenAtFirst_ = true;
    selected_ = items_.size() - 1;
    select(static_cast<int>(selected_));
}

// ------------------------------------------------------------------------------- places

Size MenuBox::cellSize() const {
    const bool hasBar = style_ & IG_MENU_SCROLL_BAR;
    const int width = (inside().width - (hasBar ? scrollBarWidth + 2 : 0)) / columns_;
    const int image = imageSize_.height;
    const int height = columns_ > 1 ? image + fontHeight_ + 4 * gap
                                    : std::max(fontHeight_ + rowDelta, image > 0 ? image + 4 : 1);

    // When there are more rows than fit, those that do share the whole height: none is cut.
    const int rows = (count() + columns_ - 1) / columns_;
    const int fitting = std::max(inside().height / height, 1);
    return {width, rows > fitting ? std::max(inside().height / fitting, 1) : height};
}

Rect MenuBox::cell(std::size_t index) const {
    const Size size = cellSize();
    const int place = static_cast<int>(index);
    return {place % columns_ * size.width, place / columns_ * size.height, size.width, size.height};
}

// --------------------------------------------------------------------------- keys and pen

void MenuBox::select(int index) {
    selected_ = static_cast<std::size_t>(std::clamp(index, 0, count() - 1));
    const Rect place = cell(selected_);
    top_ = std::clamp(top(), place.bottom() - rowsInSight() * place.height, place.y);
    changed();
}

// One item or row on, round the end when the style says so.
void MenuBox::step(int by) {
    const int next = static_cast<int>(selected_) + by;
    const bool past = next < 0 || next >= count();
    if (past && !(style_ & IG_MENU_WRAP))
        return;
    select(past ? (next < 0 ? count() - 1 : 0) : next);
}

bool MenuBox::confirm() {
    if (!(style_ & IG_MENU_CONFIRM))
        return false;
    form->end(IG_STATE_CONFIRMED);
    return true;
}

bool MenuBox::key(uint8_t key) {
    const auto is = [key](uint8_t own, int general) {
        return key == general || (own != 0 && key == own);
    };
    if (items_.empty())
        return false;
    const int here = static_cast<int>(selected_), page = rowsInSight() * columns_;
    const bool tiles = columns_ > 1;

    if (is(upKey, IG_KEY_UP))
        step(-columns_);
    else if (is(downKey, IG_KEY_DOWN))
        step(columns_);
    else if (is(pageUpKey, tiles ? 0 : IG_KEY_LEFT))
        select(here - page);
    else if (is(pageDownKey, tiles ? 0 : IG_KEY_RIGHT))
        select(here + page);
    else if (tiles && key == IG_KEY_LEFT)
        step(-1);
    else if (tiles && key == IG_KEY_RIGHT)
        step(1);
    else if (style_ & IG_MENU_DIGITS && key > '0' && key <= '9') {
        if (key - '0' > count())
            return true;
        select(key - '1');
        confirm();
    } else
        return key == IG_KEY_ENTER && confirm();
    return true;
}

// A touch chooses, letting go confirms, and moving scrolls.
uint8_t MenuBox::pen(PenPhase phase, Point at) {
    const Rect room = inside();
    if (phase == PenPhase::down) {
        touched_ = at;
        touchedTop_ = top();
    }
    const bool scrolls = std::abs(at.y - touched_.y) > 8;
    if (phase == PenPhase::move && scrolls) {
        const int row = cellSize().height;
        top_ = std::clamp((touchedTop_ + touched_.y - at.y) / row * row, 0, lastTop());
        changed();
    }
    if (phase == PenPhase::move || scrolls)
        return 0;
    for (std::size_t i = firstInSight(); i < endOfSight(); ++i) {
        if (!cell(i).contains({at.x - room.x, at.y - room.y + top()}))
            continue;
        if (phase == PenPhase::down)
            select(static_cast<int>(i));
        else if (i == selected_ && style_ & IG_MENU_CONFIRM)
            return IG_KEY_ENTER;
    }
    return 0;
}

// ------------------------------------------------------------------------------- drawing

void MenuBox::draw(Painter &painter) const {
    Painter inner = drawBox(painter, itemsPassive, border == 2 ? 5 : 0);
    for (std::size_t i = firstInSight(); i < endOfSight(); ++i)
        drawItem(inner, i);
    if (style_ & IG_MENU_SCROLL_BAR)
        drawScrollBar(painter, inside().inset(1, 2), top(), totalHeight() - lastTop(),
                      totalHeight(), mix(itemsPassive.foreground, itemsPassive.background, 128));
}

// Without the focus the chosen item is marked by half its colour only.
void MenuBox::drawItem(Painter &painter, std::size_t index) const {
    const Rect place = cell(index).moved({0, -top()});
    if (!painter.reaches(place))
        return;
    const bool chosen = index == selected_;
    Color ink = itemsPassive.foreground;
    Painter inner = painter;
    if (chosen) {
        const Rect bar = place.inset(2, 1);
        const Color ground = hasFocus() ? itemsActive.background
                                        : mix(itemsActive.background, itemsPassive.background, 80);
        ink = hasFocus() ? itemsActive.foreground : itemsPassive.foreground;
        inner.rounded(bar, 5, ground);
        if (itemsActiveBorder != 0)
            inner.outline(bar, 5, 1, mix(ink, ground, 70));
        inner.ground = ground;
    }
    if (columns_ > 1)
        drawTile(inner, place, items_[index], ink);
    else
        drawRow(inner, place, index, ink);
}

void MenuBox::drawTile(Painter &painter, const Rect &cell, const Item &item, Color ink) const {
    const Rect room = cell.inset(padding, gap);
    Font &face = stage.fonts.at(item.font);
    if (const Image *image = imageOf(item))
        painter.within(room).image(justified(image->size,
                                             {0, 0, room.width, room.height - face.height()},
                                             IG_JUSTIFY_CENTER),
                                   *image);
    drawLine(painter, tileText(cell, item), item.text, face, ink, IG_JUSTIFY_CENTER);
}

Rect MenuBox::tileText(const Rect &cell, const Item &item) const {
    const Rect room = cell.inset(padding, gap);
    const int height = stage.fonts.at(item.font).height();
    return {room.x, room.bottom() - height - gap / 2, room.width, height};
}

MenuBox::RowPlaces MenuBox::layOutRow(const Rect &cell, const Item &item) const {
    RowPlaces places;
    Rect rest = cell.inset(padding, 0);
    const auto takeLeft = [&rest](int width) {
        const Rect taken{rest.x, rest.y, width, rest.height};
        rest.x += width + gap;
        rest.width -= width + gap;
        return taken;
    };
    if (style_ & IG_MENU_SHOW_DIGITS && count() > 0) {
        Font &face = stage.fonts.at(accelFont);
        const int side = std::max(face.width('9'), face.height()) + badgePadding;
        places.badge = takeLeft(side);
        places.badge.y += (places.badge.height - side) / 2;
        places.badge.height = side;
    }
    if (imageSize_.width > 0)
        places.image = takeLeft(imageSize_.width);
    places.detail = rest;
    if (!item.detail.empty())
        rest.width -= stage.fonts.at(item.font).width(item.detail) + gap;
    places.text = rest;
    return places;
}

std::optional<Cut> MenuBox::cut() const {
    for (std::size_t i = firstInSight(); i < endOfSight(); ++i) {
        const Item &item = items_[i];
        Font &face = stage.fonts.at(item.font);
        const bool isTile = columns_ > 1;
        const RowPlaces row = layOutRow(cell(i), item);
        const Rect text = isTile ? tileText(cell(i), item) : row.text;
        auto cut = layOutLine(item.text, face, text.size()).cut;
        if (!cut && !isTile)
            cut = layOutLine(item.detail, face, row.detail.size()).cut;
        if (cut)
            return cut;
    }
    return std::nullopt;
}

void MenuBox::drawRow(Painter &painter, const Rect &cell, std::size_t index, Color ink) const {
    const Item &item = items_[index];
    const RowPlaces places = layOutRow(cell, item);
    if (!places.badge.empty() && index < digits) {
        Painter inner = painter;
        const Color ground = mix(ink, painter.ground.value_or(itemsPassive.background), 40);
        inner.rounded(places.badge, 4, ground);
        inner.ground = ground;
        const char digit = static_cast<char>('1' + index);
        drawLine(inner, places.badge, {&digit, 1}, stage.fonts.at(accelFont), ink,
                 IG_JUSTIFY_CENTER);
    }
    if (const Image *image = imageOf(item); image && !places.image.empty())
        painter.image(justified(image->size, places.image, IG_JUSTIFY_CENTER), *image);

    Font &face = stage.fonts.at(item.font);
    drawLine(painter, places.detail, item.detail, face, ink, IG_JUSTIFY_RIGHT);
    drawLine(painter, places.text, item.text, face, ink, IG_JUSTIFY_LEFT);
}

} // namespace
} // namespace uti::host

using namespace uti::host;

int32_t igMenuBox_Create(int16_t x, int16_t y, int16_t width, int16_t height, uint32_t columns,
                         uint32_t style) {
    return display().createWidget<MenuBox>(Rect{x, y, width, height}, columns, style);
}

int32_t igMenuBox_AddItemExt2(int32_t menu, const IgMenuItem *item, int32_t image, uint16_t font) {
    if (!item)
        return IG_ERROR_ARGUMENT;
    return withWidget<MenuBox>(menu, [=](MenuBox &box) { box.add(*item, image, font); });
}

int32_t igMenuBox_SetItemsTransparency(int32_t menu, uint32_t transparency) {
    return withWidget<MenuBox>(menu, [=](MenuBox &box) { box.transparency = transparency; });
}

int32_t igMenuBox_SetItemsActiveColor(int32_t menu, uint16_t foreground, uint16_t background) {
    return withWidget<MenuBox>(menu, [=](MenuBox &box) {
        box.itemsActive = {foreground, background};
    });
}

int32_t igMenuBox_SetItemsPassiveColor(int32_t menu, uint16_t foreground, uint16_t background) {
    return withWidget<MenuBox>(menu, [=](MenuBox &box) {
        box.itemsPassive = {foreground, background};
    });
}

int32_t igMenuBox_SetItemsActiveBorder(int32_t menu, uint32_t border) {
    return withWidget<MenuBox>(menu, [=](MenuBox &box) { box.itemsActiveBorder = border; });
}

int32_t igMenuBox_SetControlCodes(int32_t menu, uint8_t up, uint8_t down, uint8_t pageUp,
                                  uint8_t pageDown) {
    return withWidget<MenuBox>(menu, [=](MenuBox &box) {
        box.upKey = up;
        box.downKey = down;
        box.pageUpKey = pageUp;
        box.pageDownKey = pageDown;
    });
}

int32_t igMenuBox_SetRowDelta(int32_t menu, int32_t pixels) {
    return withWidget<MenuBox>(
        menu, [=](MenuBox &box) { box.rowDelta = std::clamp(pixels, int32_t{0}, int32_t{256}); });
}

int32_t igMenuBox_SetAccelFont(int32_t menu, uint16_t font) {
    return withWidget<MenuBox>(menu, [=](MenuBox &box) { box.accelFont = font; });
}

int32_t igMenuBox_GetSelected(int32_t menu) {
    const auto *box = dynamic_cast<const MenuBox *>(display().widget(menu));
    if (!box)
        return IG_ERROR_HANDLE;
    const auto selected = box->selected();
    return selected ? static_cast<int32_t>(*selected) + 1 : int32_t{IG_ERROR_ARGUMENT};
}
