// show_page.h: all dialogs and languages as a page for a browser, next to their pictures. It needs
// no network and no server.
#pragma once

#include "tools/dialog_pictures.h"

#include <map>
#include <string>
#include <vector>

namespace uti::tool {

// The page: dialogs below one another, each in every language side by side, with what is found
// drawn at its widget and the texts as text; to be filtered by language, finding and text.
class Page {
public:
    // `dialogs` are those that will be added.
    Page(const std::string &module, const std::vector<ShownDialog> &dialogs);

    // Adds a picture, which is saved beside the page under that name.
    void add(const Picture &picture, const std::string &file);
    // The page as HTML, in UTF-8.
    std::string html() const;

private:
    using Key = std::pair<uint16_t, std::size_t>;

    std::string module_;
    std::vector<std::string> languages_;
    std::map<Key, ShownDialog> dialogs_;                         // in any of their languages
    std::map<std::pair<Key, std::string>, std::string> figures_; // by language
    std::map<std::string, int> rules_; // findings by the name of their rule
    std::size_t pictures_ = 0;
    host::Size size_; // of a picture
};

} // namespace uti::tool
