// static.cpp: texts and images that only show.
#include "host/toolkit/doors.h"

namespace uti::host {

namespace {

class Static final : public Widget {
public:
    Static(Stage &on, const Rect &place, const char *text, int32_t image)
        : Widget(on, place), image_(image), text_(orEmpty(text)) {}

    int32_t type() const override { return IG_WIDGET_STATIC; }
    Description describe() const override { return {"static", {text_}, stage.images.name(image_)}; }
    std::optional<Cut> cut() const override { return contentCut(content()); }
    void draw(Painter &painter) const override {
        Painter inner = drawBox(painter);
        drawContent(inner, content());
    }

    void setImage(int32_t image) { image_ = image; }

private:
    Content content() const {
        const Rect room{0, 0, inside().width, inside().height};
        return {border == 0 ? room : room.inset(4, 2), stage.images.find(image_), text_};
    }

    int32_t image_;
    const std::string text_;
};

} // namespace
} // namespace uti::host

using namespace uti::host;

int32_t igStatic_Create(int16_t x, int16_t y, int16_t width, int16_t height, const char *text,
                        int32_t image) {
    return display().createWidget<Static>(Rect{x, y, width, height}, text, image);
}

int32_t igStatic_SetImage(int32_t widget, int32_t image) {
    return withWidget<Static>(widget, [=](Static &it) { it.setImage(image); });
}

int32_t igImage_CreateFromFile(const char *fileName) {
    return fileName && *fileName ? display().loadImage(fileName) : 0;
}
