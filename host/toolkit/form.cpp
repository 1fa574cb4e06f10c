// form.cpp: laying out, drawing and working a form, and its functions of toolkit.h.
#include "host/toolkit/form.h"

#include "host/toolkit/doors.h"
#include "host/toolkit/text_layout.h"
#include "terminal.h"

namespace uti::host {

namespace {

constexpr int shadowWidth = 4;
constexpr int headerPadding = 5;

} // namespace

Form::Form(Stage &on, const char *title, const Rect *area)
    : stage(on), caption(orEmpty(title)), fillsDisplay_(!area), area_(area ? *area : on.formArea) {}

void Form::layOut() {
    if (fillsDisplay_)
        area_ = stage.formArea;
}

Rect Form::painted() const {
    Rect all = area_;
    if (!fillsDisplay_ && options & IG_FORM_SHADOW) {
        all.width += shadowWidth;
        all.height += shadowWidth;
    }
    return all;
}

Rect Form::header() const {
    if (!(options & IG_FORM_HEADER) || caption.empty())
        return {};
    const int needed = stage.fonts.at(headerFont).height() + 2 * headerPadding;
    return {area_.x, area_.y, area_.width, headerHeight > 0 ? headerHeight : needed};
}

Rect Form::client() const {
    const int frame = options & IG_FORM_FRAMELESS ? 0 : 1;
    Rect client = area_.inset(frame, 0);
    const int top = std::max(header().height, frame);
    client.y += top;
    client.height -= top + frame;
    return {client.x, client.y, std::max(client.width, 0), std::max(client.height, 0)};
}

Rect Form::closeMark() const {
    const Rect line = header();
    if (line.empty() || !(options & IG_FORM_CLOSE_MARK))
        return {};
    return {line.right() - line.height, line.y, line.height, line.height};
}

Rect Form::captionArea() const {
    Rect area = header().inset(8, 0);
    if (const Rect mark = closeMark(); !mark.empty())
        area.width -= mark.width - 8;
    return area;
}

std::optional<Cut> Form::cutCaption() const {
    if (header().empty())
        return std::nullopt;
    return layOutLine(caption, stage.fonts.at(headerFont), captionArea().size()).cut;
}

void Form::changed(const Rect &part) const {
    if (shown)
        stage.damage.add(part.intersected(painted()));
}

void Form::draw(Painter &painter) const {
    if (!painter.reaches(painted()))
        return;
    if (painted() != area_)
        for (const Rect &strip :
             {Rect{area_.x + shadowWidth, area_.bottom(), area_.width, shadowWidth},
              Rect{area_.right(), area_.y + shadowWidth, shadowWidth, area_.height - shadowWidth}})
            painter.shade(strip, 0, 70);

    Painter whole = painter;
    const int top = header().height;
    const Rect rest{area_.x, area_.y + top, area_.width, area_.height - top};
    if (options & IG_FORM_OPAQUE) {
        whole.fill(rest, colors.background);
        whole.ground = colors.background;
    } else if (!(options & IG_FORM_TRANSPARENT)) {
        whole.shade(rest, colors.background, 160);
        whole.ground.reset();
    }
    if (!(options & IG_FORM_FRAMELESS))
        whole.outline(area_, 0, 1, mix(headerColors.background, colors.background, 140));
    drawHeader(whole);

    const Rect client = this->client();
    Painter inner = whole.within(client);
    for (auto widget = widgets.begin(); widget != widgets.end(); ++widget) {
        const Rect &place = (*widget)->area;
        if (!inner.reaches(place))
            continue;
        Painter own = inner.within(place);
        if (std::any_of(widgets.begin(), widget, [&](const Widget *below) {
                return !below->area.intersected(place).empty();
            }))
            own.ground.reset(); // it lies on another one
        (*widget)->draw(own);
    }
}

void Form::drawHeader(Painter &painter) const {
    const Rect line = header();
    if (!painter.reaches(line))
        return;
    painter.fill(line, headerColors.background);
    Painter inner = painter;
    inner.ground = headerColors.background;

    const Rect mark = closeMark();
    if (!mark.empty()) {
        const Rect cross = mark.inset((mark.height - 10) / 2);
        inner.line(cross.origin(), {cross.right() - 2, cross.bottom() - 2}, 2,
                   headerColors.foreground);
        inner.line({cross.right() - 2, cross.y}, {cross.x, cross.bottom() - 2}, 2,
                   headerColors.foreground);
    }
    drawLine(inner, captionArea(), caption, stage.fonts.at(headerFont), headerColors.foreground,
             headerJustify);
}

bool Form::add(Widget &widget) {
    if (widget.form)
        return false;
    widget.form = this;
    widgets.push_back(&widget);
    widget.changed();
    return true;
}

void Form::focus(Widget *widget) {
    if (widget == focused_)
        return;
    Widget *const before = std::exchange(focused_, widget);
    for (Widget *each : {before, widget})
        if (each) {
            each->focusChanged();
            each->changed();
        }
}

void Form::focusFirst() {
    const auto first =
        std::ranges::find_if(widgets, [](const Widget *widget) { return widget->takesFocus(); });
    focus(first == widgets.end() ? nullptr : *first);
}

// Round the form, over those that cannot have it.
void Form::moveFocus(int step) {
    const auto count = static_cast<int>(widgets.size());
    const auto start = static_cast<int>(std::ranges::find(widgets, focused_) - widgets.begin());
    for (int i = 1; i < count; ++i) {
        Widget *next = widgets[static_cast<std::size_t>((start + i * step + i * count) % count)];
        if (next->takesFocus())
            return focus(next);
    }
}

bool Form::key(uint8_t key) {
    if (focused_ && focused_->key(key))
        return true;
    for (Widget *widget : widgets)
        if (widget != focused_ && widget->hotKey(key))
            return true;
    switch (key) {
    case IG_KEY_TAB:
    case IG_KEY_DOWN:
    case IG_KEY_RIGHT:
        moveFocus(1);
        return true;
    case IG_KEY_UP:
    case IG_KEY_LEFT:
        moveFocus(-1);
        return true;
    default:
        return false;
    }
}

bool Form::character(char character) {
    return focused_ && focused_->character(character);
}

uint8_t Form::pen(PenPhase phase, Point at) {
    const Rect client = this->client();
    if (phase == PenPhase::down) {
        if (closeMark().contains(at))
            return IG_KEY_ESCAPE;
        touched_ = nullptr;
        for (Widget *widget : widgets)
            if (widget->takesFocus() && widget->area.moved(client.origin()).contains(at))
                touched_ = widget; // the last one lies on top
        if (touched_)
            focus(touched_);
    }
    if (!touched_)
        return 0;
    const Point inside{at.x - client.x - touched_->area.x, at.y - client.y - touched_->area.y};
    return touched_->pen(phase, inside);
}

} // namespace uti::host

using namespace uti::host;

int32_t igForm_Create(const char *caption, int32_t) {
    return display().createForm(caption, nullptr);
}

int32_t igChildForm_Create(int16_t x, int16_t y, int16_t width, int16_t height, const char *caption,
                           int32_t) {
    const Rect area{x, y, width, height};
    return area.empty() ? int32_t{IG_ERROR_ARGUMENT} : display().createForm(caption, &area);
}

int32_t igForm_SetOption(int32_t form, uint32_t options) {
    return withForm(form, [=](Form &it) { it.options |= options; });
}

// What a form no longer paints is drawn again as well.
int32_t igForm_ClearOption(int32_t form, uint32_t options) {
    return withForm(form, [=](Form &it) {
        it.changed();
        it.options &= ~options;
    });
}

int32_t igForm_SetColors(int32_t form, uint16_t foreground, uint16_t background) {
    return withForm(form, [=](Form &it) { it.colors = {foreground, background}; });
}

int32_t igForm_SetHeaderColors(int32_t form, uint16_t foreground, uint16_t background) {
    return withForm(form, [=](Form &it) { it.headerColors = {foreground, background}; });
}

int32_t igForm_SetHeaderFont(int32_t form, uint16_t font) {
    return withForm(form, [=](Form &it) { it.headerFont = font; });
}

int32_t igForm_SetHeaderHeight(int32_t form, int16_t height) {
    return withForm(form, [=](Form &it) { it.headerHeight = height; });
}

int32_t igForm_SetHeaderJustify(int32_t form, uint32_t justify) {
    return withForm(form, [=](Form &it) { it.headerJustify = justify; });
}

int32_t igForm_Add(int32_t form, int32_t widget) {
    Form *parent = display().form(form);
    Widget *child = display().widget(widget);
    if (!parent || !child)
        return IG_ERROR_HANDLE;
    return parent->add(*child) ? 0 : int32_t{IG_ERROR_ARGUMENT};
}

int32_t igForm_Reset(int32_t form) {
    return withForm(form, [](Form &it) {
        it.changed();
        it.layOut();
        it.focusFirst();
    });
}

int32_t igForm_SetFocused(int32_t form, int32_t widget) {
    Form *parent = display().form(form);
    Widget *child = display().widget(widget);
    if (!parent || !child || child->form != parent)
        return IG_ERROR_HANDLE;
    if (!child->takesFocus())
        return IG_ERROR_ARGUMENT;
    parent->focus(child);
    return 0;
}

int32_t igForm_SetTimeOut(int32_t form, uint32_t ticks) {
    return withForm(form, [=](Form &it) {
        it.timeOut = ticks;
        it.started = GetTicks();
    });
}

int32_t igForm_ResetTime(int32_t form) {
    return withForm(form, [](Form &it) { it.started = GetTicks(); });
}

int32_t igForm_GetState(int32_t form) {
    const Form *found = display().form(form);
    return found ? found->state : int32_t{IG_STATE_CANCELLED};
}

int32_t igForm_GetClientWidth(int32_t form) {
    const Form *found = display().form(form);
    return found ? found->client().width : int32_t{IG_ERROR_HANDLE};
}

int32_t igForm_GetClientHeight(int32_t form) {
    const Form *found = display().form(form);
    return found ? found->client().height : int32_t{IG_ERROR_HANDLE};
}
