// widget.cpp: what all widgets have in common, and the functions of toolkit.h for all of them.
#include "host/toolkit/widget.h"

#include "host/toolkit/doors.h"
#include "host/toolkit/text_layout.h"

namespace uti::host {

void Widget::changed() {
    if (form)
        form->changed(area.moved(form->client().origin()));
}

bool Widget::hasFocus() const {
    return form && form->focused() == this;
}

Font &Widget::textFont() const {
    return stage.fonts.at(font);
}

Rect Widget::inside() const {
    const int line = border == 0 ? 0 : 1;
    return Rect{0, 0, area.width, area.height}.inset(line);
}

Painter Widget::drawBox(Painter &painter, const ColorPair &colors, int radius) const {
    const Rect whole{0, 0, area.width, area.height};
    const auto &[foreground, background] = colors;
    if (transparency == 0) {
        painter.rounded(whole, radius, background);
        painter.ground = background;
    }
    if (const Image *image = stage.images.find(hasFocus() ? activeBackImage : passiveBackImage)) {
        painter.image(justified(image->size, whole, IG_JUSTIFY_CENTER), *image);
        painter.ground.reset();
    }

    if (border == 3) { // light falls in from the left top
        const Color light = mix(foreground, background, 40);
        painter.outline(whole, radius, 1, mix(foreground, background, 150));
        painter.fill({1, whole.height - 1, whole.width - 1, 1}, light);
        painter.fill({whole.width - 1, 1, 1, whole.height - 1}, light);
    } else if (border != 0) {
        painter.outline(whole, radius, 1, mix(foreground, background, 96));
    }
    if (hasFocus())
        drawFocus(painter, background, radius);
    return painter.within(inside());
}

Widget::Places Widget::layOut(const Content &content) const {
    constexpr int gap = 6;
    const auto &[room, image, text] = content;
    if (!image)
        return {{}, room};
    if (text.empty())
        return {justified(image->size, room, justify), {}};

    const int textHeight =
        static_cast<int>(linesOf(text, textFont(), room.width, Wrap::atWords).size()) *
        textFont().height();
    Rect rest = room;
    if (image->size.height + gap + textHeight <= room.height) { // in the middle together
        rest.y += (room.height - image->size.height - gap - textHeight) / 2;
        rest.height = image->size.height;
        return {justified(image->size, rest, IG_JUSTIFY_CENTER),
                {room.x, rest.bottom() + gap, room.width, textHeight}};
    }
    rest.x += image->size.width + gap;
    rest.width -= image->size.width + gap;
    return {justified(image->size, room, IG_JUSTIFY_LEFT), rest};
}

void Widget::drawContent(Painter &painter, const Content &content) const {
    const auto &[at, rest] = layOut(content);
    Painter inner = painter;
    if (content.image) {
        inner.image(at, *content.image);
        inner.ground.reset();
    }
    if (!content.text.empty())
        drawText(inner, rest, content.text, textFont(), colors().foreground, justify);
}

std::optional<Cut> Widget::contentCut(const Content &content) const {
    if (content.text.empty())
        return std::nullopt;
    return layOutText(content.text, textFont(), layOut(content).text.size()).cut;
}

void Widget::drawFocus(Painter &painter, Color background, int radius) const {
    const Color accent = form->accent();
    const Rect whole{0, 0, area.width, area.height};
    if (accent != background || transparency != 0)
        painter.outline(whole, radius, 2, accent);
    else // the mark would not be seen at the edge
        painter.outline(whole.inset(2), std::max(radius - 2, 0), 1, colors().foreground);
}

void drawScrollBar(Painter &painter, const Rect &area, int first, int shown, int total,
                   Color color) {
    if (total <= shown || shown <= 0)
        return;
    const Rect track{area.right() - scrollBarWidth, area.y, scrollBarWidth, area.height};
    painter.shade(track, color, 40);
    const int length = std::max(track.height * shown / total, 12);
    const int top = (track.height - length) * first / (total - shown);
    painter.rounded({track.x, track.y + top, track.width, length}, 2, color);
}

} // namespace uti::host

using namespace uti::host;

int32_t igWidget_GetType(int32_t widget) {
    const Widget *found = display().widget(widget);
    return found ? found->type() : int32_t{IG_ERROR_HANDLE};
}

int32_t igWidget_SetBorder(int32_t widget, uint32_t border) {
    return withWidget(widget, [=](Widget &it) { it.border = border; });
}

int32_t igWidget_SetJustify(int32_t widget, uint32_t justify) {
    return withWidget(widget, [=](Widget &it) { it.justify = justify; });
}

int32_t igWidget_SetTransparency(int32_t widget, uint32_t transparency) {
    return withWidget(widget, [=](Widget &it) { it.transparency = transparency; });
}

int32_t igWidget_SetFont(int32_t widget, uint16_t font) {
    return withWidget(widget, [=](Widget &it) { it.font = font; });
}

int32_t igWidget_SetActiveColor(int32_t widget, uint16_t foreground, uint16_t background) {
    return withWidget(widget, [=](Widget &it) { it.active = {foreground, background}; });
}

int32_t igWidget_SetPassiveColor(int32_t widget, uint16_t foreground, uint16_t background) {
    return withWidget(widget, [=](Widget &it) { it.passive = {foreground, background}; });
}

int32_t igWidget_SetActiveBackImage(int32_t widget, int32_t image) {
    return withWidget(widget, [=](Widget &it) { it.activeBackImage = image; });
}

int32_t igWidget_SetPassiveBackImage(int32_t widget, int32_t image) {
    return withWidget(widget, [=](Widget &it) { it.passiveBackImage = image; });
}

int32_t igWidget_SetKeyScheme(int32_t widget, int32_t number) {
    return withWidget(widget, [=](Widget &it) { it.keyScheme = number; });
}

int32_t igWidget_GetDeltaY(int32_t widget, int32_t direction) {
    const Widget *found = display().widget(widget);
    return found ? found->hidden(direction) : 0;
}
