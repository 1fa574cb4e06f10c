// stage.h: what forms and widgets stand on: fonts, images, the letters of keys, the room there is,
// and the parts of the display that have to be drawn again.
#pragma once

#include "host/toolkit/damage.h"
#include "host/toolkit/fonts.h"
#include "host/toolkit/images.h"
#include "host/toolkit/key_schemes.h"

namespace uti::host {

struct Stage {
    Fonts fonts;
    Images images;
    KeySchemes keySchemes;
    Damage damage;
    Rect formArea; // the part of the display that a form without an area takes
};

} // namespace uti::host
