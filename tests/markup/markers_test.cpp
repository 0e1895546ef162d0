#include <gtest/gtest.h>

#include "markup/markers.hpp"

namespace lorekeep::markup {
namespace {

// The lengths that other parts of the program rely on (the break-key caret
// arithmetic, the renderer's replaced spans), as the markup defines them.
TEST(Markers, FixedMarkersHaveTheirDefinedLengths) {
    const std::pair<std::u16string_view, std::size_t> cases[] = {
        {kLeftJustify, 8}, {kCentre, 8},         {kRightJustify, 8}, {kLineBreak, 8},
        {kPageBreak, 8},   {kParagraphBreak, 7}, {kColourBlack, 14},
    };
    for (const auto& [marker, length] : cases) {
        EXPECT_EQ(marker.size(), length);
        EXPECT_TRUE(marker.starts_with(kSeparator));
        EXPECT_TRUE(marker.ends_with(kSeparator));
        EXPECT_EQ(marker[2], kTagStart);
    }
    EXPECT_EQ(kPageBreakLine.size(), 39u);
}

TEST(Markers, EveryRendererTagNameStandsAtTheTagOffsetOfItsMarker) {
    const std::pair<std::u16string_view, std::u16string_view> cases[] = {
        {kLeftJustify, kTagLeft},
        {kRightJustify, kTagRight},
        {kCentre, kTagCentre},
        {kLineBreak, kTagLineBreak},
        {kParagraphBreak, kTagParagraph},
        {kPageBreak, kTagPageBreak},
        {kColourBlack, kTagColour},
        {kFontOpen, kTagFont},
    };
    for (const auto& [marker, tag] : cases) {
        EXPECT_EQ(marker.substr(kTagOffset, tag.size()), tag);
    }
    EXPECT_EQ(kTitleOpen.substr(kTagOffset, kTitleWord.size()), kTitleWord);
}

TEST(Markers, ColourMarkerKeepsComponentsAsWritten) {
    EXPECT_EQ(ColourMarker(u"0", u"0", u"0"), kColourBlack);
    EXPECT_EQ(ColourMarker(u"255", u"255", u"255").size(), 20u);
    EXPECT_EQ(ColourMarker(u"255", u"128", u"0").size(), 18u);
    EXPECT_EQ(ColourMarker(u"007", u"", u" 1"), u"\\n<dc=007,, 1>\\n");
}

}  // namespace
}  // namespace lorekeep::markup
