// window.cpp: the window of a build without one.
#include "host/faces/window_face.h"

#include <cstdio>

namespace uti::host {

std::unique_ptr<Face> openWindow(Display &, const WindowOptions &) {
    std::fprintf(stderr, "uti: this build has no window: install libsdl2-dev and build again\n");
    return nullptr;
}

} // namespace uti::host
