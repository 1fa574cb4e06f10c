// po_file.cpp: libgettextpo, which knows files alone, on files in memory.
#include "tools/po_file.h"

#include "tools/files.h"

#include <cstdlib>
#include <fstream>
#include <limits>
#include <memory>
#include <stdexcept>

#include <gettext-po.h>
#include <sys/mman.h>
#include <unistd.h>

namespace uti::tool {

namespace {

// A file that has a name as long as the object lives.
class MemoryFile {
public:
    MemoryFile() : file_(memfd_create("po", MFD_CLOEXEC)) {}
    explicit MemoryFile(std::string_view bytes) : MemoryFile() {
        std::ofstream file(path(), std::ios::binary);
        if (!file.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush())
            throw std::runtime_error("there is no memory for a PO file");
    }
    ~MemoryFile() { close(file_); }
    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;

    std::string path() const { return concat("/proc/self/fd/", file_); }

private:
    int file_;
};

// What gettext has to say goes to the diagnostics of the call that is under way, or, without any,
// only its line is kept.
Diagnostics *listener = nullptr;
uint32_t lineTold = 0;

constexpr auto unknown = std::numeric_limits<std::size_t>::max();

Place placeOf(const char *file, std::size_t line, std::size_t column) {
    if (!file || line == unknown)
        return {};
    return {static_cast<uint32_t>(line), column == unknown ? 1 : static_cast<uint32_t>(column)};
}

std::string inOneLine(std::string_view text) {
    std::string line(text.substr(0, text.find_last_not_of('\n') + 1));
    std::ranges::replace(line, '\n', ' ');
    return line;
}

// Must not return from a fatal error, of which the library tells when it cannot go on: it has no
// memory or cannot write.
void tell(int severity, po_message_t, const char *file, std::size_t line, std::size_t column, int,
          const char *text) {
    if (severity == PO_SEVERITY_FATAL_ERROR)
        throw std::runtime_error(inOneLine(text));
    const Place place = placeOf(file, line, column);
    if (!listener)
        lineTold = place.line;
    else if (severity == PO_SEVERITY_ERROR)
        listener->error(place, inOneLine(text));
    else
        listener->warning("", place, inOneLine(text));
}

void tellTwo(int severity, po_message_t message, const char *file, std::size_t line,
             std::size_t column, int isLong, const char *text, po_message_t, const char *,
             std::size_t, std::size_t, int, const char *) {
    tell(severity, message, file, line, column, isLong, text);
}

constexpr po_xerror_handler handler{tell, tellTwo};

using File = std::unique_ptr<struct po_file, decltype(&po_file_free)>;
using Iterator = std::unique_ptr<struct po_message_iterator, decltype(&po_message_iterator_free)>;

std::string textOf(const char *text) {
    return text ? text : "";
}

std::string takeText(char *text) {
    std::string taken = textOf(text);
    std::free(text);
    return taken;
}

// The library tells where a message stands only when it finds a fault, so it is given one.
uint32_t lineOf(po_message_t message, po_message_iterator_t iterator) {
    lineTold = 0;
    po_message_set_msgid(message, "\n");
    po_message_set_msgstr(message, "-");
    po_message_check_all(message, iterator, &handler);
    return lineTold;
}

PoEntry entryOf(po_message_t message) {
    PoEntry entry;
    if (const char *context = po_message_msgctxt(message))
        entry.context = context;
    entry.original = textOf(po_message_msgid(message));
    entry.translation = textOf(po_message_msgstr(message));
    entry.before = textOf(po_message_prev_msgid(message));
    entry.comments = textOf(po_message_comments(message));
    entry.remarks = textOf(po_message_extracted_comments(message));
    entry.isFormat = po_message_is_format(message, "c-format") != 0;
    entry.isFuzzy = po_message_is_fuzzy(message) != 0;
    entry.isObsolete = po_message_is_obsolete(message) != 0;
    entry.isPlural = po_message_msgid_plural(message) != nullptr;
    return entry;
}

po_message_t messageOf(const PoEntry &entry) {
    po_message_t message = po_message_create();
    if (entry.context)
        po_message_set_msgctxt(message, entry.context->c_str());
    po_message_set_msgid(message, entry.original.c_str());
    po_message_set_msgstr(message, entry.translation.c_str());
    if (!entry.before.empty())
        po_message_set_prev_msgid(message, entry.before.c_str());
    po_message_set_comments(message, entry.comments.c_str());
    po_message_set_extracted_comments(message, entry.remarks.c_str());
    if (!entry.file.empty())
        po_message_add_filepos(message, entry.file.c_str(), entry.line);
    if (entry.isFormat)
        po_message_set_format(message, "c-format", 1);
    po_message_set_fuzzy(message, entry.isFuzzy ? 1 : 0);
    po_message_set_obsolete(message, entry.isObsolete ? 1 : 0);
    return message;
}

} // namespace

std::string PoFile::field(const char *name) const {
    return takeText(po_header_field(header.c_str(), name));
}

void PoFile::setField(const char *name, const std::string &value) {
    header = takeText(po_header_set_field(header.c_str(), name, value.c_str()));
}

PoFile readPo(Diagnostics &diagnostics) {
    const MemoryFile memory(diagnostics.text());
    listener = &diagnostics;
    const File file(po_file_read(memory.path().c_str(), &handler), po_file_free);
    listener = nullptr;
    PoFile po;
    if (!file)
        throw std::runtime_error("gettext cannot read " + diagnostics.path());
    if (diagnostics.hasErrors())
        return po;

    for (const char *const *domain = po_file_domains(file.get()); *domain; ++domain) {
        const Iterator all(po_message_iterator(file.get(), *domain), po_message_iterator_free);
        while (po_message_t message = po_next_message(all.get())) {
            PoEntry entry = entryOf(message);
            if (!entry.context && entry.original.empty()) {
                if (!entry.isObsolete)
                    po.header = entry.translation;
                continue;
            }
            entry.begin = po.entries.empty() ? Place{1, 1} : po.entries.back().place;
            entry.place = {lineOf(message, all.get()), 1};
            entry.end = {diagnostics.source().lineCount() + 1, 1};
            if (!po.entries.empty())
                po.entries.back().end = entry.place;
            po.entries.push_back(std::move(entry));
        }
    }
    return po;
}

std::string writePo(const PoFile &po) {
    const MemoryFile memory;
    const File file(po_file_create(), po_file_free);
    {
        const Iterator end(po_message_iterator(file.get(), nullptr), po_message_iterator_free);
        PoEntry header;
        header.translation = po.header;
        po_message_insert(end.get(), messageOf(header));
        for (const PoEntry &entry : po.entries)
            po_message_insert(end.get(), messageOf(entry));
    }
    if (!po_file_write(file.get(), memory.path().c_str(), &handler))
        throw std::runtime_error("gettext cannot write a PO file");
    return readInput(memory.path());
}

} // namespace uti::tool
