// key_schemes.h: which characters the twelve keys of the keypad give when they are pressed again
// and again.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>

namespace uti::host {

// A set of letters. The status line shows its name.
enum class Letters : uint8_t { small, capital, smallCyrillic, capitalCyrillic, digits };

std::string_view nameOf(Letters letters);

class KeySchemes {
public:
    static constexpr std::size_t keys = 12; // 1 to 9, '*', 0, '#'

    // Sets the texts of scheme `number`, in the order of the keys; null leaves a key as it is.
    void set(int32_t number, std::span<const char *const, keys> texts);

    // The characters that a key gives one after the other: those of the scheme, else those of the
    // set. Empty for anything but the twelve keys.
    std::string_view characters(int32_t scheme, Letters letters, uint8_t key) const;

    // The key that gives a character in some set of letters; '1', the key of signs, for any other.
    static uint8_t keyOf(char character);

private:
    std::map<int32_t, std::array<std::string, keys>> schemes_;
};

} // namespace uti::host
