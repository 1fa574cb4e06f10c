// utiTraceText.cpp: a trace record as a line of text, for files, the serial port and the printer.
// The wording is a resource string with placeholders {0}, {1}, ...; the assertion's is built in.
#include "Src/utiTraceText.h"

#include "Src/platform.h"
#include "Src/utiTraceEx.h"

#include <bit>
#include <cstdio>

namespace uti {

namespace {

constexpr std::size_t textSize = argumentTextSize;

// The bytes of a byte array stand on one line but are written in pieces: 17, then 16 at a time.
constexpr uint32_t firstPieceBytes = 17;
constexpr uint32_t pieceBytes = 16;

// The functions that put something at `out` return the address behind it. All of it fits the text
// buffer many times over.

char *putDecimal(char *out, int32_t number) {
    auto left = static_cast<uint32_t>(number);
    if (number < 0) {
        *out++ = '-';
        left = 0 - left;
    }
    char *end = out + 1;
    for (uint32_t rest = left; rest > 9; rest /= 10)
        ++end;
    for (char *at = end; at != out; left /= 10)
        *--at = static_cast<char>('0' + left % 10);
    return end;
}

// As "%02d" does.
char *putTwoDigits(char *out, int32_t number) {
    if (number < 0 || number > 99)
        return putDecimal(out, number);
    *out++ = static_cast<char>('0' + number / 10);
    *out++ = static_cast<char>('0' + number % 10);
    return out;
}

char *putTriple(char *out, int32_t first, int32_t second, int32_t third, char separator) {
    out = putTwoDigits(out, first);
    *out++ = separator;
    out = putTwoDigits(out, second);
    *out++ = separator;
    return putTwoDigits(out, third);
}

char *putDate(char *out, const TerminalDate &date) {
    return putTriple(out, date.year % 100, date.month, date.day, '-');
}

char *putTime(char *out, const TerminalTime &time) {
    return putTriple(out, time.hour, time.minute, time.second, ':');
}

char *putText(char *out, std::string_view text) {
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

bool printing() {
    return traceContext->settings.output == TRACE_OUTPUT_PRINTER;
}

int32_t tracePrintOut(const char *piece) {
    if (!printing())
        return UTI_OK;
    return Printer_PrintString(piece, 0) == 0 ? UTI_OK : UTI_TRACE_NOT_WRITTEN;
}

// Writes or prints a piece that has a terminator behind it.
int32_t writeTerminated(const char *text, uint32_t length) {
    return printing() ? tracePrintOut(text) : traceWriteOut(text, length);
}

// Prints a slice of the wording. The end of it goes to the printer as it stands, what is before a
// placeholder in pieces of its own.
int32_t printSlice(std::string_view slice) {
    if (slice.data()[slice.size()] == 0)
        return tracePrintOut(slice.data());

    int32_t result;
    do {
        char piece[textSize];
        const std::size_t count = std::min(slice.size(), textSize - 1);
        std::memcpy(piece, slice.data(), count);
        piece[count] = 0;
        slice.remove_prefix(count);
        result = tracePrintOut(piece);
    } while (result == UTI_OK && !slice.empty());
    return result;
}

int32_t writeSlice(std::string_view slice) {
    return printing() ? printSlice(slice)
                      : traceWriteOut(slice.data(), static_cast<uint32_t>(slice.size()));
}

// Writes or prints a piece that `form` forms where it is told to; it returns its length. That is in
// the buffer itself when there is room for the longest.
template <class Form>
int32_t writeFormed(Form form) {
    LogFile &file = traceContext->file;
    if (file.hasRoom(textSize)) {
        file.append(form(file.append(0)));
        return UTI_OK;
    }
    char text[textSize];
    const uint32_t length = form(text);
    return writeTerminated(text, length);
}

int32_t writeByteArray(Argument argument) { // a copy, for the time of all its pieces
    constexpr char digits[] = "0123456789ABCDEF";
    const std::string_view prefix = printing() ? "0x" : "";
    uint32_t done = 0;
    int32_t result = UTI_OK;
    while (done < argument.length && result == UTI_OK) {
        const uint32_t most = done == 0 ? firstPieceBytes : pieceBytes;
        const uint32_t end = argument.length - done < most ? argument.length : done + most;
        char piece[textSize];
        char *out = piece;
        for (; done < end; ++done) {
            const auto byte = static_cast<uint8_t>(argument.data[done]);
            out = putText(out, prefix);
            *out++ = digits[byte >> 4];
            *out++ = digits[byte & 0xF];
            *out++ = ' ';
        }
        *out = 0;
        result = writeTerminated(piece, static_cast<uint32_t>(out - piece));
    }
    return result;
}

int32_t writeArgument(const Argument &argument) {
    if (argument.type == String)
        return argument.data ? writeTerminated(argument.data, argument.length) : UTI_OK;
    if (argument.type == ByteArray)
        return writeByteArray(argument);

    return writeFormed([&](char *text) { return formatValue(argument, text); });
}

// What a header begins with, up to the module's name, formed once a second.
struct HeaderStart {
    Stamp stamp;
    uint32_t length;
    char text[32];

    std::string_view of(const Stamp &wanted) {
        if (length == 0 || std::memcmp(&stamp.date, &wanted.date, sizeof stamp.date) != 0 ||
            std::memcmp(&stamp.time, &wanted.time, sizeof stamp.time) != 0) {
            stamp = wanted;
            char *out = putText(text, "\r\n");
            out = putDate(out, stamp.date);
            *out++ = ' ';
            out = putTime(out, stamp.time);
            length = static_cast<uint32_t>(putText(out, " [") - text);
        }
        return {text, length};
    }
};

constinit HeaderStart headerStart{};

int32_t writeHeader(const RecordItems &items) {
    return writeFormed([&](char *text) {
        char *out = putText(text, headerStart.of({items[0].date, items[1].time}));

        // A name that does not fit is cut, and what follows it with it.
        const Argument module = items[4];
        const auto putCut = [&](std::string_view part) {
            const std::size_t room = textSize - 1 - static_cast<std::size_t>(out - text);
            out = putText(out, std::string_view(part.data(), std::min(part.size(), room)));
        };
        putCut(module.data ? std::string_view(module.data, module.length) : "");
        putCut("] ");
        *out = 0;
        return static_cast<uint32_t>(out - text);
    });
}

int32_t writeMessage(const char *format, const RecordItems &items) {
    return expandMessage(
        format, items.count() - RecordItems::headerCount, writeSlice,
        [&](uint32_t number) { return writeArgument(items[RecordItems::headerCount + number]); });
}

} // namespace

const char *builtInWording(std::string_view module, uint16_t messageId) {
    return messageId == 1 && module == "ASSERT" ? "ASSERT File: {0}  Line: {1}" : nullptr;
}

uint32_t formatValue(const Argument &argument, char *out) {
    char *end = out;
    switch (argument.type) {
    case Char:
        *end++ = '\'';
        *end++ = static_cast<char>(argument.bits);
        *end++ = '\'';
        break;
    case Byte:
        end = putDecimal(end, static_cast<uint8_t>(argument.bits));
        break;
    case Bool:
        end = putText(end, static_cast<uint8_t>(argument.bits) ? "true" : "false");
        break;
    case Short:
    case Word:
        end = putDecimal(end, static_cast<int16_t>(argument.bits));
        break;
    case Long:
    case DWord:
        end = putDecimal(end, static_cast<int32_t>(argument.bits));
        break;
    case Int64:
        Int64ToStr(static_cast<int64_t>(argument.bits), out, textSize);
        return static_cast<uint32_t>(strnlen(out, textSize));
    case UInt64:
        UInt64ToStr(argument.bits, out, textSize);
        return static_cast<uint32_t>(strnlen(out, textSize));
    case Double:
        return static_cast<uint32_t>(
            snprintf(out, textSize, "%f", std::bit_cast<double>(argument.bits)));
    case Date:
        end = putDate(end, argument.date);
        break;
    default:
        end = putTime(end, argument.time);
        break;
    }
    *end = 0;
    return static_cast<uint32_t>(end - out);
}

int32_t traceWriteText(const char *module, uint16_t messageId, const RecordItems &items) {
    const Argument &name = items[4];
    const char *builtIn = builtInWording({name.data, name.length}, messageId);
    const char *format = builtIn ? builtIn : Resource_GetString(module, messageId);

    int32_t result = writeHeader(items);
    if (result == UTI_OK)
        result = writeMessage(format, items);

    if (!builtIn && format != ResourceEmptyStr)
        Resource_Release(module, messageId);
    return result;
}

} // namespace uti
