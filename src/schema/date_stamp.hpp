#pragma once

#include "markup/text.hpp"

namespace lorekeep {

// A local calendar date and wall-clock time, read once per save.
struct LocalDateTime {
    int year = 2000;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// Turns a date written as dd?mm?yyyy into yyyy-mm-dd by character position
// alone, so the two separator characters do not matter. A text too short to
// hold a piece gives that piece empty.
Text formatDateStamp(TextView ddmmyyyy);

// Writes the date as dd/mm/yyyy and takes it apart as above.
Text formatDateStamp(const LocalDateTime& date);

// HH:MM:SS on the 24-hour clock.
Text formatTimeStamp(const LocalDateTime& time);

// Where "now" comes from; the program reads the local clock, tests a fixed value.
class Clock {
  public:
    virtual ~Clock() = default;
    virtual LocalDateTime now() const = 0;
};

class SystemClock final : public Clock {
  public:
    LocalDateTime now() const override;
};

}  // namespace lorekeep
