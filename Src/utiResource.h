// utiResource.h: what the resource strings share with the module files, and the string calls for
// readers inside the library that must know where a string ends.
#pragma once

#include "uti.h"

#include <span>
#include <string_view>

namespace uti {

// A string of the resources with its terminator not counted; on failure it is empty and its
// address is `ResourceEmptyStr`. Binary strings (dialog descriptions) may hold zeros.
std::string_view getResourceString(const char *module, uint32_t id);

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
