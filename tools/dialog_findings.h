// dialog_findings.h: what is wrong with a source, at the widgets of the dialogs that show it.
// Stands on `uti check`.
#pragma once

#include "tools/dialog_pictures.h"

namespace uti::tool {

// All that `uti check` has to say of a source, each text that a language lacks by its name. Images
// are looked for from `folder`.
std::vector<Finding> findingsOf(std::string path, std::string text,
                                const std::filesystem::path &folder);

// Those of the module's findings that are about the dialog, which runs, but for texts that are cut:
// the display knows these. Without its form, when it cannot be shown, their areas are empty.
std::vector<PictureText> findingsAbout(const ShownModule &module, const ShownDialog &dialog,
                                       const host::Form *form);

} // namespace uti::tool
