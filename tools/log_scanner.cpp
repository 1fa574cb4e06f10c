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

LogScanner::Found LogScanner::passedOver() {
    const uint64_t end = bufferOffset_ + position_;
    const Found found{cutAtEnd_ ? Kind::cut : Kind::damaged, foundEnd_, end - foundEnd_, {}};
    foundEnd_ = end;
    cutAtEnd_ = false;
    return found;
}

LogScanner::Found LogScanner::next(Ahead ahead) {
    for (;;) {
        const uint64_t offset = bufferOffset_ + position_;
        const bool atEnd = position_ == buffer_.size();
        const Reading reading = atEnd ? Reading::cut : read(rest());
        if (foundEnd_ < offset && (reading == Reading::whole || (atEnd && ahead == Ahead::nothing)))
            return passedOver();

        if (reading == Reading::whole) {
            position_ += record_.size;
            foundEnd_ = offset + record_.size;
            return {Kind::record, offset, record_.size, record_};
        }
        if (reading == Reading::damaged) {
            position_ += seek(Stop::atWholeOrCut);
            continue;
        }
        if (atEnd || ahead == Ahead::bytes)
            return {};

        const std::size_t distance = seek(Stop::atWhole);
        const bool found = distance < buffer_.size() - position_;
        if (!found && ahead == Ahead::unknown)
            return {};
        cutAtEnd_ = !found && foundEnd_ == offset;
        position_ += distance;
    }
}

} // namespace uti::tool
