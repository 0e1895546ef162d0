#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>

#include "schema/date_stamp.hpp"
#include "schema/windows1252.hpp"

namespace lorekeep {
namespace {

// The stamp's pieces keep their fixed widths, which the reader's positions
// rely on: a dd.mm.yyyy date reads as the dd/mm/yyyy one.
TEST(DateStamp, KeepsFixedWidths) {
    EXPECT_EQ(formatDateStamp(u"14.03.2005"), u"2005-03-14");
    EXPECT_EQ(formatDateStamp(LocalDateTime{987, 1, 5, 0, 0, 0}), u"0987-01-05");
    EXPECT_EQ(formatTimeStamp(LocalDateTime{2005, 3, 14, 4, 5, 9}), u"04:05:09");
}

// The program's clock reads the local date and time of the moment: here in a
// zone fourteen hours ahead of UTC, checked against UTC.
TEST(DateStamp, TheSystemClockGivesTheLocalMoment) {
    const char* zone = std::getenv("TZ");
    const std::string saved = zone != nullptr ? zone : "";
    setenv("TZ", "LKP-14", 1);  // POSIX writes the offset west of UTC
    tzset();
    const std::time_t before = std::time(nullptr);
    const LocalDateTime now = SystemClock().now();
    const std::time_t after = std::time(nullptr);
    zone != nullptr ? setenv("TZ", saved.c_str(), 1) : unsetenv("TZ");
    tzset();
    std::tm shown{};
    shown.tm_year = now.year - 1900;
    shown.tm_mon = now.month - 1;
    shown.tm_mday = now.day;
    shown.tm_hour = now.hour;
    shown.tm_min = now.minute;
    shown.tm_sec = now.second;
    const std::time_t read = timegm(&shown) - 14 * 3600;
    EXPECT_TRUE(before <= read && read <= after) << read - before;
    EXPECT_EQ(formatDateStamp(now).size() + formatTimeStamp(now).size(), 18u);
}

TEST(Windows1252, EveryCharacterOfTheCodePageBecomesItsByte) {
    // The 0x80-0x9F range in order (the five undefined bytes as the control
    // characters of the same number), then Latin-1 letters and range edges.
    const Text characters = fromUtf8("€\u0081‚ƒ„…†‡ˆ‰Š‹Œ\u008DŽ\u008F\u0090‘’“”•–—˜™š›œ\u009DžŸ") +
                            fromUtf8("éßüà\u00A0ÿ~\x7F");
    std::string bytes;
    for (int b = 0x80; b <= 0x9F; ++b) {
        bytes.push_back(static_cast<char>(b));
    }
    bytes += "\xE9\xDF\xFC\xE0\xA0\xFF~\x7F";
    EXPECT_EQ(encodeWindows1252(characters), bytes);
}

TEST(Windows1252, AnythingElseBecomesOneQuestionMarkACharacter) {
    // C1 controls that the code page gives to other characters, a character
    // outside the BMP (one character, so one question mark), lone surrogates
    // but for the bytes of a file name that is not UTF-8 ("\xE9t\xE9").
    const Text text =
        fromUtf8("a€bΩ\u0080\u009F😀") + Text{0xD800, u'c', 0xDC00} + fromUtf8("\xE9t\xE9");
    EXPECT_EQ(encodeWindows1252(text),
              "a\x80"
              "b?????c?\xE9t\xE9");
}

}  // namespace
}  // namespace lorekeep
