// fit.cpp: asking the widgets of a form what they do not show whole.
#include "host/toolkit/fit.h"

namespace uti::host {

std::string written(const Rect &area) {
    return std::to_string(area.x) + ',' + std::to_string(area.y) + ' ' +
           std::to_string(area.width) + 'x' + std::to_string(area.height);
}

std::string Misfit::sentence() const {
    const auto cells = [](Size size) {
        return std::to_string(size.width) + 'x' + std::to_string(size.height);
    };
    return "the text of " + where + " is cut: it needs " + cells(cut.needs) + " cells and has " +
           cells(cut.has);
}

std::vector<Misfit> misfitsOf(const Form &form, const Rect &part) {
    std::vector<Misfit> all;
    const std::string of = " of \"" + form.readableCaption() + '"';
    if (!part.intersected(form.header()).empty())
        if (auto cut = form.cutCaption())
            all.push_back({"caption" + of, *std::move(cut), form.header()});
    for (const Widget *widget : form.widgets) {
        const Rect area = widget->area.moved(form.client().origin());
        if (part.intersected(area).empty())
            continue;
        if (auto cut = widget->cut())
            all.push_back({widget->describe().kind + ' ' + written(widget->area) + of,
                           *std::move(cut), area});
    }
    return all;
}

} // namespace uti::host
