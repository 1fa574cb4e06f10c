// recorder.h: writes down what a person does at the display, as a key script that makes it happen
// again.
#pragma once

#include "host/toolkit/face.h"

#include <fstream>
#include <optional>
#include <string>

namespace uti::host {

class Recorder {
public:
    // Starts the script `path` anew at that moment of the platform's clock.
    Recorder(const std::string &path, uint32_t ticks) : out_(path), last_(ticks) {}
    // False when the script could not be written.
    bool isGood() const { return out_.good(); }

    // Writes an event that came at that moment.
    void add(const Event &event, uint32_t ticks);
    // A picture and a dump were saved.
    void addPicture(const std::string &name, uint32_t ticks);
    // The application ended.
    void end(uint32_t ticks);

private:
    void startLine(uint32_t ticks);

    std::ofstream out_;
    uint32_t last_;                     // ticks of the line before
    std::optional<uint32_t> lastTyped_; // ticks of the character before, when nothing came since
    bool isPenDown_ = false;
};

} // namespace uti::host
