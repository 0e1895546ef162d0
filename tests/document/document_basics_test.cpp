#include <gtest/gtest.h>

#include "document/date_stamp.hpp"
#include "document/schema_document.hpp"
#include "document/windows1252.hpp"
#include "support/test_text.hpp"

namespace lorekeep {
namespace {

using testing::T;

struct PathCase {
    const char* folder;
    const char* name;
    const char* path;
};

class SchemaPathComposition : public ::testing::TestWithParam<PathCase> {};

TEST_P(SchemaPathComposition, ConcatenatesWithoutTrimming) {
    const auto& c = GetParam();
    EXPECT_EQ(SchemaPath(T(c.folder), T(c.name)), T(c.path));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SchemaPathComposition,
    ::testing::Values(PathCase{"/home/me/Schemas", "intro", "/home/me/Schemas/intro.sch"},
                      PathCase{"/home/me/Schemas/", "intro", "/home/me/Schemas//intro.sch"},
                      PathCase{"dir", "intro.sch", "dir/intro.sch.sch"},
                      PathCase{" ", " ", " / .sch"}, PathCase{"", "", "/.sch"},
                      PathCase{"Küche", "Éntrée", "Küche/Éntrée.sch"}));

struct DateCase {
    const char* input;
    const char* stamp;
};

class DateStampByPosition : public ::testing::TestWithParam<DateCase> {};

TEST_P(DateStampByPosition, PicksYearMonthAndDayByPosition) {
    EXPECT_EQ(FormatDateStamp(T(GetParam().input)), T(GetParam().stamp));
}

INSTANTIATE_TEST_SUITE_P(Cases, DateStampByPosition,
                         ::testing::Values(DateCase{"14/03/2005", "2005-03-14"},
                                           DateCase{"14.03.2005", "2005-03-14"},
                                           DateCase{"01-12-1999", "1999-12-01"},
                                           // Separators are never looked at.
                                           DateCase{"31xx0x2026", "2026-x0-31"},
                                           // Too short to hold a year: the pieces that exist.
                                           DateCase{"14/03", "-03-14"}, DateCase{"", "--"}));

TEST(DateStamp, CalendarDatesArePaddedToFixedWidths) {
    EXPECT_EQ(FormatDateStamp(LocalDateTime{2005, 3, 14, 0, 0, 0}), u"2005-03-14");
    EXPECT_EQ(FormatDateStamp(LocalDateTime{2026, 1, 5, 0, 0, 0}), u"2026-01-05");
    EXPECT_EQ(FormatDateStamp(LocalDateTime{987, 12, 31, 0, 0, 0}), u"0987-12-31");
    EXPECT_EQ(FormatTimeStamp(LocalDateTime{2005, 3, 14, 14, 5, 9}), u"14:05:09");
    EXPECT_EQ(FormatTimeStamp(LocalDateTime{2005, 3, 14, 0, 0, 0}), u"00:00:00");
    EXPECT_EQ(FormatTimeStamp(LocalDateTime{2005, 3, 14, 23, 59, 59}), u"23:59:59");
}

TEST(Windows1252, EveryCharacterOfTheCodePageBecomesItsByte) {
    // The 0x80-0x9F range in order (the five undefined bytes as the control
    // characters of the same number), then Latin-1 letters and range edges.
    const Text characters =
        T("€\u0081‚ƒ„…†‡ˆ‰Š‹Œ\u008DŽ\u008F\u0090‘’“”•–—˜™š›œ\u009DžŸ") + T("éßüà\u00A0ÿ~\x7F");
    std::string bytes;
    for (int b = 0x80; b <= 0x9F; ++b) {
        bytes.push_back(static_cast<char>(b));
    }
    bytes += "\xE9\xDF\xFC\xE0\xA0\xFF~\x7F";
    EXPECT_EQ(EncodeWindows1252(characters), bytes);
}

TEST(Windows1252, UnmappedCharactersBecomeOneQuestionMarkEach) {
    EXPECT_EQ(EncodeWindows1252(T("Ω")), "?");
    // C1 controls that the code page gives to other characters are not theirs.
    EXPECT_EQ(EncodeWindows1252(Text(1, u'\u0080')), "?");
    EXPECT_EQ(EncodeWindows1252(Text(1, u'\u009F')), "?");
    EXPECT_EQ(EncodeWindows1252(T("a€bΩc")),
              "a\x80"
              "b?c");
    // A character outside the BMP is one character, so one question mark.
    EXPECT_EQ(EncodeWindows1252(T("x😀y")), "x?y");
    // A lone surrogate is still written as something.
    EXPECT_EQ(EncodeWindows1252(Text{u'a', char16_t(0xD800), u'b'}), "a?b");
    EXPECT_EQ(EncodeWindows1252(Text{char16_t(0xDC00)}), "?");
    EXPECT_EQ(EncodeWindows1252(Text(1, u'\0')), std::string(1, '\0'));
}

}  // namespace
}  // namespace lorekeep
