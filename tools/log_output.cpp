// log_output.cpp: the forms in which log records come out. JSON stands on RapidJSON.
#include "tools/log_output.h"

#include "tools/log_filter.h"

#include <algorithm>
#include <bit>
#include <cctype>
#include <charconv>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <map>
#include <vector>

#ifdef __SSE2__
#define RAPIDJSON_SSE2 // looks for characters to escape 16 at a time
#endif
#include <rapidjson/writer.h>

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

void appendDate(std::string &out, const TerminalDate &date) {
    appendPadded(out, date.year, 4);
    out += '-';
    appendPadded(out, date.month, 2);
    out += '-';
    appendPadded(out, date.day, 2);
}

void appendTime(std::string &out, const TerminalTime &time) {
    appendPadded(out, time.hour, 2);
    out += ':';
    appendPadded(out, time.minute, 2);
    out += ':';
    appendPadded(out, time.second, 2);
}

class LineOutput : public LogOutput {
public:
    LineOutput(const CodePage &codePage, Colours colours) : spelling_(codePage, Form::line) {
        for (std::size_t level = 0; level < std::size(levels_); ++level)
            levels_[level] = heading(static_cast<uint8_t>(level), colours);
    }

private:
    static std::string heading(uint8_t level, Colours colours) {
        std::string name = (isNamed(level) ? "" : "LEVEL ") + levelName(level);
        for (char &letter : name)
            letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
        name.resize(std::max<std::size_t>(name.size(), 7), ' ');
        if (colours == Colours::ansi && isNamed(level))
            name = levelColours[level - 1] + name + "\x1B[0m";
        return name + ' ';
    }

    void write(const LogEntry &entry) override {
        out_ += levels_[entry.record.level];
        appendDate(out_, entry.record.stamp.date);
        out_ += ' ';
        appendTime(out_, entry.record.stamp.time);
        out_ += " [";
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

    // The wording at once, what it does not name in `message_`.
    void wordMessage(const Wording &wording, std::span<const Argument> arguments) {
        named_.assign(arguments.size(), false);
        wording.append(out_, arguments, spelling_, named_);

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
        char heading[32];
        snprintf(heading, sizeof heading, "message %u (0x%04X)", messageId, messageId);
        message_ += heading;
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
    std::string levels_[UINT8_MAX + 1];
    std::string message_;
    std::vector<bool> named_;
};

// One object after the other, each on a line.
class JsonLines {
public:
    void begin() {
        writer_.Reset(buffer_);
        writer_.StartObject();
    }
    void end(std::string &out) {
        writer_.EndObject();
        out.append(buffer_.GetString(), buffer_.GetSize()).append("\n");
        buffer_.Clear();
    }

    template <rapidjson::SizeType size>
    rapidjson::Writer<rapidjson::StringBuffer> &key(const char (&name)[size]) {
        writer_.Key(name, size - 1);
        return writer_;
    }
    rapidjson::Writer<rapidjson::StringBuffer> &writer() { return writer_; }

    // A text in UTF-8.
    void text(const std::string &text) {
        writer_.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
    }

private:
    rapidjson::StringBuffer buffer_;
    rapidjson::Writer<rapidjson::StringBuffer> writer_{buffer_};
};

class JsonOutput : public LogOutput {
public:
    explicit JsonOutput(const CodePage &codePage) : spelling_(codePage, Form::json) {}

private:
    void write(const LogEntry &entry) override {
        json_.begin();
        json_.key("time");
        spelled_.clear();
        appendDate(spelled_, entry.record.stamp.date);
        spelled_ += 'T';
        appendTime(spelled_, entry.record.stamp.time);
        json_.text(spelled_);
        json_.key("level");
        json_.text(levelName(entry.record.level));
        json_.key("module");
        writeText(entry.record.module);
        json_.key("id").Uint(entry.record.messageId);

        json_.key("arguments").StartArray();
        for (const Argument &argument : entry.arguments) {
            json_.writer().StartObject();
            json_.key("type").String(argumentTypes[argument.type].name);
            json_.key("value");
            writeValue(argument);
            json_.writer().EndObject();
        }
        json_.writer().EndArray();

        json_.key("text");
        writeMessage(entry);
        json_.key("file");
        json_.text(entry.file);
        json_.key("offset").Uint64(entry.offset);
        json_.end(out_);
    }

    void writeMessage(const LogEntry &entry) {
        if (!entry.wording) {
            json_.writer().Null();
            return;
        }
        message_.clear();
        named_.resize(entry.arguments.size());
        entry.wording->append(message_, entry.arguments, spelling_, named_);
        json_.text(message_);
    }

    void writeText(std::string_view bytes) {
        spelled_.clear();
        spelling_.append(spelled_, bytes);
        json_.text(spelled_);
    }

    void writeValue(const Argument &argument) {
        const char character = static_cast<char>(argument.bits);
        spelled_.clear();
        switch (argument.type) {
        case Char:
            writeTextValue({&character, 1});
            break;
        case String:
            writeTextValue({argument.data, argument.length});
            break;
        case ByteArray:
            appendHex(spelled_, {argument.data, argument.length}, "");
            json_.text(spelled_);
            break;
        case Word:
        case DWord:
            json_.writer().Uint64(argument.bits);
            break;
        case Double:
            writeDouble(std::bit_cast<double>(argument.bits));
            break;
        case Date:
            appendDate(spelled_, argument.date);
            json_.text(spelled_);
            break;
        case Int64:
        case UInt64:
        case Time:
            appendArgument(spelled_, argument);
            json_.text(spelled_);
            break;
        default:
            appendArgument(spelled_, argument);
            json_.writer().RawValue(spelled_.data(), spelled_.size(), rapidjson::kNumberType);
            break;
        }
    }

    // Bytes that are no text are told as well.
    void writeTextValue(std::string_view bytes) {
        writeText(bytes);
        if (spelling_.isText(bytes))
            return;
        json_.key("bytes");
        spelled_.clear();
        appendHex(spelled_, bytes, "");
        json_.text(spelled_);
    }

    // In the fewest digits that give the same value again.
    void writeDouble(double value) {
        char digits[32];
        const auto length =
            static_cast<std::size_t>(std::to_chars(digits, std::end(digits), value).ptr - digits);
        if (std::isfinite(value))
            json_.writer().RawValue(digits, length, rapidjson::kNumberType);
        else
            json_.text(std::string(digits, length));
    }

    Spelling spelling_;
    JsonLines json_;
    std::string spelled_;
    std::string message_;
    std::vector<bool> named_;
};

class StatsOutput : public LogOutput {
public:
    StatsOutput(const CodePage &codePage, Form form) : spelling_(codePage, form), form_(form) {}

    bool needsWording() const override { return false; }

    void finish() override {
        if (form_ == Form::line)
            out_ += "     RECORDS          BYTES  LEVEL    MODULE\n";
        Count total;
        for (const auto &[module, counts] : modules_) {
            std::string name;
            spelling_.append(name, module);
            for (const auto &[level, count] : counts) {
                form_ == Form::line ? writeRow(count, levelName(level), name)
                                    : writeObject(count, levelName(level), name);
                total.records += count.records;
                total.bytes += count.bytes;
            }
        }
        if (form_ == Form::line)
            writeRow(total, "total", "");
    }

private:
    struct Count {
        uint64_t records = 0;
        uint64_t bytes = 0;
    };

    void write(const LogEntry &entry) override {
        auto found = modules_.find(entry.record.module);
        if (found == modules_.end())
            found = modules_.emplace(entry.record.module, std::map<uint8_t, Count>{}).first;
        Count &count = found->second[entry.record.level];
        count.records += 1;
        count.bytes += entry.record.size;
    }

    void writeRow(const Count &count, const std::string &level, const std::string &module) {
        char numbers[80];
        snprintf(numbers, sizeof numbers, "%12" PRIu64 " %14" PRIu64 "  %-8s ", count.records,
                 count.bytes, level.c_str());
        out_.append(numbers).append(module);
        out_.erase(out_.find_last_not_of(' ') + 1);
        out_ += '\n';
    }

    void writeObject(const Count &count, const std::string &level, const std::string &module) {
        json_.begin();
        json_.key("module");
        json_.text(module);
        json_.key("level");
        json_.text(level);
        json_.key("records").Uint64(count.records);
        json_.key("bytes").Uint64(count.bytes);
        json_.end(out_);
    }

    Spelling spelling_;
    Form form_;
    JsonLines json_;
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
