// toolkit_bench.cpp: drawing a form with ten controls, whole and in part, beside what no drawing
// can do without: copying the pixels of the display and those of the characters on it.
#include "host/terminal/clock.h"
#include "host/toolkit/display.h"
#include "terminal.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using namespace uti::host;

constexpr int32_t screen = Display::handle;
constexpr uint16_t ink = 0x2147, white = 0xFFFF, blue = 0x1B37;

class Nobody final : public Face {
public:
    void show(const Surface &, const Rect &) override {}
    std::optional<Event> next(uint32_t milliseconds) override {
        pass(milliseconds);
        return std::nullopt;
    }
};

// Two labels, four inputs, a list and three buttons.
class Form10 {
public:
    Form10() : form_(igForm_Create("Registration", 0)) {
        useVirtualClock();
        display().useFace(std::make_unique<Nobody>());
        igForm_SetOption(form_, IG_FORM_OPAQUE);
        add(igStatic_Create(8, 4, 222, 16, "Name and amount", 0), 0);
        for (int16_t i = 0; i < 4; ++i) {
            const int32_t input =
                igInput_Create(static_cast<int16_t>(i % 2 * 114 + 8),
                               static_cast<int16_t>(i / 2 * 32 + 24), 108, 28, 8, 0x200);
            igInput_SetValue(input, "12345.67");
            inputs.push_back(add(input, 2));
        }
        add(igStatic_Create(8, 88, 222, 16, "Choose one of them", 0), 0);
        const int32_t menu = igMenuBox_Create(8, 106, 222, 126, 0, 0xF300);
        for (const char *text : {"Tea", "Coffee", "Cocoa", "Apple juice", "Water", "Milk"}) {
            const IgMenuItem item{reinterpret_cast<uintptr_t>(text),
                                  reinterpret_cast<uintptr_t>("120"), 0, 0};
            igMenuBox_AddItemExt2(menu, &item, 0, 1);
        }
        add(menu, 1);
        for (int16_t i = 0; i < 3; ++i)
            add(igButton_Create(static_cast<int16_t>(i * 76 + 4), 238, 72, 30, "Save", 0, 0), 1);
        igForm_Reset(form_);
        igUI_Add(screen, form_);
        igUI_Show(screen, form_);
    }
    ~Form10() { igUI_Del(screen, form_); }

    std::vector<int32_t> inputs;

private:
    int32_t add(int32_t widget, uint32_t border) {
        igWidget_SetBorder(widget, border);
        igWidget_SetActiveColor(widget, white, blue);
        igWidget_SetPassiveColor(widget, ink, white);
        igForm_Add(form_, widget);
        return widget;
    }

    int32_t form_;
};

void fullRedraw(benchmark::State &state) {
    const Form10 form;
    for (auto _ : state)
        display().drawAll({0, 0, 240, 320});
}
BENCHMARK(fullRedraw)->Name("toolkit: form of 10 controls|uti|3");
BENCHMARK(fullRedraw)->Name("toolkit: one input changed|the whole form");

// 240 x 320 pixels, and the cells of the 178 characters of that form, of a size that is known when
// the program runs, as that of a font is.
void copyAndBlit(benchmark::State &state) {
    std::size_t width = 12, height = 16;
    benchmark::DoNotOptimize(width);
    benchmark::DoNotOptimize(height);
    std::vector<Color> from(240 * 320, white), to(240 * 320), cell(width * height, ink);
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), from.size() * sizeof(Color));
        for (std::size_t i = 0; i < 178; ++i) {
            Color *place = to.data() + i / 18 * 24 * 240 + i % 18 * 13;
            for (std::size_t y = 0; y < height; ++y)
                std::memcpy(place + y * 240, cell.data() + y * width, width * sizeof(Color));
        }
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(copyAndBlit)->Name("toolkit: form of 10 controls|memcpy and blits");

// A key in one input: setting its value, and drawing what changed.
void oneChange(benchmark::State &state) {
    const Form10 form;
    for (auto _ : state) {
        igInput_SetValue(form.inputs[1], "76543.21");
        display().redraw();
    }
}
BENCHMARK(oneChange)->Name("toolkit: one input changed|uti|0.15");

} // namespace

BENCHMARK_MAIN();
