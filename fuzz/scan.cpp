// Logs of any bytes as `uti log` reads them: every byte counted once, in whatever pieces they come,
// and the same found in all of them.
#include "fuzz/harness.h"

#include "tests/state.h"
#include "tools/log_scanner.h"

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

// A record of the trace log, or of the monitoring log, with arguments of any types.
std::string makeRecord(Input &in, LogKind kind) {
    std::string items("\x0B\x07\xEA\x0B\x10\x0C\x0B\x31\x23\x02", 10);
    const auto number = [&](std::size_t value, int size) {
        std::string bytes;
        for (int i = 0; i < size; ++i)
            bytes += static_cast<char>(value >> 8 * (kind == LogKind::trace ? size - 1 - i : i));
        return bytes;
    };
    items += static_cast<char>(1 + in.below(3));
    items += '\x05' + number(in.below(300), 2);
    const std::string module = in.bytes(6);
    items += '\x0D' + number(module.size(), 4) + module;
    for (uint32_t arguments = in.below(20); arguments > 0; --arguments) {
        const uint32_t type = 1 + in.below(14);
        const int sizes[] = {1, 1, 1, 2, 2, 4, 4, 8, 8, 8, 4, 3, 0, 0};
        items += static_cast<char>(type);
        const std::string text = type >= 13 ? in.bytes(30) : "";
        items += type >= 13 ? number(text.size(), 4) + text : number(in.number(), sizes[type - 1]);
    }
    return number(items.size(), 4) + items;
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
    Input in(data, size);
    const LogKind kind = in.oneIn(2) ? LogKind::monitoring : LogKind::trace;
    const std::size_t piece = 1 + in.below(40);
    std::string log;
    for (uint32_t records = in.below(6); records > 0; --records) {
        log += makeRecord(in, kind);
        if (in.oneIn(4))
            log += in.bytes(30);
        if (in.oneIn(4))
            log[in.below(65535) % log.size()] = static_cast<char>(in.byte());
        if (in.oneIn(8))
            log.resize(log.size() - in.below(20) % log.size());
    }
    log += in.takeRest();
    const support::ExactBlock block(log);
    const Findings whole = scan(block, log.size(), Ahead::bytes, kind);
    REQUIRE(scan(block, piece, Ahead::bytes, kind) == whole);
    REQUIRE(scan(block, piece, Ahead::unknown, kind) == whole);
    return 0;
}
