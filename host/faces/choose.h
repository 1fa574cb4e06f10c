// choose.h: the face that the environment asks for: UTI_SCRIPT names a key script, UTI_WINDOW a
// window. Without either of them nobody sees the display.
#pragma once

#include "host/toolkit/face.h"

#include <memory>

namespace uti::host {

std::unique_ptr<Face> makeFace(Display &display);

} // namespace uti::host
