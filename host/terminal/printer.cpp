// printer.cpp: the printer is the text file that the environment variable UTI_PRINTER names; what
// is printed is appended to it at once. Failures are negative errno values.
#include "descriptors.h"
#include "peripherals.h"
#include "terminal.h"

#include <cstdlib>
#include <cstring>
#include <fcntl.h>

namespace {

constinit int printer = -1; // a descriptor, or negative while the printer is closed

}

using namespace uti::host;

// Creates the file when it is missing. The parameters have no meaning here. Returns -ENODEV when
// the variable is missing or empty, -EBUSY when the printer is open already.
int32_t Printer_Open(const void *) {
    if (printer >= 0)
        return -EBUSY;
    const char *path = std::getenv("UTI_PRINTER");
    if (!path || !*path)
        return -ENODEV;
    printer = openForAppending(path, O_CREAT);
    return printer < 0 ? printer : 0;
}

// Prints the bytes as they stand, whatever the style, and adds no line end. Returns -ENXIO while
// the printer is closed, -ENOSPC when the key script took the paper out, -EIO when the text was
// printed in part.
int32_t Printer_PrintString(const char *text, int32_t) {
    if (!text)
        return -EINVAL;
    if (printer < 0)
        return -ENXIO;
    if (peripherals().paperOut)
        return -ENOSPC;
    const std::size_t length = std::strlen(text);
    const int64_t printed = writeAll(printer, text, length);
    if (printed < 0)
        return static_cast<int32_t>(printed);
    return static_cast<std::size_t>(printed) == length ? 0 : -EIO;
}

int32_t Printer_Close(void) {
    if (printer >= 0)
        ::close(printer);
    printer = -1;
    return 0;
}
