// doors.h: how the functions of toolkit.h come from a handle to the thing behind it.
#pragma once

#include "host/toolkit/display.h"

namespace uti::host {

// Calls `use` with the widget of that kind and has it drawn again. Returns 0, or IG_ERROR_HANDLE
// for a handle that is unknown or of another kind.
template <class Kind = Widget, class Use>
int32_t withWidget(int32_t handle, Use use) {
    Kind *widget = dynamic_cast<Kind *>(display().widget(handle));
    if (!widget)
        return IG_ERROR_HANDLE;
    use(*widget);
    widget->changed();
    return 0;
}

// The same for a form, which is laid out anew.
template <class Use>
int32_t withForm(int32_t handle, Use use) {
    Form *form = display().form(handle);
    if (!form)
        return IG_ERROR_HANDLE;
    use(*form);
    form->changed();
    return 0;
}

// A text of the application, which may be null for none.
inline const char *orEmpty(const char *text) {
    return text ? text : "";
}

} // namespace uti::host
