// printer.cpp: the printer is the text file that the environment variable UTI_PRINTER names; what
// is printed is appended to it at once. Its paper has as many columns as UTI_PRINTER_COLUMNS says,
// 32 or 48; without it 32. Failures are negative errno values.
#include "host/terminal/descriptors.h"
#include "host/terminal/peripherals.h"
#include "terminal.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <string_view>

namespace {

constinit int printer = -1; // a descriptor, or negative while the printer is closed
constinit int columns = 32;
constinit int column = 0; // in which the next character is printed

int columnsFromEnvironment() {
    const char *value = std::getenv("UTI_PRINTER_COLUMNS");
    const std::string_view wanted = value ? value : "";
    if (wanted != "48" && wanted != "32" && !wanted.empty())
        std::fprintf(stderr, "uti: UTI_PRINTER_COLUMNS=%s is neither 32 nor 48\n", value);
    return wanted == "48" ? 48 : 32;
}

// What stands on the paper: a line that is too long for it goes on in the next one.
std::string onPaper(std::string_view text) {
    std::string lines;
    for (const char character : text) {
        const bool isEnd = character == '\n' || character == '\r';
        if (!isEnd && column == columns) {
            lines += '\n';
            column = 0;
        }
        lines += character;
        column = isEnd ? 0 : column + 1;
    }
    return lines;
}

} // namespace

using namespace uti::host;

// Creates the file when it is missing. The parameters have no meaning here. Returns -ENODEV when
// the variable is missing or empty, -EBUSY when the printer is open already.
int32_t Printer_Open(const void *) {
    if (printer >= 0)
        return -EBUSY;
    const char *path = std::getenv("UTI_PRINTER");
    if (!path || !*path)
        return -ENODEV;
    columns = columnsFromEnvironment();
    column = 0;
    printer = openForAppending(path, O_CREAT);
    return printer < 0 ? printer : 0;
}

// Prints the text in the same way whatever the style, and adds no line end but where the paper
// ends. Returns -ENXIO while the printer is closed, -ENOSPC when the key script took the paper out,
// -EIO when the text was printed in part.
int32_t Printer_PrintString(const char *text, int32_t) {
    if (!text)
        return -EINVAL;
    if (printer < 0)
        return -ENXIO;
    if (peripherals().paperOut)
        return -ENOSPC;
    const std::string lines = onPaper(text);
    const int64_t printed = writeAll(printer, lines.data(), lines.size());
    if (printed < 0)
        return static_cast<int32_t>(printed);
    return static_cast<std::size_t>(printed) == lines.size() ? 0 : -EIO;
}

int32_t Printer_Close(void) {
    if (printer >= 0)
        ::close(printer);
    printer = -1;
    return 0;
}
