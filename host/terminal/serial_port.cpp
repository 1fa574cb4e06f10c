// serial_port.cpp: serial port n is the device, pseudo-terminal, FIFO or regular file that the
// environment variable UTI_COM<n> names, such as UTI_COM1=/dev/ttyUSB0. Several ports may be open
// at once. A port without a variable is the modem of the key script, when that has one. Failures
// are negative errno values.
#include "host/terminal/clock.h"
#include "host/terminal/descriptors.h"
#include "host/terminal/peripherals.h"
#include "terminal.h"

#include <poll.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <sys/stat.h>
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

// Whether somebody else may be at the other end, who lives by the real clock: of a terminal device
// or a FIFO.
bool isDevice(int descriptor) {
    struct stat status;
    return descriptor >= 0 &&
           (isatty(descriptor) || (fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode)));
}

// The descriptor behind a handle for sending or receiving, or a negative error.
int lineOf(int32_t handle) {
    const int descriptor = handles.descriptor(HandleKind::port, handle);
    return descriptor >= 0 && peripherals().portsFail ? -EIO : descriptor;
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
    if (peripherals().portsFail)
        return -EIO;

    char variable[16];
    snprintf(variable, sizeof variable, "UTI_COM%u", static_cast<unsigned>(wanted.port));
    const char *path = std::getenv(variable);
    return handles.open(HandleKind::port, [&] {
        if (!path || !*path)
            return peripherals().modem.connect();
        const int descriptor = openPort(path, speeds[wanted.speed]);
        if (isDevice(descriptor))
            useRealDevice(true);
        return descriptor;
    });
}

// Sends everything, waiting for a line that is busy; a line that takes nothing for a second ends
// the sending, with fewer bytes than asked for or -ETIMEDOUT.
int32_t ComPort_Write(int32_t handle, const void *buffer, uint32_t count) {
    const int descriptor = lineOf(handle);
    if (descriptor < 0)
        return descriptor;
    if (!buffer || count > INT32_MAX)
        return -EINVAL;
    const int64_t sent = writeAll(descriptor, buffer, count);
    peripherals().modem.answer();
    return static_cast<int32_t>(sent);
}

// Asks every 10 ms. On the virtual clock nothing sleeps but for a real device.
int32_t ComPort_Read(int32_t handle, void *buffer, uint32_t count, uint32_t milliseconds) {
    const int descriptor = lineOf(handle);
    if (descriptor < 0)
        return descriptor;
    if (!buffer || count > INT32_MAX)
        return -EINVAL;

    for (uint32_t left = milliseconds;;) {
        peripherals().modem.answer();
        const ssize_t got = uninterrupted([&] { return ::read(descriptor, buffer, count); });
        if (got > 0 || count == 0)
            return static_cast<int32_t>(got);
        if (got < 0 && errno != EAGAIN)
            return -errno;
        if (left == 0)
            return 0;
        const uint32_t slice = std::min(left, 10u);
        pass(slice);
        left -= slice;
    }
}

int32_t ComPort_Close(int32_t handle) {
    if (isDevice(handles.descriptor(HandleKind::port, handle)))
        useRealDevice(false);
    return handles.close(HandleKind::port, handle);
}
