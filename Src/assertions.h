// assertions.h: how every room reports a broken precondition, a failed allocation or a failed read.
// A file names its module once, `constexpr Assertions asserts{"Src/utiList"};`, and the line of the
// report is that of the call.
#pragma once

#include "uti.h"

namespace uti {

struct Assertions {
    const char *sourcePath;

    void report(int line = __builtin_LINE()) const { TraceExAssert(sourcePath, line); }

    // Reports and gives back the failure value: `return asserts.fail(UTI_PARSER_BAD_VALUE);`
    template <class Result>
    Result fail(Result result, int line = __builtin_LINE()) const {
        TraceExAssert(sourcePath, line);
        return result;
    }
};

} // namespace uti
