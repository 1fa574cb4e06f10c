// window_face.h: the display in a window of the desktop, with a keypad below it.
#pragma once

#include "host/toolkit/face.h"

#include <filesystem>
#include <memory>
#include <string>

namespace uti::host {

struct WindowOptions {
    int scale = 1;                  // window pixels for each of the display's, 1 to 4
    std::string record;             // key script to write, empty for none
    std::filesystem::path pictures; // folder for what is saved, empty for the present one
};

// Opens the window. Null when that is not possible; what is wrong was then said on standard error.
std::unique_ptr<Face> openWindow(Display &display, const WindowOptions &options);

} // namespace uti::host
