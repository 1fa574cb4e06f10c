// dump.h: the display as text, for tests, scripts and people who cannot see it.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace uti::host {

class Display;

// The visible forms, from the lowest on, each with its widgets, one line each: kind, area, texts in
// quotes, notes, "cut" where a text does not fit, and "focus" for the widget that has it. UTF-8.
std::string dump(const Display &display);

// Writes that text to a file. False when that fails.
bool saveDump(const Display &display, const std::filesystem::path &path);

// Whether a header or a widget of a visible form holds this text, given in UTF-8.
bool shows(const Display &display, std::string_view text);

} // namespace uti::host
