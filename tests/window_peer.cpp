// window_peer.cpp: the other side of a window, as the X server sees it.
//   window-peer WINDOW shows PNG [SCALE]   succeeds when the picture is in the window, pixel for
//   pixel window-peer WINDOW close               asks the window to close, as a window manager does
// WINDOW is the number of an X window.
#include "host/toolkit/image.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cstdio>
#include <cstdlib>
#include <string>

using namespace uti::host;

namespace {

bool isAt(XImage &seen, Point at, const Image &picture, int scale) {
    for (int y = 0; y < picture.size.height * scale; ++y)
        for (int x = 0; x < picture.size.width * scale; ++x) {
            const int pixel = y / scale * picture.size.width + x / scale;
            const uint32_t wanted = toRgb24(picture.pixels[static_cast<std::size_t>(pixel)]);
            if (XGetPixel(&seen, at.x + x, at.y + y) != wanted)
                return false;
        }
    return true;
}

bool shows(Display *server, Window window, const Image &picture, int scale) {
    XWindowAttributes all;
    XGetWindowAttributes(server, window, &all);
    XImage *seen = XGetImage(server, window, 0, 0, static_cast<unsigned>(all.width),
                             static_cast<unsigned>(all.height), AllPlanes, ZPixmap);
    bool found = false;
    for (int y = 0; seen && !found && y <= all.height - picture.size.height * scale; ++y)
        for (int x = 0; !found && x <= all.width - picture.size.width * scale; ++x)
            found = isAt(*seen, {x, y}, picture, scale);
    if (seen)
        XDestroyImage(seen);
    return found;
}

void close(Display *server, Window window) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(server, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(server, "WM_DELETE_WINDOW", False));
    XSendEvent(server, window, False, NoEventMask, &event);
    XSync(server, False);
}

} // namespace

int main(int argc, char **argv) {
    ::Display *server = argc > 2 ? XOpenDisplay(nullptr) : nullptr;
    if (!server)
        return 2;
    const Window window = std::strtoul(argv[1], nullptr, 0);
    bool done = true;
    if (std::string(argv[2]) == "close")
        close(server, window);
    else {
        const auto picture = argc > 3 ? loadImage(argv[3]) : std::nullopt;
        done = picture && shows(server, window, *picture, argc > 4 ? std::atoi(argv[4]) : 1);
    }
    XCloseDisplay(server);
    return done ? 0 : 1;
}
