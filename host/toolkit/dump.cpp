// dump.cpp: going through what can be seen.
#include "host/toolkit/dump.h"

#include "host/toolkit/code_page.h"
#include "host/toolkit/display.h"

#include <fstream>
#include <sstream>

namespace uti::host {

namespace {

std::string inQuotes(std::string_view utf8) {
    std::string text = " \"";
    for (const char each : utf8) {
        if (each == '"' || each == '\\')
            text += '\\';
        each == '\n' ? text += "\\n" : text += each;
    }
    return text + '"';
}

} // namespace

std::string dump(const Display &display) {
    std::ostringstream out;
    out << "display " << display.size().width << 'x' << display.size().height << '\n';
    if (display.statusLineShown()) {
        out << "status " << display.statusLine().clock();
        if (!display.statusLine().letters().empty())
            out << ' ' << terminalCodePage().toUtf8(display.statusLine().letters());
        out << (display.cutStatusLine() ? " cut\n" : "\n");
    }
    if (display.cursor().x >= 0)
        out << "cursor " << display.cursor().x << ',' << display.cursor().y << '\n';

    for (const Form *form : display.visibleForms()) {
        out << "form " << written(form->area())
            << inQuotes(form->header().empty() ? "" : form->readableCaption())
            << (form->cutCaption() ? " cut" : "") << (form == display.running() ? " running" : "")
            << '\n';
        for (const Widget *widget : form->widgets) {
            const Description description = widget->describe();
            out << "  " << description.kind << ' ' << written(widget->area);
            for (const std::string &text : description.texts)
                if (!text.empty())
                    out << inQuotes(widget->readable(text));
            if (!description.notes.empty())
                out << ' ' << description.notes;
            out << (widget->cut() ? " cut" : "") << (widget->hasFocus() ? " focus" : "") << '\n';
        }
    }
    return out.str();
}

bool saveDump(const Display &display, const std::filesystem::path &path) {
    std::ofstream file(path);
    file << dump(display);
    return file.flush().good();
}

bool shows(const Display &display, std::string_view text) {
    for (const Form *form : display.visibleForms()) {
        if (!form->header().empty() && form->readableCaption().find(text) != std::string::npos)
            return true;
        for (const Widget *widget : form->widgets)
            for (const std::string &shown : widget->describe().texts)
                if (widget->readable(shown).find(text) != std::string::npos)
                    return true;
    }
    return false;
}

} // namespace uti::host
