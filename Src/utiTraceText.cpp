// utiTraceText.cpp: a trace record as a line of text, for files, the serial port and the printer.
// The wording is a resource string with placeholders {0}, {1}, ...; the assertion's is built in.
#include "utiTraceText.h"

#include "platform.h"
#include "utiTraceEx.h"

#include <bit>
#include <cstdio>

namespace uti {

namespace {

constexpr std::size_t textSize = argumentTextSize;

// The bytes of a byte array stand on one line but are written in pieces: 17, then 16 at a time.
constexpr uint32_t firstPieceBytes = 17;
constexpr uint32_t pieceBytes = 16;

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

// Writes or prints a slice of a longer text; the printer gets it in pieces of its own.
int32_t writeSlice(std::string_view slice) {
    if (!printing())
        return traceWriteOut(slice.data(), static_cast<uint32_t>(slice.size()));

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

int32_t writeByteArray(const Argument &argument) {
    const char *format = printing() ? "0x%02X " : "%02X ";
    uint32_t done = 0;
    int32_t result = UTI_OK;
    while (done < argument.length && result == UTI_OK) {
        const uint32_t most = done == 0 ? firstPieceBytes : pieceBytes;
        const uint32_t end = argument.length - done < most ? argument.length : done + most;
        char piece[textSize];
        uint32_t length = 0;
        for (; done < end; ++done)
            length += static_cast<uint32_t>(snprintf(piece + length, textSize - length, format,
                                                     static_cast<uint8_t>(argument.data[done])));
        result = writeTerminated(piece, length);
    }
    return result;
}

int32_t writeArgument(const Argument &argument) {
    if (argument.type == String)
        return argument.data ? writeTerminated(argument.data, argument.length) : UTI_OK;
    if (argument.type == ByteArray)
        return writeByteArray(argument);

    char text[textSize];
    const uint32_t length = formatValue(argument, text);
    return writeTerminated(text, length);
}

int32_t writeHeader(const char *module, const RecordItems &items) {
    const TerminalDate date = items[0].date;
    const TerminalTime time = items[1].time;
    char text[textSize];
    const int length =
        snprintf(text, textSize, "\r\n%02d-%02d-%02d %02d:%02d:%02d [%s] ", date.year % 100,
                 date.month, date.day, time.hour, time.minute, time.second, module ? module : "");
    const auto count = static_cast<std::size_t>(length);
    return writeTerminated(text, static_cast<uint32_t>(count < textSize ? count : textSize - 1));
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

uint32_t formatValue(const Argument &argument, char (&out)[argumentTextSize]) {
    const auto integer = [&](auto value) {
        return snprintf(out, textSize, "%ld", static_cast<long>(value));
    };
    int length = 0;
    switch (argument.type) {
    case Char:
        length = snprintf(out, textSize, "'%c'", static_cast<char>(argument.bits));
        break;
    case Byte:
        length = integer(static_cast<uint8_t>(argument.bits));
        break;
    case Bool:
        length =
            snprintf(out, textSize, "%s", static_cast<uint8_t>(argument.bits) ? "true" : "false");
        break;
    case Short:
    case Word:
        length = integer(static_cast<int16_t>(argument.bits));
        break;
    case Long:
    case DWord:
        length = integer(static_cast<int32_t>(argument.bits));
        break;
    case Int64:
        Int64ToStr(static_cast<int64_t>(argument.bits), out, textSize);
        return static_cast<uint32_t>(strnlen(out, textSize));
    case UInt64:
        UInt64ToStr(argument.bits, out, textSize);
        return static_cast<uint32_t>(strnlen(out, textSize));
    case Double:
        length = snprintf(out, textSize, "%f", std::bit_cast<double>(argument.bits));
        break;
    case Date:
        length = snprintf(out, textSize, "%02d-%02d-%02d", argument.date.year % 100,
                          argument.date.month, argument.date.day);
        break;
    default:
        length = snprintf(out, textSize, "%02d:%02d:%02d", argument.time.hour, argument.time.minute,
                          argument.time.second);
        break;
    }
    return static_cast<uint32_t>(length);
}

int32_t traceWriteText(const char *module, uint16_t messageId, const RecordItems &items) {
    const char *builtIn = builtInWording(module ? module : "", messageId);
    const char *format = builtIn ? builtIn : Resource_GetString(module, messageId);

    int32_t result = writeHeader(module, items);
    if (result == UTI_OK)
        result = writeMessage(format, items);

    if (!builtIn && format != ResourceEmptyStr)
        Resource_Release(module, messageId);
    return result;
}

} // namespace uti
