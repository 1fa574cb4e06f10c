// log_files.h: the files of a log: found by their names, put into the order of their records, read,
// and followed over a rotation. Stands on POSIX files.
#pragma once

#include "tools/log_record.h"

#include <deque>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace uti::tool {

// A file of a log, open while it is of use.
class LogFile {
public:
    LogFile(std::filesystem::path path, int number);
    ~LogFile() { close(); }
    LogFile(LogFile &&other) noexcept;
    LogFile &operator=(LogFile &&other) noexcept;

    static LogFile standardInput();

    const std::filesystem::path &path() const { return path_; }
    int number() const { return number_; }
    // When it was changed last, as of its opening.
    const struct timespec &changed() const { return status_.st_mtim; }

    // Opens the file, where reading it has come to. False, with errno set, when it cannot be
    // opened.
    bool open();
    void close();
    bool isOpen() const { return descriptor_ >= 0; }

    // Bytes read so far.
    uint64_t position() const { return position_; }

    // Reads on. Returns the number of bytes, 0 at the end as it is now, negative with errno set on
    // failure.
    int64_t read(std::span<uint8_t> out);

    // The stamp of the first record, if there is one. Reading starts anew.
    std::optional<Stamp> firstStamp(LogKind kind);

    enum class Change : uint8_t { none, grown, replaced };

    // True for a file that can grow, unlike a pipe or a device, as of its opening.
    bool isRegular() const { return S_ISREG(status_.st_mode); }

    // What has become of its path since it was read; replaced when there is another file now, or
    // less in it than was read.
    Change change() const;

private:
    std::filesystem::path path_;
    int number_;
    int descriptor_ = -1;
    struct stat status_ {};
    uint64_t position_ = 0;
};

// The names of a log's files by their numbers: base name and extension for 0, for the others the
// number between them.
struct LogNames {
    std::string base;      // with its folder
    std::string separator; // in front of a number
    std::string extension;
    int count; // of the numbers that there can be

    std::filesystem::path file(int number) const;
    // The number in the name of a file, or nothing when it is none of the log's.
    std::optional<int> numberOf(std::string_view fileName) const;
    // The numbers of the files that exist, in ascending order.
    std::vector<int> present() const;
};

struct Log {
    LogKind kind;
    LogNames names;
    std::vector<LogFile> files; // oldest first
};

enum class Scope : uint8_t { asNamed, wholeLog };

// Finds what a name on the command line means: "-", standard input; a file with the extension of a
// log, or the whole log that it belongs to; all files of which it is the base name, whatever else
// bears that name; or else the file of that name. Nothing when there is no such file. A file is a
// monitoring log by its extension; `monitoring` makes it one in any case.
std::optional<Log> findLog(const std::string &name, bool monitoring, Scope scope);

// The files of a log while it is being written.
class FollowedLog {
public:
    explicit FollowedLog(Log &&log);

    // The file that is written to.
    LogFile &present() { return *files_.at(number_); }

    // Opens the file that has taken over from the present one, which then is complete; nothing as
    // long as there is none. Whatever follows it is opened as well, so that no rotation takes it.
    std::shared_ptr<LogFile> successor();
    // True when files between the present one and the last successor were gone before they could
    // be opened.
    bool hasLostRecords() const { return hasLost_; }
    void moveOnTo(std::shared_ptr<LogFile> file);

private:
    void lookForChanges();
    void lookAtAll();

    LogKind kind_;
    LogNames names_;
    std::map<int, std::shared_ptr<LogFile>> files_; // as far as they were read
    std::deque<std::shared_ptr<LogFile>> waiting_;  // open, in the order in which they were written
    int number_;
    bool hasLost_ = false;
};

} // namespace uti::tool
