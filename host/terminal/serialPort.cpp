// serialPort.cpp: serial port n is the device, pseudo-terminal, FIFO or regular file that the
// environment variable UTI_COM<n> names, such as UTI_COM1=/dev/ttyUSB0. Several ports may be open
// at once. Failures are negative errno values.
#include "descriptors.h"
#include "terminal.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <termios.h>

namespace uti::host {
namespace {

// By the code of the line speed, 0 to 9.
constexpr speed_t speeds[] = {B300,  B600,   B1200,  B2400,  B4800,
                              B9600, B19200, B38400, B57600, B115200};

constexpr uint32_t eightBitsNoParity = 4; // and one stop bit

// Makes a terminal device pass bytes as they are. Returns 0 or the error.
int32_t setLine(int descriptor, speed_t speed) {
    termios line;
    if (tcgetattr(descriptor, &line) != 0)
        return -errno;
    cfmakeraw(&line);
    line.c_cflag &= ~static_cast<tcflag_t>(CSTOPB);
    line.c_cflag |= CLOCAL | CREAD;
    if (cfsetspeed(&line, speed) != 0 || tcsetattr(descriptor, TCSANOW, &line) != 0)
        return -errno;
    return 0;
}

int openPort(const char *path, speed_t speed) {
    const int descriptor = openForAppending(path, 0);
    if (descriptor < 0 || !isatty(descriptor))
        return descriptor;
    const int32_t error = setLine(descriptor, speed);
    if (error == 0)
        return descriptor;
    ::close(descriptor);
    return error;
}

} // namespace
} // namespace uti::host

using namespace uti::host;

// Speed codes 0 to 9 are 300, 600, 1200, 2400, 4800, 9600, 19200, 38400, 57600 and 115200 baud; the
// one known format is 4. Any other code is -EINVAL, a missing or empty variable -ENODEV. A terminal
// device is set raw and never becomes the controlling one; anything else is appended to as a
// capture. A missing path is not created, so that a mistyped device does not turn into a file.
int32_t ComPort_Open(const void *parameters) {
    if (!parameters)
        return -EINVAL;
    ComPortParameters wanted;
    std::memcpy(&wanted, parameters, sizeof wanted);
    if (wanted.speed >= std::size(speeds) || wanted.format != eightBitsNoParity)
        return -EINVAL;

    char variable[16];
    snprintf(variable, sizeof variable, "UTI_COM%u", static_cast<unsigned>(wanted.port));
    const char *path = std::getenv(variable);
    if (!path || !*path)
        return -ENODEV;
    return handles.open(HandleKind::port, [&] { return openPort(path, speeds[wanted.speed]); });
}

// Sends everything, waiting for a line that is busy; a line that takes nothing for a second ends
// the sending, with fewer bytes than asked for or -ETIMEDOUT.
int32_t ComPort_Write(int32_t handle, const void *buffer, uint32_t count) {
    const int descriptor = handles.descriptor(HandleKind::port, handle);
    if (descriptor < 0)
        return descriptor;
    if (!buffer || count > INT32_MAX)
        return -EINVAL;
    return static_cast<int32_t>(writeAll(descriptor, buffer, count));
}

int32_t ComPort_Close(int32_t handle) {
    return handles.close(HandleKind::port, handle);
}
