// files.cpp: the terminal's files are regular POSIX files, their paths taken as given; a directory,
// device or FIFO is no file. Failures are negative errno values.
#include "host/terminal/clock.h"
#include "host/terminal/descriptors.h"
#include "host/terminal/image_path.h"
#include "host/terminal/notice.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace uti::host {
namespace {

// By FILE_MODE_CREATE, FILE_MODE_READ, FILE_MODE_APPEND.
constexpr int openFlags[] = {O_WRONLY | O_CREAT | O_TRUNC, O_RDONLY, O_RDWR | O_CREAT};

int32_t regularOnly(const struct stat &status) {
    if (S_ISDIR(status.st_mode))
        return -EISDIR;
    return S_ISREG(status.st_mode) ? 0 : -EINVAL;
}

// O_NONBLOCK makes no difference to a regular file and keeps a FIFO from waiting for its other end;
// O_TRUNC makes no difference to anything but a regular file.
int openFile(const char *path, int flags) {
    const int descriptor = uninterrupted(
        [&] { return ::open(path, flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666); });
    if (descriptor < 0)
        return -errno;

    struct stat status;
    const int32_t error = fstat(descriptor, &status) == 0 ? regularOnly(status) : -errno;
    if (error == 0)
        return descriptor;
    ::close(descriptor);
    return error;
}

// Fills the status of the regular file that `path` names. Returns 0 or why there is none.
int32_t fileStatus(const char *path, struct stat &status) {
    if (!path)
        return -EINVAL;
    return ::stat(path, &status) == 0 ? regularOnly(status) : -errno;
}

// The descriptor for moving `count` bytes, or the error when that cannot be asked for.
int forTransfer(int32_t handle, const void *buffer, uint32_t count) {
    const int descriptor = handles.descriptor(HandleKind::file, handle);
    if (descriptor < 0)
        return descriptor;
    return buffer && count <= INT32_MAX ? descriptor : -EINVAL;
}

} // namespace
} // namespace uti::host

using namespace uti::host;

// Up to 256 files and ports are open at a time. New files get the permissions of the umask.
int32_t File_Open(const char *path, int32_t mode) {
    if (!path || mode < FILE_MODE_CREATE || mode > FILE_MODE_APPEND)
        return -EINVAL;
    return handles.open(HandleKind::file, [&] { return openFile(path, openFlags[mode]); });
}

// Closes the handle even when the medium reports a late error, which is then returned.
int32_t File_Close(int32_t handle) {
    return handles.close(HandleKind::file, handle);
}

// A read that fails half-way is a failure, so that fewer bytes always mean the end of the file.
// More than 2^31 - 1 bytes are refused, here and in `File_Write`, because the result could not say
// so.
int32_t File_Read(int32_t handle, void *buffer, uint32_t count) {
    const int descriptor = forTransfer(handle, buffer, count);
    if (descriptor < 0)
        return descriptor;

    uint32_t done = 0;
    while (done < count) {
        const ssize_t got = uninterrupted(
            [&] { return ::read(descriptor, static_cast<char *>(buffer) + done, count - done); });
        if (got < 0)
            return -errno;
        if (got == 0)
            break;
        done += static_cast<uint32_t>(got);
    }
    return static_cast<int32_t>(done);
}

// A medium that is full already is a failure (-ENOSPC), one that fills up on the way a short count.
int32_t File_Write(int32_t handle, const void *buffer, uint32_t count) {
    const int descriptor = forTransfer(handle, buffer, count);
    if (descriptor < 0)
        return descriptor;
    return static_cast<int32_t>(writeAll(descriptor, buffer, count));
}

// A position past the end is allowed: reading there gives nothing, writing fills the gap with
// zeros.
int32_t File_SetPosition(int32_t handle, uint32_t offset) {
    const int descriptor = handles.descriptor(HandleKind::file, handle);
    if (descriptor < 0)
        return descriptor;
    return ::lseek(descriptor, static_cast<off_t>(offset), SEEK_SET) < 0 ? -errno : 0;
}

// A file of 2^31 bytes and more is a failure.
int32_t File_GetLength(int32_t handle) {
    const int descriptor = handles.descriptor(HandleKind::file, handle);
    if (descriptor < 0)
        return descriptor;
    struct stat status;
    if (fstat(descriptor, &status) != 0)
        return -errno;
    return status.st_size <= INT32_MAX ? static_cast<int32_t>(status.st_size) : -EOVERFLOW;
}

// The reserved bytes of the date are 0. Both records are needed.
int32_t File_GetTime(const char *path, TerminalDate *date, TerminalTime *time) {
    struct stat status;
    LocalTime local;
    if (!date || !time || fileStatus(path, status) < 0 || !toLocalTime(status.st_mtime, local))
        return 0;
    *date = local.date;
    *time = local.time;
    return 1;
}

// Opens the file for reading and closes it again, so the answer is that of `File_Open`. A picture
// is also looked for where the toolkit finds it.
int32_t File_IsValid(const char *path) {
    const std::string_view name = path ? path : "";
    const bool isPicture = name.ends_with(".png");
    const int descriptor =
        path ? openFile(isPicture ? imagePath(path).c_str() : path, O_RDONLY) : -EINVAL;
    if (descriptor < 0 && isPicture)
        notice("the image " + imagePath(path).string() + " is missing");
    if (descriptor < 0)
        return 0;
    ::close(descriptor);
    return 1;
}

// Deletes regular files only. Of a symbolic link to one, the link is deleted and the file stays.
int32_t File_Delete(const char *path) {
    struct stat status;
    const int32_t error = fileStatus(path, status);
    if (error < 0)
        return error;
    return ::unlink(path) == 0 ? 0 : -errno;
}
