// dialog_run.h: running a dialog with the texts that a tool has for it. The library builds it, the
// toolkit of the desktop shows it.
#pragma once

#include "host/toolkit/display.h"
#include "tools/dialog_texts.h"

#include <cstdint>
#include <functional>

namespace uti::tool {

// Shows a dialog, whose description the library has loaded, until a key or the face of the display
// ends it. Returns the dialog's result.
int32_t runDialog(const char *module, uint16_t id, const ResolvedTexts &texts);

// The same behind a face of its own, which has the dialog cancelled when `look` has seen its form.
// A dialog that shows no form is not looked at. Nothing waits: the clock becomes virtual.
int32_t lookAtDialog(const char *module, uint16_t id, const ResolvedTexts &texts,
                     std::function<void(const host::Form &)> look);

} // namespace uti::tool
