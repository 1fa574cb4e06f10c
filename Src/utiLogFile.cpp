// utiLogFile.cpp: appending to a log file, with or without a write buffer.
#include "Src/utiLogFile.h"

namespace uti {

int32_t LogFile::open(const LogFileName &name) {
    handle = File_Open(name, FILE_MODE_APPEND);
    if (handle >= 0)
        std::memcpy(currentName, name, sizeof currentName);
    else
        currentName[0] = 0;
    return handle;
}

bool LogFile::goToEnd() {
    const int32_t length = File_GetLength(handle);
    if (length < 0 || File_SetPosition(handle, static_cast<uint32_t>(length)) != 0)
        return false;
    fileLength = static_cast<uint32_t>(length);
    return true;
}

void LogFile::close() {
    if (handle >= 0)
        File_Close(handle);
    handle = -1;
}

int32_t LogFile::write(const void *bytes, uint32_t count) {
    if (File_Write(handle, bytes, count) != static_cast<int32_t>(count))
        return UTI_TRACE_NOT_WRITTEN;
    fileLength += count;
    return UTI_OK;
}

bool LogFile::flush() {
    const uint32_t count = buffered;
    buffered = 0;
    fileLength += count;
    return count == 0 || File_Write(handle, buffer, count) >= static_cast<int32_t>(count);
}

} // namespace uti
