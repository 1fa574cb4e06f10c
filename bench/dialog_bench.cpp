// dialog_bench.cpp: loading a dialog description, from the stored string to the filled records,
// against a loop written for these very bytes. A case is named "what|who|aim"; bench/run makes
// ratios of them.
#include "tests/streams.h"
#include "uti.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace {

using namespace support;
using namespace support::describe;
using benchmark::DoNotOptimize;
using benchmark::State;

// Ten labels, five static texts, three edits and two buttons with what they mostly have.
std::string description() {
    const std::string shape = area(10, 20, 110, 40) + text(2, "12x16") + byte(1, 2);
    const std::string focus = colors({0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF});
    std::string controls;
    for (int i = 0; i < 10; ++i)
        controls += group(157, shape + text(11, "a label's name") + word(79, 20) + byte(65, 1));
    for (int i = 0; i < 5; ++i)
        controls += group(151, shape + text(11, "title") + text(117, "picture.png"));
    for (int i = 0; i < 3; ++i)
        controls +=
            group(150, shape + focus + word(79, 16) + word(80, 4) + byte(65, 2) + byte(89, 1));
    for (int i = 0; i < 2; ++i)
        controls += group(148, shape + focus + text(117, "ok.png") + byte(53, 13) + byte(54, 0));
    return dialog(0, controls, byte(22, 1) + dword(18, 3000));
}

void load(State &state) {
    const std::string bytes = description();
    if (bytes.size() >= 2048)
        return state.SkipWithError("too long to be stored");
    setenv("default_lang", "en", 1);
    std::ofstream("dialogs.res", std::ios::binary)
        << resourceFile(1, {{0, {{"en", 0, {"", bytes}}}}});
    const auto loadDialog = [] {
        currentGraphicLabelParameters.count = currentGraphicStaticTextParameters.count = 0;
        currentGraphicEditParameters.count = currentGraphicButtonParameters.count = 0;
        return GetDialogParameters("dialogs", 1, DIALOG_MESSAGE) == 0;
    };
    if (!loadDialog()) // the display and its fonts as well, with the first one
        return state.SkipWithError("not loaded");
    for (auto _ : state)
        DoNotOptimize(loadDialog());
    Resource_Close("dialogs");
    std::filesystem::remove("dialogs.res");
}

// The fields of one control, as someone would keep them who needs no more than these bytes hold.
struct Control {
    uint16_t corners[4];
    uint8_t colors[12];
    uint32_t numbers[128];
    char texts[4][129];
};

uint16_t wordAt(const char *bytes) {
    return static_cast<uint16_t>(static_cast<uint8_t>(bytes[0]) | static_cast<uint8_t>(bytes[1])
                                                                      << 8);
}

// Walks a node's children into a control. False for lengths and types that are not sound.
bool walk(const char *at, const char *end, Control *control, Control *controls, int &count) {
    int corner = 0, color = 0;
    while (end - at > 3) {
        const auto tag = static_cast<uint8_t>(at[0]);
        const uint16_t length = wordAt(at + 1);
        at += 3;
        if (length > end - at)
            return false;
        const char *value = at;
        at += length;
        if (tag == 135) { // position: x and y
            if (length < 12)
                return false;
            control->corners[corner++ & 3] = wordAt(value + 4);
            control->corners[corner++ & 3] = wordAt(value + 10);
        } else if (tag == 154) { // colour: red, green and blue
            if (length < 15)
                return false;
            for (int i = 0; i < 3 && color < 12; ++i)
                control->colors[color++] = static_cast<uint8_t>(value[4 + 5 * i]);
        } else if (tag >= 128) {
            const bool nested = tag == 136 || tag == 155;
            if (!walk(value, at, nested ? control : &controls[count], controls, count))
                return false;
            count += nested ? 0 : 1;
        } else if (length == 2 && value[0] == 3) {
            control->numbers[tag] = static_cast<uint8_t>(value[1]);
        } else if (length == 3 && value[0] == 4) {
            control->numbers[tag] = wordAt(value + 1);
        } else if (length == 5 && value[0] == 5) {
            control->numbers[tag] = wordAt(value + 1) | static_cast<uint32_t>(wordAt(value + 3))
                                                            << 16;
        } else if (length > 0 && length <= 129 && value[0] == 1) {
            std::memcpy(control->texts[tag & 3], value + 1, length - 1u);
        } else {
            return false;
        }
    }
    return true;
}

void walkByHand(State &state) {
    const std::string bytes = description();
    static Control controls[24];
    for (auto _ : state) {
        int count = 0;
        DoNotOptimize(
            walk(bytes.data() + 3, bytes.data() + bytes.size(), controls, controls, count));
        if (count != 21) // with the dialog's own values
            return state.SkipWithError("not walked");
        benchmark::ClobberMemory();
    }
}

} // namespace

BENCHMARK(load)->Name("dialog: description of 20 controls|uti|4");
BENCHMARK(walkByHand)->Name("dialog: description of 20 controls|hand-written loop");

BENCHMARK_MAIN();
