// log_output.cpp: the forms in which log records come out.
#include "tools/log_output.h"

#include "tools/log_filter.h"

#include <bit>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <map>
#include <vector>

namespace uti::tool {

namespace {

constexpr std::size_t blockSize = 64 << 10;

constexpr const char *levelColours[] = {"\x1B[1;31m", "\x1B[36m", "\x1B[2m"};

bool isNamed(uint8_t level) {
    return level >= 1 && level <= std::size(levelNames);
}

std::string levelName(uint8_t level) {
    return isNamed(level) ? levelNames[level - 1] : std::to_string(level);
}

// For short texts.
template <class... Values>
void appendFormat(std::string &out, const char *format, Values... values) {
    char text[160];
    out.append(text, static_cast<std::size_t>(snprintf(text, sizeof text, format, values...)));
}

class LineOutput : public LogOutput {
public:
    LineOutput(const CodePage &codePage, Colours colours)
        : spelling_(codePage, Form::line), colours_(colours) {}

private:
    void write(const LogEntry &entry) override {
        const auto &[date, time] = entry.record.stamp;
        writeLevel(entry.record.level);
        appendFormat(out_, " %04d-%02d-%02d %02d:%02d:%02d [", date.year, date.month, date.day,
                     time.hour, time.minute, time.second);
        spelling_.append(out_, entry.record.module);
        out_ += "] ";

        message_.clear();
        if (entry.wording)
            wordMessage(*entry.wording, entry.arguments);
        else
            listArguments(entry.record.messageId, entry.arguments);
        spelling_.append(out_, message_);
        out_ += '\n';
    }

    void writeLevel(uint8_t level) {
        const bool coloured = colours_ == Colours::ansi && isNamed(level);
        std::string name = isNamed(level) ? "" : "LEVEL ";
        name += levelName(level);
        for (char &letter : name)
            letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
        out_ += coloured ? levelColours[level - 1] : "";
        appendFormat(out_, "%-7s", name.c_str());
        out_ += coloured ? "\x1B[0m" : "";
    }

    void wordMessage(const std::string &wording, std::span<const Argument> arguments) {
        named_.assign(arguments.size(), false);
        appendMessage(message_, wording, arguments,
                      [&](uint32_t number) { named_[number] = true; });

        const char *before = " {";
        for (std::size_t number = 0; number < arguments.size(); ++number) {
            if (named_[number])
                continue;
            message_.append(before).append(std::to_string(number)).append(": ");
            appendTyped(arguments[number]);
            before = ", ";
        }
        if (*before == ',')
            message_ += '}';
    }

    void listArguments(uint16_t messageId, std::span<const Argument> arguments) {
        appendFormat(message_, "message %u (0x%04X)", unsigned{messageId}, unsigned{messageId});
        const char *before = ": ";
        for (const Argument &argument : arguments) {
            message_ += before;
            appendTyped(argument);
            before = ", ";
        }
    }

    void appendTyped(const Argument &argument) {
        const char *quote = argument.type == String ? "\"" : "";
        message_.append(argumentTypes[argument.type].name).append(" ").append(quote);
        appendArgument(message_, argument);
        message_ += quote;
        if (argument.type == ByteArray)
            message_.pop_back();
    }

    Spelling spelling_;
    Colours colours_;
    std::string message_;
    std::vector<bool> named_;
};

class JsonOutput : public LogOutput {
public:
    explicit JsonOutput(const CodePage &codePage) : spelling_(codePage, Form::json) {}

private:
    void write(const LogEntry &entry) override {
        const auto &[date, time] = entry.record.stamp;
        appendFormat(out_, R"({"time":"%04d-%02d-%02dT%02d:%02d:%02d","level":"%s","module":)",
                     date.year, date.month, date.day, time.hour, time.minute, time.second,
                     levelName(entry.record.level).c_str());
        writeText(entry.record.module);
        appendFormat(out_, R"(,"id":%u,"arguments":[)", unsigned{entry.record.messageId});
        const char *before = "";
        for (const Argument &argument : entry.arguments) {
            out_.append(before).append(R"({"type":")").append(argumentTypes[argument.type].name);
            out_ += R"(","value":)";
            writeValue(argument);
            out_ += '}';
            before = ",";
        }

        out_ += R"(],"text":)";
        writeMessage(entry);
        out_ += R"(,"file":")";
        appendJson(out_, entry.file);
        out_.append(R"(","offset":)").append(std::to_string(entry.offset)).append("}\n");
    }

    void writeMessage(const LogEntry &entry) {
        if (!entry.wording) {
            out_ += "null";
            return;
        }
        message_.clear();
        appendMessage(message_, *entry.wording, entry.arguments);
        writeText(message_);
    }

    void writeText(std::string_view bytes) {
        out_ += '"';
        spelling_.append(out_, bytes);
        out_ += '"';
    }

    void writeValue(const Argument &argument) {
        const char character = static_cast<char>(argument.bits);
        switch (argument.type) {
        case Char:
            writeTextValue({&character, 1});
            break;
        case String:
            writeTextValue({argument.data, argument.length});
            break;
        case ByteArray:
            out_ += '"';
            appendHex(out_, {argument.data, argument.length}, "");
            out_ += '"';
            break;
        case Word:
        case DWord:
            out_ += std::to_string(argument.bits);
            break;
        case Double:
            writeDouble(std::bit_cast<double>(argument.bits));
            break;
        case Date:
            appendFormat(out_, R"("%04d-%02d-%02d")", argument.date.year, argument.date.month,
                         argument.date.day);
            break;
        case Int64:
        case UInt64:
        case Time:
            out_ += '"';
            appendArgument(out_, argument);
            out_ += '"';
            break;
        default:
            appendArgument(out_, argument);
            break;
        }
    }

    // Bytes that are no text are told as well.
    void writeTextValue(std::string_view bytes) {
        writeText(bytes);
        if (spelling_.isText(bytes))
            return;
        out_ += R"(,"bytes":")";
        appendHex(out_, bytes, "");
        out_ += '"';
    }

    void writeDouble(double value) {
        char digits[32];
        char *end = std::to_chars(std::begin(digits), std::end(digits), value).ptr;
        const char *quote = std::isfinite(value) ? "" : "\"";
        out_.append(quote).append(digits, end).append(quote);
    }

    Spelling spelling_;
    std::string message_;
};

class StatsOutput : public LogOutput {
public:
    StatsOutput(const CodePage &codePage, Form form) : spelling_(codePage, form), form_(form) {}

    void finish() override {
        if (form_ == Form::line)
            out_ += "     RECORDS          BYTES  LEVEL    MODULE\n";
        Count total;
        for (const auto &[module, counts] : modules_) {
            for (const auto &[level, count] : counts) {
                form_ == Form::line ? writeRow(count, levelName(level), module)
                                    : writeObject(count, levelName(level), module);
                total.records += count.records;
                total.bytes += count.bytes;
            }
        }
        if (form_ == Form::line)
            writeRow(total, "total", "");
    }

private:
    struct Count {
        unsigned long long records = 0;
        unsigned long long bytes = 0;
    };

    void write(const LogEntry &entry) override {
        auto found = modules_.find(entry.record.module);
        if (found == modules_.end())
            found = modules_.emplace(entry.record.module, std::map<uint8_t, Count>{}).first;
        Count &count = found->second[entry.record.level];
        count.records += 1;
        count.bytes += entry.record.size;
    }

    void writeRow(const Count &count, const std::string &level, std::string_view module) {
        appendFormat(out_, "%12llu %14llu  %-8s ", count.records, count.bytes, level.c_str());
        spelling_.append(out_, module);
        out_.erase(out_.find_last_not_of(' ') + 1);
        out_ += '\n';
    }

    void writeObject(const Count &count, const std::string &level, std::string_view module) {
        out_ += R"({"module":")";
        spelling_.append(out_, module);
        appendFormat(out_, "\",\"level\":\"%s\",\"records\":%llu,\"bytes\":%llu}\n", level.c_str(),
                     count.records, count.bytes);
    }

    Spelling spelling_;
    Form form_;
    std::map<std::string, std::map<uint8_t, Count>, std::less<>> modules_; // by level inside
};

} // namespace

void LogOutput::add(const LogEntry &entry) {
    write(entry);
    if (out_.size() >= blockSize)
        flush();
}

bool LogOutput::flush() {
    std::cout.write(out_.data(), static_cast<std::streamsize>(out_.size()));
    out_.clear();
    return static_cast<bool>(std::cout.flush());
}

std::unique_ptr<LogOutput> makeLineOutput(const CodePage &codePage, Colours colours) {
    return std::make_unique<LineOutput>(codePage, colours);
}

std::unique_ptr<LogOutput> makeJsonOutput(const CodePage &codePage) {
    return std::make_unique<JsonOutput>(codePage);
}

std::unique_ptr<LogOutput> makeStatsOutput(const CodePage &codePage, Form form) {
    return std::make_unique<StatsOutput>(codePage, form);
}

} // namespace uti::tool
