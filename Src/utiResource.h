// utiResource.h: the resource file, what the resource strings share with the module files, and the
// string call for readers inside the library that must know where a string ends.
//
// A resource file is a TLV stream with 2-byte tag ids and 4-byte lengths, and string tables that
// the stream points at. All numbers are little-endian.
//
//   root (any compound tag)
//     8002 header
//       0001 word           version
//       8100 + n            section n, 0 to 5
//         8020 language     one per language
//           0021 buffer     code, two lower-case letters and perhaps a zero
//           0022 word       info word
//           0023 dword      file offset of the language's string table for this section
//
// A string table is an index of 4-byte entries, entry i for the string with index i, and the bytes
// of the strings:
//
//   offset  size  field of an entry
//   0       2     offset of the string's bytes from the start of the table
//   2       2     length of the string, no terminator stored
#pragma once

#include "uti.h"

#include <span>
#include <string_view>

namespace uti {

namespace resource {

enum Tag : uint16_t {
    version = 0x0001,
    languageCode = 0x0021,
    languageInfo = 0x0022,
    tableOffset = 0x0023,
    header = 0x8002,
    languageBlock = 0x8020,
    firstSection = 0x8100
};

inline constexpr uint16_t sectionsInFile = 6;

} // namespace resource

// A string of the resources with its terminator not counted; on failure it is empty and its
// address is `ResourceEmptyStr`. Binary strings (dialog descriptions) may hold zeros.
std::string_view getResourceString(const char *module, uint32_t id);

// Reads EXTRES and default_lang and makes the module list on first use. False when memory is short.
bool prepareModules();

// The two-letter language of the environment variable default_lang in lower case, else "ru".
void readDefaultLanguage(char (&language)[3]);

// The module's name with "_ext" appended, and whether such modules are to be asked at all. A name
// that would be too long stays too long, so that nothing is found under it.
class ExternalName {
public:
    explicit ExternalName(const char *module);
    const char *text() const { return text_; }
    bool enabled() const { return enabled_; }

private:
    char text_[RESOURCE_NAME_LENGTH + 6];
    bool enabled_;
};

// Frees the stored strings of a module in every language.
void freeStoredStrings(const char *module);

} // namespace uti
