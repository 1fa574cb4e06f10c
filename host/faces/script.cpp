// script.cpp: reading key scripts, line by line, word by word.
#include "host/faces/script.h"

#include "common/keys.h"
#include "common/utf8.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <optional>
#include <sstream>

namespace uti::host {

namespace {

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

// A key by its name, by its digit, or by its code of two digits or more.
std::optional<uint8_t> keyOf(std::string_view word) {
    for (const Key &key : keys)
        if (key.name && key.name == word)
            return key.toolkit;
    if (word.size() == 1 && isDigit(word[0]))
        return static_cast<uint8_t>(word[0]);
    uint8_t code = 0;
    const auto [end, error] = std::from_chars(word.begin(), word.end(), code);
    const bool isCode = word.size() > 1 && error == std::errc{} && end == word.end() && code > 0;
    return isCode ? std::optional(code) : std::nullopt;
}

struct Word {
    std::string text;   // of a quoted one, what the quotes mean
    std::size_t at = 0; // first byte in the line
    bool isQuoted = false;
};

// What went wrong, and at which byte of the line.
struct Mistake {
    std::size_t at;
    std::string what;
};

// One line of a script. Whatever asks for more than the line has gets nothing, and the first
// mistake stays.
class Line {
public:
    Line(std::string_view text) : text_(text) { skipBlanks(); }

    bool atEnd() const { return at_ == text_.size(); }
    std::size_t at() const { return at_; }
    const std::optional<Mistake> &mistake() const { return mistake_; }
    bool fail(std::size_t at, std::string what) {
        if (!mistake_)
            mistake_ = Mistake{at, std::move(what)};
        return false;
    }

    Word word() {
        Word word{"", at_, !atEnd() && text_[at_] == '"'};
        if (word.isQuoted)
            quoted(word);
        while (!word.isQuoted && !atEnd() && !isBlank(text_[at_]))
            word.text += text_[at_++];
        skipBlanks();
        return word;
    }
    // The word that has to come next.
    bool expect(std::string_view wanted) {
        const Word found = word();
        return (found.text == wanted && !found.isQuoted) ||
               fail(found.at, "expected \"" + std::string(wanted) + '"');
    }
    std::string quotedText() {
        const Word found = word();
        if (!found.isQuoted)
            fail(found.at, "expected a text in quotes");
        return found.text;
    }
    // A time such as 500ms, 5s or 2m.
    uint32_t milliseconds() {
        const Word found = word();
        uint32_t count = 0;
        const char *end = found.text.data() + found.text.size();
        const auto [unit, error] = std::from_chars(found.text.data(), end, count);
        const std::string_view rest(unit, static_cast<std::size_t>(end - unit));
        const uint32_t factor = rest == "ms" ? 1u : rest == "s" ? 1000u : rest == "m" ? 60000u : 0u;
        if (error != std::errc{} || factor == 0 || count > longestAdvance / factor)
            fail(found.at, "expected a time such as 500ms, 5s or 2m, up to a day");
        return count * factor;
    }
    Point point() {
        const Word found = word();
        Point point;
        const char *end = found.text.data() + found.text.size();
        auto [next, error] = std::from_chars(found.text.data(), end, point.x);
        if (error == std::errc{} && next != end && *next == ',')
            error = std::from_chars(next + 1, end, point.y).ptr == end
                        ? error
                        : std::errc::invalid_argument;
        else
            error = std::errc::invalid_argument;
        constexpr int most = 10000;
        if (error != std::errc{} || std::abs(point.x) > most || std::abs(point.y) > most)
            fail(found.at, "expected a point such as 120,80");
        return point;
    }
    std::string fileName() {
        constexpr std::string_view allowed =
            "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_";
        const Word found = word();
        if (found.text.empty() || found.text.find_first_not_of(allowed) != std::string::npos)
            fail(found.at, "expected a name of letters, digits, - and _");
        return found.text;
    }

private:
    static bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }
    void skipBlanks() {
        while (!atEnd() && isBlank(text_[at_]))
            ++at_;
    }
    void quoted(Word &word) {
        for (++at_; !atEnd() && text_[at_] != '"'; ++at_) {
            if (text_[at_] != '\\') {
                word.text += text_[at_];
                continue;
            }
            constexpr std::string_view names = "nrt\"\\", meanings = "\n\r\t\"\\";
            const std::size_t which =
                ++at_ < text_.size() ? names.find(text_[at_]) : std::string_view::npos;
            if (which == std::string_view::npos) {
                at_ = std::min(at_, text_.size());
                fail(at_ - 1, "expected one of \\n, \\r, \\t, \\\" and \\\\");
                break;
            }
            word.text += meanings[which];
        }
        if (atEnd())
            fail(word.at, "the text has no closing quote");
        else
            ++at_;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::optional<Mistake> mistake_;
};

class Parser {
public:
    Parser(Script &script, Diagnostics &diagnostics) : script_(script), diagnostics_(diagnostics) {}

    void parseLine(uint32_t number, std::string_view text) {
        place_ = {number, 1};
        text_ = text;
        counted_ = 0;
        Line line(text);
        if (line.atEnd() || text[line.at()] == '#')
            return;
        parseCommand(line);
        if (!line.mistake() && !line.atEnd())
            line.fail(line.at(), "expected the end of the line");
        if (const auto &mistake = line.mistake())
            diagnostics_.error(placeOf(mistake->at), mistake->what);
    }

private:
    using Kind = ScriptCommand::Kind;

    // Goes on from the place asked for last; a line is read forward.
    ScriptPlace placeOf(std::size_t at) {
        if (at < counted_) {
            counted_ = 0;
            place_.column = 1;
        }
        place_.column +=
            static_cast<uint32_t>(countCharacters(text_.substr(counted_, at - counted_)));
        counted_ = at;
        return place_;
    }
    ScriptCommand &add(Kind kind, std::size_t at) {
        return script_.commands.emplace_back(ScriptCommand{kind, placeOf(at)});
    }
    void addEvent(std::size_t at, const Event &event) { add(Kind::event, at).event = event; }

    void parseCommand(Line &line) {
        const Word name = line.word();
        const std::string &is = name.text;
        if (name.isQuoted)
            line.fail(name.at, "expected a command");
        else if (is == "key")
            keys(line, Event::Kind::key);
        else if (is == "keyboard")
            keys(line, Event::Kind::keyboard);
        else if (is == "type")
            characters(line);
        else if (is == "pen")
            pen(line);
        else if (is == "close")
            addEvent(name.at, {.kind = Event::Kind::close});
        else if (is == "advance")
            add(Kind::advance, name.at).milliseconds = line.milliseconds();
        else if (is == "wait") {
            line.expect("text");
            ScriptCommand &command = add(Kind::waitText, name.at);
            command.text = line.quotedText();
            command.milliseconds = line.milliseconds();
        } else if (is == "expect") {
            const Word what = line.word();
            if (what.text == "fits") {
                add(Kind::expectFits, name.at);
                return;
            }
            if (what.text == "shot") {
                add(Kind::expectShot, name.at).text = line.fileName();
                return;
            }
            if (what.text == "no")
                line.expect("text");
            else if (what.text != "text")
                line.fail(what.at, "expected \"text\", \"no text\", \"fits\" or \"shot\"");
            add(what.text == "no" ? Kind::expectNoText : Kind::expectText, name.at).text =
                line.quotedText();
        } else if (is == "shot" || is == "dump")
            add(is == "shot" ? Kind::shot : Kind::dump, name.at).text = line.fileName();
        else if (is == "paper")
            choice(line, name.at, {{"out", Kind::paperOut}, {"in", Kind::paperIn}});
        else if (is == "ports")
            choice(line, name.at, {{"fail", Kind::portsFail}, {"work", Kind::portsWork}});
        else if (is == "modem") {
            ScriptCommand &command = add(Kind::modem, name.at);
            line.expect("expect");
            command.text = line.quotedText();
            const Word next = line.word();
            const bool isLater = next.text == "after" && !next.isQuoted;
            if (isLater) {
                command.milliseconds = line.milliseconds();
                line.expect("reply");
            } else if (next.text != "reply" || next.isQuoted)
                line.fail(next.at, "expected \"reply\" or \"after\"");
            command.reply = line.quotedText();
        } else
            line.fail(name.at, "unknown command \"" + is + '"');
    }

    void choice(Line &line, std::size_t at,
                std::initializer_list<std::pair<std::string_view, Kind>> choices) {
        const Word found = line.word();
        std::string names;
        for (const auto &[name, kind] : choices) {
            if (found.text == name) {
                add(kind, at);
                return;
            }
            names += (names.empty() ? "\"" : " or \"") + std::string(name) + '"';
        }
        line.fail(found.at, "expected " + names);
    }

    void keys(Line &line, Event::Kind kind) {
        do {
            const Word word = line.word();
            const auto key = keyOf(word.text);
            if (!key)
                line.fail(word.at, "unknown key \"" + word.text + '"');
            else
                addEvent(word.at, {.kind = kind, .key = *key});
        } while (!line.atEnd() && !line.mistake());
    }

    void characters(Line &line) {
        const std::size_t at = line.at();
        const std::string text = line.quotedText();
        for (std::string_view rest(text); !rest.empty() && !line.mistake();) {
            const char32_t character = takeCharacter(rest);
            if (character < ' ' || character == replacementCharacter)
                line.fail(at, "the text holds a character that cannot be typed");
            else
                addEvent(at, {.kind = Event::Kind::character, .character = character});
        }
    }

    void pen(Line &line) {
        Event event{.kind = Event::Kind::penDown};
        std::size_t at = line.at();
        do {
            at = line.at();
            event.at = line.point();
            addEvent(at, event);
            event.kind = Event::Kind::penMove;
        } while (!line.atEnd() && !line.mistake());
        event.kind = Event::Kind::penUp;
        addEvent(at, event);
    }

    Script &script_;
    Diagnostics &diagnostics_;
    std::string_view text_;
    ScriptPlace place_; // of the byte `counted_` of the line
    std::size_t counted_ = 0;
};

} // namespace

std::string keyName(uint8_t key) {
    for (const Key &each : keys)
        if (each.name && each.toolkit == key)
            return each.name;
    if (isDigit(static_cast<char>(key)))
        return std::string(1, static_cast<char>(key));
    // Of one digit it would be the key with that digit.
    return (key < 10 ? "0" : "") + std::to_string(key);
}

void Script::report(ScriptPlace place, std::string_view what) const {
    std::ostringstream out;
    FindingPrinter(source, out).print({Severity::error, "", place, std::string(what)});
    std::fputs(out.str().c_str(), stderr); // std::cerr may not be there yet, or no more
}

ScriptPlace Script::end() const {
    const std::string_view text(source.text());
    const auto lines = std::ranges::count(text.substr(0, text.find_last_not_of('\n') + 1), '\n');
    return {static_cast<uint32_t>(lines) + 1, 1};
}

Script parseScript(std::string path, std::string source) {
    Diagnostics diagnostics(std::move(path), std::move(source));
    Script script{diagnostics.source()};
    Parser parser(script, diagnostics);
    std::string_view rest = diagnostics.text();
    if (rest.starts_with(byteOrderMark))
        rest.remove_prefix(byteOrderMark.size());
    for (uint32_t number = 1; !rest.empty(); ++number) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        parser.parseLine(number, line);
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    }
    std::ostringstream out;
    diagnostics.print(out);
    std::fputs(out.str().c_str(), stderr);
    script.isValid = !diagnostics.hasErrors();
    return script;
}

} // namespace uti::host
