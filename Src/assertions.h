// assertions.h: how every room reports a broken precondition, a failed allocation or a failed read.
// A file names its module once, `constexpr Assertions<"Src/utiList"> asserts;`, and the line of the
// report is that of the call.
#pragma once

#include "uti.h"

#include <algorithm>
#include <cstddef>

namespace uti {

template <std::size_t size>
struct SourcePath {
    char text[size];

    consteval SourcePath(const char (&path)[size]) { std::copy_n(path, size, text); }
};

template <SourcePath path>
struct Assertions {
    // Once for each module: what calls it is in every room and brings the line alone.
    [[gnu::cold, gnu::noinline]] static void report(int line = __builtin_LINE()) {
        TraceExAssert(path.text, line);
    }

    // Reports and gives back the failure value: `return asserts.fail(UTI_PARSER_BAD_VALUE);`
    template <class Result>
    static Result fail(Result result, int line = __builtin_LINE()) {
        report(line);
        return result;
    }
};

} // namespace uti
