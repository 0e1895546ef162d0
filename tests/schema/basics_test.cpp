#include <gtest/gtest.h>

#include "schema/date_stamp.hpp"
#include "schema/windows1252.hpp"

namespace lorekeep {
namespace {

TEST(DateStamp, PicksYearMonthAndDayByPositionInFixedWidths) {
    const std::pair<const char*, const char*> cases[] = {
        {"14/03/2005", "2005-03-14"},
        {"14.03.2005", "2005-03-14"},
        {"31xx0x2026", "2026-x0-31"},  // separators are never looked at
        {"14/03", "-03-14"},           // too short to hold a year: the pieces that exist
    };
    for (const auto& [input, stamp] : cases) {
        EXPECT_EQ(formatDateStamp(fromUtf8(input)), fromUtf8(stamp));
    }
    EXPECT_EQ(formatDateStamp(LocalDateTime{987, 1, 5, 0, 0, 0}), u"0987-01-05");
    EXPECT_EQ(formatTimeStamp(LocalDateTime{2005, 3, 14, 4, 5, 9}), u"04:05:09");
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
