// log_scanner.cpp: records and damage, in the order of the log.
#include "tools/log_scanner.h"

namespace uti::tool {

void LogScanner::append(std::span<const uint8_t> bytes) {
    buffer_.erase(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(position_));
    bufferOffset_ += position_;
    position_ = 0;
    buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
    budget_ += bytes.size();
}

// The distance to the next place behind the present one where a record stands; to the end of the
// bytes when there is none.
std::size_t LogScanner::seek(Stop stop) {
    const std::span<const uint8_t> bytes = rest();
    for (std::size_t at = 1; at < bytes.size(); ++at) {
        at += findRecord(bytes.subspan(at));
        const Reading reading = read(bytes.subspan(at));
        if (reading == Reading::whole || (reading == Reading::cut && stop == Stop::atWholeOrCut))
            return at;
    }
    return bytes.size();
}

LogScanner::Look LogScanner::look() {
    const std::span<const uint8_t> bytes = rest();
    if (bytes.size() > 1 && bytes[0] == '\r' && bytes[1] == '\n')
        return Look::linesOfText;
    const LogKind other = kind_ == LogKind::trace ? LogKind::monitoring : LogKind::trace;
    TraceRecord record;
    return readRecord(bytes, other, budget_, record) == Reading::whole ? Look::otherKind
                                                                       : Look::unknown;
}

LogScanner::Found LogScanner::pending() const {
    const uint64_t size = bufferOffset_ + position_ - foundEnd_;
    const Kind kind = size == 0 ? Kind::none : cutAtEnd_ ? Kind::cut : Kind::damaged;
    return {kind, foundEnd_, size, look_};
}

LogScanner::Found LogScanner::next(Ahead ahead) {
    for (;;) {
        const uint64_t offset = bufferOffset_ + position_;
        const bool atEnd = position_ == buffer_.size();
        const Reading reading = atEnd ? Reading::cut : read(rest());
        if (foundEnd_ < offset &&
            (reading == Reading::whole || (atEnd && ahead == Ahead::nothing))) {
            const Found passedOver = pending();
            foundEnd_ = offset;
            cutAtEnd_ = false;
            return passedOver;
        }

        if (reading == Reading::whole) {
            position_ += record_.size;
            foundEnd_ = offset + record_.size;
            return {Kind::record, offset, record_.size, Look::unknown, record_};
        }
        if (foundEnd_ == offset && !atEnd)
            look_ = look();
        if (reading == Reading::damaged) {
            position_ += seek(Stop::atWholeOrCut);
            continue;
        }
        if (atEnd || ahead == Ahead::bytes)
            return {Kind::none, offset, 0};

        const std::size_t distance = seek(Stop::atWhole);
        const bool found = distance < buffer_.size() - position_;
        if (!found && ahead == Ahead::unknown)
            return {Kind::none, offset, 0};
        cutAtEnd_ = !found && foundEnd_ == offset;
        position_ += distance;
    }
}

} // namespace uti::tool
