// log.cpp: `uti log`, the reader of binary logs.
#include "common/utf8.h"
#include "tools/commands.h"
#include "tools/log_files.h"
#include "tools/log_filter.h"
#include "tools/log_output.h"
#include "tools/log_scanner.h"
#include "tools/log_wording.h"
#include "tools/resource_model.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <iostream>
#include <thread>

#include <unistd.h>

namespace uti::tool {

namespace {

using namespace std::chrono_literals;
using Ahead = LogScanner::Ahead;

constexpr auto pollInterval = 200ms;
constexpr std::size_t blockSize = 1 << 20;

struct LogOptions {
    std::vector<std::string> names;
    bool monitoring = false;
    std::filesystem::path resources;
    std::string language;
    std::vector<std::string> codePages;
    std::string level;
    std::vector<std::string> modules;
    std::string since;
    std::string until;
    bool json = false;
    bool stats = false;
    bool follow = false;
    std::string colour = "auto";
};

// Where records go, whatever file they come from, and what was damaged on the way.
class LogSession {
public:
    LogSession(LogFilter filter, LogWording wording, std::unique_ptr<LogOutput> output)
        : filter_(std::move(filter)), wording_(std::move(wording)), output_(std::move(output)) {}

    LogOutput &output() { return *output_; }

    void enter(LogKind kind, const std::filesystem::path &folder) {
        kind_ = kind;
        wording_.enter(folder);
    }

    void add(const TraceRecord &record, const std::string &file, uint64_t offset) {
        ++records_;
        if (!filter_.passes(record))
            return;
        arguments_.clear();
        Argument argument;
        UnreadItems items = record.arguments;
        while (items.claimed > 0 && items.take(argument) == Reading::whole)
            arguments_.push_back(argument);
        const bool isWorded = output_->needsWording();
        const Wording *wording =
            isWorded ? wording_.find(record.module, record.messageId) : nullptr;
        // Events of a monitoring log have a wording by way of exception.
        if (isWorded && !wording && kind_ == LogKind::trace)
            tellWording(record);
        output_->add({record, arguments_, wording, file, offset});
    }

    // Records so far, those that the filter leaves out among them.
    uint64_t records() const { return records_; }

    // Says something on standard error, behind the records so far.
    template <class... Parts>
    void tell(const Parts &...parts) {
        output_->flush();
        std::cerr << concat(parts...) << '\n';
    }

    void reportDamage(const LogScanner::Found &found, const std::string &file,
                      std::string_view hint) {
        const bool cut = found.kind == LogScanner::Kind::cut;
        tell(file, ": error: offset ", found.offset, ": ",
             cut ? "a record is cut off; " : "damaged; ", found.size, " bytes passed over", hint);
        ++damages_;
        damagedBytes_ += found.size;
    }

    // Ends the output. Returns the exit code.
    int finish() {
        output_->finish();
        if (!output_->flush()) {
            std::cerr << "uti: cannot write the records\n";
            return exitUsage;
        }
        if (damages_ > 0)
            std::cerr << "uti: " << damages_ << " damaged or cut, " << damagedBytes_
                      << " bytes passed over in all\n";
        return damages_ > 0 || wording_.hasErrors() ? exitErrors : exitDone;
    }

private:
    void tellWording(const TraceRecord &record) {
        const std::string reason = wording_.explain(record.module, record.messageId);
        if (!reason.empty())
            tell("uti: ", reason);
    }

    LogFilter filter_;
    LogWording wording_;
    std::unique_ptr<LogOutput> output_;
    LogKind kind_ = LogKind::trace;
    std::vector<Argument> arguments_;
    uint64_t records_ = 0;
    uint64_t damages_ = 0;
    uint64_t damagedBytes_ = 0;
};

// Reads one file of a log.
class LogReader {
public:
    LogReader(LogKind kind, LogFile &file, LogSession &session)
        : kind_(kind), file_(file), session_(session), scanner_(kind, file.position()),
          name_(validUtf8(file.path().string())) {
        session_.enter(kind, file.path().parent_path());
    }

    // Reads to the end, as it is now. False, and a message, when the file cannot be read.
    bool readOn(Ahead behindTheEnd) {
        bool isNew = behindTheEnd == Ahead::nothing;
        for (;;) {
            const int64_t count = file_.open() ? file_.read(block()) : -1;
            if (count < 0) {
                std::cerr << "uti: cannot read " << name_ << ": " << std::strerror(errno) << '\n';
                return false;
            }
            if (count == 0)
                break;
            isNew = true;
            scanner_.append(block().first(static_cast<std::size_t>(count)));
            handOn(Ahead::bytes);
            session_.output().flush();
        }
        if (isNew)
            handOn(behindTheEnd);
        return true;
    }

    // Tells of bytes at the end that are no record, once, since they are reported only when a
    // record follows. False when they are all that there is, in any file: this is no binary log.
    bool checkEnd() {
        const LogScanner::Found rest = scanner_.pending();
        if (rest.kind == LogScanner::Kind::none || rest.offset == toldUpTo_)
            return true;
        toldUpTo_ = rest.offset;
        const bool isLog = session_.records() > 0;
        session_.tell(name_, ": error: ",
                      isLog ? concat("offset ", rest.offset, ": damaged; waiting for a record")
                            : "its bytes are no binary log",
                      hint(rest.look));
        return isLog;
    }

private:
    static std::span<uint8_t> block() {
        static std::vector<uint8_t> bytes(blockSize);
        return bytes;
    }

    void handOn(Ahead ahead) {
        for (;;) {
            const LogScanner::Found found = scanner_.next(ahead);
            if (found.kind == LogScanner::Kind::none)
                return;
            if (found.kind == LogScanner::Kind::record)
                session_.add(found.record, name_, found.offset);
            else
                session_.reportDamage(found, name_, hint(found.look));
        }
    }

    // What bytes that are no record probably are, and how to read them.
    std::string hint(LogScanner::Look look) const {
        if (look == LogScanner::Look::linesOfText)
            return "; they look like lines of text, not binary records";
        if (look == LogScanner::Look::unknown)
            return "";
        if (kind_ == LogKind::trace)
            return "; they look like a monitoring log, which --monitor reads";
        return concat("; they look like a trace log, which is read ",
                      file_.path().extension() == ".mlog" ? "from standard input"
                                                          : "without --monitor");
    }

    LogKind kind_;
    LogFile &file_;
    LogSession &session_;
    LogScanner scanner_;
    std::string name_;
    std::optional<uint64_t> toldUpTo_;
};

// Reads all files of a log. False when one of them cannot be read.
bool readLog(Log &log, LogSession &session) {
    bool read = true;
    for (LogFile &file : log.files) {
        read = LogReader(log.kind, file, session).readOn(Ahead::nothing) && read;
        file.close();
    }
    return read;
}

// Reads a log and goes on with whatever is written to it, from file to file, until it fails.
// Returns the exit code.
int followLog(Log log, LogSession &session) {
    const LogKind kind = log.kind;
    for (std::size_t i = 0; i + 1 < log.files.size(); ++i)
        LogReader(kind, log.files[i], session).readOn(Ahead::nothing);

    FollowedLog followed(std::move(log));
    for (;;) {
        LogReader reader(kind, followed.present(), session);
        std::shared_ptr<LogFile> successor;
        while (!successor) {
            if (!reader.readOn(Ahead::unknown) || !session.output().flush())
                return exitUsage;
            if (!reader.checkEnd())
                return exitErrors;
            successor = followed.successor();
            if (!successor)
                std::this_thread::sleep_for(pollInterval);
        }
        if (!reader.readOn(Ahead::nothing))
            return exitUsage;
        if (followed.hasLostRecords())
            session.tell("uti: records lost: the log was overwritten faster than it could be read");
        followed.moveOnTo(std::move(successor));
    }
}

Colours coloursFor(const std::string &wish) {
    const char *noColour = std::getenv("NO_COLOR");
    const bool fits = isatty(STDOUT_FILENO) && !(noColour && *noColour);
    return wish == "always" || (wish == "auto" && fits) ? Colours::ansi : Colours::none;
}

// The name of a module in the code page, or nothing and a message.
std::optional<std::string> encode(const std::string &name, const CodePage &codePage) {
    std::string bytes;
    for (std::string_view rest = name; !rest.empty();) {
        const std::optional<char> byte = codePage.encode(takeCharacter(rest));
        if (!byte) {
            std::cerr << "uti: \"" << name << "\" is not in " << codePage.name() << '\n';
            return std::nullopt;
        }
        bytes += *byte;
    }
    return bytes;
}

std::optional<LogFilter> makeFilter(const LogOptions &options, const CodePage &codePage) {
    LogFilter filter;
    const auto level = std::ranges::find(levelNames, options.level);
    if (level != std::end(levelNames))
        filter.mostLevel = static_cast<uint8_t>(level - levelNames + 1);
    filter.since = parseMoment(options.since, Edge::since);
    filter.until = parseMoment(options.until, Edge::until);
    for (const std::string &name : options.modules) {
        std::optional<std::string> bytes = encode(name, codePage);
        if (!bytes)
            return std::nullopt;
        filter.modules.push_back(std::move(*bytes));
    }
    return filter;
}

std::unique_ptr<LogOutput> makeOutput(const LogOptions &options, const CodePage &codePage) {
    if (options.stats)
        return makeStatsOutput(codePage, options.json ? Form::json : Form::line);
    if (options.json)
        return makeJsonOutput(codePage);
    return makeLineOutput(codePage, coloursFor(options.colour));
}

// The logs that the command line names, or nothing and messages.
std::optional<std::vector<Log>> findLogs(const LogOptions &options) {
    const Scope scope = options.follow ? Scope::wholeLog : Scope::asNamed;
    std::vector<Log> logs;
    bool found = true;
    for (const std::string &name : options.names) {
        std::optional<Log> log = findLog(name, options.monitoring, scope);
        if (log)
            logs.push_back(std::move(*log));
        else
            std::cerr << "uti: no such file or log: " << name << '\n';
        found = found && log;
    }
    return found ? std::optional(std::move(logs)) : std::nullopt;
}

int log(const LogOptions &options) {
    const std::optional<CodePages> codePages = openCodePages(options.codePages);
    if (!codePages)
        return exitUsage;
    const CodePage &codePage = codePages->common();
    std::optional<LogFilter> filter = makeFilter(options, codePage);
    std::optional<std::vector<Log>> logs = findLogs(options);
    if (!filter || !logs)
        return exitUsage;

    if (LogFile &newest = logs->front().files.back();
        options.follow && newest.open() && !newest.isRegular()) {
        std::cerr << "uti: --follow needs a file; " << options.names[0] << " is none\n";
        return exitUsage;
    }

    LogSession session(std::move(*filter),
                       LogWording(options.resources, options.language, *codePages,
                                  options.json ? Form::json : Form::line),
                       makeOutput(options, codePage));
    if (options.follow) {
        const int result = followLog(std::move(logs->front()), session);
        session.finish();
        return result;
    }
    bool read = true;
    for (Log &each : *logs)
        read = readLog(each, session) && read;
    const int result = session.finish();
    return read ? result : exitUsage;
}

CLI::Validator momentValidator(Edge edge) {
    const auto check = [edge](const std::string &text) {
        const char *fault = "is not YYYY-MM-DD, HH:MM[:SS], or both with a blank between them";
        return parseMoment(text, edge) ? std::string() : '"' + text + "\" " + fault;
    };
    return CLI::Validator(check, "TIME");
}

std::string checkLanguage(const std::string &text) {
    return isLanguageCode(text) ? "" : "a language is two lower-case letters";
}

} // namespace

void addLogCommand(CLI::App &app, int &result) {
    CLI::App *command = app.add_subcommand("log", "Reads binary trace and monitoring logs");
    const auto options = std::make_shared<LogOptions>();
    command->add_option("FILE", options->names,
                        "Log files; base names, for all files of their logs; - or none for "
                        "standard input");
    command->add_flag("--monitor", options->monitoring,
                      "Read a monitoring log, whatever its extension");
    command
        ->add_option("--res", options->resources,
                     "Folder of the resource files (default: that of the log)")
        ->check(CLI::ExistingDirectory);
    command->add_option("--lang", options->language, "Language of the wording")
        ->check(CLI::Validator(checkLanguage, "xx"));
    command->add_option("--code-page", options->codePages, codePageHelp)->allow_extra_args(false);
    command->add_option("--level", options->level, "Records of this level and the graver ones")
        ->check(
            CLI::IsMember(std::vector<std::string>(std::begin(levelNames), std::end(levelNames))));
    command->add_option("--module", options->modules, "Records of this module; may be repeated")
        ->allow_extra_args(false);
    command->add_option("--since", options->since, "Records from this time on")
        ->check(momentValidator(Edge::since));
    command->add_option("--until", options->until, "Records up to and including this time")
        ->check(momentValidator(Edge::until));
    command->add_flag("--json", options->json, "One JSON object a line");
    CLI::Option *stats =
        command->add_flag("--stats", options->stats, "Count records and bytes by module and level");
    command->add_flag("--follow", options->follow, "Go on with what is written to the log")
        ->excludes(stats);
    command->add_option("--color", options->colour, "Colour the levels")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->capture_default_str();
    command->footer(
        "Examples:\n  uti log first\n  uti log --level error --since 09:00 first.log\n");
    command->callback([options, &result] {
        if (options->names.empty() && !isatty(STDIN_FILENO))
            options->names = {"-"};
        if (options->names.empty())
            throw CLI::RequiredError("FILE");
        if (options->follow && (options->names.size() > 1 || options->names[0] == "-"))
            throw CLI::ValidationError("--follow", "takes one log, and not standard input");
        result = log(*options);
    });
}

} // namespace uti::tool
