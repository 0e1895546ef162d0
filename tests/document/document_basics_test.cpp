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

TEST(DateStamp, SystemClockGivesAPlausibleLocalTime) {
    const LocalDateTime now = SystemClock().Now();
    EXPECT_GE(now.year, 2024);
    EXPECT_TRUE(now.month >= 1 && now.month <= 12);
    EXPECT_TRUE(now.day >= 1 && now.day <= 31);
    EXPECT_EQ(FormatDateStamp(now).size(), 10u);
    EXPECT_EQ(FormatTimeStamp(now).size(), 8u);
}

struct EncodingCase {
    const char* character;
    unsigned char byte;
};

class Windows1252Encoding : public ::testing::TestWithParam<EncodingCase> {};

TEST_P(Windows1252Encoding, EncodesToItsSingleByte) {
    const auto& c = GetParam();
    EXPECT_EQ(EncodeWindows1252(T(c.character)), std::string(1, static_cast<char>(c.byte)));
}

INSTANTIATE_TEST_SUITE_P(
    CodePage, Windows1252Encoding,
    ::testing::Values(EncodingCase{"€", 0x80}, EncodingCase{"‚", 0x82}, EncodingCase{"ƒ", 0x83},
                      EncodingCase{"„", 0x84}, EncodingCase{"…", 0x85}, EncodingCase{"†", 0x86},
                      EncodingCase{"‡", 0x87}, EncodingCase{"ˆ", 0x88}, EncodingCase{"‰", 0x89},
                      EncodingCase{"Š", 0x8A}, EncodingCase{"‹", 0x8B}, EncodingCase{"Œ", 0x8C},
                      EncodingCase{"Ž", 0x8E}, EncodingCase{"‘", 0x91}, EncodingCase{"’", 0x92},
                      EncodingCase{"“", 0x93}, EncodingCase{"”", 0x94}, EncodingCase{"•", 0x95},
                      EncodingCase{"–", 0x96}, EncodingCase{"—", 0x97}, EncodingCase{"˜", 0x98},
                      EncodingCase{"™", 0x99}, EncodingCase{"š", 0x9A}, EncodingCase{"›", 0x9B},
                      EncodingCase{"œ", 0x9C}, EncodingCase{"ž", 0x9E}, EncodingCase{"Ÿ", 0x9F},
                      // The five undefined bytes come back from their control characters.
                      EncodingCase{"\u0081", 0x81}, EncodingCase{"\u008D", 0x8D},
                      EncodingCase{"\u008F", 0x8F}, EncodingCase{"\u0090", 0x90},
                      EncodingCase{"\u009D", 0x9D},
                      // Latin-1 letters and the edges of the plain ranges.
                      EncodingCase{"é", 0xE9}, EncodingCase{"ß", 0xDF}, EncodingCase{"ü", 0xFC},
                      EncodingCase{"à", 0xE0}, EncodingCase{"\u00A0", 0xA0},
                      EncodingCase{"ÿ", 0xFF}, EncodingCase{"~", 0x7E},
                      EncodingCase{"\x7F", 0x7F}));

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

TEST(Utf8Conversion, RoundTripsAndReplacesBrokenSequences) {
    const std::string sample = "plain é € 😀 \\n<br>\\n";
    EXPECT_EQ(ToUtf8(FromUtf8(sample)), sample);
    EXPECT_EQ(FromUtf8("a\xFF"
                       "b"),
              u"a\uFFFDb");
    EXPECT_EQ(FromUtf8("\xE2\x82"), u"\uFFFD\uFFFD");
    EXPECT_EQ(FromUtf8("\xC0\xAF"), u"\uFFFD\uFFFD");  // overlong form of '/'
    EXPECT_EQ(ToUtf8(Text{char16_t(0xD800)}), "\xEF\xBF\xBD");
}

}  // namespace
}  // namespace lorekeep
