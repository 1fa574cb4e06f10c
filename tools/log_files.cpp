// log_files.cpp: log files on disk.
#include "tools/log_files.h"

#include "tools/log_scanner.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <climits>
#include <thread>
#include <tuple>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace uti::tool {

namespace fs = std::filesystem;

namespace {

constexpr int traceFiles = 8;

LogNames namesOf(std::string base, LogKind kind) {
    if (kind == LogKind::trace)
        return {std::move(base), "", ".log", traceFiles};
    return {std::move(base), "_", ".mlog", INT_MAX};
}

bool isFile(const fs::path &path) {
    std::error_code failure;
    return fs::exists(path, failure) && !fs::is_directory(path, failure);
}

// The names of the log that a file belongs to. A file with a number in its name belongs to the log
// whose first file stands beside it, any other one begins a log of its own.
LogNames namesAround(const fs::path &path, LogKind kind) {
    const std::string base = fs::path(path).replace_extension().string();
    LogNames names = namesOf(base, kind);
    if (path.extension() != names.extension)
        return {base, "", path.extension().string(), 1};

    for (std::size_t end = base.size();
         end > 0 && std::isdigit(static_cast<uint8_t>(base[--end]));) {
        const std::string_view rest = std::string_view(base).substr(0, end);
        if (!rest.ends_with(names.separator))
            continue;
        LogNames shorter =
            namesOf(std::string(rest.substr(0, rest.size() - names.separator.size())), kind);
        if (shorter.numberOf(path.filename().string()) && isFile(shorter.file(0)))
            return shorter;
    }
    return names;
}

// What tells how old a file is; a file without a record is older than any other.
struct Age {
    std::tuple<bool, int, int, int, int> stamp;
    std::pair<time_t, long> changed;
    auto operator<=>(const Age &) const = default;
};

Age ageOf(LogFile &file, LogKind kind) {
    const std::optional<Stamp> stamp = file.firstStamp(kind);
    // The files of a trace log stay open, since a rotation may delete them before they are read.
    // The others stay where they are and may be many.
    if (kind == LogKind::monitoring)
        file.close();
    const Stamp at = stamp.value_or(Stamp{});
    return {{stamp.has_value(), at.date.year, at.date.month, at.date.day,
             at.time.hour * 3600 + at.time.minute * 60 + at.time.second},
            {file.changed().tv_sec, file.changed().tv_nsec}};
}

// Sorts files that are in the order of their numbers by the stamps of their first records. Files of
// a trace log with the same stamp follow each other from the one behind the newest on, as they were
// written; the newest is the last of those with the latest stamp that was changed last.
void sortByAge(std::vector<LogFile> &files, LogKind kind) {
    std::vector<std::pair<Age, LogFile>> aged;
    for (LogFile &file : files) {
        const Age age = ageOf(file, kind);
        aged.emplace_back(age, std::move(file));
    }
    files.clear();

    if (kind == LogKind::trace && !aged.empty()) {
        const auto isOlder = [](const auto &a, const auto &b) { return a.first < b.first; };
        auto newest = std::max_element(aged.begin(), aged.end(), isOlder);
        while (newest + 1 != aged.end() && newest->first == (newest + 1)->first)
            ++newest;
        std::rotate(aged.begin(), newest + 1, aged.end());
    }
    std::ranges::stable_sort(aged, {}, [](const auto &file) { return file.first.stamp; });
    for (auto &[age, file] : aged)
        files.push_back(std::move(file));
}

// True when a file is not the one that its name stands for now.
bool isStale(LogFile &file) {
    if (file.isOpen())
        return file.change() == LogFile::Change::replaced;
    return file.open() || errno == ENOENT;
}

// Opens the files of a log, oldest first. While the files of a trace log are looked at, a rotation
// may replace some of them, which then are looked at anew, lest old and new ones get mixed up.
Log openSet(LogNames names, LogKind kind) {
    constexpr int mostTries = 50;
    Log log{kind, std::move(names), {}};
    for (int tries = 1;; ++tries) {
        log.files.clear();
        for (const int number : log.names.present())
            log.files.emplace_back(log.names.file(number), number);
        sortByAge(log.files, kind);
        if (kind == LogKind::monitoring || tries == mostTries ||
            std::ranges::none_of(log.files, isStale))
            return log;
        std::this_thread::sleep_for(std::chrono::milliseconds(tries));
    }
}

} // namespace

LogFile::LogFile(fs::path path, int number) : path_(std::move(path)), number_(number) {}

LogFile::LogFile(LogFile &&other) noexcept
    : path_(std::move(other.path_)), number_(other.number_),
      descriptor_(std::exchange(other.descriptor_, -1)), status_(other.status_),
      position_(other.position_) {}

LogFile &LogFile::operator=(LogFile &&other) noexcept {
    std::swap(path_, other.path_);
    std::swap(number_, other.number_);
    std::swap(descriptor_, other.descriptor_);
    std::swap(status_, other.status_);
    std::swap(position_, other.position_);
    return *this;
}

LogFile LogFile::standardInput() {
    LogFile file("<stdin>", 0);
    file.descriptor_ = STDIN_FILENO;
    return file;
}

bool LogFile::open() {
    if (descriptor_ >= 0)
        return true;
    descriptor_ = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    if (descriptor_ < 0 || fstat(descriptor_, &status_) != 0)
        return false;
    return position_ == 0 || lseek(descriptor_, static_cast<off_t>(position_), SEEK_SET) >= 0;
}

void LogFile::close() {
    if (descriptor_ > STDERR_FILENO)
        ::close(descriptor_);
    descriptor_ = -1;
}

int64_t LogFile::read(std::span<uint8_t> out) {
    ssize_t count;
    do
        count = ::read(descriptor_, out.data(), out.size());
    while (count < 0 && errno == EINTR);
    if (count > 0)
        position_ += static_cast<uint64_t>(count);
    return count;
}

std::optional<Stamp> LogFile::firstStamp(LogKind kind) {
    if (!open())
        return std::nullopt;

    std::optional<Stamp> stamp;
    LogScanner scanner(kind);
    std::vector<uint8_t> block(64 << 10);
    for (int64_t count; !stamp && (count = read(block)) > 0;) {
        scanner.append(std::span(block).first(static_cast<std::size_t>(count)));
        for (;;) {
            const LogScanner::Found found = scanner.next(LogScanner::Ahead::bytes);
            if (found.kind == LogScanner::Kind::record)
                stamp = found.record.stamp;
            if (stamp || found.kind == LogScanner::Kind::none)
                break;
        }
    }
    if (lseek(descriptor_, 0, SEEK_SET) == 0)
        position_ = 0;
    return stamp;
}

LogFile::Change LogFile::change() const {
    struct stat now;
    if (stat(path_.c_str(), &now) != 0)
        return Change::none;
    const auto size = static_cast<uint64_t>(now.st_size);
    if (now.st_dev != status_.st_dev || now.st_ino != status_.st_ino || size < position_)
        return Change::replaced;
    return size > position_ ? Change::grown : Change::none;
}

fs::path LogNames::file(int number) const {
    return base + (number == 0 ? "" : separator + std::to_string(number)) + extension;
}

std::optional<int> LogNames::numberOf(std::string_view fileName) const {
    const std::string first = fs::path(base).filename().string();
    if (!fileName.starts_with(first) || !fileName.ends_with(extension) ||
        fileName.size() < first.size() + extension.size())
        return std::nullopt;
    fileName.remove_prefix(first.size());
    fileName.remove_suffix(extension.size());
    if (fileName.empty())
        return 0;

    if (!fileName.starts_with(separator))
        return std::nullopt;
    fileName.remove_prefix(separator.size());
    int number = 0;
    const char *end = fileName.data() + fileName.size();
    const auto [stop, error] = std::from_chars(fileName.data(), end, number);
    if (error != std::errc() || stop != end || fileName[0] < '1' || number >= count)
        return std::nullopt;
    return number;
}

std::vector<int> LogNames::present() const {
    const fs::path folder = fs::path(base).parent_path();
    std::vector<int> numbers;
    std::error_code failure;
    for (const fs::path &path : fs::directory_iterator(folder.empty() ? "." : folder, failure)) {
        const std::optional<int> number = numberOf(path.filename().string());
        if (number && isFile(path))
            numbers.push_back(*number);
    }
    std::ranges::sort(numbers);
    return numbers;
}

std::optional<Log> findLog(const std::string &name, bool monitoring, Scope scope) {
    const LogKind kind = monitoring ? LogKind::monitoring : LogKind::trace;
    if (name == "-") {
        Log log{kind, {}, {}};
        log.files.push_back(LogFile::standardInput());
        return log;
    }
    const fs::path path = name;
    const bool isNamedAsLog = path.extension() == ".log" || path.extension() == ".mlog";
    if (!isNamedAsLog || !isFile(path)) {
        for (const LogKind wanted : {kind, LogKind::monitoring}) {
            Log log = openSet(namesOf(name, wanted), wanted);
            if (!log.files.empty())
                return log;
        }
    }
    if (!isFile(path))
        return std::nullopt;

    const LogKind own = path.extension() == ".mlog" ? LogKind::monitoring : kind;
    if (scope == Scope::wholeLog) {
        Log log = openSet(namesAround(path, own), own);
        if (!log.files.empty())
            return log;
    }
    Log log{own, {}, {}};
    log.files.emplace_back(path, 0);
    return log;
}

FollowedLog::FollowedLog(Log &&log)
    : kind_(log.kind), names_(std::move(log.names)), number_(log.files.back().number()) {
    for (LogFile &file : log.files) {
        const int number = file.number(); // before the file is moved away
        files_.emplace(number, std::make_shared<LogFile>(std::move(file)));
    }
}

// The files with something new in them, those behind the present one first: a rotation replaces the
// files in turn.
void FollowedLog::lookForChanges() {
    const int last = files_.rbegin()->first;
    const int count = last < names_.count - 2
                          ? std::max(last + 2, std::min(traceFiles, names_.count))
                          : names_.count;
    for (int step = 1; step <= count; ++step) {
        const int number = (number_ + step) % count;
        const auto known = files_.find(number);
        const bool isKnown = known != files_.end();
        const LogFile::Change change =
            isKnown ? known->second->change() : LogFile::Change::replaced;
        if (change == LogFile::Change::grown && number != number_)
            waiting_.push_back(known->second);
        auto file = std::make_shared<LogFile>(names_.file(number), number);
        if (change == LogFile::Change::replaced && file->open())
            waiting_.push_back(std::move(file));
    }
}

// When the present file of a trace log has been replaced, the rotation has gone round, perhaps more
// than once, and only the files themselves tell their order.
void FollowedLog::lookAtAll() {
    Log all = openSet(names_, kind_);
    bool areAllNew = static_cast<int>(all.files.size()) == names_.count;
    waiting_.clear();
    for (LogFile &file : all.files) {
        const auto known = files_.find(file.number());
        const LogFile::Change change =
            known != files_.end() ? known->second->change() : LogFile::Change::replaced;
        areAllNew = areAllNew && change == LogFile::Change::replaced;
        if (change == LogFile::Change::grown)
            waiting_.push_back(known->second);
        if (change == LogFile::Change::replaced)
            waiting_.push_back(std::make_shared<LogFile>(std::move(file)));
    }
    hasLost_ = areAllNew && waiting_.front()->number() != (number_ + 1) % names_.count;
}

std::shared_ptr<LogFile> FollowedLog::successor() {
    hasLost_ = false;
    if (waiting_.empty()) {
        lookForChanges();
        if (kind_ == LogKind::trace && present().change() == LogFile::Change::replaced)
            lookAtAll();
    }
    if (waiting_.empty())
        return nullptr;
    std::shared_ptr<LogFile> next = std::move(waiting_.front());
    waiting_.pop_front();
    return next;
}

void FollowedLog::moveOnTo(std::shared_ptr<LogFile> file) {
    number_ = file->number();
    files_.insert_or_assign(number_, std::move(file));
}

} // namespace uti::tool
