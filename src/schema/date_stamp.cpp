#include "schema/date_stamp.hpp"

#include <time.h>

#include <cstdio>
#include <ctime>

namespace lorekeep {

namespace {

// The characters from 1-based position `from` to `to` (inclusive), cut at the end.
TextView characters(TextView text, std::size_t from, std::size_t to) {
    if (from > text.size() || to < from) {
        return {};
    }
    return text.substr(from - 1, to - from + 1);
}

Text ascii(const char* s) {
    Text out;
    for (; *s != '\0'; ++s) {
        out.push_back(static_cast<char16_t>(*s));
    }
    return out;
}

}  // namespace

Text formatDateStamp(TextView ddmmyyyy) {
    Text stamp;
    stamp.append(characters(ddmmyyyy, 7, ddmmyyyy.size()));
    stamp.push_back(u'-');
    stamp.append(characters(ddmmyyyy, 4, 5));
    stamp.push_back(u'-');
    stamp.append(characters(ddmmyyyy, 1, 2));
    return stamp;
}

Text formatDateStamp(const LocalDateTime& date) {
    char buffer[48];
    std::snprintf(buffer, sizeof buffer, "%02d/%02d/%04d", date.day, date.month, date.year);
    return formatDateStamp(ascii(buffer));
}

Text formatTimeStamp(const LocalDateTime& time) {
    char buffer[48];
    std::snprintf(buffer, sizeof buffer, "%02d:%02d:%02d", time.hour, time.minute, time.second);
    return ascii(buffer);
}

LocalDateTime SystemClock::now() const {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    LocalDateTime result;
    result.year = local.tm_year + 1900;
    result.month = local.tm_mon + 1;
    result.day = local.tm_mday;
    result.hour = local.tm_hour;
    result.minute = local.tm_min;
    result.second = local.tm_sec;
    return result;
}

}  // namespace lorekeep
