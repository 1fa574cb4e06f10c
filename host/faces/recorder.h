// recorder.h: writes down what a person does at the display, as a key script that makes it happen
// again.
#pragma once

#include "face.h"

#include <fstream>
#include <string>

namespace uti::host {

class Recorder {
public:
    // Starts the script `path` anew.
    explicit Recorder(const std::string &path) : out_(path) {}
    // False when the script could not be written.
    bool isGood() const { return out_.good(); }

    // Writes an event that came at that moment of the platform's clock.
    void add(const Event &event, uint32_t ticks);

private:
    std::ofstream out_;
    uint32_t last_ = 0; // ticks of the event before
    bool any_ = false;
};

} // namespace uti::host
