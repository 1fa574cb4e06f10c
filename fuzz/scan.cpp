// Logs of any bytes as `uti log` reads them: every byte counted once, in whatever pieces they come,
// and the same found in all of them, but for what reading a log that grows cannot know yet.
#include "fuzz/harness.h"

#include "tests/state.h"
#include "tools/log_scanner.h"

#include <algorithm>
#include <vector>

using namespace fuzz;
using namespace uti;
using namespace uti::tool;
using Ahead = LogScanner::Ahead;
using Kind = LogScanner::Kind;

namespace {

using Findings = std::vector<std::pair<Kind, uint64_t>>;

Findings scan(const support::ExactBlock &block, std::size_t piece, Ahead ahead, LogKind kind) {
    const std::span bytes(reinterpret_cast<const uint8_t *>(block.data()), block.size());
    LogScanner scanner(kind);
    Findings found;
    std::size_t given = 0;
    for (uint64_t end = 0; end < bytes.size();) {
        LogScanner::Found next = scanner.next(given == bytes.size() ? Ahead::nothing : ahead);
        if (next.kind == Kind::none) {
            const std::size_t count = std::min(piece, bytes.size() - given);
            REQUIRE(count > 0);
            scanner.append(bytes.subspan(given, count));
            given += count;
            continue;
        }
        REQUIRE(next.offset == end && next.size > 0);
        end += next.size;
        found.emplace_back(next.kind, end);
        Argument item;
        UnreadItems items = next.record.arguments;
        while (next.kind == Kind::record && items.claimed > 0)
            REQUIRE(items.take(item) == Reading::whole);
    }
    return found;
}

// From where to where in the log.
using Span = std::pair<uint64_t, uint64_t>;

std::vector<Span> records(const Findings &findings) {
    std::vector<Span> spans;
    uint64_t start = 0;
    for (const auto &[found, end] : findings) {
        if (found == Kind::record)
            spans.emplace_back(start, end);
        start = end;
    }
    return spans;
}

} // namespace

void fuzz::run(Input &in) {
    const LogKind kind = in.oneIn(2) ? LogKind::monitoring : LogKind::trace;
    const std::size_t piece = 1 + in.below(40);
    const support::ExactBlock block(in.takeRest());
    const Findings whole = scan(block, block.size(), Ahead::bytes, kind);
    REQUIRE(scan(block, piece, Ahead::bytes, kind) == whole);

    // A record whose end has not come is given up for a whole one behind its beginning, which may
    // be one of its texts, and for nothing else.
    const std::vector<Span> followed = records(scan(block, piece, Ahead::unknown, kind));
    for (const Span &record : records(whole))
        REQUIRE(std::ranges::any_of(followed, [&](const Span &other) {
            return other.first < record.second && record.first < other.second;
        }));
}
