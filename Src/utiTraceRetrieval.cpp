// utiTraceRetrieval.cpp: hands the files of the open trace log to the application, oldest first.
// Stands on the log file set and the platform's files.
#include "Src/text.h"
#include "Src/utiTraceEx.h"

#include <algorithm>
#include <cstdio>

namespace uti {
namespace {

// What the caller's buffer gets, and how much of it is filled.
class LogBuffer {
public:
    LogBuffer(char *out, int32_t size) : out_(out), size_(size), left_(size) {}

    int32_t count() const { return count_; }
    int32_t left() const { return left_; }

    // Replaces all that was placed so far, cut to the buffer. The files it replaces still count
    // for the space that is left.
    void setMessage(std::string_view message) {
        count_ = static_cast<int32_t>(std::min(message.size(), static_cast<std::size_t>(size_)));
        std::memcpy(out_, message.data(), static_cast<std::size_t>(count_));
        left_ = std::min(left_, size_ - count_);
    }

    // Appends the first `length` bytes of an open file, which fit. False, with nothing appended,
    // when fewer can be read.
    bool addFile(int32_t handle, int32_t length) {
        if (length > 0 && File_Read(handle, out_ + count_, static_cast<uint32_t>(length)) != length)
            return false;
        count_ += length;
        left_ -= length;
        return true;
    }

private:
    char *out_;
    int32_t size_;
    int32_t left_;
    int32_t count_ = 0;
};

// The text that stands in for the log when the buffer is too small: its size, then each file met
// with its length and the space that would remain.
class SizeReport {
public:
    explicit SizeReport(int32_t size) { add("SIZE %ld TOO SMALL\r\n", static_cast<long>(size)); }

    void addFile(const char *name, int32_t length, int32_t left) {
        if (length_ + longestLine <= lastPlace)
            add("%s(%ld) [%ld]\r\n", name, static_cast<long>(length), static_cast<long>(left));
    }

    std::string_view text() const { return {text_, length_}; }

private:
    static constexpr std::size_t capacity = 2048;
    static constexpr std::size_t longestLine = 64;
    static constexpr std::size_t lastPlace = 2046;

    template <class... Values>
    void add(const char *format, Values... values) {
        length_ += static_cast<std::size_t>(
            snprintf(text_ + length_, capacity - length_, format, values...));
    }

    char text_[capacity];
    std::size_t length_ = 0;
};

enum class Gathering { goesOn, ends };

// Adds one file that is open for reading.
Gathering addOpenFile(int32_t handle, const char *name, LogBuffer &buffer, SizeReport &report) {
    const int32_t length = std::max(File_GetLength(handle), 0);
    const int32_t left = buffer.left() - length;
    report.addFile(name, length, left);
    if (left < 0) {
        buffer.setMessage(report.text());
        return Gathering::ends;
    }
    return buffer.addFile(handle, length) ? Gathering::goesOn : Gathering::ends;
}

// Adds one file of the set; the one that the log is writing is closed meanwhile.
Gathering addFile(const LogFileName &name, LogBuffer &buffer, SizeReport &report) {
    LogFile &current = traceContext->file;
    const bool isCurrent = std::strcmp(name, current.currentName) == 0;
    if (isCurrent)
        current.close();

    Gathering gathering = Gathering::goesOn;
    const int32_t handle = File_Open(name, FILE_MODE_READ);
    if (handle < 0) {
        char message[sizeof(LogFileName) + 32];
        const int length = snprintf(message, sizeof message, "LOG FILE '%s' NOT OPEN", name);
        buffer.setMessage({message, static_cast<std::size_t>(length)});
    } else {
        gathering = addOpenFile(handle, name, buffer, report);
        File_Close(handle);
    }

    if (isCurrent)
        continueLogFile(name);
    return gathering;
}

} // namespace
} // namespace uti

using namespace uti;

int32_t TraceExGetLog(char *out, int32_t size) {
    if (!out || size <= 0 || !traceContext || traceContext->settings.output != TRACE_OUTPUT_FILE)
        return 0;

    LogBuffer buffer(out, size);
    SizeReport report(size);
    const FoundLogFile oldest = findLogFile(FileAge::oldest);
    if (oldest.index < 0)
        buffer.setMessage("LOG FILE NOT FOUND");

    for (int32_t i = 0, index = oldest.index; i < oldest.count; ++i, ++index) {
        if (index == oldest.count)
            index = 0;
        LogFileName name;
        formLogFileName(name, index);
        if (File_IsValid(name) != 1 || addFile(name, buffer, report) == Gathering::ends)
            break;
    }
    return buffer.count();
}
