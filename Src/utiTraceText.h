// utiTraceText.h: the text form of a record in pieces, for whoever puts it together: the trace log
// itself (utiTraceText.cpp) and readers of binary records. The form is told in docs/formats.md.
#pragma once

#include "Src/utiTraceArguments.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace uti {

// Room for the text of any argument that is neither a text nor a byte array.
inline constexpr std::size_t argumentTextSize = 1024;

// The wording that no resources are asked for, or null.
const char *builtInWording(std::string_view module, uint16_t messageId);

// Forms the text of an argument that is neither a text nor a byte array at `out`, where there is
// room for any; returns its length.
uint32_t formatValue(const Argument &argument, char *out);

// Takes a message apart: `writeSlice` gets the text around the placeholders, also when it is empty,
// `writeArgument` the number of each argument that one names. A placeholder without an argument
// gives nothing, an unclosed one drops the rest. Both return 0 or the code that ends the message.
template <class WriteSlice, class WriteArgument>
int32_t expandMessage(std::string_view format, uint32_t argumentCount, WriteSlice writeSlice,
                      WriteArgument writeArgument) {
    int32_t result = UTI_OK;
    while (result == UTI_OK && !format.empty()) {
        const std::size_t open = format.find('{');
        result = writeSlice(std::string_view(format.data(), std::min(open, format.size())));
        if (result != UTI_OK || open == std::string_view::npos)
            break;

        format.remove_prefix(open + 1);
        std::size_t close = 1;
        long number;
        if (format.size() > 1 && format[1] == '}' && format[0] >= '0' && format[0] <= '9') {
            number = format[0] - '0'; // nearly all are of one digit
        } else {
            close = format.find('}');
            if (close == std::string_view::npos)
                break;
            number = std::strtol(format.data(), nullptr, 10);
        }
        format.remove_prefix(close + 1);

        if (number >= 0 && static_cast<unsigned long>(number) < argumentCount)
            result = writeArgument(static_cast<uint32_t>(number));
    }
    return result;
}

} // namespace uti
