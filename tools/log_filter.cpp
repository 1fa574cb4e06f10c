// log_filter.cpp: moments read and compared, records chosen.
#include "tools/log_filter.h"

#include <algorithm>
#include <chrono>

namespace uti::tool {

namespace {

constexpr int32_t minute = 60;
constexpr int32_t hour = 60 * minute;

int32_t dayKey(int year, unsigned month, unsigned day) {
    return year * 512 + static_cast<int32_t>(month * 32 + day);
}

bool take(std::string_view &text, char character) {
    if (!text.starts_with(character))
        return false;
    text.remove_prefix(1);
    return true;
}

// Takes a number of exactly so many digits, at most `most`; -1 when there is none.
int32_t takeNumber(std::string_view &text, std::size_t digits, int32_t most) {
    int32_t value = 0;
    for (std::size_t i = 0; i < digits; ++i) {
        if (i >= text.size() || text[i] < '0' || text[i] > '9')
            return -1;
        value = 10 * value + (text[i] - '0');
    }
    text.remove_prefix(digits);
    return value <= most ? value : -1;
}

std::optional<int32_t> takeDay(std::string_view &text) {
    const int32_t year = takeNumber(text, 4, 9999);
    const int32_t month = take(text, '-') ? takeNumber(text, 2, 12) : -1;
    const int32_t day = take(text, '-') ? takeNumber(text, 2, 31) : -1;
    if (year < 0 || month < 0 || day < 0)
        return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year(year),
                                           std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day))};
    if (!date.ok())
        return std::nullopt;
    return dayKey(year, static_cast<unsigned>(month), static_cast<unsigned>(day));
}

std::optional<int32_t> takeTime(std::string_view &text, Edge edge) {
    const int32_t hours = takeNumber(text, 2, 23);
    const int32_t minutes = take(text, ':') ? takeNumber(text, 2, 59) : -1;
    int32_t seconds = edge == Edge::until ? minute - 1 : 0;
    if (take(text, ':'))
        seconds = takeNumber(text, 2, 59);
    if (hours < 0 || minutes < 0 || seconds < 0)
        return std::nullopt;
    return hours * hour + minutes * minute + seconds;
}

// Negative, 0 or positive for a record before, at or after a moment.
int32_t compare(const Stamp &stamp, const Moment &moment) {
    const int32_t day = dayKey(stamp.date.year, stamp.date.month, stamp.date.day);
    if (moment.day && day != *moment.day)
        return day - *moment.day;
    return stamp.time.hour * hour + stamp.time.minute * minute + stamp.time.second - moment.second;
}

} // namespace

std::optional<Moment> parseMoment(std::string_view text, Edge edge) {
    Moment moment{std::nullopt, edge == Edge::until ? 24 * hour - 1 : 0};
    if (text.find('-') != std::string_view::npos) {
        moment.day = takeDay(text);
        if (!moment.day)
            return std::nullopt;
        if (text.empty())
            return moment;
        if (!take(text, ' ') && !take(text, 'T'))
            return std::nullopt;
    }
    const std::optional<int32_t> second = takeTime(text, edge);
    if (!second || !text.empty())
        return std::nullopt;
    moment.second = *second;
    return moment;
}

bool LogFilter::passes(const TraceRecord &record) const {
    return record.level <= mostLevel &&
           (modules.empty() || std::ranges::find(modules, record.module) != modules.end()) &&
           (!since || compare(record.stamp, *since) >= 0) &&
           (!until || compare(record.stamp, *until) <= 0);
}

} // namespace uti::tool
